$ qvejmap map orders.json --ordinals 0
  {
    "DATASETS": [
      {
        "DSNAME": "orders",
        "TABLEPATH": "/root/orders",
        "VARIABLES": [
          { "NAME": "id", "TYPE": "NUMERIC", "PATH": "/root/orders/id" },
          { "NAME": "paid", "TYPE": "NUMERIC", "PATH": "/root/orders/paid" }
        ]
      },
      {
        "DSNAME": "orders_customer",
        "TABLEPATH": "/root/orders/customer",
        "VARIABLES": [
          { "NAME": "name", "TYPE": "CHARACTER", "PATH": "/root/orders/customer/name", "CURRENT_LENGTH": 8 },
          { "NAME": "city", "TYPE": "CHARACTER", "PATH": "/root/orders/customer/city", "CURRENT_LENGTH": 4 }
        ]
      },
      {
        "DSNAME": "orders_items",
        "TABLEPATH": "/root/orders/items",
        "VARIABLES": [
          { "NAME": "sku", "TYPE": "CHARACTER", "PATH": "/root/orders/items/sku", "CURRENT_LENGTH": 5 },
          { "NAME": "quantity", "TYPE": "NUMERIC", "PATH": "/root/orders/items/quantity" },
          { "NAME": "price", "TYPE": "NUMERIC", "PATH": "/root/orders/items/price" }
        ]
      },
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

$ echo '{"a":1}' | qvejmap map - -o m.json --compact; cat m.json
  {"DATASETS":[{"DSNAME":"root","TABLEPATH":"/root","VARIABLES":[{"NAME":"ordinal_root","TYPE":"ORDINAL","PATH":"/root"},{"NAME":"a","TYPE":"NUMERIC","PATH":"/root/a"}]}]}
$ echo '{"a":2}' | qvejmap map - -o m.json
! qvejmap: m.json: the file exists (--force replaces it)
? 5
$ echo '{"b":2}' | qvejmap map - -o m.json --force --compact; cat m.json
  {"DATASETS":[{"DSNAME":"root","TABLEPATH":"/root","VARIABLES":[{"NAME":"ordinal_root","TYPE":"ORDINAL","PATH":"/root"},{"NAME":"b","TYPE":"NUMERIC","PATH":"/root/b"}]}]}
$ echo '{}' | qvejmap map - -o - --compact
  {"DATASETS":[{"DSNAME":"root","TABLEPATH":"","VARIABLES":[{"NAME":"ordinal_root","TYPE":"ORDINAL","PATH":"/root"}]}]}

# A long map.
$ printf '{"a":[%s]}' $(seq -s, 9999) | qvejmap map - --compact | tail -c 67
  998"},{"NAME":"a9999","TYPE":"NUMERIC","PATH":"/root/a/a9999"}]}]}

# Only a regular file is replaced, and a missing folder is not made.
$ echo '{"b":2}' | qvejmap map - -o /dev/null --force
! qvejmap: /dev/null: not a regular file, not replaced
? 5
$ echo '{"b":2}' | qvejmap map - -o none/m.json
! qvejmap: none: No such file or directory
? 5
$ echo '{"b":2}' | qvejmap map - -o tmp --force
! qvejmap: tmp: not a regular file, not replaced
? 5
$ ls -A
  m.json
  orders.json
  tmp

# Columns with numbers that a double does not keep become CHARACTER.
$ printf '{"r":[{"id":9007199254740993,"s":"x","c":1},\n{"id":12345678901234567890,"c":1e999}]}' > big.json
$ qvejmap map big.json --exact -o big.map
$ qvejmap map big.json > plain.map; qvejmap map diff plain.map big.map
  ~ column r.id: type NUMERIC -> CHARACTER, length none -> 20
  ~ column r.c: type NUMERIC -> CHARACTER, length none -> 5
? 1
$ qvejmap read big.json r --map big.map
  ordinal_root,ordinal_r,id,s,c\r
  1,1,9007199254740993,x,1\r
  1,2,12345678901234567890,,1e999\r
$ qvejmap map explain big.json r.id
  r.id: /root/r/id
  NUMERIC, since none of its values is a string
  kind\tvalues\tfirst
  NUMBER\t2\tbig.json:1:13
  inexact\t2\tbig.json:1:13
  longest\t20 bytes\tbig.json:2:7
$ echo '{"a":[1,{}],"b":"x"}' > small.json; qvejmap map small.json > s1; qvejmap map small.json --exact | cmp - s1
$ qvejmap tables small.json --exact
! qvejmap: --exact belongs to map, not to tables (qvejmap --help tells more)
? 2

# Nothing replaces the document, whatever else it is named as.
$ qvejmap map small.json -o ./small.json --force
! qvejmap: small.json: the document itself, not replaced
? 5
$ mkdir own; ln small.json own/a.csv; qvejmap convert small.json -o own --force; qvejmap read small.json a --rejects own/a.csv --force; cat small.json
  {"a":[1,{}],"b":"x"}
! qvejmap: own/a.csv: the document itself, not replaced
! qvejmap: own/a.csv: the document itself, not replaced

# Names in paths are escaped where they must be.
$ printf '%s' '{"a/\"\\\u0001\té":1,"c":"xyz"}' | qvejmap map - --ordinals 0 --compact
  {"DATASETS":[{"DSNAME":"root","TABLEPATH":"/root","VARIABLES":[{"NAME":"a_______","TYPE":"NUMERIC","PATH":"/root/a/\\"\\\\\\u0001\\té"},{"NAME":"c","TYPE":"CHARACTER","PATH":"/root/c","CURRENT_LENGTH":3}]}]}
! qvejmap: <stdin>: 1 path that no map can name: /root/a/"\\u0001\té, a name holds "/"

# Nor the map, nor any map that is merged.
$ qvejmap map small.json -o m --force; qvejmap map small.json -o m2 --force; qvejmap map - -o small.json --force < small.json
! qvejmap: small.json: the document itself, not replaced
? 5
$ qvejmap read small.json a --map m --rejects m --force; qvejmap read small.json a --map m --cache m --force
! qvejmap: m: the map itself, not replaced
! qvejmap: m: the map itself, not replaced
? 5
$ mkdir maps; ln m maps/a.csv; qvejmap convert small.json --map m -o maps --force; qvejmap convert small.json --map m -o new --cache m --force
! qvejmap: maps/a.csv: the map itself, not replaced
! qvejmap: m: the map itself, not replaced
? 5
$ qvejmap map check m small.json --cache m; qvejmap map merge m m2 -o m2 --force; cmp m s1; cmp m2 s1; ls -d new
! qvejmap: m: the map itself, not replaced
! qvejmap: m2: one of the maps to merge, not replaced
! ls: cannot access 'new': No such file or directory
? 2
# Nor a file of rules, nor another of the documents that are converted one by one.
$ echo 'rows /root/a' > rules; for file in rejects.csv own/rules.db cache; do ln rules $file; done; mkdir rows; ln rules rows/a.csv
$ for out in '-o rows' '-o own/rules.db' '-o new --rejects rejects.csv' '-o new --cache cache'; do qvejmap convert small.json --shape auto --shape rules $out --force; done
! qvejmap: rows/a.csv: the shape itself, not replaced
! qvejmap: own/rules.db: the shape itself, not replaced
! qvejmap: rejects.csv: the shape itself, not replaced
! qvejmap: cache: the shape itself, not replaced
? 5
$ for verb in 'read small.json a --rejects' 'map small.json -o' 'report small.json -o'; do qvejmap $verb rules --shape rules --force; done; qvejmap map small.json --shape - -o rules --force < rules
! qvejmap: rules: the shape itself, not replaced
! qvejmap: rules: the shape itself, not replaced
! qvejmap: rules: the shape itself, not replaced
! qvejmap: rules: the shape itself, not replaced
? 5
$ mkdir -p each/small; echo '[1]' > each/small/root.csv; qvejmap convert small.json each/small/root.csv --per-file -o each --force; cat rules each/small/root.csv
  rows /root/a
  [1]
! qvejmap: each/small/root.csv: the document itself, not replaced
# A file that is refused is refused before the document is read.
$ qvejmap map none.json -o m; qvejmap map merge none.json m -o m; qvejmap map none.json -o none/m
! qvejmap: m: the file exists (--force replaces it)
! qvejmap: m: one of the maps to merge, not replaced
! qvejmap: none: No such file or directory
? 5

# What the map says and --map will not find, refuses, or will cut.
$ printf '{"a/b":{"c":1},"x":{"y\\u0002z":2},"\\\\u0002":3}' | qvejmap map - > /dev/null
! qvejmap: <stdin>: 2 paths that no map can name, the first: /root/a/b/c, a name holds "/"
$ printf '{"x":[{"y\\u0002z":{"n":2}}]}' | qvejmap map - --ordinals 0 --compact
  {"DATASETS":[{"DSNAME":"y_z","TABLEPATH":"/root/x/y/z","VARIABLES":[{"NAME":"n","TYPE":"NUMERIC","PATH":"/root/x/y/z/n"}]}]}
! qvejmap: <stdin>: 1 path that no map can name: /root/x/y/z/n, a name holds the byte 0x02
$ printf '{"":{"n":1,"":{"m":1}}}' | qvejmap map - > /dev/null
! qvejmap: <stdin>: 1 table without a name, which --map refuses: /root/
$ n=$(head -c 40000 /dev/zero | tr '\0' 7); m=$(head -c 32767 /dev/zero | tr '\0' 7); printf '{"a":%s,"b":%s,"c":%s}' $n $m $n | qvejmap map - --exact > /dev/null
! qvejmap: <stdin>: 2 columns with numbers longer than the 32767 bytes that a column holds, the first: root.a
