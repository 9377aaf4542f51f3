# What a column makes of a value, to the letter: NDJSON tells null, absence and "" apart.
$ cat > cell <<'END'
> # cell COLUMN MEMBERS...: a row for each; "w" makes a row where the column has nothing.
> printf '{"DATASETS":[{"DSNAME":"t","TABLEPATH":"/root","VARIABLES":[
>   {"NAME":"w","TYPE":"NUMERIC","PATH":"/root/w"},{"NAME":"a",%s,"PATH":"/root/a"}]}]}' "$1" > map
> shift
> { printf '['; printf '{%s,"w":5},' "$@"; printf '{"w":6}]'; } > doc
> qvejmap read doc t --map map --format ndjson --rejects no --force > rows 2> said
> sed 's/"w":5,*//' rows; cut -d , -f 6- no | sed 1d
> END
$ sh cell '"TYPE":"NUMERIC"' '"a":1.10' '"a":-0e+00' '"a":"12345678901234567890"' '"a":"1e400"' '"a":"-1.5e2"' \
>   '"a":true' '"a":"true"' '"a":"false"' '"a":"null"' '"a":null' '"b":1' '"a":{}' '"A":1' '"a":"True"' '"a":"1 "' '"a":" 1"' '"a":""'
  {"a":1.10}
  {"a":-0e+00}
  {"a":12345678901234567890}
  {"a":1e400}
  {"a":-1.5e2}
  {"a":1}
  {"a":1}
  {"a":0}
  {"a":null}
  {"a":null}
  {}
  {}
  {}
  {"a":null}
  {"a":null}
  {"a":null}
  {"a":null}
  {"w":6}
  True,not a number\r
  1 ,not a number\r
   1,not a number\r
  ,not a number\r
$ sh cell '"TYPE":"CHARACTER"' '"a":" x "' '"a":""' '"a":null' '"a":"null"' '"a":1.10' '"a":true' '"b":1' '"a":{}'
  {"a":" x "}
  {"a":""}
  {"a":null}
  {"a":"null"}
  {"a":"1.10"}
  {"a":"true"}
  {}
  {}
  {"w":6}
$ sh cell '"TYPE":"CHARACTER","LENGTH":2' '"a":"xy"' '"a":"xyz"' '"a":"xé"' '"a":"x  "' '"a":null' '"a":123'
  {"a":"xy"}
  {"a":"xy"}
  {"a":"x"}
  {"a":"x "}
  {"a":null}
  {"a":"12"}
  {"w":6}
  xyz,cut to 2 bytes\r
  xé,cut to 2 bytes\r
  x  ,cut to 2 bytes\r
  123,cut to 2 bytes\r
$ sh cell '"TYPE":"CHARACTER","LENGTH":2,"INFORMAT":["upper"]' '"a":"xy "' '"a":"x "' '"a":null' '"b":"x"'
  {"a":"XY"}
  {"a":"X "}
  {"a":null}
  {}
  {"w":6}
  xy ,cut to 2 bytes\r
$ sh cell '"TYPE":"ORDINAL"' '"a":1' '"a":{}' '"a":[]'
  {}
  {"a":1}
  {"a":2}
  {"w":6,"a":2}

# Ordinals alone make rows.
$ printf '{"DATASETS":[{"DSNAME":"t","TABLEPATH":"/root","VARIABLES":[{"NAME":"a","PATH":"/root"},{"NAME":"b","PATH":"/root"},{"NAME":"v","PATH":"/root/v"}]}]}' > o.map
$ echo '[{"v":1},{"v":2}]' | qvejmap read - t --map o.map
  a,b,v\r
  1,1,\r
  2,2,\r

# Numbers that no longer are the document's are the shortest that read back.
$ printf '{"DATASETS":[{"DSNAME":"t","TABLEPATH":"/root","VARIABLES":[{"NAME":"a","TYPE":"NUMERIC","PATH":"/root/a","INFORMAT":["number"]}]}]}' > n.map
> for n in 0 -0 9007199254740993 9223372036854774784 9223372036854775808 -9223372036854775808 0.33333333333333331 -1.7976931348623157e308 1e999 -1e999; do printf ',{"a":"%s"}' $n; done | sed '1s/^,/[/;$s/$/]/' > n.json
$ qvejmap read n.json t --map n.map; qvejmap read n.json t --map n.map --format ndjson | tail -2
  a\r
  0\r
  -0\r
  9007199254740992\r
  9223372036854774784\r
  9223372036854775808\r
  -9223372036854775808\r
  0.3333333333333333\r
  -1.7976931348623157e+308\r
  inf\r
  -inf\r
  {"a":1e400}
  {"a":-1e400}
! qvejmap: t.a: 5 values rounded to what a double keeps, the first in row 3: "9007199254740993"
! qvejmap: t.a: 5 values rounded to what a double keeps, the first in row 3: "9007199254740993"
