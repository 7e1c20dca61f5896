#!/bin/sh
# Builds a copy of arxhost's sources, away from this tree, against the package under PREFIX and runs some commands.
# Usage: host-tool.sh SOURCES PREFIX DIRECTORY
set -eu
rm -rf "$3" && mkdir -p "$3"
cp -R "$1" "$3/source"
"$CMAKE" -G Ninja -S "$3/source" -B "$3/build" "-DCMAKE_PREFIX_PATH=$2"
"$CMAKE" --build "$3/build" -j 2
"$CMAKE" --install "$3/build" --prefix "$3/installed"

export XDG_STATE_HOME="$3"
arxhost="$3/build/arxhost"
"$arxhost" zip "$3/a.zip" "$3/source"
"$arxhost" unzip "$3/a.zip" "$3/out"
diff -r "$3/source" "$3/out"
"$arxhost" seal "$3/a.zip" "$3/sealed"
"$arxhost" unseal "$3/sealed" - | cmp - "$3/a.zip"
test -s "$3/installed/share/man/man1/arxhost.1"
