# Every value is in a cell, or told: how many, why, and where the first is.
$ cat > doc.json <<'END'
> [1,2,
>  {"a":1,"a":2,"":7,"b":[[1,2],[3]],"c":[{"d":1}]},
>  {"a":3,"a":4,"e":{"f":[true,null]}},
>  "x"]
> END
$ qvejmap check doc.json --account
  path\tvalues\tlost\tfirst
  /root/element1\t1\tstrayed\tdoc.json:1:2
  /root/element2\t1\tstrayed\tdoc.json:1:4
  /root/a\t2\toverwritten\tdoc.json:2:7
  /root\t1\tno column\tdoc.json:2:18
  14 values = 11 in cells (2 of them strayed) + 2 overwritten + 1 no column + 0 no row + 0 rejected
? 1
$ echo '[{"a":"x"}]' | qvejmap check - --account
  1 value = 1 in cells + 0 overwritten + 0 no column + 0 no row + 0 rejected
# On standard input only the places are known where a path begins.
$ qvejmap check - --account < doc.json
  path\tvalues\tlost\tfirst
  /root/element1\t1\tstrayed\t<stdin>:1:2
  /root/element2\t1\tstrayed\t<stdin>:1:4
  /root/a\t2\toverwritten\t<stdin>:2:7
  /root\t1\tno column\t<stdin>:2:18
  14 values = 11 in cells (2 of them strayed) + 2 overwritten + 1 no column + 0 no row + 0 rejected
? 1
# convert says that there are such values, or counts them too.
$ qvejmap convert doc.json -o out
! qvejmap: 4 tables, 6 rows in out
! qvejmap: root.element1 has values of several kinds, all as texts
! qvejmap: doc.json: 3 values are in no cell, 2 overwritten (qvejmap check --account tells which)
! qvejmap: doc.json: 2 values strayed into rows that may be another parent's (qvejmap check --account tells which)
? 1
$ qvejmap convert doc.json -o out2 -q --alldata
! qvejmap: doc.json: in ALLDATA labels are cut at wrong places: the document has member names that are empty or of 256 bytes and more
! qvejmap: doc.json: 2 values are overwritten by a later one (qvejmap check --account tells which)
! qvejmap: doc.json: 2 values strayed into rows that may be another parent's (qvejmap check --account tells which)
? 1
$ qvejmap convert doc.json -o out3 -q --account; diff -r -x datapackage.json out out3
  path\tvalues\tlost\tfirst
  /root/element1\t1\tstrayed\tdoc.json:1:2
  /root/element2\t1\tstrayed\tdoc.json:1:4
  /root/a\t2\toverwritten\tdoc.json:2:7
  /root\t1\tno column\tdoc.json:2:18
  14 values = 11 in cells (2 of them strayed) + 2 overwritten + 1 no column + 0 no row + 0 rejected
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
# What a map leaves out is meant, and not told but there; what its columns do not show is.
$ echo '[{"a":1,"b":2},{"a":2,"a":3,"b":4}]' > o.json; qvejmap convert o.json --map m.json -o out5 -q
! qvejmap: o.json: 1 value is in no cell, 1 overwritten (qvejmap check --account tells which)
? 1
$ echo '[{"b":2}]' > p.json; qvejmap convert p.json --map m.json -o out6 -q; qvejmap convert p.json --map m.json -o out7 -q --account
  path\tvalues\tlost\tfirst
  /root/b\t1\tno column\tp.json:1:7
  1 value = 0 in cells + 0 overwritten + 1 no column + 0 no row + 0 rejected
