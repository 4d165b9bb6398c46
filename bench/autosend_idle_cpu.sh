#!/bin/sh
# The companion sender's CPU while it waits with nothing to send: it is started on
# a data folder of its own (FTP sending on, staging folders empty), measured over
# 30 seconds from /proc/PID/stat (user + system time), and stopped with --stop.
# Usage: bench/autosend_idle_cpu.sh [build/release] [seconds]
set -eu
build=${1:-build/release}
seconds=${2:-30}
program="$build/src/app/orvane-autosend"
here=$(cd "$(dirname "$0")/.." && pwd)
data=$(mktemp -d)
trap 'rm -rf "$data"' EXIT
cp "$here/assets/DigitalRecorder.cfg" "$data/DigitalRecorder.cfg"
printf '[DefaultFTPForCO]\r\nFTPServer=127.0.0.1\r\n' > "$data/DefaultInfo.ini"
"$program" --data-folder "$data" 2>/dev/null &
pid=$!
sleep 2
ticks() { awk '{ sub(/.*\) /, ""); print $12 + $13 }' "/proc/$pid/stat"; }
before=$(ticks)
sleep "$seconds"
after=$(ticks)
hz=$(getconf CLK_TCK)
"$program" --stop --data-folder "$data"
wait "$pid" || true
awk -v b="$before" -v a="$after" -v hz="$hz" -v s="$seconds" 'BEGIN {
    printf "orvane-autosend idle: %.3f %% of one core over %d s (%d ticks)\n", 100 * (a - b) / hz / s, s, a - b }'
