#!/usr/bin/env bash
# Runs the slideshow benchmark on photo-like pictures: 100 captures, screen and camera mixed,
# through the program's assembly and through the equivalent ffmpeg command line.
# Usage: bench/slideshow/run.sh [build-dir] [--pictures N] [--runs N]
set -euo pipefail
source "$(dirname "$0")/../common.sh"
shift || true
bench=$(bench_binary slideshow/slideshow_bench)
photo=$(plasma_picture "$build/bench/slideshow/plasma-2400x1400.png" 2400x1400 11)
exec "$bench" "$photo" "$@"
