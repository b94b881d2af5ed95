# Shared by ./run, ./test and the scripts: where things lie, steps that take one line each, bounded commands, a display
# and a Wine prefix of our own. To be sourced by bash.
# shellcheck shell=bash
set -euo pipefail

ROOT=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$ROOT"

# QUENTA_BUILD names another build folder, for two checkouts' worth of builds in one.
BUILD=${QUENTA_BUILD:-build}
[[ $BUILD = /* ]] || BUILD=$ROOT/$BUILD
LOGS=$BUILD/logs
mkdir -p "$LOGS"

JOBS=${QUENTA_JOBS:-$(nproc)}
CLEANUPS=()

# Runs a command when the script ends, however it ends; the last one first.
at_exit() { CLEANUPS=("$1" "${CLEANUPS[@]+"${CLEANUPS[@]}"}"); }
run_cleanups() {
  local status=$?
  trap - EXIT
  end_running >/dev/null 2>&1
  local cleanup
  for cleanup in "${CLEANUPS[@]+"${CLEANUPS[@]}"}"; do eval "$cleanup" >/dev/null 2>&1 || true; done
  exit "$status"
}
trap run_cleanups EXIT
trap 'exit 130' INT
trap 'exit 143' TERM

say() { printf '%s\n' "$*"; }
fail() {
  printf '%s\n' "$*" >&2
  exit 1
}

# log_of NAME: the file that holds the details of a step.
log_of() { printf '%s/%s.log' "$LOGS" "$1"; }

# step "What it does" NAME SECONDS COMMAND…: one line; the command's output goes to build/logs/NAME.log. When it fails or
# takes longer, the end of the log is shown and the step fails. (Bash does not stop a function at its first failing
# command here: functions that serve as steps chain theirs.)
step() {
  local title=$1 name=$2 seconds=$3 started=$SECONDS status=0 log
  shift 3
  log=$(log_of "$name")
  printf '%s ... ' "$title"
  bounded "$seconds" "$@" >"$log" 2>&1 </dev/null || status=$?
  if [[ $status -eq 0 ]]; then
    printf 'done (%d s)\n' $((SECONDS - started))
    return 0
  fi
  if [[ $status -eq 124 ]]; then
    printf 'stopped after %d s\n' "$seconds"
  else
    printf 'failed (%d s)\n' $((SECONDS - started))
  fi
  show_end_of "$log"
  return "$status"
}

# What a reader needs of a log: the compilers' errors where there are any, else its end.
show_end_of() {
  {
    grep -m 12 -E '(^|[ :])(fatal )?error:|^FAILED:|^ninja: error|^CMake Error' "$1" || tail -n 30 "$1"
  } | cut -c 1-300 | sed 's/^/    /'
  say "    all of it: $1"
}

# bounded SECONDS COMMAND…: ends with status 124 when the command takes longer. The command, a shell function too, runs in
# a process group of its own, so that whatever it started can be ended with it; also when the user gives up.
RUNNING=
bounded() {
  local seconds=$1 watcher status=0
  shift
  set -m
  "$@" &
  RUNNING=$!
  set +m
  timeout "$seconds" tail --pid="$RUNNING" -s 0.2 -f /dev/null &
  watcher=$!
  if wait "$watcher"; then
    wait "$RUNNING" || status=$?
  else
    end_running
    status=124
  fi
  RUNNING=
  return "$status"
}
end_running() {
  [[ -n $RUNNING ]] || return 0
  kill -TERM -- "-$RUNNING" 2>/dev/null || true
  timeout 10 tail --pid="$RUNNING" -s 0.2 -f /dev/null || kill -KILL -- "-$RUNNING" 2>/dev/null || true
  wait "$RUNNING" 2>/dev/null || true
  RUNNING=
}

# --- Building ---------------------------------------------------------------------------------------------------------

if command -v ccache >/dev/null; then export CMAKE_CXX_COMPILER_LAUNCHER=ccache; fi

# configure PRESET [OPTIONS…]: into $BUILD/PRESET. A build that was made where the checkout lay before is begun anew.
configure() {
  local preset=$1
  shift
  local cache=$BUILD/$preset/CMakeCache.txt
  if [[ -f $cache ]] && ! { grep -qxF "CMAKE_HOME_DIRECTORY:INTERNAL=$ROOT" "$cache" &&
    grep -qxF "CMAKE_CACHEFILE_DIR:INTERNAL=$BUILD/$preset" "$cache"; }; then
    rm -rf "${BUILD:?}/$preset"
  fi
  cmake --preset "$preset" -S "$ROOT" -B "$BUILD/$preset" "$@"
}

# build PRESET TARGETS…: all targets when none is named.
build() {
  local preset=$1
  shift
  if [[ $# -gt 0 ]]; then
    cmake --build "$BUILD/$preset" -j "$JOBS" --target "$@"
  else
    cmake --build "$BUILD/$preset" -j "$JOBS"
  fi
}

# --- Portuguese ground ------------------------------------------------------------------------------------------------

# Wine takes the user's number and date formats from the environment. The locale is made in the build folder, which
# needs no rights on the machine.
use_portuguese() {
  if [[ ! -f $BUILD/locale/pt_PT.UTF-8/LC_NUMERIC ]]; then
    mkdir -p "$BUILD/locale"
    localedef -i pt_PT -f UTF-8 "$BUILD/locale/pt_PT.UTF-8" >"$(log_of locale)" 2>&1 ||
      [[ -f $BUILD/locale/pt_PT.UTF-8/LC_NUMERIC ]] || fail "The locale pt_PT.UTF-8 cannot be made: see $(log_of locale)"
  fi
  export LOCPATH=$BUILD/locale
  export LC_ALL=pt_PT.UTF-8 LANG=pt_PT.UTF-8
  unset LANGUAGE
}

# --- Display ----------------------------------------------------------------------------------------------------------

# has_display: there is a screen that answers.
has_display() {
  [[ -n ${DISPLAY:-} ]] && timeout 5 xdotool getdisplaygeometry >/dev/null 2>&1
}

# start_display: a virtual screen on a free number, until the script ends. QUENTA_DISPLAY fixes the number.
start_display() {
  local numbers tries=0
  numbers=$(mktemp)
  at_exit "rm -f '$numbers'"
  if [[ -n ${QUENTA_DISPLAY:-} ]]; then
    Xvfb "$QUENTA_DISPLAY" -screen 0 1280x1024x24 -nolisten tcp >"$(log_of display)" 2>&1 &
    printf '%s\n' "${QUENTA_DISPLAY#:}" >"$numbers"
  else
    Xvfb -displayfd 3 -screen 0 1280x1024x24 -nolisten tcp 3>"$numbers" >"$(log_of display)" 2>&1 &
  fi
  at_exit "kill $!"
  until [[ -s $numbers ]] && DISPLAY=:$(cat "$numbers") timeout 5 xdotool getdisplaygeometry >/dev/null 2>&1; do
    tries=$((tries + 1))
    [[ $tries -lt 100 ]] || fail "The virtual display does not start: see $(log_of display)"
    sleep 0.1
  done
  DISPLAY=:$(cat "$numbers")
  export DISPLAY
  unset WAYLAND_DISPLAY XAUTHORITY
  # Out of the way: a pointer that rests on a window is a user who hovers there.
  xdotool mousemove 1279 1023
}

# --- Wine -------------------------------------------------------------------------------------------------------------

# The 32-bit Debian that Wine's other width lives in (scripts/tree32.sh), and its commands as seen from outside.
TREE32=$BUILD/tree32
WINE32=$TREE32/outside

# use_wine PREFIX [win32]: commands of Wine work in this prefix from here on, in Portuguese; "$WINE" runs a program of the
# prefix's width. Debian keeps wine64 beside the path.
PATH_WITHOUT_WINE=$PATH
use_wine() {
  export WINEPREFIX=$1 WINEARCH=${2:-win64}
  if [[ $WINEARCH = win32 ]]; then
    export WINE=wine PATH=$WINE32:$PATH_WITHOUT_WINE
  else
    export WINE=wine64 PATH=/usr/lib/wine:$PATH_WITHOUT_WINE
  fi
  export WINEDEBUG=${WINEDEBUG:--all}
  # No questions about Mono and Gecko, no entries in the user's menus.
  export WINEDLLOVERRIDES="mscoree,mshtml=;winemenubuilder.exe=d"
  unset WINELOADER WINESERVER
  use_portuguese
}

# Nothing under Wine in this prefix outlives the script.
end_wine_at_exit() {
  local server
  printf -v server 'WINEPREFIX=%q timeout 20 %q' "$WINEPREFIX" "$(command -v wineserver)"
  at_exit "$server -k; $server -w"
}

# windows_path FILE: as a program under Wine takes it.
windows_path() { printf 'Z:%s' "${1//\//\\}"; }
