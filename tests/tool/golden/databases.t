# All tables in one file of SQLite.  A file that is there gets more; tables that are there do not, unasked.
$ qvejmap convert orders.json -o o.db; ls -A; sqlite3 o.db .tables
  o.db
  orders.json
  tmp
  orders           orders_items     orders_tags      qvejmap_tables 
  orders_customer  orders_joined    qvejmap_columns
! qvejmap: 4 tables, 9 rows in o.db
$ qvejmap convert orders.json -o o.db; qvejmap convert orders.json -o o.db --append; sqlite3 o.db 'SELECT * FROM orders_joined; SELECT table_name, rows, parent, key FROM qvejmap_tables'
  1|1|1001|1|Ada Berg|Oslo|gift|fragile
  1|2|1002|0|Li Wei||pickup|
  2|3|1001|1|Ada Berg|Oslo|gift|fragile
  2|4|1002|0|Li Wei||pickup|
  orders|4||ordinal_orders
  orders_customer|4|orders|ordinal_customer
  orders_items|6|orders|ordinal_items
  orders_tags|4|orders|ordinal_tags
! qvejmap: o.db: it has a table orders already (--replace makes it anew, --append adds rows to it)
! qvejmap: 4 tables, 9 rows in o.db
$ echo '{"more":[{"orders":true,"at":"2024-02-29"}]}' > more.json; qvejmap convert more.json -o o.db -q; qvejmap convert orders.json -o o.db --replace -q; sqlite3 o.db 'SELECT count(*) FROM orders; SELECT * FROM more; SELECT column_name, path, original_name, type FROM qvejmap_columns WHERE table_name = "more"'
  2
  1|1|1|2024-02-29
  ordinal_root|/root||BIGINT
  ordinal_more|/root/more||BIGINT
  orders|/root/more/orders|orders|BOOLEAN
  at|/root/more/at|at|DATE
$ qvejmap convert more.json -o o.db --force; sqlite3 o.db .tables
  more             qvejmap_columns  qvejmap_tables 
! qvejmap: 1 table, 1 row in o.db
# An empty file is a new database; a link leads to one that is changed, and stays a link.  Links are not replaced.
$ touch empty.db; qvejmap convert orders.json -o empty.db --append; sqlite3 empty.db 'SELECT count(*) FROM orders'
  2
! qvejmap: 4 tables, 9 rows in empty.db
$ mkdir -p far; mv empty.db far; ln -s far/empty.db link.db; qvejmap convert orders.json -o link.db --append -q; qvejmap convert more.json -o link.db; ls -A far; readlink link.db; sqlite3 far/empty.db 'SELECT count(*) FROM orders; SELECT count(*) FROM more'
  empty.db
  far/empty.db
  4
  1
! qvejmap: 1 table, 1 row in link.db
$ qvejmap convert orders.json -o link.db --replace -q; sqlite3 far/empty.db 'SELECT count(*) FROM orders'; qvejmap convert orders.json -o link.db --force
  2
! qvejmap: link.db: not a regular file, not replaced
? 5
$ ln -s none.db dangling.db; qvejmap convert orders.json -o dangling.db; ln -s ../orders.json far/o.db; qvejmap convert orders.json -o far/o.db --append
! qvejmap: dangling.db: not a regular file, not replaced
! qvejmap: far/o.db: the document itself, not replaced
? 5

# What an appended document must be.
$ echo '{"more":[{"orders":2,"why":null,"at":1}]}' > other.json; qvejmap convert other.json -o o.db --append
! qvejmap: o.db: more lacks columns of the document: why (--replace makes it anew)
? 5
$ echo '{"more":[{"orders":0.5}]}' > other.json; qvejmap convert other.json -o o.db --append
! qvejmap: o.db: more.orders has the type INTEGER, and values of the document need REAL
? 5
$ sqlite3 o.db 'CREATE VIEW theirs AS SELECT 1'; echo '{"theirs":[{"a":1}]}' > other.json; qvejmap convert other.json -o o.db --replace
! qvejmap: o.db: it has a view, an index or the like of the name theirs
? 5

# Names that SQLite does not take are told; so are rows without a parent, and a view that would be too wide.
$ echo '{"Orders":[{"a":1,"A":2}],"orders":[{"b":1}]}' > names.json; qvejmap convert names.json -o names.db --naming original; sqlite3 names.db 'SELECT table_name, column_name, original_name FROM qvejmap_columns WHERE path LIKE "/root/_rders/_"'
  Orders|a|a
  Orders|A~2|A
  orders~2|b|b
! qvejmap: 2 names differ, since SQLite takes no other: orders is orders~2 (qvejmap_tables and qvejmap_columns list them)
! qvejmap: 2 tables, 2 rows in names.db
$ echo '{"orders":[{"id":1,"items":[{}]},{"items":[{}]}]}' > orphan.json; qvejmap convert orphan.json -o orphan.db; sqlite3 orphan.db .schema | grep items
  CREATE TABLE IF NOT EXISTS "orders_items"(
    "ordinal_items" INTEGER PRIMARY KEY) STRICT;
  CREATE INDEX "orders_items_ordinal_orders" ON "orders_items"("ordinal_orders");
! qvejmap: 2 tables, 3 rows in orphan.db
! qvejmap: 1 row of orders_items has no row in orders, so ordinal_orders is no foreign key
$ { printf '[{"id":1'; printf ',"t%d":{"v":1}' $(seq 64); echo '}]'; } > wide.json; qvejmap convert wide.json -o wide.db; sqlite3 wide.db 'SELECT count(*) FROM sqlite_schema WHERE type = "view"'
  0
! qvejmap: root has no view root_joined: it would join more than SQLite takes
! qvejmap: 65 tables, 65 rows in wide.db
! qvejmap: 65 tables, most of them from names that are data, such as /root (64 names): try --shape auto
$ { printf '[{"id":1'; printf ',"c%d":1' $(seq 2000); echo '}]'; } > wide.json; qvejmap convert wide.json -o wide2.db; ls -A wide2.db
! qvejmap: wide2.db: root has 2,002 columns, and SQLite takes 2,000 in a table (--shape auto makes rows of names that are data)
! ls: cannot access 'wide2.db': No such file or directory
? 2
$ echo '{"DATASETS":[{"DSNAME":"t","TABLEPATH":"/root"}]}' > none.map; qvejmap convert more.json --map none.map -o none.db -q
! qvejmap: none.db: t has no columns, and SQLite has no such tables (--table chooses others)
? 5

# Places that are no database, or are not there.
$ echo text > t.db; qvejmap convert more.json -o t.db; cat t.db; qvejmap convert more.json -o no/such.db
  text
! qvejmap: t.db: file is not a database
! qvejmap: no: No such file or directory
? 5
$ qvejmap convert more.json -o 'postgresql://me:secret@/d?host=/nowhere&password=secret' 2>&1 | cut -d ' ' -f 1-4
  qvejmap: postgresql://me@/d?host=/nowhere&password=: connection to
