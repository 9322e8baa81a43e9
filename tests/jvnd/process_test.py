"""jvnd as a process among others: its place, its starts and restarts, what it costs.

    process_test.py JVND
"""

import os
import signal
import socket
import stat
import subprocess
import sys
import time
import unittest

sys.path.insert(0, os.path.dirname(__file__))
from daemon_process import CONNECT, QUERY, RESTART, Caller, Daemon, JvndTest, frame, wait_for


class Place(JvndTest):
    def test_the_socket_is_its_users_alone_and_goes_with_it(self):
        for number in (signal.SIGTERM, signal.SIGINT, signal.SIGHUP):
            self.daemon.start()
            status = os.stat(self.daemon.socket_path)
            self.assertTrue(stat.S_ISSOCK(status.st_mode))
            self.assertEqual(status.st_mode & 0o777, 0o600)
            self.assertEqual(os.stat(os.path.dirname(self.daemon.socket_path)).st_mode & 0o777, 0o700)
            self.assertEqual(self.daemon.end(number), 0)
            self.assertEqual(os.listdir(os.path.dirname(self.daemon.socket_path)), [])

    def test_a_signal_as_soon_as_the_socket_is_there_ends_it_as_any_other(self):
        for _ in range(30):
            self.daemon.start(ready=False)
            while not os.path.exists(self.daemon.socket_path):
                pass
            self.assertEqual(self.daemon.end(), 0)
            self.assertEqual(os.listdir(os.path.dirname(self.daemon.socket_path)), [])

    def test_a_root_has_one_daemon(self):
        self.daemon.start()
        second = Daemon(self, self.program, self.daemon.root).start(ready=False)
        self.assertEqual(second.process.wait(10), 1)
        second.end()
        self.assertIn("another daemon serves this root", second.errors)
        self.daemon.write_preferences({"controller_type": 1})
        self.assertIsNone(self.daemon.ask(QUERY))

    def test_the_socket_of_a_crashed_daemon_is_replaced(self):
        self.daemon.start()
        self.daemon.end(signal.SIGKILL)
        self.assertTrue(os.path.exists(self.daemon.socket_path))
        self.daemon.start()
        self.assertEqual(self.daemon.ask(CONNECT, 6), (9, 2))

    def test_a_socket_at_which_somebody_listens_is_left_alone(self):
        os.makedirs(os.path.dirname(self.daemon.socket_path))
        with socket.socket(socket.AF_UNIX) as other:
            other.bind(self.daemon.socket_path)
            other.listen()
            self.daemon.start(ready=False)
            self.assertEqual(self.daemon.process.wait(10), 1)
            self.assertTrue(os.path.exists(self.daemon.socket_path))

    def test_what_is_no_socket_is_left_alone(self):
        os.makedirs(os.path.dirname(self.daemon.socket_path))
        with open(self.daemon.socket_path, "w") as file:
            file.write("precious")
        self.daemon.start(ready=False)
        self.assertEqual(self.daemon.process.wait(10), 1)
        with open(self.daemon.socket_path) as file:
            self.assertEqual(file.read(), "precious")

    def test_the_root_may_be_long(self):
        self.daemon.root = os.path.join(self.daemon.folder, *["x" * 200] * 4)
        self.daemon.start()
        self.assertEqual(self.daemon.ask(CONNECT, 6), (9, 2))
        self.daemon.end()
        self.assertEqual(os.listdir(os.path.dirname(self.daemon.socket_path)), [])

    def test_without_a_root_it_is_the_users(self):
        for name, value, below in (("HOME", self.daemon.folder, ".local/share/joyvane"),
                                   ("XDG_DATA_HOME", self.daemon.folder + "/data", "joyvane")):
            self.daemon.environment[name] = value
            self.daemon.environment.pop("XDG_DATA_HOME" if name == "HOME" else "HOME", None)
            process = subprocess.Popen([self.program], env=self.daemon.environment, stderr=subprocess.DEVNULL)
            path = os.path.join(value, below, "Library/Caches/jvncontrol.sock")
            wait_for(path, lambda: os.path.exists(path))
            process.terminate()
            self.assertEqual(process.wait(10), 0)

    def test_without_a_home_it_says_so(self):
        for name in ("HOME", "XDG_DATA_HOME"):
            self.daemon.environment.pop(name, None)
        run = subprocess.run([self.program], env=self.daemon.environment, text=True, capture_output=True, timeout=10)
        self.assertEqual((run.returncode, run.stderr), (1, "jvnd: the user has no home folder\n"))


