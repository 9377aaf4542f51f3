# convert into a folder that an earlier run filled.  datapackage.json says what that was.
$ qvejmap convert orders.json -o out -q --null NA; sed -E 's/"modified":"[-0-9T:.]+Z"/"modified":TIME/' out/datapackage.json
  {"qvejmap":{"version":"1.0.0","input":"orders.json","options":["--format=csv","--null=NA"]},
  "resources":[
  {"name":"orders","title":"orders","path":"orders.csv","format":"csv","rows":2,"bytes":68,"modified":TIME,"schema":{"fields":[
  {"name":"ordinal_root","type":"integer","path":"/root"},
  {"name":"ordinal_orders","type":"integer","path":"/root/orders"},
  {"name":"id","type":"integer","originalName":"id","path":"/root/orders/id"},
  {"name":"paid","type":"boolean","originalName":"paid","path":"/root/orders/paid"}],"missingValues":["NA"],"primaryKey":["ordinal_orders"]}},
  {"name":"orders_customer","title":"orders_customer","path":"orders_customer.csv","format":"csv","rows":2,"bytes":94,"modified":TIME,"schema":{"fields":[
  {"name":"ordinal_root","type":"integer","path":"/root"},
  {"name":"ordinal_orders","type":"integer","path":"/root/orders"},
  {"name":"ordinal_customer","type":"integer","path":"/root/orders/customer"},
  {"name":"name","type":"string","originalName":"name","path":"/root/orders/customer/name"},
  {"name":"city","type":"string","originalName":"city","path":"/root/orders/customer/city"}],"missingValues":["NA"],"primaryKey":["ordinal_customer"],"foreignKeys":[{"fields":["ordinal_orders"],"reference":{"resource":"orders","fields":["ordinal_orders"]}}]}},
  {"name":"orders_items","title":"orders_items","path":"orders_items.csv","format":"csv","rows":3,"bytes":120,"modified":TIME,"schema":{"fields":[
  {"name":"ordinal_root","type":"integer","path":"/root"},
  {"name":"ordinal_orders","type":"integer","path":"/root/orders"},
  {"name":"ordinal_items","type":"integer","path":"/root/orders/items"},
  {"name":"sku","type":"string","originalName":"sku","path":"/root/orders/items/sku"},
  {"name":"quantity","type":"integer","originalName":"quantity","path":"/root/orders/items/quantity"},
  {"name":"price","type":"number","originalName":"price","path":"/root/orders/items/price"}],"missingValues":["NA"],"primaryKey":["ordinal_items"],"foreignKeys":[{"fields":["ordinal_orders"],"reference":{"resource":"orders","fields":["ordinal_orders"]}}]}},
  {"name":"orders_tags","title":"orders_tags","path":"orders_tags.csv","format":"csv","rows":2,"bytes":91,"modified":TIME,"schema":{"fields":[
  {"name":"ordinal_root","type":"integer","path":"/root"},
  {"name":"ordinal_orders","type":"integer","path":"/root/orders"},
  {"name":"ordinal_tags","type":"integer","path":"/root/orders/tags"},
  {"name":"tags1","type":"string","originalName":"tags1","path":"/root/orders/tags/tags1"},
  {"name":"tags2","type":"string","originalName":"tags2","path":"/root/orders/tags/tags2"}],"missingValues":["NA"],"primaryKey":["ordinal_tags"],"foreignKeys":[{"fields":["ordinal_orders"],"reference":{"resource":"orders","fields":["ordinal_orders"]}}]}}
  ]}
