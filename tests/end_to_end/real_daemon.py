"""The page with the daemon and the tool as they are installed: the real jvnd and jvndiscovery, over buses of their own, a Bluetooth service that does as it is told, and nobody's devices behind the input service's socket.

    real_daemon.py JOYVANE-SETTINGS JVND MOCK-BLUETOOTH
"""

import os
import re
import socket
import struct
import subprocess
import sys
import threading
import time
import unittest

from joyvane_page import JoyvanePage
from jv_e2e import Desktop, wait_for

PROGRAM, JVND, MOCK = "", "", ""
CONTROLLER = "00:AA:01:01:00:01"
ADDRESS = bytes.fromhex(CONTROLLER.replace(":", ""))

HELLO, SETTINGS, LIGHT, CONTROLLER_MESSAGE = 1, 2, 3, 104  # services/input_protocol/messages.h
LEAVE_ALONE, SET = 0, 1


class InputService:
    """What jvninputd hears of its governor, and what it says of controllers."""

    def __init__(self, path):
        self.heard = []
        self.connection = None
        self.listener = socket.socket(socket.AF_UNIX, socket.SOCK_SEQPACKET)
        self.listener.bind(path)
        self.listener.listen()
        threading.Thread(target=self._serve, daemon=True).start()

    def _serve(self):
        while True:
            try:
                self.connection = self.listener.accept()[0]
                while message := self.connection.recv(4096):
                    self.heard.append(message)
            except ConnectionResetError:
                continue
            except OSError:
                return

    def close(self):
        self.listener.close()

    def controller(self, present):
        self.connection.send(struct.pack("<HH6sBBB3x", 1, CONTROLLER_MESSAGE, ADDRESS, 1, present, 1))

    def messages(self, kind):
        return [message for message in self.heard if struct.unpack_from("<HH", message) == (1, kind)]

    def light(self):
        """The last word on the light: (address, action, colour as on the page); None before there was one."""
        if not self.messages(LIGHT):
            return None
        address, action, colour = struct.unpack("<4x6sB3s2x", self.messages(LIGHT)[-1])
        return address, action, colour.hex()

    def keyboard(self):
        """The last word on the keyboard: (plays, by hand, extended, {usage: input}); None before there was one."""
        if not self.messages(SETTINGS):
            return None
        message = self.messages(SETTINGS)[-1]
        plays, mode, extended, count = struct.unpack_from("<BBBxI", message, 4)
        return plays, mode, extended, dict(struct.iter_unpack("<HH", message[12:12 + 4 * count]))


