#!/bin/sh
# Every header under PREFIX compiles alone from what is installed, and so does the example in its comment. It includes
# nothing but the C++ library, minizip and its own kind: no header of the operating system or of OpenSSL.
# Usage: installed-headers.sh PREFIX
set -eu
cd "$1/include/ArxiumCommon"
foreign=$(grep -rn '^ *# *include *<' . | grep -vE '<([a-z_]+|minizip/(zip|unzip|ioapi)\.h)>' || true)
[ -z "$foreign" ] || { echo "$foreign"; exit 1; }

print_example() {
    awk '/^\/\/ Example:$/ { inside = 1; next } !/^\/\/(    |$)/ { inside = 0 } inside { sub("^// *", ""); print }' "$1"
}
sources=$(mktemp -d)
trap 'rm -rf "$sources"' EXIT
find . -name '*.h' | while read -r header; do
    {
        echo "#include \"${header#./}\""
        print_example "$header" | sed -n '/^#include/p'
        echo "void example() {"
        print_example "$header" | sed '/^#include/d'
        echo "}"
    } > "$sources/$(basename "$header").cpp"
done
find "$sources" -name '*.cpp' -print0 |
    xargs -0 -n 4 -P "$(nproc)" "$CXX" -std=c++17 -Wall -Wextra -Werror -Wno-unused -Wno-nonnull -fsyntax-only -I.
