$ qvejmap check orders.json
  orders.json: well formed
$ qvejmap check - -q < orders.json

# Mistakes, with their place.
$ printf '{"a":[1,2' > truncated; qvejmap check truncated -q
! qvejmap: truncated:1:10: the document ends before a complete object or array
!     {"a":[1,2
!              ^
? 3
$ printf '{"a":[1,\n\n' | qvejmap check -
! qvejmap: <stdin>:3:1: the document ends before a complete object or array
!     {"a":[1,
!             ^
? 3
$ qvejmap check - < /dev/null
! qvejmap: <stdin>:1:1: the document ends before a complete object or array
? 3
$ printf ' \n\n  ' | qvejmap check -
! qvejmap: <stdin>:3:3: the document ends before a complete object or array
? 3
$ printf '{"a":"x\\q"}' | qvejmap check -
! qvejmap: <stdin>:1:9: unknown escape sequence in a string
!     {"a":"x\q"}
!             ^
? 3
$ printf '{"a":1} x' | qvejmap check -
! qvejmap: <stdin>:1:9: only white space may follow the document
!     {"a":1} x
!             ^
? 3
$ printf '{"a":1}\n{"a":2}\n' | qvejmap check -
  <stdin>: well formed
$ printf '\357\273\277{}' | qvejmap check -
  <stdin>: well formed
$ printf '{"a":01}' | qvejmap check -
! qvejmap: <stdin>:1:7: a number must not begin with a superfluous zero
!     {"a":01}
!           ^
? 3
$ printf '{"a":"\033[31m"}' | qvejmap check -
! qvejmap: <stdin>:1:7: a control character in a string must be escaped
!     {"a":"\u001b[31m"}
!           ^
? 3
$ printf '{"a" 1}' | qvejmap check -
! qvejmap: <stdin>:1:6: ':' was expected after the member name
!     {"a" 1}
!          ^
? 3
$ printf '{a:1}' | qvejmap check -
! qvejmap: <stdin>:1:2: a member name in double quotes was expected
!     {a:1}
!      ^
? 3
$ printf '[1,]' | qvejmap check -
! qvejmap: <stdin>:1:4: a value was expected
!     [1,]
!        ^
? 3
$ printf '// x\n{}' | qvejmap check -
! qvejmap: <stdin>:1:1: comments are not part of JSON
!     // x
!     ^
? 3
$ printf '{"a":"\\ud800"}' | qvejmap check -
! qvejmap: <stdin>:1:7: a surrogate escape without its other half
!     {"a":"\ud800"}
!           ^
? 3
$ printf '{"a":"\377"}' | qvejmap check -
! qvejmap: <stdin>:1:7: invalid UTF-8 (--encoding NAME for text in another encoding, --invalid replace to go on)
!     {"a":"�"}
!           ^
? 3
$ printf '\000\001\377\376ELF' | qvejmap check -
! qvejmap: <stdin>:1:1: a value was expected
!     \u0001￾䕌
!     ^
? 3
$ printf '[NaN]' | qvejmap check -
! qvejmap: <stdin>:1:2: not a JSON word: only true, false and null stand unquoted
!     [NaN]
!      ^
? 3
$ printf '{"a":1}' | iconv -t UTF-16LE | qvejmap check -
  <stdin>: well formed
$ printf '{\n\t"a":\t1,\r\n\t"b" 2\r\n}\r\n' | qvejmap check -
! qvejmap: <stdin>:3:6: ':' was expected after the member name
!      "b" 2
!          ^
? 3

# A bare scalar is shown where it begins.
$ printf '42' | qvejmap check -
! qvejmap: <stdin>:1:1: a document must be an object or an array
!     42
!     ^
? 3
$ printf ' \n\t "a text"\r\n' | qvejmap check -
! qvejmap: <stdin>:2:3: a document must be an object or an array
!       "a text"
!       ^
? 3
$ { head -c 2000000 /dev/zero | tr '\0' ' '; printf 'null'; } | qvejmap check -
! qvejmap: <stdin>:1:2000001: a document must be an object or an array
!     ...                                                            null
!                                                                    ^
? 3

# A long line is shown in part, wide characters are counted as a terminal does.
$ { printf '{"a":['; seq -s, 100; printf ',x,'; seq -s, 100; printf ']}'; } | tr -d '\n' | qvejmap check -
! qvejmap: <stdin>:1:299: not a JSON word: only true, false and null stand unquoted
!     ...1,82,83,84,85,86,87,88,89,90,91,92,93,94,95,96,97,98,99,100,x,1,2,3,4,5,6,7,8,9,10,1...
!                                                                    ^
? 3
$ printf '{"日本語":tru}' | qvejmap check -
! qvejmap: <stdin>:1:17: not a JSON word: only true, false and null stand unquoted
!     {"日本語":tru}
!                  ^
? 3

# A mistake far after the start, in whole pieces of input and across them.
$ { printf '['; seq -s , 300000; printf ']]'; } | qvejmap check -
! qvejmap: <stdin>:2:2: only white space may follow the document (--lines for one value a line)
!     ]]
!      ^
? 3
$ { printf '["'; head -c 3000000 /dev/zero | tr '\0' x; printf '",\n"y"]]'; } | qvejmap check -
! qvejmap: <stdin>:2:5: only white space may follow the document (--lines for one value a line)
!     "y"]]
!         ^
? 3
$ { printf '["'; head -c 3000000 /dev/zero | tr '\0' x; } | qvejmap check -
! qvejmap: <stdin>:1:3000003: the document ends before a complete object or array
!     ...xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx
!                                                                    ^
? 3

# Depth.
$ printf '[[[1]]]' | qvejmap check - --depth 3
  <stdin>: well formed
$ printf '[[[[1]]]]' | qvejmap check - --depth 3
! qvejmap: <stdin>:1:4: the document is nested deeper than the limit of 3 (--depth)
!     [[[[1]]]]
!        ^
? 6
$ printf '%01500d' 0 | tr 0 '[' | qvejmap check -
! qvejmap: <stdin>:1:1001: the document is nested deeper than the limit of 1000 (--depth)
!     ...[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[...
!                                                                    ^
? 6
$ { printf '%01500d' 0 | tr 0 '['; printf '%01500d' 0 | tr 0 ']'; } | qvejmap check - --depth 0
  <stdin>: well formed

# A path that no record can hold is JSON all the same, but has no table.
$ { printf '{"'; head -c 1100000 /dev/zero | tr '\0' k; printf '":1}'; } | qvejmap map -
! qvejmap: <stdin>:1:1100006: memory could not be obtained, or a path or a number is longer than 1 MiB
!     ...kkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkk":1}
!                                                                    ^
? 6

# Files that cannot be read.
$ qvejmap check tmp
! qvejmap: tmp: no file in this folder ends in .json, .jsonl or .ndjson
? 5
$ qvejmap check "$(printf 'a\033[31mb\nc')"
! qvejmap: a\u001b[31mb\nc: no file has a name like this
? 5
