#!/usr/bin/env bash
# Runs the real program from a copy of its folder on a private display and reports
#  - its CPU use while it waits between captures (one minute at the default 300-second interval),
#  - its resident memory over many captures (one a second), to see whether it grows.
# Usage: bench/soak/run.sh [CAPTURES]   (default 500; build first with KV_TESTS=ON scripts/build)
set -euo pipefail
root=$(cd "$(dirname "$0")/../.." && pwd)
captures=${1:-500}

if [ "${KV_SOAK_INNER:-}" != 1 ]; then
    export KV_SOAK_INNER=1
    exec "$root/tests/support/xvfb-run.sh" --size 1920x1080 -- "$0" "$captures"
fi

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
build=${KV_BUILD_DIR:-$root/build}
cp -r "$build/Kestrelview" "$work/app"
bin=$work/app/bin
pictures="$bin/Screen Images"

write_prefs() { # interval
    printf '%s\n' "<pInterval>$1</pInterval>" "<pDestination>Screen Images</pDestination>" \
        "<pQuality>75</pQuality>" "<pUpdateAtStartup>FALSE</pUpdateAtStartup>" \
        "<pShowCountdown>TRUE</pShowCountdown>" "<pUseSpeech>FALSE</pUseSpeech>" \
        "<pTextToSpeak>Say Cheese</pTextToSpeak>" "<pUseCamera>FALSE</pUseCamera>" \
        "<pUseScreen>TRUE</pUseScreen>" "<pThreeSecondWarning>TRUE</pThreeSecondWarning>" \
        "<pCamImgSize>MEDIUM</pCamImgSize>" "<pPrimaryOnly>FALSE</pPrimaryOnly>" \
        "<pHideWindow>FALSE</pHideWindow>" >"$bin/KestrelviewPreferences.ini"
}
cpu_ticks() { awk '{print $14 + $15}' "/proc/$1/stat"; }
rss_kb() { awk '/^VmRSS/ {print $2}' "/proc/$1/status"; }
count() { find "$pictures" -name '*.jpg' 2>/dev/null | wc -l; }
wait_for_count() { # n pid
    while [ "$(count)" -lt "$1" ]; do
        kill -0 "$2" 2>/dev/null || { echo "the program ended early" >&2; exit 1; }
        sleep 0.5
    done
}

# The desktop shows something that compresses like a photograph.
convert -size 1920x1080 -seed 7 plasma:fractal "$work/desktop.png"
"$build/bench/capture/capture_bench" --paint "$work/desktop.png" --memory >/dev/null

write_prefs 300
"$bin/kestrelview" &
app=$!
sleep 5
before=$(cpu_ticks $app)
sleep 60
after=$(cpu_ticks $app)
kill $app
wait $app 2>/dev/null || true
hz=$(getconf CLK_TCK)
idle=$(awk -v t=$((after - before)) -v hz="$hz" 'BEGIN { printf "%.3f", 100 * t / hz / 60 }')
echo "idle CPU, one minute between captures: ${idle}% of one core (target below 0.5%)"

write_prefs 1
"$bin/kestrelview" &
app=$!
wait_for_count 20 $app
rss_early=$(rss_kb $app)
wait_for_count "$captures" $app
rss_late=$(rss_kb $app)
kill $app
wait $app 2>/dev/null || true
growth=$(awk -v a="$rss_early" -v b="$rss_late" 'BEGIN { printf "%.3f", b / a }')
echo "resident memory after 20 captures: ${rss_early} kB; after ${captures}: ${rss_late} kB;" \
    "ratio ${growth} (target: no growth, about 1.0)"
