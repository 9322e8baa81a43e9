"""The session bus, the accessibility bus or the X server stop, or talk nonsense, at some moment: the window goes on as far
as it can, the program ends when it is told to, and the log says what is missing.

    stopped_peers.py JOYVANE-SETTINGS SAMPLE.BUNDLE [--full] [TEST...]

Some moments and bytes of each kind; with --full every 5 ms of the start and every byte of the bus's answers.
"""

import contextlib
import ctypes
import os
import plistlib
import select
import signal
import socket
import subprocess
import sys
import threading
import time
import unittest

from jv_e2e import Desktop, wait_for

PROGRAM, SAMPLE = sys.argv[1:3]
FULL = "--full" in sys.argv
REACTION = 0.1  # seconds in which the window does what it is told
END = 0.5  # seconds in which the program ends
SLACK = 1.0  # that a busy machine may take in addition
START = 301  # milliseconds in which a start is over


def moments(step):
    """Milliseconds after the start: every 5, or every `step` when there is little time."""
    return range(0, START, 5 if FULL else step)


class Pointer:
    """A mouse: its clicks are on their way to the X server when these return, with no program to be started before."""

    def __init__(self, display):
        self.x11, self.test = ctypes.CDLL("libX11.so.6"), ctypes.CDLL("libXtst.so.6")
        self.x11.XOpenDisplay.restype = ctypes.c_void_p
        self.display = ctypes.c_void_p(self.x11.XOpenDisplay(display.encode()))

    def move(self, x, y):
        self.test.XTestFakeMotionEvent(self.display, -1, round(x), round(y), ctypes.c_ulong(0))
        self.x11.XSync(self.display, 0)

    def click(self):
        for pressed in (1, 0):
            self.test.XTestFakeButtonEvent(self.display, 1, pressed, ctypes.c_ulong(0))
        self.x11.XSync(self.display, 0)


class Proxy:
    """Stands before the bus. What it passes on of the bus's answers to the connection of that number goes through
    `change(bytes, offset)`, which gives back what is passed on instead, or None: from then on nothing is."""

    def __init__(self, path, bus, change, number=None):
        self.bus, self.change, self.number, self.passed, self.accepted = bus, change, number, 0, 0
        with contextlib.suppress(FileNotFoundError):
            os.unlink(path)
        self.listener = socket.socket(socket.AF_UNIX)
        self.listener.bind(path)
        self.listener.listen(16)
        self.address = "unix:path=" + path
        self.open = []
        threading.Thread(target=self.accept, daemon=True).start()

    def accept(self):
        with contextlib.suppress(OSError):
            while True:
                client, _ = self.listener.accept()
                bus = socket.socket(socket.AF_UNIX)
                bus.connect(self.bus)
                self.open += [client, bus]
                number, self.accepted = self.accepted, self.accepted + 1
                changed = self.number is None or self.number == number
                threading.Thread(target=self.copy, args=(client, bus, None), daemon=True).start()
                threading.Thread(target=self.copy, args=(bus, client, self.change if changed else None),
                                 daemon=True).start()

    def copy(self, source, target, change):
        offset = 0
        with contextlib.suppress(OSError):
            while data := source.recv(4096):
                passed = change(data, offset) if change else data
                offset += len(data)
                if change:
                    self.passed = max(self.passed, offset)
                if passed is None:
                    while source.recv(4096):
                        pass
                    return
                target.sendall(passed)
        with contextlib.suppress(OSError):
            target.shutdown(socket.SHUT_RDWR)

    def close(self):
        self.listener.close()
        for end in self.open:
            with contextlib.suppress(OSError):
                end.shutdown(socket.SHUT_RDWR)
            end.close()


def socket_of(address):
    fields = dict(field.split("=", 1) for field in address.split(":", 1)[1].split(","))
    return "\0" + fields["abstract"] if "abstract" in fields else fields["path"]


