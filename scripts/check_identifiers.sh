#!/bin/bash
# The identifiers, member numbers and their order in src/platform/com/*.idl are those frozen in scripts/identifiers.txt.
# Tries itself on spoilt copies first.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

# declared FOLDER: "identifier file kind name" for every declaration of the IDL files there, in order.
declared() {
  awk '
    FNR == 1 { file = FILENAME; sub(/.*\//, "", file) }
    match($0, /uuid\([0-9A-Fa-f-]+\)/) { pending = toupper(substr($0, RSTART + 5, RLENGTH - 6)) }
    match($0, /\[id\(0x[0-9A-Fa-f]+\)/) { member = toupper(substr($0, RSTART + 6, RLENGTH - 7)) }
    member != "" && match($0, /HRESULT +[A-Za-z_]+\(/) {
      name = substr($0, RSTART, RLENGTH - 1); sub(/HRESULT +/, "", name)
      print member, file, "method", name; member = ""
    }
    match($0, /^ *(library|interface|coclass) +[A-Za-z_]+/) && pending != "" {
      split(substr($0, RSTART, RLENGTH), word, " ")
      print pending, file, word[1], word[2]; pending = ""
    }' "$1"/quenta_produtos.idl "$1"/ado25_reference.idl
}

# check FOLDER: the differences, "<" frozen and ">" declared; fails when there is one.
check() { diff <(grep -v '^#' scripts/identifiers.txt) <(declared "$1"); }

self_test() {
  local folder spoilt
  folder=$(mktemp -d)
  for spoilt in 's/920E8948/920E8949/' 's/0x60030002/0x60030006/' 's/HRESULT Login/HRESULT Entrar/' \
    's/_Recordset : /_Records : /' '/HRESULT Login/d'; do
    cp src/platform/com/*.idl "$folder"
    sed -i "$spoilt" "$folder"/*.idl
    if check "$folder" >/dev/null; then
      echo "scripts/check_identifiers.sh: does not notice $spoilt"
      exit 1
    fi
  done
  rm -r "$folder"
}

self_test
if ! check src/platform/com; then
  echo "src/platform/com/quenta_produtos.idl:1: differs from scripts/identifiers.txt"
  exit 1
fi
echo "$(declared src/platform/com | wc -l) identifiers"
