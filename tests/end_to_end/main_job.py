"""The main job on a real desktop: the built program with the real daemon and simulated controllers, under a virtual X server, with a bus of its own.

Once by assistive technology, once by the pointer, once by the keyboard alone. What the program did is read from the
preferences file and from what the daemon says.

    main_job.py JOYVANE-SETTINGS
"""

import os
import plistlib
import re
import socket
import sys
import time
import unittest

from joyvane_page import JoyvanePage
from jv_e2e import Desktop, wait_for

PROGRAM = ""


class MainJob(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.desktop = Desktop()
        cls.desktop.__enter__()
        cls.addClassCleanup(cls.desktop.__exit__, None, None, None)

    def start(self, name):
        self.root = self.desktop.path(name)
        self.app = JoyvanePage(self.desktop, PROGRAM, self.root, "--simulate", errors=self.desktop.path(name + ".txt"))
        self.addCleanup(self.app.__exit__, None, None, None)
        self.app.find(name="Controller")
        self.app.take_keyboard()

    def rest(self):
        """A screen that slides in takes neither touches nor keys, and nothing tells how far it is."""
        time.sleep(0.6)

    def click(self, name):
        self.app.find(name=name)
        self.rest()

        def middle():
            for node in self.app.nodes(name=name):
                if "showing" in node.states and node.extents[3] > 0 and node.extents[1] >= 44:
                    return node.middle
            return None
        self.desktop.click(*wait_for(f"{name!r} to click", middle))

    def end(self):
        self.assertEqual(self.app.close(), 0)
        self.assertFalse(os.path.exists(os.path.join(self.root, "Library/Caches/jvncontrol.sock")))

    def quit_while_it_waits(self, name):
        """How long the end of the program takes, in seconds, while it waits for a daemon that is not its own."""
        self.root = self.desktop.path(name)
        preferences = os.path.join(self.root, "var/mobile/Library/Preferences")
        caches = os.path.join(self.root, "Library/Caches")
        os.makedirs(preferences)
        os.makedirs(caches)
        with open(os.path.join(preferences, "com.quorrel.joyvane.plist"), "wb") as file:
            plistlib.dump({"controller_type": 0, "connection_mode": 1}, file)
        with socket.socket(socket.AF_UNIX) as daemon:
            daemon.bind(os.path.join(caches, "jvncontrol.sock"))
            daemon.listen(8)
            self.app = JoyvanePage(self.desktop, PROGRAM, self.root, errors=self.desktop.path(name + ".txt"))
            self.addCleanup(self.app.__exit__, None, None, None)
            query = daemon.accept()[0]
            self.assertEqual(query.recv(100), bytes([5] + [0] * 11))
            query.close()
            self.app.press("Connect Controller")
            connect = daemon.accept()[0]
            self.assertEqual(len(connect.recv(100)), 20)
            begun = time.monotonic()
            self.assertEqual(self.app.close(), 0)
            took = time.monotonic() - begun
            self.assertEqual(connect.recv(100), b"", "nothing more is said")
            connect.close()
        return took

    def test_quitting_while_the_daemon_is_silent_takes_half_a_second_at_most(self):
        # The wait for the reply is twenty seconds. A machine that is busy with other things may be late itself.
        for attempt in range(3):
            took = self.quit_while_it_waits(f"silent{attempt}")
            if took < 0.5:
                return
        self.fail(f"it took {took} s")

    def test_without_a_daemon_the_page_says_so_and_lives(self):
        self.root = self.desktop.path("alone")
        self.app = JoyvanePage(self.desktop, PROGRAM, self.root, errors=self.desktop.path("alone.txt"))
        self.addCleanup(self.app.__exit__, None, None, None)
        self.app.find(name=re.compile("daemon does not answer"))
        self.app.press("Restart Daemons")
        self.app.find(role="alert", name=re.compile("^Important!"))
        self.app.press("Dismiss")
        self.app.gone(name=re.compile("^Important!"))
        # Still true: it stays until somebody puts it away.
        self.app.find(name=re.compile("daemon does not answer"))
        self.app.press("Close")
        self.app.gone(name=re.compile("daemon does not answer"))
        self.assertEqual(self.app.close(), 0)

    def test_the_installed_tool_is_started_where_the_root_has_none(self):
        self.root = self.desktop.path("installed")
        preferences = os.path.join(self.root, "var/mobile/Library/Preferences")
        os.makedirs(preferences)
        with open(os.path.join(preferences, "com.quorrel.joyvane.plist"), "wb") as file:
            plistlib.dump({"controller_type": 1}, file)
        # There is no Bluetooth here, and the tool finds that out by itself.
        self.desktop.environment["DBUS_SYSTEM_BUS_ADDRESS"] = "unix:path=/nonexistent/system"
        self.app = JoyvanePage(self.desktop, PROGRAM, self.root, errors=self.desktop.path("installed.txt"))
        self.addCleanup(self.app.__exit__, None, None, None)
        self.app.press("Pair Controller")
        self.app.find(role="alert", name=re.compile("BTstack was not activated"))
        self.app.press("Dismiss")
        self.assertEqual(self.app.close(), 0)

    def test_a_restart_of_the_daemons_keeps_the_socket(self):
        self.start("restart")
        inode = os.stat(os.path.join(self.root, "Library/Caches/jvncontrol.sock")).st_ino
        for _ in range(2):
            self.app.press("Restart Daemons")
        self.app.press("Controller")
        self.app.press("Keyboard")
        self.app.wait_stored("controller_type", 6)
        self.assertEqual(os.stat(os.path.join(self.root, "Library/Caches/jvncontrol.sock")).st_ino, inode)
        self.assertFalse(self.app.nodes(role="alert"))
        self.end()

    def test_by_assistive_technology(self):
        self.start("assistive")
        self.app.press("Controller")
        self.app.press("DualShock 4")
        self.app.wait_stored("controller_type", 1)
        self.app.press("Connection")
        self.app.press("Connect by Hand")
        self.app.wait_stored("connection_mode", 1)

        self.app.press("Connect Controller")
        self.app.find(name=None, role="alert")
        self.app.press("Dismiss")
        self.app.gone(role="alert")

        self.app.press("Pair Controller")
        wait_for("the paired controller's address", lambda: len(self.app.stored("PS4BluetoothAddress") or b"") == 6)
        self.app.press("Dismiss")
        self.app.press("Connect Controller")
        self.app.find(name="Disconnect Controller")

        self.assertEqual(self.app.find(role="list item", name="Choose LED Color").description, "blue, 004efd")
        self.app.press("Choose LED Color")
        wait_for("the picker's slider", lambda: self.app.nodes(role="slider"))
        wait_for("the brightness as a value", lambda: self.app.nodes(role="slider")[0].range)
        self.desktop.key("Escape")
        self.app.press("Disconnect Controller")
        self.app.find(name="Connect Controller")

        self.app.press("Ambient LED Color")
        self.app.wait_stored("JVNAmbientColorKey", True)
        self.app.gone(name="Choose LED Color")
        self.end()

    def test_by_the_pointer(self):
        self.start("pointer")
        self.click("Controller")
        self.click("DualShock 4")
        self.app.wait_stored("controller_type", 1)
        self.click("Choose LED Color")
        field = self.app.find(role="canvas", name="Hue and saturation")
        self.rest()
        x, y, width, height = field.extents
        self.desktop.drag((x + width * 0.8, y + height * 0.5), (x + 8, y + 8))
        self.app.wait_stored("JVNLEDColorKey", "fd0000")
        self.desktop.key("Escape")

        self.click("Controller")
        self.click("Keyboard")
        self.app.wait_stored("controller_type", 6)
        self.click("Configure Keymap")
        self.click("D-pad up")
        self.app.find(name="D-pad up")
        self.desktop.key("d")
        self.desktop.key("Escape")
        wait_for("the keymap in the file", lambda: (self.app.stored("JVNKeyboardKeymapKey") or {}).get("7") == 3)
        keymap = self.app.stored("JVNKeyboardKeymapKey")
        self.assertNotIn("26", keymap)
        self.assertEqual(sorted(keymap.values()), [2, 3, 4, 5, 6, 7, 8, 9, 10, 21])
        self.end()

    def test_by_the_keyboard_alone(self):
        self.start("keyboard")
        self.desktop.key("Tab")
        self.focus("Controller")
        self.desktop.key("Return")
        self.app.find(name="Keyboard")
        self.focus("Keyboard")
        self.desktop.key("space")
        self.app.wait_stored("controller_type", 6)
        self.focus("Force Extended Gamepad")
        self.desktop.key("space")
        self.app.find(role="alert")
        self.desktop.key("Return")
        self.app.gone(role="alert")
        self.app.wait_stored("JVNForceExtendedGamepad", True)
        self.focus("Configure Keymap")
        self.desktop.key("Return")
        self.app.find(name="D-pad left")
        self.focus("D-pad left")
        self.desktop.key("Return")
        self.desktop.key("Tab")  # taken by the waiting row, not by the application
        self.desktop.key("Escape")
        wait_for("Tab as a key of the map", lambda: (self.app.stored("JVNKeyboardKeymapKey") or {}).get("43") == 2)
        self.end()

    def focus(self, name):
        """Down the page by the arrow until the row has the keyboard."""
        self.app.find(name=name)
        self.rest()
        for _ in range(40):
            if any("focused" in node.states for node in self.app.nodes(name=name)):
                return
            self.desktop.key("Down")
        self.fail(f"{name!r} cannot be reached with the arrow:\n{self.app.tree()}")


if __name__ == "__main__":
    PROGRAM = sys.argv.pop(1)
    unittest.main(verbosity=2)
