# On a terminal the tables are a tree, with what is worth knowing of each below it.
$ cat > odd.json <<'END'
> {"orders":[{"id":1,"items":[{"n":1}]},{"items":[{"n":"two"},{"n":3}]},{"id":2,"items":[{"n":4}]}],
>  "x":[{"v":1,"v":2,"deep":{"w":{"k":true}}}]}
> END
$ printf 'script -qec "$*" /dev/null' > terminal
$ printf 'PATH=$(dirname $(command -v qvejmap)) qvejmap diagram "$@"' > own  # without Graphviz
$ sh terminal qvejmap tables orders.json
  orders              2 rows  4 columns  key ordinal_orders\r
  ├─ orders_customer  2 rows  5 columns  key ordinal_customer  1:1\r
  ├─ orders_items     3 rows  6 columns  key ordinal_items\r
  └─ orders_tags      2 rows  5 columns  key ordinal_tags  1:1\r
$ sh terminal qvejmap tables odd.json
  orders           2 rows  3 columns  key ordinal_orders\r
  └─ orders_items  4 rows  4 columns  key ordinal_items\r
        2 rows have no row in orders\r
        values of several kinds: n\r
  x                1 row   3 columns  key ordinal_x\r
  │  1 value overwritten by a later one\r
  └─ deep_w        1 row   5 columns  key ordinal_w  1:1\r
  qvejmap: odd.json: 1 value is in no cell, 1 overwritten (qvejmap check --account tells which)\r
$ sh terminal qvejmap tables odd.json -q
  orders           2 rows  3 columns  key ordinal_orders\r
  └─ orders_items  4 rows  4 columns  key ordinal_items\r
        2 rows have no row in orders\r
        values of several kinds: n\r
  x                1 row   3 columns  key ordinal_x\r
  │  1 value overwritten by a later one\r
  └─ deep_w        1 row   5 columns  key ordinal_w  1:1\r
$ sh terminal qvejmap tables odd.json --table orders_items --table x
  orders_items  4 rows  4 columns  key ordinal_items\r
     values of several kinds: n\r
  x             1 row   3 columns  key ordinal_x\r
     1 value overwritten by a later one\r
  qvejmap: odd.json: 1 value is in no cell, 1 overwritten (qvejmap check --account tells which)\r
# A choice, a map and names of the document's own; one name without letters.
$ printf '{"DATASETS":[{"DSNAME":"o","TABLEPATH":"/root/orders","VARIABLES":[{"NAME":"id","PATH":"/root/orders/id","TYPE":"NUMERIC","LABEL":"Number"}]}]}' > map.json
$ sh terminal qvejmap tables odd.json --map map.json
  o  2 rows  1 column\r
$ printf '{"\\u001b日本":[{"\\t":{"a":1}}]}' > names.json; sh terminal qvejmap tables names.json --naming original
  \\t  1 row   4 columns  key ordinal_\\t\r
# Of many tables the first; a pipe has all.
$ { printf '{"a":1'; for i in $(seq 250); do printf ',"t%d":{"a":1,"u":{"b":2}}' $i; done; printf '}'; } > many.json
$ sh terminal qvejmap tables many.json -q | tail -3; qvejmap tables many.json -q | wc -l
  │  └─ t99_u  1 row   4 columns  key ordinal_u  1:1\r
  ├─ t100      1 row   3 columns  key ordinal_t100  1:1\r
  ... and 301 more tables: all are in a pipe (qvejmap tables FILE | less) and in --format json\r
  501
$ sh terminal qvejmap tables many.json 2>&1 | tail -1
  qvejmap: 501 tables, most of them from names that are data, such as /root (250 names): try --shape auto\r

