# A test that runs as a user of the machine is that user, with a home, and may touch no device.
set -e
[ "$(id -u)" = 1000 ] || { echo "user: $(id)"; exit 1; }
[ "$HOME" = /people/anna ] || { echo "user: at home in $HOME"; exit 1; }
touch "$HOME/mine"
if (: >/dev/uinput) 2>/dev/null; then
    echo "user: anna may make devices"
    exit 1
fi
