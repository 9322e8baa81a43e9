"""The look that the desktop asks for, and the notices over the page, on a real desktop.

    desktop_look.py JOYVANE-SETTINGS
"""

import os
import re
import signal
import subprocess
import sys
import unittest

from jv_e2e import App, Desktop, wait_for

PROGRAM = ""
FOLDER = os.path.dirname(os.path.abspath(__file__))


class DesktopLook(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.desktop = Desktop()
        cls.desktop.__enter__()
        cls.addClassCleanup(cls.desktop.__exit__, None, None, None)

    def start(self):
        self.app = App(self.desktop, [PROGRAM, "--simulate", "--root", self.desktop.path("root")])
        self.addCleanup(self.app.__exit__, None, None, None)
        self.app.find(name="Controller")

    def start_portal(self, *words):
        self.portal = subprocess.Popen(
            [sys.executable, os.path.join(FOLDER, "settings_portal.py"), *words], env=self.desktop.environment,
            stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
        self.addCleanup(self.portal.wait)
        self.addCleanup(self.portal.stdout.close)
        self.addCleanup(self.portal.stdin.close)
        self.addCleanup(self.portal.kill)
        self.assertEqual(self.portal.stdout.readline().strip(), "ready")

    def say(self, words):
        self.portal.stdin.write(words + "\n")
        self.portal.stdin.flush()

    def ground(self):
        """The page's colour, at the window's left edge below the bar."""
        rows = self.desktop.screen()[2]
        return tuple(rows[100][3 * 4:3 * 4 + 3])

    def wait_for_ground(self, what, condition):
        wait_for(what, lambda: condition(max(self.ground())))

    def test_dark_and_high_contrast_follow_the_portal_at_the_start_and_while_running(self):
        self.start_portal("1", "0")
        self.start()
        self.wait_for_ground("a dark page", lambda level: 0 < level < 64)
        self.say("2 0")
        self.wait_for_ground("a light page", lambda level: 200 < level < 250)
        self.say("1 1")
        self.wait_for_ground("a black page", lambda level: level == 0)
        self.say("2 1")
        self.wait_for_ground("a white page", lambda level: level == 255)
        self.assertEqual(self.app.close(), 0)

    def test_without_a_portal_the_page_is_light(self):
        self.start()
        self.wait_for_ground("a light page", lambda level: 200 < level < 250)
        self.assertEqual(self.app.close(), 0)

    def row_height(self):
        return self.app.find(role="list item", name="Controller").extents[3]

    def stop_portal(self):
        self.portal.kill()
        self.portal.wait()

    def test_text_is_as_large_as_the_portal_says_at_the_start_and_while_running(self):
        self.start_portal("0", "0", "text=2")
        self.start()
        wait_for("large rows", lambda: self.row_height() > 100)
        self.say("0 0 text=1")
        wait_for("rows as usual", lambda: self.row_height() == 44)
        self.say("0 0 text=1.5")
        wait_for("larger rows", lambda: 50 < self.row_height() < 100)
        self.assertEqual(self.app.close(), 0)

        # The next start has it from the beginning: this portal says nothing at all.
        self.stop_portal()
        self.start_portal("0", "0", "silent")
        self.start()
        self.assertTrue(50 < self.row_height() < 100, self.row_height())
        self.assertEqual(self.app.close(), 0)

        self.stop_portal()
        self.start()
        wait_for("rows as usual where no portal is", lambda: self.row_height() == 44)
        self.assertEqual(self.app.close(), 0)

    def test_the_program_speaks_the_users_language_also_where_its_locale_is_missing(self):
        for words in (["LC_ALL=C.UTF-8", "LANGUAGE=de"], ["LC_ALL=de_DE.UTF-8", "LANGUAGE="]):
            self.app = App(self.desktop, ["env", *words, PROGRAM, "--simulate", "--root", self.desktop.path("root")])
            self.addCleanup(self.app.__exit__, None, None, None)
            self.app.find(role="list item", name="Verbindung")
            self.assertEqual(self.app.close(), 0)

    def daemon(self):
        children = subprocess.run(["pgrep", "-P", str(self.app.process.pid), "-x", "jvnd"], text=True,
                                  capture_output=True, check=True)
        return int(children.stdout)

    def test_a_simulated_daemon_that_dies_is_said_on_the_page_and_started_again_from_there(self):
        self.start()
        first = self.daemon()
        os.kill(first, signal.SIGKILL)
        notice = self.app.find(role="alert", name=re.compile("daemon was ended by signal 9"))
        last_row = self.app.find(role="list item", name="Restart Daemons")
        self.assertLessEqual(last_row.extents[1] + last_row.extents[3], notice.extents[1], "it covers no row")
        self.app.find(name="Start It Again").press()
        self.app.gone(role="alert")
        self.assertNotEqual(self.daemon(), first)
        self.assertEqual(self.app.close(), 0)

    def test_a_notice_that_is_put_away_stays_away(self):
        self.start()
        os.kill(self.daemon(), signal.SIGKILL)
        self.app.find(role="alert")
        self.app.find(name="Close").press()
        self.app.gone(role="alert")
        self.assertEqual(self.app.close(), 0)


if __name__ == "__main__":
    PROGRAM = sys.argv.pop(1)
    unittest.main(verbosity=2)
