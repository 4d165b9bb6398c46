#!/usr/bin/env bash
# Configures and builds one flavour of the project into build/<flavour>.
#   release   the programs and the test suite
#   sanitize  the same under AddressSanitizer and UndefinedBehaviorSanitizer
#   fuzz      the libFuzzer targets (clang)
set -euo pipefail
cd "$(dirname "$0")/.."
flavour=${1:-release}
jobs=${OVD_JOBS:-2}

case "$flavour" in
    release)
        options=(-DCMAKE_BUILD_TYPE=RelWithDebInfo) ;;
    sanitize)
        options=(-DCMAKE_BUILD_TYPE=Debug -DOVD_SANITIZE=ON) ;;
    fuzz)
        options=(-DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_CXX_COMPILER=clang++ -DOVD_SANITIZE=ON
                 -DOVD_BUILD_UI=OFF -DOVD_BUILD_TESTS=OFF -DOVD_BUILD_FUZZERS=ON) ;;
    *)
        echo "unknown flavour: $flavour (release, sanitize or fuzz)" >&2
        exit 2 ;;
esac

# A compiler cache, where there is one, makes rebuilds of other checkouts cheap.
if command -v ccache >/dev/null 2>&1; then
    options+=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
    export CCACHE_BASEDIR=${CCACHE_BASEDIR:-$(dirname "$PWD")}
fi

cmake -S . -B "build/$flavour" -G Ninja "${options[@]}" >/dev/null
cmake --build "build/$flavour" -j "$jobs"
