#!/usr/bin/env bash
# Builds the API reference from the comments of the public headers with
# Doxygen into build/docs/html (open build/docs/html/index.html).  Any
# Doxygen warning fails the run.
set -euo pipefail
cd "$(dirname "$0")/.."
tools/deps.sh doxygen perl
version=$(sed -n 's/^project(vorn_container VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
out=build/docs
rm -rf "$out"
mkdir -p "$out"
VORN_VERSION="$version" VORN_DOCS_OUT="$out" doxygen tools/doxygen/Doxyfile
echo "API reference: $out/html/index.html"
