# Shared by the scripts that run this build's programs; source it from the source folder.

# start_lobby RUN_DIR: starts quorvel-server on 127.0.0.1 with open registration and a new
# database in RUN_DIR, its output in RUN_DIR/server.log. Once it listens, sets lobby_port,
# web_port and lobby_pid and adds the pid to the caller's pids array (for its clean-up). Fails,
# showing the log, when the server ends or does not listen within 10 s.
start_lobby() {
    local run_dir=$1
    build/src/server/quorvel-server --listen 127.0.0.1 --port 0 --http-port 0 \
        --db "$run_dir/lobby.sqlite" --registration open >"$run_dir/server.log" 2>&1 &
    lobby_pid=$!
    pids+=("$lobby_pid")
    lobby_port=""
    for _ in $(seq 100); do
        lobby_port=$(sed -n 's/^lobby listening on .*:\([0-9]\+\)$/\1/p' "$run_dir/server.log")
        web_port=$(sed -n 's/^web listening on .*:\([0-9]\+\)$/\1/p' "$run_dir/server.log")
        [[ -n $lobby_port && -n $web_port ]] && return 0
        kill -0 "$lobby_pid" 2>/dev/null || break
        sleep 0.1
    done
    echo "the lobby server did not start:" >&2
    cat "$run_dir/server.log" >&2
    return 1
}
