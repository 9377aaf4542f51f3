# What is told of types and keys, in words and in datapackage.json.
$ echo '{"orders":[{"id":1,"items":[{}]},{"items":[{}]}]}' > orphan.json; qvejmap convert orphan.json -o orphan; grep -o '"primaryKey.*' orphan/datapackage.json
  "primaryKey":["ordinal_orders"]}},
  "primaryKey":["ordinal_items"]}}
! qvejmap: 2 tables, 3 rows in orphan
! qvejmap: 1 row of orders_items has no row in orders, so ordinal_orders is no foreign key
$ echo '[{"d":"2024-02-29","t":"2024-02-29T13:05:00.5Z","n":"2024-02-29T13:05","x":9223372036854775808,"y":1.5,"b":true,"z":null},{"d":null,"x":0.5,"y":2,"w":"2024-02-29"},{"w":"-"}]' > types.json; qvejmap convert types.json -o types -q; grep '"type"' types/datapackage.json
  {"name":"ordinal_root","type":"integer","path":"/root"},
  {"name":"d","type":"date","originalName":"d","path":"/root/d"},
  {"name":"t","type":"datetime","format":"any","originalName":"t","path":"/root/t"},
  {"name":"n","type":"datetime","format":"any","originalName":"n","path":"/root/n"},
  {"name":"x","type":"number","originalName":"x","path":"/root/x"},
  {"name":"y","type":"number","originalName":"y","path":"/root/y"},
  {"name":"b","type":"boolean","originalName":"b","path":"/root/b"},
  {"name":"z","type":"string","originalName":"z","path":"/root/z"},
  {"name":"w","type":"string","originalName":"w","path":"/root/w"}],"missingValues":[""],"primaryKey":["ordinal_root"]}}
$ qvejmap convert types.json -o types -q --force --dates off --format ndjson; grep '"type"' types/datapackage.json | grep -c date
  0
? 1
# A number that a map takes for a time is written as that number.
$ echo '[{"at":1709211900}]' > unix.json; echo '{"DATASETS":[{"DSNAME":"t","TABLEPATH":"/root","VARIABLES":[{"NAME":"at","PATH":"/root/at","TYPE":"NUMERIC","INFORMAT":["unix",0,0],"LABEL":"When"}]}]}' > unix.map; qvejmap convert unix.json --map unix.map -o unix -q; cat unix/t.csv; grep '"type"' unix/datapackage.json
  at\r
  1709211900\r
  {"name":"at","type":"number","title":"When","originalName":"at","path":"/root/at"}],"missingValues":[""]}}
# TSV, and compressed files of text.
$ printf '%s' '[{"a":"x,y","b":"p\tq"},{"a":"\"","b":null}]' > sep.json; qvejmap convert sep.json -o sep -q --format tsv --gzip; ls sep; gunzip -c sep/root.tsv.gz; grep -o '"path":"root.*dialect[^}]*}' sep/datapackage.json
  datapackage.json
  root.tsv.gz
  ordinal_root\ta\tb\r
  1\tx,y\t"p\tq"\r
  2\t""""\t\r
  "path":"root.tsv.gz","format":"tsv","compression":"gz","dialect":{"delimiter":"\\t"}
$ qvejmap convert sep.json -o sep --force --format ndjson --zstd; ls sep; zstd -dcq sep/root.ndjson.zst; qvejmap read sep/root.ndjson.zst root -q
  datapackage.json
  root.ndjson.zst
  {"ordinal_root":1,"a":"x,y","b":"p\\tq"}
  {"ordinal_root":2,"a":"\\"","b":null}
  ordinal_root,ordinal_root2,a,b\r
  1,1,"x,y",p\tq\r
  2,2,"""",\r