# As one JSON object, on a terminal too.
$ qvejmap tables odd.json --format json
  {"version":"1.0.0","input":"odd.json",
  "tables":[
  {"name":"orders","path":"/root/orders","rows":2,"primaryKey":"ordinal_orders","parent":null,"foreignKey":null,"oneToOne":false,"orphans":0,"columns":[
    {"name":"ordinal_root","path":"/root","originalName":null,"type":"BIGINT","ordinal":true,"filled":2,"longest":0,"mixed":false,"label":null},
    {"name":"ordinal_orders","path":"/root/orders","originalName":null,"type":"BIGINT","ordinal":true,"filled":2,"longest":0,"mixed":false,"label":null},
    {"name":"id","path":"/root/orders/id","originalName":"id","type":"BIGINT","ordinal":false,"filled":2,"longest":1,"mixed":false,"label":null}]},
  {"name":"orders_items","path":"/root/orders/items","rows":4,"primaryKey":"ordinal_items","parent":"orders","foreignKey":null,"oneToOne":false,"orphans":2,"columns":[
    {"name":"ordinal_root","path":"/root","originalName":null,"type":"BIGINT","ordinal":true,"filled":4,"longest":0,"mixed":false,"label":null},
    {"name":"ordinal_orders","path":"/root/orders","originalName":null,"type":"BIGINT","ordinal":true,"filled":4,"longest":0,"mixed":false,"label":null},
    {"name":"ordinal_items","path":"/root/orders/items","originalName":null,"type":"BIGINT","ordinal":true,"filled":4,"longest":0,"mixed":false,"label":null},
    {"name":"n","path":"/root/orders/items/n","originalName":"n","type":"TEXT","ordinal":false,"filled":4,"longest":3,"mixed":true,"label":null}]},
  {"name":"x","path":"/root/x","rows":1,"primaryKey":"ordinal_x","parent":null,"foreignKey":null,"oneToOne":false,"orphans":0,"columns":[
    {"name":"ordinal_root","path":"/root","originalName":null,"type":"BIGINT","ordinal":true,"filled":1,"longest":0,"mixed":false,"label":null},
    {"name":"ordinal_x","path":"/root/x","originalName":null,"type":"BIGINT","ordinal":true,"filled":1,"longest":0,"mixed":false,"label":null},
    {"name":"v","path":"/root/x/v","originalName":"v","type":"BIGINT","ordinal":false,"filled":1,"longest":1,"mixed":false,"label":null}]},
  {"name":"deep_w","path":"/root/x/deep/w","rows":1,"primaryKey":"ordinal_w","parent":"x","foreignKey":{"column":"ordinal_x","table":"x","parentColumn":"ordinal_x"},"oneToOne":true,"orphans":0,"columns":[
    {"name":"ordinal_root","path":"/root","originalName":null,"type":"BIGINT","ordinal":true,"filled":1,"longest":0,"mixed":false,"label":null},
    {"name":"ordinal_x","path":"/root/x","originalName":null,"type":"BIGINT","ordinal":true,"filled":1,"longest":0,"mixed":false,"label":null},
    {"name":"ordinal_deep","path":"/root/x/deep","originalName":null,"type":"BIGINT","ordinal":true,"filled":1,"longest":0,"mixed":false,"label":null},
    {"name":"ordinal_w","path":"/root/x/deep/w","originalName":null,"type":"BIGINT","ordinal":true,"filled":1,"longest":0,"mixed":false,"label":null},
    {"name":"k","path":"/root/x/deep/w/k","originalName":"k","type":"BOOLEAN","ordinal":false,"filled":1,"longest":0,"mixed":false,"label":null}]}],
  "account":{"values":9,"cells":8,"overwritten":1,"noColumn":0,"noRow":0,"rejected":0,"strayed":0,"cut":0}}
$ qvejmap tables odd.json --format json --map map.json
  {"version":"1.0.0","input":"odd.json",
  "tables":[
  {"name":"o","path":"/root/orders","rows":2,"primaryKey":null,"parent":null,"foreignKey":null,"oneToOne":false,"orphans":0,"columns":[
    {"name":"id","path":"/root/orders/id","originalName":"id","type":"BIGINT","ordinal":false,"filled":2,"longest":1,"mixed":false,"label":"Number"}]}],
  "account":{"values":9,"cells":2,"overwritten":0,"noColumn":7,"noRow":0,"rejected":0,"strayed":0,"cut":0}}
