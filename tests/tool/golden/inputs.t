# Several files are one data set: one map, ordinals that go on, and a column of their names.
$ mkdir -p logs/deep; printf '{"id":1,"tags":["x","y"]}' > a.json; printf '[{"id":2},{"id":"three"}]' > b.json
> printf '{"id":4,"Source":"s"}\n{"id":5,"o":{"n":1}}\n' | gzip > logs/c.jsonl.gz; printf '[6,7]' > logs/deep/d.json
> printf 'no data' > logs/readme.txt
$ qvejmap convert a.json b.json -o out && head out/*.csv
  ==> out/root.csv <==
  source,ordinal_root,id\r
  a.json,1,1\r
  b.json,2,2\r
  b.json,3,three\r
  
  ==> out/tags.csv <==
  source,ordinal_root,ordinal_tags,tags1,tags2\r
  a.json,1,1,x,y\r
! qvejmap: 2 tables, 4 rows in out
! qvejmap: root.id has values of several kinds, all as texts
$ qvejmap convert a.json logs -o folder && head folder/*.csv
  ==> folder/o.csv <==
  source,ordinal_root,ordinal_o,n\r
  logs/c.jsonl.gz,3,1,1\r
  
  ==> folder/root.csv <==
  source_1,ordinal_root,id,Source,element1,element2\r
  a.json,1,1,,,\r
  logs/c.jsonl.gz,2,4,s,,\r
  logs/c.jsonl.gz,3,5,,,\r
  logs/deep/d.json,4,,,6,7\r
  
  ==> folder/tags.csv <==
  source,ordinal_root,ordinal_tags,tags1,tags2\r
  a.json,1,1,x,y\r
! qvejmap: 3 tables, 6 rows in folder
! qvejmap: the column of file names has another name where source is taken: root.source_1
$ qvejmap convert a.json logs -o quiet -q --alldata && head -3 quiet/ALLDATA.csv
  source,P,P1,P2,V,Value\r
  a.json,1,id,,1,1\r
  a.json,1,tags,,0,\r
$ qvejmap tables 'logs/*.gz' '[ab].json' --columns
  root\tsource_1\tCHARACTER\t15\t
  root\tordinal_root\tORDINAL\t8\t/root
  root\tid\tCHARACTER\t5\t/root/id
  root\tSource\tCHARACTER\t1\t/root/Source
  o\tsource\tCHARACTER\t15\t
  o\tordinal_root\tORDINAL\t8\t/root
  o\tordinal_o\tORDINAL\t8\t/root/o
  o\tn\tNUMERIC\t8\t/root/o/n
  tags\tsource\tCHARACTER\t15\t
  tags\tordinal_root\tORDINAL\t8\t/root
  tags\tordinal_tags\tORDINAL\t8\t/root/tags
  tags\ttags1\tCHARACTER\t1\t/root/tags/tags1
  tags\ttags2\tCHARACTER\t1\t/root/tags/tags2
! qvejmap: the column of file names has another name where source is taken: root.source_1
$ qvejmap tables a.json --columns
  root\tordinal_root\tORDINAL\t8\t/root
  root\tid\tNUMERIC\t8\t/root/id
  tags\tordinal_root\tORDINAL\t8\t/root
  tags\tordinal_tags\tORDINAL\t8\t/root/tags
  tags\ttags1\tCHARACTER\t1\t/root/tags/tags1
  tags\ttags2\tCHARACTER\t1\t/root/tags/tags2
$ qvejmap check a.json logs
  a.json: well formed
  logs/c.jsonl.gz: well formed
  logs/deep/d.json: well formed
$ qvejmap check a.json b.json --account
  5 values = 5 in cells + 0 overwritten + 0 no column + 0 no row + 0 rejected
$ qvejmap map a.json b.json --compact
  {"DATASETS":[{"DSNAME":"root","TABLEPATH":"/root","VARIABLES":[{"NAME":"ordinal_root","TYPE":"ORDINAL","PATH":"/root"},{"NAME":"id","TYPE":"CHARACTER","PATH":"/root/id","CURRENT_LENGTH":5}]},{"DSNAME":"tags","TABLEPATH":"/root/tags","VARIABLES":[{"NAME":"ordinal_root","TYPE":"ORDINAL","PATH":"/root"},{"NAME":"ordinal_tags","TYPE":"ORDINAL","PATH":"/root/tags"},{"NAME":"tags1","TYPE":"CHARACTER","PATH":"/root/tags/tags1","CURRENT_LENGTH":1},{"NAME":"tags2","TYPE":"CHARACTER","PATH":"/root/tags/tags2","CURRENT_LENGTH":1}]}]}
$ qvejmap find a.json logs --path '/**/id'
  a.json\t1\t7\t/root/id\t1
  logs/c.jsonl.gz\t1\t7\t/root/id\t4
  logs/c.jsonl.gz\t2\t7\t/root/id\t5
