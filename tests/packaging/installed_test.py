"""What an installation puts below a prefix: complete, working from there, and writing nowhere else.

installed_test.py BUILD CMAKE
"""

import hashlib
import os
import plistlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree

BUILD, CMAKE = sys.argv[1:3]
OPTION = re.compile(r"--[a-z][a-z-]*")
PACKAGING = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "packaging")


class Installed(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        # What somebody has installed from this build can still be taken away after this test.
        cls.manifest = os.path.join(BUILD, "install_manifest.txt")
        cls.others = open(cls.manifest, encoding="utf-8").read() if os.path.exists(cls.manifest) else None
        cls.prefix = os.path.join(cls.folder.name, "prefix")
        subprocess.run([CMAKE, "--install", BUILD, "--prefix", cls.prefix, "--strip"], check=True, capture_output=True)
        cls.program = os.path.join(cls.prefix, "bin", "joyvane-settings")

    @classmethod
    def tearDownClass(cls):
        if cls.others is not None:
            with open(cls.manifest, "w", encoding="utf-8") as file:
                file.write(cls.others)
        elif os.path.exists(cls.manifest):
            os.remove(cls.manifest)
        cls.folder.cleanup()

    def run_program(self, *arguments, program=None):
        home = os.path.join(self.folder.name, "home")
        os.makedirs(os.path.join(home, "run"), mode=0o700, exist_ok=True)
        environment = {"PATH": os.environ["PATH"], "HOME": home, "XDG_RUNTIME_DIR": os.path.join(home, "run"),
                       "LC_ALL": "C.UTF-8", "QT_QPA_PLATFORM": "offscreen"}
        return subprocess.run(["dbus-run-session", "--", program or self.program, *arguments], env=environment,
                              cwd=self.folder.name, capture_output=True, text=True, timeout=100)

    def files(self, top):
        return sorted(os.path.relpath(os.path.join(folder, name), top)
                      for folder, _, names in os.walk(top) for name in names)

    def test_everything_is_in_its_place(self):
        for path in ("lib/joyvane/libjoyvane-platform.so.0", "lib/joyvane/Joyvane.bundle/Joyvane",
                     "lib/joyvane/Joyvane.bundle/Joyvane.plist", "lib/joyvane/jvnd", "lib/joyvane/jvndiscovery",
                     "lib/systemd/user/jvnd.socket", "lib/systemd/user/jvnd.service", "share/man/man8/jvnd.8.gz",
                     "share/man/man8/jvndiscovery.8.gz", "share/man/man8/jvninputd.8.gz", "share/man/man1/jvninput.1.gz",
                     "lib/joyvane/jvninputd", "lib/systemd/system/jvninputd.socket", "lib/systemd/system/jvninputd.service",
                     "bin/jvninput", "share/doc/joyvane/user-guide.html", "share/doc/joyvane/pictures/page.png",
                     "share/doc/joyvane/copyright", "share/doc/joyvane/changelog.gz",
                     "share/bash-completion/completions/jvninput", "lib/joyvane/Joyvane.bundle/Info.plist",
                     "share/applications/com.quorrel.joyvane.desktop", "share/man/man1/joyvane-settings.1.gz",
                     "share/icons/hicolor/scalable/apps/com.quorrel.joyvane.svg",
                     "share/icons/hicolor/128x128/apps/com.quorrel.joyvane.png",
                     "share/metainfo/com.quorrel.joyvane.metainfo.xml",
                     "share/bash-completion/completions/joyvane-settings"):
            with self.subTest(path=path):
                self.assertTrue(os.path.isfile(os.path.join(self.prefix, path)))

    def test_the_seal_is_that_of_the_stripped_module(self):
        bundle = os.path.join(self.prefix, "lib", "joyvane", "Joyvane.bundle")
        with open(os.path.join(bundle, "Info.plist"), "rb") as file:
            manifest = plistlib.load(file)
        with open(os.path.join(bundle, "Joyvane"), "rb") as file:
            module = file.read()
        self.assertEqual(manifest["JVNModuleSize"], len(module))
        self.assertEqual(manifest["JVNModuleSHA256"], hashlib.sha256(module).hexdigest())

    def test_what_is_installed_is_hardened(self):
        check = subprocess.run([sys.executable, os.path.join(PACKAGING, "..", "scripts", "check-hardening"), self.prefix],
                               capture_output=True, text=True)
        self.assertEqual(check.returncode, 0, check.stderr)
        self.assertIn("7 built files are hardened", check.stdout)

    def test_the_program_runs_from_the_prefix(self):
        result = self.run_program("--version")
        self.assertEqual(result.returncode, 0, result.stderr)

    def test_the_tour_finds_the_bundle_and_writes_only_where_it_may(self):
        before = self.files(self.folder.name)
        result = self.run_program("--simulate", "--tour", os.path.join(self.folder.name, "tour"))
        self.assertEqual(result.returncode, 0, result.stdout + result.stderr)
        self.assertTrue([name for name in self.files(os.path.join(self.folder.name, "tour")) if name.endswith(".png")])
        new = set(self.files(self.folder.name)) - set(before)
        allowed = ("tour/", "home/.local/share/", "home/.cache/", "home/run/")
        self.assertEqual([path for path in sorted(new) if not path.startswith(allowed)], [])
        self.check_tour(os.path.join(self.folder.name, "tour"))

    def check_tour(self, folder):
        """The pictures and the log show the whole job, and what really went out meanwhile."""
        names = " ".join(name[4:-4] for name in self.files(folder) if name.endswith(".png"))
        for step in ("first-start", "sync-button", "x-home-1", "x-home-2", "x-home-3", "dualshock4", "by-hand-ps3",
                     "no-controller", "paired", "connected", "picker-dragged", "picker-tapped", "ambient-on",
                     "ambient-off", "disconnected", "extended-warning", "keymap-remapped", "no-mail",
                     "message", "tool-missing", "daemon-away", "daemon-back"):
            self.assertIn(step, names)
        with open(os.path.join(folder, "log.txt"), encoding="utf-8") as file:
            log = "\n".join(line for line in file.read().splitlines() if "  > " not in line)
        for frame in ("QueryConnection", "Connect", "Disconnect", "EndSession", "SetLEDColor", "RestartDaemons"):
            self.assertTrue(re.search(rf"jvnd: \d+ < [0-9a-f. ]+ \| {frame}\b", log), f"no frame {frame}")
        for line in (r"notification com\.quorrel\.jvnprefs\.changed", r"notification com\.quorrel\.jvninitbt",
                     r"notification com\.quorrel\.jvnfailure", r"jvnd: light of \.\.:00:01 shows 004efd",
                     r"jvnd: light of \.\.:00:01 shows [0-9a-f]{6}", r"jvnd: heard com\.quorrel\.jvninitbt",
                     r"jvnd: keyboard plays", r"file /var/mobile.*: controller_type = 6",
                     r"process \d+ was started: .*/usr/bin/jvndiscovery", r"process \d+ ended with 0",
                     r"was started: .*gio launch .*/browser\.desktop .*/sixpair_instructions\.html",
                     r"was started: .*gio launch .*/mail-program\.desktop /.*\.eml", r"log launch /usr/bin/jvndiscovery: No such file"):
            self.assertTrue(re.search(line, log), f"nothing like {line} in the tour's log")
        with open(os.path.join(folder, "message.eml"), encoding="ascii") as file:
            self.assertIn("X-Unsent: 1\nTo: \nSubject: \n", file.read())
        self.assertFalse(os.path.exists(os.path.join(folder, "desktop")), "the made-up desktop goes with the tour")

    def test_manuals_and_completions_know_the_options_that_help_prints(self):
        for program, more in (("joyvane-settings", (".1", ".bash")), ("jvninput", (".1", ".bash")), ("jvnd", (".8",)),
                              ("jvndiscovery", (".8",)), ("jvninputd", (".8",))):
            path = os.path.join(self.prefix, "bin" if ".1" in more else "lib/joyvane", program)
            printed = set(OPTION.findall(self.run_program("--help", program=path).stdout))
            self.assertGreater(len(printed), 2, program)
            for suffix in more:
                with open(os.path.join(PACKAGING, program + suffix), encoding="utf-8") as file:
                    known = set(OPTION.findall(file.read().replace("\\-", "-")))
                self.assertEqual(printed, known, program + suffix)

    def test_units_name_the_programs_that_were_installed(self):
        for unit, program in (("user/jvnd.service", "jvnd"), ("system/jvninputd.service", "jvninputd")):
            with open(os.path.join(self.prefix, "lib/systemd", unit), encoding="utf-8") as file:
                self.assertIn(f"ExecStart={self.prefix}/lib/joyvane/{program}\n", file.read())

    def test_the_guides_pictures_and_places_are_there(self):
        folder = os.path.join(self.prefix, "share/doc/joyvane")
        with open(os.path.join(folder, "user-guide.html"), encoding="utf-8") as file:
            text = file.read()
        shown = re.findall(r'<img src="([^"]*)"', text)
        self.assertGreater(len(shown), 3)
        for path in shown:
            self.assertTrue(os.path.isfile(os.path.join(folder, path)), path)
        places = re.findall(r'href="#([^"]*)"', text)
        self.assertGreater(len(places), 1)
        for place in places:
            self.assertIn(f'id="{place}"', text)

    def test_what_is_installed_can_be_taken_away_again(self):
        prefix = os.path.join(self.folder.name, "away")
        os.makedirs(os.path.join(prefix, "share/man/man1"))
        others = os.path.join(prefix, "share/man/man1/somebody-elses.1")
        open(others, "w").close()
        subprocess.run([CMAKE, "--install", BUILD, "--prefix", prefix], check=True, capture_output=True)
        subprocess.run([CMAKE, "-P", os.path.join(PACKAGING, "..", "cmake", "uninstall.cmake"), BUILD], check=True,
                       capture_output=True)
        self.assertEqual(self.files(prefix), ["share/man/man1/somebody-elses.1"])
        self.assertEqual([name for _, folders, _ in os.walk(prefix) for name in folders if "oyvane" in name], [])

    def test_data_for_software_centres_and_desktops_is_well_formed(self):
        component = xml.etree.ElementTree.parse(
            os.path.join(self.prefix, "share/metainfo/com.quorrel.joyvane.metainfo.xml")).getroot()
        self.assertEqual(component.findtext("launchable"), "com.quorrel.joyvane.desktop")
        if shutil.which("desktop-file-validate"):
            said = subprocess.run(["desktop-file-validate", os.path.join(
                self.prefix, "share/applications/com.quorrel.joyvane.desktop")], capture_output=True, text=True, check=False)
            self.assertEqual((said.returncode, said.stdout), (0, ""))
        if shutil.which("appstreamcli"):
            said = subprocess.run(["appstreamcli", "validate", "--no-net",
                                   os.path.join(self.prefix, "share/metainfo/com.quorrel.joyvane.metainfo.xml")],
                                  capture_output=True, text=True, check=False)
            self.assertEqual(said.returncode, 0, said.stdout)
        self.assertRegex(component.find("releases/release").get("version"), r"^\d+\.\d+\.\d+$")
        with open(os.path.join(self.prefix, "share/applications/com.quorrel.joyvane.desktop"), encoding="utf-8") as file:
            self.assertIn("Icon=com.quorrel.joyvane\n", file.read())


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)
