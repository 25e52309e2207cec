#!/usr/bin/env bash
# Installs what building and testing YXTools needs on a Debian 12 machine. Safe to run again:
# packages that are there already are left alone.
#   scripts/install-deps.sh           the POSIX build (and the Debian package: dpkg-dev gives
#                                     dpkg-shlibdeps, which computes its Depends line)
#   scripts/install-deps.sh windows   also the mingw-w64 cross compiler and Wine
#   scripts/install-deps.sh fuzz      also clang 14 and its libFuzzer (the fuzz preset)
# The two words may be given together.
set -euo pipefail

packages=(g++ cmake make pkg-config googletest libgtest-dev libbenchmark-dev libicu-dev libsqlite3-dev
          libcli11-dev nlohmann-json3-dev jq dpkg-dev
          clang-format clang-tidy doxygen)
if [[ " $* " == *" windows "* ]]; then
  # wine64 holds the loader and the server; the wine, wineserver and wineboot commands are in wine,
  # which wine64 only recommends. Nothing else it recommends (fonts, graphics, sound) matters to
  # console programs.
  packages+=(g++-mingw-w64-x86-64 wine64 wine)
fi
if [[ " $* " == *" fuzz "* ]]; then
  # libFuzzer and the sanitizers' runtime of clang 14 are in libclang-rt-14-dev, which clang-14
  # only recommends.
  packages+=(clang-14 libclang-rt-14-dev)
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
