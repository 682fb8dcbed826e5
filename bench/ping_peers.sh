#!/usr/bin/env bash
# Times "Refresh pings" against qstat on the same simulated game servers, in one run:
# starts fake_rs_servers.py, queries its servers with quakestat (under /usr/bin/time, median of
# QSTAT_RUNS) and then with bench_client_pings, stops the servers and prints both times and
# their ratio. Needs qstat (apt-get install qstat) and a built bench_client_pings.
#   bench/ping_peers.sh [build dir] [extra bench_client_pings arguments]
# Environment: PEERS_DIR (where fake_rs_servers.py lives), HOSTS (100), RTT ("50 80", ms),
# QSTAT_RUNS (3).
set -euo pipefail
cd "$(dirname "$0")/.."

build=${1:-build}
shift || true
peers=${PEERS_DIR:-/work/shared/peers}
hosts=${HOSTS:-100}
rtt=${RTT:-50 80}
runs=${QSTAT_RUNS:-3}
bench=$build/bench/bench_client_pings

command -v quakestat >/dev/null || { echo "quakestat missing: apt-get install -y qstat" >&2; exit 1; }
[[ -x $bench ]] || { echo "$bench missing: cmake --build $build --target bench_client_pings" >&2; exit 1; }

work=$(mktemp -d)
servers_pid=""
cleanup() {
    if [[ -n $servers_pid ]]; then
        kill "$servers_pid" 2>/dev/null || true
        wait "$servers_pid" 2>/dev/null || true
    fi
    rm -rf "$work"
}
trap cleanup EXIT

# shellcheck disable=SC2086 # RTT is two numbers
python3 "$peers/fake_rs_servers.py" --hosts "$hosts" --rtt $rtt --list "$work/servers.txt" \
    >"$work/servers.log" 2>&1 &
servers_pid=$!
for _ in $(seq 100); do
    grep -q '^ready' "$work/servers.log" && break
    kill -0 "$servers_pid" 2>/dev/null || { cat "$work/servers.log" >&2; exit 1; }
    sleep 0.1
done
grep -q '^ready' "$work/servers.log" || { echo "fake servers did not start" >&2; exit 1; }

for i in $(seq "$runs"); do
    /usr/bin/time -f %e -o "$work/qstat.$i" \
        quakestat -R -P -raw , -nh -default gps -f "$work/servers.txt" >"$work/qstat.out"
done
answered=$(grep -c '^GPS,[^,]*,[^,]*,' "$work/qstat.out" || true)

QUORVEL_PING_SERVERS=$work/servers.txt "$bench" --benchmark_filter=BM_RefreshPings \
    --benchmark_out="$work/bench.json" --benchmark_out_format=json "$@"

python3 - "$work" "$runs" "$answered" "$hosts" <<'EOF'
import json, statistics, sys
work, runs, answered, hosts = sys.argv[1], int(sys.argv[2]), sys.argv[3], sys.argv[4]
qstat = statistics.median(float(open(f'{work}/qstat.{i}').read()) for i in range(1, runs + 1))
rows = [b for b in json.load(open(f'{work}/bench.json'))['benchmarks']
        if b['name'].startswith('BM_RefreshPings') and not b.get('error_occurred')]
if not rows:
    sys.exit('the refresh did not complete')
ours = rows[0]['real_time'] / 1000  # milliseconds
print(f'qstat:   {qstat:.3f} s (median of {runs}, {answered}/{hosts} servers answered)')
print(f'refresh: {ours:.3f} s (mean of {rows[0]["iterations"]}, slowest ping '
      f'{rows[0].get("slowest_ping_ms", 0):.0f} ms)')
print(f'ratio:   {ours / qstat:.3f}')
EOF
