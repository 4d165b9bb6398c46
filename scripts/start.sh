#!/usr/bin/env bash
# Installs what is missing, builds, installs the programs under the prefix
# (/usr/local unless OVD_PREFIX says otherwise), lays down the default settings in
# the data folder when it has none, and starts the station on it. Arguments are
# passed on to the station (for example --data-folder DIR or a file name).
set -euo pipefail
cd "$(dirname "$0")/.."
prefix=${OVD_PREFIX:-/usr/local}

./scripts/install-deps.sh
./scripts/build.sh release
cmake --install build/release --prefix "$prefix" >/dev/null

data_folder=${XDG_DATA_HOME:-$HOME/.local/share}/orvane-voice-desk
args=("$@")
for ((i = 0; i < ${#args[@]}; i++)); do
    if [ "${args[i]}" = "--data-folder" ] && ((i + 1 < ${#args[@]})); then
        data_folder=${args[i + 1]}
    fi
done

# What an installer does: a first settings record, never over one already there.
mkdir -p "$data_folder"
if [ ! -s "$data_folder/DigitalRecorder.cfg" ]; then
    cp "$prefix/share/orvane-voice-desk/DigitalRecorder.cfg" "$data_folder/DigitalRecorder.cfg"
    echo "Laid down the default settings in $data_folder"
fi

exec "$prefix/bin/orvane-voice-desk" "$@"
