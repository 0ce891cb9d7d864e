# What the walks in the real window share; each sources it with the arguments
#   TABELION TABELION-CLI SAMPLES PICTURES
# and leaves a picture of every step in PICTURES. Needs Xvfb, xdotool and import. Folders, settings
# and the display are the walk's own. WALK_SCREEN=320x240 in the environment walks on that screen.
set -euo pipefail
tabelion=$1 cli=$2 samples=$3 pictures=$4
screen=${WALK_SCREEN:-240x320}

work=$(mktemp -d)
documents=$work/documents card=$work/card
databases=$documents/Tabelion
mkdir -p "$documents" "$card" "$work/run" "$pictures"
chmod 700 "$work/run"
rm -f "$pictures"/*.png
export XDG_RUNTIME_DIR=$work/run XDG_CONFIG_HOME=$work/config HOME=$work LC_ALL=C
export QT_QPA_PLATFORM=xcb
unset DBUS_SESSION_BUS_ADDRESS WAYLAND_DISPLAY
# The bus library keeps a little of what it reads on a machine that has no identity.
echo "leak:libdbus-1" >"$work/leaks"
export LSAN_OPTIONS=suppressions=$work/leaks:print_suppressions=0

program=0 server=0 step=0
finish() {
  kill -9 "$program" "$server" 2>/dev/null || true
  wait 2>/dev/null || true
  rm -rf "$work"
}
trap finish EXIT

fail() {
  picture failed
  echo "FAILED: $*" >&2
  exit 1
}

# Xvfb looks for a free display itself and says which. It goes on as it is when its last client was
# killed: while it starts over it would refuse the next one.
Xvfb -displayfd 3 -screen 0 800x600x24 -nolisten tcp -noreset 3>"$work/display" 2>"$work/xvfb.log" &
server=$!

# until_true SECONDS COMMAND…: polls; false when it never came true.
until_true() {
  local last=$((SECONDS + $1))
  shift
  until "$@"; do
    ((SECONDS <= last)) || return 1
    sleep 0.05
  done
}
until_true 20 test -s "$work/display" || fail "the X server does not start: $(cat "$work/xvfb.log")"
DISPLAY=:$(cat "$work/display")
export DISPLAY

look() { import -window root "$work/now.png" 2>/dev/null && sha256sum <"$work/now.png"; }

# The screen has come to rest: two looks in a row see the same.
settled() {
  local before=$seen
  seen=$(look)
  [[ $seen == "$before" ]]
}
settle() {
  seen=''
  until_true 30 settled || fail "the screen does not come to rest"
}
picture() {
  step=$((step + 1))
  import -window root -crop "$screen+0+0" "$pictures/$(printf '%02d' $step)-$1.png" 2>/dev/null || true
}

has_window() { xdotool search --onlyvisible --pid "$program" . >/dev/null 2>&1; }
start() {
  "$tabelion" --screen "$screen" --zoom 1 --documents "$documents" --card "$card" --samples "$samples" "$@" \
    >"$work/program.log" 2>&1 &
  program=$!
  until_true 30 has_window || fail "no window: $(cat "$work/program.log")"
  xdotool windowfocus "$(xdotool search --onlyvisible --pid "$program" . 2>/dev/null | tail -1)"
  settle
}
keys() { xdotool key --clearmodifiers "$@"; }
# shows NAME KEY…: the keys change what the screen shows; a picture of that is kept.
shows() {
  local name=$1 before
  shift
  before=$(look)
  changed() { [[ $(look) != "$before" ]]; }
  keys "$@"
  until_true 20 changed || fail "$name: nothing happens on screen"
  settle
  picture "$name"
}
# makes NAME TEST… -- KEY…: after the keys, the test comes true.
makes() {
  local name=$1 condition=()
  shift
  while [[ $1 != -- ]]; do
    condition+=("$1")
    shift
  done
  shift
  keys "$@"
  until_true 20 "${condition[@]}" || fail "$name: not so: ${condition[*]}"
  settle
  picture "$name"
}
gone() { ! test -e "$1"; }
same() { cmp -s "$1" "$2"; }
contains() { grep -qs "$2" "$1"; }
lock_of() { echo "$(dirname "$1")/.$(basename "$1").lock"; }
ended() { ! kill -0 "$program" 2>/dev/null; }
held() { grep -qs "process $program on" "$(lock_of "$1")"; }
count_is() { [[ $(find "$1" -maxdepth 1 -name '*.PDB' | wc -l) == "$2" ]]; }

all_whole() {
  local file
  while IFS= read -r -d '' file; do
    "$cli" check "$file" >"$work/check.log" 2>&1 || fail "$file: $(cat "$work/check.log")"
  done < <(find "$documents" "$card" -iname '*.pdb' -print0)
}
# crash KEY…: kills the program in the middle of what the keys began.
crash() {
  local count
  keys "$@"
  kill -9 "$program"
  wait "$program" 2>/dev/null || true
  all_whole
  count=$(find "$databases" -maxdepth 1 -iname '*.pdb' | wc -l)
  echo "killed after $*: $count databases, all whole"
}
