# Rules of a shape, as options and in files.
$ cat > projects.json <<'END'
> {"projects":{"moon":{"stars":2,"tags":["a","b","c"],"license":{"id":"MIT","year":1999}},
>   "sun":{"stars":1,"tags":[],"license":{"id":"BSD","year":2001}}},
>  "owner":{"name":"Ada","site":{"url":"https://example.org"}},"limits":[[1,2],3]}
> END
$ qvejmap tables projects.json --rows /root/projects --inline '/root/**/license' --rows '/root/projects/*/tags'
  projects\t6\t/root/projects
  projects_tags\t4\t/root/projects/tags
  owner\t3\t/root/owner
  owner_site\t4\t/root/owner/site
  limits\t5\t/root/limits
$ qvejmap read projects.json projects --rows '/root/projects as name' --inline '/root/**/license'
  ordinal_root,ordinal_projects,name,stars,license_id,license_year\r
  1,1,moon,2,MIT,1999\r
  1,2,sun,1,BSD,2001\r
$ qvejmap read projects.json projects_tags --rows '/root/projects as name' --rows '/root/projects/*/tags'
  ordinal_root,ordinal_projects,ordinal_tags,value\r
  1,1,1,a\r
  1,1,2,b\r
  1,1,3,c\r
  1,2,4,\r
$ qvejmap read projects.json owner --as-text /root/owner/site
  ordinal_root,ordinal_owner,name,site\r
  1,1,Ada,"{""url"":""https://example.org""}"\r
$ printf '# what people ask for\nrows /root/projects\ndrop /root/**/tags\nonly /root/projects/*/stars\n' > rules
$ qvejmap records projects.json --shape rules
  NOVAL\t/root\t
  NOVAL\t/root/projects\t
  STRING\t/root/projects/key\tmoon
  NUMBER\t/root/projects/stars\t2
  NOVAL\t/root/projects\t
  STRING\t/root/projects/key\tsun
  NUMBER\t/root/projects/stars\t1
# Options come after the files, and the last rule of a path holds.
$ qvejmap tables projects.json --shape rules --keep /root/projects --only /root/owner --drop-empty
  projects_moon\t4\t/root/projects/moon
  projects_sun\t4\t/root/projects/sun
  owner\t3\t/root/owner
  owner_site\t4\t/root/owner/site
$ qvejmap read projects.json rows --rows '/root as part except limits owner' --drop /root/limits --inline '/root/"owner"/site' -q
  ordinal_root,ordinal_rows,part\r
  1,1,projects\r
$ qvejmap tables projects.json --rows /root/project --drop '/root/*/nothing' --names
  projects_moon
  moon_tags
  moon_license
  projects_sun
  sun_tags
  sun_license
  owner
  owner_site
  limits
