#!/bin/bash
# Runs a program under Wine in a sandbox of its own: the component and the sandbox's classes registered, the suite's
# settings, and a fresh sample catalogue.
# usage: run_in_sandbox.sh BUILD-FOLDER program.exe [arguments…]
set -euo pipefail
program=$(realpath "$2")
QUENTA_BUILD=$(realpath "$1")
export QUENTA_BUILD
shift 2
# shellcheck source=scripts/sandbox.sh
source "$(dirname "${BASH_SOURCE[0]}")/../../../scripts/sandbox.sh"
SANDBOX=$BUILD/test-sandbox
PREFIX=$SANDBOX/prefix
DATABASE=$SANDBOX/catalogo.db
export QUENTA_SANDBOX_REPORTS
QUENTA_SANDBOX_REPORTS=$(windows_path "$SANDBOX/reports.log")
# One product has a history as long as they come.
CATALOGUE_OPTIONS=(--history 100000)
mkdir -p "$SANDBOX"
rm -f "$SANDBOX/reports.log"
make_catalogue
# A second server that answers: the same database under another name.
sed "s/^\[$DATA_SOURCE\]/[QuentaReserva]/" "$SANDBOX/odbc.ini" >"$SANDBOX/reserva.ini"
cat "$SANDBOX/reserva.ini" >>"$SANDBOX/odbc.ini"
use_sandbox
has_display || start_display
prefix_is_prepared "$PREFIX" || prepare_prefix "$PREFIX"
# Without a window manager, Wine waits two seconds for one whenever a window goes.
wine64 reg add 'HKCU\Software\Wine\X11 Driver' /v Managed /d N /f
# What opens documents here keeps a copy of them.
mkdir -p "$PREFIX/drive_c/opened"
wine64 reg add 'HKCR\.doc' /ve /d QuentaDocumento /f
wine64 reg add 'HKCR\QuentaDocumento\shell\open\command' /ve /d 'cmd.exe /c copy /y "%1" C:\opened' /f
export WINEDEBUG=-all
wine64 "$(windows_path "$program")" "$@"
