# UTF-8 is read as it is.  All else is converted, and comes out as UTF-8.
$ printf '{"k\351":"caf\351 \244"}' > latin
$ qvejmap check latin
! qvejmap: latin:1:4: invalid UTF-8 (--encoding NAME for text in another encoding, --invalid replace to go on)
!     {"k�":"caf� �"}
!        ^
? 3
$ qvejmap read latin root --encoding ISO-8859-1
  ordinal_root,k__\r
  1,café ¤\r
! qvejmap: latin: 1 name of a table or column is not the document's: k__ for "ké" (--naming original keeps it)
$ qvejmap read latin root --encoding iso-8859-15
  ordinal_root,k__\r
  1,café €\r
! qvejmap: latin: 1 name of a table or column is not the document's: k__ for "ké" (--naming original keeps it)
$ qvejmap map latin --encoding latin1 --compact
  {"DATASETS":[{"DSNAME":"root","TABLEPATH":"/root","VARIABLES":[{"NAME":"ordinal_root","TYPE":"ORDINAL","PATH":"/root"},{"NAME":"k__","TYPE":"CHARACTER","PATH":"/root/ké","CURRENT_LENGTH":8}]}]}
$ qvejmap records latin --encoding latin1
  NOVAL\t/root\t
  STRING\t/root/ké\tcafé ¤
$ qvejmap read latin 'é' --encoding latin1 --alldata-name 'é'
  P,P1,V,Value\r
  1,ké,1,café ¤\r

# One document in many encodings: the same tables, map and records, byte for byte.
$ cat > letters.json <<'END'
> {"péage": [{"Zürich": "déjà vu", "n": 1.50}, {"Zürich": "\u65e5 \ud834\udd1e ½", "n": -0}],
>  "tags": ["ü", "¿qué?"]}
> END
> cat > signs.json <<'END'
> {"名前": [{"日本": "東京タワー", "n": 1.50}, {"日本": "\u00e9 語", "n": -0}],
>  "tags": ["語", "「」"]}
> END
> cat > everything <<'END'
> qvejmap convert $1 -q -o $2 --alldata --encoding $3
> qvejmap map $1 --encoding $3 > $2/map
> qvejmap records $1 --encoding $3 > $2/records
> END
> cat > same <<'END'
> file=$1; shift
> sh everything $file $file-tables UTF-8
> for name; do
>     iconv -f UTF-8 -t $name $file > text
>     sh everything text $name-$file $name && diff -r -x datapackage.json $file-tables $name-$file && echo $name
> done
> END
$ sh same letters.json UTF-16 UTF-16LE UTF-16BE UTF-32 UTF-32LE UTF-32BE ISO-8859-1 windows-1252 IBM037
  UTF-16
  UTF-16LE
  UTF-16BE
  UTF-32
  UTF-32LE
  UTF-32BE
  ISO-8859-1
  windows-1252
  IBM037
$ sh same signs.json UTF-16 UTF-16LE UTF-32BE Shift_JIS GB18030 EUC-JP ISO-2022-JP
  UTF-16
  UTF-16LE
  UTF-32BE
  Shift_JIS
  GB18030
  EUC-JP
  ISO-2022-JP
# Those of Unicode are recognised, with a byte order mark and without.
$ for name in UTF-8 UTF-16LE UTF-16BE UTF-32LE UTF-32BE; do
>     { printf '\357\273\277'; cat signs.json; } > marked
>     for file in signs.json marked; do
>         iconv -f UTF-8 -t $name $file > text
>         sh everything text auto-$name-$file auto && diff -r -x datapackage.json signs.json-tables auto-$name-$file
>         qvejmap check text --encoding $name -q && echo $name
>     done
> done
  UTF-8
  UTF-8
  UTF-16LE
  UTF-16LE
  UTF-16BE
  UTF-16BE
  UTF-32LE
  UTF-32LE
  UTF-32BE
  UTF-32BE

$ for start in '1\0' '"\0\345\145' '\0"\145\345' '\0\0\0{' '{\0\0\0' '\377\376{\0' '\376\377\0{' '\377\376\0\0' '\0\0\376\377' '[\351\351' '\357\273\277{'; do
>     printf "$start" | qvejmap check - 2>&1 | head -1
> done
  qvejmap: <stdin>:1:1: a document must be an object or an array
  qvejmap: <stdin>:1:3: the document ends before a complete object or array
  qvejmap: <stdin>:1:3: the document ends before a complete object or array
  qvejmap: <stdin>:1:2: the document ends before a complete object or array
  qvejmap: <stdin>:1:2: the document ends before a complete object or array
  qvejmap: <stdin>:1:2: the document ends before a complete object or array
  qvejmap: <stdin>:1:2: the document ends before a complete object or array
  qvejmap: <stdin>:1:1: the document ends before a complete object or array
  qvejmap: <stdin>:1:1: the document ends before a complete object or array
  qvejmap: <stdin>:1:2: a value was expected
  qvejmap: <stdin>:1:2: the document ends before a complete object or array

# A long text.
$ { printf '{"a":"'; yes 日本 | head -n 200000 | tr -d '\n'; printf '","b":"語"}'; } |
>     iconv -t UTF-16 | qvejmap read - root 2> /dev/null | tail -c 6
  ,語\r