$ qvejmap find b.json --path '/**/id' --limit 1
  1\t8\t/root/id\t2
$ qvejmap convert - a.json -o in < b.json && cat in/root.csv
  source,ordinal_root,id\r
  <stdin>,1,2\r
  <stdin>,2,three\r
  a.json,3,1\r
! qvejmap: 2 tables, 4 rows in in
! qvejmap: root.id has values of several kinds, all as texts
$ qvejmap convert a.json a.json -o twice && cat twice/root.csv
  source,ordinal_root,id\r
  a.json,1,1\r
  a.json,2,1\r
! qvejmap: 2 tables, 4 rows in twice

# A map of one's own, rules of a shape, values of parents.
$ qvejmap map a.json b.json -o map.json && qvejmap convert a.json b.json --map map.json -o mapped -q && cat mapped/root.csv
  source,ordinal_root,id\r
  a.json,1,1\r
  b.json,2,2\r
  b.json,3,three\r
$ qvejmap convert a.json b.json --rows /root/tags --carry -o shaped -q && head shaped/*.csv
  ==> shaped/root.csv <==
  source,ordinal_root,id\r
  a.json,1,1\r
  b.json,2,2\r
  b.json,3,three\r
  
  ==> shaped/tags.csv <==
  source,ordinal_root,ordinal_tags,value\r
  a.json,1,1,x\r
  a.json,1,2,y\r
$ qvejmap convert a.json logs --shape auto -o auto -q && head auto/*.csv
  ==> auto/o.csv <==
  source,ordinal_root,ordinal_o,n\r
  logs/c.jsonl.gz,3,1,1\r
  
  ==> auto/root.csv <==
  source_1,ordinal_root,id,Source,element1,element2\r
  a.json,1,1,,,\r
  logs/c.jsonl.gz,2,4,s,,\r
  logs/c.jsonl.gz,3,5,,,\r
  logs/deep/d.json,4,,,6,7\r
  
  ==> auto/tags.csv <==
  source,ordinal_root,ordinal_tags,tags1,tags2\r
  a.json,1,1,x,y\r

# What is wrong has its file.
$ printf '{"id":\n 1,}' > bad.json; qvejmap check a.json bad.json b.json
! qvejmap: bad.json:2:4: a member name in double quotes was expected
!      1,}
!        ^
? 3
$ printf '{"id":' > short.json; qvejmap tables a.json short.json a.json
! qvejmap: short.json:1:7: the document ends before a complete object or array
!     {"id":
!           ^
? 3
$ printf '' > empty.json; qvejmap convert empty.json a.json -o none
! qvejmap: empty.json:1:1: the document ends before a complete object or array
? 3
$ printf '12' > scalar.json; qvejmap convert a.json scalar.json -o none
! qvejmap: scalar.json:1:1: a document must be an object or an array
!     12
!     ^
? 3
$ qvejmap convert a.json missing.json -o none
! qvejmap: missing.json: No such file or directory
? 5
$ mkdir nothing; qvejmap convert nothing -o none; qvejmap convert 'nothing/*' -o none
! qvejmap: nothing: no file in this folder ends in .json, .jsonl or .ndjson
! qvejmap: nothing/*: no file has a name like this
? 5
$ qvejmap convert - - -o none
! qvejmap: only one FILE can be standard input (qvejmap --help tells more)
? 2
$ qvejmap find a.json missing.json --path /root/id
  a.json\t1\t7\t/root/id\t1
! qvejmap: missing.json: No such file or directory
? 5
$ qvejmap map chek a.json
! qvejmap: map: no file is named 'chek'; did you mean map check? (qvejmap --help tells more)
? 2
$ qvejmap read a.json b.json root
! qvejmap: read: 'root' is one word too many (qvejmap --help tells more)
? 2
$ printf '{"id":123456789012345678901234567890}' > big.json; qvejmap tables a.json big.json
  root\t3\t/root
  tags\t5\t/root/tags
! qvejmap: big.json:1:7: root.id has 1 number that a double does not keep, here
$ printf '{"id":1,"id":2}' > again.json; qvejmap check a.json again.json --account
  path\tvalues\tlost\tfirst
  /root/id\t1\toverwritten\tagain.json:1:7
  5 values = 4 in cells + 1 overwritten + 0 no column + 0 no row + 0 rejected
? 1
$ ls none
! ls: cannot access 'none': No such file or directory
? 2
$ qvejmap convert a.json b.json -o . --force
! qvejmap: . had no datapackage.json of qvejmap: files were replaced by name, and no others removed
! qvejmap: 2 tables, 4 rows in .
! qvejmap: root.id has values of several kinds, all as texts
$ cp a.json root.csv; qvejmap convert root.csv b.json -o . --force
! qvejmap: root.csv: the document itself, not replaced
? 5

# Outputs apart: a directory and a map for each.
$ qvejmap convert a.json logs ./a.json - --per-file -o apart < b.json && find apart -name '*.csv' | sort && cat apart/a_2/root.csv
  apart/a/root.csv
  apart/a/tags.csv
  apart/a_2/root.csv
  apart/a_2/tags.csv
  apart/c/o.csv
  apart/c/root.csv
  apart/d/root.csv
  apart/stdin/root.csv
  ordinal_root,id\r
  1,1\r
! qvejmap: 2 tables, 2 rows in apart/a
! qvejmap: 2 tables, 3 rows in apart/c
! qvejmap: 1 table, 0 rows in apart/d
! qvejmap: logs/deep/d.json: table root has no rows; its values are only in ALLDATA
! qvejmap: logs/deep/d.json: 2 values are in no cell (qvejmap check --account tells which)
! qvejmap: 2 tables, 2 rows in apart/a_2
! qvejmap: 1 table, 2 rows in apart/stdin
! qvejmap: root.id has values of several kinds, all as texts
$ qvejmap convert a.json bad.json b.json --per-file -o some; find some -name '*.csv' | sort
  some/a/root.csv
  some/a/tags.csv
! qvejmap: 2 tables, 2 rows in some/a
! qvejmap: bad.json:2:4: a member name in double quotes was expected
!      1,}
!        ^
$ qvejmap convert a.json b.json --per-file -o apart -q --map map.json --force; cat apart/b/root.csv
  ordinal_root,id\r
  1,2\r
  2,three\r
! qvejmap: b.json: table tags has no rows
$ qvejmap convert a.json b.json --per-file -o apart
! qvejmap: apart/a/root.csv: the file exists (--force replaces it)
? 5
$ qvejmap convert a.json b.json --per-file -o more --rejects r.csv
! qvejmap: --per-file: neither --rejects nor --cache can be for several documents (qvejmap --help tells more)
? 2
# Rejected values of several files come with the name of theirs.
$ printf '{"DATASETS":[{"DSNAME":"r","TABLEPATH":"/root","VARIABLES":[{"NAME":"n","TYPE":"NUMERIC","PATH":"/root/id"},{"NAME":"c","TYPE":"CHARACTER","PATH":"/root/id","LENGTH":2,"INFORMAT":["upper"]},{"NAME":"o","PATH":"/root"}]}]}' > bad.map
$ qvejmap convert a.json b.json logs --map bad.map -o rejecting --rejects rejecting.csv; cat rejecting.csv
  source,table,row,column,path,ordinals,text,reason\r
  b.json,r,3,n,/root/id,o=3,three,not a number\r
  b.json,r,3,c,/root/id,o=3,three,cut to 2 bytes\r
! qvejmap: 1 table, 5 rows in rejecting
! qvejmap: r.n: 1 value rejected, in row 3: "three" is not a number
! qvejmap: r.c: 1 value cut to 2 bytes, in row 3: "three"
$ printf '{"id":"x"}\n{"id":}\n' > x.jsonl; qvejmap convert b.json x.jsonl --map bad.map --skip-bad-lines -o rejecting2 -q --rejects rejecting2.csv 2>&-; cat rejecting2.csv
  source,table,row,column,path,ordinals,text,reason\r
  x.jsonl,,2,,x.jsonl:2:7,,"{""id"":}",a value was expected\r
  b.json,r,2,n,/root/id,o=2,three,not a number\r
  b.json,r,2,c,/root/id,o=2,three,cut to 2 bytes\r
  x.jsonl,r,3,n,/root/id,o=3,x,not a number\r

# Bad lines are left out, and told.
$ printf '{"id":1}\n{"id":}\n\n{"id":4} 5\n{"id":6,"o":"caf\351"}\n{"id":7}\n{"id"' > bad.jsonl
$ qvejmap read bad.jsonl root --skip-bad-lines
  ordinal_root,id\r
  1,1\r
  2,7\r
! qvejmap: 4 lines skipped, the first: bad.jsonl:2:7: a value was expected: "{"id":}"
? 1
# Files that are no JSON Lines are read as they are.
$ qvejmap convert bad.jsonl a.json b.json --skip-bad-lines -o mixed
! qvejmap: 4 lines skipped, the first: bad.jsonl:2:7: a value was expected: "{"id":}"
! qvejmap: 2 tables, 6 rows in mixed
! qvejmap: root.id has values of several kinds, all as texts
? 1
$ qvejmap convert bad.jsonl logs/c.jsonl.gz --skip-bad-lines -o skipping -q --rejects bad.csv; cat bad.csv skipping/root.csv
  source,table,row,column,path,ordinals,text,reason\r
  bad.jsonl,,2,,bad.jsonl:2:7,,"{""id"":}",a value was expected\r
  bad.jsonl,,4,,bad.jsonl:4:10,,"{""id"":4} 5",only white space may follow the value in its line\r
  bad.jsonl,,5,,bad.jsonl:5:17,,"{""id"":6,""o"":""caf�""}",invalid UTF-8\r
  bad.jsonl,,7,,bad.jsonl:7:6,,"{""id""",the value does not end in its line\r
  source_1,ordinal_root,id,Source\r
  bad.jsonl,1,1,\r
  bad.jsonl,2,7,\r
  logs/c.jsonl.gz,3,4,s\r
  logs/c.jsonl.gz,4,5,\r
! qvejmap: 4 lines skipped, the first: bad.jsonl:2:7: a value was expected: "{"id":}"
$ sed 's/\r$//' bad.csv | wc -l; qvejmap tables bad.jsonl --skip-bad-lines --names; qvejmap find bad.jsonl --path /root/id --skip-bad-lines
  5
  root
  1\t7\t/root/id\t1
  6\t7\t/root/id\t7
! qvejmap: 4 lines skipped, the first: bad.jsonl:2:7: a value was expected: "{"id":}"
! qvejmap: 4 lines skipped, the first: bad.jsonl:2:7: a value was expected: "{"id":}"
? 1
$ qvejmap check bad.jsonl --skip-bad-lines --account -q
  2 values = 2 in cells + 0 overwritten + 0 no column + 0 no row + 0 rejected
! qvejmap: 4 lines skipped, the first: bad.jsonl:2:7: a value was expected: "{"id":}"
? 1
$ printf '{"id":1}\n{"id":\303\244}\n{"id":"\303\244", "id":2}' | iconv -t utf-16 | qvejmap check - --skip-bad-lines --account
  path\tvalues\tlost\tfirst
  /root/id\t1\toverwritten\t
  3 values = 2 in cells + 1 overwritten + 0 no column + 0 no row + 0 rejected
! qvejmap: 1 line skipped: <stdin>:2:7: a value was expected: "{"id":ä}"
? 1
$ qvejmap check a.json --skip-bad-lines
! qvejmap: a.json: --skip-bad-lines is for JSON Lines, and this does not look like it (--lines says that it is)
? 2
$ printf 'x\n{"id":1}\n' | qvejmap read - root --skip-bad-lines --lines
  ordinal_root,id\r
  1,1\r
! qvejmap: 1 line skipped: <stdin>:1:1: not a JSON word: only true, false and null stand unquoted: "x"
? 1
$ printf '{"a":1}\n{"a":1x}\n' | qvejmap map explain - root.a --skip-bad-lines
! qvejmap: --skip-bad-lines belongs to tables, map, read, convert, report, diagram, find, records, check, not to map explain (qvejmap --help tells more)
? 2

# Bad files are left out, and told.
$ qvejmap convert bad.json a.json short.json empty.json missing.json scalar.json logs b.json --skip-bad-files -o good; cat good/root.csv
  source_1,ordinal_root,id,Source,element1,element2\r
  a.json,1,1,,,\r
  logs/c.jsonl.gz,2,4,s,,\r
  logs/c.jsonl.gz,3,5,,,\r
  logs/deep/d.json,4,,,6,7\r
  b.json,5,2,,,\r
  b.json,6,three,,,\r
! qvejmap: skipped: bad.json:2:4: a member name in double quotes was expected
!      1,}
!        ^
! qvejmap: skipped: short.json:1:7: the document ends before a complete object or array
!     {"id":
!           ^
! qvejmap: skipped: empty.json:1:1: the document ends before a complete object or array
! qvejmap: skipped: missing.json: No such file or directory
! qvejmap: skipped: scalar.json:1:1: a document must be an object or an array
!     12
!     ^
! qvejmap: 3 tables, 8 rows in good
! qvejmap: root.id has values of several kinds, all as texts
! qvejmap: the column of file names has another name where source is taken: root.source_1
$ qvejmap check bad.json a.json --skip-bad-files; qvejmap map bad.json b.json --skip-bad-files --compact
  a.json: well formed
  {"DATASETS":[{"DSNAME":"root","TABLEPATH":"/root","VARIABLES":[{"NAME":"ordinal_root","TYPE":"ORDINAL","PATH":"/root"},{"NAME":"id","TYPE":"CHARACTER","PATH":"/root/id","CURRENT_LENGTH":5}]}]}
! qvejmap: skipped: bad.json:2:4: a member name in double quotes was expected
!      1,}
!        ^
! qvejmap: skipped: bad.json:2:4: a member name in double quotes was expected
!      1,}
!        ^
? 1
$ qvejmap tables bad.json short.json --skip-bad-files
! qvejmap: skipped: bad.json:2:4: a member name in double quotes was expected
!      1,}
!        ^
! qvejmap: short.json:1:7: the document ends before a complete object or array
!     {"id":
!           ^
? 3
$ qvejmap find bad.json b.json --skip-bad-files --path '/**/id'
  b.json\t1\t8\t/root/id\t2
  b.json\t1\t17\t/root/id\tthree
