# Another program changes the cache file while the document is read: no verb makes rows of it, and none
# keeps output.
$ exec 2> /dev/null
> mkfifo pipe
> for how in '' --compress; do
>     for verb in 'read - a' 'read - ALLDATA --format ndjson' 'records -' 'convert - -o out'; do
>         rm -f kept; qvejmap $verb --keep-free 9999G --cache kept $how < pipe > rows 2> said &
>         exec 3> pipe
>         { printf '{"a":[1'; seq 200000 | sed 's/.*/,{"id":&,"text":"the text of &"}/'; } >&3
>         until test -s kept; do :; done
>         printf x | dd of=kept bs=1 seek=500 conv=notrunc
>         printf ']}' >&3; exec 3>&-
>         wait $!; echo "$verb $how: exit $?, $(wc -l < rows) lines"; cat said; ls -d out
>     done
> done; true
  read - a : exit 5, 0 lines
  qvejmap: kept: the file no longer holds what was written to it
  read - ALLDATA --format ndjson : exit 5, 0 lines
  qvejmap: kept: the file no longer holds what was written to it
  records - : exit 5, 0 lines
  qvejmap: kept: the file no longer holds what was written to it
  convert - -o out : exit 5, 0 lines
  qvejmap: kept: the file no longer holds what was written to it
  read - a --compress: exit 5, 0 lines
  qvejmap: kept: the file no longer holds what was written to it
  read - ALLDATA --format ndjson --compress: exit 5, 0 lines
  qvejmap: kept: the file no longer holds what was written to it
  records - --compress: exit 5, 0 lines
  qvejmap: kept: the file no longer holds what was written to it
  convert - -o out --compress: exit 5, 0 lines
  qvejmap: kept: the file no longer holds what was written to it
