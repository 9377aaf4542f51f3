#!/usr/bin/env bash
# The manual page: groff finds nothing wrong with it, and it has each verb and each option of --help.
#   man_page_test.sh TOOL
set -euo pipefail

place=$(mktemp -d)
trap 'rm -rf "$place"' EXIT
"$1" --man-page >"$place/page"
groff -man -Tutf8 -ww -P-cbou -rLL=500n "$place/page" >"$place/shown" 2>"$place/warnings"
diff /dev/null "$place/warnings"

# Verbs with their operands; options without what comes after the name.
heads() {
    sed 's/  .*//; s/^\(-[-a-z,]*\).*/\1/' | sort -u
}
"$1" --help | sed -n '/^Verbs:/,/^FILE/s/^  \([-a-z]\)/\1/p' | heads >"$place/wanted"
sed 's/^ *//' "$place/shown" | heads >"$place/there"
[ "$(wc -l <"$place/wanted")" -gt 60 ]
comm -23 "$place/wanted" "$place/there" | diff /dev/null -
