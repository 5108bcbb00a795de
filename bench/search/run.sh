#!/usr/bin/env bash
# Times the reading of one 1920x1080 screen of text with the model loaded once against the
# tesseract command line on the same picture, the CPU that adds at the default interval, the
# share of words read back at 11 px and above, and the median search in an index of 100,000
# pictures' text (the index is kept beside the build for the next run).
# Usage: bench/search/run.sh [build-dir] [--pictures N]
set -euo pipefail
source "$(dirname "$0")/../common.sh"
shift || true
pictures=100000
[ "${1:-}" = --pictures ] && pictures=$2
bench=$(bench_binary search/search_bench)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export QT_QPA_PLATFORM=offscreen

"$bench" --screen "$work/screen.png"
echo "one 1920x1080 screen of text:"
echo "program:"; "$bench" --read "$work/screen.png" 5
echo "tesseract command line (median of 5):"
for i in 1 2 3 4 5; do
    /usr/bin/time -f "%e %U %S" -o "$work/time.$i" tesseract "$work/screen.png" - >/dev/null 2>&1
done
cat "$work"/time.* | sort -n | sed -n 3p | awk '{ printf "  wall %.0f ms, CPU %.0f ms\n", $1 * 1000, ($2 + $3) * 1000 }'
echo "words read back:"; "$bench" --recall
echo "searches:"; "$bench" --query "$pictures" "$build/bench/search/text-$pictures.sqlite"