class Restart(JvndTest):
    def test_a_restart_keeps_the_socket_and_rereads_everything(self):
        self.daemon.write_preferences({"controller_type": 6})
        self.daemon.start("--simulate")
        inode = os.stat(self.daemon.socket_path).st_ino
        descriptors = self.daemon.descriptors()
        for count in range(2, 22):
            with self.daemon.call() as caller:
                caller.send(frame(RESTART))
                self.assertTrue(caller.is_closed())
                # A connection that is made from now on waits, and is answered.
                self.assertEqual(self.daemon.ask(CONNECT, 6), (9, 2))
            self.daemon.wait_said("ready", count)
        self.daemon.wait_said("keyboard plays", 21)
        self.assertEqual(os.stat(self.daemon.socket_path).st_ino, inode)
        wait_for("no descriptor more", lambda: self.daemon.descriptors() == descriptors)
        with open(f"/proc/{self.daemon.process.pid}/comm") as file:
            self.assertEqual(file.read(), "jvnd\n")
        self.assertEqual(self.daemon.end(), 0)
        self.assertEqual(os.listdir(os.path.dirname(self.daemon.socket_path)), [])

    def test_a_second_daemon_finds_the_root_taken_after_a_restart_too(self):
        self.daemon.start()
        self.daemon.ask(RESTART)
        self.daemon.wait_said("ready", 2)
        second = Daemon(self, self.program, self.daemon.root).start(ready=False)
        self.assertEqual(second.process.wait(10), 1)


class Managed(JvndTest):
    """As the service manager starts it: with the listening socket, and somebody to notify."""

    def launch(self, socket_path=None, *arguments):
        path = socket_path or self.daemon.socket_path
        os.makedirs(os.path.dirname(path), exist_ok=True)
        os.makedirs(self.daemon.folder, exist_ok=True)
        self.listener = socket.socket(socket.AF_UNIX)
        self.addCleanup(self.listener.close)
        self.listener.bind(path)
        self.listener.listen(64)
        self.notified = socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM)
        self.addCleanup(self.notified.close)
        self.notified.bind(self.daemon.folder + "/notify")
        self.notified.settimeout(10)
        self.daemon.environment.update(NOTIFY_SOCKET=self.daemon.folder + "/notify", LISTEN_FDS="1",
                                       LISTEN_FDNAMES="jvnd.socket")
        self.begin(*arguments)

    def begin(self, *arguments):
        listener = self.listener.fileno()

        def before_exec():
            os.dup2(listener, 3)
            os.set_inheritable(3, True)
        # The environment is made before the fork, so a shell adds the number of the process.
        shell = 'export LISTEN_PID=$$ SYSTEMD_EXEC_PID=$$; exec "$0" "$@"'
        arguments = ["/bin/sh", "-c", shell, self.program, "--root", self.daemon.root, "--trace", "--input-socket",
                     self.daemon.folder + "/nobody", *arguments]
        self.daemon.process = subprocess.Popen(arguments, env=self.daemon.environment, stdin=subprocess.PIPE,
                                               stdout=subprocess.PIPE, stderr=subprocess.PIPE, close_fds=False, preexec_fn=before_exec)
        os.set_blocking(self.daemon.process.stdout.fileno(), False)
        self.daemon.said = ""

    def test_it_serves_the_managers_socket_and_says_when_it_is_ready(self):
        self.daemon.write_preferences({"controller_type": 6})
        self.launch()
        self.assertEqual(self.notified.recv(100), b"READY=1")
        self.assertEqual(self.daemon.ask(CONNECT, 6), (9, 2))
        self.assertEqual(self.daemon.end(), 0)
        self.assertTrue(os.path.exists(self.daemon.socket_path), "the manager's socket is the manager's")

    def test_a_restart_is_the_managers_business(self):
        self.daemon.write_preferences({"controller_type": 6})
        self.launch()
        self.notified.recv(100)
        with self.daemon.call() as caller:
            caller.send(frame(RESTART))
            self.assertEqual(self.daemon.process.wait(10), 3)
        with self.daemon.call() as waiting:
            waiting.send(frame(CONNECT, 6))
            self.daemon.end()
            self.begin()
            self.assertEqual(waiting.reply(), (9, 2))

    def test_where_nobody_has_used_the_page_it_does_not_stay(self):
        self.launch()
        self.assertEqual(self.daemon.process.wait(10), 0)
        self.assertEqual(self.notified.recv(100), b"READY=1", "an end without that is a failure to the manager")

    def test_somebody_who_has_connected_is_answered_there_too(self):
        path = self.daemon.socket_path
        os.makedirs(os.path.dirname(path))
        # Connected before the process is there: that is what starts it.
        self.listener = socket.socket(socket.AF_UNIX)
        self.addCleanup(self.listener.close)
        self.listener.bind(path)
        self.listener.listen(64)
        with self.daemon.call() as caller:
            caller.send(frame(CONNECT, 6))
            self.daemon.environment.update(NOTIFY_SOCKET=self.daemon.folder + "/nobody-hears", LISTEN_FDS="1",
                                           LISTEN_FDNAMES="jvnd.socket")
            self.begin()
            self.assertEqual(caller.reply(), (9, 2))
        self.assertIsNone(self.daemon.process.poll())

    def test_where_the_pages_root_is_another_it_listens_there_too_and_keeps_that_socket(self):
        self.daemon.write_preferences({"controller_type": 6})
        elsewhere = os.path.join(self.daemon.folder, "elsewhere", "jvncontrol.sock")
        self.launch(elsewhere)
        self.notified.recv(100)
        self.assertEqual(self.daemon.ask(CONNECT, 6), (9, 2))
        with Caller(elsewhere) as caller:
            caller.send(frame(CONNECT, 6))
            self.assertEqual(caller.reply(), (9, 2))

        with self.daemon.call() as caller:
            caller.send(frame(RESTART))
            kept = [socket.recv_fds(self.notified, 100, 4) for _ in range(2)]
        self.assertEqual([message[0] for message in kept],
                         [b"FDSTORE=1\nFDNAME=own-socket", b"FDSTORE=1\nFDNAME=own-lock"])
        self.assertEqual(self.daemon.process.wait(10), 3)
        self.assertTrue(os.path.exists(self.daemon.socket_path))
        for message in kept:
            for descriptor in message[1]:
                os.close(descriptor)