! qvejmap: 1 table, 2 rows in sep
$ qvejmap convert sep.json -o sep --force --null NA --gzip -q; ls sep; gunzip -c sep/root.csv.gz; grep -o '"missing[^]]*]' sep/datapackage.json
  datapackage.json
  root.csv.gz
  ordinal_root,a,b\r
  1,"x,y",p\tq\r
  2,"""",NA\r
  "missingValues":["NA"]
# What does not fit together.
$ qvejmap convert sep.json -o x --gzip --zstd; qvejmap convert sep.json -o x --format parquet --gzip
! qvejmap: --gzip and --zstd exclude each other (qvejmap --help tells more)
! qvejmap: --gzip: parquet has a compression of its own, or none (qvejmap --help tells more)
? 2
# Columns of several kinds, and numbers that look like times, are told in every format.
$ printf '[{"n":1,"t":"x","created":1700000000,"sent_at":1700000000000,"count":1700000000},{"n":true,"t":2,"created":1700000001,"sent_at":1700000000001,"count":1700000001},{"t":null}]' > kinds.json
$ for format in csv tsv ndjson sqlite; do qvejmap convert kinds.json -o kinds.$format --format $format; done; cat kinds.tsv/root.tsv
  ordinal_root\tn\tt\tcreated\tsent_at\tcount\r
  1\t1\tx\t1700000000\t1700000000000\t1700000000\r
  2\t1\t2\t1700000001\t1700000000001\t1700000001\r
  3\t\t\t\t\t\r
! qvejmap: 1 table, 3 rows in kinds.csv
! qvejmap: root.n has values of several kinds, all as numbers: true is 1, false is 0; 1 other column has such values
! qvejmap: root.created looks like seconds since 1970: with INFORMAT unix in a map it is a time; 1 other column looks like times
! qvejmap: 1 table, 3 rows in kinds.tsv
! qvejmap: root.n has values of several kinds, all as numbers: true is 1, false is 0; 1 other column has such values
! qvejmap: root.created looks like seconds since 1970: with INFORMAT unix in a map it is a time; 1 other column looks like times
! qvejmap: 1 table, 3 rows in kinds.ndjson
! qvejmap: root.n has values of several kinds, all as numbers: true is 1, false is 0; 1 other column has such values
! qvejmap: root.created looks like seconds since 1970: with INFORMAT unix in a map it is a time; 1 other column looks like times
! qvejmap: 1 table, 3 rows in kinds.sqlite
! qvejmap: root.n has values of several kinds, all as numbers: true is 1, false is 0; 1 other column has such values
! qvejmap: root.created looks like seconds since 1970: with INFORMAT unix in a map it is a time; 1 other column looks like times
$ echo '[{"n":1,"created":1700000000},{"n":true,"created":"1700000000"},{"n":"x"}]' | qvejmap convert - -o one; echo '[{"n":1,"created":1700000000},{"n":2,"created":17}]' | qvejmap convert - -o none
! qvejmap: 1 table, 3 rows in one
! qvejmap: root.n has values of several kinds, all as texts; 1 other column has such values
! qvejmap: 1 table, 2 rows in none
$ qvejmap convert sep.json -o x --replace; qvejmap convert sep.json -o x.db --replace --append; qvejmap convert sep.json -o x --schema s
! qvejmap: --replace is for SQLite and PostgreSQL (qvejmap --help tells more)
! qvejmap: --replace and --append exclude each other (qvejmap --help tells more)
! qvejmap: --schema is for PostgreSQL (qvejmap --help tells more)
? 2
$ qvejmap convert sep.json -o x --dates on; qvejmap convert sep.json -o x --format postgres; qvejmap convert sep.json -o postgres://h/d --format csv
! qvejmap: --dates: 'on' is none of auto, off (qvejmap --help tells more)
! qvejmap: --format postgres: -o takes an address such as postgresql://host/database (qvejmap --help tells more)
! qvejmap: --format: a database takes no csv (qvejmap --help tells more)
? 2
$ qvejmap read sep.json root --format sqlite; qvejmap convert sep.json -o x --format excel; qvejmap convert sep.json -o x.xlsx --null NA
! qvejmap: --format: 'sqlite' is none of csv, tsv, ndjson (qvejmap --help tells more)
! qvejmap: --format: 'excel' is none of csv, tsv, ndjson, sqlite, parquet, arrow, postgres, xlsx (qvejmap --help tells more)
! qvejmap: --null: xlsx has a null of its own (qvejmap --help tells more)
? 2
$ qvejmap convert sep.json -o x.DB --append --force; qvejmap convert sep.json -o postgres://h/d --schema ''; qvejmap convert sep.json -o postgres://h/d --schema $(printf 's%.0s' $(seq 64))
! qvejmap: --append changes a database, and --force replaces the whole file: they exclude each other (qvejmap --help tells more)
! qvejmap: --schema: a name has 1 to 63 bytes (qvejmap --help tells more)
! qvejmap: --schema: a name has 1 to 63 bytes (qvejmap --help tells more)
? 2
