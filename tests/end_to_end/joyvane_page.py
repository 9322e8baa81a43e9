"""Joyvane's page as a running application: its rows, and what it has stored."""

import os
import plistlib

from jv_e2e import App, wait_for

PREFERENCES = "var/mobile/Library/Preferences/com.quorrel.joyvane.plist"


class JoyvanePage(App):
    def __init__(self, desktop, program, root, *options, errors=None):
        self.folder = root
        super().__init__(desktop, [program, *options, "--root", root], errors=errors)

    def press(self, name):
        """The action of the node, as a screen reader does it: as soon as the node is there."""
        self.find(name=name)

        def done():
            nodes = [node for node in self.nodes(name=name) if "showing" in node.states]
            for action in ("Toggle", "Press"):  # a row with a switch has both, the switch alone can be turned
                for node in nodes:
                    if action in node.actions:
                        node.do(action)
                        return True
            return False
        wait_for(f"{name!r} to press", done)

    def stored(self, key):
        try:
            with open(os.path.join(self.folder, PREFERENCES), "rb") as file:
                return plistlib.load(file).get(key)
        except FileNotFoundError:
            return None

    def wait_stored(self, key, value):
        wait_for(f"{key} = {value!r} in the file", lambda: self.stored(key) == value)
