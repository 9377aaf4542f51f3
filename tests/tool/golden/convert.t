$ qvejmap convert orders.json -o out; ls -A out; cat out/orders.csv
  datapackage.json
  orders.csv
  orders_customer.csv
  orders_items.csv
  orders_tags.csv
  ordinal_root,ordinal_orders,id,paid\r
  1,1,1001,true\r
  1,2,1002,false\r
! qvejmap: 4 tables, 9 rows in out

# Existing files are refused, and then nothing changes.
$ echo kept > out/orders_items.csv; rm out/orders_tags.csv; qvejmap convert orders.json -o out
! qvejmap: out/orders.csv: the file exists (--force replaces it)
? 5
$ ls -A out; cat out/orders_items.csv
  datapackage.json
  orders.csv
  orders_customer.csv
  orders_items.csv
  kept
$ qvejmap convert orders.json -o out --force -q; ls -A out; head -1 out/orders_items.csv
  datapackage.json
  orders.csv
  orders_customer.csv
  orders_items.csv
  orders_tags.csv
  ordinal_root,ordinal_orders,ordinal_items,sku,quantity,price\r

$ qvejmap convert orders.json -o nd --format ndjson --alldata; ls -A nd; head -2 nd/ALLDATA.ndjson
  ALLDATA.ndjson
  datapackage.json
  orders.ndjson
  orders_customer.ndjson
  orders_items.ndjson
  orders_tags.ndjson
  {"P":1,"P1":"orders","V":0}
  {"P":2,"P1":"orders","P2":"id","V":1,"Value":"1001"}
! qvejmap: 5 tables, 38 rows in nd

# Missing folders are made, all of them.
$ qvejmap convert orders.json -o a/b//c/ -q; ls -A a/b/c
  datapackage.json
  orders.csv
  orders_customer.csv
  orders_items.csv
  orders_tags.csv
$ qvejmap convert orders.json -o orders.json
! qvejmap: orders.json: not a directory
? 5
$ qvejmap convert orders.json -o orders.json/sub
! qvejmap: orders.json: not a directory
? 5
$ qvejmap convert orders.json -o /proc/none
! qvejmap: /proc/none: No such file or directory
? 5

