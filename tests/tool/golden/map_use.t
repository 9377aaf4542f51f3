# The automatic map of a document gives the same tables, but for columns of booleans: in a map they are numbers.
$ qvejmap map orders.json -o m.json; qvejmap convert orders.json -o a -q; qvejmap convert orders.json --map m.json -o b -q; diff -r -x datapackage.json a b; ls b | wc -l
  diff -r -x datapackage.json a/orders.csv b/orders.csv
  2,3c2,3
  < 1,1,1001,true\r
  < 1,2,1002,false\r
  ---
  > 1,1,1001,1\r
  > 1,2,1002,0\r
  5

# Informats, formats, lengths; values that a column cannot take, or only in part.
$ printf '[{"d":"29/02/2024","n":"1,234.5","x":"12","c":" ab "},{"d":"30/02/2024","n":1e3,"x":true,"c":null},
> {"d":"null","n":"","x":"abc","c":"äöü"},{"n":null,"x":"de,f"}]' > v.json
> printf '{"DATASETS":[{"DSNAME":"v","TABLEPATH":"/root","VARIABLES":[{"NAME":"row","PATH":"/root"},
> {"NAME":"d","TYPE":"NUMERIC","PATH":"/root/d","INFORMAT":["%%d/%%m/%%Y"],"FORMAT":["date"]},
> {"NAME":"days","TYPE":"NUMERIC","PATH":"/root/d","INFORMAT":["?%%d/%%m/%%Y"]},
> {"NAME":"n","TYPE":"NUMERIC","PATH":"/root/n","INFORMAT":["comma"],"FORMAT":["fixed",0,2]},
> {"NAME":"x","TYPE":"NUMERIC","PATH":"/root/x"},
> {"NAME":"kept","TYPE":"NUMERIC","PATH":"/root/x","OPTIONS":["RETAIN"]},
> {"NAME":"c","TYPE":"CHARACTER","PATH":"/root/c","INFORMAT":["upper"]},
> {"NAME":"cut","TYPE":"CHARACTER","PATH":"/root/c","LENGTH":3}]}]}' > map.json
$ qvejmap read v.json v --map map.json --rejects bad.csv; cat bad.csv
  row,d,days,n,x,kept,c,cut\r
  1,2024-02-29,19782,1234.50,12,12, AB , ab\r
  2,,,1000.00,1,1,,\r
  3,,,,,,ÄÖÜ,ä\r
  4,,,,,,,\r
  table,row,column,path,ordinals,text,reason\r
  v,1,cut,/root/c,row=1, ab ,cut to 3 bytes\r
  v,2,d,/root/d,row=2,30/02/2024,not a date or time of the pattern\r
  v,3,x,/root/x,row=3,abc,not a number\r
  v,3,kept,/root/x,row=3,abc,not a number\r
  v,3,d,/root/d,row=3,null,not a date or time of the pattern\r
  v,3,n,/root/n,row=3,,not a number with commas\r
  v,3,cut,/root/c,row=3,äöü,cut to 3 bytes\r
  v,4,x,/root/x,row=4,"de,f",not a number\r
  v,4,kept,/root/x,row=4,"de,f",not a number\r
! qvejmap: v.cut: 2 values cut to 3 bytes, the first in row 1: " ab "
! qvejmap: v.d: 2 values rejected, the first in row 2: "30/02/2024" is not a date or time of the pattern
! qvejmap: v.x: 2 values rejected, the first in row 3: "abc" is not a number
! qvejmap: v.kept: 2 values rejected, the first in row 3: "abc" is not a number
! qvejmap: v.n: 1 value rejected, in row 3: "" is not a number with commas
$ qvejmap read v.json v --map map.json --rejects bad.csv --format ndjson
! qvejmap: bad.csv: the file exists (--force replaces it)
? 5
$ qvejmap read v.json v --map map.json --limit 1 --format ndjson -q
  {"row":1,"d":"2024-02-29","days":19782,"n":"1234.50","x":12,"kept":12,"c":" AB ","cut":" ab"}
