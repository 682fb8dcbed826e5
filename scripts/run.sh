#!/usr/bin/env bash
# Installs what is missing, builds QUORVEL and starts a lobby server on loopback with a client
# logged in to it. Each client gets its own data and config folders under the run folder, so
# nothing of the user's own setup is touched.
#   scripts/run.sh            the server and one client, logged in as "player1"
#   scripts/run.sh --second   and a second client, logged in as "player2"
# Ctrl+C (or closing the clients) stops everything.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/lib.sh

second=0
for arg in "$@"; do
    case $arg in
    --second) second=1 ;;
    -h | --help)
        sed -n '2,7p' "$0"
        exit 0
        ;;
    *)
        echo "unknown option: $arg" >&2
        exit 2
        ;;
    esac
done

bash scripts/setup.sh
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build build -j "$(nproc)" --target quorvel quorvel-server fakegame

run_dir=$(mktemp -d "${TMPDIR:-/tmp}/quorvel-run.XXXXXX")
pids=()
cleanup() {
    for pid in "${pids[@]}"; do
        kill "$pid" 2>/dev/null || true
    done
}
trap cleanup EXIT INT TERM

start_lobby "$run_dir"
port=$lobby_port
echo "lobby server on 127.0.0.1:$port, web pages on http://127.0.0.1:$web_port/ (log: $run_dir/server.log)"

# A client with saved credentials and "Auto login" ticked.
start_client() {
    local name=$1 home="$run_dir/$1"
    mkdir -p "$home/data/Quorvel" "$home/config" "$home/RogueSpear"
    printf '%s\r\n%s\r\n' "$name" "secret-$name" >"$home/data/Quorvel/user.txt"
    # Autostart, auto login, sounds, stats-reset key, its key code, Rogue Spear and Black Ops
    # folders.
    printf '0\r\n1\r\n0\r\n0\r\n0\r\n%s\r\n\r\n' "$home/RogueSpear" \
        >"$home/data/Quorvel/settingRS.txt"
    # The stand-in game, started by the client when the player hosts or joins a game; it plays
    # rounds of a minute and writes a results log after each, which the client uploads. The
    # game knows the player by his lobby name (from the Wine prefix's registry). It runs under
    # the name roguespear.exe, by which the client finds it without X11.
    cp build/tools/fakegame/game/roguespear.exe "$home/RogueSpear/fakegame"
    printf '#!/bin/bash\nexec -a "$0" "$(dirname "$0")/fakegame" "$@" -round 60 -player %s:1:20\n' \
        "$name" \
        >"$home/RogueSpear/roguespear.exe"
    chmod +x "$home/RogueSpear/roguespear.exe"
    mkdir -p "$home/wine"
    printf 'WINE REGISTRY Version 2\n\n[Software\\\\Red Storm Entertainment\\\\Rogue Spear] 0\n"MultiplayerPlayerName"="%s"\n' \
        "$name" >"$home/wine/system.reg"
    WINEPREFIX="$home/wine" XDG_DATA_HOME="$home/data" XDG_CONFIG_HOME="$home/config" \
        build/src/client/quorvel --lobby "127.0.0.1:$port" --web "127.0.0.1:$web_port" \
        --avatars "http://127.0.0.1:$web_port" >"$home/client.log" 2>&1 &
    pids+=($!)
    echo "client $name started (log: $home/client.log)"
}

start_client player1
if ((second)); then
    start_client player2
fi
wait "${pids[1]}"
