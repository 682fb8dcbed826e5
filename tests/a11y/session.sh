#!/usr/bin/env bash
# Runs a command on an X display and an accessibility bus of its own: Xvfb, a new session bus,
# and the accessibility bus launcher on it, as a desktop has them for a screen reader. All of
# them end with the command. Exits 77 (skipped) where a part is not installed.
set -euo pipefail
for tool in xvfb-run dbus-run-session /usr/libexec/at-spi-bus-launcher; do
    if ! command -v "$tool" >/dev/null; then
        echo "SKIP: $tool is not installed (scripts/setup.sh installs it)"
        exit 77
    fi
done
if ! /usr/bin/python3 -c 'import pyatspi' 2>/dev/null; then
    echo "SKIP: python3-pyatspi is not installed (scripts/setup.sh installs it)"
    exit 77
fi
# shellcheck disable=SC2016 # expanded by the inner shell
exec xvfb-run -a -s "-screen 0 1280x1024x24" dbus-run-session -- bash -c '
    /usr/libexec/at-spi-bus-launcher --launch-immediately 2>/dev/null &
    launcher=$!
    trap "kill \$launcher 2>/dev/null; wait \$launcher 2>/dev/null" EXIT
    "$@"' session "$@"
