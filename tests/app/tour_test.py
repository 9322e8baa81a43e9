"""The tour of the sample bundle, by scripts of its own: every step that there is, and what is said of one that fails.

    tour_test.py JOYVANE-SETTINGS SAMPLE.BUNDLE
"""

import os
import plistlib
import re
import shutil
import signal
import struct
import subprocess
import sys
import tempfile
import time
import unittest

PROGRAM, SAMPLE = sys.argv[1:3]
SETTINGS = "/var/mobile/Library/Preferences/com.quorrel.sample.plist"


def setUpModule():
    """A session bus of its own: without one there would be a line on standard error about it."""
    bus = subprocess.Popen(["dbus-daemon", "--session", "--nofork", "--nopidfile", "--print-address=1"], text=True,
                           stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
    os.environ["DBUS_SESSION_BUS_ADDRESS"] = bus.stdout.readline().strip()

    def end():
        bus.terminate()
        bus.wait()
        bus.stdout.close()
    unittest.addModuleCleanup(end)


class Tour(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="jv-tour-")
        self.addCleanup(shutil.rmtree, self.folder)
        self.bundle = os.path.join(self.folder, "Sample.bundle")
        shutil.copytree(SAMPLE, self.bundle)
        self.root = os.path.join(self.folder, "root")
        self.pictures = os.path.join(self.folder, "pictures")

    def command(self, script, *more):
        with open(os.path.join(self.bundle, "tour.txt"), "w") as file:
            file.write(script)
        return [PROGRAM, "--root", self.root, "--bundle", self.bundle, "--tour", self.pictures, *more]

    def play(self, script, *more):
        return subprocess.run(self.command(script, *more), text=True, capture_output=True, timeout=60)

    def log(self):
        """The log's lines without their times."""
        with open(os.path.join(self.pictures, "log.txt")) as file:
            return [re.sub(r"^ *\d+\.\d{3}  ", "", line.rstrip("\n")) for line in file]

    def size(self, name):
        with open(os.path.join(self.pictures, name), "rb") as file:
            return struct.unpack(">2I", file.read(24)[16:])

    def assert_plays(self, script, *more):
        run = self.play(script, *more)
        self.assertEqual((run.returncode, run.stdout, run.stderr), (0, "", ""))
        return self.log()

    def assert_fails(self, step, why):
        """The step, in line 2, ends the tour with that sentence, and a picture shows where."""
        run = self.play(f"say before\n{step}\nsay after\n")
        self.assertEqual(run.returncode, 1)
        self.assertEqual(run.stderr, f"joyvane-settings: tour: line 2: {why}\n")
        self.assertIn("! " + why, self.log())
        self.assertNotIn("== after", self.log())
        self.assertTrue(os.path.exists(os.path.join(self.pictures, "001-where-the-tour-ended.png")))

    def test_each_step_does_what_it_says(self):
        log = self.assert_plays(f"""
            say "All steps"                    # a comment
            watch notification com.quorrel.sample.changed
            watch file {SETTINGS}
            picture "first page"
            tap switch "A switch"
            wait noted "switch_on = false"
            wait noted "notification com.quorrel.sample.changed"
            wait value row "A switch" Off
            drag switch "A switch" 0.2 0.5 to 1.2 0.5
            wait noted "switch_on = true"
            tap row "A list"
            wait row Third
            tap row Second at 0.1 0.9
            wait value row "A list" Sec
            key tab
            key down
            scroll 300
            wait row "Line 3"
            tap row Controls
            wait slider *
            step slider "Sample slider" right
            wait any "Slid to 51 percent"
            step slider "Sample slider" left large
            wait any "Slid to 41 percent"
            wait value image * drawn
            size 320 480 3
            picture controls
            key escape
            wait gone slider *
            desktop install mail
            desktop remove mail
            background
            write /var/some/file "a line" another
            tap row "Show Alert"
            wait alert "Which one*"
            tap button Left
            wait gone alert *
            wait row "Last choice: Left"
        """)
        self.assertEqual(log[0], "== All steps")
        self.assertIn("> tap row Second at 0.1 0.9", log)
        self.assertIn(f"file {SETTINGS}: switch_on = false", log)
        self.assertIn(f"file {SETTINGS}: choice = 1", log)
        self.assertIn("picture 001-first-page.png", log)
        self.assertEqual(self.size("001-first-page.png"), (768, 1334))
        self.assertEqual(self.size("002-controls.png"), (960, 1440))
        with open(self.root + "/var/some/file") as file:
            self.assertEqual(file.read(), "a line\nanother\n")
        with open(self.root + SETTINGS, "rb") as file:
            self.assertEqual(plistlib.load(file), {"switch_on": True, "choice": 1})

    def test_options_set_the_size_and_the_scale(self):
        self.assert_plays("picture page\n", "--size", "400x500", "--scale", "1.5")
        self.assertEqual(self.size("001-page.png"), (600, 750))

    def test_a_step_that_is_none_is_named_with_its_line(self):
        self.assert_fails("dance", "there is no step called dance")
        self.assert_fails("tap row Nobody", 'tap: timed out after 10 s waiting for row "Nobody"')
        self.assert_fails("tap wall Nobody", "tap: there is no role wall")

    def test_steps_with_other_words_than_theirs_say_what_they_take(self):
        for step, why in {
            "tap row": "tap: takes a role and a name, and maybe a place",
            "tap row Controls at 0.5 x": 'tap: takes fractions after "at"',
            "drag row Controls 0 0": "drag: takes a role, a name and two places",
            "drag row Controls a 0 to 1 1": "drag: takes places as fractions",
            "scroll far": "scroll: takes a number of points",
            "key anykey": "key: takes the name of a key",
            "step slider x": "step: takes a role, a name and a direction",
            "step slider x sideways": "step: takes a role, a name and a direction",
            'step row "A list" left': 'step: row "A list" does not move',
            "wait row": 'wait: takes a role and a name, or "gone", "value" or "noted"',
            "wait noted x 0": "wait: takes a number of times",
            "picture": "picture: takes a name",
            "say": "say: takes a text",
            "write /a": "write: takes a file and its lines",
            "write a b": "write: takes a file and its lines",
            "watch clouds x": 'watch: takes "notification" or "file", and its name',
            "desktop install": 'desktop: takes "install mail" or "remove mail"',
            "background now": "background: takes nothing",
            "simulation": 'simulation: takes "stop" or "start", or "remove tools" or "place tools"',
            "simulation dance": 'simulation: takes "stop" or "start", or "remove tools" or "place tools"',
            "size 1 2": "size: takes three numbers above 0",
            "size 100 100 -1": "size: takes three numbers above 0",
            "size 16384 16384 1": "size: these are more pixels than a window may have",
        }.items():
            with self.subTest(step=step):
                self.assert_fails(step, why)

    def test_without_a_root_each_tour_of_a_trial_begins_with_nothing_stored_and_leaves_no_root(self):
        session = os.path.join(self.folder, "session")
        trial = session + "/joyvane-trial" + SETTINGS
        os.makedirs(os.path.dirname(trial), mode=0o700)
        os.chmod(session, 0o700)
        with open(trial, "wb") as file:
            plistlib.dump({"switch_on": False}, file)
        command = self.command('wait value row "A switch" On\ntap switch "A switch"\nwait value row "A switch" Off\n')
        command = [word for word in command if word not in ("--root", self.root)] + ["--simulate"]
        for _ in range(2):
            run = subprocess.run(command, text=True, capture_output=True, timeout=60,
                                 env={**os.environ, "XDG_RUNTIME_DIR": session})
            self.assertEqual((run.returncode, run.stderr), (0, ""))
        self.assertEqual([name for name in os.listdir(session) if name.startswith("joyvane")], ["joyvane-trial"])
        with open(trial, "rb") as file:
            self.assertEqual(plistlib.load(file), {"switch_on": False})

    def test_what_an_earlier_tour_made_goes_and_all_else_stays(self):
        os.makedirs(self.pictures + "/desktop/data")
        kept = {"007-old.png": "mine", "holiday.png": "mine too", "desktop/data/notes": "and this"}
        for name, text in kept.items():
            with open(os.path.join(self.pictures, name), "w") as file:
                file.write(text)
        self.assert_plays("picture one\npicture two\ndesktop install mail\n")
        self.assert_plays("picture new\n")
        self.assertEqual(sorted(os.listdir(self.pictures)),
                         [".joyvane-tour", "001-new.png", "007-old.png", "desktop", "holiday.png", "log.txt"])
        for name, text in kept.items():
            with open(os.path.join(self.pictures, name)) as file:
                self.assertEqual(file.read(), text)

    def test_a_file_of_the_users_that_is_in_the_way_is_named_and_stays(self):
        os.mkdir(self.pictures)
        for name, script in (("log.txt", "picture x\n"), ("001-x.png", "picture x\n"), ("002-x.png", "picture y\npicture x\n"),
                             ("message.eml", "desktop install mail\n")):
            with self.subTest(name=name):
                path = os.path.join(self.pictures, name)
                with open(path, "w") as file:
                    file.write("mine")
                run = self.play(script)
                self.assertEqual(run.returncode, 1)
                self.assertIn(f"{path} is no tour's, and is in the way", run.stderr)
                with open(path) as file:
                    self.assertEqual(file.read(), "mine")
                os.remove(path)

    def test_a_link_of_the_users_is_not_written_through(self):
        os.mkdir(self.pictures)
        own = os.path.join(self.folder, "own.txt")
        with open(own, "w") as file:
            file.write("mine")
        os.symlink(own, os.path.join(self.pictures, "log.txt"))
        self.assertEqual(self.play("picture x\n").returncode, 1)
        with open(own) as file:
            self.assertEqual(file.read(), "mine")

    def test_a_list_that_was_edited_leads_nowhere_else(self):
        os.mkdir(self.pictures)
        own = os.path.join(self.folder, "own.txt")
        os.makedirs(os.path.join(self.pictures, "album", "2024"))
        with open(own, "w"):
            pass
        with open(os.path.join(self.pictures, ".joyvane-tour"), "w") as file:
            file.write("../own.txt\n..\n.\n\n" + own + "\n")
        self.assert_plays("picture x\n")
        self.assertTrue(os.path.exists(own))
        self.assertTrue(os.path.exists(os.path.join(self.pictures, "album", "2024")))

    def test_a_script_that_cannot_be_read_is_named(self):
        run = self.play('say "open\n')
        self.assertEqual((run.returncode, run.stderr), (1, "joyvane-settings: tour: line 1: a quotation has no end\n"))
        command = self.command("")
        os.remove(os.path.join(self.bundle, "tour.txt"))
        run = subprocess.run(command, text=True, capture_output=True, timeout=30)
        self.assertEqual(run.returncode, 1)
        self.assertIn("tour.txt", run.stderr)

    def test_a_folder_that_cannot_be_made_is_named(self):
        with open(self.pictures, "w"):
            pass
        run = self.play("picture x\n")
        self.assertEqual(run.returncode, 1)
        self.assertTrue(run.stderr.startswith(f"joyvane-settings: tour: {self.pictures}"), run.stderr)

    def test_an_interrupted_tour_says_so(self):
        process = subprocess.Popen(self.command("say go\nwait row Nobody\n"), text=True, stderr=subprocess.PIPE)
        end = time.monotonic() + 20
        while time.monotonic() < end:
            if os.path.exists(self.pictures + "/log.txt") and "> wait row Nobody" in self.log():
                break
            time.sleep(0.02)
        process.send_signal(signal.SIGTERM)
        self.assertEqual(process.wait(20), 1)
        self.assertEqual(process.stderr.read(), "joyvane-settings: tour: line 2: interrupted\n")
        process.stderr.close()


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)
