#!/bin/sh
# What is in the package is hardened: hardening.sh BUILD
set -e
if ! command -v dpkg-deb >/dev/null; then
    echo "dpkg-deb is not here"
    exit 77
fi
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
dpkg-deb -x "$1"/packaging/deb/joyvane_*.deb "$folder"
"$(dirname "$0")/../../scripts/check-hardening" "$folder"
