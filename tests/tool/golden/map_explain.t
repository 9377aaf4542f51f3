$ qvejmap map explain orders.json orders_items.price
  orders_items.price: /root/orders/items/price
  NUMERIC, since none of its values is a string
  kind\tvalues\tfirst
  NUMBER\t3\torders.json:7:50
  longest\t5 bytes\torders.json:17:51
$ qvejmap map explain orders.json ORDERS.ordinal_ROOT
  orders.ordinal_root: /root
  ORDINAL: counts the objects and arrays at its path, from 1 in the whole document
$ printf '[{"a":1},\n {"a":"x\\u0041",  "b":{}},\n {"a":null,\n"b":"","a":true},{"a" : "longest", "a":"another"}]' > mixed.json; qvejmap map explain mixed.json root.a
  root.a: /root/a
  CHARACTER, since 3 values of 6 are strings
  kind\tvalues\tfirst
  NUMBER\t1\tmixed.json:1:7
  STRING\t3\tmixed.json:2:7
  NULL\t1\tmixed.json:3:7
  BOOLEAN\t1\tmixed.json:4:12
  longest\t7 bytes\tmixed.json:4:25
$ printf '{"t.u":{"v.w":[]},"t":[1.5e3,22,"-1"]}' > dots.json; qvejmap map explain dots.json t.t2; qvejmap map explain dots.json t.t3
  t.t2: /root/t/t2
  NUMERIC, since none of its values is a string
  kind\tvalues\tfirst
  NUMBER\t1\tdots.json:1:30
  longest\t2 bytes\tdots.json:1:30
  t.t3: /root/t/t3
  CHARACTER, since its values are strings
  kind\tvalues\tfirst
  STRING\t1\tdots.json:1:33
  longest\t2 bytes\tdots.json:1:33
$ qvejmap map explain orders.json orders.pay; qvejmap map explain orders.json orders
! qvejmap: no column orders.pay (TABLE.COLUMN); did you mean orders.paid, orders.id?
! qvejmap: no column orders (TABLE.COLUMN); did you mean orders.id, orders.paid, orders_items.sku?
? 4
