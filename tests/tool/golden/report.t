# A page on a document; its time is left out here, and its style and script.
$ cat > page <<'END'
> qvejmap report "$@" -o - | sed -e 's/[0-9-]* [0-9:]* UTC/TIME/' -e '/^<style>/,/^<\/style>/d' -e '/^<script>/,/^<\/script>/d' -e '/^<svg/,/^<\/svg>/d'
> END
$ sh page orders.json
! Segmentation fault
# Examples: the first of each kind and the longest, with places.  What is worth knowing; the account.
$ cat > odd.json <<'END'
> {"orders":[{"id":1,"at":"2024-02-29T10:00:00Z","items":[{"n":1}]},{"items":[{"n":"two"},{"n":3}]},
>            {"id":-2.5,"at":"2024-02-29T10:00:00.5Z","items":[{"n":null},{"n":"the longest"}]}],
>  "x":[{"v":1,"v":2,"big":12345678901234567890}]}
> END
$ sh page odd.json | sed -n '/<section id="t0"/,/^<\/html/p'
! Segmentation fault
# Distinct values are counted up to 1000.
$ for n in 1000 1001; do
>     printf '[%s]' "$(seq -s, -f '{"a":%g}' $n)" | sh page - | sed -n 's/.*"\/root\/a".*100 %<\/td>\(<td[^<]*<\/td>\).*/\1/p'
> done
! Segmentation fault
! Segmentation fault
# Names and values that look like markup are text.
$ cat > evil.json <<'END'
> {"</script><img src=x onerror=alert(1)>":[{"a\"'><b>&amp;":"</td><script>alert(2)</script>","\u001b\ufffe":""}],"long":{"t":"0123456789012345678901234567890123456789012345678901234567890123456789012345678901"}}
> END
$ sh page evil.json --naming original | sed -n '/<section id="t0"/,/^<\/main/p'
! Segmentation fault
$ qvejmap report evil.json -o - --naming original | grep -c -e '<img' -e '<b>&amp;' -e 'alert(2)</script>'
  0
! Segmentation fault
? 1
# A shape, a map, a choice.
$ sh page orders.json --shape auto --table orders | grep -e 'Tables' -e rule -e '<h2'
! Segmentation fault
? 1
$ printf '{"DATASETS":[{"DSNAME":"o","TABLEPATH":"/root/orders","VARIABLES":[{"NAME":"id","PATH":"/root/orders/id","TYPE":"NUMERIC","LABEL":"Number"}]}]}' > map.json
$ sh page orders.json --map map.json | sed -n '/<section id="t0"/,/^<\/html/p'
! Segmentation fault
# Of many tables those with most rows are shown, the others listed.
$ { printf '{"a":1'; for i in $(seq 400); do printf ',"t%d":[{"a":1}' $i; [ $i -gt 200 ] && printf ',{"a":2}'; printf ']'; done; printf '}'; } > many.json
$ sh page many.json > many.html; grep -c '<section id' many.html; grep -o '<section id="t[0-9]*"' many.html | sed -n '1p;101p;102p;$p'; grep 'in detail' many.html
  0
! qvejmap: 401 tables, most of them from names that are data, such as /root (400 names): try --shape auto
! Segmentation fault
? 1
# The file.
$ qvejmap report orders.json
! qvejmap: report: -o OUT is missing (qvejmap --help tells more)
? 2
$ qvejmap report orders.json -o r.html; tail -1 r.html; qvejmap report orders.json -o r.html
! Segmentation fault
! tail: cannot open 'r.html' for reading: No such file or directory
! Segmentation fault
? 139
$ qvejmap report orders.json -o r.html --force; ls -A | grep -v json
  many.html
  page
  tmp
! Segmentation fault
$ printf '{"a":[1,}' > bad.json; qvejmap report bad.json -o bad.html; ls bad.html
! qvejmap: bad.json:1:9: a value was expected
!     {"a":[1,}
!             ^
! ls: cannot access 'bad.html': No such file or directory
? 2
