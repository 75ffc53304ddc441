#!/usr/bin/env bash
#
# Builds what users install: the libraries and the program, optimised, without tests. Leaves in
# FOLDER the build tree (tree/), an installed prefix (prefix/) and the Debian packages (debs/).
#
#   build_package.sh SOURCE FOLDER COMPILER
set -euo pipefail
source=$1 folder=$2 compiler=$3

rm -rf "$folder/prefix" "$folder/debs"
mkdir -p "$folder/debs"
cmake -S "$source" -B "$folder/tree" -G Ninja \
    -DCMAKE_CXX_COMPILER="$compiler" \
    -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DCMAKE_INSTALL_PREFIX=/usr \
    -DVORNIC_BUILD_TESTS=OFF \
    -DVORNIC_BUILD_EXAMPLES=OFF
cmake --build "$folder/tree"
cmake --install "$folder/tree" --prefix "$folder/prefix"
cpack --config "$folder/tree/CPackConfig.cmake" -G DEB -B "$folder/debs"
