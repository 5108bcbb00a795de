#!/usr/bin/env bash
# Runs the real program from a copy of its folder on a private display and reports
#  - its CPU use while it waits between captures (one minute at the default 300-second interval),
#    with every rule of "More ..." on,
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
# Every rule of the person's sake on, the idle one short enough to be away within the minute
# measured, when it looks for the person's return once a second.
write_policies() {
    printf '%s\n' "<pPauseWhenLocked>TRUE</pPauseWhenLocked>" "<pIdleMinutes>1</pIdleMinutes>" \
        "<pCaptureDays>Mon,Tue,Wed,Thu,Fri,Sat,Sun</pCaptureDays>" "<pCaptureHours>00:00-24:00</pCaptureHours>" \
        "<pPrivateWindows>vault;Private Browsing</pPrivateWindows>" "<pPrivateCamera>TRUE</pPrivateCamera>" \
        >"$bin/KestrelviewPolicies.ini"
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
write_policies
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
echo "idle CPU, one minute between captures, every rule of More ... on: ${idle}% of one core (target below 0.5%)"
# Nobody touches this display: the many captures must not stop for an absent person.
echo "<pIdleMinutes>0</pIdleMinutes>" >"$bin/KestrelviewPolicies.ini"

write_prefs 1
"$bin/kestrelview" &
app=$!
wait_for_count 20 $app
rss_early=$(rss_kb $app)
echo "resident memory after 20 captures: ${rss_early} kB"
# Samples along the way tell a plateau (allocator arenas of short-lived threads) from a leak.
rss_warm=
for n in $(seq 100 100 "$captures"); do
    wait_for_count "$n" $app
    rss=$(rss_kb $app)
    rss_warm=${rss_warm:-$rss}
    echo "  after $n: $rss kB"
done
wait_for_count "$captures" $app
rss_late=$(rss_kb $app)
kill $app
wait $app 2>/dev/null || true
ratio() { awk -v a="$1" -v b="$2" 'BEGIN { printf "%.3f", b / a }'; }
echo "after ${captures} / after 20: $(ratio "$rss_early" "$rss_late");" \
    "after ${captures} / after 100, once warm: $(ratio "${rss_warm:-$rss_early}" "$rss_late") (target: about 1.0)"
