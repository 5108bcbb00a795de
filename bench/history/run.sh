#!/usr/bin/env bash
# Times the history on 20,000 capture files (the newest day's thumbnails, cold and from the
# shared cache, against Qt's own image reader) and a day's time-lapse (288 pictures of 1920x1080
# at 10 fps) against the ffmpeg command line, each in a process of its own.
# Usage: bench/history/run.sh [build-dir] [--pictures N]
set -euo pipefail
source "$(dirname "$0")/../common.sh"
shift || true
pictures=20000
[ "${1:-}" = --pictures ] && pictures=$2
bench=$(bench_binary history/history_bench)
photo=$(plasma_picture "$build/bench/history/plasma-2400x1400.png" 2400x1400 11)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export XDG_CACHE_HOME=$work/cache QT_QPA_PLATFORM=offscreen

# Prints the command's own line, then its wall time in seconds and peak resident memory in MB.
timed() {
    /usr/bin/time -f "%e %M" -o "$work/time" "$@"
    awk '{ printf "  wall %.2f s, peak %.1f MB\n", $1, $2 / 1024 }' "$work/time"
}

echo "making $pictures capture files ..." >&2
"$bench" --populate "$work/many" "$photo" "$pictures"
echo "newest day's thumbnails (first screenful ms, whole day ms, thumbnails KiB):"
for run in "cold ours" "disk-cache ours" "qt qt"; do
    set -- $run
    echo "$1:"; timed "$bench" --thumbnails "$work/many" "$2"
done

echo "making a day of distinct pictures ..." >&2
"$bench" --populate "$work/day" "$photo" 288 --distinct
echo "time-lapse of a day, 288 pictures of 1920x1080 at 10 fps:"
echo "program:"; timed "$bench" --timelapse "$work/day" "$work/ours.mp4"
echo "ffmpeg:"; timed ffmpeg -v error -y -framerate 10 -pattern_type glob -i "$work/day/*.jpg" -c:v libx264 "$work/ffmpeg.mp4"
ls -l "$work/ours.mp4" "$work/ffmpeg.mp4" | awk '{ printf "  %s %.1f MB\n", $NF, $5 / 1048576 }'
