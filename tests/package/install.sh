#!/bin/sh
# Installs BUILD under FIRST and moves the result to MOVED. Usage: install.sh BUILD FIRST MOVED
set -eu
rm -rf "$2" "$3"
for component in Runtime Development Doc Host; do
    "$CMAKE" --install "$1" --prefix "$2" --component $component
done
mv "$2" "$3"
