#!/usr/bin/env bash
# Runs the capture benchmark on a display of its own: two monitors, 1920x1080 and 3840x2160,
# showing a photo-like plasma picture. Usage: bench/capture/run.sh [build-dir] [--runs N]
set -euo pipefail
root=$(cd "$(dirname "$0")/../.." && pwd)
build=${1:-$root/build}
shift || true
bench=$build/bench/capture/capture_bench
[ -x "$bench" ] || { echo "run.sh: build with KV_TESTS=ON first ($bench missing)" >&2; exit 2; }

# Plasma takes a while at this size; keep it beside the build for the next run.
picture=$build/bench/capture/plasma-5760x2160.png
if [ ! -f "$picture" ]; then
    echo "making the test picture ..."
    convert -size 5760x2160 -seed 7 plasma:fractal "$picture"
fi

exec "$root/tests/support/xvfb-run.sh" --size 5760x2160 \
    --monitor '*A:1920x1080+0+0' --monitor B:3840x2160+1920+0 -- \
    bash -c '"$2" --paint "$1" --memory && "$2" "${@:3}"' _ "$picture" "$bench" "$@"
