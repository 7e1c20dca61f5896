#!/bin/sh
# Builds the sample gateway in a fresh DIRECTORY and tests it by curl. Usage: gateway.sh SOURCE DIRECTORY DEFINITION...
set -eu
source=$1 directory=$2
shift 2
rm -rf "$directory"
"$CMAKE" -G Ninja -S "$source" -B "$directory" "$@"
"$CMAKE" --build "$directory" -j 2
ARXGATE="$directory/arxgate" exec python3 -B "$source/tests/gateway_test.py"
