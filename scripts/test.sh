#!/usr/bin/env bash
# Installs what is missing, checks the format of the C++ files, builds, and runs
# every test: the suite, the suite again under AddressSanitizer and
# UndefinedBehaviorSanitizer, and each fuzz target for a bounded time (OVD_FUZZ_SECONDS, default 30) from its seed corpus.
set -euo pipefail
cd "$(dirname "$0")/.."
jobs=${OVD_JOBS:-2}
fuzz_seconds=${OVD_FUZZ_SECONDS:-30}

./scripts/install-deps.sh

echo "== Format"
./scripts/check-format.sh

echo "== Test suite"
./scripts/build.sh release
ctest --test-dir build/release --output-on-failure -j "$jobs"

echo "== Test suite under ASan and UBSan"
./scripts/build.sh sanitize
ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
    ctest --test-dir build/sanitize --output-on-failure -j "$jobs"

echo "== Fuzz targets, ${fuzz_seconds}s each"
./scripts/build.sh fuzz
for target in build/fuzz/fuzz/*_fuzz; do
    name=$(basename "$target" _fuzz)
    corpus=$(mktemp -d)
    if [ -d "fuzz/corpus/$name" ]; then cp -r "fuzz/corpus/$name/." "$corpus/"; fi
    echo "-- $name"
    "$target" -max_total_time="$fuzz_seconds" -print_final_stats=1 "$corpus" 2>&1 | tail -n 3
    rm -rf "$corpus"
done
echo "== All tests passed"
