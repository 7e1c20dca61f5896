#!/bin/sh
# No program or library under a DIRECTORY may look for libraries in the current directory, in a relative one, or in one
# that everybody may write. Folders named package are left out. Usage: run-paths.sh DIRECTORY...
set -eu
print_elements() {
    readelf -d "$1" 2> /dev/null | sed -n 's/.*R\(UN\)\?PATH.*\[\(.*\)\]/\2/p' | tr : '\n'
}
faults=$(
    find "$@" -name package -prune -o -type f \( -perm -u+x -o -name '*.so.*' \) -print | while read -r file; do
        print_elements "$file" | while read -r element; do
            case $element in
                \$ORIGIN*) directory=$(dirname "$file")${element#\$ORIGIN} ;;
                /*) directory=$element ;;
                *) echo "$file: relative: [$element]"; continue ;;
            esac
            find "$directory" -maxdepth 0 -perm -o+w -printf "$file: everybody may write %p\n" 2> /dev/null || true
        done
    done
)
[ -z "$faults" ] || { echo "$faults"; exit 1; }
