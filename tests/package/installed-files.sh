#!/bin/sh
# Compares the files under PREFIX with LIST. The name of the build type and the version are cut out, and the generated
# reference, which is there only if it was built, is left out. Usage: installed-files.sh LIST PREFIX [--write]
set -eu
(cd "$2" && find . -type f -o -type l) | grep -v /html/ |
    sed -E 's|^\./||; s|(Targets)-[a-z]+\.cmake|\1-TYPE.cmake|; s|\.so\.([0-9]+)\.[0-9.]+$|.so.\1.VERSION|' |
    sh same-as-list.sh "$1" "${3-}"
