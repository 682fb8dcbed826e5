#!/usr/bin/env bash
# Runs a command on an X display and an accessibility bus of its own: Xvfb with a window manager
# (which gives a window the keyboard as a desktop does), a new session bus, and the
# accessibility bus launcher on it, as a desktop has them for a screen reader. All of them end
# with the command. Exits 77 (skipped) where a part is not installed.
set -euo pipefail
for tool in xvfb-run dbus-run-session /usr/libexec/at-spi-bus-launcher openbox; do
    if ! command -v "$tool" >/dev/null; then
        echo "SKIP: $tool is not installed (scripts/setup.sh installs it)"
        exit 77
    fi
done
if ! /usr/bin/python3 -c 'import pyatspi' 2>/dev/null; then
    echo "SKIP: python3-pyatspi is not installed (scripts/setup.sh installs it)"
    exit 77
fi
# In a network of its own where root may have one, so that the game port the client hosts on
# is this test's alone.
if [[ -z ${QUORVEL_A11Y_NETNS:-} ]] && unshare --net true 2>/dev/null; then
    export QUORVEL_A11Y_NETNS=1
    exec unshare --net bash -c 'ip link set lo up && exec "$0" "$@"' "$0" "$@"
fi
# shellcheck disable=SC2016 # expanded by the inner shell
exec xvfb-run -a -s "-screen 0 1280x1024x24" dbus-run-session -- bash -c '
    /usr/libexec/at-spi-bus-launcher --launch-immediately 2>/dev/null &
    launcher=$!
    openbox --sm-disable >/dev/null 2>&1 &
    manager=$!
    trap "kill \$launcher \$manager 2>/dev/null; wait \$launcher \$manager 2>/dev/null" EXIT
    "$@"' session "$@"
