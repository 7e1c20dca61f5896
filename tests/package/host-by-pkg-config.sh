#!/bin/sh
# Builds the host by what pkg-config says about PREFIX, and runs it in DIRECTORY. pkg-config escapes blanks in paths, hence
# eval. Usage: host-by-pkg-config.sh PREFIX DIRECTORY
set -eu
rm -rf "$2" && mkdir -p "$2"
PKG_CONFIG_PATH=$(dirname "$(find "$1" -name ArxiumCommon.pc)")
export PKG_CONFIG_PATH
eval "\"\$CXX\" -std=c++17 host/main.cpp -o \"\$2/host\" $(pkg-config --cflags --libs ArxiumCommon)"
eval "LD_LIBRARY_PATH=$(pkg-config --variable=libdir ArxiumCommon)"
export LD_LIBRARY_PATH
"$2/host" "$2"
