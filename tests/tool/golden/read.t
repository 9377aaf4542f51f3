# CSV: a header, lines that end with CR LF, missing is empty, whole numbers without a point.
$ for table in orders orders_customer orders_items orders_tags; do qvejmap read orders.json $table; done
  ordinal_root,ordinal_orders,id,paid\r
  1,1,1001,true\r
  1,2,1002,false\r
  ordinal_root,ordinal_orders,ordinal_customer,name,city\r
  1,1,1,Ada Berg,Oslo\r
  1,2,2,Li Wei,\r
  ordinal_root,ordinal_orders,ordinal_items,sku,quantity,price\r
  1,1,1,lamp,2,19.5\r
  1,1,2,desk,1,240\r
  1,2,3,chair,4,85.25\r
  ordinal_root,ordinal_orders,ordinal_tags,tags1,tags2\r
  1,1,1,gift,fragile\r
  1,2,2,pickup,\r

# NDJSON: null is null, an empty text "", and what is not there is left out.
$ printf '[{"s":"x","n":1},{"s":null,"n":null},{"s":"","n":true},{"n":2},{}]' | qvejmap read - root --format ndjson
  {"ordinal_root":1,"s":"x","n":1}
  {"ordinal_root":2,"s":null,"n":null}
  {"ordinal_root":3,"s":"","n":1}
  {"ordinal_root":4,"n":2}
$ printf '{"r":[{"a":1},{"b":2},{"b":null}]}' | qvejmap read - r --ordinals 0 --format ndjson
  {"a":1}
  {"b":2}
  {"b":null}

# Booleans: where a column has no other values, the words; beside numbers 1 and 0; beside texts the words, as texts.
$ printf '[{"b":true,"n":1,"t":"x","z":null},{"b":false,"n":true,"t":false},{"b":null,"n":false,"t":null},{}]' > booleans.json
$ qvejmap read booleans.json root; qvejmap read booleans.json root --format ndjson; qvejmap read booleans.json root --null true
  ordinal_root,b,n,t,z\r
  1,true,1,x,\r
  2,false,1,false,\r
  3,,0,,\r
  {"ordinal_root":1,"b":true,"n":1,"t":"x","z":null}
  {"ordinal_root":2,"b":false,"n":1,"t":"false"}
  {"ordinal_root":3,"b":null,"n":0,"t":null}
  ordinal_root,b,n,t,z\r
  1,"true",1,x,true\r
  2,false,1,false,true\r
  3,true,0,true,true\r

# With a map of one's own the type decides: NUMERIC has 1 and 0, CHARACTER the words.
$ qvejmap map booleans.json --compact > booleans.map; qvejmap read booleans.json root --map booleans.map
  ordinal_root,b,n,t,z\r
  1,1,1,x,\r
  2,0,1,false,\r
  3,,0,,\r
$ sed 's/"b","TYPE":"NUMERIC"/"b","TYPE":"CHARACTER"/' booleans.map | qvejmap read booleans.json root --map - --format ndjson
  {"ordinal_root":1,"b":"true","n":1,"t":"x","z":null}
  {"ordinal_root":2,"b":"false","n":1,"t":"false"}
  {"ordinal_root":3,"b":null,"n":0,"t":null}

# Columns of one name, which even the automatic map can have.
$ echo '{"a1":{"a":{"a":{"x":1}}}}' > twins.json; qvejmap read twins.json a_a; qvejmap read twins.json a_a --format ndjson -q
  ordinal_root,ordinal_a1,ordinal_a,ordinal_a1,x\r
  1,1,1,1,1\r
  {"ordinal_root":1,"ordinal_a1":1,"ordinal_a":1,"ordinal_a1":1,"x":1}
! qvejmap: twins.json: columns share a name, so the header has it more than once: a_a.ordinal_a1
! qvejmap: twins.json: columns share a name, so objects have it more than once, and most programs keep the last: a_a.ordinal_a1

