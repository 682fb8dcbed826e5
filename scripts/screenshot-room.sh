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
begin_run shot
start_xvfb 800x600

start_lobby "$run_dir"

bot Bob "ARClan war practice" "ÖR2" "sleep 10" "ÖMready when you are, map is Kiev"
bot Ann "sleep 1" "ÖJBob|" "ÖR2" "sleep 11" "ÖMgo go go"
start_logged_in_client "$run_dir" Viper

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
screenshot "$out" "$x" "$y" 595 408
