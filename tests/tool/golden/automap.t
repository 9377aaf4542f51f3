# The automatic map: a table for each group of paths, its columns, their names and lengths.
$ cat > shape <<'END'
> # shape DOCUMENT [OPTIONS]: a line a table: name, path, columns as name:TYPE.
> json=$1; shift
> printf '%s' "$json" | qvejmap map - --compact "$@" | sed '
>     s/{"DSNAME":"\([^"]*\)","TABLEPATH":"\([^"]*\)",*\("VARIABLES":\)*/\n[\1] \2 /g
>     s/{"NAME":"\([^"]*\)","TYPE":"\(.\)[^"]*","PATH":"[^"]*"\(,"CURRENT_LENGTH":\([0-9]*\)\)*}/\1:\2\4/g
>     s/]}*,*\n/]\n/g; s/{"DATASETS":\[//; s/[]}]*$/]/' | tail -n +2
> END
$ sh shape '{"a":1,"b":"xy","c":true,"d":null,"e":""}'
  [root] /root [ordinal_root:O,a:N,b:C2,c:N,d:N,e:C1]
$ sh shape '{"a":[{"b":1,"c":{"d":2}},{"b":"text"}]}'
  [a] /root/a [ordinal_root:O,ordinal_a:O,b:C4]
  [a_c] /root/a/c [ordinal_root:O,ordinal_a:O,ordinal_c:O,d:N]
$ sh shape '{"t":[1,22]}'
  [t] /root/t [ordinal_root:O,ordinal_t:O,t1:N,t2:N]
$ sh shape '{}'
  [root]  [ordinal_root:O]
$ sh shape '{"x":{"o":{"p":{"v":1}}},"y":{"o":{"p":{"v":1}}}}' --ordinals 1
  [o_p] /root/x/o/p [ordinal_p:O,v:N]
  [o_p2] /root/y/o/p [ordinal_p:O,v:N]
$ sh shape '{"":1}'
  []  [root:N]
! qvejmap: <stdin>: 1 table without a name, which --map refuses: ""
$ sh shape '{"a\u0002b":1,"c":2}'
  [a] /root/a [ordinal_root:O,ordinal_a:O,b:N]
! qvejmap: <stdin>: 1 path that no map can name: /root/a/b, a name holds the byte 0x02

# A place without values is a column of nothing, which keeps its level's number.
$ sh shape '{"a":{"b":1},"e":{}}' --ordinals 0; sh shape '{"e":{}}' --ordinals 1
  [a] /root/a [b:N]
  [e]  ]
  [e] /root [ordinal_e:O]

# Ordinals: the nameless level has none, but is counted; names are made for columns; equal ones get
# one more character, counted over the table; after 9 comes ":".
$ sh shape '{"":{"x":1}}'; sh shape '{"":{"x":1}}' --ordinals 1
  [] /root/ [ordinal_root:O,x:N]
  [] /root/ [x:N]
! qvejmap: <stdin>: 1 table without a name, which --map refuses: /root/
! qvejmap: <stdin>: 1 table without a name, which --map refuses: /root/
$ sh shape '{"a-b":{"x":1}}' --ordinals 1
  [a_b] /root/a-b [ordinal_a_b:O,x:N]
$ sh shape '{"a":{"A":{"x":1}}}'; sh shape '{"a":{"a1":{"a":{"x":1}}}}'
  [a_A] /root/a/A [ordinal_root:O,ordinal_a:O,ordinal_A:O,x:N]
  [a1_a] /root/a/a1/a [ordinal_root:O,ordinal_a:O,ordinal_a1:O,ordinal_a12:O,x:N]
$ n=$(printf '%040d' 0 | tr 0 n); sh shape '{"'$n'":{"'$n'":{"x":1}}}'
  [nnnnnnnnnnnnnn_nnnnnnnnnnnnnnn] /root/nnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnn/nnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnn [ordinal_root:O,ordinal_nnnnnnnnnnnnnnnnnnnnnnnn:O,ordinal_nnnnnnnnnnnnnnnnnnnnnnnn1:O,x:N]
$ sh shape "$(printf '{"a":%.0s' $(seq 11); printf '{"x":1}'; printf '}%.0s' $(seq 11))"
  [a_a] /root/a/a/a/a/a/a/a/a/a/a/a [ordinal_root:O,ordinal_a:O,ordinal_a1:O,ordinal_a2:O,ordinal_a3:O,ordinal_a4:O,ordinal_a5:O,ordinal_a6:O,ordinal_a7:O,ordinal_a8:O,ordinal_a9:O,ordinal_a::O,x:N]

# Columns of ALLDATA, and where a name of more than 255 bytes or an empty one is on the way.
$ printf '{"ccc":"wxyz","a":{"bb":1}}' | qvejmap tables - --columns --alldata-name 'all of it' | wc -l
  5
$ printf '{"a":{"bb":1},"ccc":"xyz","e":{},"n":null,"s":""}' | qvejmap read - ALLDATA
  P,P1,P2,V,Value\r
  1,a,,0,\r
  2,a,bb,1,1\r
  1,ccc,,1,xyz\r
  1,e,,0,\r
  1,n,,1,null\r
  1,s,,1,\r
$ printf '[{"":1},{"b":"v"}]' | qvejmap read - ALLDATA
  P,P1,P2,V,Value\r
  1,,,1,1\r
  1,,,0,\r
  2,, ,1,v\r
! qvejmap: <stdin>: in ALLDATA labels are cut at wrong places: the document has member names that are empty or of 256 bytes and more
$ printf '{"%0300d":{"b":1}}' 0 | qvejmap read - ALLDATA
  P,P1,P2,V,Value\r
  1,00000000000000000000000000000000000000000000,,0,\r
  2,00000000000000000000000000000000000000000000,0,1,1\r
! qvejmap: <stdin>: in ALLDATA labels are cut at wrong places: the document has member names that are empty or of 256 bytes and more

# Names of tables: the object and the one around it, fitted into thirty bytes.
$ name() { sh shape "$1" | cut -d ']' -f 1; }
> name '{"x":1}'; name '{"a":{"x":1}}'; name '{"":{"x":1}}'; name '{"a":{"b":{"x":1}}}'
> name '{"":{"b":{"x":1}}}'; name '{"a":{"":{"x":1}}}'; name '{"a":{"b":{"c":{"x":1}}}}'; name '{"a b":{"x":1}}'
> name '{"'$(printf '%040d' 0)'":{"x":1}}'
  [root
  [a
  [
  [a_b
  [_b
  [a_
  [b_c
  [a_b
  [_0000000000000000000000000000000
! qvejmap: <stdin>: 1 table without a name, which --map refuses: /root/
$ for lengths in 14,15 15,14 15,15 28,28 28,29 10,30 40,5 29,29 100,29 29,100; do
>     a=$(printf "%0${lengths%,*}d" 0 | tr 0 A); b=$(printf "%0${lengths#*,}d" 0 | tr 0 B)
>     sh shape '{"'$a'":{"'$b'":{"x":1}}}' | cut -d ']' -f 1
> done
  [AAAAAAAAAAAAAA_BBBBBBBBBBBBBBB
  [AAAAAAAAAAAAAAA_BBBBBBBBBBBBBB
  [AAAAAAAAAAAAAA_BBBBBBBBBBBBBBB
  [A_BBBBBBBBBBBBBBBBBBBBBBBBBBBB
  [AAAAAAAAAAAAAAAAAAAAAAAAAAAA_B
  [AAAAAAAAAA_BBBBBBBBBBBBBBBBBBB
  [AAAAAAAAAAAAAAAAAAAAAAAA_BBBBB
  [AAAAAAAAAAAAAA_BBBBBBBBBBBBBBB
  [AAAAAAAAAAAAAA_BBBBBBBBBBBBBBB
  [AAAAAAAAAAAAAA_BBBBBBBBBBBBBBB

# Names of columns: letters, digits and _, unique without regard to case, of 32 bytes.
$ for members in '2019 a-b@c _9 Az09_ @[`{/:' 'id ID Id' 'a2 a A' '9 8 é É'; do
>     sh shape '{"'$(echo "$members" | sed 's/ /":1,"/g')'":1}' --ordinals 0
> done
  [root] /root [_019:N,a_b_c:N,_9:N,Az09_:N,______:N]
  [root] /root [id:N,ID2:N,Id3:N]
  [root] /root [a2:N,a:N,A3:N]
  [root] /root [_:N,_2:N,__:N,__2:N]
! qvejmap: <stdin>: 1 path that no map can name: /root/@[`{/:, a name holds "/"
$ sh shape '{"'$(printf 'q%.0s' $(seq 32))$(seq -s '":1,"'$(printf 'q%.0s' $(seq 32)) 1001)'":1}' --ordinals 0 > long; tr , '\n' < long | sed -n '1,2p;10p;$p'
  [root] /root [qqqqqqqqqqqqqqqqqqqqqqqqqqqqqqqq:N
  qqqqqqqqqqqqqqqqqqqqqqqqqqqqqqq2:N
  qqqqqqqqqqqqqqqqqqqqqqqqqqqqqq10:N
  qqqqqqqqqqqqqqqqqqqqqqqqqqqq1001:N]

# Rows of parents and children; empty objects join the next row; a table path that is a parent's.
$ echo '{"o":[{"i":1,"c":[{"q":1},{"q":2}]},{"i":2,"c":[{"q":3}]},{"i":3}]}' > o.json; qvejmap read o.json o; qvejmap read o.json o_c
  ordinal_root,ordinal_o,i\r
  1,1,1\r
  1,2,2\r
  1,3,3\r
  ordinal_root,ordinal_o,ordinal_c,q\r
  1,1,1,1\r
  1,1,2,2\r
  1,2,3,3\r
$ printf '[{"a":1,"b":"x"},{"b":"y"},{"a":3}]' | qvejmap read - root; printf '{"t":[1,"x",null]}' | qvejmap read - t
  ordinal_root,a,b\r
  1,1,x\r
  2,,y\r
  3,3,\r
  ordinal_root,ordinal_t,t1,t2,t3\r
  1,1,1,x,\r
$ printf '{"a":[{"b":1},{},{"b":2}]}' | qvejmap read - a; printf '{"a":[{"b":1},{"b":2,"c":{}}]}' | qvejmap read - a_c
  ordinal_root,ordinal_a,b\r
  1,1,1\r
  1,3,2\r
  ordinal_root,ordinal_a,ordinal_c\r
  1,1,\r
  1,2,1\r
$ printf '{%s}' "$(for i in $(seq 300); do printf '"c%d":%d,' $i $i; done | head -c -1)" | qvejmap read - root | tail -1 | sed 's/^.*,299/299/'
  299,300\r