# CSV has --null for that.  What looks the same is quoted.
$ printf '[{"s":"x","n":1},{"s":null,"n":null},{"s":"","n":-0},{"s":"NULL","n":true},{"n":0}]' > null.json
$ for null in NULL '' 0 1 '\N'; do qvejmap read null.json root --null "$null"; done
  ordinal_root,s,n\r
  1,x,1\r
  2,NULL,NULL\r
  3,,-0\r
  4,"NULL",1\r
  5,NULL,0\r
  ordinal_root,s,n\r
  1,x,1\r
  2,,\r
  3,"",-0\r
  4,NULL,1\r
  5,,0\r
  ordinal_root,s,n\r
  1,x,1\r
  2,0,0\r
  3,,-0\r
  4,NULL,1\r
  5,0,"0"\r
  ordinal_root,s,n\r
  "1",x,"1"\r
  2,1,1\r
  3,,-0\r
  4,NULL,"1"\r
  5,1,0\r
  ordinal_root,s,n\r
  1,x,1\r
  2,\\N,\\N\r
  3,,-0\r
  4,NULL,1\r
  5,\\N,0\r
$ printf '{"r":[{"a":"x"},{"a":null},{"a":""},{"a":"?"}]}' > one.json
$ qvejmap read one.json r --ordinals 0 --null ''; qvejmap read one.json r --ordinals 0 --null '?'
  a\r
  x\r
  \r
  ""\r
  ?\r
  a\r
  x\r
  ?\r
  ""\r
  "?"\r
$ qvejmap read one.json r --null 'a,b'
! qvejmap: --null: 'a,b' has a comma, a quote or a character that cannot be shown (qvejmap --help tells more)
? 2
$ qvejmap read one.json r --null "$(printf 'a\nb')"
! qvejmap: --null: 'a\nb' has a comma, a quote or a character that cannot be shown (qvejmap --help tells more)
? 2
$ qvejmap read one.json r --null NULL --format ndjson
! qvejmap: --null: ndjson has a null of its own (qvejmap --help tells more)
? 2

# Names in any case; ALLDATA by its exact name.
$ qvejmap read orders.json ORDERS --limit 1
  ordinal_root,ordinal_orders,id,paid\r
  1,1,1001,true\r
$ qvejmap read orders.json ALLDATA --limit 4
  P,P1,P2,P3,V,Value\r
  1,orders,,,0,\r
  2,orders,id,,1,1001\r
  2,orders,customer,,0,\r
  3,orders,customer,name,1,Ada Berg\r
$ qvejmap read orders.json alldata
! qvejmap: no table named alldata; did you mean ALLDATA?
? 4
$ qvejmap read orders.json every --alldata-name every --limit 1
  P,P1,P2,P3,V,Value\r
  1,orders,,,0,\r
$ qvejmap read orders.json ALLDATA --alldata-name every
! qvejmap: no table named ALLDATA (qvejmap tables lists them)
? 4
$ qvejmap read orders.json '' --alldata-name '' --limit 1
  P,P1,P2,P3,V,Value\r
  1,orders,,,0,\r
$ qvejmap read orders.json ordres
! qvejmap: no table named ordres; did you mean orders?
? 4
$ qvejmap read orders.json item
! qvejmap: no table named item; did you mean orders_items?
? 4
$ qvejmap read orders.json order
! qvejmap: no table named order; did you mean orders, orders_tags, orders_items?
? 4
$ qvejmap read orders.json nothing_like_it
! qvejmap: no table named nothing_like_it (qvejmap tables lists them)
? 4
$ qvejmap read orders.json ''
! qvejmap: no table named "" (qvejmap tables lists them)
? 4

$ qvejmap read orders.json orders --limit 0
  ordinal_root,ordinal_orders,id,paid\r

# Every word may stand anywhere; a table may be named like a verb.
$ qvejmap --limit 1 orders.json --format csv read orders
  ordinal_root,ordinal_orders,id,paid\r
  1,1,1001,true\r