class Cost(JvndTest):
    def test_it_is_answered_soon_after_its_start(self):
        best = 1e9
        for _ in range(5):
            begun = time.monotonic()
            self.daemon.start(ready=False)
            wait_for("the socket", lambda: os.path.exists(self.daemon.socket_path))
            answered = wait_for("an answer", self.try_to_ask)
            best = min(best, time.monotonic() - begun)
            self.assertEqual(answered, (9, 2))
            self.daemon.end()
        print(f"start to the first answer: {1000 * best:.1f} ms")
        self.assertLess(best, 1)  # 0.005 on a quiet machine

    def try_to_ask(self):
        try:
            return self.daemon.ask(CONNECT, 6)
        except ConnectionRefusedError:
            return None

    def test_ten_thousand_exchanges_leave_its_memory_and_its_descriptors_as_they_were(self):
        self.daemon.start()
        descriptors = self.daemon.descriptors()
        for _ in range(500):
            self.daemon.ask(CONNECT, 6)
        memory = self.daemon.private_memory()
        for i in range(10000):
            if i % 3:
                self.assertEqual(self.daemon.ask(CONNECT, 6), (9, 2))
            else:
                self.assertIsNone(self.daemon.ask(QUERY))
            self.daemon.lines()
            self.daemon.said = ""
        wait_for("no descriptor more", lambda: self.daemon.descriptors() == descriptors)
        grown = self.daemon.private_memory() - memory
        print(f"10,000 exchanges: {grown} KiB more")
        # A sanitizer keeps what was freed for a while.
        self.assertLessEqual(grown, 64 if not os.environ.get("ASAN_OPTIONS") else 256 * 1024)

    def test_idle_it_sleeps_in_little_memory_without_the_toolkit(self):
        self.daemon.write_preferences({"controller_type": 6})
        self.daemon.start("--simulate")
        self.daemon.ask(CONNECT, 6)
        for _ in range(5):  # what has begun before may take its time on a busy machine
            wakeups = self.daemon.wakeups()
            time.sleep(2)
            woken = self.daemon.wakeups() - wakeups
            if woken == 0:
                break
        self.assertEqual(woken, 0)
        memory = self.daemon.private_memory()
        print(f"private memory: {memory} KiB")
        with open(f"/proc/{self.daemon.process.pid}/maps") as file:
            maps = file.read()
        for library in ("Qt", "libX11", "fontconfig", "libxcb"):
            self.assertNotIn(library, maps)
        if "asan" not in maps and "tsan" not in maps:
            self.assertLessEqual(memory, 2048)


class Arguments(JvndTest):
    def run_with(self, *arguments):
        run = subprocess.run([self.program, *arguments], text=True, capture_output=True, timeout=10)
        return run.returncode, run.stdout, run.stderr

    def test_help_and_version_are_said_on_standard_output(self):
        code, out, err = self.run_with("--help")
        self.assertEqual((code, err), (0, ""))
        self.assertIn("Usage: jvnd", out)
        self.assertEqual(self.run_with("--version")[0], 0)

    def test_what_is_no_option_is_an_error(self):
        self.assertEqual(self.run_with("--dance"), (2, "", "jvnd: --dance is no option; see jvnd --help\n"))


if __name__ == "__main__":
    JvndTest.program = sys.argv.pop(1)
    unittest.main(verbosity=2)
