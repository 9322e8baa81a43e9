"""Anna at her desktop, who has just installed Joyvane: opens it from the menu's entry and chooses what she plays with.

page.py CONTROLLER    as the page names it; ends when the settings have it
"""

import os
import plistlib
import re
import subprocess
import sys

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "end_to_end"))
os.environ["JOYVANE_TEST_TIMEOUT"] = "90"  # an emulated computer
from jv_e2e import App, Desktop, wait_for  # noqa: E402

ENTRY = "/usr/share/applications/com.quorrel.joyvane.desktop"
SETTINGS = os.path.expanduser("~/.local/share/joyvane/var/mobile/Library/Preferences/com.quorrel.joyvane.plist")


class OwnDesktop(Desktop):
    """A display in her session, with the session's own bus, home and folders."""

    def _start(self):
        os.mkdir(self.path("screen"), 0o700)
        self.environment = {**os.environ, "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1",
                            "DBUS_SESSION_BUS_ADDRESS": f"unix:path={os.environ['XDG_RUNTIME_DIR']}/bus"}
        server = self._spawn(["Xvfb", "-displayfd", "1", "-screen", "0", f"{self.size}x24", "-nolisten", "tcp", "-noreset"],
                             stdout=subprocess.PIPE)
        self.environment["DISPLAY"] = ":" + server.stdout.readline().strip()
        os.environ.update({name: self.environment[name] for name in ("DISPLAY", "DBUS_SESSION_BUS_ADDRESS")})


def be_in_no_hurry():
    """An emulated computer takes its time to answer."""
    import gi

    gi.require_version("Atspi", "2.0")
    from gi.repository import Atspi

    Atspi.set_timeout(60_000, 60_000)


def command_of_the_entry():
    with open(ENTRY, encoding="utf-8") as file:
        return re.search(r"^Exec=(\S+)", file.read(), re.M).group(1)


def stored(key):
    try:
        with open(SETTINGS, "rb") as file:
            return plistlib.load(file).get(key)
    except FileNotFoundError:
        return None


def press(app, name):
    def done():
        for node in app.nodes(name=name):
            if "showing" in node.states and "Press" in node.actions:
                node.do("Press")
                return True
        return False
    wait_for(f"{name!r} to press", done)


def main():
    controller = sys.argv[1]
    be_in_no_hurry()
    with OwnDesktop() as desktop, App(desktop, [command_of_the_entry()]) as app:
        if not stored("controller_type"):  # the first time it explains itself
            press(app, "Set Up Your Controller")
        press(app, "Controller")
        press(app, controller)
        wait_for("the choice in the settings", lambda: stored("controller_type") is not None)
        app.close()


if __name__ == "__main__":
    main()
