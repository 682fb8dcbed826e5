# Shared by the scripts that run this build's programs; source it from the source folder.

# start_lobby RUN_DIR [OPTION...]: starts quorvel-server on 127.0.0.1 with open registration,
# a new database in RUN_DIR and any further server options, its output in RUN_DIR/server.log.
# Once it listens, sets lobby_port, web_port and lobby_pid and adds the pid to the caller's pids array (for its clean-up). Fails,
# showing the log, when the server ends or does not listen within 10 s.
start_lobby() {
    local run_dir=$1
    shift
    : >"$run_dir/server.log" # there before the first look at it
    build/src/server/quorvel-server --listen 127.0.0.1 --port 0 --http-port 0 \
        --db "$run_dir/lobby.sqlite" --registration open "$@" >"$run_dir/server.log" 2>&1 &
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

# bot NAME ACTION...: a scripted player on the lobby at $port. It logs in, then sends each
# action half a second after the one before ("|" separates fields; "sleep N" waits N seconds),
# then stays. Its pid joins the caller's pids array.
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
    if action.startswith("sleep "):
        time.sleep(float(action[6:]))
        continue
    s.sendall(action.encode("cp1252").replace(b"|", SEP) + END)
time.sleep(3600)
PY
    pids+=($!)
}

# start_logged_in_client RUN_DIR NAME: the client, logged in automatically as NAME to the lobby
# at $port, with its own data and config folders and a game folder under RUN_DIR/NAME, its
# output in RUN_DIR/NAME/client.log. Its pid joins the caller's pids array.
start_logged_in_client() {
    local client_home="$1/$2"
    mkdir -p "$client_home/data/Quorvel" "$client_home/config" "$client_home/RogueSpear"
    printf '%s\r\nsecret\r\n' "$2" >"$client_home/data/Quorvel/user.txt"
    printf '0\r\n1\r\n0\r\n0\r\n0\r\n%s\r\n\r\n' "$client_home/RogueSpear" \
        >"$client_home/data/Quorvel/settingRS.txt"
    XDG_DATA_HOME="$client_home/data" XDG_CONFIG_HOME="$client_home/config" \
        build/src/client/quorvel --lobby "127.0.0.1:$port" >"$client_home/client.log" 2>&1 &
    pids+=($!)
}
