# A well-formed map, alone and with its document.
$ qvejmap map orders.json -o m.json; qvejmap map check m.json; qvejmap map check m.json orders.json
  m.json: well formed, tables: 4, columns: 20
  m.json: well formed, tables: 4, columns: 20
$ qvejmap map check m.json -q; qvejmap map check
! qvejmap: map check: MAP is missing (qvejmap --help tells more)
? 2
$ qvejmap map check nosuch.json
! qvejmap: nosuch.json: No such file or directory
? 5

# Each mistake is named with its place, the nearest right word, and the engine's code.
$ try() { printf '%s' "$1" | qvejmap map check - > out || printf '%s ' $?; cat out; }
> column() { try '{"DATASETS":[{"DSNAME":"a","TABLEPATH":"/root","VARIABLES":[{'"$1"'}]}]}'; }
> for map in '[]' '' '{"DATASET":[]}' '{"DATASETS":[]}' '{"DATASETS":[{"DSNAMES":"a"}]}' \
>   '{"DATASETS":{}}' '{"DATASETS":[1]}' '{"DATASETS":[{"DSNAME":null}]}' \
>   '{"DATASETS":[{"TABLEPATH":"/root"}]}' '{"DATASETS":[{"DSNAME":"a"}]}' \
>   '{"DATASETS":[{"DSNAME":"a","TABLEPATH":"/root"}],"x":1}' '{"DATASETS":[{"DSNAME":"a"'
> do try "$map"; done
> for map in '"LENGHT":1' '"TYPE":"NUMERC"' '"LENGTH":1.5' '"LENGTH":123456789012345678901' \
>   '"FORMAT":["fixed",1,2,3]' '"OPTIONS":["RETIAN"]' '"TYPE":"NUMERIC","INFORMAT":["dat"]' \
>   '"TYPE":"CHARACTER","FORMAT":["fixed"]' '"TYPE":"NUMERIC","INFORMAT":["%d.%m"]' '"NAME":"a",'
> do column "$map"; done
  4 4 4 4 4 4 4 4 4 4 4 4 4 4 4 4 4 4 4 4 4 4 \c
! qvejmap: <stdin>:1:1: '{' was expected: a map, each of its tables and each column is an object [-19]
!     []
!     ^
! qvejmap: <stdin>:1:1: the map ends too soon [-12]
! qvejmap: <stdin>:1:3: "DATASET": a map is an object whose one member is DATASETS; did you mean DATASETS? [-13]
!     {"DATASET":[]}
!       ^
! qvejmap: <stdin>:1:14: DATASETS is empty: a map must have at least one table [-24]
!     {"DATASETS":[]}
!                  ^
! qvejmap: <stdin>:1:16: "DSNAMES": unknown key in a table: it has DSNAME, TABLEPATH and VARIABLES; did you mean DSNAME? [-14]
!     {"DATASETS":[{"DSNAMES":"a"}]}
!                    ^
! qvejmap: <stdin>:1:13: '[' was expected: DATASETS, VARIABLES, FORMAT, INFORMAT and OPTIONS are arrays [-17]
!     {"DATASETS":{}}
!                 ^
! qvejmap: <stdin>:1:14: '{' was expected: a map, each of its tables and each column is an object [-19]
!     {"DATASETS":[1]}
!                  ^
! qvejmap: <stdin>:1:27: a text in double quotes was expected [-21]
!     {"DATASETS":[{"DSNAME":null}]}
!                               ^
! qvejmap: <stdin>:1:34: the table has no name: its DSNAME must be there and not be empty [-25]
!     {"DATASETS":[{"TABLEPATH":"/root"}]}
!                                      ^
! qvejmap: <stdin>:1:27: the table has no TABLEPATH, which says where its rows are [-26]
!     {"DATASETS":[{"DSNAME":"a"}]}
!                               ^
! qvejmap: <stdin>:1:51: '}' was expected: nothing may follow DATASETS in a map [-20]
!     {"DATASETS":[{"DSNAME":"a","TABLEPATH":"/root"}],"x":1}
!                                                       ^
! qvejmap: <stdin>:1:27: the map ends too soon [-12]
!     {"DATASETS":[{"DSNAME":"a"
!                               ^
! qvejmap: <stdin>:1:63: "LENGHT": unknown key in a column: it has NAME, TYPE, PATH, LENGTH, CURRENT_LENGTH, FORMAT, INFORMAT, LABEL and OPTIONS; did you mean LENGTH? [-15]
!     ...DATASETS":[{"DSNAME":"a","TABLEPATH":"/root","VARIABLES":[{"LENGHT":1}]}]}
!                                                                    ^
! qvejmap: <stdin>:1:70: "NUMERC": TYPE must be NUMERIC, CHARACTER or ORDINAL; did you mean NUMERIC? [-16]
!     ...S":[{"DSNAME":"a","TABLEPATH":"/root","VARIABLES":[{"TYPE":"NUMERC"}]}]}
!                                                                    ^
! qvejmap: <stdin>:1:71: an integer was expected: a number without fraction and exponent [-22]
!     ...":[{"DSNAME":"a","TABLEPATH":"/root","VARIABLES":[{"LENGTH":1.5}]}]}
!                                                                    ^
! qvejmap: <stdin>:1:92: the integer is outside of 64 bits [-11]
!     ...LEPATH":"/root","VARIABLES":[{"LENGTH":123456789012345678901}]}]}
!                                                                    ^
! qvejmap: <stdin>:1:84: ']' was expected: FORMAT and INFORMAT have at most name, width and decimals [-18]
!     ..."a","TABLEPATH":"/root","VARIABLES":[{"FORMAT":["fixed",1,2,3]}]}]}
!                                                                    ^
! qvejmap: <stdin>:1:74: "RETIAN": an option must be RETAIN or NORETAIN; did you mean RETAIN? [-23]
!     ...{"DSNAME":"a","TABLEPATH":"/root","VARIABLES":[{"OPTIONS":["RETIAN"]}]}]}
!                                                                    ^
! qvejmap: <stdin>:1:92: "dat": no format or informat of that name; did you mean date, datetime?
!     ...LEPATH":"/root","VARIABLES":[{"TYPE":"NUMERIC","INFORMAT":["dat"]}]}]}
!                                                                    ^
! qvejmap: <stdin>:1:92: "fixed": the format or informat is not for columns of this type
!     ...LEPATH":"/root","VARIABLES":[{"TYPE":"CHARACTER","FORMAT":["fixed"]}]}]}
!                                                                    ^
! qvejmap: <stdin>:1:92: "%d.%m": the pattern has an unknown letter or lacks a part
!     ...LEPATH":"/root","VARIABLES":[{"TYPE":"NUMERIC","INFORMAT":["%d.%m"]}]}]}
!                                                                    ^
! qvejmap: <stdin>:1:73: a member name in double quotes was expected [-11]
!     ...[{"DSNAME":"a","TABLEPATH":"/root","VARIABLES":[{"NAME":"a",}]}]}
!                                                                    ^

