#!/bin/bash
# Walks through the sample host and the product form on a virtual screen and takes pictures of what a user sees.
#   scripts/screenshots.sh         into build/screenshots; the sandbox has to be built (./run does it)
#   scripts/screenshots.sh --docs  and renews docs/images/product_form.png
# shellcheck source=scripts/sandbox.sh
source "$(dirname "${BASH_SOURCE[0]}")/sandbox.sh"

PICTURES=$BUILD/screenshots
HOST_LOG=$SANDBOX/host.txt
# An ordinary product; one with accents, a colour and measures; one with dependent products.
PRODUCTS=(10000 10106-CZ 10204)

# A desktop of Wine's own stands in for a window manager: it draws captions and knows which window is in front.
start_host() {
  rm -f "$HOST_LOG"
  "$WINE" explorer "/desktop=Quenta,1280x1024" "$(windows_path "$HOST_EXE")" \
    "/servers:$(windows_path "$SANDBOX/servidores.ini")" "/log:$(windows_path "$HOST_LOG")" "$@" \
    >>"$(log_of host)" 2>&1 &
}

end_host() {
  timeout 20 wineserver -k >/dev/null 2>&1 || true
  timeout 20 wineserver -w >/dev/null 2>&1 || true
}

# wait_for SECONDS COMMAND…: until the command succeeds.
wait_for() {
  local until=$((SECONDS + $1))
  shift
  until "$@" >/dev/null 2>&1; do
    [[ $SECONDS -lt $until ]] || return 1
    sleep 0.2
  done
}

host_said() { grep -q "$1" "$HOST_LOG"; }
window_shown() { xdotool search --onlyvisible --name "$1"; }

# take NAME [WINDOW]: a picture of the screen, or of one window, once it stands still.
take() {
  local file=$PICTURES/$1.png window=${2:-root} before='' now='' tries=0 colours
  while [[ $tries -lt 30 ]]; do
    sleep 0.5
    timeout 20 import -window "$window" "$file"
    now=$(identify -format '%#' "$file")
    [[ $now != "$before" ]] || break
    before=$now
    tries=$((tries + 1))
  done
  colours=$(identify -format '%k' "$file")
  [[ $colours -gt 16 ]] || { echo "$file shows nothing ($colours colours)"; return 1; }
}

picture_of_login() {
  start_host "/user:ana"
  wait_for 60 window_shown '^Iniciar sess' || { echo "The login dialog does not appear."; return 1; }
  take 1-login || return 1
  end_host
}

picture_of_list() {
  start_host "/user:ana" "/password:ana-senha" "/connect:sqlconnect"
  wait_for 60 host_said '^Sess' || { cat "$HOST_LOG"; echo "The sample host does not log in."; return 1; }
  take 2-list || return 1
  xdotool type --delay 60 "manta la"
  take 3-search || return 1
  end_host
}

# picture_of_product CODE NAME [KEY…]: the product's form, after these keys, and whatever they have opened.
picture_of_product() {
  local form
  start_host "/user:ana" "/password:ana-senha" "/connect:login" "/open:$1"
  wait_for 90 host_said '^Aberto' || { cat "$HOST_LOG"; echo "Product $1 does not open."; return 1; }
  # The newest visible window with a caption of its own, beside the host's and the desktop's.
  wait_for 20 product_window || { echo "The form of product $1 does not appear."; return 1; }
  [[ $# -eq 2 ]] || { sleep 1; xdotool key --delay 300 "${@:3}"; }
  take "$2" || return 1
  form=$(product_window)
  take "$2-form" "$form" || return 1
  end_host
}

product_window() {
  local window name found=
  for window in $(xdotool search --onlyvisible --name '.'); do
    name=$(xdotool getwindowname "$window")
    case $name in
      'Catálogo de produtos' | *'Wine desktop' | 'Default IME' | '') ;;
      *) found=$window ;;
    esac
  done
  [[ -n $found ]] && printf '%s\n' "$found"
}

prepare_display_and_sandbox() {
  start_display
  prepare_sandbox
  end_wine_at_exit
}

mkdir -p "$PICTURES"
rm -f "$PICTURES"/*.png
: >"$(log_of host)"
prepare_display_and_sandbox
step "Logging in" picture-login 150 picture_of_login
step "Searching the list" picture-list 150 picture_of_list
number=4
for code in "${PRODUCTS[@]}"; do
  step "Opening product $code" "picture-$code" 200 picture_of_product "$code" "$number-product-$code"
  number=$((number + 1))
done
step "The sales of a product" picture-vendas 200 picture_of_product 10001 7-vendas ctrl+4
step "The minimums of a warehouse" picture-stocks 200 picture_of_product 10000 8-stocks ctrl+2 Down Return
step "Dependent products" picture-dependentes 200 picture_of_product 10204 9-dependentes ctrl+7
step "The generator" picture-gerar 200 picture_of_product 10032 10-gerar ctrl+7 ctrl+g
step "Labels" picture-etiquetas 200 picture_of_product 10001 11-etiquetas ctrl+p
if [[ ${1:-} = --docs ]]; then
  mkdir -p docs/images
  cp "$PICTURES/5-product-${PRODUCTS[1]}-form.png" docs/images/product_form.png
  say "Renewed docs/images/product_form.png."
fi
say "Pictures: ${PICTURES#"$ROOT"/}: $(cd "$PICTURES" && echo *.png)"
