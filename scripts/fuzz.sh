#!/usr/bin/env bash
# Runs the fuzz targets of the fuzz preset's build (build/fuzz, made by `cmake --workflow --preset
# fuzz`), one after the other, each over its committed corpus, and fails when one of them finds a
# fault. The inputs it finds go to a scratch folder, never into the committed corpus; a finding is
# kept as build/fuzz/findings/<target>-crash-<hash> (or -leak-, -timeout-, -oom-).
#
#   scripts/fuzz.sh                       every target, the stage's budget shared among them
#   scripts/fuzz.sh --seconds 600 NAME... the named targets, ten minutes each
#   scripts/fuzz.sh --runs 10000000 NAME  ten million inputs
#   scripts/fuzz.sh NAME -- -dict=FILE    anything after -- goes to libFuzzer as it stands
#
# Without --seconds or --runs the targets share a budget of YXTOOLS_FUZZ_BUDGET seconds (default
# 180): each runs budget/targets seconds, but at least 10 and at most 20.
set -euo pipefail
cd "$(dirname "$0")/.."

build=build/fuzz
seconds=""
runs=""
names=()
extra=()
while (($#)); do
  case $1 in
    --seconds) seconds=$2; shift 2 ;;
    --runs) runs=$2; shift 2 ;;
    --build) build=$2; shift 2 ;;
    --) shift; extra=("$@"); break ;;
    -*) echo "unknown option $1" >&2; exit 2 ;;
    *) names+=("$1"); shift ;;
  esac
done

list=$build/fuzzers.tsv
if [[ ! -f $list ]]; then
  echo "no $list: build the targets first (cmake --workflow --preset fuzz)" >&2
  exit 2
fi
mapfile -t targets < <(grep -v '^$' "$list")
if ((${#names[@]})); then
  chosen=()
  for name in "${names[@]}"; do
    line=$(printf '%s\n' "${targets[@]}" | awk -F'\t' -v n="$name" '$1 == n')
    [[ -n $line ]] || { echo "no fuzz target $name" >&2; exit 2; }
    chosen+=("$line")
  done
  targets=("${chosen[@]}")
fi

limit=()
if [[ -n $runs ]]; then
  limit=(-runs="$runs")
else
  if [[ -z $seconds ]]; then
    seconds=$((${YXTOOLS_FUZZ_BUDGET:-180} / ${#targets[@]}))
    ((seconds < 10)) && seconds=10
    ((seconds > 20)) && seconds=20
  fi
  limit=(-max_total_time="$seconds")
fi

findings=$build/findings
mkdir -p "$findings"
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

passed=0
failed=0
for line in "${targets[@]}"; do
  IFS=$'\t' read -r name program corpus env <<<"$line"
  mkdir -p "$scratch/$name"
  log=$scratch/$name.log
  start=$SECONDS
  # The scratch folder comes first: libFuzzer writes what it finds into its first folder.
  # shellcheck disable=SC2086 # the environment column is a list of words
  if env $env ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
    "$program" "${limit[@]}" -timeout=20 -rss_limit_mb=2560 -print_final_stats=1 \
    -artifact_prefix="$findings/$name-" "${extra[@]}" "$scratch/$name" "$corpus" >"$log" 2>&1; then
    passed=$((passed + 1))
    result=ok
  else
    failed=$((failed + 1))
    result=FAILED
    tail -n 60 "$log"
  fi
  executed=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")
  echo "fuzz ${name}: ${result}, ${executed:-?} inputs in $((SECONDS - start)) s"
done
echo "fuzz: ${passed} passed, ${failed} failed"
((failed == 0))
