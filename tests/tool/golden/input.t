# JSON Lines: the values are the elements of one array.
$ printf '{"id":1,"tags":["a"]}\n\n  \t\r\n {"id":"x","sub":{"n":2}} \r\n{"tags":["b","c"]}' > lines
$ qvejmap convert lines --lines -q -o got --alldata && qvejmap records lines --lines > got/records
> sed 's/$/,/; /^[[:space:]]*,$/s/,//; 1s/^/[/; $s/,$/]/' lines > array; cat array
> qvejmap convert array -q -o want --alldata && qvejmap records array > want/records && diff -r -x datapackage.json want got
  [{"id":1,"tags":["a"]},
  
    \t\r
   {"id":"x","sub":{"n":2}} \r,
  {"tags":["b","c"]}]\c
$ qvejmap read lines root --lines
  ordinal_root,id\r
  1,1\r
  2,x\r
$ qvejmap map explain lines root.id --lines
  root.id: /root/id
  CHARACTER, since 1 value of 2 is a string
  kind\tvalues\tfirst
  NUMBER\t1\tlines:1:7
  STRING\t1\tlines:4:8
  longest\t1 byte\tlines:1:7
$ qvejmap check /dev/null --lines
  /dev/null: well formed
$ printf '1\n"x"\n[2]\nnull\n' | qvejmap read - ALLDATA --lines
  P,P1,V,Value\r
  1,element1,1,1\r
  1,element2,1,x\r
  1,element3,1,2\r
  1,element1,1,null\r

# The name tells, too.
$ for name in lines.ndjson lines.jsonl lines.jsonl.gz lines.ndjson.zst; do
>     cp lines $name; qvejmap tables $name --names | wc -l
> done
  3
  3
  3
  3
