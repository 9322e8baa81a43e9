"""Keys of a keyboard that brings its own key map, under Wayland: what they mean counts, not where they stand.

wtype's virtual keyboard gives each character the next code from 1 on, so that its first key stands where Escape does.

    wayland_keys.py JOYVANE-SETTINGS
"""

import sys
import unittest

from jv_e2e import App, wait_for
from wayland_desktop import WaylandDesktop

PROGRAM = ""


class WaylandKeys(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.desktop = WaylandDesktop()
        cls.desktop.__enter__()
        cls.addClassCleanup(cls.desktop.__exit__, None, None, None)

    def setUp(self):
        self.app = App(self.desktop, [PROGRAM, "--simulate", "--root", self.desktop.path("root")])
        self.addCleanup(self.app.__exit__, None, None, None)
        self.app.find(role="list item", name="Controller").focus()
        self.has_focus("Controller")

    def has_focus(self, name):
        wait_for(f"{name} to have the keyboard",
                 lambda: any("focused" in node.states for node in self.app.nodes(name=name)))

    def test_letters_do_not_navigate(self):
        self.desktop.write("-k", "Return")
        self.app.find(role="list item", name="Keyboard").focus()
        self.has_focus("Keyboard")
        self.desktop.write("hello")
        self.desktop.write("-k", "Up")  # heard after the letters
        self.has_focus("X + HOME Extended")
        self.assertEqual(self.app.close(), 0)

    def test_keys_that_navigate_do_wherever_they_stand(self):
        self.desktop.write("-k", "Return")
        self.app.find(role="list item", name="Keyboard")
        self.desktop.write("-k", "Escape")
        self.app.gone(role="list item", name="Keyboard")
        self.app.find(role="list item", name="Controller")
        self.assertEqual(self.app.close(), 0)


if __name__ == "__main__":
    PROGRAM = sys.argv.pop(1)
    unittest.main(verbosity=2)
