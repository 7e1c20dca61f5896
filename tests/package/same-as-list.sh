#!/bin/sh
# Compares the lines of standard input, sorted, with LIST. Usage: same-as-list.sh LIST [--write]
set -eu
found=$(mktemp)
trap 'rm -f "$found"' EXIT
LC_ALL=C sort -u > "$found"
[ "${2-}" != --write ] || cp "$found" "$1"
diff -u "$1" "$found" || { echo "Wanted? Then run scripts/record-interface" >&2; exit 1; }
