#!/usr/bin/env bash
# Runs a command inside a throw-away headless Wayland desktop of its own: a private session bus and
# XDG_RUNTIME_DIR, headless sway with two outputs filled with solid colours, PipeWire (which the
# wlroots portal needs to start at all), and xdg-desktop-portal with its wlroots and gtk back ends
# (the gtk one supplies the Access part without which no Screenshot interface is offered).
# Everything started here is stopped again by pid; the exit status is the command's.
# Usage: wayland-session.sh [--portal working|refusing|stalling|absent] -- command [args...]
#   refusing: the screenshot tool behind the portal fails, so every request is answered "no";
#             each refusal adds a line to the file named by KV_WL_REFUSALS
#   stalling: the screenshot tool never ends while the portal runs, so no request is answered
#   absent:   xdg-desktop-portal runs with no back end, so there is no Screenshot interface
# The outputs (also exported to the command):
#   KV_WL_OUT1=1280x800 KV_WL_BG1=#336699 at 0,0   KV_WL_OUT2=1024x768 KV_WL_BG2=#cc6633 beside it
set -u
portal=working
while [ $# -gt 0 ]; do
    case $1 in
        --portal) portal=$2; shift 2 ;;
        --) shift; break ;;
        *) break ;;
    esac
done
[ $# -gt 0 ] || { echo "usage: $0 [--portal working|refusing|stalling|absent] -- COMMAND [ARGS...]" >&2; exit 2; }
: "${KV_WL_OUT1:=1280x800}" "${KV_WL_OUT2:=1024x768}" "${KV_WL_BG1:=#336699}" "${KV_WL_BG2:=#cc6633}"
export KV_WL_OUT1 KV_WL_OUT2 KV_WL_BG1 KV_WL_BG2

# ------------------------------------------------------------------ outer stage: a bus of its own
if [ -z "${_KV_WL_INNER:-}" ]; then
    for tool in dbus-run-session dbus-send sway swaymsg grim pipewire wireplumber \
                /usr/libexec/xdg-desktop-portal /usr/libexec/xdg-desktop-portal-wlr; do
        command -v "$tool" >/dev/null || { echo "wayland-session: missing $tool" >&2; exit 2; }
    done
    S=$(mktemp -d /tmp/kv-wayland.XXXXXX) || exit 2
    chmod 711 "$S" # sway, run unprivileged when we are root, must pass through
    mkdir -p "$S/config" "$S/data" "$S/state" "$S/cache" "$S/logs" "$S/bin" "$S/portals"
    mkdir -m 700 "$S/runtime" "$S/sway-runtime"
    [ "$(id -u)" = 0 ] && chown nobody: "$S/sway-runtime"
    [ -e /tmp/out.png ] && shot_existed=1 || shot_existed=0
    export _KV_WL_INNER=1 _KV_WL_S="$S" _KV_WL_PORTAL="$portal"
    export XDG_RUNTIME_DIR="$S/runtime" XDG_CONFIG_HOME="$S/config" XDG_DATA_HOME="$S/data" \
        XDG_STATE_HOME="$S/state" XDG_CACHE_HOME="$S/cache" \
        XDG_CURRENT_DESKTOP=sway XDG_SESSION_DESKTOP=sway XDG_SESSION_TYPE=wayland NO_AT_BRIDGE=1
    export DBUS_SYSTEM_BUS_ADDRESS="unix:path=$S/no-system-bus" # never reach the machine's services
    unset DISPLAY WAYLAND_DISPLAY SWAYSOCK DBUS_SESSION_BUS_ADDRESS QT_QPA_PLATFORM

    dbus-run-session -- "$0" "$@" 2> >(grep -v 'Failed to set fd limit' >&2) &
    session=$!
    trap 'p=$(cat "$S/inner.pid" 2>/dev/null) && kill -TERM "$p" 2>/dev/null' INT TERM HUP
    while :; do wait "$session"; rc=$?; kill -0 "$session" 2>/dev/null || break; done
    # dbus-run-session only signals its bus; wait until that process is really gone
    if bus_pid=$(cat "$S/bus.pid" 2>/dev/null); then
        for _ in $(seq 50); do kill -0 "$bus_pid" 2>/dev/null || break; sleep 0.1; done
    fi
    # the wlroots portal writes every shot to this one file
    [ "$shot_existed" = 0 ] && rm -f /tmp/out.png
    if grep -q " $S/runtime/doc " /proc/mounts; then # the document portal's FUSE mount
        fusermount3 -u -z "$S/runtime/doc" 2>/dev/null || umount -l "$S/runtime/doc"
    fi
    if [ -e "$S/setup-failed" ]; then echo "wayland-session: setup failed, logs in $S/logs" >&2
    else rm -rf --one-file-system "$S"; fi
    exit "$rc"
fi

# ------------------------------------------------------------------ inner stage, on the private bus
S=$_KV_WL_S
L=$S/logs
PIDS=()
CMD=
echo $$ >"$S/inner.pid"
fail() { echo "wayland-session: $*" >&2; touch "$S/setup-failed"; exit 3; }
bus() { dbus-send --session --print-reply --dest=org.freedesktop.DBus / "org.freedesktop.DBus.$1" "${@:2}"; }
running() { [ -r "/proc/$1/status" ] && ! grep -q '^State:[[:space:]]*Z' "/proc/$1/status" 2>/dev/null; }

cleanup() {
    local p n alive i
    [ -n "$CMD" ] && kill -TERM "$CMD" 2>/dev/null
    # services that the bus started are not our children: ask the bus for every peer's pid
    for n in $(bus ListNames 2>/dev/null | sed -n 's/.*string "\(:[^"]*\)".*/\1/p'); do
        p=$(bus GetConnectionUnixProcessID "string:$n" 2>/dev/null | sed -n 's/.*uint32 //p')
        [ -n "$p" ] && [ "$p" != $$ ] && PIDS+=("$p")
    done
    for ((i = ${#PIDS[@]} - 1; i >= 0; i--)); do kill -TERM "${PIDS[$i]}" 2>/dev/null; done
    for _ in $(seq 50); do
        alive=0
        for p in "${PIDS[@]}"; do running "$p" && alive=1; done
        [ $alive = 0 ] && break
        sleep 0.1
    done
    for p in "${PIDS[@]}"; do running "$p" && kill -KILL "$p" 2>/dev/null; done
    wait 2>/dev/null
}
trap cleanup EXIT
trap 'exit 143' INT TERM HUP
bus GetConnectionUnixProcessID string:org.freedesktop.DBus 2>/dev/null | sed -n 's/.*uint32 //p' >"$S/bus.pid"

wait_for() { # SECONDS WHAT COMMAND...
    local t=$1 what=$2 i
    shift 2
    for ((i = 0; i < t * 20; i++)); do "$@" >/dev/null 2>&1 && return 0; sleep 0.05; done
    fail "timeout waiting for $what"
}
pixel_is() { # X Y rrggbb, one composited pixel
    [ "$(grim -g "$1,$2 1x1" -t ppm - 2>/dev/null | tail -c 3 | od -An -tx1 | tr -d ' \n')" = "$3" ]
}
has_name() { bus NameHasOwner "string:$1" 2>/dev/null | grep -q 'boolean true'; }
hex() { echo "${1#\#}" | tr A-F a-f; }

# sway: headless, software rendering, no XWayland; sway refuses to run as root
W1=${KV_WL_OUT1%x*}
SR=$S/sway-runtime
cat >"$S/sway.cfg" <<CFG
xwayland disable
output HEADLESS-1 mode $KV_WL_OUT1 position 0 0 bg $KV_WL_BG1 solid_color
output HEADLESS-2 mode $KV_WL_OUT2 position $W1 0 bg $KV_WL_BG2 solid_color scale ${KV_WL_SCALE2:-1}
CFG
chmod 644 "$S/sway.cfg"
export WLR_BACKENDS=headless WLR_LIBINPUT_NO_DEVICES=1 WLR_RENDERER=pixman WLR_HEADLESS_OUTPUTS=1
as_sway=()
[ "$(id -u)" = 0 ] && as_sway=(setpriv --reuid=nobody --regid="$(id -g nobody)" --clear-groups --)
XDG_RUNTIME_DIR=$SR "${as_sway[@]}" sway -c "$S/sway.cfg" >"$L/sway.log" 2>&1 &
PIDS+=($!)
wait_for 10 "sway's sockets" sh -c "ls $SR/sway-ipc.*.sock && ls $SR/wayland-[0-9]"
SWAYSOCK=$(ls "$SR"/sway-ipc.*.sock | head -1)
WAYLAND_DISPLAY=$(cd "$SR" && ls -d wayland-[0-9]* | grep -v lock | head -1)
export SWAYSOCK WAYLAND_DISPLAY
# the runtime folder stays the caller's (the bus, PipeWire and Qt check its owner)
ln -s "$SR/$WAYLAND_DISPLAY" "$XDG_RUNTIME_DIR/$WAYLAND_DISPLAY"
wait_for 10 "sway's IPC" swaymsg -t get_version
swaymsg create_output >/dev/null || fail "sway could not make the second output"
swaymsg focus output HEADLESS-1 >/dev/null
wait_for 10 "the first output's colour" pixel_is 1 1 "$(hex "$KV_WL_BG1")"
wait_for 10 "the second output's colour" pixel_is $((W1 + 1)) 1 "$(hex "$KV_WL_BG2")"
dbus-update-activation-environment WAYLAND_DISPLAY SWAYSOCK NO_AT_BRIDGE

pipewire >"$L/pipewire.log" 2>&1 &
PIDS+=($!)
wait_for 10 "PipeWire" test -S "$XDG_RUNTIME_DIR/pipewire-0"
wireplumber >"$L/wireplumber.log" 2>&1 &
PIDS+=($!)

# the portal back ends, as the mode asks
portal_path=$PATH
case $_KV_WL_PORTAL in
    working) cp /usr/share/xdg-desktop-portal/portals/{wlr,gtk}.portal "$S/portals/" ;;
    refusing)
        cp /usr/share/xdg-desktop-portal/portals/{wlr,gtk}.portal "$S/portals/"
        export KV_WL_REFUSALS=$S/refusals
        printf '#!/bin/sh\necho no >>"%s"\nexit 1\n' "$KV_WL_REFUSALS" >"$S/bin/grim" && chmod +x "$S/bin/grim"
        portal_path=$S/bin:$PATH ;;
    stalling)
        cp /usr/share/xdg-desktop-portal/portals/{wlr,gtk}.portal "$S/portals/"
        printf '#!/bin/sh\nwhile kill -0 $PPID 2>/dev/null; do sleep 0.2; done\n' >"$S/bin/grim" && chmod +x "$S/bin/grim"
        portal_path=$S/bin:$PATH ;;
    absent) ;;
    *) fail "unknown portal mode $_KV_WL_PORTAL" ;;
esac
PATH=$portal_path /usr/libexec/xdg-desktop-portal-wlr -r >"$L/xdpw.log" 2>&1 &
PIDS+=($!)
wait_for 10 "the wlroots portal" has_name org.freedesktop.impl.portal.desktop.wlr
XDG_DESKTOP_PORTAL_DIR=$S/portals /usr/libexec/xdg-desktop-portal -r >"$L/xdg-desktop-portal.log" 2>&1 &
PIDS+=($!)
wait_for 10 "xdg-desktop-portal" has_name org.freedesktop.portal.Desktop

"$@" &
CMD=$!
wait "$CMD"
rc=$?
CMD=
exit "$rc"
