#!/bin/sh
# Every library under PREFIX, and arxhost, binds its symbols at load and makes their table read-only then; all that have
# arrays on the stack check its frames. Usage: hardening.sh PREFIX
set -eu
for library in "$1"/lib/lib*.so "$1/bin/arxhost"; do
    readelf -lW "$library" | grep -q GNU_RELRO || { echo "$library: the table stays writable"; exit 1; }
    readelf -dW "$library" | grep -q 'FLAGS.*NOW' || { echo "$library: bound late"; exit 1; }
    [ "${library##*/}" = libNEBIDOM.so ] || nm -D "$library" | grep -q __stack_chk_fail ||
        { echo "$library: unchecked stack frames"; exit 1; }
done