# Columns are counted in units of the encoding: bytes, but 16 or 32 bits in UTF-16 and UTF-32.
$ printf '{"caf\351":x}' | qvejmap check - --encoding latin1
! qvejmap: <stdin>:1:9: not a JSON word: only true, false and null stand unquoted
!     {"café":x}
!             ^
? 3
$ for name in UTF-8 UTF-16 UTF-32LE GB18030; do
>     printf '[{"a":"日本𝄞",\n"𝄞é日":[1,\n"é𝄞", truu]}]' | iconv -t $name |
>         qvejmap check - --encoding $name
> done 2>&1
  qvejmap: <stdin>:3:14: not a JSON word: only true, false and null stand unquoted
      "é𝄞", truu]}]
               ^
  qvejmap: <stdin>:3:11: not a JSON word: only true, false and null stand unquoted
      "é𝄞", truu]}]
               ^
  qvejmap: <stdin>:3:10: not a JSON word: only true, false and null stand unquoted
      "é𝄞", truu]}]
               ^
  qvejmap: <stdin>:3:14: not a JSON word: only true, false and null stand unquoted
      "é𝄞", truu]}]
               ^
? 3
$ for name in UTF-8 UTF-16 UTF-32LE GB18030; do
>     printf '{"é日𝄞":["é日𝄞","日"],"a":\n1}' | iconv -t $name |
>         qvejmap map explain - root.a --encoding $name | tail -2
>     printf '{"é日𝄞":["é日𝄞","日"],"日日":"日𝄞","a":2}' | iconv -t $name |
>         qvejmap map explain - root.a --encoding $name | tail -2
> done
  NUMBER\t1\t<stdin>:2:1
  longest\t1 byte\t<stdin>:2:1
  NUMBER\t1\t<stdin>:1:57
  longest\t1 byte\t<stdin>:1:57
  NUMBER\t1\t<stdin>:2:1
  longest\t1 byte\t<stdin>:2:1
  NUMBER\t1\t<stdin>:1:37
  longest\t1 byte\t<stdin>:1:37
  NUMBER\t1\t<stdin>:2:1
  longest\t1 byte\t<stdin>:2:1
  NUMBER\t1\t<stdin>:1:34
  longest\t1 byte\t<stdin>:1:34
  NUMBER\t1\t<stdin>:2:1
  longest\t1 byte\t<stdin>:2:1
  NUMBER\t1\t<stdin>:1:51
  longest\t1 byte\t<stdin>:1:51
# The end, and a place after which the text goes on for long.
$ printf '[1,\n"é日"' | iconv -t UTF-16 | qvejmap check -
! qvejmap: <stdin>:2:5: the document ends before a complete object or array
!     "é日"
!          ^
? 3
$ { printf '["é日",\n  "'; head -c 200000 /dev/zero | tr '\0' x; printf 'é\\ud800"]'; } |
>     iconv -t UTF-16BE | qvejmap check -
! qvejmap: <stdin>:2:200005: a surrogate escape without its other half
!     ...xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxé\ud800"]
!                                                                   ^
? 3
$ { printf '  "'; yes 日本 | head -n 100000 | tr -d '\n'; printf '"'; } | iconv -t UTF-16BE | qvejmap check -
! qvejmap: <stdin>:1:3: a document must be an object or an array
? 3

# What is wrong in the encoding is an error, or is replaced.
$ printf '{"a":\n"\223\372\377\377"}' > wrong; qvejmap check wrong --encoding Shift_JIS
! qvejmap: wrong:2:4: the text is not valid Shift_JIS (--encoding NAME for text in another encoding, --invalid replace to go on)
!     "日
!        ^
? 3
$ qvejmap read wrong root --encoding Shift_JIS --invalid replace
  ordinal_root,a\r
  1,日��\r
$ printf '{"a":"\223' | qvejmap check - --encoding Shift_JIS
! qvejmap: <stdin>:1:7: the text is not valid Shift_JIS (--encoding NAME for text in another encoding, --invalid replace to go on)
!     {"a":"
!           ^
? 3
$ printf '{"a":1}x' | iconv -t UTF-16LE | head -c 15 | qvejmap check -
! qvejmap: <stdin>:1:8: the text is not valid UTF-16LE (--encoding NAME for text in another encoding, --invalid replace to go on)
!     {"a":1}
!            ^
? 3
$ qvejmap check wrong
! qvejmap: wrong:2:2: invalid UTF-8 (--encoding NAME for text in another encoding, --invalid replace to go on)
!     "����"}
!      ^
? 3
$ qvejmap read wrong root --invalid replace
  ordinal_root,a\r
  1,����\r
$ qvejmap read latin root --invalid replace
  ordinal_root,k___\r
  1,caf� �\r
! qvejmap: latin: 1 name of a table or column is not the document's: k___ for "k�" (--naming original keeps it)
$ qvejmap read latin root --invalid error
! qvejmap: latin:1:4: invalid UTF-8 (--encoding NAME for text in another encoding, --invalid replace to go on)
!     {"k�":"caf� �"}
!        ^
? 3
$ printf '{"a":1}' | qvejmap check - --invalid replaced
! qvejmap: --invalid: 'replaced' is none of error, replace (qvejmap --help tells more)
? 2
$ printf '{"a":1}' | qvejmap check - --invalid replace
  <stdin>: well formed

# Another encoding than was said.
$ printf '{"a":1}' | iconv -t UTF-16 | qvejmap check - --encoding UTF-8
! qvejmap: <stdin>:1:1: a value was expected (this looks like UTF-16LE)
!     ��{\u0000"\u0000a\u0000"\u0000:\u00001\u0000}\u0000
!     ^
? 3
$ printf '{"a":1}' | iconv -t UTF-16BE | qvejmap check - --encoding latin1
! qvejmap: <stdin>:1:1: a value was expected (this looks like UTF-16BE)
!     \u0000{\u0000"\u0000a\u0000"\u0000:\u00001\u0000}
!     ^
? 3

$ qvejmap check orders.json --encoding no-such
! qvejmap: no encoding is named 'no-such'
? 2
$ qvejmap check orders.json --encoding ''
! qvejmap: no encoding is named ''
? 2
