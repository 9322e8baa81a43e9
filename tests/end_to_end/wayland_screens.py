"""The page on screens whose scale changes, and on two screens of different scale, under Wayland.

    wayland_screens.py JOYVANE-SETTINGS
"""

import glob
import json
import os
import subprocess
import sys
import unittest

from joyvane_page import JoyvanePage
from jv_e2e import wait_for
from wayland_desktop import WaylandDesktop

PROGRAM = ""
WIDTH, HEIGHT = 800, 1000  # pixels


class WaylandScreens(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.desktop = WaylandDesktop(size=f"{WIDTH}x{HEIGHT}")
        cls.desktop.__enter__()
        cls.addClassCleanup(cls.desktop.__exit__, None, None, None)
        cls.socket = wait_for("the compositor's own socket",
                              lambda: glob.glob(os.path.join(cls.desktop.compositor_folder, "sway-ipc.*.sock")))[0]

    def tell(self, *words):
        said = subprocess.run(["swaymsg", "-s", self.socket, "-r", *words], check=True, text=True, capture_output=True)
        return json.loads(said.stdout)

    def start(self, name):
        self.tell("output", "HEADLESS-1", "scale", "1")
        self.app = JoyvanePage(self.desktop, PROGRAM, self.desktop.path(name), "--simulate")
        self.addCleanup(self.app.__exit__, None, None, None)
        self.app.find(role="list", name="Joyvane")

    def move(self, window, screen):
        def moved():
            try:
                return self.tell(window, "move", "window", "to", "output", screen)
            except subprocess.CalledProcessError:  # it does not have the one or the other yet
                return None
        wait_for(f"the window on {screen}", moved)

    def wait_for_size(self, width, height):
        """In the window system's units: the window fills the screen, and the page the window."""
        def fills():
            frames = self.app.nodes(role="frame")
            lists = self.app.nodes(role="list", name="Joyvane")
            return all(nodes and abs(nodes[0].extents[2] - width) <= 1 and abs(nodes[0].extents[3] - height) <= 1
                       for nodes in (frames, lists))
        wait_for(f"a window of {width} by {height}", fills)

    def test_a_scale_that_changes_while_it_runs(self):
        self.start("scale")
        self.wait_for_size(WIDTH, HEIGHT)
        for scale in (1.25, 2, 1.5):
            self.tell("output", "HEADLESS-1", "scale", str(scale))
            self.wait_for_size(WIDTH / scale, HEIGHT / scale)
            self.app.press("Controller")
            self.app.find(role="list item", name="Red SYNC Button")
            self.app.press("Back to Joyvane")
            self.app.find(role="list", name="Joyvane")
        self.assertEqual(self.app.close(), 0)

    def test_two_screens_of_different_scale(self):
        self.start("two")
        self.wait_for_size(WIDTH, HEIGHT)  # the compositor has the window now
        self.tell("create_output")
        name = wait_for("a second screen", lambda: [output["name"] for output in self.tell("-t", "get_outputs")
                                                    if output["name"] != "HEADLESS-1"])[0]
        self.tell("output", name, "resolution", "600x900", "scale", "1.5")
        window = f"[pid={self.app.process.pid}]"
        self.move(window, name)
        self.wait_for_size(400, 600)
        self.app.press("Controller")
        self.app.press("Keyboard")
        self.app.wait_stored("controller_type", 6)

        self.move(window, "HEADLESS-1")
        self.wait_for_size(WIDTH, HEIGHT)
        self.app.press("Controller")
        self.app.press("DualShock 4")
        self.app.wait_stored("controller_type", 1)
        self.assertEqual(self.app.close(), 0)


if __name__ == "__main__":
    PROGRAM = sys.argv.pop(1)
    unittest.main(verbosity=2)