# The time is the file's, to the nanosecond.
$ for file in out/*.csv; do TZ=UTC stat -c '%n %.9Y' $file; done > times
> python3 - <<'END'
> import datetime, json, re
> package = json.load(open("out/datapackage.json"))
> for line in open("times"):
>     name, time = line.split()
>     text = next(r["modified"] for r in package["resources"] if "out/" + r["path"] == name)
>     second = datetime.datetime.strptime(text[:19] + "Z", "%Y-%m-%dT%H:%M:%S%z").timestamp()
>     print(name, time == "%d.%s" % (second, text[20:29]))
> END
  out/orders.csv True
  out/orders_customer.csv True
  out/orders_items.csv True
  out/orders_tags.csv True

# Another format, other tables: what the first run made goes, but for what a person changed since.
# What qvejmap did not make stays.
$ echo more >> out/orders_tags.csv; touch -d 2001-02-03 out/orders_customer.csv; rm out/orders_items.csv
> echo mine > out/notes.csv; qvejmap convert orders.json -o out --force --format ndjson; ls out
  datapackage.json
  notes.csv
  orders.ndjson
  orders_customer.csv
  orders_customer.ndjson
  orders_items.ndjson
  orders_tags.csv
  orders_tags.ndjson
! qvejmap: out/orders_customer.csv: changed since an earlier run wrote it, it stays; likewise 1 more
! qvejmap: 4 tables, 9 rows in out
$ echo '{"z":[{"a":1}]}' | qvejmap convert - -o out --force --alldata; ls out
  ALLDATA.csv
  datapackage.json
  notes.csv
  orders_customer.csv
  orders_tags.csv
  z.csv
! qvejmap: 2 tables, 3 rows in out
# The same tables again: a file that has the name of a new one is replaced, changed or not.
$ echo more >> out/z.csv; echo '{"z":[{"a":2}]}' | qvejmap convert - -o out --force; cat out/z.csv; ls -A out
  ordinal_root,ordinal_z,a\r
  1,1,2\r
  datapackage.json
  notes.csv
  orders_customer.csv
  orders_tags.csv
  z.csv
! qvejmap: 1 table, 1 row in out
# Without --force nothing changes.
$ qvejmap convert orders.json -o out; ls -A out
  datapackage.json
  notes.csv
  orders_customer.csv
  orders_tags.csv
  z.csv
! qvejmap: out/orders_customer.csv: the file exists (--force replaces it)

# A document that is one of the files stays, under whatever name.
$ qvejmap convert orders.json -o two --format ndjson -q; ln two/orders_items.ndjson items.ndjson
> qvejmap convert items.ndjson -o two --force; ls two
  datapackage.json
  orders_items.ndjson
  root.csv
! qvejmap: two/orders_items.ndjson: the document itself, it stays
! qvejmap: 1 table, 3 rows in two

# What is no package of ours lists nothing: only files of the same names are replaced.
$ mkdir own; echo mine > own/keep.csv; echo '{"a":[{"b":1}]}' > a.json; head='{"qvejmap":{"version":"1"},"resources":['
> item="$(TZ=UTC stat -c '"path":"keep.csv","bytes":%s,"modified":"%y"' own/keep.csv | sed 's/ +0000"/Z"/;s/ /T/')"
> for text in '' "$head{$item}" "{\"resources\":[{$item}]}" "{\"qvejmap\":{\"version\":1},\"resources\":[{$item}]}" \
>     "$head{$item},{\"path\":\"../keep.csv\"}]}" "$head{$item},{\"path\":7}]}" "$head{$item},{\"path\":\".\"}]}" \
>     "$head{$item},{\"path\":\"\\u0000\"}]}" "$head{$item},{\"path\":\"/etc/passwd\"}]}" \
>     "$head{$item},{\"bytes\":\"2\"}]}" "$head{$item},{\"modified\":null}]}" "$head{$item},{\"bytes\":-2}]}"; do
>     printf '%s' "$text" > own/datapackage.json; qvejmap convert a.json -o own --force 2> said; head -1 said; cat own/keep.csv
> done | sort | uniq -c
> printf '%s' "$head{$item}]}" > own/datapackage.json; qvejmap convert a.json -o own --force; ls own
       12 mine
       12 qvejmap: own had no datapackage.json of qvejmap: files were replaced by name, and no others removed
  a.csv
  datapackage.json
! qvejmap: 1 table, 1 row in own
# What lacks a member, or is a folder by now, is not listed.
$ echo mine > own/keep.csv
> for text in "{\"path\":\"keep.csv\"},{\"name\":\"keep\"}" '"keep.csv"' '{"path":"keep.csv","bytes":4096,"modified":"x"}'; do
>     printf '{"resources":[%s],"qvejmap":{"version":""}}' "$text" > own/datapackage.json; qvejmap convert a.json -o own --force; cat own/keep.csv
> done
  mine
  mine
  mine
! qvejmap: 1 table, 1 row in own
! qvejmap: 1 table, 1 row in own
! qvejmap: own/keep.csv: changed since an earlier run wrote it, it stays
! qvejmap: 1 table, 1 row in own
$ rm own/datapackage.json; qvejmap convert a.json -o own --force -q; ls own
  a.csv
  datapackage.json
  keep.csv

# Names of resources are all different, and of letters, digits and "._-".
$ for name in o2 O2 a.b a..b .h é / a~2; do printf ',{"DSNAME":"%s","TABLEPATH":"/root"}' $name; done | sed '1s/,/{"DATASETS":[/;s/$/]}/' > odd.map
> cp a.json "$(printf 'b\377"\n.json')"; qvejmap convert b*.json --map odd.map -o odd -q 2> said; sed -E 's/,"path".*//' odd/datapackage.json
  {"qvejmap":{"version":"1.0.0","input":"b�\\"\\n.json","options":["--format=csv","--map=odd.map"]},
  "resources":[
  {"name":"o2","title":"o2"
  {"name":"o2.n2","title":"O2"
  {"name":"a..b","title":"a.b"
  {"name":"a....b","title":"a..b"
  {"name":".x2eh","title":".h"
  {"name":".xc3.xa9","title":"é"
  {"name":".x2f","title":"/"
  {"name":"a.x7e2","title":"a~2"
  ]}

# One at a time: the second is refused before it reads anything, and leaves nothing.
$ mkdir new; flock new sh -c 'qvejmap convert none.json -o new; qvejmap convert none.json -o new --force'; ls -A new
! qvejmap: new: another qvejmap is writing to this directory
! qvejmap: new: another qvejmap is writing to this directory
$ qvejmap convert a.json -o new -q; ls -A new
  a.csv
  datapackage.json
