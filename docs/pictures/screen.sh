# What the scripts beside this share: an X server without a screen, of 1100 x 620 pixels, with a window
# manager and a browser that shows the article among the samples. Whoever sources it sets build.
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
work=$(mktemp -d)
processes=()

end() {
  for process in "${processes[@]}"; do
    kill "$process" 2>/dev/null || true
    wait "$process" 2>/dev/null || true
  done
  rm -rf "$work"
}
trap end EXIT

start() {
  "$@" >>"$work/messages" 2>&1 &
  processes=("$!" "${processes[@]}")
}

open_screen() {
  exec {number}<> <(:)
  start Xvfb -displayfd "$number" -screen 0 1100x620x24 -nolisten tcp
  read -r display <&"$number"
  export DISPLAY=:$display XDG_RUNTIME_DIR=$work HOME=$work
  start openbox --sm-disable
}

# open_article WIDTH,HEIGHT [OPTION...]
open_article() {
  start chromium --no-sandbox --disable-gpu --no-first-run --disable-background-networking \
    --disable-component-update --disable-sync --disable-quic --test-type --user-data-dir="$work/browser" \
    --window-position=40,40 --window-size="$1" "${@:2}" --app="file://$root/samples/article/page.html"
  sleep 8
}

# draw_screen OUTPUT.png
draw_screen() {
  timeout --foreground --signal=INT --preserve-status 2 \
    "$build/velscroll/velscroll" record -q --region 1100x620+0+0 -o "$1"
}
