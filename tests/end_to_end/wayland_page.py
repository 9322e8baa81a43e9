"""The page under Wayland, by the pointer: a row's tap, a panel that lets others through, a drag on the colour field.

    wayland_page.py JOYVANE-SETTINGS
"""

import os
import plistlib
import sys
import time
import unittest
from collections import Counter

from joyvane_page import PREFERENCES, JoyvanePage
from jv_e2e import wait_for
from wayland_desktop import WaylandDesktop

PROGRAM = ""
TOOL = """#!/bin/bash
trap 'echo interrupted >>"$0.log"; exit 0' INT
echo started >>"$0.log"
while :; do read -t 1 line <> "$0.fifo"; done
"""


class WaylandPage(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.desktop = WaylandDesktop()
        cls.desktop.__enter__()
        cls.addClassCleanup(cls.desktop.__exit__, None, None, None)

    def start(self, name, **settings):
        self.root = self.desktop.path(name)
        self.write(PREFERENCES, plistlib.dumps({"controller_type": 1, **settings}))
        self.tool = self.write("usr/bin/jvndiscovery", TOOL.encode())
        os.chmod(self.tool, 0o700)
        os.mkfifo(self.tool + ".fifo")
        self.app = JoyvanePage(self.desktop, PROGRAM, self.root)
        self.addCleanup(self.app.__exit__, None, None, None)

    def write(self, path, data):
        file = os.path.join(self.root, path)
        os.makedirs(os.path.dirname(file))
        with open(file, "wb") as stream:
            stream.write(data)
        return file

    def stands(self, **which):
        """Where the node is once it moves no more. A screen that slides in takes no touches, and nothing tells how far it
        is: its nodes stand where they will be from the first."""
        place, since = None, 0

        def same():
            nonlocal place, since
            nodes = [node for node in self.app.nodes(**which) if "showing" in node.states]
            now = nodes[0].extents if nodes else None
            if now != place:
                place, since = now, time.monotonic()
            return place and time.monotonic() - since > 0.6
        wait_for(f"{which} to stand", same)
        return place

    def click(self, name):
        x, y, width, height = self.stands(role="list item", name=name)
        self.desktop.click(x + width / 2, y + height / 2)

    def tool_log(self):
        try:
            with open(self.tool + ".log", encoding="ascii") as file:
                return file.read().split()
        except FileNotFoundError:
            return []

    def waits_for(self, **counts):
        """A tool starts while the one before it still ends, so that only the numbers are sure, not their order."""
        try:
            wait_for(f"the tools {counts}", lambda: Counter(self.tool_log()) == counts)
        except AssertionError as error:
            raise AssertionError(f"{error}; they said {self.tool_log()}") from None

    def test_a_second_tap_on_the_pairing_row_starts_afresh_and_other_rows_open_meanwhile(self):
        self.start("pairing")
        self.click("Pair Controller")
        self.waits_for(started=1)
        self.click("Pair Controller")
        self.waits_for(started=2, interrupted=1)
        self.click("Controller")
        self.app.find(role="list item", name="Keyboard")
        self.waits_for(started=2, interrupted=2)
        self.assertEqual(self.app.close(), 0)

    def test_a_drag_on_the_field_stores_the_colour_under_the_pointer(self):
        self.start("colour", JVNAmbientColorKey=False)
        self.click("Choose LED Color")
        x, y, width, height = self.stands(role="canvas", name="Hue and saturation")
        self.desktop.drag((x + width * 0.8, y + height * 0.5), (x + 8, y + 8))
        self.app.wait_stored("JVNLEDColorKey", "fd0000")
        self.assertEqual(self.app.close(), 0)


if __name__ == "__main__":
    PROGRAM = sys.argv.pop(1)
    unittest.main(verbosity=2)