! qvejmap: p.json: table t has no rows
! qvejmap: p.json: table t has no rows
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
# Values that came before the row they are in, so that it may be another parent's: an array after
# other elements begins no row.
$ for text in '{"o":[{"id":1,"m":["SUB",{"t":["x","y"]}]},{"id":2,"m":[{"t":["z"]}]}]}' '{"a":[1,{"b":[2,3]},{"b":[9]}]}' '["x",{"a":1}]' '[{"a":1},"x"]'; do
>     echo "$text" | qvejmap check - --account
> done
  path\tvalues\tlost\tfirst
  /root/o/m/t/t2\t1\tstrayed\t<stdin>:1:32
  /root/o/m/t/t3\t1\tstrayed\t<stdin>:1:36
  6 values = 6 in cells (2 of them strayed) + 0 overwritten + 0 no column + 0 no row + 0 rejected
  path\tvalues\tlost\tfirst
  /root/a/b/b2\t1\tstrayed\t<stdin>:1:15
  /root/a/b/b3\t1\tstrayed\t<stdin>:1:17
  4 values = 4 in cells (2 of them strayed) + 0 overwritten + 0 no column + 0 no row + 0 rejected
  path\tvalues\tlost\tfirst
  /root/element1\t1\tstrayed\t<stdin>:1:2
  2 values = 2 in cells (1 of them strayed) + 0 overwritten + 0 no column + 0 no row + 0 rejected
  2 values = 2 in cells + 0 overwritten + 0 no column + 0 no row + 0 rejected
# One that is overwritten, in no row, rejected or cut as well is told once, a cut one twice.
$ for text in '{"a":[1,{"b":[2]},{"b":{"b2":3}}]}' '{"a":[1,{"b":[2]}]}'; do echo "$text" | qvejmap check - --account; done
> for type in NUMERIC 'CHARACTER","LENGTH":"1'; do
>     printf '{"DATASETS":[{"DSNAME":"t","TABLEPATH":"/root","VARIABLES":[{"NAME":"e","TYPE":"%s","PATH":"/root/element1"}]}]}' "$type" | sed 's/"1"/1/' > e.map
>     echo '["xyz",{"a":1}]' | qvejmap check - --account --map e.map
> done
  path\tvalues\tlost\tfirst
  /root/a/b/b2\t1\toverwritten\t<stdin>:1:15
  3 values = 2 in cells + 1 overwritten + 0 no column + 0 no row + 0 rejected
  path\tvalues\tlost\tfirst
  /root/a/b/b2\t1\tno row\t<stdin>:1:15
  2 values = 1 in cells + 0 overwritten + 0 no column + 1 no row + 0 rejected
  path\tvalues\tlost\tfirst
  /root/element1\t1\trejected\t<stdin>:1:2
  /root/a\t1\tno column\t<stdin>:1:13
  2 values = 0 in cells + 0 overwritten + 1 no column + 0 no row + 1 rejected
  path\tvalues\tlost\tfirst
  /root/element1\t1\tstrayed\t<stdin>:1:2
  /root/element1\t1\tcut\t<stdin>:1:2
  /root/a\t1\tno column\t<stdin>:1:13
  2 values = 1 in cells (1 of them strayed, 1 cut) + 0 overwritten + 1 no column + 0 no row + 0 rejected
