#!/usr/bin/env bash
# Installs the Debian packages the station needs to build, run and be tested,
# skipping those already there. Run as root on Debian bookworm.
set -euo pipefail

packages=(
    build-essential cmake ninja-build pkg-config git
    qt6-base-dev libgl-dev
    libsqlite3-dev sqlite3
    libssl-dev openssl
    libcurl4-openssl-dev curl vsftpd openssh-server
    python3 python3-aiosmtpd dovecot-pop3d dnsmasq-base libhunspell-dev hunspell-en-us
    libsndfile1-dev libavcodec-dev libavformat-dev libavutil-dev libswresample-dev
    libavfilter-dev
    libpulse-dev pulseaudio pulseaudio-utils
    espeak-ng sox libsox-fmt-all ffmpeg lame
    libgtest-dev libgmock-dev
    clang libclang-rt-14-dev clang-format-14
    xvfb xauth x11-apps imagemagick
    libx11-dev xdotool poppler-utils
)

missing=()
for package in "${packages[@]}"; do
    if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed"; then
        missing+=("$package")
    fi
done

if ((${#missing[@]} > 0)); then
    echo "Installing: ${missing[*]}"
    export DEBIAN_FRONTEND=noninteractive
    log=$(mktemp)
    if ! { apt-get update -qq && apt-get install -y -qq --no-install-recommends "${missing[@]}"; } >"$log" 2>&1; then
        cat "$log" >&2
        echo "Could not install: ${missing[*]}" >&2
        exit 1
    fi
    rm -f "$log"
fi
