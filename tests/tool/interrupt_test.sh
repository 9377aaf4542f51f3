#!/bin/sh
# A signal while convert makes the files of 12,000 tables, with one thread and with two: nothing
# stays, and the tool dies of the signal.
#   interrupt_test.sh QVEJMAP
set -eu
tool=$1
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"
# So much text that files are made before the last table is reached.
awk 'BEGIN {
    text = sprintf("%2100s", "x")
    printf "{\"t0\":[]"
    for (i = 1; i <= 12000; ++i) printf ",\"t%d\":[{\"v\":\"%s\"}]", i, text
    print "}"
}' > document.json

# interrupt SIGNAL FILES [OPTION...]: sends the signal, twice as timeout(1) does, when so many files
# are there.  When the tool was done before, it is tried again.
interrupt() {
    signal=$1
    files=$2
    shift 2
    for attempt in 1 2 3 4 5 6 7 8 9 10; do
        env --default-signal "$tool" convert document.json -o out "$@" 2> said &
        until [ "$(ls -A .qvejmap-* 2> /dev/null | wc -l)" -ge "$files" ] ||
            ! kill -0 $! 2> /dev/null; do :; done
        kill -"$signal" $! 2> /dev/null && kill -"$signal" $! 2> /dev/null || true
        status=0
        wait $! || status=$?
        [ $status = 0 ] || break
        rm -r out
    done
    echo "$signal after $files files, $*: $(cat said)"
    [ "$(kill -l $status)" = "$signal" ] || { echo "status $status" >&2; exit 1; }
    [ "$(ls -A)" = "$(printf 'document.json\nsaid')" ] || { ls -A >&2; exit 1; }
    grep -q '^qvejmap: interrupted: out is as it was' said
}

interrupt TERM 1
interrupt INT 2000
interrupt HUP 6000
interrupt TERM 1 --threads 1
interrupt INT 3000 --threads 1
