#!/bin/sh
# Compares the files under PREFIX with LIST. The name of the build type and the version are cut out, and the generated
# reference, which is there only if it was built, is left out. Usage: installed-files.sh LIST PREFIX [--write]
set -eu
found=$(mktemp)
trap 'rm -f "$found"' EXIT
(cd "$2" && find . -type f -o -type l) | grep -v /html/ |
    sed -E 's|^\./||; s|(Targets)-[a-z]+\.cmake|\1-TYPE.cmake|; s|\.so\.([0-9]+)\.[0-9.]+$|.so.\1.VERSION|' |
    LC_ALL=C sort > "$found"
[ "${3-}" != --write ] || cp "$found" "$1"
diff -u "$1" "$found" || { echo "Wanted? Then run scripts/record-interface" >&2; exit 1; }
