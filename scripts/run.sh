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

begin_run run
start_lobby "$run_dir"
echo "lobby server on 127.0.0.1:$port, web pages on http://127.0.0.1:$web_port/ (log: $run_dir/server.log)"

# A client logged in automatically, with the stand-in game.
start_client() {
    local name=$1 home="$run_dir/$1"
    mkdir -p "$home/RogueSpear" "$home/wine"
    # The stand-in game, started by the client when the player hosts or joins a game; it plays
    # rounds of a minute and writes a results log after each, which the client uploads. The
    # game knows the player by his lobby name (from the Wine prefix's registry). It runs under
    # the name roguespear.exe, by which the client finds it without X11.
    cp build/tools/fakegame/game/roguespear.exe "$home/RogueSpear/fakegame"
    printf '#!/bin/bash\nexec -a "$0" "$(dirname "$0")/fakegame" "$@" -round 60 -player %s:1:20\n' \
        "$name" \
        >"$home/RogueSpear/roguespear.exe"
    chmod +x "$home/RogueSpear/roguespear.exe"
    printf 'WINE REGISTRY Version 2\n\n[Software\\\\Red Storm Entertainment\\\\Rogue Spear] 0\n"MultiplayerPlayerName"="%s"\n' \
        "$name" >"$home/wine/system.reg"
    start_logged_in_client "$run_dir" "$name" --web "127.0.0.1:$web_port" \
        --avatars "http://127.0.0.1:$web_port"
    echo "client $name started (log: $home/client.log)"
}

start_client player1
if ((second)); then
    start_client player2
fi
wait "${pids[1]}"
