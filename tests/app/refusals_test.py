"""What joyvane-settings says and how it ends when it cannot go on: one sentence, and an exit code that tells the kind.

    refusals_test.py JOYVANE-SETTINGS SAMPLE.BUNDLE THROWING.BUNDLE SEAL_BUNDLE.PY
"""

import collections
import ctypes
import glob
import os
import plistlib
import random
import shutil
import socket
import struct
import subprocess
import sys
import tempfile
import threading
import time
import unittest

PROGRAM, SAMPLE, THROWING, SEAL = sys.argv[1:5]
NO_DISPLAY, USAGE, REFUSED = 2, 3, 4
DISPLAY_NAMES = ("DISPLAY", "WAYLAND_DISPLAY", "WAYLAND_SOCKET", "QT_QPA_PLATFORM")


class Refusals(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="jv-refusals-")
        self.addCleanup(shutil.rmtree, self.folder)
        self.root = os.path.join(self.folder, "root")
        self.bundle = os.path.join(self.folder, "Sample.bundle")
        shutil.copytree(SAMPLE, self.bundle)
        self.module = os.path.join(self.bundle, "Sample")
        self.manifest = os.path.join(self.bundle, "Info.plist")

    def run_program(self, *arguments, without=(), **environment):
        given = {name: value for name, value in os.environ.items() if name not in without}
        return subprocess.run([PROGRAM, "--root", self.root, *arguments], env={**given, **environment}, text=True,
                              capture_output=True, timeout=30, stdin=subprocess.DEVNULL)

    def sentence(self, run):
        """What it said, which must be one line on standard error."""
        self.assertEqual(run.stdout, "")
        self.assertEqual(run.stderr.count("\n"), 1, run.stderr)
        self.assertTrue(run.stderr.startswith("joyvane-settings: "), run.stderr)
        return run.stderr[len("joyvane-settings: "):-1]

    def assert_refused(self, name, reason):
        run = self.run_program("--bundle", self.bundle)
        said = self.sentence(run)
        self.assertEqual(run.returncode, REFUSED, said)
        self.assertTrue(said.startswith(f"bundle refused: {name} "), said)
        self.assertIn(reason, said)
        return said

    def reseal(self):
        """The manifest says of the module what it is now."""
        sealed = self.manifest + ".new"
        subprocess.run([sys.executable, SEAL, self.manifest, self.module, sealed], check=True)
        os.replace(sealed, self.manifest)

    def rewrite(self, path, change):
        with open(path, "rb") as file:
            data = bytearray(file.read())
        changed = change(data)
        data = data if changed is None else changed
        with open(path, "wb") as file:
            file.write(data)

    # A tour needs no display: what it plays shows that the program goes on.
    def play(self, **environment):
        with open(os.path.join(self.bundle, "tour.txt"), "w") as script:
            script.write('tap switch "A switch"\nwait value row "A switch" Off\npicture page\n')
        pictures = os.path.join(self.folder, "pictures")
        run = self.run_program("--bundle", self.bundle, "--tour", pictures, **environment)
        self.assertEqual(run.returncode, 0, run.stderr)
        with open(os.path.join(self.root, "var/mobile/Library/Preferences/com.quorrel.sample.plist"), "rb") as file:
            self.assertIs(plistlib.load(file)["switch_on"], False)
        with open(glob.glob(os.path.join(pictures, "*page.png"))[0], "rb") as file:
            return run, struct.unpack(">2I", file.read(24)[16:])

    def test_a_bundle_that_is_missing(self):
        shutil.rmtree(self.bundle)
        self.assert_refused(self.bundle, "is missing")

    def test_a_bundle_that_is_no_folder(self):
        shutil.rmtree(self.bundle)
        with open(self.bundle, "w"):
            pass
        self.assert_refused(self.bundle, "is no folder")

    def test_a_manifest_that_is_missing(self):
        os.remove(self.manifest)
        self.assert_refused(self.manifest, "is missing")

    def test_a_manifest_that_is_cut_at_any_place(self):
        size = os.path.getsize(self.manifest)
        with open(self.manifest, "rb") as file:
            whole = file.read()
        for length in sorted({0, 1, 5, size // 3, size // 2, size - 20, size - 10}):
            self.rewrite(self.manifest, lambda _: whole[:length])
            self.assert_refused(self.manifest, "cannot be read as a manifest")

    def test_a_manifest_that_is_no_property_list_or_another_kind_of_value(self):
        for text in (b"hello", b"\0" * 64, b"bplist00", plistlib.dumps(["a", "b"]), b"<plist><dict>" * 1000):
            self.rewrite(self.manifest, lambda _: text)
            self.assert_refused(self.manifest, "cannot be read as a manifest")

    def test_a_manifest_that_lacks_something_names_it(self):
        with open(self.manifest, "rb") as file:
            whole = plistlib.load(file)
        wrong = {"CFBundleExecutable": [None, "", 7], "NSPrincipalClass": [None, ""], "JVNModuleSize": [None, 0, "9"],
                 "JVNModuleSHA256": [None, "", "A" * 64, "0" * 63]}
        for key, values in wrong.items():
            for value in values:
                changed = {name: kept for name, kept in whole.items() if name != key}
                if value is not None:
                    changed[key] = value
                self.rewrite(self.manifest, lambda _: plistlib.dumps(changed))
                self.assert_refused(self.manifest, key)

    def test_a_module_outside_the_bundle(self):
        with open(self.manifest, "rb") as file:
            manifest = plistlib.load(file)
        manifest["CFBundleExecutable"] = "../Sample"
        self.rewrite(self.manifest, lambda _: plistlib.dumps(manifest))
        self.assert_refused(self.manifest, "outside the bundle")

    def test_a_module_that_is_missing(self):
        os.remove(self.module)
        self.assert_refused(self.module, "is missing")

    def test_a_module_that_is_cut_or_has_grown(self):
        self.rewrite(self.module, lambda data: data[:-1])
        self.assert_refused(self.module, "is cut")
        self.rewrite(self.module, lambda data: data + b"12")
        self.assert_refused(self.module, "has grown")
        self.rewrite(self.module, lambda data: b"")
        self.assert_refused(self.module, "is cut")

    def test_a_module_with_any_one_bit_flipped(self):
        places = random.Random(5)
        size = os.path.getsize(self.module)
        for place in [0, 4, 18, 24, size - 1, *(places.randrange(size) for _ in range(12))]:
            bit = 1 << places.randrange(8)

            def flip(data):
                data[place] ^= bit
            self.rewrite(self.module, flip)
            self.assert_refused(self.module, "")
            self.rewrite(self.module, flip)

    def test_a_module_for_another_machine(self):
        self.rewrite(self.module, lambda data: data[:18] + b"\x16\x00" + data[20:])
        self.reseal()
        self.assert_refused(self.module, "is made for another machine")

    def test_a_library_of_somebody_else(self):
        library = subprocess.run(["ldd", PROGRAM], text=True, capture_output=True).stdout
        path = next(line.split()[2] for line in library.splitlines() if "libm.so" in line)
        shutil.copyfile(path, self.module)
        self.reseal()
        self.assert_refused(self.module, "is no module of ours: it does not say what it was made for")

    def test_a_module_that_was_compiled_with_other_declarations_runs_no_code(self):
        def other(data):
            data[data.index(b"\x01\0\0\0Joyvane\0") + 12] ^= 1
        shutil.copyfile(os.path.join(THROWING, "Throwing"), self.module)
        self.rewrite(self.module, other)
        self.reseal()
        self.assert_refused(self.module, "is made for another version of this program")

    def test_a_module_whose_initialiser_throws(self):
        shutil.copyfile(os.path.join(THROWING, "Throwing"), self.module)
        self.reseal()
        for _ in range(5):
            run = self.run_program("--bundle", self.bundle)
            self.assertEqual(run.returncode, REFUSED, run.stderr)
            self.assertEqual(run.stderr, f"a throwing initialiser ran\njoyvane-settings: bundle refused: {self.module} "
                                         "cannot be loaded: one of its initialisers failed: no such luck\n")

    def test_of_two_files_that_change_places_only_the_sealed_one_ever_runs(self):
        other = os.path.join(self.folder, "other")
        shutil.copyfile(os.path.join(THROWING, "Throwing"), other)
        with open(os.path.join(self.bundle, "tour.txt"), "w") as script:
            script.write("picture page\n")
        stop = threading.Event()

        def exchange():
            """Each of the files has the module's name about half of the time."""
            libc = ctypes.CDLL(None, use_errno=True)
            here, exchange_both = -100, 2
            while not stop.is_set():
                libc.renameat2(here, self.module.encode(), here, other.encode(), exchange_both)
                time.sleep(0.0005)
        thread = threading.Thread(target=exchange)
        thread.start()
        try:
            ended = collections.Counter()
            for start in range(30):
                run = self.run_program("--bundle", self.bundle, "--tour", os.path.join(self.folder, f"tour-{start}"))
                self.assertNotIn("a throwing initialiser ran", run.stderr)
                ended[run.returncode] += 1
        finally:
            stop.set()
            thread.join()
        self.assertEqual(set(ended), {0, REFUSED}, "both were met")

    def test_a_bundle_that_others_could_change(self):
        for path in (self.module, self.manifest, self.bundle):
            mode = os.stat(path).st_mode
            os.chmod(path, 0o777)
            said = self.assert_refused(self.manifest if path == self.bundle else path, "may be changed by everybody")
            self.assertIn(path, said)
            os.chmod(path, mode)
        os.mkdir(os.path.join(self.folder, "open"))
        os.rename(self.bundle, os.path.join(self.folder, "open/Sample.bundle"))
        os.chmod(os.path.join(self.folder, "open"), 0o777)
        self.bundle = os.path.join(self.folder, "open/Sample.bundle")
        self.assert_refused(os.path.join(self.bundle, "Info.plist"), f"stands in {self.folder}/open, which may be changed")

    @unittest.skipIf(os.geteuid() != 0, "another user's file needs the right to give one away")
    def test_a_bundle_of_another_user(self):
        for path in (self.module, self.manifest, self.bundle):
            os.chown(path, 1234, 1234)
            self.assert_refused(self.manifest if path == self.bundle else path, "belongs to user 1234")
            os.chown(path, 0, 0)

    def test_a_bundle_with_links(self):
        for path in (self.module, self.manifest):
            os.rename(path, path + ".real")
            os.symlink(path + ".real", path)
            self.assert_refused(path, "is a link")
            os.rename(path + ".real", path)
        os.rename(self.bundle, self.folder + "/real")
        os.symlink(self.folder + "/real", self.bundle)
        self.assert_refused(self.manifest, f"stands in {self.bundle}, which is a link")

    def test_a_class_that_is_no_screen(self):
        with open(self.manifest, "rb") as file:
            manifest = plistlib.load(file)
        for name in ("NSObject", "SampleSlider", "NobodysClass"):
            manifest["NSPrincipalClass"] = name
            self.rewrite(self.manifest, lambda _: plistlib.dumps(manifest))
            self.assert_refused(self.module, f"it has no screen called {name}")

    def test_a_module_that_wants_a_library_which_is_not_there(self):
        # The name of a needed library, changed where it stands in the file.
        def rename(data):
            at = data.index(b"libjoyvane-platform.so")
            data[at:at + 10] = b"libnowhere"
        self.rewrite(self.module, rename)
        self.reseal()
        self.assert_refused(self.module, "cannot be loaded: libnowhere")

    def test_no_display_is_one_sentence(self):
        for environment in ({}, {"DISPLAY": ""}, {"DISPLAY": ":4711"}, {"WAYLAND_DISPLAY": "nowhere-0"}):
            run = self.run_program("--bundle", self.bundle, without=DISPLAY_NAMES, **environment)
            said = self.sentence(run)
            self.assertEqual(run.returncode, NO_DISPLAY, said)
            self.assertTrue(said.startswith("no display: "), said)
            self.assertIn("--tour", said)
            self.assertTrue(all(name in said for name in environment.values()), said)

    def test_a_tour_needs_no_display(self):
        with unittest.mock.patch.dict(os.environ):
            for name in DISPLAY_NAMES:
                os.environ.pop(name, None)
            _, size = self.play()
        self.assertEqual(size[0] % 384, 0)

    def test_without_a_bus_it_works(self):
        for address in ("", "unix:path=/nowhere/bus", "nonsense"):
            self.play(DBUS_SESSION_BUS_ADDRESS=address, XDG_RUNTIME_DIR=self.folder + "/nowhere")
            shutil.rmtree(self.root)

    def test_a_bus_that_never_answers_holds_nothing_up(self):
        path = os.path.join(self.folder, "bus")
        with socket.socket(socket.AF_UNIX) as bus:
            bus.bind(path)
            bus.listen()
            begun = time.monotonic()
            self.play(DBUS_SESSION_BUS_ADDRESS=f"unix:path={path}")
            self.assertLess(time.monotonic() - begun, 15, "the toolkit alone would wait for 25 seconds")

    def test_without_fonts_it_works(self):
        configuration = os.path.join(self.folder, "fonts.conf")
        with open(configuration, "w") as file:
            file.write('<?xml version="1.0"?><fontconfig></fontconfig>\n')
        self.play(FONTCONFIG_FILE=configuration)

    def test_a_command_line_that_is_not_understood(self):
        run = self.run_program("--colour")
        self.assertEqual(run.returncode, USAGE)
        self.assertEqual(self.sentence(run), "unknown option --colour; --help lists what there is")

    def assert_no_root(self, root, *, arguments=None, **options):
        """One sentence that names it; `arguments` and `options` as subprocess.run() has them."""
        command = [PROGRAM, "--bundle", self.bundle, *(["--root", root] if arguments is None else arguments)]
        run = subprocess.run(command, text=True, capture_output=True, timeout=30, stdin=subprocess.DEVNULL, **options)
        self.assertEqual(run.returncode, 1, run.stderr)
        said = self.sentence(run)
        self.assertTrue(said.startswith(f"root {root}"), said)
        return said

    def test_a_root_that_cannot_be(self):
        with open(self.root, "w"):
            pass
        circle = os.path.join(self.folder, "circle")
        os.symlink(circle, circle)
        for root in (self.root, self.root + "/below", circle, circle + "/below", self.folder + "/" + 300 * "x",
                     self.folder + 20 * ("/" + 250 * "x")):
            with self.subTest(root=root):
                self.assert_no_root(root)

    def as_somebody_else(self):
        """Options with which a child may not do everything; the administrator may."""
        if os.geteuid() != 0:
            return {}
        # Our bundle would be somebody else's to them.
        for path, folders, files in os.walk(self.folder):
            for name in [path, *(os.path.join(path, file) for file in files)]:
                os.chown(name, 65534, 65534)
        return {"user": 65534, "group": 65534, "extra_groups": []}

    def test_a_root_below_a_folder_that_may_not_be_entered(self):
        locked = os.path.join(self.folder, "locked")
        os.makedirs(locked + "/root")
        somebody = self.as_somebody_else()
        os.chmod(locked, 0)
        self.addCleanup(os.chmod, locked, 0o700)
        for root in (locked + "/root", locked + "/none", locked):
            with self.subTest(root=root):
                self.assertIn("Permission denied", self.assert_no_root(root, **somebody))

    def test_a_relative_root_whose_current_folder_is_gone(self):
        gone = os.path.join(self.folder, "gone")
        os.mkdir(gone)
        self.assertIn("current folder", self.assert_no_root("here", cwd=gone, preexec_fn=lambda: os.rmdir(gone)))

    def test_a_home_that_cannot_be_reached(self):
        circle = os.path.join(self.folder, "circle")
        os.symlink(circle, circle)
        environment = {name: value for name, value in os.environ.items() if not name.startswith("XDG_")}
        said = self.assert_no_root("", arguments=[], env={**environment, "HOME": circle})
        self.assertTrue(said.startswith(f"root {circle}/.local/share/joyvane: "), said)

    def in_its_own_name(self, home, **options):
        """Started without a root by somebody whose home that is said to be."""
        environment = {name: value for name, value in os.environ.items() if not name.startswith("XDG_")}
        return self.assert_no_root("", arguments=[], env={**environment, "HOME": home}, **options)

    def test_a_home_that_is_everybodys(self):
        everybodys = os.path.join(self.folder, "everybodys")
        os.mkdir(everybodys)
        os.chmod(everybodys, 0o1777)
        for home in (everybodys, everybodys + "/none/.."):
            self.assertIn(f"everybody may write to {everybodys}", self.in_its_own_name(home))
        self.assertEqual(os.listdir(everybodys), [])
        os.mkdir(everybodys + "/within", 0o700)
        os.chmod(everybodys, 0o777)
        self.assertIn(f"everybody may write to {everybodys}", self.in_its_own_name(everybodys + "/within"))

    def test_a_root_that_others_could_change(self):
        os.makedirs(self.root)
        for mode in (0o777, 0o1777):
            os.chmod(self.root, mode)
            self.assertIn(": it may be changed by everybody; give a folder", self.assert_no_root(self.root))
        self.assertEqual(os.listdir(self.root), [])

    @unittest.skipIf(os.geteuid() != 0, "this is about the administrator")
    def test_an_administrators_root_that_others_could_change_or_put_another_one_in_its_place(self):
        within = os.path.join(self.root, "within")
        os.makedirs(within)
        os.chmod(self.root, 0o777)
        self.assertIn(": it may be changed by everybody", self.assert_no_root("/tmp"))
        for root in (within, self.root + "/none"):
            self.assertIn(f"everybody may write to {self.root}", self.assert_no_root(root))
        os.chmod(self.root, 0o755)
        os.chown(self.root, 1234, 1234)
        for root in (within, self.root + "/none"):
            self.assertIn(f"{self.root} belongs to user 1234", self.assert_no_root(root))
        self.assertEqual((os.listdir(self.root), os.listdir(within)), (["within"], []))
        os.chown(self.root, 0, 0)
        os.chown(within, 0, 1234)
        os.chmod(within, 0o775)
        self.assertIn("it may be changed by a group of users", self.assert_no_root(within))

    @unittest.skipIf(os.geteuid() != 0, "another user's folder needs the right to give one away")
    def test_a_home_or_a_root_of_another_user(self):
        others = os.path.join(self.folder, "others")
        os.makedirs(others + "/.local")
        os.chown(others, 1234, 1234)
        self.assertIn(f"{others} belongs to user 1234", self.in_its_own_name(others))
        self.assertEqual(os.listdir(others), [".local"])
        said = self.assert_no_root(others)
        self.assertIn("started as the administrator", said)
        os.chown(others, 0, 0)
        for folder in (self.folder, others):
            os.chmod(folder, 0o755)
        self.assertIn("it belongs to root", self.assert_no_root(others, user=65534, group=65534, extra_groups=[]))

    @unittest.skipIf(os.geteuid() != 0, "this is about the administrator")
    def test_the_administrators_own_home_is_taken_and_named(self):
        home = os.path.join(self.folder, "home")
        os.mkdir(home, 0o700)
        with open(os.path.join(self.bundle, "tour.txt"), "w") as script:
            script.write("picture page\n")
        environment = {name: value for name, value in os.environ.items() if not name.startswith("XDG_")}
        run = subprocess.run([PROGRAM, "--bundle", self.bundle, "--tour", os.path.join(self.folder, "pictures")],
                             env={**environment, "HOME": home}, text=True, capture_output=True, timeout=60)
        self.assertEqual(run.returncode, 0, run.stderr)
        self.assertIn(f"the administrator's own, in {home}/.local/share/joyvane", run.stderr)

    def test_a_new_root_is_its_users_alone(self):
        mask = os.umask(0)
        self.addCleanup(os.umask, mask)
        self.play()
        self.assertEqual(os.stat(self.root).st_mode & 0o777, 0o700)

    def test_a_size_that_no_screen_has(self):
        run = self.run_program("--size", "16384x16384", "--scale", "8")
        self.assertEqual(run.returncode, USAGE)
        self.assertIn("131072x131072 pixels", self.sentence(run))
        run = self.run_program("--size", "64x64")
        self.assertEqual(run.returncode, USAGE)
        self.assertIn("320x240", self.sentence(run))


if __name__ == "__main__":
    import unittest.mock
    unittest.main(argv=sys.argv[:1], verbosity=2)
