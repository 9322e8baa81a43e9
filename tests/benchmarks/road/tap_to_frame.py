"""From a tap on the colour field to the frame that the daemon gets for it: the page in a window, a socket in the
daemon's place, and a pointer that is moved and pressed by the window system's own test device."""

import ctypes
import os
import plistlib
import socket
import statistics
import threading
import time

import jv_e2e

SET_COLOUR = 4


class Pointer:
    """The X server's test device, without a process for each press."""

    def __init__(self, display):
        self.x11 = ctypes.CDLL("libX11.so.6")
        self.test = ctypes.CDLL("libXtst.so.6")
        self.x11.XOpenDisplay.restype = ctypes.c_void_p
        self.x11.XFlush.argtypes = [ctypes.c_void_p]
        self.test.XTestFakeMotionEvent.argtypes = [ctypes.c_void_p, *[ctypes.c_int] * 3, ctypes.c_ulong]
        self.test.XTestFakeButtonEvent.argtypes = [ctypes.c_void_p, ctypes.c_uint, ctypes.c_int, ctypes.c_ulong]
        self.display = self.x11.XOpenDisplay(display.encode())

    def move(self, x, y):
        self.test.XTestFakeMotionEvent(self.display, 0, round(x), round(y), 0)
        self.x11.XFlush(self.display)

    def button(self, is_down):
        self.test.XTestFakeButtonEvent(self.display, 1, int(is_down), 0)
        self.x11.XFlush(self.display)


class Daemon:
    """Takes the page's connections, and notes when a colour comes."""

    def __init__(self, path):
        os.makedirs(os.path.dirname(path))
        self.socket = socket.socket(socket.AF_UNIX)
        self.socket.bind(path)
        self.socket.listen(16)
        self.came = threading.Semaphore(0)
        self.time = 0.0
        threading.Thread(target=self.serve, daemon=True).start()

    def serve(self):
        while True:
            connection = self.socket.accept()[0]
            with connection:
                connection.settimeout(2)
                frame = connection.recv(64)
                if frame[:1] == bytes([SET_COLOUR]):
                    self.time = time.perf_counter()
                    self.came.release()


def median_time(program, count):
    """In microseconds."""
    with jv_e2e.Desktop() as desktop:
        root = desktop.path("root")
        preferences = os.path.join(root, "var/mobile/Library/Preferences")
        os.makedirs(preferences)
        with open(os.path.join(preferences, "com.quorrel.joyvane.plist"), "wb") as file:
            plistlib.dump({"controller_type": 1, "JVNAmbientColorKey": False}, file)
        daemon = Daemon(os.path.join(root, "Library/Caches/jvncontrol.sock"))
        with jv_e2e.App(desktop, [program, "--root", root]) as app:
            app.find(name="Choose LED Color").press()
            field = app.find(role="canvas", name="Hue and saturation")
            jv_e2e.wait_for("the screen to stand", lambda: stands(field))
            x, y, width, height = field.extents
            pointer = Pointer(desktop.environment["DISPLAY"])
            times = []
            for i in range(count):
                # The colour of a tap is sent when the finger is lifted.
                pointer.move(x + width * (0.2 + 0.6 * (i % 7) / 7), y + height * (0.2 + 0.6 * (i % 5) / 5))
                pointer.button(True)
                time.sleep(0.03)
                while daemon.came.acquire(blocking=False):
                    pass
                begun = time.perf_counter()
                pointer.button(False)
                if daemon.came.acquire(timeout=2):
                    times.append(daemon.time - begun)
                time.sleep(0.05)
            return statistics.median(times) * 1e6


def stands(node):
    before = node.extents
    time.sleep(0.2)
    return node.extents == before