$ sh terminal qvejmap tables odd.json --format json --table x | tail -1
  "account":{"values":2,"cells":1,"overwritten":1,"noColumn":0,"noRow":0,"rejected":0,"strayed":0,"cut":0}}\r
$ qvejmap tables odd.json --format json --names
! qvejmap: --names and --format json exclude each other (qvejmap --help tells more)
? 2
$ qvejmap tables odd.json --format json --columns
! qvejmap: --columns and --format json exclude each other (qvejmap --help tells more)
? 2
$ qvejmap tables odd.json --format csv
! qvejmap: --format: 'csv' is not json (qvejmap --help tells more)
? 2

# Keys under names of a map.
$ cat > keys.json <<'END'
> {"DATASETS":[{"DSNAME":"o","TABLEPATH":"/root/orders","VARIABLES":[{"NAME":"order","PATH":"/root/orders","TYPE":"ORDINAL"}]},
>   {"DSNAME":"i","TABLEPATH":"/root/orders/items","VARIABLES":[{"NAME":"item","PATH":"/root/orders/items","TYPE":"ORDINAL"},
>     {"NAME":"of","PATH":"/root/orders","TYPE":"ORDINAL"}]}]}
> END
$ qvejmap tables orders.json --format json --map keys.json | grep -o '"primaryKey.*'
  "primaryKey":"order","parent":null,"foreignKey":null,"oneToOne":false,"orphans":0,"columns":[
  "primaryKey":"item","parent":"o","foreignKey":{"column":"of","table":"o","parentColumn":"order"},"oneToOne":false,"orphans":0,"columns":[
$ qvejmap diagram orders.json --format dbml --map keys.json | tail -1
  Ref: "i"."of" > "o"."order"

# A diagram as text.
$ qvejmap diagram odd.json --format dot
  digraph tables {
    graph [rankdir=LR, nodesep=0.25, ranksep=0.9, bgcolor=white, fontname="Helvetica,Arial,sans-serif"];
    node [shape=plain, fontname="Helvetica,Arial,sans-serif", fontsize=11];
    edge [dir=both, color="#5a6472"];
    t0 [label=<<TABLE BORDER="0" CELLBORDER="1" CELLSPACING="0" CELLPADDING="4" COLOR="#5a6472">
      <TR><TD COLSPAN="2" ALIGN="LEFT" BGCOLOR="#dbe7f5"><B>orders</B>  2 rows</TD></TR>
      <TR><TD ALIGN="LEFT" PORT="c0">ordinal_root</TD><TD ALIGN="LEFT" PORT="t0">BIGINT</TD></TR>
      <TR><TD ALIGN="LEFT" PORT="c1"><B>ordinal_orders</B></TD><TD ALIGN="LEFT" PORT="t1">BIGINT</TD></TR>
      <TR><TD ALIGN="LEFT" PORT="c2">id</TD><TD ALIGN="LEFT" PORT="t2">BIGINT</TD></TR>
    </TABLE>>];
    t1 [label=<<TABLE BORDER="0" CELLBORDER="1" CELLSPACING="0" CELLPADDING="4" COLOR="#5a6472">
      <TR><TD COLSPAN="2" ALIGN="LEFT" BGCOLOR="#dbe7f5"><B>orders_items</B>  4 rows</TD></TR>
      <TR><TD ALIGN="LEFT" PORT="c0">ordinal_root</TD><TD ALIGN="LEFT" PORT="t0">BIGINT</TD></TR>
      <TR><TD ALIGN="LEFT" PORT="c1"><I>ordinal_orders</I></TD><TD ALIGN="LEFT" PORT="t1">BIGINT</TD></TR>
      <TR><TD ALIGN="LEFT" PORT="c2"><B>ordinal_items</B></TD><TD ALIGN="LEFT" PORT="t2">BIGINT</TD></TR>
      <TR><TD ALIGN="LEFT" PORT="c3">n</TD><TD ALIGN="LEFT" PORT="t3">TEXT</TD></TR>
    </TABLE>>];
    t2 [label=<<TABLE BORDER="0" CELLBORDER="1" CELLSPACING="0" CELLPADDING="4" COLOR="#5a6472">
      <TR><TD COLSPAN="2" ALIGN="LEFT" BGCOLOR="#dbe7f5"><B>x</B>  1 row</TD></TR>
      <TR><TD ALIGN="LEFT" PORT="c0">ordinal_root</TD><TD ALIGN="LEFT" PORT="t0">BIGINT</TD></TR>
      <TR><TD ALIGN="LEFT" PORT="c1"><B>ordinal_x</B></TD><TD ALIGN="LEFT" PORT="t1">BIGINT</TD></TR>
      <TR><TD ALIGN="LEFT" PORT="c2">v</TD><TD ALIGN="LEFT" PORT="t2">BIGINT</TD></TR>
    </TABLE>>];
    t3 [label=<<TABLE BORDER="0" CELLBORDER="1" CELLSPACING="0" CELLPADDING="4" COLOR="#5a6472">
      <TR><TD COLSPAN="2" ALIGN="LEFT" BGCOLOR="#dbe7f5"><B>deep_w</B>  1 row</TD></TR>
      <TR><TD ALIGN="LEFT" PORT="c0">ordinal_root</TD><TD ALIGN="LEFT" PORT="t0">BIGINT</TD></TR>
      <TR><TD ALIGN="LEFT" PORT="c1"><I>ordinal_x</I></TD><TD ALIGN="LEFT" PORT="t1">BIGINT</TD></TR>
      <TR><TD ALIGN="LEFT" PORT="c2">ordinal_deep</TD><TD ALIGN="LEFT" PORT="t2">BIGINT</TD></TR>
      <TR><TD ALIGN="LEFT" PORT="c3"><B>ordinal_w</B></TD><TD ALIGN="LEFT" PORT="t3">BIGINT</TD></TR>
      <TR><TD ALIGN="LEFT" PORT="c4">k</TD><TD ALIGN="LEFT" PORT="t4">BOOLEAN</TD></TR>
    </TABLE>>];
    t0:t1:e -> t1:c1:w [arrowtail=teeodot, arrowhead=crowodot, style=dashed];
    t2:t1:e -> t3:c1:w [arrowtail=teetee, arrowhead=teeodot];
  }
$ qvejmap diagram odd.json --format mermaid
  erDiagram
      "orders" {
          BIGINT ordinal_root
          BIGINT ordinal_orders PK
          BIGINT id
      }
      "orders_items" {
          BIGINT ordinal_root
          BIGINT ordinal_orders FK
          BIGINT ordinal_items PK
          TEXT n
      }
      "x" {
          BIGINT ordinal_root
          BIGINT ordinal_x PK
          BIGINT v
      }
      "deep_w" {
          BIGINT ordinal_root
          BIGINT ordinal_x FK
          BIGINT ordinal_deep
          BIGINT ordinal_w PK
          BOOLEAN k
      }
      "orders" |o..o{ "orders_items" : "ordinal_orders"
      "x" ||--o| "deep_w" : "ordinal_x"
$ qvejmap diagram odd.json --format dbml
  Table "orders" {
    "ordinal_root" BIGINT
    "ordinal_orders" BIGINT [pk]
    "id" BIGINT
  
    Note: '2 rows of /root/orders'
  }
  
  Table "orders_items" {
    "ordinal_root" BIGINT
    "ordinal_orders" BIGINT
    "ordinal_items" BIGINT [pk]
    "n" TEXT
  
    Note: '4 rows of /root/orders/items'
  }
  
  Table "x" {
    "ordinal_root" BIGINT
    "ordinal_x" BIGINT [pk]
    "v" BIGINT
  
    Note: '1 row of /root/x'
  }
  
  Table "deep_w" {
    "ordinal_root" BIGINT
    "ordinal_x" BIGINT
    "ordinal_deep" BIGINT
    "ordinal_w" BIGINT [pk]
    "k" BOOLEAN
  
    Note: '1 row of /root/x/deep/w'
  }
  
  Ref: "deep_w"."ordinal_x" - "x"."ordinal_x"
$ qvejmap diagram odd.json --format mermaid --map map.json
  erDiagram
      "o" {
          BIGINT id "Number"
      }
$ qvejmap diagram odd.json --format png
! qvejmap: --format: 'png' is none of svg, dot, mermaid, dbml (qvejmap --help tells more)
? 2
# The format is that of the ending, when there is one.
$ mkdir -p v1.0; for name in a.gv a.dot a.mmd a.mermaid a.dbml a.svg b.SVG v1.0/a; do
>     sh own orders.json -o $name && head -c 9 $name | head -1; echo
> done
  digraph t
  digraph t
  erDiagram
  erDiagram
  Table "or
  <svg xmln
  <svg xmln
  <svg xmln
# An ending of no picture needs to be told.
$ qvejmap diagram orders.json -o a.png; ls a.png
! qvejmap: -o a.png: no picture has this ending; --format says which of svg, dot, mermaid, dbml it is (qvejmap --help tells more)
! ls: cannot access 'a.png': No such file or directory
? 2
$ qvejmap diagram orders.json -o a.txt --format mermaid && head -1 a.txt
  erDiagram
$ qvejmap diagram orders.json -o a.dbml
! qvejmap: a.dbml: the file exists (--force replaces it)
? 5
$ qvejmap diagram orders.json -o a.dbml --format dot --force && head -1 a.dbml
  digraph tables {
$ qvejmap diagram orders.json -o none/a.svg
! qvejmap: none: No such file or directory
? 5
# What is left out is said; the columns of keys are not.
$ qvejmap diagram many.json --format mermaid | tail -1
      %% 301 further tables left out (--table and --path choose tables)
! qvejmap: many.json: 301 further tables left out (--table and --path choose tables)
! qvejmap: 501 tables, most of them from names that are data, such as /root (250 names): try --shape auto
$ printf '[{%s,"x":[{"y":1}]}]' "$(seq -s, -f '"c%g":1' 40)" > wide.json
$ qvejmap diagram wide.json --format mermaid | tail -9
      }
      %% and 11 more columns
      "x" {
          BIGINT ordinal_root FK
          BIGINT ordinal_x PK
          BIGINT y
      }
      "root" ||--o| "x" : "ordinal_root"
      %% 11 further columns left out (--table and --path choose tables)
! qvejmap: wide.json: 11 further columns left out (--table and --path choose tables)
$ qvejmap diagram wide.json --format dot | tail -8
      <TR><TD COLSPAN="2" ALIGN="LEFT" BGCOLOR="#dbe7f5"><B>x</B>  1 row</TD></TR>
      <TR><TD ALIGN="LEFT" PORT="c0"><I>ordinal_root</I></TD><TD ALIGN="LEFT" PORT="t0">BIGINT</TD></TR>
      <TR><TD ALIGN="LEFT" PORT="c1"><B>ordinal_x</B></TD><TD ALIGN="LEFT" PORT="t1">BIGINT</TD></TR>
      <TR><TD ALIGN="LEFT" PORT="c2">y</TD><TD ALIGN="LEFT" PORT="t2">BIGINT</TD></TR>
    </TABLE>>];
    t0:t0:e -> t1:c0:w [arrowtail=teetee, arrowhead=teeodot];
    label="11 further columns left out (--table and --path choose tables)";
  }
! qvejmap: wide.json: 11 further columns left out (--table and --path choose tables)
$ printf '{"DATASETS":[{"DSNAME":"w","TABLEPATH":"/root","VARIABLES":[%s,{"NAME":"last","PATH":"/root","TYPE":"ORDINAL"}]}]}' \
>     "$(seq -s, -f '{"NAME":"v%g","PATH":"/root/c1","TYPE":"NUMERIC"}' 40)" > wide_map.json
$ qvejmap diagram wide.json --format mermaid --map wide_map.json -q | tail -4
          BIGINT last PK
      }
      %% and 11 more columns
      %% 11 further columns left out (--table and --path choose tables)
