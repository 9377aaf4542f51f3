# --table takes names in any case, --path paths of tables; any of them makes a table.
$ for choice in '--table ORDERS' '--table *_?ags' '--path /root/orders/*' '--path /root/**/tags --table orders' '--path /root'; do
>     echo $choice: $(qvejmap tables orders.json --names $choice)
> done
  --table ORDERS: orders
  --table *_?ags: orders_tags
  --path /root/orders/*: orders_customer orders_items orders_tags
  --path /root/**/tags --table orders: orders orders_tags
  --path /root:
! qvejmap: no table has a path like /root; did you mean /root/orders, /root/orders/tags, /root/orders/items?
$ qvejmap tables orders.json --columns --table '*customer'
  orders_customer\tordinal_root\tORDINAL\t8\t/root
  orders_customer\tordinal_orders\tORDINAL\t8\t/root/orders
  orders_customer\tordinal_customer\tORDINAL\t8\t/root/orders/customer
  orders_customer\tname\tCHARACTER\t8\t/root/orders/customer/name
  orders_customer\tcity\tCHARACTER\t4\t/root/orders/customer/city

# A part of the choice that is no table's is a mistake.
$ qvejmap tables orders.json --table order --table 'ord*'
! qvejmap: no table has a name like 'order'; did you mean orders, orders_tags, orders_items?
? 4
$ qvejmap tables orders.json --path /root/order; qvejmap tables orders.json --table 'x[y' --path /root/orders
! qvejmap: no table has a path like /root/order; did you mean /root/orders, /root/orders/tags, /root/orders/items?
! qvejmap: no table has a name like 'x[y' (qvejmap tables lists them)
? 4
$ for path in orders /orders '/root/a b' /root/o*; do qvejmap tables none.json --path "$path"; done
! qvejmap: --path: 'orders', column 1: a path begins with "/", as in /root/orders (qvejmap --help tells more)
! qvejmap: --path: '/orders', column 1: a path begins with /root (or with * or **) (qvejmap --help tells more)
! qvejmap: --path: '/root/a b', column 8: a name with blanks is written as a JSON string, as in /root/"a b" (qvejmap --help tells more)
! qvejmap: --path: '/root/o*', column 9: "*" and "**" stand for whole names; \* is the character (qvejmap --help tells more)
? 2
$ qvejmap tables orders.json --table ''
! qvejmap: no table has a name like '' (qvejmap tables lists them)
? 4

# Only these tables are made, and spoken of.
$ qvejmap convert orders.json -o out --table '*items' --path '/root/*' --null -; ls out; grep -o '"--.*"' out/datapackage.json
  datapackage.json
  orders.csv
  orders_items.csv
  "--format=csv","--null=-","--table=*items","--path=/root/*"
! qvejmap: 2 tables, 5 rows in out
$ qvejmap convert orders.json -o out --table nothing --force; ls out
  datapackage.json
  orders.csv
  orders_items.csv