! qvejmap: projects.json: 2 rules of the shape never matched: rows /root/project, drop /root/*/nothing

# What convert did is in the list of its files; every value is accounted for.
$ qvejmap convert projects.json -o out --shape rules --rows '/root/"a b" as "the key"' --drop-empty --account; grep -c . out/*.csv
  4 values = 4 in cells + 0 overwritten + 0 no column + 0 no row + 0 rejected
  4 values = 14 of the document + 2 from names + 0 texts - 0 within texts - 12 left out by drop and only
  3
! qvejmap: projects.json: 1 rule of the shape never matched: rows /root/"a b" as "the key"
! qvejmap: 1 table, 2 rows in out
$ grep -o '"options":.*' out/datapackage.json
  "options":["--format=csv","--shape=rules","--rows=/root/\\"a b\\" as \\"the key\\"","--drop-empty"]},
$ qvejmap check projects.json --account --rows /root/projects --as-text /root/limits --drop /root/owner/site
  13 values = 13 in cells + 0 overwritten + 0 no column + 0 no row + 0 rejected
  13 values = 14 of the document + 2 from names + 1 text - 3 within texts - 1 left out by drop and only

# A key that is there already; an array of an inner array; a text that is cut.
$ echo '{"a":{"x":{"key":1},"y":{"k":2}}}' > keys.json
$ qvejmap read keys.json a --rows /root/a
  ordinal_root,ordinal_a,key,k\r
  1,1,1,\r
  1,2,y,2\r
! qvejmap: keys.json: table a: 1 value is overwritten by a later one (qvejmap check --account tells which; rows PATH as KEY gives the names another member)
? 1
$ echo '{"a":1,"a":2,"b":[]}' > twice.json
$ qvejmap read twice.json root --drop-empty
  ordinal_root,a\r
  1,2\r
! qvejmap: twice.json: table root: 1 value is overwritten by a later one (qvejmap check --account tells which)
? 1
$ qvejmap read keys.json a --rows '/root/a as name'
  ordinal_root,ordinal_a,name,key,k\r
  1,1,x,1,\r
  1,2,y,,2\r
$ qvejmap read projects.json limits --rows /root/limits
  ordinal_root,ordinal_limits,value\r
  1,2,3\r
$ { printf '{"t":["'; head -c 40000 /dev/zero | tr '\0' x; printf '"]}'; } > long.json
$ qvejmap read long.json root --as-text /root/t | wc -c
  32790
! qvejmap: root.t: 1 value cut to 32767 bytes, in row 1: "["xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx..."

# Mistakes have their places.
$ printf 'rows /root/a\n\nrow /root/b\n' > wrong; qvejmap check projects.json --shape wrong
! qvejmap: wrong:3:1: "row" is no rule (rows, inline, text, drop, only, keep, empty drop)
? 2
$ qvejmap check projects.json --shape none
! qvejmap: none: No such file or directory
? 5
$ qvejmap check projects.json --rows '/root/a as value'
! qvejmap: --rows: '/root/a as value': "value" is what the member beside the key is called (qvejmap --help tells more)
? 2
$ qvejmap check projects.json --drop /root
! qvejmap: --drop: '/root': the root takes "rows" only (qvejmap --help tells more)
? 2
$ qvejmap check projects.json --inline root/a
! qvejmap: --inline: 'root/a': a path begins with "/", as in /root/orders (qvejmap --help tells more)
? 2
$ qvejmap check projects.json --shape - < wrong
! qvejmap: -:3:1: "row" is no rule (rows, inline, text, drop, only, keep, empty drop)
? 2
$ echo '{"a":"what was taken for rules is shown by its first forty characters"}' | tr ' ' - > document
$ qvejmap check projects.json --shape document
! qvejmap: document:1:1: "{"a":"what-was-taken-for-rules-is-shown-..." is no rule (rows, inline, text, drop, only, keep, empty drop)
? 2
$ for i in 1 2 3 4 5 6 7; do echo "drop /root/$i"; done > many; qvejmap check projects.json --shape many
  projects.json: well formed
! qvejmap: projects.json: 7 rules of the shape never matched: drop /root/1, drop /root/2, drop /root/3, drop /root/4, drop /root/5 and 2 more
$ qvejmap check - --shape - < many
! qvejmap: only one of --shape and the other files can be standard input (qvejmap --help tells more)
? 2
$ qvejmap map diff wrong wrong --rows /root
! qvejmap: --rows belongs to tables, map, map check, map explain, read, convert, report, diagram, records, check, not to map diff (qvejmap --help tells more)
? 2

# Many tables whose names are data.
$ { printf '{"data":{'; for i in $(seq 60); do printf '"k%d":{"a":{"b":%d}},' $i $i; done; printf '"z":{"a":{"b":1}}}}'; } > data.json
$ qvejmap tables data.json | tail -1
  z_a\t5\t/root/data/z/a
! qvejmap: 61 tables, most of them from names that are data, such as /root/data (61 names): try --shape auto
$ qvejmap tables data.json --rows /root/data
  data\t3\t/root/data
  data_a\t4\t/root/data/a
$ qvejmap convert data.json -o data
! qvejmap: 61 tables, 61 rows in data
! qvejmap: 61 tables, most of them from names that are data, such as /root/data (61 names): try --shape auto
