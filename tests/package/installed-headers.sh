#!/bin/sh
# Every header under PREFIX compiles alone from what is installed, and includes nothing but the C++ library, minizip and
# its own kind: no header of the operating system or of OpenSSL. Usage: installed-headers.sh PREFIX
set -eu
cd "$1/include/ArxiumCommon"
foreign=$(grep -rn '^ *# *include *<' . | grep -vE '<([a-z_]+|minizip/(zip|unzip|ioapi)\.h)>' || true)
[ -z "$foreign" ] || { echo "$foreign"; exit 1; }
find . -name '*.h' | LC_ALL=C sort | sed 's|^\./||' | while read -r header; do
    echo "#include \"$header\"" | "$CXX" -std=c++17 -Wall -Wextra -Werror -fsyntax-only -I. -x c++ - ||
        { echo "$header does not compile alone"; exit 1; }
done
