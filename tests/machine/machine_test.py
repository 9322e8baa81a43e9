"""What goes wrong in the machine is seen outside: machine_test.py FOLDER FAILING_PROGRAM"""

import io
import os
import signal
import subprocess
import sys
import tempfile
import time
import unittest

sys.dont_write_bytecode = True

import machine

FOLDER, FAILING = sys.argv[1:3]


def emulators_in(folder):
    """The processes of the machines whose files are below that folder."""
    found = []
    for process in filter(str.isdigit, os.listdir("/proc")):
        try:
            place = os.readlink(f"/proc/{process}/cwd")
            with open(f"/proc/{process}/cmdline", encoding="utf-8", errors="replace") as words:
                if place.startswith(os.path.realpath(folder)) and words.read().startswith(machine.EMULATOR):
                    found.append(process)
        except OSError:
            pass  # it has ended meanwhile
    return found


def wait_until(fact, seconds=60):
    deadline = time.monotonic() + seconds
    while not fact():
        if time.monotonic() > deadline:
            raise TimeoutError
        time.sleep(0.02)


class Seen(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.machine = machine.Machine.running(FOLDER)

    @classmethod
    def tearDownClass(cls):
        cls.machine.close()

    def run_script(self, script, **options):
        output = io.BytesIO()
        status = self.machine.run(script, output=output, **options)
        return status, output.getvalue().decode()

    def test_success(self):
        self.assertEqual(self.run_script("echo one; echo two >&2"), (0, "one\ntwo\n"))

    def test_a_failed_expectation(self):
        status, output = self.run_script(f"exec {FAILING} --gtest_filter='*AnExpectation'")
        self.assertEqual(status, 1)
        self.assertIn("[  FAILED  ] Failing.AnExpectation", output)
        self.assertIn("failing.cpp", output)

    def test_a_signal(self):
        status, _ = self.run_script(f"exec {FAILING} --gtest_filter='*ASignal'")
        self.assertEqual(status, 128 + 11)

    def test_no_end(self):
        begin = time.monotonic()
        status, output = self.run_script(f"exec {FAILING} --gtest_filter='*NoEnd' < <(exec sleep 1000)", timeout=2)
        self.assertEqual(status, 124)
        self.assertIn("this does not end", output)
        self.assertLess(time.monotonic() - begin, 60)

    def test_a_missing_program(self):
        status, output = self.run_script("exec /no/such/program")
        self.assertEqual(status, 127)
        self.assertIn("/no/such/program", output)

    def test_what_is_left_running_ends_with_the_test(self):
        self.run_script("setsid sleep 1234 & systemd-run --quiet --unit=joyvane-test-left sleep 1234")
        status, _ = self.run_script("pgrep -f 'sleep 123[4]'")
        self.assertEqual(status, 1)

    def test_what_a_failed_test_made_services_say(self):
        _, output = self.run_script("systemd-cat -t something echo this was said; exit 1")
        self.assertIn("something[", output)
        self.assertIn("this was said", output)

    def test_the_command_line_gives_the_status(self):
        self.machine.close()
        ended = subprocess.run([machine.SOURCE + "/scripts/machine", "run", "--folder", FOLDER, "--user", "bert",
                                "sh", "-c", "id -un; exit 7"], capture_output=True, text=True)
        type(self).machine = machine.Machine.running(FOLDER)
        self.assertEqual((ended.returncode, ended.stdout.splitlines()[0]), (7, "bert"))

    def test_a_machine_ends_with_the_command_that_started_it_however_that_is_ended(self):
        with tempfile.TemporaryDirectory() as folder:
            command = subprocess.Popen([machine.SOURCE + "/scripts/machine", "run", "true"],
                                       env={**os.environ, "TMPDIR": folder}, stdout=subprocess.DEVNULL)
            try:
                wait_until(lambda: emulators_in(folder))
            finally:
                command.send_signal(signal.SIGTERM)

            self.assertEqual(command.wait(timeout=60), 128 + signal.SIGTERM)
            self.assertEqual(emulators_in(folder), [])
            self.assertEqual(os.listdir(folder), [])


if __name__ == "__main__":
    why = machine.left_out()
    if why:
        print(why)
        sys.exit(77)
    unittest.main(argv=sys.argv[:1], verbosity=2)
