# A value of a parent is in all rows of that parent, and in no others, wherever it stands.
$ echo '{"orders":[{"id":1,"items":[{"s":"a"},{"s":"b"}],"paid":true},{"id":2,"items":[{"s":"c"}]}]}' > o.json
> printf '{"DATASETS":[{"DSNAME":"items","TABLEPATH":"/root/orders/items","VARIABLES":[
> {"NAME":"id","TYPE":"NUMERIC","PATH":"/root/orders/id"},
> {"NAME":"s","TYPE":"CHARACTER","PATH":"/root/orders/items/s"},
> {"NAME":"paid","TYPE":"CHARACTER","PATH":"/root/orders/paid"}]}]}' > o.map
$ qvejmap read o.json items --map o.map
  id,s,paid\r
  1,a,\r
  ,b,true\r
  2,c,\r
! qvejmap: o.map: columns of a parent, where the order of the document decides which row has the value (--carry takes the row's own parent): items.id, items.paid
$ qvejmap read o.json items --map o.map --retain -q
  id,s,paid\r
  1,a,\r
  1,b,true\r
  2,c,true\r
$ qvejmap read o.json items --map o.map --carry
  id,s,paid\r
  1,a,true\r
  1,b,true\r
  2,c,\r
$ qvejmap read o.json items --map o.map --carry --retain --limit 2 --format ndjson
  {"id":1,"s":"a","paid":"true"}
  {"id":1,"s":"b","paid":"true"}
$ qvejmap convert o.json --map o.map -o out --carry; cat out/items.csv; grep -o '"--[cm].*"' out/datapackage.json
  id,s,paid\r
  1,a,true\r
  1,b,true\r
  2,c,\r
  "--map=o.map","--carry"
! qvejmap: 1 table, 3 rows in out
$ qvejmap convert o.json --map o.map -o plain -q; qvejmap convert o.json --map o.map -o plain --force
! qvejmap: o.map: columns of a parent, where the order of the document decides which row has the value (--carry takes the row's own parent): items.id, items.paid
! qvejmap: 1 table, 3 rows in plain
$ qvejmap map check o.map
  o.map: well formed, tables: 1, columns: 3
  of a parent: items.id is of /root/orders: the order of the document decides which row has the value, unless --carry
  of a parent: items.paid is of /root/orders: the order of the document decides which row has the value, unless --carry
$ qvejmap map explain o.json items.paid --map o.map; qvejmap map explain o.json items.s --map o.map | head -2
  items.paid: /root/orders/paid
  CHARACTER, as o.map says
  of a parent, /root/orders: the order of the document decides which row has the value, unless --carry
  kind\tvalues\tfirst
  BOOLEAN\t1\to.json:1:57
  longest\t4 bytes\to.json:1:57
  items.s: /root/orders/items/s
  CHARACTER, as o.map says

# Without such columns it changes nothing.
$ qvejmap read orders.json orders_items --carry
  ordinal_root,ordinal_orders,ordinal_items,sku,quantity,price\r
  1,1,1,lamp,2,19.5\r
  1,1,2,desk,1,240\r
  1,2,3,chair,4,85.25\r
$ qvejmap tables orders.json --carry
! qvejmap: --carry belongs to read, convert, report, check, not to tables (qvejmap --help tells more)
? 2

# Each value is told and counted once, however many rows show it.
$ echo '[{"id":"?","m":[{"v":1},{"v":2}]},{"id":3},{"id":4,"id":5,"m":[{"v":3}]}]' > p.json
> printf '{"DATASETS":[{"DSNAME":"m","TABLEPATH":"/root/m","VARIABLES":[{"NAME":"m","PATH":"/root/m"},
> {"NAME":"id","TYPE":"NUMERIC","PATH":"/root/id"},{"NAME":"v","TYPE":"NUMERIC","PATH":"/root/m/v"}]}]}' > p.map
$ qvejmap read p.json m --map p.map --carry --rejects r.csv; cat r.csv
  m,id,v\r
  1,,1\r
  2,,2\r
  3,5,3\r
  table,row,column,path,ordinals,text,reason\r
  m,1,id,/root/id,m=1,?,not a number\r
! qvejmap: m.id: 1 value rejected, in row 1: "?" is not a number
$ qvejmap convert p.json --map p.map -o p --carry --account -q
  path\tvalues\tlost\tfirst
  /root/id\t1\toverwritten\tp.json:1:50
  /root/id\t1\tno row\t
  /root/id\t1\trejected\tp.json:1:8
  7 values = 4 in cells + 1 overwritten + 0 no column + 1 no row + 1 rejected
! qvejmap: m.id: 1 value rejected, in row 1: "?" is not a number
? 1
$ qvejmap convert p.json --map p.map -o p --carry --force
! qvejmap: 1 table, 3 rows in p
! qvejmap: p.json: 2 values are in no cell (qvejmap check --account tells which)
! qvejmap: m.id: 1 value rejected, in row 1: "?" is not a number
? 1
