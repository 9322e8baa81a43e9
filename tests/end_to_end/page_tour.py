"""The page's real tour: the built program with the installed daemon and tool, simulating, through the whole main job.

It ends well, leaves nothing behind, and a tour is like any other, in a root that was given or in one of its own: the same
pictures, byte for byte.

    page_tour.py JOYVANE-SETTINGS TIMES
"""

import os
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

PROGRAM, TIMES = sys.argv[1], int(sys.argv[2])


class PageTour(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="jv-page-tour-")
        self.addCleanup(shutil.rmtree, self.folder)
        bus = subprocess.Popen(["dbus-daemon", "--session", "--nofork", "--nopidfile", "--print-address=1"], text=True,
                               stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        self.addCleanup(bus.stdout.close)
        self.addCleanup(bus.wait)
        self.addCleanup(bus.terminate)
        self.session = os.path.join(self.folder, "session")
        os.mkdir(self.session, 0o700)
        self.environment = {**os.environ, "DBUS_SESSION_BUS_ADDRESS": bus.stdout.readline().strip(),
                            "XDG_RUNTIME_DIR": self.session}

    def play(self, name, root=None):
        """The tour's files but for the log, by their names."""
        folder = os.path.join(self.folder, name)
        run = subprocess.run([PROGRAM, "--simulate", *(["--root", root] if root else []), "--tour", folder], text=True,
                             capture_output=True, env=self.environment, stdin=subprocess.DEVNULL)
        with open(os.path.join(folder, "log.txt")) as file:
            log = file.read()
        self.assertEqual(run.returncode, 0, run.stderr + log)
        for report in ("Sanitizer", "runtime error"):
            self.assertNotIn(report, run.stderr)
            self.assertNotIn(report, log)
        self.assertIsNone(re.search(r"process \d+ was ended by signal", log), log)
        if root:
            self.assertFalse(os.path.exists(os.path.join(root, "Library/Caches/jvncontrol.sock")), "the daemon is still there")
            self.assertFalse(os.path.lexists(os.path.join(root, "usr/bin/jvndiscovery")), "the tool is still there")
        left = [each for each in os.listdir(self.session) if each.startswith("joyvane")]
        self.assertEqual(left, [], "a root of the tour's own goes with it")
        files = {}
        for each in sorted(os.listdir(folder)):
            if each not in ("log.txt", ".joyvane-tour"):  # the log has times, the list has random names
                with open(os.path.join(folder, each), "rb") as file:
                    files[each] = file.read()
        return files

    def test_it_plays_and_each_time_alike(self):
        first = self.play("first", os.path.join(self.folder, "root"))
        self.assertGreater(len(first), 20)
        self.assertIn("message.eml", list(first))
        for i in range(1, TIMES):
            other = self.play(f"other{i}")
            self.assertEqual(list(other), list(first))
            self.assertEqual([name for name in first if first[name] != other[name]], [], "these differ")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)
