"""The first minute on a real desktop: what the program says of itself when it is opened for the first time, the keys
that every program knows, a trial with simulated controllers, and the gamepad while keys are pressed.

    first_minute.py JOYVANE-SETTINGS
"""

import os
import plistlib
import re
import socket
import struct
import sys
import unittest

from jv_e2e import App, Desktop, wait_for

PROGRAM = ""
TITLE = "Play with what you have"
LISTEN, WAITING_FOR_KEYS, PLAYING = 4, 8, 9  # services/input_protocol/messages.h


class FirstMinute(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.desktop = Desktop()
        cls.desktop.__enter__()
        cls.addClassCleanup(cls.desktop.__exit__, None, None, None)

    def start(self, *options, data="data"):
        """In the root that it has by itself."""
        self.data = self.desktop.path(data)
        os.makedirs(self.data, mode=0o700, exist_ok=True)
        self.app = App(self.desktop, [PROGRAM, *options], environment={"XDG_DATA_HOME": self.data})
        self.addCleanup(self.app.__exit__, None, None, None)
        self.app.window
        self.app.take_keyboard()
        return self.app

    def key_until(self, name, what, condition):
        """A screen that slides takes no keys."""
        def pressed():
            if condition():
                return True
            self.desktop.key(name)
            return False
        wait_for(what, pressed)

    def shows_help(self):
        return any("showing" in node.states for node in self.app.nodes(name=TITLE))

    def test_the_first_opening_explains_and_the_second_does_not(self):
        self.start(data="first")
        self.app.find(role="heading", name="What It Needs")
        self.app.find(name=re.compile("^Daemon: Not Found"))
        self.app.find(role="push button", name="Set Up Your Controller").press()
        self.app.gone(name=TITLE)
        self.app.find(name="Controller")
        self.assertEqual(self.app.close(), 0)

        self.start(data="first")
        self.app.find(name="Controller")
        self.assertFalse(self.app.nodes(name=TITLE))
        self.desktop.key("F1")
        self.app.find(name=TITLE)
        self.key_until("Escape", "the help to go", lambda: not self.shows_help())
        self.desktop.key("F1")
        self.app.find(name=TITLE)
        self.key_until("alt+Left", "the help to go", lambda: not self.shows_help())
        self.app.find(role="push button", name="Help")
        self.desktop.key("ctrl+q")
        self.assertEqual(self.app.wait(), 0)

    def test_a_waiting_row_takes_the_keys_that_every_program_knows(self):
        root = self.desktop.path("keys")
        self.start("--simulate", "--root", root)
        self.app.find(name="Controller").press()
        self.app.find(name="Keyboard").press()
        self.app.find(name="Configure Keymap").press()
        self.app.find(name="D-pad up").press()
        wait_for("the row to wait", lambda: "selected" in self.app.find(name="D-pad up").states)
        self.desktop.key("F1")
        wait_for("the row to have its key", lambda: "selected" not in self.app.find(name="D-pad up").states)
        self.assertFalse(self.app.nodes(name=TITLE))
        self.desktop.key("alt+Left")  # a key of the page again: what was chosen is stored on the way back
        f1 = "58"  # its usage

        def stored():
            with open(os.path.join(root, "var/mobile/Library/Preferences/com.quorrel.joyvane.plist"), "rb") as file:
                return plistlib.load(file).get("JVNKeyboardKeymapKey", {}).get(f1)
        wait_for("F1 in the keymap", lambda: stored() == 3)
        self.assertEqual(self.app.close(), 0)

    def test_a_trial_changes_nothing_of_the_users(self):
        self.start(data="mine")
        self.app.find(role="push button", name="Set Up Your Controller").press()
        self.app.gone(name=TITLE)
        self.desktop.key("F1")
        self.app.find(role="push button", name="Try Without a Controller").press()

        def other():
            """The program that it has started: the one window that is not ours."""
            windows = self.desktop.xdotool("search", "--onlyvisible", "--class", "joyvane").split()
            return next((int(self.desktop.xdotool("getwindowpid", window)) for window in windows
                         if int(self.desktop.xdotool("getwindowpid", window)) != self.app.process.pid), None)
        process = wait_for("the trial's window", other)
        trial = self.desktop.path("run", "joyvane-trial")
        wait_for("the trial's daemon", lambda: os.path.exists(os.path.join(trial, "Library/Caches/jvncontrol.sock")))
        os.kill(process, 15)
        wait_for("the trial to end", lambda: not os.path.exists(os.path.join(trial, "Library/Caches/jvncontrol.sock")))
        self.assertEqual(self.app.close(), 0)
        self.assertEqual([".introduced"], os.listdir(os.path.join(self.data, "joyvane")))

    def test_the_gamepad_shows_what_keys_arrive_as(self):
        path = self.desktop.path("input")
        with socket.socket(socket.AF_UNIX, socket.SOCK_SEQPACKET) as service:
            service.bind(path)
            service.listen()
            self.start("--root", self.desktop.path("playing"), "--input-socket", path)
            self.app.find(role="push button", name="Help")
            self.desktop.key("F1")
            self.app.find(role="push button", name="Try It").press()
            connection = service.accept()[0]
        self.assertEqual(struct.unpack("<HHB3x", connection.recv(100)), (1, 1, LISTEN))

        def state(readiness, inputs):
            connection.send(struct.pack("<HHBBBBBB2xI", 1, 102, readiness, 0, 1, 1, 1, 1, inputs))
        state(WAITING_FOR_KEYS, 0)
        self.app.find(name="Let go of all keys")
        state(PLAYING, 0)
        self.app.find(name="Press a key")
        state(PLAYING, 1 << 3 | 1 << 5)
        self.app.find(name="It arrives as up, A")
        state(PLAYING, 0)
        self.app.find(name="Press a key")
        self.assertEqual(self.app.close(), 0)
        self.assertEqual(connection.recv(100), b"")
        connection.close()


if __name__ == "__main__":
    PROGRAM = sys.argv.pop(1)
    unittest.main(verbosity=2)
