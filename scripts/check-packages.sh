#!/usr/bin/env bash
# Builds the Debian packages of a build folder (default: build) and checks them: control data,
# contents, the desktop entry, the AppStream metainfo, the systemd unit (verified, and its
# command run against the packaged server), and lintian's errors.
set -euo pipefail
cd "$(dirname "$0")/.."
build=$(realpath "${1:-build}")

rm -f "$build"/quorvel*.deb
(cd "$build" && cpack -G DEB >/dev/null 2>&1)
client=$(ls "$build"/quorvel_*.deb)
server=$(ls "$build"/quorvel-server_*.deb)
work=$(mktemp -d)
server_pid=""
cleanup() {
    [[ -n $server_pid ]] && kill "$server_pid" 2>/dev/null
    rm -rf "$work"
}
trap cleanup EXIT

for deb in "$client" "$server"; do
    dpkg-deb --info "$deb" >/dev/null
    dpkg-deb -x "$deb" "$work/root"
done
for f in usr/bin/quorvel usr/share/applications/org.quorvel.Quorvel.desktop \
    usr/share/metainfo/org.quorvel.Quorvel.metainfo.xml \
    usr/share/icons/hicolor/scalable/apps/quorvel.svg usr/share/polkit-1/actions/org.quorvel.update.policy \
    usr/bin/quorvel-server usr/lib/systemd/system/quorvel-server.service; do
    [[ -e $work/root/$f ]] || { echo "missing from the packages: /$f" >&2; exit 1; }
done
dpkg-deb --field "$server" Depends | grep -q adduser
[[ $("$work/root/usr/bin/quorvel" --version) == "quorvel "* ]]

desktop-file-validate "$work/root/usr/share/applications/org.quorvel.Quorvel.desktop"
appstreamcli validate --no-net --explain "$work/root/usr/share/metainfo/org.quorvel.Quorvel.metainfo.xml"
unit=$work/root/usr/lib/systemd/system/quorvel-server.service
# Verified as installed, but with the program where the package was unpacked.
mkdir -p "$work/unit"
sed "s#/usr/bin/#$work/root/usr/bin/#" "$unit" >"$work/unit/quorvel-server.service"
systemd-analyze verify "$work/unit/quorvel-server.service"

# The unit's command, with the packaged program, a state folder of its own and free ports.
state=$work/state
mkdir -p "$state"
command=$(sed -n 's/^ExecStart=//p' "$unit")
command=${command//\/var\/lib\/quorvel-server/$state}
command=${command/\/usr\/bin\//$work\/root\/usr\/bin\/}
command=${command/--port 20000/--port 0}
command=${command/--http-port 80/--http-port 0}
$command >"$work/server.out" 2>&1 &
server_pid=$!
for _ in $(seq 100); do
    grep -q "^web listening on" "$work/server.out" && break
    sleep 0.1
done
grep -q "^web listening on" "$work/server.out" || { cat "$work/server.out" >&2; exit 1; }

if command -v lintian >/dev/null; then
    lintian --fail-on error --tag-display-limit 0 "$client" "$server"
fi
echo "packages ok: $(basename "$client") $(basename "$server")"
