#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Makes a small music folder, a collection filled from it and settings that open it: make-demo.sh FOLDER KESTRUNE_CLI
# Each part is made aside and moved to its place when it is whole, so that the next run goes on where one was stopped.
set -euo pipefail

demo=$1
cli=$2
music=$demo/music
collection=$demo/collection.db
part=$demo/part
rm -rf "$part"
mkdir -p "$part"

# One release: folder, extension, artist, album, year, genre, label, ground and ink of the cover, then its tracks.
make_release() {
    local folder=$music/$1 extension=$2 artist=$3 album=$4 year=$5 genre=$6 label=$7 ground=$8 ink=$9
    shift 9
    [ ! -d "$folder" ] || return 0
    local made=$part/release size=600 number=0 title
    mkdir "$made"
    ffmpeg -v error -f lavfi -i "color=c=$ground:s=${size}x$size" -frames:v 1 -vf \
        "drawbox=x=60:y=60:w=480:h=480:color=$ink:t=18,drawbox=x=150:y=150:w=300:h=300:color=$ink:t=fill,drawbox=x=230:y=0:w=20:h=600:color=$ground:t=fill" \
        -y "$made/cover.jpg"
    for title in "$@"; do
        number=$((number + 1))
        ffmpeg -v error -f lavfi -i "sine=frequency=$((180 + number * 40 + year % 100)):duration=$((2 + number % 3))" \
            -metadata artist="$artist" -metadata album="$album" -metadata title="$title" -metadata date="$year" \
            -metadata genre="$genre" -metadata publisher="$label" -metadata label="$label" -metadata track="$number/$#" \
            -y "$made/$(printf '%02d' "$number") - $title.$extension"
    done
    mkdir -p "$(dirname "$folder")"
    # One cover for all discs, beside their folders.
    case $folder in */CD[0-9]) mv "$made/cover.jpg" "$(dirname "$folder")" ;; esac
    mv "$made" "$folder"
}

make_release "Ilva Marren - Salt Atlas (2019)" flac "Ilva Marren" "Salt Atlas" 2019 Electronic "Slow Field" 0x1B1B1F 0xC9253B \
    "Low Tide" "Salt Atlas" "Cartographer" "Harbour Lights"
make_release "Hask & Vane - Low Lamps (1974)" mp3 "Hask & Vane" "Low Lamps" 1974 Jazz Corbel 0x101010 0xE8622C \
    "Low Lamps" "Corner of Vane and Fourth" "Hask's Errand"
make_release "Northern Kiln - Ash, Then Snow (2008)" flac "Northern Kiln" "Ash, Then Snow" 2008 Ambient "Slow Field" 0xF5E6C8 0x5C2438 \
    "Ash" "Then Snow"
make_release "Mirela Dosk - Twelve Windows (1991)" mp3 "Mirela Dosk" "Twelve Windows" 1991 Classical Azimute 0xF0E6DA 0x2F6B57 \
    "First Window" "Second Window" "Third Window"
make_release "The Quiet Meridian - Parallels (1982)/CD1" mp3 "The Quiet Meridian" Parallels 1982 Rock Werkraum 0xE9DBB4 0x4E7388 \
    "North" "East"
make_release "The Quiet Meridian - Parallels (1982)/CD2" mp3 "The Quiet Meridian" Parallels 1982 Rock Werkraum 0xE9DBB4 0x4E7388 \
    "South" "West"
make_release "Paper Aviary - Every Small Engine (2015)" flac "Paper Aviary" "Every Small Engine" 2015 Electronic Loomtone 0x2A2C46 0xD80032 \
    "Ignition" "Idle" "Flight" "Landing"
make_release "Tomasz Orrel Quartet - Blue Ferry (1966)" mp3 "Tomasz Orrel Quartet" "Blue Ferry" 1966 Jazz Corbel 0xC9563F 0x14233B \
    "Blue Ferry" "Crossing" "Return"

if [ ! -f "$collection" ]; then
    "$cli" new "$part/collection.db"
    "$cli" add-folder "$part/collection.db" "$music"
    mv "$part/collection.db" "$collection"
fi

settings=$XDG_CONFIG_HOME/Kestrune/Kestrune/Kestrune.ini
if [ ! -f "$settings" ]; then
    mkdir -p "$(dirname "$settings")"
    printf '[General]\nDBPath=%s\n' "$collection" > "$part/settings"
    mv "$part/settings" "$settings"
fi
rm -rf "$part"
