#!/bin/sh
# Every header under PREFIX compiles alone from what is installed, and so does the example that its comment must have. It
# includes nothing but the C++ library, minizip and its own kind: no header of the operating system or of OpenSSL. All
# together they compile as C++20 and 23 too. Usage: installed-headers.sh PREFIX
set -eu
cd "$1/include/ArxiumCommon"
foreign=$(grep -rn '^ *# *include *<' . | grep -vE '<([a-z_]+|minizip/(zip|unzip|ioapi)\.h)>' || true)
[ -z "$foreign" ] || { echo "$foreign"; exit 1; }

# These declare only what other headers use.
helpers='(ArxiumExport|NEBCoreExport|NEBFileLocation|NEBMessage(Base|Components)|NEBSharedList|NEBTextError|NEBThread(Annotations|LockableResource))'
silent=$(find . -name '*.h' -exec grep -L '^// Example:$' {} + | grep -vE "/$helpers\.h$" || true)
[ -z "$silent" ] || { echo "no example in: $silent"; exit 1; }

print_example() {
    awk '/^\/\/ Example:$/ { inside = 1; next } !/^\/\/(    |$)/ { inside = 0 } inside { sub("^// *", ""); print }' "$1"
}
sources=$(mktemp -d)
trap 'rm -rf "$sources"' EXIT
headers=$(find . -name '*.h' | LC_ALL=C sort | sed 's|^\./||')
for header in $headers; do
    {
        echo "#include \"$header\""
        print_example "$header" | sed -n '/^#include/p'
        echo "void example() {"
        print_example "$header" | sed '/^#include/d'
        echo "}"
    } > "$sources/$(basename "$header").cpp"
done
check="-Wall -Wextra -Wconversion -Wshadow -Werror -fsyntax-only -I."
find "$sources" -name '*.cpp' -print0 |
    xargs -0 -n 4 -P "$(nproc)" "$CXX" -std=c++17 $check -Wno-unused -Wno-nonnull
for standard in c++20 c++2b; do
    printf '#include "%s"\n' $headers | "$CXX" -std=$standard $check -x c++ - ||
        { echo "the headers do not compile as $standard"; exit 1; }
done
