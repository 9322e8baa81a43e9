"""What the programs are to those who start them and to those whom they start.

    processes_test.py JOYVANE.BUNDLE JOYVANE-SETTINGS JVND JVNDISCOVERY JVNINPUTD JVNINPUT
"""

import os
import plistlib
import re
import select
import shutil
import socket
import subprocess
import sys
import tempfile
import time
import unittest

BUNDLE, SETTINGS, JVND, JVNDISCOVERY, JVNINPUTD, JVNINPUT = sys.argv[1:7]
PREFERENCES = "var/mobile/Library/Preferences/com.quorrel.joyvane.plist"
DUALSHOCK = 1


def wait_for(what, condition, seconds=30):
    end = time.monotonic() + seconds
    while not (result := condition()):
        if time.monotonic() > end:
            raise AssertionError(f"waited for {what}")
        time.sleep(0.005)
    return result


class Processes(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="jv-processes-")
        self.addCleanup(shutil.rmtree, self.folder)
        self.root = os.path.join(self.folder, "root")
        os.makedirs(os.path.join(self.root, os.path.dirname(PREFERENCES)), mode=0o700)
        with open(os.path.join(self.root, PREFERENCES), "wb") as file:
            plistlib.dump({"controller_type": DUALSHOCK}, file)
        self.environment = {**os.environ, "XDG_RUNTIME_DIR": self.folder, "DBUS_SESSION_BUS_ADDRESS": "",
                            "DBUS_SYSTEM_BUS_ADDRESS": "unix:path=/nowhere", "JOYVANE_ROOT": self.root}

    def descriptors(self, process):
        folder = f"/proc/{process.pid}/fd"
        found = {}
        for name in os.listdir(folder):
            try:
                found[int(name)] = os.readlink(f"{folder}/{name}")
            except FileNotFoundError:
                pass
        return found

    def assert_opens_what_is_missing(self, command):
        def close_all():
            for descriptor in (0, 1, 2):
                os.close(descriptor)
        process = subprocess.Popen(command, env=self.environment, preexec_fn=close_all)
        try:
            # Something of its own is open: it is past its first lines.
            wait_for(f"{command[0]} to get going", lambda: [
                link for link in self.descriptors(process).values() if re.match(r"anon_inode:|socket:", link)])
            found = self.descriptors(process)
            self.assertEqual({number: found.get(number) for number in (0, 1, 2)}, dict.fromkeys((0, 1, 2), "/dev/null"))
        finally:
            process.kill()
            process.wait()

    def test_missing_standard_descriptors_of_the_page_are_opened(self):
        self.assert_opens_what_is_missing([SETTINGS, "--bundle", BUNDLE, "--root", self.root])

    def test_missing_standard_descriptors_of_the_daemon_are_opened(self):
        self.assert_opens_what_is_missing([JVND, "--simulate", "--root", self.root])

    def test_missing_standard_descriptors_of_the_pairing_tool_are_opened(self):
        self.assert_opens_what_is_missing([JVNDISCOVERY, "--simulate", "--root", self.root])

    def test_missing_standard_descriptors_of_the_input_service_are_opened(self):
        self.assert_opens_what_is_missing([JVNINPUTD, "--socket", os.path.join(self.folder, "input")])

    def test_missing_standard_descriptors_of_the_small_client_are_opened(self):
        path = os.path.join(self.folder, "input")
        with socket.socket(socket.AF_UNIX, socket.SOCK_SEQPACKET) as service:
            service.bind(path)
            service.listen()
            self.assert_opens_what_is_missing([JVNINPUT, "watch", "--socket", path])

    def put_tool(self, script):
        os.makedirs(os.path.join(self.root, "usr/bin"))
        path = os.path.join(self.root, "usr/bin/jvndiscovery")
        with open(path, "w") as file:
            file.write("#!/bin/sh\n" + script)
        os.chmod(path, 0o755)

    def pair(self, tool, steps):
        """Plays a tour in which that tool pairs; what is said on standard error, and the tour's log."""
        self.put_tool(tool)
        bundle = os.path.join(self.folder, "Joyvane.bundle")
        shutil.copytree(BUNDLE, bundle)
        with open(os.path.join(bundle, "tour.txt"), "w") as script:
            script.write("\n".join(steps) + "\n")
        tour = os.path.join(self.folder, "tour")
        run = subprocess.run([SETTINGS, "--bundle", bundle, "--root", self.root, "--tour", tour],
                             env={**self.environment, "SECRET": "a secret", "LD_BIND_NOW": "1", "HOME": self.folder},
                             text=True, capture_output=True, timeout=100)
        self.assertEqual(run.returncode, 0, run.stderr[-2000:])
        with open(os.path.join(tour, "log.txt")) as file:
            return run.stderr, file.read()

    def test_twenty_deaf_pairing_tools_leave_none(self):
        tool = "trap '' INT\necho $$ >>\"$JOYVANE_ROOT/tools\"\necho is deaf\nexec sleep 1000\n"
        steps = []
        for number in range(1, 21):
            # Beside the panel, which takes what falls on it.
            steps += ['tap any "Pair Controller" at 0.03 0.5', f'wait noted "jvndiscovery: is deaf" {number}']
        self.pair(tool, steps)
        with open(os.path.join(self.root, "tools")) as file:
            tools = file.read().split()
        self.assertEqual(len(tools), 20)
        self.assertEqual([tool for tool in tools if os.path.exists(f"/proc/{tool}")], [])

    def test_a_pairing_tool_that_floods_fills_no_log_and_does_not_wait(self):
        tool = "yes 'it says this over and over again' | head -c 10000000\necho done >\"$JOYVANE_ROOT/done\"\n"
        said, log = self.pair(tool, ['tap any "Pair Controller"', 'wait noted "ended with 0"'])
        self.assertTrue(os.path.exists(os.path.join(self.root, "done")))
        self.assertLess(len(said) + len(log), 20000)
        self.assertIn("jvndiscovery: it says more than 100 lines", log)

    def test_a_log_that_nobody_reads_holds_nothing_up(self):
        reader, writer = os.pipe()
        self.addCleanup(os.close, reader)
        os.set_blocking(writer, False)
        try:
            while os.write(writer, b"-"):
                pass
        except BlockingIOError:
            pass
        os.set_blocking(writer, True)
        bundle = os.path.join(self.folder, "Joyvane.bundle")
        shutil.copytree(BUNDLE, bundle)
        self.put_tool("echo is here\nexit 3\n")
        with open(os.path.join(bundle, "tour.txt"), "w") as script:
            script.write('tap any "Pair Controller"\nwait noted "it ended with 3"\n')
        tour = [SETTINGS, "--bundle", bundle, "--root", self.root, "--tour", self.folder + "/tour"]
        try:
            run = subprocess.run(tour, env={**self.environment, "HOME": self.folder}, stderr=writer, timeout=60)
        finally:
            os.close(writer)
        self.assertEqual(run.returncode, 0)
        with open(os.path.join(self.folder, "tour/log.txt")) as file:
            self.assertIn("jvndiscovery: is here", file.read())
        with open(reader, closefd=False) as file:
            self.assertEqual(file.read().strip("-"), "")

    def test_a_pairing_tool_gets_what_it_needs_and_no_more(self):
        self.pair('ls -l /proc/self/fd >"$JOYVANE_ROOT/descriptors"\nenv >"$JOYVANE_ROOT/environment"\n',
                  ['tap any "Pair Controller"', 'wait noted "ended with 0"'])
        with open(os.path.join(self.root, "environment")) as file:
            names = {line.split("=")[0] for line in file}
        self.assertIn("HOME", names)
        allowed = r"HOME|USER|LOGNAME|LANG|LANGUAGE|LC_\w+|TZ|XDG_(RUNTIME_DIR|DATA_HOME)|DBUS_(SESSION|SYSTEM)_BUS_ADDRESS"
        shell = "PWD|OLDPWD|SHLVL|_"
        more = "JOYVANE_ROOT|JOYVANE_SIMULATE|(A|L|UB|T|M)SAN_OPTIONS"
        self.assertEqual({name for name in names if not re.fullmatch(f"{allowed}|{shell}|{more}", name)}, set())
        with open(os.path.join(self.root, "descriptors")) as file:
            links = file.read()
        # The shell has its script at 10, and ls the folder that it lists.
        self.assertEqual(re.findall(r"(\d+) -> (?!/proc/)(?!.*jvndiscovery$)", links, re.MULTILINE), ["0", "1", "2"], links)

    def test_a_killed_page_leaves_no_pairing_tool(self):
        os.makedirs(os.path.join(self.root, "usr/bin"))
        os.symlink(JVNDISCOVERY, os.path.join(self.root, "usr/bin/jvndiscovery"))
        # Nobody is there to be found: by itself it would search for ever.
        world = os.path.join(self.root, "var/joyvane/simulated-controllers")
        os.makedirs(os.path.dirname(world), mode=0o700)
        with open(world, "w") as file:
            file.write("bluetooth on\n")
        self.assert_killed_page_leaves_no_tool()

    def test_a_killed_page_leaves_no_deaf_pairing_tool(self):
        self.put_tool("trap '' INT TERM HUP\necho >\"$JOYVANE_ROOT/deaf\"\nexec sleep 1000\n")
        self.assert_killed_page_leaves_no_tool(lambda: os.path.exists(os.path.join(self.root, "deaf")))

    @unittest.skipUnless(hasattr(os, "pidfd_open"), "this Python cannot watch a process")
    def assert_killed_page_leaves_no_tool(self, is_ready=lambda: True):
        bundle = os.path.join(self.folder, "Joyvane.bundle")
        shutil.copytree(BUNDLE, bundle)
        with open(os.path.join(bundle, "tour.txt"), "w") as script:
            script.write('tap any "Pair Controller"\nwait row "Nobody\'s"\n')
        process = subprocess.Popen([SETTINGS, "--bundle", bundle, "--root", self.root, "--tour", self.folder + "/tour"],
                                   env={**self.environment, "JOYVANE_SIMULATE": "1"}, stderr=subprocess.DEVNULL)
        children = f"/proc/{process.pid}/task/{process.pid}/children"

        def child():
            with open(children) as file:
                return file.read().split()
        wait_for("the tool, and what keeps guard over it", lambda: len(child()) > 1)
        tool = os.pidfd_open(int(child()[0]))
        wait_for("the tool to get going", is_ready)
        try:
            process.kill()
            process.wait()
            self.assertTrue(select.select([tool], [], [], 20)[0], "it has ended")
        finally:
            os.close(tool)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)
