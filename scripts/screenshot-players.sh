#!/usr/bin/env bash
# Takes the README's screenshot of a busy lobby: a lobby server on loopback, a crowd of scripted
# players (most in the lobby, many in games, some away) and a real client logged in, in a
# window made larger by its corner grip, a name typed into the find box above the player list
# and the lobby group folded, on a virtual X display.
# Needs a build (scripts/run.sh or scripts/test.sh makes one), Xvfb, xdotool, xwd and netpbm.
#   scripts/screenshot-players.sh [OUTPUT.png] [PLAYERS]     default docs/players.png, 600
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/lib.sh
out=${1:-docs/players.png}
count=${2:-600}
begin_run shot
start_xvfb 1000x700

# The crowd logs in from one address, and its accounts need no costly hashes.
start_lobby "$run_dir" --hash-cost minimal --max-connections-per-address $((count + 10))

# The crowd: one process holding every player's connection, reading and dropping what the
# server sends. Names are made from a clan tag and a word; about six in ten stay in the
# lobby, three play on one of a few game servers, one is away.
python3 - "$port" "$count" "$run_dir/crowd.ready" <<'PY' &
import random, selectors, socket, sys, time
port, count, ready = int(sys.argv[1]), int(sys.argv[2]), sys.argv[3]
SEP, END = b"\x0e", b"\x0f"
random.seed(7)
clans = ["", "", "", "[TSK]", "[RvN]", "=DW=", "{SoF}", "[EVO]", "|OPS|", "[GSG9]"]
words = ["Raven", "Scorpion", "Ghost", "Kestrel", "Ravager", "Hawk", "Nomad", "Saber", "Wolf",
         "Brave", "Cobra", "Falcon", "Rook", "Specter", "Tango", "Bishop", "Orca", "Ravine",
         "Lynx", "Mamba", "Grizzly", "Jackal", "Drake", "Shadow", "Warden", "Onyx", "Havoc"]
names, seen = [], set()
while len(names) < count:
    name = random.choice(clans) + random.choice(words) + random.choice(["", "", str(random.randint(1, 99)), "x", "_SR"])
    if name.lower() not in seen and len(name) <= 15:
        seen.add(name.lower())
        names.append(name)
sel = selectors.DefaultSelector()
def drain(timeout=0):
    for key, _ in sel.select(timeout):
        try:
            if not key.fileobj.recv(1 << 16):
                sel.unregister(key.fileobj)
        except BlockingIOError:
            pass
for name in names:
    s = socket.create_connection(("127.0.0.1", port))
    s.sendall(b"VEV 6.0" + END)
    data = b""
    while b"LT" not in data:
        if b"SL" in data and b"LG" not in data:
            s.sendall(b"LG" + name.encode("cp1252") + SEP + b"pw" + END)
            data += b"LG"
        data += s.recv(1 << 16)
        drain()
    s.setblocking(False)
    sel.register(s, selectors.EVENT_READ)
    roll = random.random()
    if roll < 0.3:
        s.sendall(b"PS2" + SEP + random.choice([b"10.0.0.5", b"10.0.0.6", b"10.0.0.7"]) + END)
    elif roll < 0.4:
        s.sendall(b"PS1" + SEP + END)
open(ready, "w").close()
end = time.time() + 3600
while time.time() < end:
    drain(1)
PY
pids+=($!)

start_logged_in_client "$run_dir" Viper

# Everybody in.
for _ in $(seq 600); do
    [[ -e $run_dir/crowd.ready ]] && break
    sleep 0.2
done
bot Ann "ARClan war practice"
bot Bob "ARRaven's training ground"
bot Dana "MDanyone seen Raven tonight?"
sleep 3
window_at QUORVEL
# Larger by its corner grip, as a user drags it.
xdotool mousemove $((x + 796)) $((y + 596)) mousedown 1 sleep 0.3 \
    mousemove $((x + 900)) $((y + 650)) sleep 0.3 mousemove $((x + 996)) $((y + 696)) \
    sleep 0.3 mouseup 1
sleep 1
# The find box: above the player list, at the right.
xdotool mousemove $((x + 1000 - 120)) $((y + 88)) click 1
xdotool type --delay 60 "raven"
sleep 1
# Folds the lobby group by a click on its row, the first of the list.
xdotool mousemove $((x + 820)) $((y + 131)) click 1 mousemove $((x + 400)) $((y + 500))
sleep 2
screenshot "$out" "$x" "$y" 1000 700
