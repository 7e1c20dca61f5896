#!/bin/sh
# Loading the library may construct the lock of Arxium and nothing else. Usage: load-constructors.sh LIBRARY
set -eu
found=$(nm "$1" | sed -n 's/.* _GLOBAL__sub_I_//p')
echo "Constructors at load: $found"
[ "$(echo "$found" | grep -c .)" -eq 1 ]
echo "$found" | grep -q 'Arxium'