# A broken document leaves no trace.
$ printf '{"a":[1,2' | qvejmap convert - -o broken
! qvejmap: <stdin>:1:10: the document ends before a complete object or array
!     {"a":[1,2
!              ^
? 3
$ ls -d broken
! ls: cannot access 'broken': No such file or directory
? 2

# Names that are the same but for their case, that are shared, and that are empty.
$ printf '{"o":{"a":1},"x":{"o":{"b":2}},"O":{"c":3},"o2":{"d":4},"AllData":{"e":5},"":{"f":6}}' > names.json
$ qvejmap convert names.json -o names --alldata; ls -A names
  ALLDATA~2.csv
  AllData.csv
  O2.csv
  _.csv
  datapackage.json
  o.csv
  o2~2.csv
  x_o.csv
! qvejmap: 7 tables, 19 rows in names
! qvejmap: more than one table is named o2: read opens the first, and any by its path; the table AllData hides ALLDATA (--alldata-name gives that another name)
! qvejmap: names.json: in ALLDATA labels are cut at wrong places: the document has member names that are empty or of 256 bytes and more
$ qvejmap read names.json o2; cat 'names/o2~2.csv'
  ordinal_root,ordinal_O,c\r
  1,1,3\r
  ordinal_root,ordinal_o2,d\r
  1,1,4\r
$ qvejmap tables names.json --alldata-name '' --names
  o
  x_o
  O2
  o2
  AllData
  
! qvejmap: more than one table is named o2: read opens the first, and any by its path; the table "" hides ALLDATA (--alldata-name gives that another name)

# A name never acts as a path.
$ qvejmap convert orders.json -o odd --alldata --alldata-name '../a b.c~é/' -q; ls -A odd | head -1
  %2E.%2Fa%20b.c%7E%C3%A9%2F.csv
$ qvejmap convert orders.json -o dot --alldata --alldata-name '' -q; ls -A dot | head -1
  ALLDATA.csv
$ ls -A
  a
  dot
  names
  names.json
  nd
  odd
  orders.json
  out
  tmp

$ names='o2 O2 o2 _ .. .h é / a~2 x&y a.b-c_d'
> for name in $names; do printf ',{"DSNAME":"%s","TABLEPATH":"/root/orders","VARIABLES":[{"NAME":"id","PATH":"/root/orders"}]}' $name; done | sed '1s/,/{"DATASETS":[/;s/$/]}/' > odd.map
> qvejmap convert orders.json --map odd.map -o all -q; ls -A all
  %2E..csv
  %2Eh.csv
  %2F.csv
  %C3%A9.csv
  O2~2.csv
  _.csv
  a%7E2.csv
  a.b-c_d.csv
  datapackage.json
  o2.csv
  o2~3.csv
  x%26y.csv

# A directory of a file's name stays, even with --force.
$ mkdir -p way/orders_tags.csv; qvejmap convert orders.json -o way --force
! qvejmap: way/orders_tags.csv: not a regular file, not replaced
? 5
$ ls -A way
  orders_tags.csv

# What the tables do not show is told.
$ printf '[12345678901234567890,{"k":9007199254740993,"m":-9007199254740993}]' | qvejmap convert - -o loss
! qvejmap: 1 table, 1 row in loss
! qvejmap: <stdin>: 1 value strayed into a row that may be another parent's (qvejmap check --account tells which)
? 1
$ cat loss/root.csv
  ordinal_root,element1,k,m\r
  1,12345678901234567890,9007199254740993,-9007199254740993\r
$ printf '{"":1,"b":2,"a":[1,{"b":[2]}]}' | qvejmap convert - -o few -q --alldata --alldata-name Everything
! qvejmap: <stdin>: in Everything labels are cut at wrong places: the document has member names that are empty or of 256 bytes and more
! qvejmap: <stdin>: tables "", a_b have no rows; their values are only in Everything
$ printf '[1,2]' | qvejmap convert - -o one -q
! qvejmap: <stdin>: table root has no rows; its values are only in ALLDATA
! qvejmap: <stdin>: 2 values are in no cell (qvejmap check --account tells which)
$ printf '{"e":{}}' | qvejmap convert - -o none --alldata
! qvejmap: 2 tables, 2 rows in none
$ printf '[]' | qvejmap convert - -o nothing --alldata
! qvejmap: 2 tables, 0 rows in nothing

# Values that are overwritten or stray make the exit code 1; what has no row or no column does not.
$ for text in '{"abcd":[1],"kkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkk":[10,20,30]}' '{"a":1,"a":2}' '["x",{"a":1}]' '{"a":[1,{"b":[2]}]}' '{"":1,"a":[2]}'; do
>     echo "$text" | qvejmap convert - -o codes -q --force; echo $?
>     echo "$text" | qvejmap convert - -o codes -q --force --alldata --alldata-name A 2> /dev/null; echo $?
> done
  1
  1
  1
  1
  1
  1
  0
  0
  0
  0
! qvejmap: <stdin>: 2 values are in no cell, 2 overwritten (qvejmap check --account tells which)
! qvejmap: <stdin>: 1 value is in no cell, 1 overwritten (qvejmap check --account tells which)
! qvejmap: <stdin>: 1 value strayed into a row that may be another parent's (qvejmap check --account tells which)
! qvejmap: <stdin>: table a_b has no rows; its values are only in ALLDATA
! qvejmap: <stdin>: 1 value is in no cell (qvejmap check --account tells which)
! qvejmap: <stdin>: table "" has no rows; its values are only in ALLDATA
! qvejmap: <stdin>: 1 value is in no cell (qvejmap check --account tells which)
$ ids='{"DSNAME":"i","TABLEPATH":"/root/i","VARIABLES":[{"NAME":"n","TYPE":"NUMERIC","PATH":"/root/%s"}]}'; for path in i/n n; do
>     printf '{"DATASETS":[%s]}' "$(printf "$ids" $path)" > n.map; echo '[{"n":1},{"n":2,"i":[{"n":3,"n":4}]}]' | qvejmap convert - --map n.map -o codes -q --force; echo $?
> done
  1
  0
! qvejmap: <stdin>: 1 value is in no cell, 1 overwritten (qvejmap check --account tells which)
! qvejmap: <stdin>: 1 value is in no cell (qvejmap check --account tells which)

# A full disk; here a file may have 1 KiB at most.
$ trap '' XFSZ; ulimit -f 1; printf '{"b":1,"a":[%s]}' $(seq -s, 999) | qvejmap convert - -o full
! qvejmap: full/a.csv: File too large
? 5
$ ls -d full
! ls: cannot access 'full': No such file or directory
? 2
$ test -w /dev/full && qvejmap read orders.json orders > /dev/full
! qvejmap: <stdout>: No space left on device
? 5

# What can be refused before the document is read is: a folder that is none, a list that cannot be.
$ qvejmap convert none.json -o names.json; qvejmap convert none.json -o new --rejects no/list.csv
! qvejmap: names.json: not a directory
! qvejmap: no: No such file or directory
? 5
$ qvejmap convert none.json -o new --rejects names.json; qvejmap read none.json t --rejects no/list.csv; ls -d new
! qvejmap: names.json: the file exists (--force replaces it)
! qvejmap: no: No such file or directory
! ls: cannot access 'new': No such file or directory
? 2
$ qvejmap convert none.json -o -; echo $?; ls -d ./-
  2
! qvejmap: -o -: convert writes files (./- for one of that name); qvejmap read prints a table
! ls: cannot access './-': No such file or directory
? 2
# The list may be in a folder that is made.
$ qvejmap convert orders.json -o ./p/q/ --rejects p/./list.csv -q; ls -A p
  list.csv
  q
# A list that cannot be finished takes the tables with it.
$ printf '{"DATASETS":[{"DSNAME":"t","TABLEPATH":"/root","VARIABLES":[{"NAME":"a","TYPE":"NUMERIC","PATH":"/root/a"}]}]}' > a.map
> printf '[%s]' "$(seq -s, -f '{"a":"no number %g"}' 90)" > bad.json
> trap '' XFSZ; ulimit -f 1; qvejmap convert bad.json --map a.map -o lost --rejects list.csv
! qvejmap: list.csv: File too large
? 5
$ ls -d lost list.csv
! ls: cannot access 'lost': No such file or directory
! ls: cannot access 'list.csv': No such file or directory
? 2

# What NDJSON shows as two members of one name.
$ printf '{"DATASETS":[{"DSNAME":"t","TABLEPATH":"/root","VARIABLES":[%s]}]}' "$(for name in x A a A A; do printf '%s{"NAME":"%s","TYPE":"CHARACTER","PATH":"/root/a"}' "$comma" $name; comma=,; done)" > twins.map
> echo '[{"a":1}]' > twins.json; qvejmap map check twins.map; qvejmap read twins.json t --map twins.map --format ndjson; qvejmap read twins.json t --map twins.map
  twins.map: well formed, tables: 1, columns: 5
  shared name: t.A (/root/a): an earlier column has it, NDJSON objects have both members
  {"x":"1","A":"1","a":"1","A":"1","A":"1"}
  x,A,a,A,A\r
  1,1,1,1,1\r
! qvejmap: twins.map: columns share a name, so objects have it more than once, and most programs keep the last: t.A
! qvejmap: twins.map: columns share a name, so the header has it more than once: t.A
$ qvejmap convert twins.json --map twins.map -o twins -q; qvejmap convert twins.json --map twins.map -o twins -q --format ndjson --force
! qvejmap: twins.map: columns share a name, so the header has it more than once: t.A
! qvejmap: twins.map: columns share a name, so objects have it more than once, and most programs keep the last: t.A
