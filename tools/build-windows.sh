#!/usr/bin/env bash
# Cross-builds the library for 32-bit Windows with mingw-w64 (i686): gives
# VornBaseShared.dll and vorn_container.dll, checks that the export table of
# vorn_container.dll holds only listed names (and says how many listed names
# are still missing), and installs into build/windows/install with the
# mingw runtime DLLs they need beside them in bin/.
#
#   tools/build-windows.sh          build, check the exports, install
#   tools/build-windows.sh --wine   also run every test under wine (installs
#                                   wine and its 32-bit half, wine32:i386)
set -euo pipefail
cd "$(dirname "$0")/.."
tools/deps.sh gcc-mingw-w64-i686-posix g++-mingw-w64-i686-posix binutils-mingw-w64-i686
dir=build/windows
triple=i686-w64-mingw32
cxx=$triple-g++-posix
objdump=$triple-objdump

configure() {
  cmake -S . -B "$dir" -DCMAKE_TOOLCHAIN_FILE="$PWD/cmake/toolchain-mingw32.cmake" \
    -DVORN_GTEST_FROM_SOURCE=ON -DVORN_WERROR=ON -DCMAKE_BUILD_TYPE=RelWithDebInfo "$@" >/dev/null
}
configure
cmake --build "$dir" -j"$(nproc)"

echo "== export table of vorn_container.dll"
ctest --test-dir "$dir" -R '^exports$' --output-on-failure -V | grep -E 'exports:|Passed|Failed'

echo "== install into $dir/install"
rm -rf "$dir/install"
cmake --install "$dir" --prefix "$dir/install" >/dev/null
# The runtime DLLs of the toolchain that the libraries import (libgcc's
# unwinder, and libstdc++ / winpthreads where used) go beside them.
runtime_dirs=()
for dll in libgcc_s_dw2-1.dll libstdc++-6.dll libwinpthread-1.dll; do
  path=$($cxx -print-file-name=$dll)
  [ -f "$path" ] && runtime_dirs+=("$(dirname "$path")")
done
copy_runtime() {  # copy_runtime <module>: its imports that the toolchain has
  local name path
  for name in $($objdump -p "$1" | sed -n 's/^\tDLL Name: //p'); do
    path=$($cxx -print-file-name="$name")
    if [ -f "$path" ] && [ ! -f "$dir/install/bin/$name" ]; then
      cp "$path" "$dir/install/bin/"
      copy_runtime "$path"
    fi
  done
}
for dll in "$dir"/install/bin/*.dll; do copy_runtime "$dll"; done
ls "$dir/install/bin"

if [ "${1:-}" != --wine ]; then
  echo "== built; tests not run (tools/build-windows.sh --wine runs them under wine)"
  exit 0
fi

echo "== tests under wine"
if ! dpkg-query -W -f='${Status}' wine32:i386 2>/dev/null | grep -q 'install ok installed'; then
  # wine's 32-bit half comes from the i386 architecture.
  dpkg --print-foreign-architectures | grep -qx i386 || {
    added_i386=1
    dpkg --add-architecture i386
  }
  if ! { apt-get update -q && DEBIAN_FRONTEND=noninteractive \
         apt-get install -y -q --no-install-recommends wine wine32:i386; }; then
    echo "wine32:i386 could not be installed: tests not run" >&2
    [ -n "${added_i386:-}" ] && dpkg --remove-architecture i386 && apt-get update -q >/dev/null || true
    exit 1
  fi
fi
export WINEPREFIX="$PWD/$dir/wineprefix" WINEDEBUG=-all WINEARCH=win32
winepath="$PWD/$dir"
for d in "${runtime_dirs[@]}"; do winepath+=";$d"; done
export WINEPATH="$winepath"
if ! wine "$dir/examples/example_gl_walk.exe" >/dev/null; then
  echo "wine runs no 32-bit Windows program on this machine: tests not run" >&2
  exit 1
fi
configure -DCMAKE_CROSSCOMPILING_EMULATOR="$(command -v wine)"
cmake --build "$dir" -j"$(nproc)"
ctest --test-dir "$dir" --output-on-failure -j"$(nproc)"
echo "== Windows build: all tests passed under wine"
