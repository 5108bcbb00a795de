#!/usr/bin/env bash
# Checks the Debian package: lintian finds nothing to warn of, its launcher entry and metainfo
# validate, it unpacks into a scratch root with everything in place, the manual page names every
# option that --help names, and the program installed there starts on a display of its own, keeps
# its files with the user, captures and quits through a later start.
# Usage: check-package.sh build/kestrelview_<version>_amd64.deb   (as root: it mounts the tree)
set -euo pipefail
deb=$(realpath "$1")
support=$(cd "$(dirname "$0")/../support" && pwd)
scratch=$(mktemp -d)
bus_pid=
cleanup() { [ -n "$bus_pid" ] && kill "$bus_pid" 2>/dev/null; rm -rf "$scratch"; }
trap cleanup EXIT
fail() { echo "package: $*" >&2; exit 1; }
[ "$(id -u)" -eq 0 ] || fail "needs root to mount the installed tree read-only: run it as root or through sudo"

lintian --fail-on error,warning "$deb" || fail "lintian found faults"

root=$scratch/root
dpkg -x "$deb" "$root"
id=com.kestrelview.Kestrelview
desktop-file-validate "$root/usr/share/applications/$id.desktop"
appstreamcli validate --no-net "$root/usr/share/metainfo/$id.metainfo.xml" >/dev/null
for size in 16 22 24 32 48 64 128 256; do
    icon=$root/usr/share/icons/hicolor/${size}x${size}/apps/$id.png
    file "$icon" | grep -q "$size x $size" || fail "no ${size}x${size} icon"
done
program=$root/usr/bin/kestrelview
manual=$(zcat "$root/usr/share/man/man1/kestrelview.1.gz" | sed 's/\\-/-/g') || fail "no manual page"
for option in $("$program" --help | grep -o -- '--[a-z-]*' | sort -u); do
    grep -q -- "$option" <<<"$manual" || fail "the manual page does not name $option"
done
depends=$(dpkg-deb -f "$deb" Depends)
for needed in libqt6widgets6 qt6-qpa-plugins; do
    grep -q "$needed" <<<"$depends" || fail "Depends lacks $needed: $depends"
done

# The installed program, in a read-only tree as on a real system, for a user of its own.
export HOME=$scratch/home XDG_RUNTIME_DIR=$scratch/run
unset XDG_CONFIG_HOME
mkdir -p "$HOME" "$XDG_RUNTIME_DIR"
chmod 700 "$XDG_RUNTIME_DIR"
read -r DBUS_SESSION_BUS_ADDRESS bus_pid < <(dbus-daemon --session --fork --print-address=1 --print-pid=1 | paste -sd' ')
export DBUS_SESSION_BUS_ADDRESS
"$support/xvfb-run.sh" -- bash -c '
    set -euo pipefail
    root=$1 program=$2
    unshare -m sh -c "mount --bind \"\$0\" \"\$0\" && mount -o remount,bind,ro \"\$0\" \"\$0\" && exec \"\$1\"" \
        "$root" "$program" &
    pid=$!
    settings=$HOME/.config/Kestrelview/KestrelviewPreferences.ini
    for _ in $(seq 300); do [ -s "$settings" ] && break; sleep 0.1; done
    [ -s "$settings" ] || { echo "package: no settings written" >&2; exit 1; }
    "$program" --capture-now
    pictures=$HOME/Pictures/Kestrelview/Screen\ Images
    for _ in $(seq 300); do [ -n "$(ls "$pictures" 2>/dev/null)" ] && break; sleep 0.1; done
    [ -n "$(ls "$pictures" 2>/dev/null)" ] || { echo "package: no picture taken" >&2; exit 1; }
    "$program" --quit
    wait "$pid"
' check "$root" "$program"
[ -s "$HOME/.config/Kestrelview/KestrelviewScreen.ini" ] || fail "the quit did not keep the window's place"
echo "package: $(basename "$deb") is good"