$ printf '{"records":{"map":1}}' | qvejmap read - records
  ordinal_root,ordinal_records,map\r
  1,1,1\r

# Fields that need quotes, and those that do not; blanks stay.
$ printf '{"a":"x,y","b":"say \\"hi\\"","c":"two\\nlines","d":" kept  ","e":"tab\\there","f":"\\r","g":"","h":"é"}' > quotes.json
$ qvejmap read quotes.json root
  ordinal_root,a,b,c,d,e,f,g,h\r
  1,"x,y","say ""hi""","two
  lines", kept  ,tab\there,"\r",,é\r
$ qvejmap read quotes.json root --format ndjson
  {"ordinal_root":1,"a":"x,y","b":"say \\"hi\\"","c":"two\\nlines","d":" kept  ","e":"tab\\there","f":"\\r","g":"","h":"é"}

# In a table of one column an empty field is written "", or the line would be empty.
$ printf '{"r":[{"a":"x"},{"a":""}]}' | qvejmap read - r --ordinals 0
  a\r
  x\r
  ""\r
$ printf '{"r":[{"a":1},{"a":null}]}' | qvejmap read - r --ordinals 0
  a\r
  1\r
  ""\r

# Numbers: as the document has them.
$ printf '{"r":[0,-0,-0.0,1.0,1e2,0.1,1e-7,9007199254740992,1e30,-1.5e300,5e-324,1e400,-1e400,1.10,1E+05,12345678901234567890]}' > numbers.json
$ qvejmap read numbers.json r --ordinals 0
  r1,r2,r3,r4,r5,r6,r7,r8,r9,r10,r11,r12,r13,r14,r15,r16\r
  0,-0,-0.0,1.0,1e2,0.1,1e-7,9007199254740992,1e30,-1.5e300,5e-324,1e400,-1e400,1.10,1E+05,12345678901234567890\r
$ qvejmap read numbers.json r --ordinals 0 --format ndjson
  {"r1":0,"r2":-0,"r3":-0.0,"r4":1.0,"r5":1e2,"r6":0.1,"r7":1e-7,"r8":9007199254740992,"r9":1e30,"r10":-1.5e300,"r11":5e-324,"r12":1e400,"r13":-1e400,"r14":1.10,"r15":1E+05,"r16":12345678901234567890}

# Digits that a row does not show are told: where a format or an informat makes the number.
$ printf '[{"id":9007199254740993,"n":9007199254740992,"s":"9007199254740993"},{"id":1}]' > ids.json
$ printf '{"DATASETS":[{"DSNAME":"t","TABLEPATH":"/root","VARIABLES":[
> {"NAME":"plain","TYPE":"NUMERIC","PATH":"/root/id"},{"NAME":"f","TYPE":"NUMERIC","PATH":"/root/id","FORMAT":["comma"]},
> {"NAME":"i","TYPE":"NUMERIC","PATH":"/root/id","INFORMAT":["number"]},{"NAME":"c","TYPE":"CHARACTER","PATH":"/root/id","INFORMAT":["trim"]},
> {"NAME":"n","TYPE":"NUMERIC","PATH":"/root/n","FORMAT":["comma"]}]}]}' > ids.map
$ qvejmap read ids.json root; qvejmap read ids.json t --map ids.map; qvejmap tables ids.json --map ids.map
  ordinal_root,id,n,s\r
  1,9007199254740993,9007199254740992,9007199254740993\r
  2,1,,\r
  plain,f,i,c,n\r
  9007199254740993,"9,007,199,254,740,992",9007199254740992,9007199254740993,"9,007,199,254,740,992"\r
  1,1,1,1,\r
  t\t5\t/root
