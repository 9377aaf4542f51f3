#!/bin/sh
# The tool formats on a second thread: the same files come of it as without.
# For ThreadSanitizer, whose reports make the tool fail.
#   threads_test.sh QVEJMAP
set -eu
tool=$1
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
{
    printf '{"orders":['
    seq 20000 | sed 's/.*/{"id":&,"text":"some \\"words\\" of order &","n":{"x":[1,2.5,null]}},/'
    printf '{"id":0}]}'
} > "$folder/orders.json"
"$tool" convert "$folder/orders.json" -o "$folder/one" --threads 1 -q
for how in '' '--compress' '--keep-free 9999G' '--format ndjson'; do
    "$tool" convert "$folder/orders.json" -o "$folder/two" --threads 2 -q $how
    [ "$how" = '--format ndjson' ] || diff -r -x datapackage.json "$folder/one" "$folder/two"
    rm -r "$folder/two"
done