? 1
# A value that an earlier row got, or that a later one overwrites, did not stray; others of its array did.
$ for text in '{"a":[{"b":[9]},1,{"b":[2,3]},{"b":[7]}]}' '[{"a":1},"x",{"a":2}]' '["x",{},{"element1":"y"}]' '{"a":[1,{"b":[2]},{"b":{"b2":3,"c":4}}]}' '[1,{"b":[2]},3,{"c":4,"b":[5,6,[7]]},{"b":[8]}]' '[{"c":0},1,{"b":[2,[3],4]}]'; do
>     echo "$text" | qvejmap check - --account
> done
  path\tvalues\tlost\tfirst
  /root/a/b/b2\t1\tstrayed\t<stdin>:1:25
  /root/a/b/b3\t1\tstrayed\t<stdin>:1:27
  5 values = 5 in cells (2 of them strayed) + 0 overwritten + 0 no column + 0 no row + 0 rejected
  3 values = 3 in cells + 0 overwritten + 0 no column + 0 no row + 0 rejected
  path\tvalues\tlost\tfirst
  /root/element1\t1\tstrayed\t<stdin>:1:2
  2 values = 2 in cells (1 of them strayed) + 0 overwritten + 0 no column + 0 no row + 0 rejected
  path\tvalues\tlost\tfirst
  /root/a/b/b2\t1\toverwritten\t<stdin>:1:15
  4 values = 3 in cells + 1 overwritten + 0 no column + 0 no row + 0 rejected
  path\tvalues\tlost\tfirst
  /root/element1\t1\toverwritten\t<stdin>:1:2
  /root/b/b2\t1\toverwritten\t<stdin>:1:10
  /root/b/b2\t1\tstrayed\t
  /root/b/b3\t1\tstrayed\t<stdin>:1:30
  /root/b/element4\t1\tstrayed\t<stdin>:1:33
  8 values = 6 in cells (3 of them strayed) + 2 overwritten + 0 no column + 0 no row + 0 rejected
  path\tvalues\tlost\tfirst
  /root/b/b2\t1\tstrayed\t<stdin>:1:18
  /root/b/element3\t1\tstrayed\t<stdin>:1:21
  5 values = 5 in cells (2 of them strayed) + 0 overwritten + 0 no column + 0 no row + 0 rejected
? 1
# A value that is kept for the next row did not stray into that one too.
$ echo '["x",{"a":1},{"a":2}]' | qvejmap check - --account --retain
  path\tvalues\tlost\tfirst
  /root/element1\t1\tstrayed\t<stdin>:1:2
  3 values = 3 in cells (1 of them strayed) + 0 overwritten + 0 no column + 0 no row + 0 rejected
? 1
# Columns of ancestors and of other places take their values at any time.
$ table='{"DATASETS":[{"DSNAME":"t","TABLEPATH":"/root/o%s","VARIABLES":[%s]}]}'; column='{"NAME":"c","TYPE":"CHARACTER","PATH":"/root/o/%s"}'
> printf "$table" /m/t "$(printf "$column,$column,$column" id m/t/t1 m/t/t2)" > below.map; printf "$table" '' "$(printf "$column" m/t/t2)" > above.map
> echo '{"o":[{"id":1,"m":["S",{"t":["x"]}]},{"id":2,"m":[{"t":["z"]}]}]}' > places.json
> for map in below above; do qvejmap check places.json --map $map.map --account; done
  path\tvalues\tlost\tfirst
  /root/o/id\t1\toverwritten\tplaces.json:1:13
  /root/o/m/m1\t1\tno column\tplaces.json:1:20
  /root/o/m/t/t2\t1\tstrayed\tplaces.json:1:30
  5 values = 3 in cells (1 of them strayed) + 1 overwritten + 1 no column + 0 no row + 0 rejected
  path\tvalues\tlost\tfirst
  /root/o/id\t2\tno column\tplaces.json:1:13
  /root/o/m/m1\t1\tno column\tplaces.json:1:20
  /root/o/m/t/t1\t1\tno column\tplaces.json:1:57
  5 values = 1 in cells + 0 overwritten + 4 no column + 0 no row + 0 rejected
? 1
# A path counts by the column that has its values in their row.
$ printf '{"DATASETS":[%s]}' "$(for path in /root/a/b /root; do printf '%s{"DSNAME":"t","TABLEPATH":"%s","VARIABLES":[{"NAME":"b2","TYPE":"NUMERIC","PATH":"/root/a/b/b2"}]}' "$comma" $path; comma=,; done)" > both.map
> echo '{"a":[1,{"b":[2]},{"b":{"c":3}}]}' | qvejmap check - --account --map both.map
  path\tvalues\tlost\tfirst
  /root/a/a1\t1\tno column\t<stdin>:1:7
  /root/a/b/c\t1\tno column\t<stdin>:1:29
  3 values = 1 in cells + 0 overwritten + 2 no column + 0 no row + 0 rejected
