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

# A scripted player: logs in, then sends what it is given, then stays.
bot() {
    python3 - "$port" "$@" <<'PY' &
import socket, sys, time
port, name, *actions = sys.argv[1:]
SEP, END = b"\x0e", b"\x0f"
s = socket.create_connection(("127.0.0.1", int(port)))
def wait_for(code):
    data = b""
    while code not in data:
        data += s.recv(65536)
s.sendall(b"VEV 6.0" + END)
wait_for(b"SL")
s.sendall(b"LG" + name.encode("cp1252") + SEP + b"pw" + END)
wait_for(b"LT")
for action in actions:
    time.sleep(0.5)
    s.sendall(action.encode("cp1252").replace(b"|", SEP) + END)
time.sleep(3600)
PY
    pids+=($!)
}

client_home="$run_dir/player1"
mkdir -p "$client_home/data/Quorvel" "$client_home/config" "$client_home/RogueSpear"
printf 'Viper\r\nsecret\r\n' >"$client_home/data/Quorvel/user.txt"
printf '0\r\n1\r\n0\r\n0\r\n0\r\n%s\r\n\r\n' "$client_home/RogueSpear" \
    >"$client_home/data/Quorvel/settingRS.txt"
XDG_DATA_HOME="$client_home/data" XDG_CONFIG_HOME="$client_home/config" \
    build/src/client/quorvel --lobby "127.0.0.1:$port" >"$run_dir/client.log" 2>&1 &
pids+=($!)
sleep 2

bot Ann "MDanyone up for a round? see http://example.org/maps"
bot Bob "ARClan war practice"
bot Carl "PS1|"
bot Dana "MDgg, that was close"
sleep 4
xwd -root -silent | xwdtopnm 2>/dev/null | pnmtopng >"$out"
echo "screenshot written to $out"