! qvejmap: no table has a name like 'nothing' (qvejmap tables lists them)
$ echo '{"a":[{"x":1,"x":2},[3]],"b":[{"y":1,"y":2}],"B":[{"z":1}],"c":{"n/m":{"d":7}}}' > lossy.json
$ for choice in '--table nothing' '--path /root/a' '--path /root/b' '--path /root/c/**' ''; do
>     echo "[$choice]"; qvejmap convert lossy.json -o lossy --force --account $choice
> done
  [--table nothing]
  [--path /root/a]
  path\tvalues\tlost\tfirst
  /root/a/x\t1\toverwritten\tlossy.json:1:12
  3 values = 2 in cells + 1 overwritten + 0 no column + 0 no row + 0 rejected
  [--path /root/b]
  path\tvalues\tlost\tfirst
  /root/b/y\t1\toverwritten\tlossy.json:1:36
  2 values = 1 in cells + 1 overwritten + 0 no column + 0 no row + 0 rejected
  [--path /root/c/**]
  1 value = 1 in cells + 0 overwritten + 0 no column + 0 no row + 0 rejected
  []
  path\tvalues\tlost\tfirst
  /root/a/x\t1\toverwritten\tlossy.json:1:12
  /root/b/y\t1\toverwritten\tlossy.json:1:36
  7 values = 5 in cells + 2 overwritten + 0 no column + 0 no row + 0 rejected
! qvejmap: no table has a name like 'nothing' (qvejmap tables lists them)
! qvejmap: 1 table, 1 row in lossy
! qvejmap: 1 table, 1 row in lossy
! qvejmap: 1 table, 1 row in lossy
! qvejmap: 4 tables, 4 rows in lossy
? 1
$ qvejmap convert lossy.json -o lossy --force --path /root/b --alldata
! qvejmap: 2 tables, 13 rows in lossy
! qvejmap: lossy.json: 1 value is overwritten by a later one (qvejmap check --account tells which)
? 1
$ qvejmap tables lossy.json --table b
  b\t3\t/root/b
$ qvejmap map lossy.json -o lossy.map; qvejmap convert lossy.json -o lossy --force --map lossy.map --path /root/a
! qvejmap: lossy.json: 1 path that no map can name: /root/c/n/m/d, a name holds "/"
! qvejmap: 1 table, 1 row in lossy
! qvejmap: lossy.json: 1 value is in no cell, 1 overwritten (qvejmap check --account tells which)
? 1

# With a shape the paths are those that it makes.
$ qvejmap convert orders.json -o shaped --rows '/root/orders/tags' --path /root/orders/tags --account; qvejmap tables orders.json --rows /root/orders/customer --path /root/orders/customer --columns | tail -2
  3 values = 3 in cells + 0 overwritten + 0 no column + 0 no row + 0 rejected
  orders_customer\tkey\tCHARACTER\t4\t/root/orders/customer/key
  orders_customer\tvalue\tCHARACTER\t8\t/root/orders/customer/value
! qvejmap: 1 table, 3 rows in shaped

# Tables that share a name are opened by their paths, as tables or a pattern shows them.
$ qvejmap read lossy.json b; qvejmap read lossy.json /root/B; qvejmap read lossy.json /root/c/n/m; qvejmap read lossy.json '/root/c/n\/m' -q
  ordinal_root,ordinal_b,y\r
  1,1,2\r
  ordinal_root,ordinal_B,z\r
  1,1,1\r
  ordinal_root,ordinal_c,ordinal_n_m,d\r
  1,1,1,7\r
  ordinal_root,ordinal_c,ordinal_n_m,d\r
  1,1,1,7\r
! qvejmap: lossy.json: table b: 1 value is overwritten by a later one (qvejmap check --account tells which)
$ qvejmap read lossy.json /root/bb; qvejmap read lossy.json '/root/**' | head -1
  ordinal_root,ordinal_a,x,element1\r
! qvejmap: no table at /root/bb; did you mean /root/b, /root/B, /root/a?
! qvejmap: 4 tables have the path /root/**: this is the first, a
! qvejmap: lossy.json: table a: 1 value is overwritten by a later one (qvejmap check --account tells which)
$ printf '{"DATASETS":[{"DSNAME":"/root/x","TABLEPATH":"/root/b"},{"DSNAME":"/root/a","TABLEPATH":"/root/b"}]}' > slash.map
$ qvejmap read lossy.json /root/x --map slash.map --format ndjson -q; qvejmap read lossy.json /root/b --map slash.map --limit 0
  {}
! qvejmap: slash.map: tables without columns, whose rows are empty: /root/x, /root/a
! qvejmap: 2 tables have the path /root/b: this is the first, /root/x

# A map of one table, and of a table with numbers that a double does not keep.
$ qvejmap map orders.json --table '*tags' --ordinals 0
  {
    "DATASETS": [
      {
        "DSNAME": "orders_tags",
        "TABLEPATH": "/root/orders/tags",
        "VARIABLES": [
          { "NAME": "tags1", "TYPE": "CHARACTER", "PATH": "/root/orders/tags/tags1", "CURRENT_LENGTH": 6 },
          { "NAME": "tags2", "TYPE": "CHARACTER", "PATH": "/root/orders/tags/tags2", "CURRENT_LENGTH": 7 }
        ]
      }
    ]
  }
$ qvejmap map orders.json -o whole.map; qvejmap map orders.json --path '/root/*' --path '/root/*/*' -o all.map; cmp whole.map all.map
$ echo '{"a":[{"n":12345678901234567890}],"b":[{"n":12345678901234567891}],"x/y":[{"n":1}]}' > exact.json
$ qvejmap map exact.json --exact --table b --ordinals 0 --compact
  {"DATASETS":[{"DSNAME":"b","TABLEPATH":"/root/b","VARIABLES":[{"NAME":"n","TYPE":"CHARACTER","PATH":"/root/b/n","CURRENT_LENGTH":20}]}]}
$ qvejmap map exact.json --table x_y --ordinals 0 --compact
  {"DATASETS":[{"DSNAME":"x_y","TABLEPATH":"/root/x/y","VARIABLES":[{"NAME":"n","TYPE":"NUMERIC","PATH":"/root/x/y/n"}]}]}
! qvejmap: exact.json: 1 path that no map can name: /root/x/y/n, a name holds "/"
