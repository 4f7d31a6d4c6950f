#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Builds and starts Kestrune. --demo: on a small collection that is made on the spot, with settings of its own.
# Where there is no display, does the demo without a window.
set -euo pipefail
cd "$(dirname "$0")"

case "${1:-}" in
    ""|--demo|-debug) ;;
    *) echo "Usage: ./run.sh [--demo]" >&2; exit 2 ;;
esac

packaging/install-packages.sh
cmake --preset release >/dev/null
cmake --build --preset release --target kestrune kestrune-cli kestrune-shots

programs=build/release/src
display=yes
[ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ] || display=no

if [ "$display" = yes ] && [ "${1:-}" != --demo ]; then
    exec "$programs/app/kestrune" "$@"
fi

demo=$PWD/build/demo
if [ "$display" = no ]; then
    echo "There is no display, so this is the demo without a window."
    export QT_QPA_PLATFORM=offscreen
    if [ -z "${XDG_RUNTIME_DIR:-}" ]; then
        export XDG_RUNTIME_DIR="$demo/runtime"
        mkdir -p -m 700 "$XDG_RUNTIME_DIR"
    fi
fi
export XDG_CONFIG_HOME="$demo/config" XDG_DATA_HOME="$demo/data"
packaging/make-demo.sh "$demo" "$programs/cli/kestrune-cli"

if [ "$display" = yes ]; then
    exec "$programs/app/kestrune"
fi
echo
"$programs/cli/kestrune-cli" list "$demo/collection.db" --sort Artist,ReleaseYear
echo
"$programs/app/kestrune-shots" "$demo/collection.db" "$demo/pictures" light
"$programs/app/kestrune-shots" "$demo/collection.db" "$demo/pictures" dark
