#!/bin/bash
# The scripts themselves: shellcheck finds nothing, and what is meant to be started can be.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
scripts=(run test .ci/run scripts/*.sh)
shellcheck -x "${scripts[@]}"
for script in "${scripts[@]}" scripts/*.py; do
  [[ -x $script || $(head -c 2 "$script") != '#!' ]] || { echo "$script is not executable"; exit 1; }
done
echo "${#scripts[@]} scripts"