$ printf '[\n1]' > pretty.jsonl; qvejmap check pretty.jsonl
! qvejmap: pretty.jsonl:1:2: the value does not end in its line (a file of this name holds one value a line; give any other as "-")
!     [
!      ^
? 3
$ qvejmap check - < pretty.jsonl
  <stdin>: well formed
$ qvejmap check - --lines < pretty.jsonl
! qvejmap: <stdin>:1:2: the value does not end in its line
!     [
!      ^
? 3
$ qvejmap check lines
  lines: well formed

# Mistakes, with their line in the file.
$ printf '{"a":1}\n\n{"a":2} {"a":3}\n' | qvejmap check - --lines
! qvejmap: <stdin>:3:9: only white space may follow the value in its line
!     {"a":2} {"a":3}
!             ^
? 3
$ printf '{"a":1},\n{"a":2}\n' | qvejmap check - --lines
! qvejmap: <stdin>:1:8: only white space may follow the value in its line
!     {"a":1},
!            ^
? 3
$ printf '[\n1\n]\n' | qvejmap check - --lines
! qvejmap: <stdin>:1:2: the value does not end in its line
!     [
!      ^
? 3
$ printf '{"a":1}\n{"a":"\n2}\n' | qvejmap check - --lines
! qvejmap: <stdin>:2:7: a control character in a string must be escaped
!     {"a":"
!           ^
? 3
$ printf '{"a":1}\n{"a":2' | qvejmap check - --lines
! qvejmap: <stdin>:2:7: the document ends before a complete object or array
!     {"a":2
!           ^
? 3
$ printf '{"a":1}\n{"é":tru}' | iconv -t UTF-16 | qvejmap check - --lines
! qvejmap: <stdin>:2:9: not a JSON word: only true, false and null stand unquoted
!     {"é":tru}
!             ^
? 3
$ printf '[[1]]\n[[[1]]]\n' | qvejmap check - --lines --depth 2
! qvejmap: <stdin>:2:3: the document is nested deeper than the limit of 2 (--depth)
!     [[[1]]]
!       ^
? 6

# Compressed input is told by its content.
$ gzip -c orders.json > packed; qvejmap read packed orders_tags
  ordinal_root,ordinal_orders,ordinal_tags,tags1,tags2\r
  1,1,1,gift,fragile\r
  1,2,2,pickup,\r
$ zstd -qc orders.json > packed.txt; qvejmap read packed.txt orders_tags
  ordinal_root,ordinal_orders,ordinal_tags,tags1,tags2\r
  1,1,1,gift,fragile\r
  1,2,2,pickup,\r
$ gzip -c lines | qvejmap check - --lines
  <stdin>: well formed
$ iconv -t UTF-16 orders.json | zstd -qc | qvejmap tables - --names
  orders
  orders_customer
  orders_items
  orders_tags
$ qvejmap map orders.json > orders.map; gzip -c orders.map > orders.map.gz
> qvejmap map check orders.map packed
  orders.map: well formed, tables: 4, columns: 20

# Several members or frames one after the other, also empty ones, those to be skipped, and those
# that end with a piece.
$ { head -c 100 orders.json | gzip; : | gzip; tail -c +101 orders.json | gzip; } | qvejmap tables - --names
  orders
  orders_customer
  orders_items
  orders_tags
$ { printf 'P*M\030\003\0\0\0xyz'; head -c 100 orders.json | zstd -q; : | zstd -q;
>     tail -c +101 orders.json | zstd -q; } | qvejmap tables - --names
  orders
  orders_customer
  orders_items
  orders_tags
$ { printf '["'; head -c 4194300 /dev/zero | tr '\0' x; printf '"]'; } > long
> for packer in gzip 'zstd -q'; do
>     { head -c 1048576 long | $packer; tail -c +1048577 long | $packer; } | qvejmap check -
> done
  <stdin>: well formed
  <stdin>: well formed

# Truncated or damaged data are an error, wherever the document ends, and leave no output.
$ for packer in gzip 'zstd -q'; do
>     $packer < orders.json > whole
>     for size in 3 10 100 $(($(wc -c < whole) - 1)); do
>         head -c $size whole | qvejmap convert - -o out; test -e out && echo left
>     done
> done 2>&1; true
  qvejmap: <stdin>: the gzip data end too soon
  qvejmap: <stdin>: the gzip data end too soon
  qvejmap: <stdin>: the gzip data end too soon
  qvejmap: <stdin>: the gzip data end too soon
  qvejmap: <stdin>:1:1: a value was expected
      (�/
      ^
  qvejmap: <stdin>: the Zstandard data end too soon
  qvejmap: <stdin>: the Zstandard data end too soon
  qvejmap: <stdin>: the Zstandard data end too soon
$ gzip < orders.json > whole; head -c 12 whole | cat whole - | qvejmap convert whole -o out -q && rm -r out
> head -c 12 whole | cat whole - | qvejmap convert - -o out; test -e out && echo left
! qvejmap: <stdin>: the gzip data end too soon
? 1
$ { cat whole; echo more; } | qvejmap check -
! qvejmap: <stdin>: the gzip data are damaged: incorrect header check
? 5
$ { zstd -q < orders.json; echo more; } | qvejmap check -
! qvejmap: <stdin>: the Zstandard data are damaged: Unknown frame descriptor
? 5
$ size=$(wc -c < whole)
> { head -c $((size - 6)) whole; printf '\0'; tail -c 5 whole; } > damaged; qvejmap check damaged
! qvejmap: damaged: the gzip data are damaged: incorrect data check
? 5
$ { zstd -q < orders.json | head -c -1; printf '\0'; } > damaged; qvejmap check damaged
! qvejmap: damaged: the Zstandard data are damaged: Restored data doesn't match checksum
? 5

# A byte order mark in front of a later line is none, as elsewhere.
$ printf '1\n\357\273\277{"a":2}\n' | qvejmap check - --lines
! qvejmap: <stdin>:2:1: a byte order mark is not part of JSON
!     ﻿{"a":2}
!     ^
? 3

# A window that the library does not unpack by itself (zstd --long=31) is no damage.
$ printf '\050\265\057\375\000\250\001\000\000' | qvejmap check -
! qvejmap: <stdin>: the Zstandard data need a window of more than 128 MiB (zstd -dc --long=31 FILE | qvejmap VERB - reads them)
? 6

# A standard stream that is closed is told, and no other file is taken for it.
$ qvejmap tables - <&-
! qvejmap: <stdin>: Bad file descriptor
? 5
$ qvejmap tables - --shape auto <&-
! qvejmap: <stdin>: Bad file descriptor
? 5
$ echo '[{"a":1}]' > one.json; qvejmap tables one.json >&-
! qvejmap: <stdout>: Bad file descriptor
? 5

# Sequences are recognised by their content: values in a line each as JSON Lines, else values with any
# white space between them, or none.
$ for text in '{"a":1}\n{"a":2}\n' '{"a":1}{"a":2}' '{\n"a":1\n}\n\n{"a":\n2}' '{"a":1}\n{"a":2} {"a":3}'; do
>     printf "$text" | qvejmap read - root && printf "$text" | qvejmap check - --lines > lines.out 2>&1; echo "$?"
> done
  ordinal_root,a\r
  1,1\r
  2,2\r
  0
  ordinal_root,a\r
  1,1\r
  2,2\r
  3
  ordinal_root,a\r
  1,1\r
  2,2\r
  3
  ordinal_root,a\r
  1,1\r
  2,2\r
  3,3\r
  3
$ printf '{"a":1}{"a":{"b":2}}' | iconv -t utf-16 | gzip | qvejmap find - --path '/**/b'
  1\t18\t/root/a/b\t2
$ printf '{"a":1} {"b":2}' | qvejmap shape - --key-names 1
! qvejmap: <stdin>: no rule is found
$ for text in '{"a":1} x' '{"a":1},{"a":2}' '{"a":1}]' '{"a":1}\n{"a":}' '{"a":1} {"a":}' '{"a":1}\n{\n"a":2}' '{"a":1}{"a"'; do
>     printf "$text" | qvejmap check -; echo "$?"
> done
  3
  3
  3
  3
  3
  <stdin>: well formed
  0
  3
! qvejmap: <stdin>:1:9: only white space may follow the document
!     {"a":1} x
!             ^
! qvejmap: <stdin>:1:8: only white space may follow the document
!     {"a":1},{"a":2}
!            ^
! qvejmap: <stdin>:1:8: only white space may follow the document
!     {"a":1}]
!            ^
! qvejmap: <stdin>:2:6: a value was expected
!     {"a":}
!          ^
! qvejmap: <stdin>:1:14: a value was expected
!     {"a":1} {"a":}
!                  ^
! qvejmap: <stdin>:1:12: the document ends before a complete object or array
!     {"a":1}{"a"
!                ^
