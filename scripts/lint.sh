#!/usr/bin/env bash
# Checks formatting with clang-format; with --tidy also runs clang-tidy over the library and the
# command-line host (needs a configured build/posix for its compile database).
set -euo pipefail
cd "$(dirname "$0")/.."
mapfile -t files < <(git ls-files '*.cpp' '*.h' | grep -v '^tests/install/host/')
clang-format --dry-run --Werror "${files[@]}"
echo "clang-format: ${#files[@]} files clean"
if [[ "${1:-}" == "--tidy" ]]; then
  mapfile -t sources < <(git ls-files 'src/*.cpp' 'tools/*.cpp')
  # One run per core, four files to a run; xargs fails when any run fails.
  printf '%s\0' "${sources[@]}" | xargs -0 -n 4 -P "$(nproc)" clang-tidy -p build/posix --quiet
  echo "clang-tidy: ${#sources[@]} files clean"
fi
