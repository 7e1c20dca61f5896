#!/bin/sh
# Makes the Debian packages of BUILD, unpacks them into a fresh root and builds and runs the host against that.
# Usage: debian-packages.sh BUILD DIRECTORY
set -eu
rm -rf "$2" && mkdir -p "$2"
cpack --config "$1/CPackConfig.cmake" -B "$2/packages" > "$2/cpack.log" || { cat "$2/cpack.log"; exit 1; }
rm -r "$2/packages/_CPack_Packages"  # what the packages are made from
for package in "$2"/packages/*deb; do
    dpkg-deb --field "$package" Package Version Depends
    dpkg -x "$package" "$2/root"
    dpkg-deb --ctrl-tarfile "$package" | tar -xO ./md5sums > "$2/md5sums"
    (cd "$2/root" && md5sum --check --quiet ../md5sums)
done
dpkg-deb --field "$2"/packages/libarxiumcommon1_*.deb Depends | grep -q 'libminizip1.*libssl3'
dpkg-deb --field "$2"/packages/libarxiumcommon-dev_*.deb Depends | grep -q 'libarxiumcommon1 (= .*libminizip-dev'
exec sh host-by-pkg-config.sh "$2/root/usr" "$2/host"
