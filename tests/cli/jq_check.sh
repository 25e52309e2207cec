#!/bin/sh
# jq_check.sh JQ COMMAND...
# Reads the command's --json output with jq, under code page 932 (LC_ALL=ja_JP.UTF-8): a name given as
# exact bytes comes back as UTF-8 text, and bytes that are no text come back exactly in name_hex. (The
# names are given with --hex: Wine reads a UTF-8 command line only where the locale is generated.)
# COMMAND is the yxtools program, behind Wine on the Windows build.
set -eu
jq=$1
shift

check() {
  expected=$1
  shift
  got=$("$@" | "$jq" -r '[.directory, .name, (.name_hex // "-")] | join("|")')
  if [ "$got" != "$expected" ]; then
    echo "jq read '$got', expected '$expected'" >&2
    exit 1
  fi
}

# C:\ソ\表.txt in code page 932: ソ is 83 5C, whose trail byte is the backslash.
check '\ソ\|表|-' "$@" --json --hex path split '43 3A 5C 83 5C 5C 95 5C 2E 74 78 74'
# A lead byte with no trail byte is no character.
check '\|\x83|83' "$@" --json --hex path split '43 3A 5C 83'
echo "jq: ok"
