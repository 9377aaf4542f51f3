# With --naming original tables and columns have the names of the document, whatever is in them.
$ printf '{"città":[{"2019":1,"prix €":"a","say \\"hi\\"":2,"in":{"two\\nlines":3}}],"2020":{"日":[true]}}' > names.json
$ qvejmap tables names.json --naming original --columns
  città\tordinal_root\tORDINAL\t8\t/root
  città\tordinal_città\tORDINAL\t8\t/root/città
  città\t2019\tNUMERIC\t8\t/root/città/2019
  città\tprix €\tCHARACTER\t1\t/root/città/prix €
  città\tsay "hi"\tNUMERIC\t8\t/root/città/say "hi"
  in\tordinal_root\tORDINAL\t8\t/root
  in\tordinal_città\tORDINAL\t8\t/root/città
  in\tordinal_in\tORDINAL\t8\t/root/città/in
  in\ttwo\\nlines\tNUMERIC\t8\t/root/città/in/two\\nlines
  日\tordinal_root\tORDINAL\t8\t/root
  日\tordinal_2020\tORDINAL\t8\t/root/2020
  日\tordinal_日\tORDINAL\t8\t/root/2020/日
  日\t日1\tNUMERIC\t8\t/root/2020/日/日1
$ qvejmap read names.json città --naming original
  ordinal_root,ordinal_città,2019,prix €,"say ""hi"""\r
  1,1,1,a,2\r
$ qvejmap read names.json IN --naming original --format ndjson
  {"ordinal_root":1,"ordinal_città":1,"ordinal_in":1,"two\\nlines":3}
$ qvejmap read names.json 日 --naming original -q
  ordinal_root,ordinal_2020,ordinal_日,日1\r
  1,1,1,true\r

# A table has the name that `tables` shows with the same option.
$ qvejmap read names.json _020__ --naming original
! qvejmap: no table named _020__ (qvejmap tables --naming original lists them)
? 4
$ qvejmap read names.json citt --naming original
! qvejmap: no table named citt; did you mean città?
? 4

# Else it is told in a line how many are changed in more than blanks and punctuation.
$ qvejmap tables names.json
  citt__\t5\t/root/città
  citt___in\t4\t/root/città/in
  _020____\t4\t/root/2020/日
! qvejmap: names.json: 6 names of tables and columns are not the document's, such as citt__ for "città" (--naming original keeps them)
$ qvejmap tables names.json --naming map | head -1
  citt__\t5\t/root/città
$ qvejmap read names.json in -q; qvejmap read names.json citt___in --format ndjson
  {"ordinal_root":1,"ordinal_citt__":1,"ordinal_in":1,"two_lines":3}
! qvejmap: no table named in (qvejmap tables lists them)
! qvejmap: names.json: 1 name of a table or column is not the document's: citt___in for "città/in" (--naming original keeps it)
$ qvejmap convert names.json -o told
! qvejmap: 3 tables, 3 rows in told
! qvejmap: names.json: 6 names of tables and columns are not the document's, such as citt__ for "città" (--naming original keeps them)
$ printf '[{"unit price":1,"e-mail":2,"$ref":3,"x.y":4,"a/b":5,"2019":{"":{"a":1}}}]' | qvejmap tables - --names
  root
  _019_
! qvejmap: <stdin>: 1 name of a table or column is not the document's: _019_ for "2019/" (--naming original keeps it)
$ printf '[{"%033d":1}]' 0 | tr 0 k | qvejmap read - root --ordinals 0
  kkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkk\r
  1\r
! qvejmap: <stdin>: 1 name of a table or column is not the document's: kkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkk for "kkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkk" (--naming original keeps it)

