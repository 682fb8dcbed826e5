#!/usr/bin/env bash
# Takes the README's screenshot of a room: a lobby server on loopback, two scripted players
# (Bob hosts "Clan war practice", Ann joins; both get ready and chat) and a real client that
# joins the room by a double-click on the room list and says a line, on a virtual X display.
# Needs a build (scripts/run.sh or scripts/test.sh makes one), Xvfb, xdotool, xwd and netpbm.
#   scripts/screenshot-room.sh [OUTPUT.png]     default docs/room.png
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/lib.sh
out=${1:-docs/room.png}
run_dir=$(mktemp -d "${TMPDIR:-/tmp}/quorvel-shot.XXXXXX")
pids=()
cleanup() {
    for pid in "${pids[@]}"; do
        kill "$pid" 2>/dev/null || true
    done
}
trap cleanup EXIT

display=:$((90 + RANDOM % 100))
Xvfb "$display" -screen 0 800x600x24 >/dev/null 2>&1 &
pids+=($!)
export DISPLAY=$display

start_lobby "$run_dir"
port=$lobby_port

bot Bob "ARClan war practice" "ÖR2" "sleep 10" "ÖMready when you are, map is Kiev"
bot Ann "sleep 1" "ÖJBob|" "ÖR2" "sleep 11" "ÖMgo go go"
start_logged_in_client "$run_dir" Viper

# window_at NAME: sets x and y to the top left corner of the window titled exactly NAME.
window_at() {
    local id
    for _ in $(seq 100); do
        id=$(xdotool search --name "^$1\$" 2>/dev/null | head -1) && [[ -n $id ]] && break
        sleep 0.1
    done
    eval "$(xdotool getwindowgeometry --shell "$id")"
    x=$X y=$Y
}

# New accounts take the server a moment each (password hashing).
sleep 8
window_at QUORVEL
# The first row of the room list, below its header.
xdotool mousemove $((x + 60)) $((y + 104)) click --repeat 2 --delay 80 1
window_at Room
sleep 1
xdotool mousemove $((x + 300)) $((y + 349)) click 1
xdotool type --delay 30 "on my way"
xdotool key Return
sleep 14
xwd -root -silent | xwdtopnm 2>/dev/null | pnmcut -left "$x" -top "$y" -width 595 -height 408 |
    pnmtopng >"$out"
echo "screenshot written to $out"
