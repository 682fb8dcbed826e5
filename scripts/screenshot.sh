#!/usr/bin/env bash
# Takes the README's screenshot: a lobby server on loopback, three scripted players (one
# chatting, one hosting a room, one away) and a real client logged in, on a virtual X display.
# Needs a build (scripts/run.sh or scripts/test.sh makes one), Xvfb, xwd and netpbm.
#   scripts/screenshot.sh [OUTPUT.png]     default docs/screenshot.png
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/lib.sh
out=${1:-docs/screenshot.png}
begin_run shot
start_xvfb 800x600

start_lobby "$run_dir"
start_logged_in_client "$run_dir" Viper
sleep 2

bot Ann "MDanyone up for a round? see http://example.org/maps"
bot Bob "ARClan war practice"
bot Carl "PS1|"
bot Dana "MDgg, that was close"
sleep 4
screenshot "$out"
