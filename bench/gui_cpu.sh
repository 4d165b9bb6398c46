#!/usr/bin/env bash
# The station's CPU while it records, with its window on a virtual display and,
# for comparison, headless: a private X server (Xvfb) and a private sound server
# (a null sink and a sine source as the microphone, as the tests use), the real
# station on a data folder of its own, the record pedal held down on a pty for
# the take. Prints the figures; judges nothing.
#
#   bench/gui_cpu.sh [SECONDS]     (default 30; needs ./scripts/build.sh release)
#   OVD_STATION=path/to/orvane-voice-desk bench/gui_cpu.sh   measures another build of the station
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-30}
build=${OVD_BUILD:-build/release}
station=${OVD_STATION:-$build/src/app/orvane-voice-desk}
probe=$build/bench/station_cpu_probe
for program in "$station" "$probe"; do
    if [ ! -x "$program" ]; then
        echo "gui_cpu: $program is missing; run ./scripts/build.sh release first" >&2
        exit 2
    fi
done
for tool in Xvfb pulseaudio; do
    command -v "$tool" >/dev/null || { echo "gui_cpu: $tool is not installed" >&2; exit 2; }
done

work=$(mktemp -d /tmp/ovd_gui_cpu_XXXXXX)
xvfb_pid=
pulse_pid=
finish() {
    # Only the servers this script started, by their process numbers.
    [ -n "$pulse_pid" ] && kill "$pulse_pid" 2>/dev/null && wait "$pulse_pid" 2>/dev/null || true
    [ -n "$xvfb_pid" ] && kill "$xvfb_pid" 2>/dev/null && wait "$xvfb_pid" 2>/dev/null || true
    rm -rf "$work"
}
trap finish EXIT

# A display of its own: Xvfb picks a free number and writes it to the pipe.
exec {display_fd}<> <(:)
Xvfb -displayfd "$display_fd" -screen 0 1280x1024x24 -nolisten tcp >"$work/xvfb.log" 2>&1 &
xvfb_pid=$!
read -r -t 10 -u "$display_fd" display_number || { echo "gui_cpu: Xvfb did not start" >&2; cat "$work/xvfb.log" >&2; exit 1; }
exec {display_fd}<&-
export DISPLAY=:$display_number

# A sound server of its own, with nothing of the machine's settings.
mkdir -p "$work/pulse"
cat >"$work/pulse/daemon.pa" <<EOF
load-module module-null-sink sink_name=ovd_bench_sink sink_properties=device.description=BenchSpeakers
load-module module-null-source source_name=ovd_bench_silence description=BenchSilence
load-module module-loopback source=ovd_bench_silence sink=ovd_bench_sink latency_msec=20 source_dont_move=true sink_dont_move=true
load-module module-sine-source source_name=ovd_bench_sine frequency=440
set-default-source ovd_bench_sine
load-module module-native-protocol-unix socket=$work/pulse/native auth-anonymous=1
EOF
env -i PATH="$PATH" HOME="$work/pulse" XDG_RUNTIME_DIR="$work/pulse" PULSE_RUNTIME_PATH="$work/pulse" \
    XDG_CONFIG_HOME="$work/pulse" PULSE_STATE_PATH="$work/pulse/state" LC_ALL=C \
    pulseaudio -n --daemonize=no --exit-idle-time=-1 --disallow-exit --use-pid-file=no \
    --system=false --realtime=no --high-priority=no --log-target=stderr -F "$work/pulse/daemon.pa" \
    >"$work/pulse/daemon.log" 2>&1 &
pulse_pid=$!
for _ in $(seq 100); do
    [ -S "$work/pulse/native" ] && break
    sleep 0.1
done
[ -S "$work/pulse/native" ] || { echo "gui_cpu: pulseaudio did not start" >&2; cat "$work/pulse/daemon.log" >&2; exit 1; }
printf 'autospawn = no\n' >"$work/pulse/client.conf"
export PULSE_SERVER=unix:$work/pulse/native PULSE_COOKIE=$work/pulse/cookie PULSE_CLIENTCONFIG=$work/pulse/client.conf
unset WAYLAND_DISPLAY QT_QPA_PLATFORM

"$probe" "$station" assets "$seconds" "GUI" --audio pulse
"$probe" "$station" assets "$seconds" "Headless" --audio pulse --headless
