"""jvnd as a process, and a caller of its control socket."""

import os
import select
import shutil
import signal
import socket
import struct
import subprocess
import tempfile
import time
import unittest

DISCONNECT, CONNECT, RESTART, COLOR, QUERY, END = 0, 1, 3, 4, 5, 6
SIZES = {DISCONNECT: 12, CONNECT: 20, RESTART: 20, COLOR: 16, QUERY: 12, END: 12}
PREFERENCES = "var/mobile/Library/Preferences/com.quorrel.joyvane.plist"
SOCKET = "Library/Caches/jvncontrol.sock"


def frame(command, type_=0, payload=b""):
    return (struct.pack("<II4x", command, type_) + payload).ljust(SIZES[command], b"\0")


def wait_for(what, condition, seconds=10):
    end = time.monotonic() + seconds
    while not (result := condition()):
        if time.monotonic() > end:
            raise AssertionError(f"waited for {what}")
        time.sleep(0.002)
    return result


class Caller:
    """A connection to the control socket, which may be at a path that is too long for an address."""

    def __init__(self, path):
        folder = os.open(os.path.dirname(path), os.O_PATH)
        try:
            self.socket = socket.socket(socket.AF_UNIX)
            self.socket.settimeout(10)
            self.socket.connect(f"/proc/self/fd/{folder}/{os.path.basename(path)}")
        except OSError:
            self.socket.close()
            raise
        finally:
            os.close(folder)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.socket.close()

    def send(self, data):
        self.socket.sendall(data)

    def reply(self):
        """The two words of a reply; None when the connection was closed without one."""
        data = b""
        while len(data) < 12:
            try:
                more = self.socket.recv(12 - len(data))
            except ConnectionResetError:
                more = b""
            if not more:
                return None
            data += more
        return struct.unpack("<II", data[:8])

    def is_closed(self, seconds=10):
        self.socket.settimeout(seconds)
        try:
            return self.socket.recv(1) == b""
        except ConnectionResetError:
            return True
        except TimeoutError:
            return False


class Daemon:
    """Started on the first use of start(); ends with the test."""

    def __init__(self, test, program, root=None):
        self.program = program
        self.folder = tempfile.mkdtemp(prefix="jvnd-")
        test.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)
        test.addCleanup(self.end)
        self.root = root or os.path.join(self.folder, "root")
        self.process = None
        # No bus, unless a test brings one: nothing of the machine's is touched.
        self.environment = dict(os.environ, DBUS_SYSTEM_BUS_ADDRESS="unix:path=/nonexistent/system",
                                DBUS_SESSION_BUS_ADDRESS="unix:path=/nonexistent/session")
        for name in ("NOTIFY_SOCKET", "LISTEN_FDS", "LISTEN_PID", "LISTEN_FDNAMES", "SYSTEMD_EXEC_PID", "JOYVANE_ROOT"):
            self.environment.pop(name, None)

    def start(self, *arguments, ready=True, **more):
        self.arguments = [self.program, "--root", self.root, "--trace", "--input-socket",
                          os.path.join(self.folder, "nobody"), *arguments]
        self.process = subprocess.Popen(self.arguments, env=self.environment, stdin=subprocess.PIPE,
                                        stdout=subprocess.PIPE, stderr=subprocess.PIPE, **more)
        os.set_blocking(self.process.stdout.fileno(), False)
        self.said = ""
        if ready:
            self.wait_said("ready")
        return self

    def lines(self):
        while True:
            try:
                data = os.read(self.process.stdout.fileno(), 65536)
            except BlockingIOError:
                data = b""
            if not data:
                return self.said
            self.said += data.decode()

    def wait_said(self, text, count=1):
        wait_for(f"{count} times {text!r}, said:\n{self.lines()}", lambda: self.lines().count(text) >= count)

    def end(self, number=signal.SIGTERM):
        """The exit code."""
        if not self.process:
            return None
        process, self.process = self.process, None
        if process.poll() is None:
            process.send_signal(number)
        process.stdin.close()
        process.wait(10)
        process.stdout.close()
        self.errors = process.stderr.read().decode()
        process.stderr.close()
        return process.returncode

    @property
    def socket_path(self):
        return os.path.join(self.root, SOCKET)

    def call(self):
        return Caller(self.socket_path)

    def ask(self, command, type_=0, payload=b""):
        with self.call() as caller:
            caller.send(frame(command, type_, payload))
            return caller.reply()

    def write_preferences(self, values):
        """As the page does it: a file beside it takes its place."""
        import plistlib
        path = os.path.join(self.root, PREFERENCES)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path + ".new", "wb") as file:
            plistlib.dump(values, file)
        os.rename(path + ".new", path)

    # What it costs

    def private_memory(self):
        """In KiB; of programs and libraries only what they have written to, since others share the rest."""
        with open(f"/proc/{self.process.pid}/smaps_rollup") as file:
            return sum(int(line.split()[1]) for line in file if line.startswith("Private_Dirty"))

    def descriptors(self):
        return len(os.listdir(f"/proc/{self.process.pid}/fd"))

    def wakeups(self):
        with open(f"/proc/{self.process.pid}/status") as file:
            return sum(int(line.split()[1]) for line in file if "ctxt_switches" in line)


class JvndTest(unittest.TestCase):
    """With a daemon that is still to be started."""

    program = ""

    def setUp(self):
        self.daemon = Daemon(self, self.program)
