#!/usr/bin/env bash
# PNG screenshots of quorvel's windows on a fresh demo cell, under Xvfb, into docs/screenshots/:
# the cell window (and its New Job question), the template editor, the job wizard on each of its
# tabs, and the small dialogs (Delete Template, the copy window).
#
#   bash scripts/screenshots.sh [BUILD_DIR]     # BUILD_DIR defaults to build
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build}
out=docs/screenshots

missing=()
command -v Xvfb >/dev/null || missing+=(xvfb)
command -v import >/dev/null || missing+=(imagemagick)
command -v xdotool >/dev/null || missing+=(xdotool)
if [ ${#missing[@]} -gt 0 ]; then
  echo "Installing: ${missing[*]}"
  apt-get update -qq
  DEBIAN_FRONTEND=noninteractive apt-get install -y -qq "${missing[@]}"
fi

[ -f "$build/build.ninja" ] || cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo
cmake --build "$build" -j1 --target quorvel
quorvel=$PWD/$build/quorvel

work=$(mktemp -d)
xvfb_pid=
app_pid=
cleanup() {
  [ -n "$app_pid" ] && kill "$app_pid" 2>/dev/null || true
  [ -n "$xvfb_pid" ] && kill "$xvfb_pid" 2>/dev/null || true
  rm -rf "$work"
}
trap cleanup EXIT

# A display of its own, and settings that leave the user's alone.
display=:$((90 + RANDOM % 400))
Xvfb "$display" -screen 0 1280x1024x24 -nolisten tcp >/dev/null 2>&1 &
xvfb_pid=$!
export DISPLAY=$display XDG_CONFIG_HOME=$work/config
unset QT_QPA_PLATFORM WAYLAND_DISPLAY
for _ in $(seq 50); do xdotool getdisplaygeometry >/dev/null 2>&1 && break; sleep 0.2; done

# The demo cell with pallet 7's job written, as scripts/demo.sh makes it.
cell=$work/cell
"$quorvel" init --cell "$cell" >/dev/null
"$quorvel" job --cell "$cell" --template 1 --pallet 7 --job 1 --script - >/dev/null <<'SCRIPT'
program 7
numbers on
increment 10
write Pal00007
SCRIPT
mkdir -p "$out"

# Starts a window command, waits for the window titled $1, and leaves its id in $wid.
start() {
  local title=$1
  shift
  "$@" >/dev/null 2>&1 &
  app_pid=$!
  wid=
  for _ in $(seq 100); do
    wid=$(xdotool search --onlyvisible --name "^${title}\$" 2>/dev/null | tail -1 || true)
    [ -n "$wid" ] && break
    sleep 0.2
  done
  [ -n "$wid" ] || { echo "screenshots: no window '$title' from: $*; shown: $(xdotool search --onlyvisible --name . getwindowname %@ 2>/dev/null | tr "\n" " ")" >&2; exit 1; }
  sleep 1
}
shot() {
  sleep 0.5
  import -window "$1" "$out/$2.png"
  echo "$out/$2.png"
}
stop() {
  kill "$app_pid" 2>/dev/null || true
  wait "$app_pid" 2>/dev/null || true
  app_pid=
}

# The cell window: New Job (pallet 7, the next free job) opens the wizard on the new job; the
# wizard is closed again and the written job of pallet 7 is selected for the program view.
start "quorvel - cell" "$quorvel" cell --cell "$cell"
xdotool windowsize --sync "$wid" 1024 768 || true
xdotool windowfocus --sync "$wid" || true
xdotool key ctrl+n || true
dialog=
for _ in $(seq 50); do
  dialog=$(xdotool search --onlyvisible --name "^New Job\$" 2>/dev/null | tail -1 || true)
  [ -n "$dialog" ] && break
  sleep 0.2
done
[ -n "$dialog" ] || { echo "screenshots: no New Job dialog" >&2; exit 1; }
shot "$dialog" cell-new-job
xdotool windowfocus --sync "$dialog" || true
xdotool key Return || true
for _ in $(seq 100); do
  wizard=$(xdotool search --onlyvisible --name "^Master Program Wizard\$" 2>/dev/null | tail -1 || true)
  [ -n "$wizard" ] && break
  sleep 0.2
done
sleep 2
if [ -n "$wizard" ]; then
  # Escape closes the wizard as its Exit button does (there is no window manager for Alt+F4).
  xdotool windowfocus --sync "$wizard" || true
  xdotool key Escape || true
fi
for _ in $(seq 50); do
  xdotool search --onlyvisible --name "^Master Program Wizard\$" >/dev/null 2>&1 || break
  sleep 0.2
done
xdotool mousemove --window "$wid" 100 392 click 1 || true
xdotool mousemove 0 0
shot "$wid" cell-window
stop

start "Fixture Template Definition" "$quorvel" template modify --cell "$cell" --id 1
shot "$wid" template-editor
stop

# The wizard's tabs: Program, Options, Tree View, Script View, each a click on its tab (a key
# would reach the focused box and change the job). The tabs sit at these points of the window.
start "Master Program Wizard" "$quorvel" job --cell "$cell" --template 1 --pallet 7 --job 1
tab=1
for at in "program 40" "options 114" "tree 190" "script 277"; do
  set -- $at
  xdotool mousemove --window "$wid" "$2" 73 click 1
  shot "$wid" "wizard-$tab-$1"
  tab=$((tab + 1))
done
xdotool mousemove 0 0
stop

start "Delete Template" "$quorvel" template delete --cell "$cell"
shot "$wid" delete-template
stop

# Enough files that the copy window is up for a moment.
mkdir -p "$work/from" "$work/to"
for i in $(seq 3000); do echo "$i" >"$work/from/part$i.dat"; done
"$quorvel" copy "$work/from" "$work/to" >/dev/null 2>&1 &
app_pid=$!
for _ in $(seq 100); do
  wid=$(xdotool search --onlyvisible --name "^Copying\.\.\.\$" 2>/dev/null | tail -1 || true)
  [ -n "$wid" ] && break
  sleep 0.05
done
[ -n "$wid" ] && shot "$wid" copy-files || echo "screenshots: the copy window closed too soon" >&2
stop
