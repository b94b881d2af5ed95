# The sandbox under the build folder: a Wine prefix with the component registered, a sample catalogue, its settings.
# To be sourced; docs/sandbox.md describes what it makes.
# shellcheck shell=bash
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

SANDBOX=$BUILD/sandbox
PREFIX=${QUENTA_PREFIX:-$SANDBOX/prefix}
DATABASE=$SANDBOX/catalogo.db

DATA_SOURCE=QuentaAmostra
CATALOGUE=Amostra
SUITE_USER=suite
SUITE_PASSWORD=Suite-2026

CATALOGUE_TOOL=$BUILD/native/sandbox/catalogue/catalogue_tool
SCRAMBLE=$BUILD/native/sandbox/host/scramble

# use_windows win64|win32: the build for Windows that is meant from here on. Under Wine, too, the sandbox's database is
# opened by the host's SQLite, with an extension of its kind and width.
use_windows() {
  local kind=native
  [[ $1 = win64 ]] || kind=linux32
  WINDOWS=$1
  COMPONENT_DLL=$BUILD/$1/src/platform/com/Quenta_Produtos.dll
  SANDBOX_DLL=$BUILD/$1/sandbox/com/QuentaSandbox.dll
  HOST_EXE=$BUILD/$1/sandbox/host/QuentaHost.exe
  SQLITE_EXTENSION=$BUILD/$kind/sandbox/odbc/sqlite_extension/sandbox_sqlite.so
}
use_windows win64

configure_windows() { configure "$WINDOWS" -DQUENTA_SQLITE_EXTENSION="$SQLITE_EXTENSION"; }

build_sandbox() {
  mkdir -p "$SANDBOX"
  step "Configuring the tools" configure-native 300 configure native
  step "Building the tools" build-native 1500 build native catalogue_tool scramble
  step "Configuring the component" configure-win64 300 configure_windows
  step "Building the component, 64 bits" build-win64 2400 build win64 Quenta_Produtos sandbox_com sandbox_host
}

# The database, and the odbc.ini that names it with its whole path. The file "catalogo.ready" says that both are whole,
# and where they were made.
catalogue_is_ready() { [[ $(cat "$SANDBOX/catalogo.ready" 2>/dev/null) = "$BUILD" ]]; }
remove_catalogue() { rm -f "$SANDBOX/catalogo.ready" "$DATABASE" "$DATABASE"-wal "$DATABASE"-shm; }
CATALOGUE_OPTIONS=() # further ones of the tool
make_catalogue() {
  remove_catalogue &&
    "$CATALOGUE_TOOL" --database "$DATABASE" --odbc-ini "$SANDBOX/odbc.ini" --data-source "$DATA_SOURCE" \
      "${CATALOGUE_OPTIONS[@]}" &&
    printf '%s\n' "$BUILD" >"$SANDBOX/catalogo.ready"
}

# boot_prefix PREFIX: makes a Wine prefix where there is none yet.
boot_prefix() {
  local prefix=$1 font
  [[ ! -f $prefix/booted ]] || return 0
  # Fonts first: Wine reads them at its start. Debian keeps Wine's own where its programs do not look.
  mkdir -p "$prefix/drive_c/windows/Fonts"
  for font in /usr/share/wine/fonts/*.ttf; do
    if [[ -f $font ]]; then ln -sf "$font" "$prefix/drive_c/windows/Fonts/"; fi
  done
  "$WINE" wineboot -i && wineserver -w && touch "$prefix/booted"
}

# prepare_prefix PREFIX: registers the component and the sandbox's own classes, and writes the settings. What was done
# stands in a file of the prefix, so that a second time is quick.
prepare_prefix() {
  local prefix=$1
  boot_prefix "$prefix" &&
    "$WINE" regsvr32 /s "$(windows_path "$SANDBOX_DLL")" &&
    "$WINE" regsvr32 /s "$(windows_path "$COMPONENT_DLL")" &&
    settings_file >"$prefix/settings.reg" &&
    "$WINE" regedit /S "$(windows_path "$prefix/settings.reg")" &&
    wineserver -w &&
    prefix_fingerprint >"$prefix/prepared"
}

# What a prepared prefix depends on.
prefix_fingerprint() {
  printf '%s\n' "$ROOT" "$BUILD"
  sha256sum <"$ROOT/scripts/sandbox.sh"
  settings_file | sha256sum
  stat -c '%s %Y' "$SANDBOX_DLL" "$COMPONENT_DLL"
}

prefix_is_prepared() { [[ -f $1/prepared ]] && cmp -s "$1/prepared" <(prefix_fingerprint); }

# The suite's settings, which Login and the warehouse check read, a program for documents, and smooth text for the
# pictures.
settings_file() {
  local templates scrambled
  templates=$(windows_path "$ROOT/sandbox/catalogue/templates")
  scrambled=$("$SCRAMBLE" "$SUITE_PASSWORD")
  printf '\xff\xfe'
  iconv -f UTF-8 -t UTF-16LE <<REG
Windows Registry Editor Version 5.00

[HKEY_LOCAL_MACHINE\\SOFTWARE\\Ambrell\\Shared\\OUT]
"DataServer"="Contabilidade"

[HKEY_LOCAL_MACHINE\\SOFTWARE\\Ambrell\\Contabilidade]
"dtSecurityInfo"="False"
"dtUser"="$SUITE_USER"
"dtPassword"="$scrambled"
"dtInitialCatalog"="$CATALOGUE"
"dtDataSource"="$DATA_SOURCE"
"Armazem"="1"
"Templates"="${templates//\\/\\\\}"

[HKEY_LOCAL_MACHINE\\SOFTWARE\\Classes\\.doc]
@="rtffile"

[HKEY_CURRENT_USER\\Control Panel\\Desktop]
"FontSmoothing"="2"
"FontSmoothingType"=dword:00000002
"FontSmoothingGamma"=dword:00000578
"FontSmoothingOrientation"=dword:00000001
REG
}

# The servers that the sample host offers.
write_servers() {
  cat >"$SANDBOX/servidores.ini" <<INI
[Catálogo de exemplo]
DataSource=$DATA_SOURCE
InitialCatalog=$CATALOGUE
User=$SUITE_USER
Password=$("$SCRAMBLE" "$SUITE_PASSWORD")
Flags=0
INI
}

# use_sandbox: Wine, and the programs under it, find the sandbox. Needs a display before.
use_sandbox() {
  export ODBCINI=$SANDBOX/odbc.ini
  use_wine "$PREFIX" "$WINDOWS"
}

# prepare_sandbox: everything that the sample host needs beside its own program.
prepare_sandbox() {
  mkdir -p "$SANDBOX"
  catalogue_is_ready || step "Making the sample catalogue" catalogue 600 make_catalogue
  write_servers
  use_sandbox
  prefix_is_prepared "$PREFIX" || step "Preparing Wine and registering the component" prefix 300 prepare_prefix "$PREFIX"
}

# run_host OPTIONS…: until the user closes it.
run_host() {
  "$WINE" "$(windows_path "$HOST_EXE")" "/servers:$(windows_path "$SANDBOX/servidores.ini")" "$@" \
    >"$(log_of host)" 2>&1
}