? 1
# A value that its cell has in part, since the column is too short or a record keeps no more of it.
$ echo '[{"a":"x"},{"a":"xyz"},{"a":"abc"}]' > short.json; sed 's/"NUMERIC"/"CHARACTER","LENGTH":2/' m.json > short.map
> python3 -c 'print("{\"k\":\"%s\"}" % ("x" * 32768))' > k.json
> qvejmap check short.json --account --map short.map; qvejmap check k.json --account
  path\tvalues\tlost\tfirst
  /root/a\t2\tcut\tshort.json:1:17
  3 values = 3 in cells (2 of them cut) + 0 overwritten + 0 no column + 0 no row + 0 rejected
  path\tvalues\tlost\tfirst
  /root/k\t1\tcut\tk.json:1:6
  1 value = 1 in cells (1 of them cut) + 0 overwritten + 0 no column + 0 no row + 0 rejected
? 1
# A text that is cut gives no number, with an informat and without.
$ python3 -c 'print("[{\"a\":\"2.5%se10\"},{\"a\":\"%s\"},{\"a\":\"3\"}]" % ("0" * 32764, "1" * 40000))' > long.json
> for add in '' ',"INFORMAT":["number"]' ',"FORMAT":["fixed"]'; do
>     sed "s/\"NUMERIC\"/&$add/" m.json > long.map; qvejmap read long.json t --map long.map; qvejmap check long.json --account --map long.map
> done
  a\r
  ""\r
  ""\r
  3\r
  path\tvalues\tlost\tfirst
  /root/a\t2\trejected\tlong.json:1:7
  3 values = 1 in cells + 0 overwritten + 0 no column + 0 no row + 2 rejected
  a\r
  ""\r
  ""\r
  3\r
  path\tvalues\tlost\tfirst
  /root/a\t2\trejected\tlong.json:1:7
  3 values = 1 in cells + 0 overwritten + 0 no column + 0 no row + 2 rejected
  a\r
  ""\r
  ""\r
  3\r
  path\tvalues\tlost\tfirst
  /root/a\t2\trejected\tlong.json:1:7
  3 values = 1 in cells + 0 overwritten + 0 no column + 0 no row + 2 rejected
! qvejmap: t.a: 2 values rejected, the first in row 1: "2.50000000000000000000000000000000000000..." is longer than 32767 bytes
! qvejmap: t.a: 2 values rejected, the first in row 1: "2.50000000000000000000000000000000000000..." is longer than 32767 bytes
! qvejmap: t.a: 2 values rejected, the first in row 1: "2.50000000000000000000000000000000000000..." is longer than 32767 bytes
? 1
# Digits of a text that an informat for numbers does not keep.
$ echo '[{"a":"9007199254740993","b":"9,007,199,254,740,992","c":"12345678901234567.5%"},{"a":"x","b":"12,345,678,901,234,567,891"}]' > d.json
> printf '{"DATASETS":[{"DSNAME":"t","TABLEPATH":"/root","VARIABLES":[' > d.map
> for one in a:number b:comma c:percent; do
>     printf '{"NAME":"%s","TYPE":"NUMERIC","PATH":"/root/%s","INFORMAT":["%s"]},' ${one%:*} ${one%:*} ${one#*:} >> d.map
> done
> echo '{"NAME":"z","TYPE":"ORDINAL","PATH":"/root"}]}]}' >> d.map
> qvejmap read d.json t --map d.map
  a,b,c,z\r
  9007199254740992,9007199254740992,123456789012345.67,1\r
  ,12345678901234567168,,2\r
! qvejmap: t.a: 1 value rounded to what a double keeps, in row 1: "9007199254740993"
! qvejmap: t.c: 1 value rounded to what a double keeps, in row 1: "12345678901234567.5%"
! qvejmap: t.a: 1 value rejected, in row 2: "x" is not a number
! qvejmap: t.b: 1 value rounded to what a double keeps, in row 2: "12,345,678,901,234,567,891"
? 1
