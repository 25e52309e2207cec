#!/usr/bin/env bash
# Proves the Debian package that `cmake --workflow --preset package` leaves in build/package:
#   - its Depends line names the C and C++ runtimes, ICU and SQLite, and nothing else;
#   - it holds the library with its SONAME, the headers, the CMake package, yxtools.pc and the command;
#   - unpacked into a scratch root with dpkg -x, `yxtools demo` runs from it, and the example host of
#     tests/install/host builds and runs against it through find_package(YXTools) and pkg-config.
#   scripts/check-package.sh          as above, as any user
#   scripts/check-package.sh --apt    also installs it with apt-get (as root, or through sudo), runs
#                                     the installed command and the host, and purges it again
set -euo pipefail
cd "$(dirname "$0")/.."

debs=(build/package/yxtools_*.deb)
if [[ ${#debs[@]} -ne 1 || ! -f ${debs[0]} ]]; then
  echo "check-package: expected one build/package/yxtools_*.deb (cmake --workflow --preset package)" >&2
  exit 1
fi
deb=${debs[0]}
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

fail() {
  echo "check-package: $*" >&2
  exit 1
}

# The runtimes are on every Debian system; ICU and SQLite are what the library adds.
depends=$(dpkg-deb -f "$deb" Depends)
echo "Depends: ${depends}"
while read -r name; do
  [[ $name =~ ^(libc6|libgcc-s1|libstdc\+\+6|libicu[0-9]+|libsqlite3-0)$ ]] || fail "unexpected dependency ${name}"
done < <(tr ',' '\n' <<<"$depends" | sed 's/(.*)//; s/|.*//; s/^ *//; s/ *$//')
for needed in libicu libsqlite3-0; do
  grep -q "$needed" <<<"$depends" || fail "no dependency on ${needed}"
done

dpkg -x "$deb" "$scratch/root"
usr=$scratch/root/usr
library=$(ls "$usr"/lib/*/libyxtools.so.*.*.*)
soname=$(readelf -d "$library" | sed -n 's/.*(SONAME).*\[\(.*\)\]/\1/p')
[[ $soname == libyxtools.so.$(dpkg-deb -f "$deb" Version | cut -d. -f1) ]] || fail "SONAME ${soname}"
for file in "lib/*/${soname}" lib/*/libyxtools.so include/yxtools/yxtools.h include/yxtools/version.h \
  lib/*/cmake/YXTools/YXToolsConfig.cmake lib/*/pkgconfig/yxtools.pc bin/yxtools; do
  compgen -G "$usr/$file" >/dev/null || fail "the package lacks usr/${file}"
done

cmake -DPREFIX="$usr" -DWORK_DIR="$scratch/work" -DHOST_SOURCE="$PWD/tests/install/host" -DCXX=c++ \
  -DWITH_COMMAND=1 -P tests/install/install_and_build_host.cmake
echo "check-package: $(basename "$deb") unpacks, runs yxtools demo, and serves the example host"

if [[ ${1:-} == --apt ]]; then
  sudo=""
  [[ $(id -u) -ne 0 ]] && sudo="sudo"
  DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq "./$deb"
  YXTOOLS_PREFIX="$scratch/apt-prefix" LC_ALL=C yxtools demo >/dev/null
  c++ -std=c++17 tests/install/host/host.cpp $(pkg-config --cflags --libs yxtools) -o "$scratch/host-apt"
  "$scratch/host-apt"
  DEBIAN_FRONTEND=noninteractive $sudo apt-get purge -y -qq yxtools
  echo "check-package: apt-get installed, ran and purged $(basename "$deb")"
fi