# Names that would be equal have longer pieces of their paths, of tables all of them, of columns the later ones.
$ printf '{"fr":{"items":[{"a":1,"A":2,"ordinal_items":3,"items/ordinal_items":4}]},"de":{"items":[{"b":1}]},"de/items":{"b":2},"Items":{"items":{"c":1}}}' > equal.json
$ qvejmap tables equal.json --naming original
  fr/items\t7\t/root/fr/items
  root/de/items\t4\t/root/de/items
  root/de\\\\/items\t3\t/root/de/items
  Items/items\t4\t/root/Items/items
$ qvejmap tables equal.json --naming original --columns | grep -E '^(fr|Items)'
  fr/items\tordinal_root\tORDINAL\t8\t/root
  fr/items\tordinal_fr\tORDINAL\t8\t/root/fr
  fr/items\tordinal_items\tORDINAL\t8\t/root/fr/items
  fr/items\ta\tNUMERIC\t8\t/root/fr/items/a
  fr/items\tA\tNUMERIC\t8\t/root/fr/items/A
  fr/items\titems/ordinal_items\tNUMERIC\t8\t/root/fr/items/ordinal_items
  fr/items\titems/items\\\\/ordinal_items\tNUMERIC\t8\t/root/fr/items/items/ordinal_items
  Items/items\tordinal_root\tORDINAL\t8\t/root
  Items/items\tordinal_Items\tORDINAL\t8\t/root/Items
  Items/items\tordinal_items\tORDINAL\t8\t/root/Items/items
  Items/items\tc\tNUMERIC\t8\t/root/Items/items/c
$ qvejmap read equal.json items --naming original
! qvejmap: no table named items; did you mean fr/items, Items/items, root/de/items?
? 4
$ printf '{"A":{"x":1},"a":{"x":2}}' > case.json; for t in A a; do qvejmap read case.json $t --naming original --ordinals 0; done
  x\r
  1\r
  x\r
  2\r

# An ordinal has the same name in all tables that it joins.
$ printf '{"t":{"t":{"t":{"v":1},"v":1},"v":1}}' | qvejmap tables - --naming original --columns | grep ORDINAL | cut -f 2,5 | sort -u
  ordinal_root\t/root
  ordinal_t\t/root/t
  ordinal_t/t\t/root/t/t
  ordinal_t/t/t\t/root/t/t/t

# Where paths are the same, or agree in 16 pieces, numbers tell them apart.
$ printf '{"a":{"b\\u0002c":1,"d":2,"b":{"e":1}}}' | qvejmap tables - --naming original
  root/a/b\t4\t/root/a/b
  root/a/b~2\t4\t/root/a/b
$ python3 -c 'print("{\"t\":" * 19 + "{\"v\":1}" + ",\"v\":1}" * 19)' | qvejmap tables - --naming original --columns | grep ORDINAL | cut -f 2 | sort -u | tail -4
  ordinal_t/t/t/t/t/t/t/t/t/t/t/t/t/t/t/t
  ordinal_t/t/t/t/t/t/t/t/t/t/t/t/t/t/t/t~2
  ordinal_t/t/t/t/t/t/t/t/t/t/t/t/t/t/t/t~3
  ordinal_t/t/t/t/t/t/t/t/t/t/t/t/t/t/t/t~4

