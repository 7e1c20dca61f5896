#!/bin/sh
# Compares what LIBRARY exports with LIST. What compilers emit for virtual tables, templates of the standard library and
# bases that live in other libraries varies, and is left out. Usage: exported-symbols.sh LIST LIBRARY [--write]
set -eu
nm -DC --defined-only "$2" | cut -d ' ' -f 3- |
    grep -Ev '^(typeinfo name for |vtable for |(typeinfo for )?(std::|NEB(Message|Thread)))' |
    sh same-as-list.sh "$1" "${3-}"