! qvejmap: v.cut: 1 value cut to 3 bytes, in row 1: " ab "
? 1
$ qvejmap convert v.json --map map.json -o out --rejects bad.csv --force; ls -A . out
  .:
  a
  b
  bad.csv
  m.json
  map.json
  orders.json
  out
  tmp
  v.json
  
  out:
  datapackage.json
  v.csv
! qvejmap: 1 table, 4 rows in out
! qvejmap: v.cut: 2 values cut to 3 bytes, the first in row 1: " ab "
! qvejmap: v.d: 2 values rejected, the first in row 2: "30/02/2024" is not a date or time of the pattern
! qvejmap: v.x: 2 values rejected, the first in row 3: "abc" is not a number
! qvejmap: v.kept: 2 values rejected, the first in row 3: "abc" is not a number
! qvejmap: v.n: 1 value rejected, in row 3: "" is not a number with commas

# Cut are also numbers as text and what informats make; what a column keeps is told once.  In NDJSON
# a value that its column cannot take is null, and a number in a string is a number.
$ printf '[{"a":12345,"b":"stra\303\237e"},{"a":1,"b":"gasse "},{"c":2},{"a":678,"b":"weg"},{"b":"eck"}]' > cut.json
$ printf '{"DATASETS":[{"DSNAME":"c","TABLEPATH":"/root","VARIABLES":[{"NAME":"row","PATH":"/root"},
> {"NAME":"a","TYPE":"CHARACTER","PATH":"/root/a","LENGTH":2,"OPTIONS":["RETAIN"]},
> {"NAME":"b","TYPE":"CHARACTER","PATH":"/root/b","LENGTH":5,"INFORMAT":["upper"],"OPTIONS":["RETAIN"]}]}]}' > cut.map
$ qvejmap read cut.json c --map cut.map --rejects cuts.csv; echo $?; cat cuts.csv
  row,a,b\r
  1,12,STRAS\r
  2,1,GASSE\r
  4,67,WEG\r
  5,67,ECK\r
  1
  table,row,column,path,ordinals,text,reason\r
  c,1,b,/root/b,row=1,straße,cut to 5 bytes\r
  c,1,a,/root/a,row=1,12345,cut to 2 bytes\r
  c,2,b,/root/b,row=2,gasse ,cut to 5 bytes\r
  c,3,a,/root/a,row=4,678,cut to 2 bytes\r
! qvejmap: c.b: 2 values cut to 5 bytes, the first in row 1: "straße"
! qvejmap: c.a: 2 values cut to 2 bytes, the first in row 1: "12345"
$ qvejmap convert cut.json --map cut.map -o cut --threads 1 -q > /dev/null
! qvejmap: c.b: 2 values cut to 5 bytes, the first in row 1: "straße"
! qvejmap: c.a: 2 values cut to 2 bytes, the first in row 1: "12345"
? 1
$ qvejmap read cut.json c --map cut.map --limit 0
  row,a,b\r
$ qvejmap tables cut.json --map cut.map
  c\t3\t/root
! qvejmap: cut.map: values are cut in: c.a (2 of 5 bytes), c.b (5 of 7 bytes)
$ printf '[{"x":"1.10"},{"x":"one"},{"x":"1e400"},{"x":"true"},{}]' > x.json
> printf '{"DATASETS":[{"DSNAME":"x","TABLEPATH":"/root","VARIABLES":[{"NAME":"x","TYPE":"NUMERIC","PATH":"/root/x"},
> {"NAME":"f","TYPE":"NUMERIC","PATH":"/root/x","FORMAT":["fixed",0,1]}]}]}' > x.map
$ qvejmap read x.json x --map x.map --format ndjson
  {"x":1.10,"f":"1.1"}
  {"x":null,"f":null}
  {"x":1e400,"f":"inf"}
  {"x":1,"f":"1.0"}
! qvejmap: x.x: 1 value rejected, in row 2: "one" is not a number
! qvejmap: x.f: 1 value rejected, in row 2: "one" is not a number
? 1

