#!/bin/bash
# Runs a program under Wine in a sandbox of its own: the component and the sandbox's classes registered, the suite's
# settings, and a fresh sample catalogue.
# usage: run_in_sandbox.sh BUILD-FOLDER/win64|win32 program.exe [arguments…]
set -euo pipefail
program=$(realpath "$2")
windows=$(realpath "$1")
export QUENTA_BUILD=${windows%/*}
shift 2
# shellcheck source=scripts/sandbox.sh
source "$(dirname "${BASH_SOURCE[0]}")/../../scripts/sandbox.sh"
use_windows "${windows##*/}"
SANDBOX=$BUILD/test-sandbox/$WINDOWS
PREFIX=$SANDBOX/prefix
DATABASE=$SANDBOX/catalogo.db
export QUENTA_SANDBOX_REPORTS
QUENTA_SANDBOX_REPORTS=$(windows_path "$SANDBOX/reports.log")
# The day on which the journeys take place. The servers' clock stands still only when the catalogue is made.
CATALOGUE_OPTIONS=(--today 2026-11-21 --modules all)
mkdir -p "$SANDBOX"
rm -f "$SANDBOX/reports.log"
make_catalogue
cp "$DATABASE" "$DATABASE.fresh"
export QUENTA_NOW='2026-11-21 12:34:56' QUENTA_SANDBOX_DATABASE
QUENTA_SANDBOX_DATABASE=$(windows_path "$DATABASE")
# The tool has written down the extension of its own width.
sed -i "s|^\(LoadExt *= *\).*|\1$SQLITE_EXTENSION|" "$SANDBOX/odbc.ini"
# A second server that answers: the same database under another name.
sed "s/^\[$DATA_SOURCE\]/[QuentaReserva]/" "$SANDBOX/odbc.ini" >"$SANDBOX/reserva.ini"
cat "$SANDBOX/reserva.ini" >>"$SANDBOX/odbc.ini"
use_sandbox
has_display || start_display
prefix_is_prepared "$PREFIX" || prepare_prefix "$PREFIX"
# Without a window manager, Wine waits two seconds for one whenever a window goes.
"$WINE" reg add 'HKCU\Software\Wine\X11 Driver' /v Managed /d N /f
# What opens documents here keeps a copy of them.
mkdir -p "$PREFIX/drive_c/opened"
"$WINE" reg add 'HKCR\.doc' /ve /d QuentaDocumento /f
"$WINE" reg add 'HKCR\QuentaDocumento\shell\open\command' /ve /d 'cmd.exe /c copy /y "%1" C:\opened' /f
export WINEDEBUG=-all
"$WINE" "$(windows_path "$program")" "$@"
