#!/bin/sh
# Builds the host by what pkg-config says about PREFIX, and runs it in DIRECTORY. Usage: host-by-pkg-config.sh PREFIX DIRECTORY
set -eu
rm -rf "$2" && mkdir -p "$2"
PKG_CONFIG_PATH=$(dirname "$(find "$1" -name ArxiumCommon.pc)")
export PKG_CONFIG_PATH
libraries=$(pkg-config --variable=libdir ArxiumCommon)
# shellcheck disable=SC2046 # lists of words
"$CXX" -std=c++17 $(pkg-config --cflags ArxiumCommon) host/main.cpp -o "$2/host" $(pkg-config --libs ArxiumCommon)
LD_LIBRARY_PATH=$libraries "$2/host" "$2"
