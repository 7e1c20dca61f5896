#!/bin/sh
# Every header under PREFIX compiles alone from what is installed, and includes nothing but the C++ library, minizip and
# its own kind: no header of the operating system or of OpenSSL. All together they compile as C++20 and 23 too.
# Usage: installed-headers.sh PREFIX
set -eu
cd "$1/include/ArxiumCommon"
foreign=$(grep -rn '^ *# *include *<' . | grep -vE '<([a-z_]+|minizip/(zip|unzip|ioapi)\.h)>' || true)
[ -z "$foreign" ] || { echo "$foreign"; exit 1; }
check="-Wall -Wextra -Wconversion -Wshadow -Werror -fsyntax-only -I. -x c++ -"
headers=$(find . -name '*.h' | LC_ALL=C sort | sed 's|^\./||')
for header in $headers; do
    echo "#include \"$header\"" | "$CXX" -std=c++17 $check || { echo "$header does not compile alone"; exit 1; }
done
for standard in c++20 c++2b; do
    printf '#include "%s"\n' $headers | "$CXX" -std=$standard $check ||
        { echo "the headers do not compile as $standard"; exit 1; }
done
