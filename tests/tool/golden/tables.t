# One line a table: name, number of columns, path.
$ qvejmap tables orders.json
  orders\t4\t/root/orders
  orders_customer\t5\t/root/orders/customer
  orders_items\t6\t/root/orders/items
  orders_tags\t5\t/root/orders/tags
$ qvejmap tables --names orders.json
  orders
  orders_customer
  orders_items
  orders_tags
$ qvejmap tables --columns orders.json
  orders\tordinal_root\tORDINAL\t8\t/root
  orders\tordinal_orders\tORDINAL\t8\t/root/orders
  orders\tid\tNUMERIC\t8\t/root/orders/id
  orders\tpaid\tNUMERIC\t8\t/root/orders/paid
  orders_customer\tordinal_root\tORDINAL\t8\t/root
  orders_customer\tordinal_orders\tORDINAL\t8\t/root/orders
  orders_customer\tordinal_customer\tORDINAL\t8\t/root/orders/customer
  orders_customer\tname\tCHARACTER\t8\t/root/orders/customer/name
  orders_customer\tcity\tCHARACTER\t4\t/root/orders/customer/city
  orders_items\tordinal_root\tORDINAL\t8\t/root
  orders_items\tordinal_orders\tORDINAL\t8\t/root/orders
  orders_items\tordinal_items\tORDINAL\t8\t/root/orders/items
  orders_items\tsku\tCHARACTER\t5\t/root/orders/items/sku
  orders_items\tquantity\tNUMERIC\t8\t/root/orders/items/quantity
  orders_items\tprice\tNUMERIC\t8\t/root/orders/items/price
  orders_tags\tordinal_root\tORDINAL\t8\t/root
  orders_tags\tordinal_orders\tORDINAL\t8\t/root/orders
  orders_tags\tordinal_tags\tORDINAL\t8\t/root/orders/tags
  orders_tags\ttags1\tCHARACTER\t6\t/root/orders/tags/tags1
  orders_tags\ttags2\tCHARACTER\t7\t/root/orders/tags/tags2

# Fewer levels of ordinal columns, and none.
$ qvejmap tables --ordinals 1 orders.json
  orders\t3\t/root/orders
  orders_customer\t3\t/root/orders/customer
  orders_items\t4\t/root/orders/items
  orders_tags\t3\t/root/orders/tags
$ qvejmap tables --ordinals 0 --columns orders.json | head -2
  orders\tid\tNUMERIC\t8\t/root/orders/id
  orders\tpaid\tNUMERIC\t8\t/root/orders/paid