# What is well formed and odd.
$ printf '\357\273\277{"datasets":[{"dsname":"t","tablepath":"/root/orders"},{"dsname":"t","tablepath":"/none",
> "variables":[{"name":"o","path":"/root","options":["noretain"],"informat":["comma"]},
>   {"name":"id","type":"numeric","path":"/root/orders/id"},
>   {"name":"name\\ufffd","type":"character","path":"/root/orders/customer/name","length":3},
>   {"name":"gone","type":"character","path":"/root/orders/customer"}]},
> {"dsname":"a name of more than thirty-two bytes","tablepath":"/root"}]}' > odd.json
> qvejmap map check odd.json orders.json
  odd.json: well formed, tables: 3, columns: 4
  no columns: table t
  no columns: table a name of more than thirty-two b
  NORETAIN without effect: t.o
  INFORMAT without effect: t.o
  shared name: table t: read opens the first of that name
  broken name: t.name� holds bytes that are no UTF-8, or U+FFFD in their place
  long name: table a name of more than thirty-two b was cut to 32 bytes
  never occurs: table t (/none)
  never occurs: t.gone (/root/orders/customer)
  cut: t.name� (3 of 8 bytes)
  left out: 7 of 9 columns, in 4 tables, the first orders.paid (/root/orders/paid); --verbose lists them
? 1
$ qvejmap map check odd.json orders.json --verbose | grep left; sed 's/orders.customer.name/orders\/paid/; s/customer"/customer\/city"/' odd.json | qvejmap map check - orders.json | grep left; qvejmap map check m.json --verbose -q
  left out: orders.paid (/root/orders/paid)
  left out: orders_customer.city (/root/orders/customer/city)
  left out: orders_items.sku (/root/orders/items/sku)
  left out: orders_items.quantity (/root/orders/items/quantity)
  left out: orders_items.price (/root/orders/items/price)
  left out: orders_tags.tags1 (/root/orders/tags/tags1)
  left out: orders_tags.tags2 (/root/orders/tags/tags2)
  left out: 6 of 9 columns, in 3 tables, the first orders_customer.name (/root/orders/customer/name); --verbose lists them
$ qvejmap tables orders.json --map odd.json; qvejmap read orders.json t --map odd.json -q
  t\t0\t/root/orders
  t\t4\t/none
  a name of more than thirty-two b\t0\t/root
! qvejmap: odd.json: tables without columns, whose rows are empty: t, a name of more than thirty-two b
! qvejmap: odd.json: NORETAIN does not change ordinal columns: t.o
! qvejmap: odd.json: ordinal columns count, INFORMAT does not change them: t.o
! qvejmap: odd.json: values are cut in: t.name� (3 of 8 bytes)
! qvejmap: more than one table is named t: read opens the first, and any by its path
# Without columns a row is empty; there is one where an object of another path follows.
$ echo '{"DATASETS":[{"DSNAME":"t","TABLEPATH":"/root/a"}]}' > bare.map
$ echo '[{"a":{"b":1}},{"a":{}},{"a":{"b":2}}]' | qvejmap read - t --map bare.map --format ndjson
  {}
  {}
! qvejmap: bare.map: tables without columns, whose rows are empty: t
$ echo '[{"a":{"b":1}},{"a":{}}]' | qvejmap read - t --map bare.map -q

# Names of a document that its own map cannot say.
$ printf '{"a/b":{"c":1},"x":{"y\\u0002z":2}}' > names.json; qvejmap map names.json -o names.map; qvejmap map check names.map names.json
  names.map: well formed, tables: 2, columns: 7
  never occurs: table a_b (/root/a/b)
  never occurs: a_b.ordinal_a_b (/root/a/b)
  never occurs: a_b.c (/root/a/b/c)
  left out: a_b.c (/root/a/b/c)
  no map can name: /root/a/b/c, a name holds "/"
  no map can name: /root/x/y/z, a name holds the byte 0x02
! qvejmap: names.json: 2 paths that no map can name, the first: /root/a/b/c, a name holds "/"
? 1
$ printf '{"":{"n":1}}' > empty.json; qvejmap map empty.json --compact | qvejmap map check -
! qvejmap: empty.json: 1 table without a name, which --map refuses: /root/
! qvejmap: <stdin>:1:165: the table has no name: its DSNAME must be there and not be empty [-25]
!     ...H":"/root"},{"NAME":"n","TYPE":"NUMERIC","PATH":"/root//n"}]}]}
!                                                                    ^
? 4
