"""A desktop of its own for the application under test, and what a user has to work on it with.

A Desktop is a virtual X server, a session bus and, on that, the accessibility bus. An App is the application on it: its
nodes are found by role and name as assistive technology finds them, or it is used with the pointer and the keys.

Needs the system's Python (gi with Atspi), Xvfb, dbus-daemon and xdotool.
"""

import contextlib
import os
import re
import shutil
import signal
import struct
import subprocess
import sys
import tempfile
import time
import zlib

# Seconds for anything that is to happen; what does not happen by then never will. An emulated machine takes longer.
TIMEOUT = float(os.environ.get("JOYVANE_TEST_TIMEOUT", 20))


def wait_for(what, condition, timeout=TIMEOUT):
    """The first true value of condition(); an AssertionError naming `what` when there is none in time."""
    end = time.monotonic() + timeout
    pause = 0.002
    while True:
        value = condition()
        if value:
            return value
        if time.monotonic() > end:
            raise AssertionError(f"timed out after {timeout:g} s waiting for {what}")
        time.sleep(pause)
        pause = min(pause * 1.5, 0.05)


def _first_line(stream):
    line = stream.readline()
    if not line:
        raise AssertionError("a helper program ended at once")
    return line.strip()


class Desktop:
    """Use as a context manager, one in a process: the accessibility library takes its buses from the environment."""

    def __init__(self, size="1024x900", accessible=True):
        self.size = size
        self.accessible = accessible
        self.processes = []
        self.folder = None
        self.environment = {}

    def __enter__(self):
        self.folder = tempfile.mkdtemp(prefix="jv-e2e-")
        try:
            self._start()
        except BaseException:
            self.__exit__(None, None, None)
            raise
        return self

    def __exit__(self, *_):
        for process in reversed(self.processes):
            with contextlib.suppress(ProcessLookupError):
                process.terminate()
            try:
                process.wait(5)
            except subprocess.TimeoutExpired:
                process.kill()
                process.wait()
        self.processes = []
        shutil.rmtree(self.folder, ignore_errors=True)

    def _start(self):
        for name in ("home", "run", "data", "screen", "share"):
            os.mkdir(os.path.join(self.folder, name), 0o700)
        # What is installed on this computer but its programs: a test brings those that it asks for. Its fonts are found
        # where they are; under a second name each would be there twice.
        for name in os.listdir("/usr/share"):
            if name not in ("applications", "fonts"):
                os.symlink("/usr/share/" + name, os.path.join(self.folder, "share", name))
        environment = {
            name: value
            for name, value in os.environ.items()
            if not name.startswith(("DBUS_", "QT_", "XDG_", "AT_SPI", "WAYLAND_", "SESSION_MANAGER"))
        }
        environment.update(
            HOME=self.path("home"),
            XDG_RUNTIME_DIR=self.path("run"),
            XDG_DATA_HOME=self.path("data"),
            XDG_DATA_DIRS=self.path("share"),
            LANG="C.UTF-8",
            NO_AT_BRIDGE="0",
        )
        self.environment = environment

        self._start_display()
        bus = self._spawn(
            ["dbus-daemon", "--session", "--nofork", "--nopidfile", "--print-address=1"], stdout=subprocess.PIPE
        )
        environment["DBUS_SESSION_BUS_ADDRESS"] = _first_line(bus.stdout)
        if self.accessible:
            environment["QT_LINUX_ACCESSIBILITY_ALWAYS_ON"] = "1"
        for name in ("DISPLAY", "DBUS_SESSION_BUS_ADDRESS", "XDG_RUNTIME_DIR", "HOME"):
            if name in environment:
                os.environ[name] = environment[name]

    def _start_display(self):
        x_server = self._spawn(
            ["Xvfb", "-displayfd", "1", "-screen", "0", f"{self.size}x24", "-nolisten", "tcp", "-noreset",
             "-fbdir", self.path("screen")],
            stdout=subprocess.PIPE,
        )
        self.environment["DISPLAY"] = ":" + _first_line(x_server.stdout)

    def _spawn(self, command, **options):
        options.setdefault("stderr", subprocess.DEVNULL)
        process = subprocess.Popen(command, env=self.environment, text=True, stdin=subprocess.DEVNULL, **options)
        self.processes.append(process)
        return process

    def path(self, *names):
        return os.path.join(self.folder, *names)

    def start(self, command, **options):
        return App(self, command, **options)

    # What a user has.

    def xdotool(self, *arguments):
        return subprocess.run(
            ["xdotool", *map(str, arguments)], env=self.environment, check=True, text=True, capture_output=True
        ).stdout.strip()

    def click(self, x, y):
        self.point(x, y)
        self.xdotool("click", 1)

    def point(self, x, y):
        """The pointer is not sent to where it is: xdotool would wait 15 seconds for it to move."""
        place = [f"X={round(x)}", f"Y={round(y)}"]
        if self.xdotool("getmouselocation", "--shell").split()[:2] != place:
            self.xdotool("mousemove", "--sync", round(x), round(y))

    def drag(self, start, end, steps=12):
        """Presses at `start`, moves to `end` in steps and releases."""
        self.point(*start)
        self.xdotool("mousedown", 1)
        for i in range(1, steps + 1):
            x = start[0] + (end[0] - start[0]) * i / steps
            y = start[1] + (end[1] - start[1]) * i / steps
            self.point(x, y)
        self.xdotool("mouseup", 1)

    def wheel(self, x, y, steps):
        """Scrolls the content up by `steps` (down when negative) at a place."""
        self.point(x, y)
        for _ in range(abs(steps)):
            self.xdotool("click", 5 if steps > 0 else 4)

    def key(self, *names):
        """Presses and releases keys, one after the other, by the X server's names of them; "shift+Tab" holds keys."""
        for name in names:
            *held, last = name.split("+")
            words = [word for key in held for word in ("keydown", key)]
            words += ["keydown", last, "keyup", last]
            words += [word for key in reversed(held) for word in ("keyup", key)]
            self.xdotool(*words)

    def screen(self):
        """The screen's pixels: (width, height, rows of RGB bytes)."""
        with open(self.path("screen", "Xvfb_screen0"), "rb") as file:
            data = file.read()
        fields = struct.unpack(">25I", data[:100])
        header, width, height, line, colours = fields[0], fields[4], fields[5], fields[12], fields[19]
        pixels = data[header + 12 * colours:]
        rows = []
        for y in range(height):
            row = pixels[y * line:y * line + 4 * width]
            rgb = bytearray(3 * width)
            rgb[0::3], rgb[1::3], rgb[2::3] = row[2::4], row[1::4], row[0::4]
            rows.append(bytes(rgb))
        return width, height, rows

    def picture(self, path):
        """Writes the screen to a PNG file."""
        width, height, rows = self.screen()

        def chunk(kind, body):
            return struct.pack(">I", len(body)) + kind + body + struct.pack(">I", zlib.crc32(kind + body))

        with open(path, "wb") as file:
            file.write(b"\x89PNG\r\n\x1a\n")
            file.write(chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0)))
            file.write(chunk(b"IDAT", zlib.compress(b"".join(b"\0" + row for row in rows), 6)))
            file.write(chunk(b"IEND", b""))


