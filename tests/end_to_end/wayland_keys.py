"""Keys of a keyboard that brings its own key map, under Wayland: what they mean counts, not where they stand.

wtype's virtual keyboard gives each character the next code from 1 on, so that its first key stands where Escape does.

    wayland_keys.py JOYVANE-SETTINGS
"""

import os
import plistlib
import sys
import unittest

from joyvane_page import PREFERENCES, JoyvanePage
from jv_e2e import wait_for
from wayland_desktop import WaylandDesktop

PROGRAM = ""

# What stands in places for which the Keyboard/Keypad usage page has no key, by the kernel's numbers: four that work the
# page by their symbols, and letters.
NOWHERE = {84: "Return", 101: "Escape", 112: "Tab", 120: "Up",
           **{place: f"U{0x4e00 + place:04X}" for place in (140, 142, 143, 144, 147, 148, 149, 150, 152, 155, 156)}}
PLACE_OF_A = 30
FIRST_OF_OTHERS = 0x5000


class WaylandKeys(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.desktop = WaylandDesktop()
        cls.desktop.__enter__()
        cls.addClassCleanup(cls.desktop.__exit__, None, None, None)

    def start(self, *options, **settings):
        root = self.desktop.path(self.id().rpartition(".")[2])
        file = os.path.join(root, PREFERENCES)
        os.makedirs(os.path.dirname(file))
        with open(file, "wb") as stream:
            plistlib.dump(settings, stream)
        self.app = JoyvanePage(self.desktop, PROGRAM, root, *options)
        self.addCleanup(self.app.__exit__, None, None, None)
        self.app.find(role="list item", name="Controller").focus()
        self.has_focus("Controller")

    def has_focus(self, name):
        wait_for(f"{name} to have the keyboard",
                 lambda: any("focused" in node.states for node in self.app.nodes(name=name)))

    def test_letters_do_not_navigate(self):
        self.start("--simulate")
        self.desktop.write("-k", "Return")
        self.app.find(role="list item", name="Keyboard").focus()
        self.has_focus("Keyboard")
        self.desktop.write("hello")
        self.desktop.write("-k", "Up")  # heard after the letters
        self.has_focus("X + HOME Extended")
        self.assertEqual(self.app.close(), 0)

    def test_keys_that_navigate_do_wherever_they_stand(self):
        self.start("--simulate")
        self.desktop.write("-k", "Return")
        self.app.find(role="list item", name="Keyboard")
        self.desktop.write("-k", "Escape")
        self.app.gone(role="list item", name="Keyboard")
        self.app.find(role="list item", name="Controller")
        self.assertEqual(self.app.close(), 0)

    def strike(self, *places):
        """Keys by their places. wtype gives each symbol that it hears of the next place; a release alone is no key."""
        symbols = [NOWHERE.get(place, f"U{FIRST_OF_OTHERS + place:04X}") for place in range(1, max(NOWHERE) + 1)]
        told = [word for symbol in symbols for word in ("-p", symbol)]
        self.desktop.write(*told, *[word for place in places for word in ("-k", symbols[place - 1])])

    def shows(self, row, key):
        wait_for(f"{row} to show {key!r}", lambda: [node for node in self.app.nodes(role="list item", name=row)
                                                    if node.description == key and "focused" in node.states])

    def test_a_waiting_row_takes_no_key_that_has_no_place_and_then_the_first_that_has_one(self):
        self.start(controller_type=6, JVNKeyboardKeymapKey={})
        row = "D-pad up"
        self.app.press("Configure Keymap")
        self.app.find(role="list item", name=row).focus()
        self.shows(row, "None")
        self.strike(84)
        self.shows(row, "Press Key")
        self.strike(*NOWHERE, PLACE_OF_A)
        self.shows(row, "A")
        self.strike(101)
        self.app.wait_stored("JVNKeyboardKeymapKey", {"4": 3})
        self.assertEqual(self.app.close(), 0)


if __name__ == "__main__":
    PROGRAM = sys.argv.pop(1)
    unittest.main(verbosity=2)
