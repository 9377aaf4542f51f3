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
