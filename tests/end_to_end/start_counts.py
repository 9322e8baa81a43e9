"""What a start takes: counted, not timed, so that it is the same on a busy machine. Each limit is a fifth or more above
what it takes; who needs more looks for the reason, or says it beside a new limit.

start_counts.py SETTINGS BUNDLE PLATFORM-LIBRARY
"""

import collections
import os
import re
import shutil
import signal
import subprocess
import sys
import unittest

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "benchmarks", "first_frame"))
import jv_e2e  # noqa: E402
from first_frame import Screen  # noqa: E402


def dynamic_entries(file, kind):
    text = subprocess.run(["readelf", "-dW", file], check=True, text=True, stdout=subprocess.PIPE).stdout
    return re.findall(rf"\({kind}\).*\[(.*)\]", text)


def symbol_relocations(file):
    """Those for which the dynamic linker looks a name up in one library after the other."""
    text = subprocess.run(["readelf", "-rW", file], check=True, text=True, stdout=subprocess.PIPE).stdout
    # Offset, info, type, the symbol's value, its name.
    return len(re.findall(r"^[0-9a-f]+ +[0-9a-f]+ +R_\w+ +[0-9a-f]+ +[^\s+]", text, re.MULTILINE))


def children_of(process):
    with open(f"/proc/{process}/task/{process}/children") as file:
        return [int(child) for child in file.read().split()]


class Linking(unittest.TestCase):
    def test_looks_few_names_up(self):
        for file, most in ((PROGRAM, 1000), (PLATFORM, 1800), (os.path.join(BUNDLE, "Joyvane"), 880)):
            count = symbol_relocations(file)
            print(f"{os.path.basename(file)}: {count} names to look up, at most {most}")
            self.assertGreater(count, 0)
            self.assertLessEqual(count, most, file)

    def test_looks_for_no_library_where_none_is(self):
        """A run path is a folder in which each library is looked for first, some twenty times for the first of them."""
        self.assertEqual(len(dynamic_entries(PROGRAM, "RUNPATH")), 1)
        for file in (PLATFORM, os.path.join(BUNDLE, "Joyvane")):
            self.assertEqual(dynamic_entries(file, "RUNPATH") + dynamic_entries(file, "RPATH"), [], file)

    def test_needs_no_further_library(self):
        needed = {re.sub(r"\.so.*", "", name) for file in (PROGRAM, PLATFORM) for name in dynamic_entries(file, "NEEDED")}
        known = {"libQt6Core", "libQt6DBus", "libQt6Gui", "libexpat", "libdbus-1", "libgcrypt", "libstdc++", "libm",
                 "libgcc_s", "libc", "libjoyvane-platform"}
        self.assertLessEqual({name for name in needed if not name.startswith("ld-")}, known)


class Files(unittest.TestCase):
    """What is opened from the start until the first frame is there, and what little may follow before the end."""

    def opened(self):
        """(path, whether it was there) of each file that is opened."""
        if not os.path.exists(f"/proc/self/task/{os.getpid()}/children"):
            self.skipTest("this kernel does not say whose child a process is")
        with jv_e2e.Desktop(accessible=False) as desktop:
            screen = Screen(desktop.path("screen", "Xvfb_screen0"))
            log, root = desktop.path("strace"), desktop.path("root")
            tracer = subprocess.Popen(
                ["strace", "-f", "-qq", "-e", "trace=open,openat", "-e", "signal=none", "-o", log,
                 PROGRAM, "--root", root, "--bundle", BUNDLE],
                env=desktop.environment, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True)
            try:
                jv_e2e.wait_for("a frame", lambda: screen.is_painted() or tracer.poll() is not None, 5 * jv_e2e.TIMEOUT)
                if tracer.poll() is not None:
                    said = tracer.stderr.read().strip()
                    if "ptrace" in said.lower():
                        self.skipTest("strace may not follow a program here: " + said)
                    self.fail("the program ended: " + said)
                for child in children_of(tracer.pid):
                    os.kill(child, signal.SIGTERM)
                tracer.wait(5 * jv_e2e.TIMEOUT)
            finally:
                if tracer.poll() is None:
                    tracer.kill()
                tracer.wait()
                tracer.stderr.close()
            with open(log, errors="replace") as file:
                calls = re.findall(r'open(?:at)?\([^"]*"([^"]*)"(.*)', file.read())
        return [(path.replace(root, "ROOT"), "ENOENT" not in result) for path, result in calls]

    @unittest.skipUnless(shutil.which("strace"), "strace is not installed")
    def test_of_ours_are_opened_once_or_as_often_as_a_row_asks(self):
        opened = self.opened()
        groups = collections.Counter()
        for path, there in opened:
            if "/lib/joyvane/" in path and ".so" in path:
                groups["libraries, in our folder"] += 1
            elif path.startswith("ROOT/var/mobile/Library/Preferences"):
                groups["preferences"] += 1
            elif path.startswith("ROOT"):
                groups["others below the root"] += 1
            elif path.startswith(BUNDLE):
                groups["the bundle"] += 1
        for what, most in (("libraries, in our folder", 34), ("preferences", 50), ("others below the root", 16),
                           ("the bundle", 10)):
            print(f"{what}: {groups[what]} opened, at most {most}")
            self.assertLessEqual(groups[what], most, [path for path, _ in opened])
        self.assertGreater(groups["libraries, in our folder"], 0)
        self.assertGreater(groups["preferences"], 0)
        self.assertGreater(groups["the bundle"], 0)


if __name__ == "__main__":
    PLATFORM = os.path.realpath(sys.argv.pop(3))
    BUNDLE = sys.argv.pop(2)
    PROGRAM = sys.argv.pop(1)
    unittest.main(verbosity=2)