class StoppedPeers(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.desktop = Desktop()
        cls.desktop.__enter__()
        cls.addClassCleanup(cls.desktop.__exit__, None, None, None)
        cls.x_server, cls.bus = (process.pid for process in cls.desktop.processes[:2])
        cls.runs = 0
        cls.took = {"did what it was told": [], "had ended": []}
        cls.pointer = Pointer(cls.desktop.environment["DISPLAY"])
        # Where the switch is, while assistive technology can be asked. It is there from now on.
        with cls.start() as app:
            cls.switch = app.find(name="A switch").middle
            app.close()
        cls.accessibility = cls.accessibility_processes()

    @classmethod
    def tearDownClass(cls):
        print(f"{cls.runs} starts")
        for what, seconds in cls.took.items():
            times = sorted(second * 1000 for second in seconds) or [0]
            print(f"{len(seconds)} times until it {what}: median {times[len(times) // 2]:.0f} ms, "
                  f"99 of 100 within {times[len(times) * 99 // 100]:.0f} ms, longest {times[-1]:.0f} ms")

    @classmethod
    def start(cls, **environment):
        cls.runs += 1
        cls.root = cls.desktop.path(f"root-{cls.runs}")
        return cls.desktop.start([PROGRAM, "--root", cls.root, "--bundle", SAMPLE], environment=environment)

    @classmethod
    def accessibility_processes(cls):
        """The accessibility bus, who starts it, and who keeps its list."""
        found = []
        for name in filter(str.isdigit, os.listdir("/proc")):
            with contextlib.suppress(OSError):
                with open(f"/proc/{name}/environ", "rb") as environment, open(f"/proc/{name}/cmdline") as command:
                    if cls.desktop.folder.encode() in environment.read() and "at-spi" in command.read():
                        found.append(int(name))
        assert found, "no accessibility here"
        return found

    def value(self):
        with contextlib.suppress(OSError):
            with open(self.root + "/var/mobile/Library/Preferences/com.quorrel.sample.plist", "rb") as file:
                return plistlib.load(file).get("switch_on")
        return None

    def assert_reacts(self, app):
        """A click on the switch is stored."""
        before = self.value()
        app.window
        self.pointer.move(*self.switch)
        begun = time.monotonic()
        self.pointer.click()
        while self.value() == before and time.monotonic() < begun + 5:
            time.sleep(0.001)
        self.assertNotEqual(self.value(), before, app.errors)
        self.assertLess(self.note(begun, "did what it was told"), REACTION + SLACK, app.errors)

    def assert_ends(self, app, *codes):
        ended = os.pidfd_open(app.process.pid)
        begun = time.monotonic()
        app.process.send_signal(signal.SIGTERM)
        select.select([ended], [], [], 5)
        os.close(ended)
        self.assertLess(self.note(begun, "had ended"), END + SLACK, app.errors)
        code = app.wait(5)
        self.assertIn(code, codes or (0,), app.errors)

    def note(self, begun, what):
        seconds = time.monotonic() - begun
        self.took[what].append(seconds)
        return seconds

    def assert_says(self, app, text):
        wait_for(f"{text!r} in the log", lambda: text in app.errors)

    @contextlib.contextmanager
    def stopped(self, *processes):
        for process in processes:
            os.kill(process, signal.SIGSTOP)
        try:
            yield
        finally:
            for process in processes:
                os.kill(process, signal.SIGCONT)

    def test_a_session_bus_that_stops_at_some_moment_of_the_start(self):
        for milliseconds in moments(25):
            with self.subTest(milliseconds=milliseconds), self.start() as app:
                time.sleep(milliseconds / 1000)
                with self.stopped(self.bus):
                    self.assert_reacts(app)
                    self.assert_ends(app)

    def test_accessibility_that_stops_at_some_moment_of_the_start(self):
        for milliseconds in moments(25):
            with self.subTest(milliseconds=milliseconds), self.start() as app:
                time.sleep(milliseconds / 1000)
                with self.stopped(*self.accessibility):
                    self.assert_reacts(app)
                    self.assert_ends(app)

    def test_an_x_server_that_stops_at_some_moment_of_the_start_does_not_keep_it_from_ending(self):
        for milliseconds in moments(50):
            with self.subTest(milliseconds=milliseconds), self.start() as app:
                time.sleep(milliseconds / 1000)
                with self.stopped(self.x_server):
                    self.assert_ends(app, 0, 1, -signal.SIGTERM)

    def test_buses_that_stop_during_use_are_said_and_serve_again_when_they_go_on(self):
        for processes, name in [(self.bus,), "session bus"], [self.accessibility, "accessibility bus"]:
            with self.subTest(name=name), self.start() as app:
                app.find(name="A switch")
                with self.stopped(*processes):
                    for _ in range(3):
                        self.assert_reacts(app)
                self.assert_reacts(app)
                app.find(name="A switch")
                with self.stopped(*processes):
                    self.assert_ends(app)

    def test_a_bus_that_stops_before_it_has_greeted_us_is_said_and_serves_when_it_goes_on(self):
        with contextlib.ExitStack() as started:
            with self.stopped(self.bus):
                app = started.enter_context(self.start())
                self.assert_says(app, "the session bus does not answer")
                self.assert_reacts(app)
            app.find(name="A switch")

    def test_an_accessibility_bus_that_stops_before_it_has_greeted_us_is_said(self):
        with self.stopped(*self.accessibility), self.start() as app:
            self.assert_says(app, "does not answer")
            self.assert_reacts(app)

    def test_an_x_server_that_does_not_answer_is_said_and_the_program_goes_on_with_it(self):
        with self.stopped(self.x_server):
            app = self.start()
            with app:
                self.assert_says(app, "does not answer; the window waits for it")
                os.kill(self.x_server, signal.SIGCONT)
                self.assert_says(app, "answers again")
                self.assert_reacts(app)

    def test_an_x_server_that_stops_during_use_does_not_keep_it_from_ending(self):
        with self.start() as app:
            switch = app.find(role="check box", name="A switch")
            with self.stopped(self.x_server), contextlib.suppress(Exception):
                switch.press()  # the answer waits for the display
            self.assert_reacts(app)
            switch = app.find(role="check box", name="A switch")
            with self.stopped(self.x_server):
                with contextlib.suppress(Exception):
                    switch.press()
                self.assert_says(app, "does not answer; the window waits for it")
                self.assert_ends(app, 1)

    def run_behind(self, change, number=None, least=0):
        """What the bus has answered on the connection that it had most to say on: at least as many bytes as that."""
        proxy = Proxy(self.desktop.path("proxy"), socket_of(self.desktop.environment["DBUS_SESSION_BUS_ADDRESS"]),
                      change, number)
        try:
            with self.start(DBUS_SESSION_BUS_ADDRESS=proxy.address) as app:
                self.assert_reacts(app)
                wait_for(f"{least} bytes of the bus's answers", lambda: proxy.passed >= least)
                self.assert_ends(app)
                return proxy.passed, app.errors
        finally:
            proxy.close()

    def test_a_bus_that_falls_silent_or_talks_nonsense_after_its_greeting(self):
        hello = 400  # bytes; what comes later answers more than the greeting
        for name, change in {
            "silent": lambda data, at: data if at + len(data) <= hello else None,
            "garbage": lambda data, at: data if at + len(data) <= hello else b"\xff" * len(data),
            "huge": lambda data, at: data if at + len(data) <= hello else b"l\2\1\1\0\0\0\7" + data[8:],
        }.items():
            # Each connection in its turn, and all of them.
            for number in (0, 1, None):
                with self.subTest(name=name, number=number):
                    self.run_behind(change, number)

    def test_a_byte_of_the_buss_answers_that_is_damaged(self):
        length, _ = self.run_behind(lambda data, at: data, least=300)
        for offset in range(0, length, 1 if FULL else max(1, length // 12)):
            def damage(data, at, offset=offset):
                if not at <= offset < at + len(data):
                    return data
                return data[:offset - at] + bytes([data[offset - at] ^ 0x55]) + data[offset - at + 1:]

            with self.subTest(offset=offset):
                self.run_behind(damage)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1] + [argument for argument in sys.argv[3:] if argument != "--full"], verbosity=2)
