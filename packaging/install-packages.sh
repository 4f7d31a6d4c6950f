#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Before anything is built: looks at where the checkout lies and installs what is missing of a package list. Does
# nothing when all is well, says in one sentence what is not.
set -euo pipefail

refuse() { echo "$1" >&2; exit 1; }

here=$(cd "$(dirname "$0")" && pwd)
case $here in
    *\'*) refuse "The path of this checkout has an apostrophe, with which it cannot be built; please move it: ${here%/*}" ;;
esac

list=${1:-$here/debian-packages.txt}
missing=()
while read -r package; do
    dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null | grep -qx installed || missing+=("$package")
done < <(grep -vE '^[[:space:]]*(#|$)' "$list")
[ ${#missing[@]} -gt 0 ] || exit 0

for_root="as root: apt-get install ${missing[*]}"
as_root=()
if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || refuse "Packages are missing and there is no sudo; $for_root"
    sudo -v || refuse "Packages are missing and sudo refuses; $for_root"
    as_root=(sudo)
fi

echo "Installing: ${missing[*]}"
log=$(mktemp)
trap 'rm -f "$log"' EXIT
# Old lists may do when new ones cannot be had, so that only the installation counts.
"${as_root[@]}" apt-get update -qq >"$log" 2>&1 || true
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" \
    >>"$log" 2>&1 ||
    refuse "Packages could not be installed ($(grep -m1 '^E:' "$log" || echo 'apt-get failed')); with a network, $for_root"