# The map is read first, and a table's name never acts as a path.
$ sed 's/"DSNAME":"v"/"DSNAME":"..\/v"/' map.json > path.json; qvejmap convert v.json --map path.json -o p -q 2> err; ls -A p
  %2E.%2Fv.csv
  datapackage.json
$ qvejmap read nosuch.json v --map bad.csv; qvejmap read - v --map -
! qvejmap: nosuch.json: No such file or directory
! qvejmap: FILE and --map cannot both be standard input (qvejmap --help tells more)
? 2
$ qvejmap map orders.json --map m.json
! qvejmap: --map belongs to tables, map explain, read, convert, report, diagram, check, not to map (qvejmap --help tells more)
? 2

# In another encoding the map stays UTF-8, and so do its places.
$ printf '[{"n\344":"x"}]' > l.json; printf '{"DATASETS":[{"DSNAME":"\303\244","TABLEPATH":"/root","VARIABLES":[{"NAME":"\303\266","TYPE":"CHARACTER","PATH":"/root/n\303\244"}]}]}' > l.map
> qvejmap read l.json 'ä' --map l.map --encoding ISO-8859-1
  ö\r
  x\r
$ sed 's/"CHAR/"ЖCHAR/' l.map > m2; qvejmap tables l.json --map m2 --encoding ISO-8859-1; sed 's/ö/Ж/' l.map > m3; qvejmap tables l.json --map m3 --encoding ISO-8859-1
  ä\t1\t/root
! qvejmap: m2:1:83: "ЖCHARACTER": TYPE must be NUMERIC, CHARACTER or ORDINAL; did you mean CHARACTER? [-16]
!     ...:"ä","TABLEPATH":"/root","VARIABLES":[{"NAME":"ö","TYPE":"ЖCHARACTER","PATH":"/ro...
!                                                                  ^

# Rejects name the row with all its ordinals; what no row takes is none.
$ printf '{"o":[{"i":[{"v":"x"},{"v":1}],"n":"y"},{"i":[{"v":"z"}]}]}' > o.json
> printf '{"DATASETS":[{"DSNAME":"i","TABLEPATH":"/root/o/i","VARIABLES":[{"NAME":"o","PATH":"/root/o"},{"NAME":"i","PATH":"/root/o/i"},{"NAME":"none","PATH":"/root/none"},
> {"NAME":"v","TYPE":"NUMERIC","PATH":"/root/o/i/v"},{"NAME":"n","TYPE":"NUMERIC","PATH":"/root/o/n"}]}]}' > o.map
> qvejmap read o.json i --map o.map --rejects r.csv; cat r.csv
  o,i,none,v,n\r
  1,1,,,\r
  1,2,,1,\r
  2,3,,,\r
  table,row,column,path,ordinals,text,reason\r
  i,1,v,/root/o/i/v,o=1 i=1 none=,x,not a number\r
  i,2,n,/root/o/n,o=1 i=2 none=,y,not a number\r
  i,3,v,/root/o/i/v,o=2 i=3 none=,z,not a number\r
