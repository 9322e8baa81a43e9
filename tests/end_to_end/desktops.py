"""The sample page on desktops that differ.

At whole and broken scales, given by the option and by the desktop: the same crisp picture, and clicks that hit what is
drawn. And without a bus, or with one that dies, and without fonts.

    desktops.py JOYVANE-SETTINGS SAMPLE.BUNDLE
"""

import itertools
import os
import plistlib
import shutil
import socket
import subprocess
import sys
import unittest

from jv_e2e import App, Desktop, wait_for

PROGRAM = ""
BUNDLE = ""
WIDTH, HEIGHT = 320, 640  # points; whole pixels at all scales


DESKTOP = Desktop(size="1000x2000")


def setUpModule():
    DESKTOP.__enter__()
    unittest.addModuleCleanup(DESKTOP.__exit__, None, None, None)


class OnADesktop(unittest.TestCase):
    desktop = DESKTOP

    def start(self, name, *more, **environment):
        self.root = self.desktop.path(name)
        self.app = App(self.desktop, [PROGRAM, "--bundle", BUNDLE, "--root", self.root, "--size", f"{WIDTH}x{HEIGHT}", *more],
                       environment=environment, errors=self.desktop.path(name + ".txt"))
        return self.app

    def stored(self, key):
        try:
            with open(os.path.join(self.root, "var/mobile/Library/Preferences/com.quorrel.sample.plist"), "rb") as file:
                return plistlib.load(file).get(key)
        except FileNotFoundError:
            return None

    def drawn(self, scale):
        """The window's pixels once they stay the same: rows of RGB bytes."""
        seen = []

        def rests():
            _, _, rows = self.desktop.screen()
            seen.append([row[:3 * round(WIDTH * scale)] for row in rows[:round(HEIGHT * scale)]])
            return len(seen) > 2 and seen[-1] == seen[-2] == seen[-3] and len({bytes(row) for row in seen[-1]}) > 20
        wait_for("the picture to rest", rests)
        return seen[-1]

    def pixel(self, rows, x, y):
        return bytes(rows[y][3 * x:3 * x + 3])


class Scales(OnADesktop):
    def check_crisp(self, rows, scale):
        """Edges and lines fall on pixels: nothing is in between."""
        row = self.app.find("list item", "Show Alert")
        last = self.app.find("list item", "Controls")
        unit = scale / (self.app.find("frame").extents[2] / WIDTH)  # pixels in one unit of what nodes say
        top, height = row.extents[1] * unit, row.extents[3] * unit
        bottom = (last.extents[1] + last.extents[3]) * unit
        x = round((WIDTH - 24) * scale)
        column = [self.pixel(rows, x, y) for y in range(round(top) + 2, round(bottom) - 2)]
        runs = [(colour, len(list(group))) for colour, group in itertools.groupby(column)]
        self.assertEqual(len({colour for colour, _ in runs}), 2, "a card and its lines have two colours")
        self.assertEqual([length for _, length in runs[1::2]], [1] * 5, "a line is one pixel")

        y = round(top + height / 2)
        edge = round(16 * scale)
        page, card = self.pixel(rows, 2, y), self.pixel(rows, x, y)
        self.assertNotEqual(page, card)
        self.assertEqual({self.pixel(rows, each, y) for each in range(edge)}, {page})
        self.assertEqual({self.pixel(rows, each, y) for each in range(edge, edge + 10)}, {card})
        return unit

    def test_option_and_desktop_draw_the_same_and_clicks_hit(self):
        for scale in (1, 1.25, 1.5, 2, 3):
            pictures = []
            for more, environment in (["--scale", str(scale)], {}), ([], {"QT_SCALE_FACTOR": str(scale)}):
                with self.subTest(scale=scale, options=more):
                    with self.start(f"{scale}{len(more)}", *more, **environment) as app:
                        app.find("list item", "Show Alert")
                        pictures.append(self.drawn(scale))
                        unit = self.check_crisp(pictures[-1], scale)
                        x, y, width, height = app.find("check box", "A switch").extents
                        self.desktop.click((x + 2) * unit, (y + height / 2) * unit)
                        wait_for("the switch in the file", lambda: self.stored("switch_on") is False)
                        # The lowest pixels of a row are still its own.
                        x, y, width, height = app.find("list item", "Toggle a Row").extents
                        self.desktop.click((x + width / 2) * unit, (y + height) * unit - 2)
                        app.find("list item", "A row that comes and goes")
            self.assertTrue(pictures[0] == pictures[-1], f"at {scale} the two pictures differ")


