#!/usr/bin/env bash
# Lays down the station's prompt sounds in assets/prompts: short 16-bit mono
# 22050 Hz wave files, spoken ones from espeak-ng and tones from sox. The output
# is committed; run this again only to change a prompt. Dither is off so that the
# same script gives the same bytes.
set -euo pipefail
cd "$(dirname "$0")/.."
out=assets/prompts
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$out"

# Every prompt leaves here in one shape, peaks at -3 dB, with a touch of silence
# after it so the sound card does not clip the tail.
finish() {  # finish <input> <output name>
    sox -D "$1" -r 22050 -c 1 -b 16 -e signed-integer "$out/$2" norm -3 pad 0 0.05
}

speak() {  # speak <output name> <words>
    espeak-ng -v en-us -s 160 -w "$work/voice.wav" "$2"
    # espeak-ng leaves a long silence at both ends; a prompt should start at once.
    sox -D "$work/voice.wav" "$work/trimmed.wav" silence 1 0.01 0.5% reverse silence 1 0.01 0.5% reverse
    finish "$work/trimmed.wav" "$1"
}

tone() {  # tone <output name> <sox synth effect chain...>
    local name=$1
    shift
    sox -D -n -r 22050 -c 1 -b 16 "$work/tone.wav" "$@"
    finish "$work/tone.wav" "$name"
}

# A take opens: one short high beep (prompts on), or the word itself (prompts off).
tone beep2.wav synth 0.15 sine 1000 fade h 0.005 0.15 0.02
speak Speak.wav "Speak"
# A new file is ready.
tone TwoBeeps.wav synth 0.12 sine 880 fade h 0.005 0.12 0.02 pad 0 0.08 repeat 1
# Stop: a falling bloop.
tone bloop3.wav synth 0.25 sine 900-300 fade h 0.005 0.25 0.06
# The notification of a file that could not be sent: a bell that dies away.
tone ding.wav synth 0.9 sine 1318.5 sine 2637 remix 1,2 fade l 0.002 0.9 0.85
# The end of an unattended transfer run.
speak complete.wav "Transfer complete"
# A destination has the file.
speak FileSent1MSG.WAV "File sent to destination one"
speak FileSent2MSG.WAV "File sent to destination two"
speak FileSent3MSG.WAV "File sent to destination three"

for file in "$out"/*; do
    printf '%-20s %s s\n' "$(basename "$file")" "$(soxi -D "$file")"
done
