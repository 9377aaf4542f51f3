# On a terminal, which adds the CR to each line end: lists are aligned, and no control character
# arrives raw.
$ script -qec 'qvejmap tables orders.json' /dev/null
  orders              2 rows  4 columns  key ordinal_orders\r
  ├─ orders_customer  2 rows  5 columns  key ordinal_customer  1:1\r
  ├─ orders_items     3 rows  6 columns  key ordinal_items\r
  └─ orders_tags      2 rows  5 columns  key ordinal_tags  1:1\r
$ printf '{"a\\u001b[31m\\u009b":"x\\u001b[0m\\ty\\u0085\\u007f\\n,z","日本語":[{"k":1}]}' > nasty.json
$ script -qec 'qvejmap tables nasty.json' /dev/null
  root          1 row   2 columns  key ordinal_root\r
  └─ _________  1 row   3 columns  key ordinal__________  1:1\r
  qvejmap: nasty.json: 2 names of tables and columns are not the document's, such as a__31m__ for "a\\u001b[31m\\u009b" (--naming original keeps them)\r
$ script -qec 'qvejmap tables --columns nasty.json' /dev/null
  root       ordinal_root       ORDINAL    8   /root\r
  root       a__31m__           CHARACTER  13  /root/a\\u001b[31m\\u009b\r
  _________  ordinal_root       ORDINAL    8   /root\r
  _________  ordinal__________  ORDINAL    8   /root/日本語\r
  _________  k                  NUMERIC    8   /root/日本語/k\r
  qvejmap: nasty.json: 2 names of tables and columns are not the document's, such as a__31m__ for "a\\u001b[31m\\u009b" (--naming original keeps them)\r
$ script -qec 'qvejmap map nasty.json --ordinals 0 --compact' /dev/null
  {"DATASETS":[{"DSNAME":"root","TABLEPATH":"/root","VARIABLES":[{"NAME":"a__31m__","TYPE":"CHARACTER","PATH":"/root/a\\u001b[31m\\u009b","CURRENT_LENGTH":13}]},{"DSNAME":"_________","TABLEPATH":"/root/日本語","VARIABLES":[{"NAME":"k","TYPE":"NUMERIC","PATH":"/root/日本語/k"}]}]}\r
$ script -qec 'qvejmap records nasty.json' /dev/null
  NOVAL\t/root\t\r
  STRING\t/root/a\\u001b[31m\\u009b\tx\\u001b[0m\\ty\\u0085\\u007f\\n,z\r
  NOVAL\t/root/日本語\t\r
  NUMBER\t/root/日本語/k\t1\r
$ script -qec 'qvejmap read nasty.json root' /dev/null
  ordinal_root,a__31m__\r
  1,"x\\u001b[0m\\ty\\u0085\\u007f\\n,z"\r
  qvejmap: nasty.json: 1 name of a table or column is not the document's: a__31m__ for "a\\u001b[31m\\u009b" (--naming original keeps it)\r
$ script -qec 'qvejmap read nasty.json root --format ndjson' /dev/null
  {"ordinal_root":1,"a__31m__":"x\\u001b[0m\\ty\\u0085\\u007f\\n,z"}\r
  qvejmap: nasty.json: 1 name of a table or column is not the document's: a__31m__ for "a\\u001b[31m\\u009b" (--naming original keeps it)\r
$ script -qec 'qvejmap read nasty.json ALLDATA' /dev/null
  P,P1,P2,V,Value\r
  1,a\\u001b[31m\\u009b,,1,"x\\u001b[0m\\ty\\u0085\\u007f\\n,z"\r
  1,日本語,,0,\r
  2,日本語,k,1,1\r
$ printf '[]' > "$(printf 'a\033')"; script -qec 'qvejmap check a*' /dev/null
  a\\u001b: well formed\r
