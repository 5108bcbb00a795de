# Sourced by the benchmark scripts: bench_binary and plasma_picture, with root and build set from
# the script's place and its first argument (the build folder, default build/).
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build=${1:-$root/build}

# The built benchmark at build/bench/PATH, or a hint to build it first.
bench_binary() {
    local binary=$build/bench/$1
    [ -x "$binary" ] || { echo "$(basename "$0"): build with KV_TESTS=ON first ($binary missing)" >&2; exit 2; }
    echo "$binary"
}

# A photo-like picture of the size given, kept beside the build since plasma takes a while.
plasma_picture() { # path WxH seed
    if [ ! -f "$1" ]; then
        echo "making the test picture ..." >&2
        convert -size "$2" -seed "$3" plasma:fractal "$1"
    fi
    echo "$1"
}