$ qvejmap diagram wide.json --format dbml -q | grep -e more -e out -e Ref
    Note: '1 row of /root; 11 more columns'
  Ref: "x"."ordinal_root" - "root"."ordinal_root"
  // 11 further columns left out (--table and --path choose tables)

# A picture without Graphviz: a layout of our own.  With it: what dot draws, or its failure.
$ sh own orders.json | grep -v '^\.tables\|^<marker\|^@media\|^  \.'
  <svg xmlns="http://www.w3.org/2000/svg" class="tables" role="img" width="464.6" height="459" viewBox="-16 -16 464.6 459">
  <title>Tables and their keys</title>
  <style>
  }
  </style>
  <defs>
  </defs>
  <g>
  <path class="arrow" data-from="0" data-to="1" d="M177.1 55.5H202.1L216.1 55.5H241.1" marker-start="url(#one)" marker-end="url(#maybe-one)"/>
  <path class="arrow" data-from="0" data-to="2" d="M177.1 55.5H202.1Q209.1 55.5 209.1 62.5V190.5Q209.1 197.5 216.1 197.5H241.1" marker-start="url(#one)" marker-end="url(#many)"/>
  <path class="arrow" data-from="0" data-to="3" d="M177.1 55.5H202.1Q209.1 55.5 209.1 62.5V351.5Q209.1 358.5 216.1 358.5H241.1" marker-start="url(#one)" marker-end="url(#maybe-one)"/>
  <g>
  <title>orders: /root/orders</title>
  <rect class="box" x="0" y="0" width="177.1" height="105" rx="4"/>
  <rect class="head" x="0" y="0" width="177.1" height="25" rx="4"/>
  <text x="9" y="17.5" class="name">orders</text>
  <text x="168.1" y="17.5" class="soft" text-anchor="end">2 rows</text>
  <text x="9" y="41.5">ordinal_root</text>
  <text x="168.1" y="41.5" class="soft" text-anchor="end">BIGINT</text>
  <text x="9" y="60.5" class="key">ordinal_orders</text>
  <text x="168.1" y="60.5" class="soft" text-anchor="end">BIGINT</text>
  <text x="9" y="79.5">id</text>
  <text x="168.1" y="79.5" class="soft" text-anchor="end">BIGINT</text>
  <text x="9" y="98.5">paid</text>
  <text x="168.1" y="98.5" class="soft" text-anchor="end">BOOLEAN</text>
  </g>
  <g>
  <title>orders_customer: /root/orders/customer</title>
  <rect class="box" x="241.1" y="0" width="191.5" height="124" rx="4"/>
  <rect class="head" x="241.1" y="0" width="191.5" height="25" rx="4"/>
  <text x="250.1" y="17.5" class="name">orders_customer</text>
  <text x="423.6" y="17.5" class="soft" text-anchor="end">2 rows</text>
  <text x="250.1" y="41.5">ordinal_root</text>
  <text x="423.6" y="41.5" class="soft" text-anchor="end">BIGINT</text>
  <text x="250.1" y="60.5" class="up">ordinal_orders</text>
  <text x="423.6" y="60.5" class="soft" text-anchor="end">BIGINT</text>
  <text x="250.1" y="79.5" class="key">ordinal_customer</text>
  <text x="423.6" y="79.5" class="soft" text-anchor="end">BIGINT</text>
  <text x="250.1" y="98.5">name</text>
  <text x="423.6" y="98.5" class="soft" text-anchor="end">TEXT</text>
  <text x="250.1" y="117.5">city</text>
  <text x="423.6" y="117.5" class="soft" text-anchor="end">TEXT</text>
  </g>
  <g>
  <title>orders_items: /root/orders/items</title>
  <rect class="box" x="241.1" y="142" width="177.1" height="143" rx="4"/>
  <rect class="head" x="241.1" y="142" width="177.1" height="25" rx="4"/>
  <text x="250.1" y="159.5" class="name">orders_items</text>
  <text x="409.1" y="159.5" class="soft" text-anchor="end">3 rows</text>
  <text x="250.1" y="183.5">ordinal_root</text>
  <text x="409.1" y="183.5" class="soft" text-anchor="end">BIGINT</text>
  <text x="250.1" y="202.5" class="up">ordinal_orders</text>
  <text x="409.1" y="202.5" class="soft" text-anchor="end">BIGINT</text>
  <text x="250.1" y="221.5" class="key">ordinal_items</text>
  <text x="409.1" y="221.5" class="soft" text-anchor="end">BIGINT</text>
  <text x="250.1" y="240.5">sku</text>
  <text x="409.1" y="240.5" class="soft" text-anchor="end">TEXT</text>
  <text x="250.1" y="259.5">quantity</text>
  <text x="409.1" y="259.5" class="soft" text-anchor="end">BIGINT</text>
  <text x="250.1" y="278.5">price</text>
  <text x="409.1" y="278.5" class="soft" text-anchor="end">DOUBLE</text>
  </g>
  <g>
  <title>orders_tags: /root/orders/tags</title>
  <rect class="box" x="241.1" y="303" width="177.1" height="124" rx="4"/>
  <rect class="head" x="241.1" y="303" width="177.1" height="25" rx="4"/>
  <text x="250.1" y="320.5" class="name">orders_tags</text>
  <text x="409.1" y="320.5" class="soft" text-anchor="end">2 rows</text>
  <text x="250.1" y="344.5">ordinal_root</text>
  <text x="409.1" y="344.5" class="soft" text-anchor="end">BIGINT</text>
  <text x="250.1" y="363.5" class="up">ordinal_orders</text>
  <text x="409.1" y="363.5" class="soft" text-anchor="end">BIGINT</text>
  <text x="250.1" y="382.5" class="key">ordinal_tags</text>
  <text x="409.1" y="382.5" class="soft" text-anchor="end">BIGINT</text>
  <text x="250.1" y="401.5">tags1</text>
  <text x="409.1" y="401.5" class="soft" text-anchor="end">TEXT</text>
  <text x="250.1" y="420.5">tags2</text>
  <text x="409.1" y="420.5" class="soft" text-anchor="end">TEXT</text>
  </g>
  </g>
  </svg>