! qvejmap: o.map: a column of a parent, where the order of the document decides which row has the value (--carry takes the row's own parent): i.n
! qvejmap: i.v: 2 values rejected, the first in row 1: "x" is not a number
! qvejmap: i.n: 1 value rejected, in row 2: "y" is not a number
$ qvejmap convert o.json --map o.map -o dir --rejects dir/i.csv; ls -A dir
! qvejmap: o.map: a column of a parent, where the order of the document decides which row has the value (--carry takes the row's own parent): i.n
! qvejmap: --rejects: dir/i.csv is also the file of a table
! ls: cannot access 'dir': No such file or directory
? 2

# A name that the map would cut is refused, as is a negative width.
$ sed 's/"TYPE":"NUMERIC","PATH":"\/root\/o\/n"/&,"FORMAT":["%A, %d %B %Y at %H hours %M minutes"]/' o.map > long.map; qvejmap tables o.json --map long.map
! qvejmap: long.map:2:111: "%A, %d %B %Y at %H hours %M minu": the name or pattern is longer than the 32 bytes that a map keeps
!     ...,{"NAME":"n","TYPE":"NUMERIC","PATH":"/root/o/n","FORMAT":["%A, %d %B %Y at %H hours...
!                                                                    ^
? 4
$ printf '[{"a":"\351\351\351\351"}]' > l1.json; printf '{"DATASETS":[{"DSNAME":"t","TABLEPATH":"/root","VARIABLES":[{"NAME":"a","TYPE":"CHARACTER","PATH":"/root/a","LENGTH":3,"INFORMAT":["trim"]},{"NAME":"b","TYPE":"CHARACTER","PATH":"/root/a","LENGTH":3}]}]}' > l1.map
> qvejmap read l1.json t --map l1.map --encoding ISO-8859-1; sed 's/"trim"/&,-5/' l1.map > neg.map; qvejmap map check neg.map
  a,b\r
  é,é\r
! qvejmap: t.a: 1 value cut to 3 bytes, in row 1: "éééé"
! qvejmap: t.b: 1 value cut to 3 bytes, in row 1: "éééé"
! qvejmap: neg.map:1:133: "trim": the width or the decimals are not usable here
!     ..."TYPE":"CHARACTER","PATH":"/root/a","LENGTH":3,"INFORMAT":["trim",-5]},{"NAME":"b","...
!                                                                    ^
? 4

# Lengths of CHARACTER columns are those of the map, else of the document; what the path never had has none.
$ for column in a/s a/s,4 a/s,6 a/s,5 b/t a/x a/n; do
>     length=${column#*,}; test $length = $column && length= || length=",\"LENGTH\":$length"
>     printf '{"DATASETS":[{"DSNAME":"T","TABLEPATH":"/root/a","VARIABLES":[{"NAME":"c","TYPE":"CHARACTER","PATH":"/root/%s"%s}]}]}' ${column%,*} "$length" > length.map
>     echo '{"a":{"s":"abcde","n":1},"b":[{"t":"xyz"}]}' | qvejmap tables - --columns --map length.map --debug USERMAP 2> notes; grep 'user length\|set to\|cut' notes
> done
  T\tc\tCHARACTER\t5\t/root/a/s
  getAutomapLengths: variable [c] in dataset [a] length set to 5
  T\tc\tCHARACTER\t4\t/root/a/s
  getAutomapLengths: variable [c] in dataset [T] user length 4, automap length 5
  qvejmap: length.map: values are cut in: T.c (4 of 5 bytes)
  T\tc\tCHARACTER\t6\t/root/a/s
  getAutomapLengths: variable [c] in dataset [T] user length 6, automap length 5
  T\tc\tCHARACTER\t5\t/root/a/s
  T\tc\tCHARACTER\t3\t/root/b/t
  getAutomapLengths: variable [c] in dataset [b] length set to 3
  T\tc\tCHARACTER\t0\t/root/a/x
  T\tc\tCHARACTER\t1\t/root/a/n
  getAutomapLengths: variable [c] in dataset [a] length set to 1

# An object beside the path of the table begins the next row, also one whose name begins alike.
$ columns=$(for path in a/x b/x c ab/x; do printf '%s{"NAME":"%s","TYPE":"NUMERIC","PATH":"/root/%s"}' "$comma" $path $path; comma=,; done)
> printf '{"DATASETS":[{"DSNAME":"t","TABLEPATH":"/root/a","VARIABLES":[%s]}]}' "$columns" > beside.map
> echo '[{"a":{"x":1},"b":{"x":2}},{"a":{"x":3},"c":4},{"a":{"x":5},"ab":{"x":6}},{"a":{"x":7}}]' | qvejmap read - t --map beside.map
  a/x,b/x,c,ab/x\r
  1,,,\r
  3,2,4,\r
  5,,,\r
  7,,,6\r
! qvejmap: beside.map: columns of a parent, where the order of the document decides which row has the value (--carry takes the row's own parent): t.b/x, t.c, t.ab/x