class RealDaemon(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.desktop = Desktop()
        cls.desktop.__enter__()
        cls.addClassCleanup(cls.desktop.__exit__, None, None, None)

    def setUp(self):
        self.folder = self.desktop.path(self.id().rpartition(".")[2][:20])
        os.mkdir(self.folder)
        self.root = os.path.join(self.folder, "root")
        self.socket_path = os.path.join(self.root, "Library/Caches/jvncontrol.sock")
        self.spawn(["dbus-daemon", "--session", "--nofork", "--nopidfile", "--print-address=1"], "system-bus")
        self.desktop.environment["DBUS_SYSTEM_BUS_ADDRESS"] = wait_for(
            "the system bus", lambda: re.search(r"^(unix:.*)\n", self.said("system-bus"), re.MULTILINE))[1]
        self.mock = self.spawn([MOCK, CONTROLLER], "bluetooth")
        wait_for("the Bluetooth service", lambda: "ready" in self.said("bluetooth"))
        self.input = InputService(os.path.join(self.folder, "input"))
        self.addCleanup(self.input.close)
        self.spawn([JVND, "--root", self.root, "--trace", "--input-socket", os.path.join(self.folder, "input")], "jvnd")
        wait_for("the daemon", lambda: "ready" in self.said("jvnd"))
        self.app = JoyvanePage(self.desktop, PROGRAM, self.root, errors=os.path.join(self.folder, "errors"))
        self.addCleanup(self.app.__exit__, None, None, None)
        self.app.find(name="Controller")
        self.app.take_keyboard()

    def spawn(self, command, name):
        with open(os.path.join(self.folder, name), "w") as output:
            process = subprocess.Popen(command, env=self.desktop.environment, stdin=subprocess.PIPE, stdout=output,
                                       stderr=output, text=True)

        def end():
            process.stdin.close()
            process.terminate()
            process.wait(10)
        self.addCleanup(end)
        return process

    def said(self, name):
        with open(os.path.join(self.folder, name)) as file:
            return file.read()

    def frames(self):
        """What went over the control socket, without the connections' numbers and the meanings."""
        return re.findall(r"^\d+ ([<>] [0-9a-f. ]+) \|", self.said("jvnd"), re.MULTILINE)

    def wait(self, what, condition):
        try:
            return wait_for(what, condition)
        except AssertionError:
            for name in ("jvnd", "bluetooth"):
                print(f"--- {name}:\n{self.said(name)}", file=sys.stderr)
            raise

    def choose_by_hand(self):
        self.app.press("Controller")
        self.app.press("DualShock 4")
        self.app.press("Connection")
        self.app.press("Connect by Hand")
        self.wait("the settings in the file",
                  lambda: (self.app.stored("controller_type"), self.app.stored("connection_mode")) == (1, 1))

    def pair(self):
        self.app.press("Pair Controller")
        self.app.find(role="alert", name=re.compile("Success!"))
        self.app.press("Dismiss")
        self.app.gone(role="alert")

    def test_the_main_job(self):
        self.assertEqual(self.input.heard, [], "nothing is chosen that devices would be wanted for")
        self.choose_by_hand()
        self.wait("the light for one on a cable", lambda: self.input.light() == (bytes(6), SET, "004efd"))

        # Pair.
        self.pair()
        self.assertEqual(self.app.stored("PS4BluetoothAddress"), ADDRESS)
        self.assertEqual(self.said("bluetooth").split("\n")[1:-1],
                         ["StartDiscovery hci0", "StopDiscovery hci0", "RegisterAgent NoInputNoOutput", "Pair 00:01",
                          "Set Trusted 00:01", "Set WakeAllowed 00:01", "Connect 00:01", "UnregisterAgent"])
        self.wait("the light for the controller", lambda: self.input.light() == (ADDRESS, SET, "004efd"))
        self.assertEqual(self.input.keyboard()[0], 0)

        # Connect: it was switched off since, and games can open it a little later than it is linked.
        self.mock.stdin.write(f"gone {CONTROLLER}\n")
        self.mock.stdin.flush()
        calls = self.said("bluetooth").count("Connect 00:01")
        count = len(self.frames())
        self.app.press("Connect Controller")
        self.wait("the call", lambda: self.said("bluetooth").count("Connect 00:01") > calls)
        self.input.controller(present=1)
        self.app.find(name="Disconnect Controller")
        self.assertEqual(self.frames()[count:],
                         ["< 01 00 00 00 01 00 00 00 00 00 00 00 .. .. .. .. 00 01 00 00",
                          "> 08 00 00 00 01 00 00 00 00 00 00 00",
                          "< 04 00 00 00 01 00 00 00 00 00 00 00 00 4e fd 00"])

        # Pick.
        count = len(self.frames())
        self.app.press("Choose LED Color")
        field = self.app.find(role="canvas", name="Hue and saturation")
        time.sleep(0.6)  # a screen that slides in takes no touches, and nothing tells how far it is
        x, y, width, height = field.extents
        self.desktop.drag((x + width * 0.8, y + height * 0.5), (x + 8, y + 8))
        self.wait("the colour in the file", lambda: self.app.stored("JVNLEDColorKey") == "fd0000")
        self.desktop.key("Escape")
        self.wait("the colour's frame",
                  lambda: "< 04 00 00 00 01 00 00 00 00 00 00 00 fd 00 00 00" in self.frames()[count:])
        self.wait("the colour at the devices", lambda: self.input.light() == (ADDRESS, SET, "fd0000"))

        # Ambient: the light is the games', until it is off again.
        self.app.press("Ambient LED Color")
        self.wait("a light that is left alone", lambda: self.input.light()[1] == LEAVE_ALONE)
        self.app.press("Ambient LED Color")
        self.wait("the colour again", lambda: self.input.light() == (ADDRESS, SET, "fd0000"))

        # Disconnect.
        count = len(self.frames())
        self.app.press("Disconnect Controller")
        self.app.find(name="Connect Controller")
        self.wait("the link's end", lambda: "Disconnect 00:01" in self.said("bluetooth"))
        self.assertEqual(self.frames()[count:],
                         ["< 00 00 00 00 01 00 00 00 00 00 00 00", "< 06 00 00 00 01 00 00 00 00 00 00 00"])
        self.input.controller(present=0)

    def test_a_restart_keeps_the_socket_and_the_keyboard_is_governed_before_and_after_it(self):
        self.app.press("Controller")
        self.app.press("Keyboard")
        self.wait("the keyboard", lambda: self.input.keyboard() is not None)
        self.assertEqual(self.input.keyboard()[0], 1)
        before = self.input.keyboard()
        self.assertEqual(before[1:3], (0, 0))
        self.assertEqual(sorted(before[3].values()), [*range(1, 11), 21])

        inode = os.stat(self.socket_path).st_ino
        for count in range(2, 5):
            self.app.press("Restart Daemons")
            self.wait("the next start", lambda: self.said("jvnd").count("ready") == count)
            self.wait("the next governor", lambda: len(self.input.messages(HELLO)) == count)
            self.wait("its settings", lambda: self.input.heard[-1:] != [self.input.messages(HELLO)[-1]] and
                      self.input.keyboard() == before)
        self.assertFalse(self.app.nodes(role="alert"))
        self.assertEqual(os.stat(self.socket_path).st_ino, inode)
        self.assertEqual([frame for frame in self.frames() if frame.startswith("< 03")], ["< 03" + " 00" * 19] * 3)

        self.app.press("Force Extended Gamepad")
        self.app.press("Dismiss")
        self.wait("the extended profile", lambda: self.input.keyboard()[2] == 1)
        self.app.press("Configure Keymap")
        self.app.press("D-pad up")
        time.sleep(0.6)
        self.desktop.key("d")
        self.desktop.key("Escape")
        self.wait("the key at the devices", lambda: self.input.keyboard()[3].get(7) == 3)


if __name__ == "__main__":
    MOCK, JVND, PROGRAM = sys.argv.pop(), sys.argv.pop(), sys.argv.pop()
    unittest.main(verbosity=2)
