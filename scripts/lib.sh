# shellcheck shell=bash
# Shared by the scripts that run this build's programs; source it from the source folder.

# begin_run NAME: a new run folder (run_dir) for NAME's logs and data, and an empty pids array
# whose processes are ended, and waited for, when the script exits or is interrupted.
begin_run() {
    run_dir=$(mktemp -d "${TMPDIR:-/tmp}/quorvel-$1.XXXXXX")
    pids=()
    trap end_run EXIT
    trap 'exit 130' INT TERM
}

end_run() {
    local pid
    for pid in "${pids[@]}"; do
        kill "$pid" 2>/dev/null || true
    done
    for pid in "${pids[@]}"; do
        wait "$pid" 2>/dev/null || true
    done
}

# start_xvfb WIDTHxHEIGHT: a virtual X display of that size on a free display number, exported
# as DISPLAY once it accepts clients. Its pid joins pids.
start_xvfb() {
    local display_file="$run_dir/display"
    : >"$display_file"
    Xvfb -displayfd 3 -screen 0 "$1x24" 3>"$display_file" >/dev/null 2>&1 &
    pids+=($!)
    for _ in $(seq 100); do
        if [[ -s $display_file ]]; then
            DISPLAY=":$(head -1 "$display_file")"
            export DISPLAY
            return 0
        fi
        sleep 0.1
    done
    echo "Xvfb did not start" >&2
    return 1
}

# start_lobby RUN_DIR [OPTION...]: starts quorvel-server on 127.0.0.1 with open registration
# (uncapped: every client of a run registers from loopback),
# a new database in RUN_DIR and any further server options, its output in RUN_DIR/server.log.
# Once it listens, sets port (also as lobby_port), web_port and lobby_pid, and adds the pid to
# pids. Fails, showing the log, when the server ends or does not listen within 10 s.
start_lobby() {
    local run_dir=$1
    shift
    : >"$run_dir/server.log" # there before the first look at it
    build/src/server/quorvel-server --listen 127.0.0.1 --port 0 --http-port 0 \
        --db "$run_dir/lobby.sqlite" --registration open --registration-per-hour 1000000 "$@" >"$run_dir/server.log" 2>&1 &
    lobby_pid=$!
    pids+=("$lobby_pid")
    lobby_port=""
    for _ in $(seq 100); do
        lobby_port=$(sed -n 's/^lobby listening on .*:\([0-9]\+\)$/\1/p' "$run_dir/server.log")
        web_port=$(sed -n 's/^web listening on .*:\([0-9]\+\)$/\1/p' "$run_dir/server.log")
        if [[ -n $lobby_port && -n $web_port ]]; then
            port=$lobby_port
            return 0
        fi
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

# start_logged_in_client RUN_DIR NAME [OPTION...]: the client, logged in automatically as NAME
# to the lobby at $port, with any further client options. Its home is RUN_DIR/NAME (data and
# config folders, a Rogue Spear folder, the Wine prefix "wine"; files put there before are
# kept), its output goes to RUN_DIR/NAME/client.log. Its pid joins pids.
start_logged_in_client() {
    local client_home="$1/$2" name=$2
    shift 2
    mkdir -p "$client_home/data/Quorvel" "$client_home/config" "$client_home/RogueSpear"
    printf '%s\r\nsecret-%s\r\n' "$name" "$name" >"$client_home/data/Quorvel/user.txt"
    # Autostart, auto login, sounds, stats-reset key, its key code, Rogue Spear and Black Ops
    # folders.
    printf '0\r\n1\r\n0\r\n0\r\n0\r\n%s\r\n\r\n' "$client_home/RogueSpear" \
        >"$client_home/data/Quorvel/settingRS.txt"
    WINEPREFIX="$client_home/wine" XDG_DATA_HOME="$client_home/data" \
        XDG_CONFIG_HOME="$client_home/config" \
        build/src/client/quorvel --lobby "127.0.0.1:$port" "$@" >"$client_home/client.log" 2>&1 &
    pids+=($!)
}

# window_at NAME: sets x and y to the top left corner of the window titled exactly NAME.
window_at() {
    local id
    for _ in $(seq 100); do
        id=$(xdotool search --name "^$1\$" 2>/dev/null | head -1) && [[ -n $id ]] && break
        sleep 0.1
    done
    eval "$(xdotool getwindowgeometry --shell "$id")"
    # shellcheck disable=SC2034 # read by the callers
    x=$X y=$Y
}

# screenshot OUTPUT.png [LEFT TOP WIDTH HEIGHT]: the display, or that part of it, as a PNG.
screenshot() {
    local out=$1
    shift
    if (($# == 4)); then
        xwd -root -silent | xwdtopnm 2>/dev/null |
            pnmcut -left "$1" -top "$2" -width "$3" -height "$4" | pnmtopng >"$out"
    else
        xwd -root -silent | xwdtopnm 2>/dev/null | pnmtopng >"$out"
    fi
    echo "screenshot written to $out"
}