! qvejmap: skipped: bad.json:2:4: a member name in double quotes was expected
!      1,}
!        ^
? 1
$ qvejmap find bad.json --skip-bad-files --path '/**/id'
! qvejmap: bad.json:2:4: a member name in double quotes was expected
!      1,}
!        ^
? 3
$ qvejmap convert bad.json - short.json --skip-bad-files --per-file -o each --shape auto < b.json
! qvejmap: skipped: bad.json:2:4: a member name in double quotes was expected
!      1,}
!        ^
! qvejmap: 1 table, 2 rows in each/stdin
! qvejmap: root.id has values of several kinds, all as texts
! qvejmap: skipped: short.json:1:7: the document ends before a complete object or array
!     {"id":
!           ^
? 1
$ qvejmap convert bad.json short.json --skip-bad-files --per-file -o each
! qvejmap: skipped: bad.json:2:4: a member name in double quotes was expected
!      1,}
!        ^
! qvejmap: short.json:1:7: the document ends before a complete object or array
!     {"id":
!           ^
? 3
$ printf '[[1]]' > deep.json; qvejmap check deep.json a.json --depth 1 --skip-bad-files
! qvejmap: deep.json:1:2: the document is nested deeper than the limit of 1 (--depth)
!     [[1]]
!      ^
? 6
# What an earlier run wrote into the folder is no input.
$ mkdir grown; echo '{"a":1}' > grown/x.json; qvejmap convert grown -o grown/out --format ndjson -q; cp grown/x.json grown/out/own.json; qvejmap convert grown -o again; qvejmap find grown -q --path '/root/**'
  grown/out/own.json\t1\t1\t/root\t{
  grown/out/own.json\t1\t6\t/root/a\t1
  grown/x.json\t1\t1\t/root\t{
  grown/x.json\t1\t6\t/root/a\t1
! qvejmap: 2 files of an earlier convert are left out, the first grown/out/datapackage.json
! qvejmap: 1 table, 2 rows in again

# Each walk over the files is told while it lasts: here the first one waits for more than a second.
$ slow() { printf '[{"id":1}'; sleep 1.1; printf ',{"id":2}]'; }
> mkfifo 1 2 3 4; qvejmap tables 1 a.json --skip-bad-files --shape auto --progress json > of1 2>&1 & slow > 1 &
> qvejmap tables 2 --shape auto --progress json > of2 2>&1 & slow > 2 & qvejmap shape 3 --progress json > of3 2>&1 & slow > 3 &
> qvejmap tables 4 --progress json > of4 2>&1 & { head -c 2000000 /dev/zero | tr '\0' ' '; sleep 1.5; echo '[{"id":1}]'; } > 4 &
> wait; head -qn 1 of1 of2 of3 | cut -d, -f 1; grep phase of4 | tail -n 1 | cut -d, -f 1,2
  {"phase":"files"
  {"phase":"shape"
  {"phase":"shape"
  {"phase":"scan","bytes":2000011
