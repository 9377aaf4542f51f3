#!/bin/sh
# The tool in an address space that is too small: it does its work, or says that memory is short and
# leaves no file.
#   short_memory_test.sh QVEJMAP
set -eu
tool=$1
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"
mkdir tmp
export TMPDIR="$folder/tmp"
step=3000
[ "${JMAP_LONG:-}" = 1 ] && step=200
{
    printf '{"orders":['
    seq 20000 | sed 's/.*/{"id":&,"text":"some words of order &","n":{"x":[1,2]}},/'
    printf '{"id":0}]}'
} > orders.json
"$tool" convert orders.json -o reference -q
tried=0 done=0
for kib in $(seq 30000 $step 110000); do
    status=0
    (ulimit -v "$kib" && exec "$tool" convert orders.json -o out -q) 2> said || status=$?
    case $status in
        0) diff -r -x datapackage.json reference out && done=$((done + 1)) ;;
        6) grep -q 'memory could not be obtained\|memory ran out' said && [ ! -e out ] ;;
        127) grep -q 'shared librar' said ;;  # not even loaded
        134) [ $tried = 0 ] ;;                # nor have the libraries started
        *) false ;;
    esac || { echo "$kib KiB: exit $status: $(cat said)"; exit 1; }
    [ $status = 127 ] || [ $status = 134 ] || tried=$((tried + 1))
    [ -z "$(ls -A tmp)" ]
    rm -rf out
done
echo "$tried sizes, $done of them enough"
[ $((tried - done)) -gt 3 ] && [ $done -gt 3 ]
