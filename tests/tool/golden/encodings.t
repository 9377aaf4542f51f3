$ printf '{"k\351":"caf\351 \244"}' > latin
$ qvejmap check latin
! qvejmap: latin:1:4: invalid UTF-8 (--encoding NAME for text in another encoding)
!     {"k�":"caf� �"}
!        ^
? 3
$ qvejmap read latin root --encoding ISO-8859-1
  ordinal_root,k_\r
  1,café ¤\r
$ qvejmap read latin root --encoding iso-8859-15
  ordinal_root,k_\r
  1,café €\r
$ qvejmap map latin --encoding latin1
  {"DATASETS":[{"DSNAME":"root","TABLEPATH":"/root","VARIABLES":[{"NAME":"ordinal_root","TYPE":"ORDINAL","PATH":"/root"},{"NAME":"k_","TYPE":"CHARACTER","PATH":"/root/ké","CURRENT_LENGTH":6}]}]}
$ qvejmap records latin --encoding latin1
  NOVAL\t/root\t
  STRING\t/root/ké\tcafé ¤
$ qvejmap read latin 'é' --encoding latin1 --alldata-name 'é'
  P,P1,V,Value\r
  1,ké,1,café ¤\r
$ qvejmap check latin --encoding latin1 --alldata-name '日'
! qvejmap: an option does not suit the document: a character does not exist in the target encoding
? 2
$ printf '{"caf\351":x}' | qvejmap check - --encoding latin1
! qvejmap: <stdin>:1:9: not a JSON word: only true, false and null stand unquoted
!     {"café":x}
!             ^
? 3

# Everything else is converted to UTF-8 first.
$ for name in Shift_JIS UTF-16 UTF-32BE gb18030; do
>     printf '{"a":"日本"}' | iconv -t $name | qvejmap read - root --encoding $name | tail -1
> done
  1,日本\r
  1,日本\r
  1,日本\r
  1,日本\r
$ printf '{"a":"x"}' | iconv -t EBCDIC-US | qvejmap read - root --encoding ibm-037
  ordinal_root,a\r
  1,x\r
$ { printf '{"a":"'; yes 日本 | head -n 200000 | tr -d '\n'; printf '","b":"語"}'; } |
>     iconv -t UTF-16 | qvejmap read - root --encoding UTF-16 | tail -c 6
  ,語\r
$ printf '{"a":\n"日\377\377"}' | qvejmap check - --encoding Shift_JIS
! qvejmap: <stdin>:2:8: the text is not valid Shift_JIS
!     "譌･
!         ^
? 3
$ printf '{"a":"\223' | qvejmap check - --encoding Shift_JIS
! qvejmap: <stdin>:1:7: the text is not valid Shift_JIS
!     {"a":"
!           ^
? 3
$ printf '{"a":1}' | iconv -t UTF-16 | qvejmap check -
! qvejmap: <stdin>:1:1: a value was expected (this looks like UTF-16: --encoding UTF-16)
!     ��{\u0000"\u0000a\u0000"\u0000:\u00001\u0000}\u0000
!     ^
? 3

$ qvejmap check orders.json --encoding no-such
! qvejmap: --encoding: no encoding is named 'no-such'
? 2
$ qvejmap check orders.json --encoding ''
! qvejmap: --encoding: no encoding is named ''
? 2
