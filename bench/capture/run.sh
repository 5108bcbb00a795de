#!/usr/bin/env bash
# Runs the capture benchmark on a display of its own: two monitors, 1920x1080 and 3840x2160,
# showing a photo-like plasma picture. Usage: bench/capture/run.sh [build-dir] [--runs N]
set -euo pipefail
source "$(dirname "$0")/../common.sh"
shift || true
bench=$(bench_binary capture/capture_bench)
picture=$(plasma_picture "$build/bench/capture/plasma-5760x2160.png" 5760x2160 7)

exec "$root/tests/support/xvfb-run.sh" --size 5760x2160 \
    --monitor '*A:1920x1080+0+0' --monitor B:3840x2160+1920+0 -- \
    bash -c '"$2" --paint "$1" --memory && "$2" "${@:3}"' _ "$picture" "$bench" "$@"
