#!/usr/bin/env bash
# Installs what the build needs when it is missing (Debian).  Extra package
# names may be given as arguments.  Safe to run again: installed packages are
# skipped and apt-get runs only when something is missing.
set -euo pipefail
want=(cmake make g++ binutils pkgconf libgtest-dev googletest gdb libxml2-utils "$@")
missing=()
for p in "${want[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0
echo "installing: ${missing[*]}"
sudo=""
[ "$(id -u)" -ne 0 ] && sudo="sudo"
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -q
$sudo apt-get install -y -q --no-install-recommends "${missing[@]}"
