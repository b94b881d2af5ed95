#!/bin/bash
# Runs a command under Wine, in the tests' prefix and, where there is none, on a display of its own.
# usage: under_wine.sh COMMAND…
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/sandbox.sh"
has_display || start_display
use_wine "$BUILD/test-prefix-win64" win64
if [[ ! -f $WINEPREFIX/booted ]]; then
  boot_prefix "$WINEPREFIX"
  # Without a window manager, Wine would wait two seconds for one whenever a window goes.
  "$WINE" reg add 'HKCU\Software\Wine\X11 Driver' /v Managed /d N /f
fi
"$@"
