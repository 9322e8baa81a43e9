"""A desktop like jv_e2e's, that speaks Wayland alone and is shown nowhere.

Needs sway and wtype. The compositor refuses to run as root; started by root, it runs as nobody.
"""

import os
import shutil
import stat
import subprocess
import tempfile
import unittest

from jv_e2e import Desktop, wait_for
from wayland_pointer import WaylandPointer

NOBODY = 65534


class WaylandDesktop(Desktop):
    def _start_display(self):
        if not os.path.isdir("/dev/shm") or not os.stat("/dev/shm").st_mode & stat.S_IWOTH:
            raise unittest.SkipTest("the compositor shares memory in /dev/shm, which is not here")
        self.compositor_folder = tempfile.mkdtemp(prefix="jv-e2e-sway-")
        config = os.path.join(self.compositor_folder, "config")
        with open(config, "w") as file:
            # A window fills the screen.
            file.write(f"xwayland disable\ndefault_border none\noutput * resolution {self.size}\n")
        os.chmod(config, 0o644)
        command = ["env", "WLR_BACKENDS=headless", "WLR_LIBINPUT_NO_DEVICES=1", "WLR_RENDERER=pixman",
                   f"XDG_RUNTIME_DIR={self.compositor_folder}", "sway", "-c", config]
        if os.geteuid() == 0:
            os.chown(self.compositor_folder, NOBODY, NOBODY)
            command = ["setpriv", f"--reuid={NOBODY}", f"--regid={NOBODY}", "--clear-groups", *command]
        self._spawn(command, stdout=subprocess.DEVNULL)

        def socket():
            names = [name for name in os.listdir(self.compositor_folder)
                     if name.startswith("wayland-") and "." not in name]
            return os.path.join(self.compositor_folder, names[0]) if names else None

        self.environment["WAYLAND_DISPLAY"] = wait_for("the compositor", socket)
        self.environment["QT_QPA_PLATFORM"] = "wayland"
        self.environment.pop("DISPLAY", None)
        # Both are always there, as on a desk: a window that first has to hear of them misses keys and clicks.
        self._spawn(["wtype", "-s", "3600000"])
        self.pointer = WaylandPointer(self.environment["WAYLAND_DISPLAY"], *map(int, self.size.split("x")))

    def __exit__(self, *exception):
        if hasattr(self, "pointer"):
            self.pointer.close()
        super().__exit__(*exception)
        if hasattr(self, "compositor_folder"):
            shutil.rmtree(self.compositor_folder, ignore_errors=True)

    def click(self, x, y):
        self.pointer.move(x, y)
        self.pointer.button(True)
        self.pointer.button(False)

    def drag(self, start, end, steps=12):
        self.pointer.move(*start)
        self.pointer.button(True)
        for i in range(1, steps + 1):
            self.pointer.move(*(a + (b - a) * i / steps for a, b in zip(start, end)))
        self.pointer.button(False)

    def write(self, *arguments):
        """By a virtual keyboard that brings its own key map."""
        subprocess.run(["wtype", *arguments], env=self.environment, check=True, timeout=20)