$ sh own odd.json | grep arrow.loose
  <path class="arrow loose" data-from="0" data-to="1" d="M177.1 55.5H202.1L216.1 55.5H241.1" marker-start="url(#one)" marker-end="url(#many)"/>
$ sh own many.json -q | grep further
  <text x="0" y="12296.5" class="soft">301 further tables left out (--table and --path choose tables)</text>
$ mkdir bin; printf '#!/bin/sh\ncat > given; echo "<svg/>"\n' > bin/dot; chmod +x bin/dot
$ PATH=$PWD/bin:$PATH qvejmap diagram orders.json -o b.svg; cat b.svg; qvejmap diagram orders.json --format dot | cmp - given
  <svg/>
$ printf '#!/bin/sh\necho broken >&2\nexit 3\n' > bin/dot
$ PATH=$PWD/bin:$PATH qvejmap diagram orders.json -o c.svg; ls c.svg
! qvejmap: the program dot of Graphviz: it ended with exit code 3: broken
! ls: cannot access 'c.svg': No such file or directory
? 2
$ printf '#!/bin/sh\nkill -9 $$\n' > bin/dot; PATH=$PWD/bin:$PATH qvejmap diagram orders.json
! qvejmap: the program dot of Graphviz: it was ended by signal 9
? 5
$ printf '#!/bin/sh\n' > bin/dot; PATH=$PWD/bin:$PATH qvejmap diagram orders.json
! qvejmap: the program dot of Graphviz: it drew nothing
? 5
