#!/usr/bin/env bash
# Runs the capture benchmark through the Screenshot portal on a headless Wayland desktop of its
# own: two outputs, 1280x800 and 1024x768. Usage: bench/capture/run-wayland.sh [build-dir] [--runs N]
set -euo pipefail
source "$(dirname "$0")/../common.sh"
shift || true
bench=$(bench_binary capture/capture_bench)
exec "$root/tests/support/wayland-session.sh" -- "$bench" --portal "$@"
