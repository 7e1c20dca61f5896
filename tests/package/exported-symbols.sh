#!/bin/sh
# Compares what LIBRARY exports with LIST. What compilers emit for virtual tables, templates of the standard library and
# bases that live in other libraries varies, and is left out. Usage: exported-symbols.sh LIST LIBRARY [--write]
set -eu
found=$(mktemp)
trap 'rm -f "$found"' EXIT
nm -DC --defined-only "$2" | cut -d ' ' -f 3- |
    grep -Ev '^(typeinfo name for |vtable for |(typeinfo for )?(std::|NEB(Message|Thread)))' |
    LC_ALL=C sort -u > "$found"
[ "${3-}" != --write ] || cp "$found" "$1"
diff -u "$1" "$found" || { echo "Wanted? Then run scripts/record-interface" >&2; exit 1; }