! qvejmap: ids.json:1:8: t.f has 1 number that a double does not keep, here
! qvejmap: ids.json:1:8: t.i has 1 number that a double does not keep, here
! qvejmap: ids.json:1:8: t.plain has 1 number that a double does not keep, here
! qvejmap: ids.json:1:8: t.f has 1 number that a double does not keep, here
! qvejmap: ids.json:1:8: t.i has 1 number that a double does not keep, here
$ qvejmap convert ids.json --map ids.map -o ids -q
! qvejmap: ids.json:1:8: t.f has 1 number that a double does not keep, here
! qvejmap: ids.json:1:8: t.i has 1 number that a double does not keep, here

# --retain keeps what a row does not set.
$ printf '{"r":[{"a":1,"b":"x"},{"a":2}]}' | qvejmap read - r --retain
  ordinal_root,ordinal_r,a,b\r
  1,1,1,x\r
  1,2,2,x\r

# Scalars directly in the outermost array make a table without rows.
$ echo '[1,2]' | qvejmap read - root
  ordinal_root,element1,element2\r
! qvejmap: <stdin>: table root has no rows; its values are only in ALLDATA
$ echo '[1,2]' | qvejmap read - root --limit 0
  ordinal_root,element1,element2\r
$ echo '[1,2]' | qvejmap read - ALLDATA
  P,P1,V,Value\r
  1,element1,1,1\r
  1,element2,1,2\r
$ echo '{"":1}' | qvejmap read - ''
  root\r
! qvejmap: <stdin>: table "" has no rows; its values are only in ALLDATA

# A table without values is no loss, nor is ALLDATA without rows.
$ echo '{}' | qvejmap read - root
  ordinal_root\r
$ echo '{}' | qvejmap read - ALLDATA
  P,P1,V,Value\r

# A value of more than 32767 bytes is cut, in whole characters, and that is told.
$ { printf '{"a":"'; head -c 32766 /dev/zero | tr '\0' x; printf 'éé"}'; } > long.json
$ qvejmap read long.json root --ordinals 0 | tail -1 | wc -c
  32768
! qvejmap: root.a: 1 value cut to 32767 bytes, in row 1: "xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx..."
$ qvejmap read long.json root --ordinals 0 --format ndjson | tail -c 8
  xxxxx"}
! qvejmap: root.a: 1 value cut to 32767 bytes, in row 1: "xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx..."
$ qvejmap read long.json root --ordinals 0 --rejects cut.csv > /dev/null
! qvejmap: root.a: 1 value cut to 32767 bytes, in row 1: "xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx..."
? 1
$ cut -d, -f 1-5 cut.csv; tail -c 40 cut.csv
  table,row,column,path,ordinals
  root,1,a,/root/a,
  xxxxxxxxxxxxxxxxxxx,cut to 32767 bytes\r
$ qvejmap read long.json ALLDATA > /dev/null
! qvejmap: ALLDATA.Value: 1 value cut to 32767 bytes, in row 1: "xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx..."
? 1
$ qvejmap records long.json | tail -c 4
  xxx
! qvejmap: long.json: 1 value cut to 32767 bytes, in line 1

# A value of just as many bytes is whole, also among such that are cut; so is a number.
$ text() { head -c $1 /dev/zero | tr '\0' $2; }
> printf '{"s":["%s","%s","%s","%s"],"n":%s}' $(text 32767 s) $(text 32768 s) $(text 32767 s) \
>     $(text 32768 s) $(text 32767 1) > just.json
$ qvejmap read just.json s > /dev/null
! qvejmap: s.s2: 1 value cut to 32767 bytes, in row 1: "ssssssssssssssssssssssssssssssssssssssss..."
! qvejmap: s.s4: 1 value cut to 32767 bytes, in row 1: "ssssssssssssssssssssssssssssssssssssssss..."
? 1
$ qvejmap read just.json ALLDATA --retain > /dev/null
! qvejmap: ALLDATA.Value: 2 values cut to 32767 bytes, the first in row 3: "ssssssssssssssssssssssssssssssssssssssss..."
? 1
$ qvejmap convert just.json -o just --alldata --rejects just.csv -q; cut -d, -f 1-5 just.csv
  table,row,column,path,ordinals
  ALLDATA,3,Value,,
  ALLDATA,5,Value,,
  s,1,s2,/root/s/s2,ordinal_root=1 ordinal_s=1
  s,1,s4,/root/s/s4,ordinal_root=1 ordinal_s=1
