#!/bin/sh
# Loading may construct the lock of Arxium and nothing else: each LIBRARY runs one function of the compiler's own when it
# is loaded, libArxiumCommon at most one more, as clang 16 needs none for the lock. A thread's first use of libArxiumOs may
# not allocate.
# Usage: load-constructors.sh LIBRARY...
set -eu
status=0
for library in "$@"; do
    size=$(readelf -SW "$library" | sed -n 's/.* \.init_array *INIT_ARRAY *[0-9a-f]* [0-9a-f]* \([0-9a-f]*\) \([0-9a-f]*\) .*/0x\1 \/ 0x\2/p')
    constructors=$((${size:-1} - 1))
    case $library in *libArxiumCommon.so*) wanted=1 ;; *) wanted=0 ;; esac
    [ $constructors -le $wanted ] || { echo "$library: $constructors constructors, not $wanted"; status=1; }
    case $library in *libArxiumOs.so*) nm -D "$library" | grep __tls_get_addr && status=1 ;; esac
done
exit $status
