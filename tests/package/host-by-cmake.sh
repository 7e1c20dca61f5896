#!/bin/sh
# Configures a project of this folder in a fresh DIRECTORY, builds it and runs its host.
# Usage: host-by-cmake.sh PROJECT DIRECTORY DEFINITION...
set -eu
project=$1 directory=$2
shift 2
rm -rf "$directory"
"$CMAKE" -G Ninja -S "$project" -B "$directory" "$@"
"$CMAKE" --build "$directory" -j 2
"$directory/host" "$directory"
