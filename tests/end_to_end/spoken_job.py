"""The main job as a screen reader hears it: the built program on a desktop of its own, and beside it a reader that
records every event of the accessibility bus.

    spoken_job.py JOYVANE-SETTINGS
"""

import os
import plistlib
import re
import socket
import sys
import unittest

from gi.repository import Gio, GLib
from joyvane_page import JoyvanePage
from jv_e2e import Desktop, wait_for
from screen_reader import ScreenReader

PROGRAM = ""
CENTER = "com.quorrel.jvn.bootstrap"
TOOL = "#!/bin/sh\nexec sleep 1000\n"  # what it would report the test does


class SpokenJob(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.desktop = Desktop()
        cls.desktop.__enter__()
        cls.addClassCleanup(cls.desktop.__exit__, None, None, None)
        cls.reader = ScreenReader(cls.desktop)

    def start(self, name, *options):
        self.reader.forget()
        self.root = self.desktop.path(name)
        self.app = JoyvanePage(self.desktop, PROGRAM, self.root, *options, errors=self.desktop.path(name + ".txt"))
        self.addCleanup(self.app.__exit__, None, None, None)
        self.app.find(role="list", name="Joyvane")

    def choose(self, row, title, key, value):
        self.app.press(row)
        self.app.press(title)
        self.app.wait_stored(key, value)
        self.app.find(role="list", name="Joyvane")

    def report(self, state):
        """As the pairing tool does, once the page listens: it takes its name anew each time it is shown."""
        address = self.desktop.environment["DBUS_SESSION_BUS_ADDRESS"]
        flags = Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION
        bus = Gio.DBusConnection.new_for_address_sync(address, flags, None, None)
        message = GLib.Variant("(a{sv})", ({"JVNDiscoveryState": GLib.Variant("x", state)},))

        def delivered():
            try:
                bus.call_sync(CENTER, "/", CENTER, "JVNDiscoveryUpdate", message, None,
                              Gio.DBusCallFlags.NO_AUTO_START, -1, None)
                return True
            except GLib.Error:
                return False
        wait_for("the page to take a message", delivered)
        bus.close_sync(None)

    def test_the_main_job_is_heard(self):
        self.start("job", "--simulate")
        self.choose("Controller", "DualShock 4", "controller_type", 1)
        self.choose("Connection", "Connect by Hand", "connection_mode", 1)

        self.reader.forget()
        self.app.press("Pair Controller")
        self.reader.heard("announcement", value=re.compile("Success!\nController paired"), role="alert")
        self.app.press("Dismiss")
        self.app.gone(role="alert")
        self.app.press("Connect Controller")
        self.reader.heard("property-change:accessible-name", name="Disconnect Controller", role="list item")

        self.app.press("Choose LED Color")
        slider = wait_for("the picker's slider", lambda: self.app.nodes(role="slider"))[0]
        self.reader.heard("property-change:accessible-name", role="frame", value="LED Color")
        slider.set_value(50)
        self.reader.heard("property-change:accessible-value", role="slider")
        self.app.press("Back to Joyvane")
        self.app.find(role="list", name="Joyvane")

        self.reader.forget()
        self.app.press("Ambient LED Color")
        self.reader.heard("state-changed:checked", name="Ambient LED Color", role="check box", detail=1)
        self.app.press("Disconnect Controller")
        self.reader.heard("property-change:accessible-name", name="Connect Controller", role="list item")
        self.assertEqual(self.app.close(), 0)

    def test_a_row_is_told_of_at_the_place_that_it_comes_to(self):
        self.start("rows", "--simulate")
        self.choose("Controller", "DualShock 4", "controller_type", 1)
        row = self.app.find(role="list item", name="Choose LED Color")
        place = row.accessible.get_index_in_parent()
        self.assertGreater(place, 2)

        self.reader.forget()
        self.app.press("Ambient LED Color")
        self.reader.heard("children-changed:remove", name="Joyvane", role="list", detail=place)
        self.app.press("Ambient LED Color")

        self.reader.heard("children-changed:add", name="Joyvane", value="Choose LED Color", detail=place)
        self.assertEqual(self.app.close(), 0)

    def test_each_text_of_a_search_is_announced_and_the_panel_is_busy(self):
        tool = self.desktop.path("search", "usr/bin/jvndiscovery")
        os.makedirs(os.path.dirname(tool))
        with open(tool, "w") as file:
            file.write(TOOL)
        os.chmod(tool, 0o755)
        self.start("search")
        self.reader.heard("announcement", value=re.compile("daemon does not answer"), role="alert")
        self.choose("Controller", "DualShock 4", "controller_type", 1)

        self.app.press("Pair Controller")
        self.reader.heard("announcement", value=re.compile("^Activating Bluetooth"), role="progress bar")
        self.reader.heard("state-changed:busy", role="progress bar", detail=1)
        self.assertIn("busy", self.app.find(role="progress bar").states)
        self.report(4)
        self.reader.heard("announcement", value=re.compile("^Starting Search"), role="progress bar")
        self.report(0)
        self.reader.heard("announcement", value=re.compile("^Searching.*Share and PS", re.DOTALL), role="progress bar")
        self.report(2)
        self.reader.heard("announcement", value=re.compile("Success!"), role="alert")
        self.reader.heard("state-changed:busy", detail=0)
        self.assertEqual(self.app.close(), 0)

    def test_a_row_that_waits_for_the_daemon_is_heard_to_be_disabled(self):
        path = self.desktop.path("waits", "Library/Caches/jvncontrol.sock")
        os.makedirs(os.path.dirname(path))
        with socket.socket(socket.AF_UNIX) as daemon:
            daemon.bind(path)
            daemon.listen(8)
            preferences = self.desktop.path("waits", "var/mobile/Library/Preferences")
            os.makedirs(preferences)
            with open(os.path.join(preferences, "com.quorrel.joyvane.plist"), "wb") as file:
                plistlib.dump({"controller_type": 2, "connection_mode": 1,
                              "PS4BluetoothAddress": bytes(range(1, 7))}, file)
            self.start("waits")
            daemon.accept()[0].close()  # what the page asks as it appears
            self.reader.forget()
            self.app.press("Connect Controller")
            connect = daemon.accept()[0]
            self.reader.heard("state-changed:enabled", name="Connect Controller", detail=0)
            connect.close()
            self.reader.heard("state-changed:enabled", name="Connect Controller", detail=1)
            self.assertEqual(self.app.close(), 0)

    def test_the_list_of_a_screen_without_a_title_is_called_as_the_window(self):
        self.start("keymap", "--simulate")
        self.choose("Controller", "Keyboard", "controller_type", 6)
        self.app.press("Configure Keymap")
        row = self.app.find(role="list item", name="D-pad left")
        wait_for("its list's name", lambda: row.accessible.get_parent().get_name() == "Joyvane")
        self.assertEqual(self.app.close(), 0)

    def test_labels_say_how_they_are_drawn_and_have_no_caret(self):
        self.start("labels", "--simulate")
        label = self.app.find(role="label", name=re.compile("^The controller is paired once"))
        text = label.accessible.get_text_iface()
        style, start, end = text.get_text_attributes(0)
        self.assertEqual((start, end), (0, len(label.name)))
        self.assertEqual(text.get_caret_offset(), -1)
        self.assertTrue(style["family-name"])
        self.assertGreater(float(style["size"]), 5)
        self.assertEqual(len(style["fg-color"].split(",")), 3)
        self.assertEqual(style["justification"], "left")
        self.assertEqual(self.app.close(), 0)


if __name__ == "__main__":
    PROGRAM = sys.argv.pop(1)
    unittest.main(verbosity=2)
