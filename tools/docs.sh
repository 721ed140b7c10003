#!/usr/bin/env bash
# Builds the API reference from the comments of the public headers with
# Doxygen into build/docs/html (open build/docs/html/index.html): one page
# per family, the examples and the README with its picture.  Any Doxygen
# warning fails the run, and so does an exported function or data word
# without its own text on a family page.
set -euo pipefail
cd "$(dirname "$0")/.."
tools/deps.sh doxygen perl python3
version=$(sed -n 's/^project(vorn_container VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
out=build/docs
rm -rf "$out"
mkdir -p "$out"
VORN_VERSION="$version" VORN_DOCS_OUT="$out" doxygen tools/doxygen/Doxyfile
# The README's picture, where its link points.
mkdir -p "$out/html/bench"
cp bench/results.svg "$out/html/bench/"
python3 tools/doxygen/check_reference.py "$out/xml" cmake/exports-functions.txt cmake/exports-data.txt
echo "API reference: $out/html/index.html"
