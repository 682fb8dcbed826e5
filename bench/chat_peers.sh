#!/usr/bin/env bash
# Chat fan-out side by side with the IRC server ngircd, in one run: the same load from
# chatload.py (K clients, S senders, R lines/s for T s) first against ngircd, then against
# quorvel-server with open registration; prints both result lines. Needs ngircd
# (apt-get install ngircd) and a built quorvel-server.
#   bench/chat_peers.sh [build dir]
# Environment: PEERS_DIR (where chatload.py and ngircd.conf live), K (1000), S (80), R (20),
# T (15).
#
# The load client's allocator is fixed for both runs. Python reads each socket into a fresh
# 256 KiB buffer; glibc serves that from mmap until its adaptive threshold happens to rise, and
# whether it rises depends on the client's history, not on the server under test. Left adaptive,
# one run paid an mmap, a page fault, an mremap and a munmap per received line and the other
# did not, which doubled the client's time per line and decided the comparison.
set -euo pipefail
client_env=(env GLIBC_TUNABLES=glibc.malloc.mmap_threshold=4194304)
cd "$(dirname "$0")/.."

build=${1:-build}
peers=${PEERS_DIR:-/work/shared/peers}
server=$build/src/server/quorvel-server
load=(-k "${K:-1000}" -s "${S:-80}" -r "${R:-20}" -t "${T:-15}")

command -v ngircd >/dev/null || { echo "ngircd missing: apt-get install -y ngircd" >&2; exit 1; }
[[ -x $server ]] || { echo "$server missing: cmake --build $build --target quorvel-server" >&2; exit 1; }

work=$(mktemp -d)
pids=()
cleanup() {
    for pid in "${pids[@]}"; do kill "$pid" 2>/dev/null || true; done
    wait 2>/dev/null || true
    rm -rf "$work"
}
trap cleanup EXIT
free_port() { python3 -c 'import socket; s=socket.socket(); s.bind(("127.0.0.1",0)); print(s.getsockname()[1])'; }

irc_port=$(free_port)
sed "s/^Ports = .*/Ports = $irc_port/" "$peers/ngircd.conf" >"$work/ngircd.conf"
ngircd -n -f "$work/ngircd.conf" >"$work/ngircd.log" 2>&1 &
pids+=($!)
sleep 1
echo "ngircd:         $("${client_env[@]}" python3 "$peers/chatload.py" irc --port "$irc_port" --pid "${pids[0]}" "${load[@]}")"
kill "${pids[0]}"

lobby_port=$(free_port)
"$server" --listen 127.0.0.1 --port "$lobby_port" --http-port 0 --db "$work/lobby.sqlite" \
    --registration open --registration-per-hour 1000000 --hash-cost minimal --max-connections-per-address 100000 \
    --log-level warning >"$work/lobby.log" 2>&1 &
pids+=($!)
for _ in $(seq 100); do grep -q 'lobby listening' "$work/lobby.log" && break; sleep 0.1; done
echo "quorvel-server: $("${client_env[@]}" python3 "$peers/chatload.py" lobby --port "$lobby_port" --pid "${pids[1]}" "${load[@]}")"