def _atspi():
    import gi

    gi.require_version("Atspi", "2.0")
    from gi.repository import Atspi

    return Atspi


class Node:
    """One node of the accessibility tree."""

    def __init__(self, app, accessible):
        self.app = app
        self.accessible = accessible

    def __repr__(self):
        return f"<{self.role} {self.name!r}>"

    @property
    def role(self):
        return self.accessible.get_role_name()

    @property
    def name(self):
        return self.accessible.get_name()

    @property
    def description(self):
        return self.accessible.get_description()

    @property
    def states(self):
        return {state.value_nick for state in self.accessible.get_state_set().get_states()}

    @property
    def children(self):
        return [Node(self.app, child) for child in self._children()]

    def _children(self):
        count = self.accessible.get_child_count()
        return [child for child in map(self.accessible.get_child_at_index, range(count)) if child]

    @property
    def extents(self):
        """(x, y, width, height) on the screen."""
        box = self.accessible.get_extents(_atspi().CoordType.SCREEN)
        return box.x, box.y, box.width, box.height

    @property
    def middle(self):
        x, y, width, height = self.extents
        return x + width / 2, y + height / 2

    @property
    def value(self):
        """What a slider stands at, or None."""
        interface = self.accessible.get_value_iface()
        return interface.get_current_value() if interface else None

    @property
    def range(self):
        interface = self.accessible.get_value_iface()
        return (interface.get_minimum_value(), interface.get_maximum_value()) if interface else None

    def set_value(self, value):
        assert self.accessible.get_value_iface().set_current_value(value), f"{self} took no value"

    @property
    def text(self):
        interface = self.accessible.get_text_iface()
        return interface.get_text(0, interface.get_character_count()) if interface else None

    @property
    def actions(self):
        interface = self.accessible.get_action_iface()
        return [interface.get_action_name(i) for i in range(interface.get_n_actions())] if interface else []

    def do(self, action):
        names = self.actions
        assert action in names, f"{self} has only the actions {names}"
        assert self.accessible.get_action_iface().do_action(names.index(action)), f"{self} refused {action}"

    def press(self):
        names = self.actions
        self.do("Toggle" if "Toggle" in names else "Press")

    def focus(self):
        assert self.accessible.get_component_iface().grab_focus(), f"{self} took no focus"

    def walk(self):
        yield self
        for child in self.children:
            yield from child.walk()


