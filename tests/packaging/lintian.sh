#!/bin/sh
# What Debian's own judge says of the package: lintian.sh BUILD
set -e
if ! command -v lintian >/dev/null; then
    echo "lintian is not here"
    exit 77
fi
exec lintian --allow-root --no-cfg --tag-display-limit 0 --fail-on error,warning,info "$1"/packaging/deb/joyvane_*.deb
