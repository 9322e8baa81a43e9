"""Every kind of row and every control on a real desktop: the built program with the sample bundle.

Each is operated by assistive technology, by the pointer, by the wheel and by the keyboard alone. What came of it is
read from the settings file, from the texts that the page shows, and from the window's pixels.

    sample_page.py JOYVANE-SETTINGS SAMPLE.BUNDLE
"""

import contextlib
import os
import plistlib
import re
import subprocess
import sys
import time
import unittest

from jv_e2e import App, Desktop, wait_for

PROGRAM = ""
BUNDLE = ""


class SamplePage(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.desktop = Desktop()
        cls.desktop.__enter__()
        cls.addClassCleanup(cls.desktop.__exit__, None, None, None)

    def setUp(self):
        name = self.id().rpartition(".")[2]
        self.root = self.desktop.path(name)
        self.app = App(self.desktop, [PROGRAM, "--bundle", BUNDLE, "--root", self.root],
                       errors=self.desktop.path(name + ".txt"))
        self.addCleanup(self.end)
        self.app.find(name="A switch")
        self.app.take_keyboard()

    def end(self):
        failed = any(error for _, error in self._outcome.errors) if hasattr(self._outcome, "errors") else False
        if failed:
            print(self.app.tree())
        self.app.__exit__(failed or None)
        self.assertEqual(self.app.errors, "", "the application complained")

    def stored(self, key):
        try:
            with open(os.path.join(self.root, "var/mobile/Library/Preferences/com.quorrel.sample.plist"), "rb") as file:
                return plistlib.load(file).get(key)
        except FileNotFoundError:
            return None

    def wait_stored(self, key, value):
        wait_for(f"{key} = {value!r} in the file", lambda: self.stored(key) == value)

    def row(self, name):
        return self.app.find(role="list item", name=name)

    def switch(self, name):
        return self.app.find(role="check box", name=name)

    def rest(self):
        """A screen that slides in takes neither clicks nor keys, and nothing tells how far it is."""
        time.sleep(0.6)

    def still(self, node):
        """Where the node is once the page scrolls no more."""
        seen = []

        def rests():
            seen.append(node.extents)
            return len(seen) > 3 and len(set(seen[-4:])) == 1
        wait_for(f"{node} to rest", rests)
        return seen[-1]

    def click(self, node):
        x, y, width, height = self.still(node)
        self.desktop.click(x + width / 2, y + height / 2)

    def focused(self):
        return [node.name for node in self.app.nodes() if "focused" in node.states and node.role != "frame"]

    def focus(self, name, key="Down"):
        """The name that has the keyboard at last, by one key."""
        for _ in range(60):
            if self.focused() == [name]:
                return
            before = self.focused()
            self.desktop.key(key)
            with contextlib.suppress(AssertionError):  # at the end of a bar, say, there may be nowhere to go
                wait_for("the focus to move", lambda: self.focused() != before, timeout=1)
        self.fail(f"{key} never comes to {name!r}")

    def open_controls(self):
        self.row("Controls").press()
        slider = self.app.find(role="slider", name="Sample slider")
        self.rest()
        return slider

    # What there is.

    def test_each_node_has_a_role_a_name_a_value_states_an_extent_and_actions(self):
        window = self.app.root.children[0]
        self.assertEqual((window.role, window.name), ("frame", "Sample"))
        self.assertIn("active", window.states)
        self.assertEqual(window.extents[2:], (384, 667))

        bar = self.app.find(role="tool bar", name="Sample")
        self.assertEqual(bar.extents, (*window.extents[:2], 384, 44))
        header = self.app.find(role="heading", name="Values")
        self.assertEqual((header.text, header.actions), ("Values", []))
        footer = self.app.find(name=re.compile("^The switch and the list keep"))
        self.assertEqual(footer.text, footer.name)

        switch_row = self.row("A switch")
        self.assertEqual(switch_row.description, "On")
        switch = self.switch("A switch")
        self.assertLessEqual({"checked", "focusable", "enabled", "sensitive", "showing"}, switch.states)
        self.assertEqual(switch.actions, ["Toggle", "SetFocus"])
        self.assertEqual(switch.extents[2:], (51, 31))

        link = self.row("A list")
        self.assertEqual((link.description, link.actions), ("First", ["Press", "SetFocus"]))
        self.assertGreaterEqual(link.extents[3], 44)
        text = self.row(re.compile("^A text that nobody can change"))
        self.assertNotIn("focusable", text.states)
        self.assertEqual((text.actions, switch_row.actions), ([], []), "a tap on them does nothing")
        self.assertIn("selectable", link.states)

        order = [node.name for node in self.app.nodes(role="list item")]
        self.assertEqual(order[:2] + order[-2:], ["A switch", "A list", "Toggle a Row", "Controls"])
        places = [node.extents[1] for node in self.app.nodes(role="list item")]
        self.assertEqual(places, sorted(places))

    def test_controls_tell_what_they_are(self):
        slider = self.open_controls()
        self.assertEqual((slider.range, slider.value, slider.description), ((0.0, 1.0), 0.5, "50 percent"))
        self.assertEqual(slider.actions, ["Increase", "Decrease", "SetFocus"])
        self.assertEqual(self.app.find(name="Two styles in one line").text, "Two styles in one line")
        disabled = self.switch("Disabled switch")
        self.assertIn("checked", disabled.states)
        self.assertNotIn("sensitive", disabled.states)
        self.assertEqual(disabled.actions, [])
        back = self.app.find(role="push button", name="Back to Sample")
        self.assertEqual(back.actions, ["Press", "SetFocus"])
        picture = self.app.find(name="Sample picture")
        self.assertIn(picture.role, ("image", "icon"))
        self.assertEqual(picture.extents[2:], (120, 120))

    # By assistive technology.

    def test_assistive_technology_operates_every_row(self):
        self.switch("A switch").press()
        self.wait_stored("switch_on", False)
        wait_for("the row to say so", lambda: self.row("A switch").description == "Off")
        self.switch("A switch").press()
        self.wait_stored("switch_on", True)

        self.row("A list").press()
        self.row("Third").press()
        self.wait_stored("choice", 2)
        wait_for("the row to say so", lambda: self.row("A list").description == "Third")
        self.row("A list").press()
        wait_for("the choice to be marked", lambda: "selected" in self.row("Third").states)
        self.app.find(role="push button", name="Back to Sample").press()

        self.row("Toggle a Row").press()
        self.row("A row that comes and goes")
        self.row("Toggle a Row").press()
        self.app.gone(name="A row that comes and goes")

        self.row("A swatch").press()
        self.app.find(name="Sample slider")

    def test_assistive_technology_answers_an_alert(self):
        self.row("Show Alert").press()
        alert = self.app.find(role="alert", name=re.compile("^Which one"))
        self.assertIn("modal", alert.states)
        self.assertEqual(self.app.nodes(role="list item"), [], "what lies behind an alert is out of reach")
        wait_for("the focus on the last button", lambda: self.focused() == ["Right"])
        self.app.find(role="push button", name="Left").press()
        self.row("Last choice: Left")
        self.app.gone(role="alert")

    def test_assistive_technology_operates_every_control(self):
        slider = self.open_controls()
        self.switch("Sample switch").press()
        self.app.find(name="Switched on")
        slider.do("Increase")
        self.app.find(name="Slid to 51 percent")
        slider.do("Decrease")
        slider.do("Decrease")
        self.app.find(name="Slid to 49 percent")
        slider.set_value(0.25)
        label = self.app.find(name="Slid to 25 percent")
        self.assertEqual(label.text, "Slid to 25 percent")
        wait_for("the new value", lambda: slider.value == 0.25)
        slider.focus()
        wait_for("the focus", lambda: self.focused() == ["Sample slider"])

    def test_a_press_while_a_screen_slides_in_is_not_lost(self):
        for _ in range(3):
            self.row("Controls").press()
            # As soon as it is there, which is long before it has arrived.
            self.switch("Sample switch").press()
            self.app.find(name=re.compile("^Switched on"))
            self.app.find(role="push button", name="Back to Sample").press()
            self.switch("A switch").press()
            value = not (self.stored("switch_on") is not False)
            wait_for("the switch in the file", lambda: self.stored("switch_on") is not None)
            self.wait_stored("switch_on", value)

    def test_what_stands_beside_a_progress_panel_can_be_used(self):
        row = self.row("Toggle a Row")
        self.row("Show Progress").press()
        panel = self.app.find(role="progress bar")
        self.assertTrue(panel.name.startswith("Working"))
        wait_for("the row to be usable", lambda: row.actions == ["Press", "SetFocus"])
        row.press()
        self.app.find(name="A row that comes and goes")
        self.app.gone(role="progress bar")

    # By the pointer.

    def test_the_pointer_operates_every_row(self):
        self.click(self.switch("A switch"))
        self.wait_stored("switch_on", False)
        x, y, width, height = self.switch("A switch").extents
        self.desktop.drag((x + 12, y + height / 2), (x + width + 8, y + height / 2))
        self.wait_stored("switch_on", True)

        self.click(self.row("A list"))
        self.row("Second")
        self.rest()
        self.click(self.row("Second"))
        self.wait_stored("choice", 1)
        self.row("Show Alert")
        self.rest()
        self.click(self.row("Show Alert"))
        self.app.find(role="alert")
        # Beside the card an alert stays.
        self.desktop.click(5, 300)
        self.click(self.app.find(role="push button", name="Right"))
        self.row("Last choice: Right")

        self.click(self.row("Toggle a Row"))
        extra = self.row("A row that comes and goes")
        self.still(extra)
        self.assertEqual(extra.extents[1], self.row("Toggle a Row").extents[1] + self.row("Toggle a Row").extents[3])
        self.click(self.row(re.compile("^A text that nobody")))
        self.click(self.row("A swatch"))
        self.app.find(name="Sample slider")

    def test_the_pointer_operates_every_control(self):
        slider = self.open_controls()
        self.click(self.switch("Sample switch"))
        self.app.find(name="Switched on")
        self.click(self.switch("Disabled switch"))
        x, y, width, height = self.still(slider)
        self.desktop.click(x + 12 + (width - 24) * 0.8, y + height / 2)
        self.app.find(name="Slid to 80 percent")
        self.desktop.drag((x + 12 + (width - 24) * 0.8, y + height / 2), (x, y + height / 2 + 60))
        self.app.find(name="Slid to 0 percent")
        self.assertIn("checked", self.switch("Disabled switch").states)
        self.desktop.key("Escape")
        self.row("A switch")

    def test_a_drag_and_the_wheel_scroll_the_page(self):
        list_node = self.app.find(role="list")
        top = self.row("A switch").extents[1]
        middle = self.row("Controls").extents[1]

        self.desktop.drag((180, 560), (180, 360), steps=20)
        wait_for("the page to follow the finger", lambda: self.row("Controls").extents[1] <= middle - 180)
        self.desktop.wheel(180, 400, 40)
        last = self.row("Line 12")
        self.still(last)
        bottom = list_node.extents[1] + list_node.extents[3]
        self.assertLessEqual(last.extents[1] + last.extents[3], bottom)
        # Scrolled rows are where they say they are.
        self.desktop.wheel(180, 400, -80)
        wait_for("the top again", lambda: [row.extents[1] for row in self.app.nodes("list item", "A switch")] == [top])
        self.click(self.switch("A switch"))
        self.wait_stored("switch_on", False)

    def test_a_drag_over_rows_presses_none(self):
        alert = self.still(self.row("Show Alert"))
        self.desktop.drag((180, alert[1] + 20), (180, alert[1] - 100))
        wait_for("the page to follow the finger", lambda: self.app.nodes("list item", "Line 1"))
        self.rest()
        self.assertEqual(self.app.nodes(role="alert"), [])

    # By the keyboard alone.

    def test_the_keyboard_operates_every_row(self):
        self.focus("A switch", "Tab")
        self.desktop.key("space")
        self.wait_stored("switch_on", False)
        self.focus("A list")
        self.desktop.key("Return")
        self.row("Second")
        self.rest()
        self.focus("Second")
        self.desktop.key("Return")
        self.wait_stored("choice", 1)
        self.row("A list")
        self.rest()
        wait_for("the focus where it was", lambda: self.focused() == ["A list"])
        self.focus("Show Alert")
        self.desktop.key("Return")
        self.app.find(role="alert")
        self.desktop.key("shift+Tab")
        wait_for("the other button", lambda: self.focused() == ["Left"])
        self.desktop.key("Tab", "Tab", "Down")
        wait_for("the focus inside the alert", lambda: self.focused() == ["Right"])
        self.desktop.key("KP_Enter")
        self.row("Last choice: Right")
        self.desktop.key("Return")
        self.app.find(role="alert")
        self.desktop.key("Escape")
        self.row("Last choice: Left")
        self.focus("Toggle a Row")
        self.desktop.key("space")
        self.row("A row that comes and goes")
        self.desktop.key("End")
        self.row("Line 12")
        self.desktop.key("Home")
        self.row("A switch")

    def test_the_keyboard_operates_every_control(self):
        self.focus("Controls")
        self.desktop.key("Return")
        self.app.find(role="slider", name="Sample slider")
        self.rest()
        self.focus("Sample switch", "Tab")
        self.desktop.key("space")
        self.app.find(name="Switched on")
        self.focus("Sample slider", "Tab")
        self.desktop.key("Right")
        self.app.find(name="Slid to 51 percent")
        self.desktop.key("shift+Left", "Down")
        self.app.find(name="Slid to 40 percent")
        self.focus("Back to Sample", "Tab")
        self.desktop.key("Return")
        self.row("A switch")

    def test_a_held_key_presses_once(self):
        self.focus("A switch", "Tab")
        for on in (False, True, False):
            self.desktop.xdotool("keydown", "Return")
            time.sleep(1)  # the server repeats a key after 0.66 seconds
            self.desktop.xdotool("keyup", "Return")
            self.wait_stored("switch_on", on)

    # What the window shows, and what the world does to it.

    def test_the_picture_from_the_worker_is_in_the_window(self):
        self.open_controls()
        picture = self.app.find(name="Sample picture")
        wait_for("the picture", lambda: picture.description == "drawn")
        x, y, width, height = self.still(picture)

        def shown():
            _, _, rows = self.desktop.screen()
            at = lambda column, row: tuple(rows[y + int((row + 0.5) * height / 6)][3 * (x + int((column + 0.5) * width / 6)):][:3])
            # Saturation grows downwards, hue to the right: red, yellow, green, cyan, blue, magenta in the last row.
            return [at(column, 5) for column in range(6)] == [
                (255, 0, 0), (255, 255, 0), (0, 255, 0), (0, 255, 255), (0, 0, 255), (255, 0, 255)]
        wait_for("the squares on the screen", shown)

    def test_hiding_the_window_is_going_to_the_background(self):
        self.row("Never in the background")
        window = self.app.window
        for times in (1, 2):
            self.desktop.xdotool("windowunmap", "--sync", window)
            row = self.row(f"Times in the background: {times}")
            self.desktop.xdotool("windowmap", "--sync", window)
            self.app.take_keyboard()
            self.assertIn("showing", row.states)

    def test_a_failure_of_another_program_is_not_told(self):
        subprocess.run(["dbus-send", "--session", "--type=signal", "/com/quorrel/sample", "com.quorrel.sample.failure"],
                       env=self.desktop.environment, check=True)
        self.focus("A switch", "Tab")
        self.desktop.key("space")
        self.wait_stored("switch_on", False)
        self.assertEqual(self.app.nodes(role="alert"), [])


if __name__ == "__main__":
    BUNDLE = sys.argv.pop(2)
    PROGRAM = sys.argv.pop(1)
    unittest.main(verbosity=2)