class App:
    """The application: a process on a Desktop."""

    def __init__(self, desktop, command, environment=None, errors=None):
        self.desktop = desktop
        self.error_path = errors or desktop.path("errors.txt")
        with open(self.error_path, "w") as errors_file:
            self.process = subprocess.Popen(
                command,
                env={**desktop.environment, **(environment or {})},
                stdin=subprocess.DEVNULL,
                stdout=subprocess.PIPE,
                stderr=errors_file,
                text=True,
            )

    def __enter__(self):
        return self

    def __exit__(self, kind, *_):
        if self.process.poll() is None:
            self.process.terminate()
            try:
                self.process.wait(10)
            except subprocess.TimeoutExpired:
                self.process.kill()
                self.process.wait()
        if kind:
            print("--- what the application said:", self.errors, sep="\n", file=sys.stderr)

    @property
    def errors(self):
        with open(self.error_path) as file:
            return file.read()

    def wait(self, timeout=TIMEOUT):
        """The exit code."""
        return self.process.wait(timeout)

    def close(self):
        self.process.send_signal(signal.SIGTERM)
        return self.wait()

    # Its window, as the window system has it.

    @property
    def window(self):
        """The window's number, once it is shown."""

        def visible():
            found = subprocess.run(
                ["xdotool", "search", "--onlyvisible", "--pid", str(self.process.pid)],
                env=self.desktop.environment, text=True, capture_output=True,
            ).stdout.split()
            assert self.process.poll() is None, f"the application ended with {self.process.returncode}:\n{self.errors}"
            return found[0] if found else None

        return wait_for("the window", visible)

    def take_keyboard(self):
        """There is no window manager that would give the window the keyboard."""
        self.desktop.xdotool("windowfocus", "--sync", self.window)

    @property
    def title(self):
        return self.desktop.xdotool("getwindowname", self.window)

    # Its nodes, as assistive technology has them.

    @property
    def root(self):
        """The application's own node."""
        atspi = _atspi()

        def ours():
            assert self.process.poll() is None, f"the application ended with {self.process.returncode}:\n{self.errors}"
            desktop = atspi.get_desktop(0)
            for i in range(desktop.get_child_count()):
                child = desktop.get_child_at_index(i)
                if child and child.get_process_id() == self.process.pid:
                    return child
            return None

        return Node(self, wait_for("the application on the accessibility bus", ours))

    def nodes(self, role=None, name=None):
        """All nodes with that role and name; a name may be a compiled pattern."""
        found = []
        try:
            for node in self.root.walk():
                if role is not None and node.role != role:
                    continue
                if isinstance(name, re.Pattern) and not name.search(node.name):
                    continue
                if isinstance(name, str) and node.name != name:
                    continue
                found.append(node)
        except Exception as error:  # a node may go while the tree is walked
            if type(error).__name__ not in ("GError", "Error"):
                raise
        return found

    def find(self, role=None, name=None, timeout=TIMEOUT):
        """The first such node, once it is there."""
        found = wait_for(f"a {role or 'node'} called {name!r}", lambda: self.nodes(role, name), timeout)
        return found[0]

    def gone(self, role=None, name=None, timeout=TIMEOUT):
        wait_for(f"the {role or 'node'} called {name!r} to go", lambda: not self.nodes(role, name), timeout)

    def tree(self, node=None, depth=0):
        """The nodes as text, for people."""
        node = node or self.root
        line = "  " * depth + f"{node.role} {node.name!r} {node.extents}"
        return "\n".join([line, *(self.tree(child, depth + 1) for child in node.children)])
