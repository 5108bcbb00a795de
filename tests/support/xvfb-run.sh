#!/usr/bin/env bash
# Runs a command on a private Xvfb display of its own.
# Usage: xvfb-run.sh [--size WxH] [--monitor NAME:WxH+X+Y]... -- command [args...]
# Monitors are RandR 1.5 monitors over the one Xvfb screen; a NAME with a leading * is primary.
set -euo pipefail
size=1600x1000
monitors=()
while [ $# -gt 0 ]; do
    case $1 in
        --size) size=$2; shift 2 ;;
        --monitor) monitors+=("$2"); shift 2 ;;
        --) shift; break ;;
        *) break ;;
    esac
done

fdfile=$(mktemp)
Xvfb -displayfd 3 -screen 0 "${size}x24" -noreset -nolisten tcp 3>"$fdfile" 2>/dev/null &
xvfb_pid=$!
cleanup() { kill "$xvfb_pid" 2>/dev/null || true; wait "$xvfb_pid" 2>/dev/null || true; rm -f "$fdfile"; }
trap cleanup EXIT
for _ in $(seq 200); do
    grep -q '[0-9]' "$fdfile" 2>/dev/null && break
    sleep 0.05
done
DISPLAY=":$(tr -dc 0-9 <"$fdfile")"
export DISPLAY

output=screen # the first monitor takes over Xvfb's one output, the others are virtual
for monitor in "${monitors[@]}"; do
    name=${monitor%%:*}
    geometry=${monitor#*:}
    width=${geometry%%x*}
    rest=${geometry#*x}
    height=${rest%%+*}
    offset=${rest#*+}
    xrandr --setmonitor "$name" "$width/$((width / 4))x$height/$((height / 4))+$offset" "$output" >/dev/null
    output=none
done

# a developer's own Wayland session must not steer the program away from this display
unset WAYLAND_DISPLAY
export XDG_SESSION_TYPE=x11
export XDG_RUNTIME_DIR=${XDG_RUNTIME_DIR:-$(mktemp -d)}
"$@"