# Files: all different where case does not count, and cut where file systems take no longer names.
$ qvejmap convert equal.json -o files --naming original; ls files; sed -n 's/"rows.*//p' files/datapackage.json
  Items%2Fitems.csv
  datapackage.json
  fr%2Fitems.csv
  root%2Fde%2Fitems.csv
  root%2Fde%5C%2Fitems.csv
  {"name":"fr.x2fitems","title":"fr/items","path":"fr%2Fitems.csv","format":"csv",
  {"name":"root.x2fde.x2fitems","title":"root/de/items","path":"root%2Fde%2Fitems.csv","format":"csv",
  {"name":"root.x2fde.x5c.x2fitems","title":"root/de\\\\/items","path":"root%2Fde%5C%2Fitems.csv","format":"csv",
  {"name":"items.x2fitems","title":"Items/items","path":"Items%2Fitems.csv","format":"csv",
! qvejmap: 4 tables, 4 rows in files
$ python3 -c 'import json; print(json.dumps({n: {"x": 1} for n in ["A", "a", "..", "a\0/", "k" * 300, "k" * 300 + "l", "\u00e9" * 41 + "abc", "\u00e9" * 43]}))' > long.json
$ qvejmap convert long.json -o long --naming original --format ndjson; ls long | awk '{ print length($0), substr($0, 1, 20), substr($0, length($0) - 20) }'
  11 %2E..ndjson %2E..ndjson
  253 %C3%A9%C3%A9%C3%A9%C A9%C3%A9%C3%A9.ndjson
  255 %C3%A9%C3%A9%C3%A9%C %C3%A9%C3%A9ab.ndjson
  8 A.ndjson A.ndjson
  14 a%00%2F.ndjson a%00%2F.ndjson
  10 a~2.ndjson a~2.ndjson
  16 datapackage.json datapackage.json
  255 kkkkkkkkkkkkkkkkkkkk kkkkkkkkkkkkkk.ndjson
  255 kkkkkkkkkkkkkkkkkkkk kkkkkkkkkkkk~2.ndjson
! qvejmap: 4 file names cut to 255 bytes: datapackage.json has the names of the tables
! qvejmap: 8 tables, 8 rows in long
$ sed -n '/kkk/!s/.*\("title":.*\),"rows.*/  \1/p' long/datapackage.json
    "title":"A","path":"A.ndjson","format":"ndjson"
    "title":"a","path":"a~2.ndjson","format":"ndjson"
    "title":"..","path":"%2E..ndjson","format":"ndjson"
    "title":"a\\u0000/","path":"a%00%2F.ndjson","format":"ndjson"
    "title":"éééééééééééééééééééééééééééééééééééééééééabc","path":"%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9ab.ndjson","format":"ndjson"
    "title":"ééééééééééééééééééééééééééééééééééééééééééé","path":"%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9%C3%A9.ndjson","format":"ndjson"
$ qvejmap convert long.json -o long --naming original --format ndjson --force -q; ls long | wc -l
  9

# Tables without columns have the names of their objects too.
$ printf '{"1":{},"b":{"2":[]}}' | qvejmap tables - --naming original --ordinals 0
  1\t0\t
  2\t0\t
$ printf '{}' | qvejmap tables - --naming original --names
  root

# A header of one empty name is no empty line.
$ printf '{"a\\u0002":1}' | qvejmap read - a --naming original --ordinals 0
  ""\r
! qvejmap: <stdin>: table a has no rows; its values are only in ALLDATA

# The names of a map of one's own are the person's; ALLDATA stays.
$ echo '{"DATASETS":[{"DSNAME":"mine","TABLEPATH":"/root/2020/日","VARIABLES":[{"NAME":"yes","TYPE":"NUMERIC","PATH":"/root/2020/日/日1"}]}]}' > mine.map
$ qvejmap tables names.json --naming original --map mine.map --columns
  mine\tyes\tNUMERIC\t8\t/root/2020/日/日1
$ qvejmap read names.json ALLDATA --naming original --limit 1
  P,P1,P2,P3,V,Value\r
  1,città,,,0,\r

$ printf '{"%s":1}' $(printf 'é%.0s' $(seq 70)) > longer.json; qvejmap tables longer.json
  root\t2\t/root
! qvejmap: longer.json: 1 name of a table or column is not the document's: ________________________________ for "éééééééééééééééééééééééééééééééééééééééééééééééééééééééééééééééé..." (--naming original keeps it)
$ qvejmap map names.json --naming original
! qvejmap: --naming belongs to tables, read, convert, not to map (qvejmap --help tells more)
? 2
$ qvejmap tables names.json --naming org
! qvejmap: --naming: 'org' is none of map, original (qvejmap --help tells more)
? 2
