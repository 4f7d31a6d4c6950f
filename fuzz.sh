#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Builds the fuzz targets and runs each for some seconds on seeds that the test builders make: ./fuzz.sh [SECONDS]
set -euo pipefail
cd "$(dirname "$0")"

seconds=${1:-5}
packaging/install-packages.sh
packaging/install-packages.sh packaging/debian-packages-fuzz.txt
cmake --preset fuzz >/dev/null
mapfile -t targets < <(sed -nE 's/^add_executable\((fuzz_[a-z0-9]+) .*/\1/p' fuzz/CMakeLists.txt)
for reader in ape flac id3v1 id3v2 mp4 ogg wav wma wavpack musepack monkey sniffer; do
    targets+=("fuzz_tags_$reader")
done
for reader in iso udf sacd dvda m2ts mp4container disctoc; do
    targets+=("fuzz_media_$reader")
done
cmake --build --preset fuzz --target make_seeds "${targets[@]}"

seeds=$(mktemp -d)
trap 'rm -rf "$seeds"' EXIT
build/fuzz/fuzz/make_seeds "$seeds"
for target in "${targets[@]}"; do
    corpus=$seeds/${target##*_}
    mkdir -p "$corpus"
    echo "-- $target"
    # New inputs go to a folder of their own, a finding to the build folder.
    mkdir -p "$seeds/new-$target"
    if ! build/fuzz/fuzz/"$target" -max_total_time="$seconds" -rss_limit_mb=1024 -timeout=10 -print_final_stats=1 \
        -artifact_prefix=build/fuzz/ "$seeds/new-$target" "$corpus" > "$seeds/log" 2>&1; then
        tail -40 "$seeds/log"
        exit 1
    fi
    grep number_of_executed "$seeds/log"
done
echo "${#targets[@]} passed, 0 failed"
