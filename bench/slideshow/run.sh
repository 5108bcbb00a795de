#!/usr/bin/env bash
# Runs the slideshow benchmark on photo-like pictures: 100 captures, screen and camera mixed,
# through the program's assembly and through the equivalent ffmpeg command line.
# Usage: bench/slideshow/run.sh [build-dir] [--pictures N] [--runs N]
set -euo pipefail
root=$(cd "$(dirname "$0")/../.." && pwd)
build=${1:-$root/build}
shift || true
bench=$build/bench/slideshow/slideshow_bench
[ -x "$bench" ] || { echo "run.sh: build with KV_TESTS=ON first ($bench missing)" >&2; exit 2; }

# Plasma takes a while; keep it beside the build for the next run.
photo=$build/bench/slideshow/plasma-2400x1400.png
if [ ! -f "$photo" ]; then
    echo "making the photo ..."
    convert -size 2400x1400 -seed 11 plasma:fractal "$photo"
fi
exec "$bench" "$photo" "$@"
