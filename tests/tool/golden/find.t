# needs github_events.json twitter.json
$ qvejmap find orders.json --path /root/orders/items/sku
  7\t18\t/root/orders/items/sku\tlamp
  8\t18\t/root/orders/items/sku\tdesk
  17\t18\t/root/orders/items/sku\tchair
$ qvejmap find orders.json --path '/root/*/tags'; qvejmap find orders.json --path /root/orders/customer/city --path '/root/**/nothing'
  10\t15\t/root/orders/tags\t[
  10\t16\t/root/orders/tags\tgift
  10\t24\t/root/orders/tags\tfragile
  19\t15\t/root/orders/tags\t[
  19\t16\t/root/orders/tags\tpickup
  5\t49\t/root/orders/customer/city\tOslo
  15\t47\t/root/orders/customer/city\tnull

# --value is the whole value: what a string stands for, anything else as it is written.
$ printf '{"a\\tb":["caf\\u00e9","caf\303\251","Caf\303\211 au lait","1.0",1.0,1,10,null,"null",true,""],\n "n/m":{"true":"x\\u0000\\\\y\\n2\\u009b","caf\303\251":{}}}' > values.json
$ for value in café CAFÉ 1.0 1 null true '' x .; do echo "[$value]"; qvejmap find values.json --value "$value"; done
  [café]
  1\t10\t/root/a\\tb\tcafé
  1\t22\t/root/a\\tb\tcafé
  [CAFÉ]
  [1.0]
  1\t46\t/root/a\\tb\t1.0
  1\t52\t/root/a\\tb\t1.0
  [1]
  1\t56\t/root/a\\tb\t1
  [null]
  1\t61\t/root/a\\tb\tnull
  1\t66\t/root/a\\tb\tnull
  [true]
  1\t73\t/root/a\\tb\ttrue
  []
  1\t78\t/root/a\\tb\t
  [x]
  [.]
$ for value in CAFÉ NULL 'X' '.'; do echo "[$value]"; qvejmap find values.json --value "$value" --ignore-case; done
  [CAFÉ]
  1\t10\t/root/a\\tb\tcafé
  1\t22\t/root/a\\tb\tcafé
  [NULL]
  1\t61\t/root/a\\tb\tnull
  1\t66\t/root/a\\tb\tnull
  [X]
  [.]

# --regex is found anywhere in a value, --path holds besides.  Names are no values.
$ for regex in '^1' '\.0$' 'É' '^$' 'y.2' '(?s)y.2' '\x{9b}'; do echo "[$regex]"; qvejmap find values.json --regex "$regex"; done
  [^1]
  1\t46\t/root/a\\tb\t1.0
  1\t52\t/root/a\\tb\t1.0
  1\t56\t/root/a\\tb\t1
  1\t58\t/root/a\\tb\t10
  [\\.0$]
  1\t46\t/root/a\\tb\t1.0
  1\t52\t/root/a\\tb\t1.0
  [É]
  1\t30\t/root/a\\tb\tCafÉ au lait
  [^$]
  1\t78\t/root/a\\tb\t
  [y.2]
  [(?s)y.2]
  2\t16\t/root/n/m/true\tx\\u0000\\\\y\\n2\\u009b
  [\\x{9b}]
  2\t16\t/root/n/m/true\tx\\u0000\\\\y\\n2\\u009b
$ qvejmap find values.json --regex 'É' --ignore-case --path '/root/*'; qvejmap find values.json --regex . --path '/root/n\/m/*'; qvejmap find values.json --path '/root/n\/m/**'
  1\t10\t/root/a\\tb\tcafé
  1\t22\t/root/a\\tb\tcafé
  1\t30\t/root/a\\tb\tCafÉ au lait
  2\t16\t/root/n/m/true\tx\\u0000\\\\y\\n2\\u009b
  2\t8\t/root/n/m\t{
  2\t16\t/root/n/m/true\tx\\u0000\\\\y\\n2\\u009b
  2\t46\t/root/n/m/café\t{
$ qvejmap find values.json --regex a --limit 2; qvejmap find values.json --regex a --limit 0
  1\t10\t/root/a\\tb\tcafé
  1\t22\t/root/a\\tb\tcafé

# JSON Lines, packed, from a pipe, in other encodings: places are those of the text.
$ printf '1\n{"a":[2,\n' | qvejmap find - --lines --regex .
  1\t1\t/root\t1
  2\t7\t/root/a\t2
! qvejmap: <stdin>:2:9: the value does not end in its line
!     {"a":[2,
!             ^
? 3
$ printf '"x"\n\n ["y",{"z":"x"}]\n' | gzip > l.jsonl.gz; qvejmap find l.jsonl.gz --regex '[x-y]'
  1\t1\t/root\tx
  3\t3\t/root\ty
  3\t12\t/root/z\tx
$ for to in UTF-16LE UTF-32; do iconv -t $to values.json | qvejmap find - --regex 'é|y|10' --path '/root/**'; done
  1\t10\t/root/a\\tb\tcafé
  1\t22\t/root/a\\tb\tcafé
  1\t56\t/root/a\\tb\t10
  2\t16\t/root/n/m/true\tx\\u0000\\\\y\\n2\\u009b
  1\t10\t/root/a\\tb\tcafé
  1\t22\t/root/a\\tb\tcafé
  1\t56\t/root/a\\tb\t10
  2\t16\t/root/n/m/true\tx\\u0000\\\\y\\n2\\u009b
$ printf '["\351",1,"\351"]' | qvejmap find - --encoding latin1 --value é; printf '["\377",2]' | qvejmap find - --invalid replace --value 2
  1\t2\t/root\té
  1\t8\t/root\té
  1\t6\t/root\t2

# What has been found is printed, whatever comes after it.
$ printf '{"a":1,\n"b":2,}' | qvejmap find - --regex .
  1\t6\t/root/a\t1
  2\t5\t/root/b\t2
! qvejmap: <stdin>:2:7: a member name in double quotes was expected
!     "b":2,}
!           ^
? 3
$ printf '[1]\n[2]' | qvejmap find - --regex .; printf '[1' | qvejmap find - --regex .; printf '["\377"]' | qvejmap find - --regex .
  1\t2\t/root\t1
  2\t2\t/root\t2
! qvejmap: <stdin>:1:3: the document ends before a complete object or array
!     [1
!       ^
! qvejmap: <stdin>:1:3: invalid UTF-8 (--encoding NAME for text in another encoding, --invalid replace to go on)
!     ["�"]
!       ^
? 3
$ printf '1' | qvejmap find - --regex .; printf ' "x"' | qvejmap find - --regex .; printf '' | qvejmap find - --regex .
! qvejmap: <stdin>:1:1: a document must be an object or an array
!     1
!     ^
! qvejmap: <stdin>:1:2: a document must be an object or an array
!      "x"
!      ^
! qvejmap: <stdin>:1:1: the document ends before a complete object or array
? 3
$ printf '[[[1]]]' | qvejmap find - --regex . --depth 2; qvejmap find none.json --regex .; qvejmap find twitter.json --path '/root/**' > /dev/full
! qvejmap: <stdin>:1:3: the document is nested deeper than the limit of 2 (--depth)
!     [[[1]]]
!       ^
! qvejmap: none.json: No such file or directory
! qvejmap: <stdout>: No space left on device
? 5
$ mkfifo seen
> { printf '[1,'; head -c 3000000 /dev/zero | tr '\0' ' '; cat seen; printf '2]'; } |
>     timeout 20 qvejmap find - --regex . | { read line; echo "$line"; echo > seen; cat; }
  1\t2\t/root\t1
  2\t1\t/root\t2

# Each value of the records, with its place.
$ cat > places.awk <<'END'
> # Of the values found in a file that is its second argument: those whose place shows another byte.
> NR == FNR { line[FNR] = $0; next }
> { c = substr(line[$1], $2, 1); v = substr($4, 1, 1)
>   if (c != v && c != "\"") print }
> END
$ for file in github_events.json twitter.json; do
>     qvejmap records $file | grep -av '^NOVAL\|^FAKE' | cut -f3 | cksum
>     qvejmap find $file --regex '^' | cut -f4 | cksum
>     qvejmap find $file --path '/root/**' | LC_ALL=C awk -F'\t' -f places.awk $file - | wc -l
> done
  2910153236 40095
  2910153236 40095
  0
  1175960176 244081
  1175960176 244081
  0

# Wrong usage.
$ for options in '' '--value a --regex b' '--ignore-case --path /root' '--path root' '--regex (' '--regex a --table b' '--map m --value 1' '--limit x --value 1'; do
>     qvejmap find orders.json $options
> done
! qvejmap: find: --path, --value or --regex is missing (qvejmap --help tells more)
! qvejmap: --value and --regex exclude each other (qvejmap --help tells more)
! qvejmap: --ignore-case needs --value or --regex (qvejmap --help tells more)
! qvejmap: --path: 'root', column 1: a path begins with "/", as in /root/orders (qvejmap --help tells more)
! qvejmap: --regex: missing ): ( (qvejmap --help tells more)
! qvejmap: --table belongs to tables, map, convert, report, diagram, not to find (qvejmap --help tells more)
! qvejmap: --map belongs to tables, map explain, read, convert, report, diagram, check, not to find (qvejmap --help tells more)
! qvejmap: --limit: 'x' is not a whole number (qvejmap --help tells more)
? 2
