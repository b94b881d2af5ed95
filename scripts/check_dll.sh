#!/bin/bash
# The component's libraries export exactly the four functions of a COM server, undecorated, and import nothing of the
# compiler's runtime, which no machine of a customer has.
#   scripts/check_dll.sh LIBRARY…     (without a library: those of the two builds, where they exist)
# Tries itself on bad listings first.
set -euo pipefail
mapfile -t libraries < <([[ $# -eq 0 ]] || realpath -- "$@")
cd "$(dirname "${BASH_SOURCE[0]}")/.."
# objdump translates its headings.
export LC_ALL=C

EXPORTS='DllCanUnloadNow DllGetClassObject DllRegisterServer DllUnregisterServer'

# exports_of, imports_of: the names in a listing of objdump -p.
exports_of() { awk '/\[Ordinal\/Name Pointer\] Table/ { on = 1; next } on && NF == 0 { exit } on { print $NF }' | sort | xargs; }
imports_of() { awk '/DLL Name:/ { print tolower($3) }' | sort -u; }

# check LIBRARY LISTING: what is wrong, a line each.
check() {
  local exports
  exports=$(exports_of <<<"$2")
  [[ $exports = "$EXPORTS" ]] || echo "$1:1: exports \"$exports\" instead of \"$EXPORTS\""
  imports_of <<<"$2" | grep -E '^(lib(gcc|stdc\+\+|winpthread|ssp)|msys|cygwin)' | sed "s|.*|$1:1: imports &|" || true
}

self_test() {
  local good decorated runtime bad
  good=$'[Ordinal/Name Pointer] Table\n'
  local name
  for name in $EXPORTS; do good+=$'\t[   0] '$name$'\n'; done
  decorated=${good/DllCanUnloadNow/DllCanUnloadNow@0}
  runtime=$good$'\n\tDLL Name: libgcc_s_seh-1.dll\n'
  [[ -z $(check good "$good") ]] || { echo "scripts/check_dll.sh: refuses a good library"; exit 1; }
  for bad in "$decorated" "$runtime" ""; do
    [[ -n $(check bad "$bad") ]] || { echo "scripts/check_dll.sh: does not notice $bad"; exit 1; }
  done
}

self_test
if [[ ${#libraries[@]} -eq 0 ]]; then
  mapfile -t libraries < <(ls build/win64/src/platform/com/Quenta_Produtos.dll build/win32/src/platform/com/Quenta_Produtos.dll 2>/dev/null)
  [[ ${#libraries[@]} -gt 0 ]] || { echo "there is no library to check"; exit 1; }
fi
faults=''
for library in "${libraries[@]}"; do
  listing=$(x86_64-w64-mingw32-objdump -p "$library")
  faults+=$(check "$library" "$listing")
done
if [[ -n $faults ]]; then
  echo "$faults"
  exit 1
fi
echo "${#libraries[@]} libraries, 4 exports each"
