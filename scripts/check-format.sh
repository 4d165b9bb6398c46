#!/usr/bin/env bash
# Fails when a C++ file of the tree differs from what clang-format makes of it
# under the repository's .clang-format; with --fix, formats them instead.
set -euo pipefail
cd "$(dirname "$0")/.."
formatter=$(command -v clang-format-14 || command -v clang-format)
mapfile -d '' files < <(git ls-files -z -- '*.cpp' '*.h')
if [ "${1:-}" = "--fix" ]; then
    "$formatter" -i "${files[@]}"
    exit 0
fi
unformatted=()
for file in "${files[@]}"; do
    if ! "$formatter" --dry-run --Werror "$file" >/dev/null 2>&1; then unformatted+=("$file"); fi
done
if ((${#unformatted[@]} > 0)); then
    printf 'Not formatted by clang-format (run scripts/check-format.sh --fix):\n' >&2
    printf '  %s\n' "${unformatted[@]}" >&2
    exit 1
fi
echo "All ${#files[@]} C++ files formatted"
