# The first map's order, names and attributes stand; what it does not say comes from the others.
$ cat > a.json <<'end'
> {"DATASETS":[{"DSNAME":"t","TABLEPATH":"/root","VARIABLES":[
>   {"NAME":"o","TYPE":"ORDINAL","PATH":"/root"},
>   {"NAME":"Id","TYPE":"NUMERIC","PATH":"/root/id","LENGTH":8,"FORMAT":["comma"],"LABEL":"A","OPTIONS":["NORETAIN"]},
>   {"NAME":"day","TYPE":"NUMERIC","PATH":"/root/day","INFORMAT":["?date"]},
>   {"NAME":"x","TYPE":"CHARACTER","PATH":"/root/s","CURRENT_LENGTH":3},
>   {"NAME":"y","TYPE":"CHARACTER","PATH":"/root/s","LENGTH":5,"CURRENT_LENGTH":3}]}]}
> end
> cat > b.json <<'end'
> {"DATASETS":[{"DSNAME":"T","TABLEPATH":"/root","VARIABLES":[
>   {"NAME":"y","TYPE":"CHARACTER","PATH":"/root/s","LENGTH":4,"CURRENT_LENGTH":9,"FORMAT":[""],"INFORMAT":["trim"]},
>   {"NAME":"day","TYPE":"NUMERIC","PATH":"/root/day","INFORMAT":["hex"],"FORMAT":["date",12]},
>   {"NAME":"id","TYPE":"CHARACTER","PATH":"/root/id","CURRENT_LENGTH":7,"LABEL":"B","OPTIONS":["RETAIN"]},
>   {"NAME":"ID","TYPE":"NUMERIC","PATH":"/root/ID","LABEL":"\"\\\u0007"},
>   {"NAME":"id","TYPE":"NUMERIC","PATH":"/root/i d","OPTIONS":["NORETAIN"]}]},
> {"DSNAME":"z","TABLEPATH":"/root/z"},{"DSNAME":"a","TABLEPATH":"/root/b"},{"DSNAME":"t","TABLEPATH":"/root/t"}]}
> end
> cat > c.json <<'end'
> {"DATASETS":[{"DSNAME":"Z","TABLEPATH":"/root/z","VARIABLES":[{"NAME":"v","PATH":"/root/z/v","TYPE":"NUMERIC"}]},
> {"DSNAME":"t","TABLEPATH":"/root","VARIABLES":[
>   {"NAME":"a_name_of_thirty_two_bytes_äöü","TYPE":"NUMERIC","PATH":"/root/b"},
>   {"NAME":"a_name_of_thirty_two_bytes_äöü","TYPE":"NUMERIC","PATH":"/root/c"},
>   {"NAME":"i","TYPE":"NUMERIC","PATH":"/root/i d","OPTIONS":["RETAIN"]},{"NAME":"id","TYPE":"NUMERIC","PATH":"/root/I"},
>   {"NAME":"w","TYPE":"CHARACTER","PATH":"/root/w","INFORMAT":["trim",7]},
>   {"NAME":"x","TYPE":"CHARACTER","PATH":"/root/s","LENGTH":2}]}]}
> end
> qvejmap map merge a.json b.json c.json | tee abc.json
  {
    "DATASETS": [
      {
        "DSNAME": "t",
        "TABLEPATH": "/root",
        "VARIABLES": [
          { "NAME": "o", "TYPE": "ORDINAL", "PATH": "/root" },
          { "NAME": "Id", "TYPE": "CHARACTER", "PATH": "/root/id", "CURRENT_LENGTH": 7, "LABEL": "A", "OPTIONS": ["NORETAIN"] },
          { "NAME": "day", "TYPE": "NUMERIC", "PATH": "/root/day", "FORMAT": ["date", 12], "INFORMAT": ["?date"] },
          { "NAME": "x", "TYPE": "CHARACTER", "PATH": "/root/s", "CURRENT_LENGTH": 3, "LENGTH": 2 },
          { "NAME": "y", "TYPE": "CHARACTER", "PATH": "/root/s", "CURRENT_LENGTH": 9, "LENGTH": 5, "INFORMAT": ["trim"] },
          { "NAME": "ID3", "TYPE": "NUMERIC", "PATH": "/root/ID", "LABEL": "\\"\\\\\\u0007" },
          { "NAME": "i", "TYPE": "NUMERIC", "PATH": "/root/i d", "OPTIONS": ["RETAIN"] },
          { "NAME": "a_name_of_thirty_two_bytes_äöü", "TYPE": "NUMERIC", "PATH": "/root/b" },
          { "NAME": "a_name_of_thirty_two_bytes_äö2", "TYPE": "NUMERIC", "PATH": "/root/c" },
          { "NAME": "id2", "TYPE": "NUMERIC", "PATH": "/root/I" },
          { "NAME": "w", "TYPE": "CHARACTER", "PATH": "/root/w", "INFORMAT": ["trim", 7] }
        ]
      },
      {
        "DSNAME": "a",
        "TABLEPATH": "/root/b"
      },
      {
        "DSNAME": "t",
        "TABLEPATH": "/root/t"
      },
      {
        "DSNAME": "Z",
        "TABLEPATH": "/root/z",
        "VARIABLES": [
          { "NAME": "v", "TYPE": "NUMERIC", "PATH": "/root/z/v" }
        ]
      }
    ]
  }
! qvejmap: t.id of /root/I is now named id2: the name was taken
! qvejmap: t.ID of /root/ID is now named ID3: the name was taken
! qvejmap: t.a_name_of_thirty_two_bytes_äöü of /root/c is now named a_name_of_thirty_two_bytes_äö2: the name was taken
! qvejmap: t.Id is now CHARACTER, without the FORMAT ["comma"], LENGTH 8 of a NUMERIC column
! qvejmap: more than one table is named t: read opens the first
$ qvejmap map merge a.json c.json b.json -o acb.json 2> /dev/null; qvejmap map diff abc.json acb.json && qvejmap map check acb.json
  acb.json: well formed, tables: 4, columns: 12
  no columns: table a
  no columns: table t
  shared name: table t: read opens the first of that name
$ qvejmap map merge a.json a.json -o acb.json; qvejmap map merge - - -o x; qvejmap map merge a.json
! qvejmap: acb.json: the file exists (--force replaces it)
! qvejmap: only one of the maps can be standard input (qvejmap --help tells more)
! qvejmap: map merge: B is missing (qvejmap --help tells more)
? 2
# Merging once more changes nothing.
$ qvejmap map merge abc.json c.json a.json 2> /dev/null | cmp - abc.json