# Paths are safe to print, and so are column names.
$ printf '{"a\\u001b[31m\\\\":{"x\\ty\\u009b":1}}' | qvejmap tables - --columns
  a__31m_\tordinal_root\tORDINAL\t8\t/root
  a__31m_\tordinal_a__31m_\tORDINAL\t8\t/root/a\\u001b[31m\\\\
  a__31m_\tx_y__\tNUMERIC\t8\t/root/a\\u001b[31m\\\\/x\\ty\\u009b
! qvejmap: <stdin>: 1 name of a table or column is not the document's: x_y__ for "x\ty\u009b" (--naming original keeps it)

# An outermost container without values.
$ echo '{}' | qvejmap tables -
  root\t1\t
$ echo '[]' | qvejmap tables - --columns
  root\tordinal_root\tORDINAL\t8\t/root

# Names that more than one table has, and one that hides ALLDATA.
$ printf '{"o":{"a":1},"x":{"o":{"b":2}},"O":{"c":3},"o2":{"d":4},"AllData":{"e":5}}' > names.json
$ qvejmap tables names.json
  o\t3\t/root/o
  x_o\t4\t/root/x/o
  O2\t3\t/root/O
  o2\t3\t/root/o2
  AllData\t3\t/root/AllData
! qvejmap: more than one table is named o2: read opens the first, and any by its path; the table AllData hides ALLDATA (--alldata-name gives that another name)
$ qvejmap tables names.json --names -q | tail -1
  AllData
$ qvejmap tables names.json --names --alldata-name Everything | tail -1
  AllData
! qvejmap: more than one table is named o2: read opens the first, and any by its path

# Numbers that a double does not keep are told for each column, of many columns the first few.
$ printf '{"r":[{"id":9007199254740993,"d":"9007199254740993"},\n{"id":1,"c":1e999}]}' | qvejmap tables -
  r\t5\t/root/r
! qvejmap: <stdin>:1:13: r.id has 1 number that a double does not keep, here
! qvejmap: <stdin>:2:13: r.c has 1 number that a double does not keep, here
$ printf '[{%s}]' "$(seq -s, -f '"c%g":1e999' 8)" | qvejmap tables -
  root\t9\t/root
! qvejmap: <stdin>:1:8: root.c1 has 1 number that a double does not keep, here
! qvejmap: <stdin>:1:19: root.c2 has 1 number that a double does not keep, here
! qvejmap: <stdin>:1:30: root.c3 has 1 number that a double does not keep, here
! qvejmap: <stdin>:1:41: root.c4 has 1 number that a double does not keep, here
! qvejmap: <stdin>:1:52: root.c5 has 1 number that a double does not keep, here
! qvejmap: <stdin>: 3 more columns have such numbers (tables --columns names them all, map --exact makes them CHARACTER)

# Which numbers a double keeps: a column of those stays NUMERIC, of others --exact makes it CHARACTER.
$ cat > exact <<'END'
> # exact NUMBER...: the type of a column for each.
> printf '%s' "$*" | sed 's/ /,/g; s/^/[/; s/$/]/' > numbers.json
> qvejmap map numbers.json --exact --ordinals 0 --compact 2> /dev/null | grep -o '"TYPE":"[A-Z]*"' | uniq -c
> END
$ zeros=0.$(printf '%0320d' 0)
> sh exact 0 -0.0e999 9007199254740992 9007199254740994 18014398509481984 18014398509481982 9223372036854776000 100000000000000000000 100000000000000000000000 \
>     10000000000000000000000 1000000000000000 0.12345678901234566 12345678.901234567 -12345678.901234567 -1.23456789012345670000000000 \
>     0.00000000000000000000000012345678901234566 1.50000000000000000000000000000 1.7976931348623157e308 1e308 1e-323 0e-400 12345678901234567e-5 ${zeros}1 \
>     0.1 9007199254740991 9007199254740994.0 144115188075855870 9223372036854775000 12345678901234567000 1234567890123456.8 900719925474099.4e1 0.30000000000000004 \
>     65.61361699999998 1125899906842624.2 1125899906842625.8 4503599627370495.5 5.684341886080801e-14 5.684341886080802e-14 2.2250738585072014e-308 5e-324 \
>     ${zeros}12 ${zeros}1e321 1${zeros#0.}e-320
       43 "TYPE":"NUMERIC"
$ nines=$(printf '%0310d' 0 | tr 0 9) zeros=$(printf '%0320d' 0)
> sh exact 9007199254740993 -9007199254740993 18014398509481983 9223372036854775807 12345678901234567890 9223372036854775808 9007199254740993.0 72057594037927941.0 1234567890123456.7 900719925474099.3e1 \
>     999999999999999999 0.123456789012345678 -1.23456789012345678 1e309 -1E999 1e-400 123456789012345678e-5 $nines $nines.5 1${zeros}.0 0.${zeros}00000000001 \
>     72057594037927936 144115188075855872 0.12345678901234567 0.10000000000000001 65.613616999999977 0.00000000000000000000000012345678901234567 1125899906842624.3 \
>     1125899906842625.7 9007199254740992.5 4503599627370496.5 2.2250738585072013e-308 1.7976931348623158e308 4e-324 9e-324 2e-324 0.${zeros}12345 \
>     1e-99999999999999999999 1e99999999999999999999
       39 "TYPE":"CHARACTER"

# With --columns all of them are named.
$ printf '[{%s}]' "$(seq -s, -f '"c%g":1e999' 7)" | qvejmap tables - --columns --ordinals 0
  root\tc1\tNUMERIC\t8\t/root/c1
  root\tc2\tNUMERIC\t8\t/root/c2
  root\tc3\tNUMERIC\t8\t/root/c3
  root\tc4\tNUMERIC\t8\t/root/c4
  root\tc5\tNUMERIC\t8\t/root/c5
  root\tc6\tNUMERIC\t8\t/root/c6
  root\tc7\tNUMERIC\t8\t/root/c7
! qvejmap: <stdin>:1:8: root.c1 has 1 number that a double does not keep, here
! qvejmap: <stdin>:1:19: root.c2 has 1 number that a double does not keep, here
! qvejmap: <stdin>:1:30: root.c3 has 1 number that a double does not keep, here
! qvejmap: <stdin>:1:41: root.c4 has 1 number that a double does not keep, here
! qvejmap: <stdin>:1:52: root.c5 has 1 number that a double does not keep, here
! qvejmap: <stdin>:1:63: root.c6 has 1 number that a double does not keep, here
! qvejmap: <stdin>:1:74: root.c7 has 1 number that a double does not keep, here
