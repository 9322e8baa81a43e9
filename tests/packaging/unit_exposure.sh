#!/bin/sh
# A unit's sandbox, as the service manager's own tool judges it: unit_exposure.sh UNIT LIMIT (tenths, as in 15 for 1.5)
set -e
if ! command -v systemd-analyze >/dev/null; then
    echo "systemd-analyze is not here"
    exit 77
fi
systemd-analyze --no-pager security --offline=true --threshold="$2" "$1"
