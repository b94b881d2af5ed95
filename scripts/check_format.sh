#!/bin/bash
# Every C++ file stands as clang-format (.clang-format) writes it.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
mapfile -t files < <(find src sandbox tests bench -name '*.h' -o -name '*.cpp' | sort)
clang-format-14 --dry-run --Werror "${files[@]}"
echo "${#files[@]} files"
