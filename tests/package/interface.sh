#!/bin/sh
# Compares the interface of LIBRARY, as its debug information tells it, with the recorded one, and says which number of
# the version must rise. Types of the C++ library are left out. Usage: interface.sh RECORD LIBRARY [--write]
set -eu
found=$(mktemp -d)
trap 'rm -rf "$found"' EXIT
cat > "$found/foreign.abignore" <<'END'
[suppress_type]
  name_regexp = ^(std|__gnu_cxx)::
  drop = yes
[suppress_function]
  name_regexp = ^(std|__gnu_cxx)::
  drop = yes
END
abidw --no-corpus-path --no-comp-dir-path --no-show-locs --suppressions "$found/foreign.abignore" \
    --out-file "$found/new.abi" "$2"
[ "${3-}" != --write ] || xz -9 -c "$found/new.abi" > "$1"
xz -dc "$1" > "$found/old.abi"
status=0
abidiff --suppressions "$found/foreign.abignore" "$found/old.abi" "$found/new.abi" || status=$?
[ $status -ne 0 ] || exit 0
case $((status & 8)) in
    0) echo "Hosts may need a new build: a removed or changed part raises the first number of the version, an added one the second." >&2 ;;
    8) echo "Hosts must be built anew: the first number of the version must rise." >&2 ;;
esac
echo "Wanted? Then run scripts/record-interface" >&2
exit 1
