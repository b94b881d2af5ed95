#!/bin/sh
# Runs a program under Wine with the sandbox's COM classes registered and a fresh folder for its database.
# usage: run_under_wine.sh QuentaSandbox.dll sandbox_sqlite.so program.exe [arguments…]
# The prefix is WINEPREFIX, or one of its own beside the DLL; it is made when there is none.
set -eu

dll=$(realpath "$1")
QUENTA_SQLITE_EXTENSION=$(realpath "$2")
program=$3
case $program in */*) program=$(realpath "$program") ;; esac  # a bare name is one of Wine's own programs
shift 3

: "${WINEPREFIX:=$(dirname "$dll")/wine-prefix}"
: "${WINEDEBUG:=-all}"
export WINEPREFIX WINEDEBUG QUENTA_SQLITE_EXTENSION

QUENTA_CONTRACT_FOLDER=$(mktemp -d)
trap 'rm -rf "$QUENTA_CONTRACT_FOLDER"' EXIT
# The driver manager is the host's and reads the host's environment, so that these must be there before Wine starts.
ODBCINI=$QUENTA_CONTRACT_FOLDER/odbc.ini
QUENTA_FAULTS=$QUENTA_CONTRACT_FOLDER/faults.txt
export QUENTA_CONTRACT_FOLDER ODBCINI QUENTA_FAULTS

[ -f "$WINEPREFIX/system.reg" ] || WINEDLLOVERRIDES='mscoree,mshtml=' wineboot -i >/dev/null 2>&1
wine regsvr32 /s "$(winepath -w "$dll")" 2>/dev/null || { echo "regsvr32 failed for $dll" >&2; exit 1; }

cd /  # paths of the host then mean the same under Wine
wine "$program" "$@"
