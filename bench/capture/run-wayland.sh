#!/usr/bin/env bash
# Runs the capture benchmark through the Screenshot portal on a headless Wayland desktop of its
# own: two outputs, 1280x800 and 1024x768. Usage: bench/capture/run-wayland.sh [build-dir] [--runs N]
set -euo pipefail
root=$(cd "$(dirname "$0")/../.." && pwd)
build=${1:-$root/build}
shift || true
bench=$build/bench/capture/capture_bench
[ -x "$bench" ] || { echo "run-wayland.sh: build with KV_TESTS=ON first ($bench missing)" >&2; exit 2; }
exec "$root/tests/support/wayland-session.sh" -- "$bench" --portal "$@"
