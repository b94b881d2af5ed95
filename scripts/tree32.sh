#!/bin/bash
# A 32-bit Debian in a folder, for the Wine of that width. (Debian's wine32 cannot always be installed beside the 64-bit
# Wine: both want their libraries in exactly the same versions, and the archive does not always have them.)
#   scripts/tree32.sh missing             says in one line why none can be made or used here; nothing when it can
#   scripts/tree32.sh make FOLDER         makes it, unless it is there; needs root and the machine's own archive of Debian
#   scripts/tree32.sh enter FOLDER COMMAND…   what FOLDER/outside/wine, wineserver … do: runs the tree's command of that
#                                         name. The checkout, the build folder and /tmp are inside where they are outside.
# Whatever is mounted for this is so for one command and what it starts, in a mount namespace of their own, and goes with
# the last of these processes.
where=$PWD
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

packages=(
  wine wine32 fonts-wine fonts-dejavu-core fonts-liberation2
  libxrender1 libxcursor1 libxi6 libxrandr2 libxfixes3  # what Wine uses where it finds it, as outside
  unixodbc odbcinst libsqliteodbc tdsodbc               # the sandbox's database
)
commands=(wine wineboot winepath wineserver)

in_namespace() { unshare --mount --propagation private "$@"; }

# The Debian that the machine itself is, and where its apt has it from.
codename() { sed -n 's/^VERSION_CODENAME=//p' /etc/os-release; }
archive() {
  # shellcheck disable=SC2016
  apt-get indextargets --format '$(REPO_URI) $(RELEASE) $(COMPONENT) $(ORIGIN)' 'Created-By: Packages' 2>/dev/null |
    awk -v release="$(codename)" '$2 == release && $3 == "main" && ($4 == "Debian" || $4 ~ /^\$/) { print $1; exit }'
}

missing() {
  local command
  if [[ $(id -u) -ne 0 ]]; then
    say "a 32-bit Debian can be made by root only"
    return
  fi
  for command in debootstrap unshare chroot apt-get; do
    if ! command -v "$command" >/dev/null; then
      say "there is no $command"
      return
    fi
  done
  if ! in_namespace mount -t tmpfs tmpfs /mnt 2>/dev/null; then
    say "nothing can be mounted here"
  elif [[ -z $(archive) ]]; then
    say "apt knows no archive of this Debian"
  fi
}

made_of() { printf '%s %s\n' "$(codename)" "${packages[*]}"; }

make_tree() {
  local tree=$1 command
  if ! cmp -s "$tree/made_of" <(made_of); then
    # Beside it first, so that what was interrupted is never taken for a tree.
    rm -rf --one-file-system "$tree" "$tree.new"
    mkdir -p "$tree.new"
    in_namespace "$ROOT/scripts/tree32.sh" fill "$tree.new" "$(archive)"
    made_of >"$tree.new/made_of"
    mv "$tree.new" "$tree"
  fi
  mkdir -p "$tree/outside"
  for command in "${commands[@]}"; do
    {
      say '#!/bin/bash'
      printf 'exec unshare --mount --propagation private %q enter %q %s "$@"\n' \
        "$ROOT/scripts/tree32.sh" "$tree" "$command"
    } >"$tree/outside/$command"
    chmod +x "$tree/outside/$command"
  done
}

# In a namespace of its own. The folder's name may hold what debootstrap does not take, so it is put where none does.
fill_tree() {
  local here=/mnt
  mount --bind "$1" "$here"
  debootstrap --variant=minbase --arch=i386 "$(codename)" "$here" "$2"
  # It can be made again: nothing is lost with what was not on the disk yet.
  say force-unsafe-io >"$here/etc/dpkg/dpkg.cfg.d/unsafe-io"
  mount -t proc proc "$here/proc"
  mount --rbind /dev "$here/dev"
  local inside=(env -C / DEBIAN_FRONTEND=noninteractive LC_ALL=C chroot "$here" apt-get -y -o Acquire::Retries=3)
  "${inside[@]}" update
  "${inside[@]}" install --no-install-recommends "${packages[@]}"
  "${inside[@]}" clean
}

# In a namespace of its own.
enter_tree() {
  local tree=$1 build=${1%/*} temporary=${TMPDIR:-/tmp} folder
  shift
  mount -t proc proc "$tree/proc"
  mount --rbind /dev "$tree/dev"
  mount --rbind /sys "$tree/sys"
  for folder in /tmp "$temporary" "$ROOT" "$(realpath "$ROOT")" "$build" "$(realpath "$build")"; do
    mkdir -p "$tree$folder"
    mount --rbind "$folder" "$tree$folder"
  done
  [[ -d $tree$where ]] || where=/
  exec chroot "$tree" /usr/bin/env -C "$where" PATH=/usr/local/bin:/usr/bin:/bin "$@"
}

case ${1:-} in
  missing) missing ;;
  make) make_tree "$2" ;;
  fill) fill_tree "$2" "$3" ;;
  enter) enter_tree "${@:2}" ;;
  *) fail "scripts/tree32.sh missing | make FOLDER | enter FOLDER COMMAND…" ;;
esac
