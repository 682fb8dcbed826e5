#!/usr/bin/env bash
# Installs what is missing, builds QUORVEL, runs every test and builds and checks the Debian
# packages; then the same tests again in a build with AddressSanitizer and
# UndefinedBehaviorSanitizer.
#   scripts/test.sh            both builds
#   scripts/test.sh --quick    the normal build only
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/setup.sh

# Every process this run starts inherits this mark, so that what is still running at the end
# can be told from other people's processes on the same machine.
export QUORVEL_TEST_RUN="$$.$(date +%s%N)"

# The processes that carry the mark, other than this script and the subshell asking; wine's
# server and a stopping X server get a few seconds to go.
leftovers() {
    local found=() tries pid environ
    for ((tries = 0; tries < 10; ++tries)); do
        found=()
        for environ in /proc/[0-9]*/environ; do
            pid=${environ#/proc/}
            pid=${pid%/environ}
            [[ $pid == "$$" || $pid == "$BASHPID" ]] && continue
            if grep -qzx "QUORVEL_TEST_RUN=$QUORVEL_TEST_RUN" "$environ" 2>/dev/null; then
                found+=("$pid $(tr '\0' ' ' <"/proc/$pid/cmdline" 2>/dev/null)")
            fi
        done
        ((${#found[@]} == 0)) && return 0
        sleep 0.5
    done
    printf '%s\n' "${found[@]}"
}

jobs=$(nproc)
run_suite() {
    local dir=$1
    shift
    cmake -S . -B "$dir" -G Ninja -DQUORVEL_WERROR=ON "$@"
    cmake --build "$dir" -j "$jobs"
    ctest --test-dir "$dir" --output-on-failure -j "$jobs"
}

echo "== Build and test"
run_suite build -DCMAKE_BUILD_TYPE=RelWithDebInfo

echo "== Build and check the Debian packages"
bash scripts/check-packages.sh build

if [[ ${1:-} != "--quick" ]]; then
    echo "== Build and test with AddressSanitizer and UndefinedBehaviorSanitizer"
    export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
    run_suite build-asan -DCMAKE_BUILD_TYPE=Debug -DQUORVEL_SANITIZE=ON -DQUORVEL_BENCH=OFF

    echo "== Fuzz the client's and the server's receive paths (libFuzzer, 30 s each)"
    cmake -S . -B build-fuzz -G Ninja -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_BUILD_TYPE=RelWithDebInfo \
        -DQUORVEL_FUZZ=ON -DQUORVEL_TESTS=OFF -DQUORVEL_BENCH=OFF
    cmake --build build-fuzz -j "$jobs" --target fuzz_dispatch fuzz_server
    mkdir -p build-fuzz/corpus build-fuzz/corpus-server
    build-fuzz/fuzz/fuzz_dispatch -max_total_time=30 -max_len=4096 build-fuzz/corpus
    build-fuzz/fuzz/fuzz_server -max_total_time=30 -max_len=4096 build-fuzz/corpus-server
fi

echo "== Processes left behind"
left=$(leftovers)
if [[ -n $left ]]; then
    echo "Still running after the tests:"
    echo "$left"
    exit 1
fi
echo "none"