! qvejmap: ALLDATA.Value: 2 values cut to 32767 bytes, the first in row 3: "ssssssssssssssssssssssssssssssssssssssss..."
! qvejmap: s.s2: 1 value cut to 32767 bytes, in row 1: "ssssssssssssssssssssssssssssssssssssssss..."
! qvejmap: s.s4: 1 value cut to 32767 bytes, in row 1: "ssssssssssssssssssssssssssssssssssssssss..."
$ printf '{"DATASETS":[{"DSNAME":"t","TABLEPATH":"/root/s","VARIABLES":[
> {"NAME":"whole","TYPE":"CHARACTER","PATH":"/root/s/s1","INFORMAT":["upper"]},
> {"NAME":"cut","TYPE":"CHARACTER","PATH":"/root/s/s2","INFORMAT":["upper"]}]}]}' > just.map
$ qvejmap read just.json t --map just.map | tail -1 | wc -c
  65537
! qvejmap: t.cut: 1 value cut to 32767 bytes, in row 1: "ssssssssssssssssssssssssssssssssssssssss..."
$ printf '[{"a":"x"},{"a":%040000d}]' 1 | tr 0 1 | qvejmap tables - --columns --ordinals 1
  root\tordinal_root\tORDINAL\t8\t/root
  root\ta\tCHARACTER\t32767\t/root/a

# A label of more than 255 bytes is cut short in ALLDATA; what comes out is still UTF-8.
$ printf '{"x%sy":1}' "$(printf 'é%.0s' $(seq 128))" | qvejmap read - ALLDATA
  P,P1,V,Value\r
  1,x,1,1\r
! qvejmap: <stdin>: in ALLDATA labels are cut at wrong places: the document has member names that are empty or of 256 bytes and more
$ printf '[{"a":"日本"},{"a":"x"}]' | qvejmap read - ALLDATA --retain
  P,P1,V,Value\r
  1,a,1,日本\r
  1,a,1,x��本\r

# A table of the document that hides ALLDATA.
$ printf '{"AllData":{"e":5},"x":1}' > hides.json; qvejmap read hides.json ALLDATA; qvejmap read hides.json root; qvejmap read hides.json ALLDATA -q
  ordinal_root,ordinal_AllData,e\r
  1,1,5\r
  ordinal_root,x\r
  1,1\r
  ordinal_root,ordinal_AllData,e\r
  1,1,5\r
! qvejmap: the table AllData hides ALLDATA (--alldata-name gives that another name)

# Values that other rows have, or none.
$ echo '{"o":[{"id":1,"m":["SUB",{"t":["x","y"]}]},{"id":2,"id":3,"m":[{"t":["z"]}]}]}' > stray.json
> for table in m_t o o_m; do qvejmap read stray.json $table; echo $?; done; qvejmap read stray.json o --limit 1
  ordinal_root,ordinal_o,ordinal_m,ordinal_t,t2,t3,t1\r
  1,2,3,1,x,y,z\r
  1
  ordinal_root,ordinal_o,id\r
  1,1,1\r
  1,2,3\r
  1
  ordinal_root,ordinal_o,ordinal_m,m1\r
  1,1,1,SUB\r
  1,1,2,\r
  0
  ordinal_root,ordinal_o,id\r
  1,1,1\r
! qvejmap: stray.json: table m_t: 2 values strayed into rows that may be another parent's (qvejmap check --account tells which)
! qvejmap: stray.json: table o: 1 value is overwritten by a later one (qvejmap check --account tells which)
