#!/bin/sh
# No library under PREFIX may import what prints or logs: hosts own their standard streams.
# Usage: prints-nothing.sh PREFIX
set -eu
status=0
for library in "$1"/lib*/lib*.so; do
    imports=$(nm -DC --undefined-only "$library")
    printers=$(echo "$imports" | sed 's/^ *[A-Za-z] //; s/@.*//' |
        grep -xE '(__)?v?f?(printf|wprintf)(_chk)?|v?dprintf|f?puts|f?putc|putw?char|perror|psignal|v?syslog|__v?syslog_chk|std(out|err)|std::w?(cout|cerr|clog)' || true)
    [ -z "$printers" ] || { echo "$library imports:" $printers; status=1; }
done
exit $status
