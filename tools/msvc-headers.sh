#!/usr/bin/env bash
# Compiles every public header as a 32-bit MSVC host would include it, in C
# and in C++, with all warnings as errors: clang for i686-pc-windows-msvc
# with Microsoft extensions stands in for cl /W4 /WX (no Windows SDK is
# needed: the headers include only <stddef.h> and <stdint.h>).
set -euo pipefail
cd "$(dirname "$0")/.."
tools/deps.sh clang
flags=(-target i686-pc-windows-msvc -fms-extensions -fms-compatibility -Wall -Wextra -Wpedantic -Werror
       -fsyntax-only -Iinclude)
status=0
for header in include/*.h; do
  for lang in c c++; do
    std=-std=c11
    [ "$lang" = c++ ] && std=-std=c++17
    # Included from a host file, as hosts do (unused inline helpers of a
    # header are then no warning, as in cl; the host's own declaration keeps a
    # header of macros alone from being an empty translation unit).
    if ! printf '#include "%s"\ntypedef int host_declaration;\n' "$(basename "$header")" | clang "${flags[@]}" "$std" -x "$lang" -; then
      echo "msvc-headers: $header fails as $lang" >&2
      status=1
    fi
  done
done
# The same with the export macros of a host that links the static libraries.
echo '#include "vorn_container.h"' | clang "${flags[@]}" -std=c++17 -x c++ -DVORN_STATIC - || status=1
[ $status -eq 0 ] && echo "msvc-headers: $(ls include/*.h | wc -l) headers clean as C and C++"
exit $status
