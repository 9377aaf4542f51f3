# How rows come about: --plan says it.
$ qvejmap map orders.json -o orders.map
$ cat orders.json | qvejmap read - orders_items --map orders.map --plan
  ordinal_root,ordinal_orders,ordinal_items,sku,quantity,price\r
  1,1,1,lamp,2,19.5\r
  1,1,2,desk,1,240\r
  1,2,3,chair,4,85.25\r
! plan: one walk, rows as they come
$ qvejmap convert orders.json --map orders.map -o out --plan
! plan: one walk, rows as they come
! qvejmap: 4 tables, 9 rows in out
$ qvejmap convert orders.json orders.json --map orders.map -o out --force --plan -q; cat out/orders_customer.csv
  source,ordinal_root,ordinal_orders,ordinal_customer,name,city\r
  orders.json,1,1,1,Ada Berg,Oslo\r
  orders.json,1,2,2,Li Wei,\r
  orders.json,2,3,3,Ada Berg,Oslo\r
  orders.json,2,4,4,Li Wei,\r
! plan: one walk, rows as they come

# Records, and why
$ qvejmap read orders.json orders_tags --plan
  ordinal_root,ordinal_orders,ordinal_tags,tags1,tags2\r
  1,1,1,gift,fragile\r
  1,2,2,pickup,\r
! plan: records, since the map is made from the whole document
$ qvejmap read orders.json ALLDATA --map orders.map --plan | head -n 2
  P,P1,P2,P3,V,Value\r
  1,orders,,,0,\r
! plan: records, since ALLDATA needs them
$ for option in --carry --retain '--limit 1' '--debug MAP' '--cache records' --compress --skip-bad-lines; do
>     qvejmap read orders.json orders_tags --map orders.map --plan $option 2>&1 >/dev/null | grep plan:
> done
  plan: records, since --carry needs them
  plan: records, since --retain needs them
  plan: records, since --limit needs them
  plan: records, since --debug needs them
  plan: records, since --cache needs them
  plan: records, since --compress needs them
  plan: records, since --skip-bad-lines needs them
$ for option in --account --alldata '--drop /root/orders/tags' '--format ndjson --threads 1'; do
>     qvejmap convert orders.json --map orders.map -o out --force --plan -q $option 2>&1 >/dev/null | grep plan:
> done
  plan: records, since the input is small
  plan: records, since ALLDATA needs them
  plan: records, since the input is small
  plan: one walk, rows as they come
$ cat orders.json | qvejmap convert - -o out --force --plan -q
! plan: records, since standard input cannot be read again

# A map that needs the document
$ sed '/"price"/s/}/, "FORMAT": ["fixed", 8, 1] }/' orders.map > format.map; cat orders.json | qvejmap read - orders_items --map format.map --plan
  ordinal_root,ordinal_orders,ordinal_items,sku,quantity,price\r
  1,1,1,lamp,2,    19.5\r
  1,1,2,desk,1,   240.0\r
  1,2,3,chair,4,    85.2\r
! plan: records, since standard input cannot be read again
$ echo '[{"FAKE":"text"}]' > fake.json; qvejmap map fake.json -o fake.map; qvejmap read fake.json root --map fake.map --plan
  ordinal_root,FAKE\r
  1,text\r
! plan: records, since root.FAKE: it has no LENGTH

# A large file is counted in parts
$ (printf '{"orders":['; seq 200000 | sed 's/.*/{"id":&,"name":"order &"},/'; printf '{}]}') > large.json
$ qvejmap convert large.json -o large --threads 2 --plan
! plan: counted in parts on 2 threads, then read again for the rows
! qvejmap: 1 table, 200000 rows in large
$ qvejmap convert large.json -o large --threads 1 --plan --force
! plan: counted as one, since --threads is 1, then read again for the rows
! qvejmap: 1 table, 200000 rows in large
$ for option in '--memory 100M' '--rows /root/orders/*' '--encoding latin1'; do
>     qvejmap convert large.json -o large --threads 2 --plan --force -q $option 2>&1 | grep plan:
> done
  plan: counted as one, since --memory is below 256M, then read again for the rows
  plan: counted as one, since a shape needs the whole text, then read again for the rows
  plan: counted as one, since the text cannot be divided, then read again for the rows
$ sed 's/]}$/,1]}/' large.json > other.json; qvejmap convert other.json -o large --threads 2 --plan --force -q
! plan: counted as one, since the text cannot be divided, then read again for the rows
$ (printf '{"names":{'; seq 90000 | sed 's/.*/"a name that is some data, the number &":&,/'; printf '"":0}}') > names.json
$ for threads in 1 2; do qvejmap convert names.json -o names --threads $threads --plan --force -q; done
! plan: records, since there are many paths
! qvejmap: names.json: 1 value is in no cell (qvejmap check --account tells which)
! plan: records, since there are many paths
! qvejmap: names.json: 1 value is in no cell (qvejmap check --account tells which)
$ echo '{"a":1}' > small.json; qvejmap convert small.json -o small --threads 2 --plan
! plan: records, since the input is small
! qvejmap: 1 table, 1 row in small
