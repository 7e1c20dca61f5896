#!/bin/sh
# Installs the Debian packages of BUILD by apt on a minimal system and builds and runs the host there. Needs root,
# debootstrap and the network. Usage: debian-clean-root.sh BUILD ROOT
set -eu
rm -rf "$2" && mkdir -p "$2"
cpack --config "$1/CPackConfig.cmake" -B "$2.packages"
mirror=$(sed -n 's/^URIs: *\(http[^ ]*\).*/\1/p; s/^deb \(\[.*\] \)\?\(http[^ ]*\).*/\2/p' \
    /etc/apt/sources.list /etc/apt/sources.list.d/* 2>/dev/null | head -n 1)
debootstrap --variant=minbase --include=g++,pkg-config,ca-certificates bookworm "$2" "${mirror:-http://deb.debian.org/debian}"
cp "$2.packages"/*.deb host/main.cpp "$2/root/"
# shellcheck disable=SC2016 # expanded inside
chroot "$2" sh -euc 'apt-get install -q -y --no-install-recommends /root/*.deb
    g++ -std=c++17 $(pkg-config --cflags ArxiumCommon) /root/main.cpp -o /root/host $(pkg-config --libs ArxiumCommon)
    mkdir /root/work && /root/host /root/work'
