$ cat > a.json <<'end'
> {"DATASETS":[{"DSNAME":"orders","TABLEPATH":"/root/o","VARIABLES":[
>   {"NAME":"n","TYPE":"ORDINAL","PATH":"/root/o/t"},
>   {"NAME":"id","TYPE":"NUMERIC","PATH":"/root/o/id"},
>   {"NAME":"paid","TYPE":"NUMERIC","PATH":"/root/o/paid","LABEL":"Paid","FORMAT":["comma",0,2]},
>   {"NAME":"day","TYPE":"NUMERIC","PATH":"/root/o/day","INFORMAT":["date"]},
>   {"NAME":"x","TYPE":"CHARACTER","PATH":"/root/o/t","CURRENT_LENGTH":3},
>   {"NAME":"y","TYPE":"CHARACTER","PATH":"/root/o/t","LENGTH":9,"CURRENT_LENGTH":12,"INFORMAT":["trim"]}]},
> {"DSNAME":"tags","TABLEPATH":"/root/tags"},{"DSNAME":"gone","TABLEPATH":"/root/gone"}]}
> end
$ qvejmap map diff a.json a.json

# The order of tables and columns, the case of keys, and what is without effect make no difference.
$ cat > b.json <<'end'
> {"datasets":[{"dsname":"gone","tablepath":"/root/gone","variables":[]},
> {"dsname":"orders","tablepath":"/root/o","variables":[
>   {"name":"y","type":"character","path":"/root/o/t","length":9,"current_length":99,"informat":["trim",0]},
>   {"name":"x","type":"character","path":"/root/o/t","length":3,"format":[""]},
>   {"name":"day","type":"numeric","path":"/root/o/day","informat":["hex",1],"informat":["date"]},
>   {"name":"paid","type":"numeric","path":"/root/o/paid","lable":"Paid","format":["comma",0,2]},
>   {"name":"id","type":"numeric","path":"/root/o/id","length":5,"length":0},
>   {"name":"n","path":"/root/o/t"}]},
> {"dsname":"tags","tablepath":"/root/tags"}]}
> end
> qvejmap map diff a.json b.json

# Everything that may differ.
$ cat > c.json <<'end'
> {"DATASETS":[{"DSNAME":"orders","TABLEPATH":"/root/o","VARIABLES":[
>   {"NAME":"id","TYPE":"CHARACTER","PATH":"/root/o/id","CURRENT_LENGTH":7,"OPTIONS":["RETAIN"]},
>   {"NAME":"amount","TYPE":"NUMERIC","PATH":"/root/o/paid","LABEL":"\"P\\\u001b","FORMAT":["fixed",9]},
>   {"NAME":"day","TYPE":"NUMERIC","PATH":"/root/o/day","INFORMAT":["?date"]},
>   {"NAME":"x","TYPE":"CHARACTER","PATH":"/root/o/t","CURRENT_LENGTH":4},
>   {"NAME":"z","TYPE":"CHARACTER","PATH":"/root/o/t","LENGTH":-1,"CURRENT_LENGTH":12},
>   {"NAME":"new\n","TYPE":"NUMERIC","PATH":"/root/o/new"}]},
> {"DSNAME":"Tags","TABLEPATH":"/root/tags"},{"DSNAME":"more","TABLEPATH":"/root/m\u0007re"}]}
> end
> qvejmap map diff a.json c.json
  - column orders.n ORDINAL /root/o/t
  ~ column orders.id: type NUMERIC -> CHARACTER, length none -> 7, option none -> RETAIN
  ~ column orders.paid: name paid -> amount, format ["comma",0,2] -> ["fixed",9], label "Paid" -> "\\"P\\\\\\u001b"
  ~ column orders.day: informat ["date"] -> ["?date"]
  ~ column orders.x: length 3 -> 4
  ~ column orders.y: name y -> z, length 9 -> 32767, informat ["trim"] -> none
  + column orders.new\\n NUMERIC /root/o/new
  ~ table tags: name tags -> Tags
  - table gone /root/gone
  + table more /root/m\\u0007re
? 1

$ qvejmap map diff - - ; qvejmap map diff a.json; echo '{}' > bad.json; qvejmap map diff a.json bad.json
! qvejmap: only one of the maps can be standard input (qvejmap --help tells more)
! qvejmap: map diff: B is missing (qvejmap --help tells more)
! qvejmap: bad.json:1:2: a map is an object whose one member is DATASETS [-13]
!     {}
!      ^
? 4
