#!/bin/bash
# Installs what building, running and testing need and this Debian machine lacks; nothing else is touched.
#   scripts/bootstrap.sh          what ./run needs
#   scripts/bootstrap.sh test     what ./test needs, too
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

packages=(
  cmake ninja-build g++ ccache python3                           # to build
  g++-mingw-w64-x86-64-posix mingw-w64-tools libwine-dev         # … for 64-bit Windows, with its type library
  googletest                                                     # sources: built with our own flags
  wine wine64 xvfb xdotool imagemagick locales                   # to run, and to take screenshots
  fonts-wine fonts-dejavu-core fonts-liberation2
  libxrender1 libxcursor1 libxi6 libxrandr2 libxfixes3           # what Wine uses where it finds it: smooth text, pointers
  unixodbc unixodbc-dev odbcinst libsqliteodbc tdsodbc           # the sandbox's database
  sqlite3 libsqlite3-dev
)
if [[ ${1:-run} = test ]]; then
  packages+=(
    g++-mingw-w64-i686-posix g++-i686-linux-gnu debootstrap      # 32 bits, in a Debian of their own
    clang-format-14 clang-tidy-14 shellcheck
    libreoffice-writer-nogui poppler-utils zbar-tools            # to show the documents and to read their pages
  )
fi

command -v dpkg-query >/dev/null || fail "This needs a Debian machine (12 or later): there is no dpkg here."

missing=()
for package in "${packages[@]}"; do
  [[ $(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null) = installed ]] || missing+=("$package")
done
if [[ ${#missing[@]} -eq 0 ]]; then
  say "Everything needed is installed (${#packages[@]} packages)."
  exit 0
fi

as_root=()
if [[ $(id -u) -ne 0 ]]; then
  command -v sudo >/dev/null || fail "Missing: ${missing[*]}. Install them as root: apt-get install ${missing[*]}"
  as_root=(sudo)
  # The password, where one is asked for, is asked for before the output goes to a file.
  [[ -n ${CI:-} ]] || sudo -v || fail "Missing: ${missing[*]}"
  [[ -z ${CI:-} ]] || as_root=(sudo -n)
fi

install_missing() {
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends --no-remove \
    -o DPkg::Lock::Timeout=300 "${missing[@]}"
}
update_lists() { "${as_root[@]}" apt-get update -o DPkg::Lock::Timeout=300; }

step "Reading the package lists" apt-update 300 update_lists
step "Installing ${missing[*]}" apt-install 1500 install_missing
