#!/bin/sh
# The Wine prefix of one test run of the Windows build.
#   wine-prefix.sh start DIR   creates a fresh prefix in DIR and leaves a wineserver running for it
#   wine-prefix.sh stop DIR    stops that wineserver and its processes, and removes DIR
# Creating a prefix takes seconds; every test program of the run then starts in a fraction of one.
# WINESERVER and WINEBOOT name the programs; WINEDEBUG and WINEDLLOVERRIDES, when set, are those
# of the programs that will run in the prefix. Wine's own output goes to DIR.log.
set -eu
action=$1
dir=$2
: "${WINESERVER:=wineserver}"
: "${WINEBOOT:=wineboot}"
export WINEPREFIX="$dir"

stop() {
    if [ -d "$dir" ]; then
        "$WINESERVER" -k >/dev/null 2>&1 || true
        "$WINESERVER" -w >/dev/null 2>&1 || true
    fi
    rm -rf "$dir"
}

case $action in
start)
    # A run that was interrupted may have left its prefix and server behind.
    stop
    mkdir -p "$dir"
    # The server comes first and stays (-p) until stop, so that the programs started by wineboot
    # and by the tests all attach to it; its output must not hold the caller's pipes open.
    "$WINESERVER" -p >"$dir.log" 2>&1
    if ! "$WINEBOOT" -i >>"$dir.log" 2>&1; then
        cat "$dir.log" >&2
        exit 1
    fi
    echo "Wine prefix ready in $dir"
    ;;
stop)
    stop
    rm -f "$dir.log"
    ;;
*)
    echo "usage: $0 start|stop DIR" >&2
    exit 2
    ;;
esac