class PoorDesktops(OnADesktop):
    """Without assistive technology to ask, the switch is where it always is."""

    def check_works(self, app):
        app.window
        self.drawn(1)
        self.desktop.click(WIDTH - 50, 110)
        wait_for("the switch in the file", lambda: self.stored("switch_on") is False)
        self.assertEqual(app.close(), 0)

    def test_without_a_bus(self):
        with self.start("busless", DBUS_SESSION_BUS_ADDRESS="unix:path=/nowhere/bus") as app:
            self.check_works(app)

    def test_with_a_bus_that_dies(self):
        bus = subprocess.Popen(["dbus-daemon", "--session", "--nofork", "--nopidfile", "--print-address=1"], text=True,
                               stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, env=self.desktop.environment)
        with self.start("orphan", DBUS_SESSION_BUS_ADDRESS=bus.stdout.readline().strip()) as app:
            app.window
            self.drawn(1)
            bus.kill()
            bus.wait()
            self.check_works(app)
        bus.stdout.close()

    def start_display(self, size, *options):
        """Another one, beside the desktop's own; its number."""
        server = subprocess.Popen(["Xvfb", "-displayfd", "1", "-screen", "0", size + "x24", "-noreset", *options],
                                  text=True, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        self.addCleanup(server.wait)
        self.addCleanup(server.stdout.close)
        self.addCleanup(server.kill)
        number = server.stdout.readline().strip()
        self.assertTrue(number, "the display has not started")
        return number

    def test_on_a_small_screen_the_window_is_no_larger(self):
        for width, height in ((320, 480), (720, 360), (320, 240)):
            display = ":" + self.start_display(f"{width}x{height}")
            with self.start(f"small{width}x{height}", DISPLAY=display) as app:
                app.find("list item")

                def fits():
                    size = app.find("frame").extents[2:]
                    return 320 <= size[0] <= width and 240 <= size[1] <= height
                wait_for(f"a window that fits {width} by {height}", fits)
                self.assertEqual(app.close(), 0)

    def test_on_a_display_of_another_machine(self):
        """By the network, so that no memory can be shared with the display."""
        with socket.socket() as network:
            try:
                network.bind(("127.0.0.1", 0))
            except OSError as error:
                self.skipTest(f"there is no network, not even to ourselves: {error}")
        with self.start("remote", DISPLAY="127.0.0.1:" + self.start_display("1000x1000", "-listen", "tcp")) as app:
            app.find("check box", "A switch").do("Toggle")
            wait_for("the switch in the file", lambda: self.stored("switch_on") is False)
            self.assertEqual(app.close(), 0)

    def test_without_fonts(self):
        configuration = self.desktop.path("fonts.conf")
        with open(configuration, "w") as file:
            file.write('<?xml version="1.0"?><fontconfig></fontconfig>\n')
        with self.start("fontless", FONTCONFIG_FILE=configuration) as app:
            app.find("list item", "Show Alert")
            self.check_works(app)


class SecondStart(OnADesktop):
    def process_in_front(self):
        words = self.desktop.xdotool("mousemove", 100, 300, "getmouselocation", "--shell").split()
        window = next(word for word in words if word.startswith("WINDOW="))[len("WINDOW="):]
        try:
            return int(self.desktop.xdotool("getwindowpid", window))
        except subprocess.CalledProcessError:
            return None  # the screen itself

    def test_brings_the_window_of_the_same_root_to_the_front_and_ends(self):
        with self.start("one") as first:
            self.drawn(1)
            with self.start("two") as second:
                wait_for("the second root's window", lambda: self.process_in_front() == second.process.pid)

                again = self.start("one")

                self.assertEqual(again.wait(), 0)
                self.assertEqual(again.errors, "")
                wait_for("the first root's window", lambda: self.process_in_front() == first.process.pid)
                self.assertEqual(second.close(), 0)
            self.assertEqual(first.close(), 0)
            self.assertNotIn(".window", os.listdir(self.desktop.path("one")))

    def test_after_a_kill_opens_a_window(self):
        with self.start("killed") as first:
            self.drawn(1)
            first.process.kill()
            first.wait()
        with self.start("killed") as second:
            wait_for("the window", lambda: self.process_in_front() == second.process.pid)
            self.drawn(1)
            self.assertEqual(second.close(), 0)


class WindowOfItsOwn(OnADesktop):
    def window(self):
        words = self.desktop.xdotool("mousemove", 100, 200, "getmouselocation", "--shell").split()
        return next(word for word in words if word.startswith("WINDOW="))[len("WINDOW="):]

    def size(self):
        shell = self.desktop.xdotool("getwindowgeometry", "--shell", self.window()).split()
        return tuple(int(next(word for word in shell if word.startswith(name))[len(name):]) for name in ("WIDTH=", "HEIGHT="))

    def open(self):
        return App(self.desktop, [PROGRAM, "--bundle", BUNDLE, "--root", self.desktop.path("sized")],
                   errors=self.desktop.path("sized.txt"))

    def test_keeps_the_size_that_the_user_gave_it(self):
        with self.open() as first:
            wait_for("the window", lambda: self.size() == (384, 667))
            self.drawn(1)
            self.desktop.xdotool("windowsize", self.window(), 500, 600)
            wait_for("the other size", lambda: self.size() == (500, 600))
            self.drawn(1)
            self.assertEqual(first.close(), 0)
        with self.open() as second:
            wait_for("the window as it was", lambda: self.size() == (500, 600))
            self.drawn(1)
            self.assertEqual(second.close(), 0)

    def test_has_the_icon_of_the_program(self):
        folder = os.path.join(self.desktop.path("share"), "icons-of-ours")
        icons = os.path.join(folder, "icons/hicolor/128x128/apps")
        os.makedirs(icons)
        shutil.copy(os.path.join(os.path.dirname(__file__), "../../packaging/com.quorrel.joyvane.png"), icons)
        with open(os.path.join(folder, "icons/hicolor/index.theme"), "w") as theme:
            theme.write("[Icon Theme]\nName=Hicolor\nDirectories=128x128/apps\n[128x128/apps]\nSize=128\n")
        with self.start("icon", XDG_DATA_DIRS=folder + ":" + self.desktop.environment["XDG_DATA_DIRS"]) as app:
            self.drawn(1)

            def icon():
                said = subprocess.run(["xprop", "-id", self.window(), "-len", "64", "32c", "_NET_WM_ICON"],
                                      env=self.desktop.environment, text=True, capture_output=True)
                return "128 x 128" in said.stdout or "128, 128" in said.stdout
            wait_for("the icon", icon)
            self.assertEqual(app.close(), 0)


if __name__ == "__main__":
    BUNDLE = sys.argv.pop(2)
    PROGRAM = sys.argv.pop(1)
    unittest.main(verbosity=2)
