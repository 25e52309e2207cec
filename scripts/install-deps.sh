#!/usr/bin/env bash
# Installs what building and testing YXTools needs on a Debian 12 machine. Safe to run again:
# packages that are there already are left alone.
#   scripts/install-deps.sh           the POSIX build
#   scripts/install-deps.sh windows   also the mingw-w64 cross compiler and Wine
set -euo pipefail

packages=(g++ cmake make pkg-config googletest libgtest-dev libbenchmark-dev libicu-dev libsqlite3-dev
          libcli11-dev nlohmann-json3-dev jq
          clang-format clang-tidy)
if [[ "${1:-}" == "windows" ]]; then
  # wine64 holds the loader and the server; the wine, wineserver and wineboot commands are in wine,
  # which wine64 only recommends. Nothing else it recommends (fonts, graphics, sound) matters to
  # console programs.
  packages+=(g++-mingw-w64-x86-64 wine64 wine)
fi

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
if ((${#missing[@]})); then
  sudo=""
  [[ $(id -u) -ne 0 ]] && sudo="sudo"
  $sudo apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi
