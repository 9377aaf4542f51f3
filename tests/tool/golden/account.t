# Every value is in a cell, or told: how many, why, and where the first is.
$ cat > doc.json <<'END'
> [1,2,
>  {"a":1,"a":2,"":7,"b":[[1,2],[3]],"c":[{"d":1}]},
>  {"a":3,"a":4,"e":{"f":[true,null]}},
>  "x"]
> END
$ qvejmap check doc.json --account
  path\tvalues\tlost\tfirst
  /root/a\t2\toverwritten\tdoc.json:2:7
  /root\t1\tno column\tdoc.json:2:18
  14 values = 11 in cells + 2 overwritten + 1 no column + 0 no row + 0 rejected
? 1
$ echo '[{"a":"x"}]' | qvejmap check - --account
  1 values = 1 in cells + 0 overwritten + 0 no column + 0 no row + 0 rejected
# On standard input only the places are known where a path begins.
$ qvejmap check - --account < doc.json
  path\tvalues\tlost\tfirst
  /root/a\t2\toverwritten\t<stdin>:2:7
  /root\t1\tno column\t<stdin>:2:18
  14 values = 11 in cells + 2 overwritten + 1 no column + 0 no row + 0 rejected
? 1
# convert says that there are such values, or counts them too.
$ qvejmap convert doc.json -o out
! qvejmap: 4 tables, 6 rows in out
! qvejmap: doc.json: 3 values are in no row (qvejmap check --account tells which)
$ qvejmap convert doc.json -o out2 -q --alldata
$ qvejmap convert doc.json -o out3 -q --account; diff -r out out3
  path\tvalues\tlost\tfirst
  /root/a\t2\toverwritten\tdoc.json:2:7
  /root\t1\tno column\tdoc.json:2:18
  14 values = 11 in cells + 2 overwritten + 1 no column + 0 no row + 0 rejected
# With a map that a person wrote: a path without a column, values that are refused.
$ printf '{"DATASETS":[{"DSNAME":"t","TABLEPATH":"/root","VARIABLES":[{"NAME":"a","TYPE":"NUMERIC","PATH":"/root/a"}]}]}' > m.json
$ echo '[{"a":1,"b":2},{"a":"x"},{"a":"y","b":3}]' > n.json; qvejmap convert n.json --map m.json -o out4 --account
  path\tvalues\tlost\tfirst
  /root/a\t2\trejected\tn.json:1:21
  /root/b\t2\tno column\tn.json:1:13
  5 values = 1 in cells + 0 overwritten + 2 no column + 0 no row + 2 rejected
! qvejmap: 1 table, 3 rows in out4
! qvejmap: t.a: 2 values rejected, the first in row 2: "x" is not a number
? 1
$ qvejmap check n.json --map m.json --account
  path\tvalues\tlost\tfirst
  /root/a\t2\trejected\tn.json:1:21
  /root/b\t2\tno column\tn.json:1:13
  5 values = 1 in cells + 0 overwritten + 2 no column + 0 no row + 2 rejected
? 1
$ qvejmap check n.json --map m.json
! qvejmap: check: --map needs --account; map check says whether a map fits a document (qvejmap --help tells more)
? 2
# A pipe can be read once, whatever its name; an empty object is no value, and has no place.
$ echo '[{},{"FAKE":1,"FAKE":2},{},{"FAKE":3,"FAKE":4}]' > fake.json; qvejmap check fake.json --account
  path\tvalues\tlost\tfirst
  /root/FAKE\t2\toverwritten\tfake.json:1:13
  4 values = 2 in cells + 2 overwritten + 0 no column + 0 no row + 0 rejected
? 1
$ echo '[{"a":1},{"a":2,"a":3}]' | timeout 20 qvejmap check /dev/stdin --account
  path\tvalues\tlost\tfirst
  /root/a\t1\toverwritten\t
  3 values = 2 in cells + 1 overwritten + 0 no column + 0 no row + 0 rejected
? 1
# Values outside of any row, and values that stand for no cell of their row.
$ for text in '[1,2,3]' '[1,[2],3]' '[{"a":1,"a":2,"a":3},{"a":4}]' '[{"a":1,"":2},{"a":3}]'; do
>     echo "$text" | qvejmap check - --account
> done
  path\tvalues\tlost\tfirst
  /root/element1\t1\tno row\t<stdin>:1:2
  /root/element2\t1\tno row\t<stdin>:1:4
  /root/element3\t1\tno row\t<stdin>:1:6
  3 values = 0 in cells + 0 overwritten + 0 no column + 3 no row + 0 rejected
  path\tvalues\tlost\tfirst
  /root/element1\t1\toverwritten\t<stdin>:1:2
  /root/element1\t1\tno row\t
  /root/element2\t1\tno row\t<stdin>:1:5
  3 values = 0 in cells + 1 overwritten + 0 no column + 2 no row + 0 rejected
  path\tvalues\tlost\tfirst
  /root/a\t2\toverwritten\t<stdin>:1:7
  4 values = 2 in cells + 2 overwritten + 0 no column + 0 no row + 0 rejected
  path\tvalues\tlost\tfirst
  /root\t1\tno column\t<stdin>:1:12
  3 values = 2 in cells + 0 overwritten + 1 no column + 0 no row + 0 rejected
? 1
