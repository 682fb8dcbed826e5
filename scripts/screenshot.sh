#!/usr/bin/env bash
# Takes the README's screenshot: a lobby server on loopback, three scripted players (one
# chatting, one hosting a room, one away) and a real client logged in, on a virtual X display.
# Needs a build (scripts/run.sh or scripts/test.sh makes one), Xvfb, xwd and netpbm.
#   scripts/screenshot.sh [OUTPUT.png]     default docs/screenshot.png
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/lib.sh
out=${1:-docs/screenshot.png}
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


start_logged_in_client "$run_dir" Viper
sleep 2

bot Ann "MDanyone up for a round? see http://example.org/maps"
bot Bob "ARClan war practice"
bot Carl "PS1|"
bot Dana "MDgg, that was close"
sleep 4
xwd -root -silent | xwdtopnm 2>/dev/null | pnmtopng >"$out"
echo "screenshot written to $out"
