"""jvnd over its control socket, as a process among others.

    jvnd_test.py JVND
"""

import os
import random
import signal
import socket
import stat
import struct
import subprocess
import sys
import time
import unittest

sys.path.insert(0, os.path.dirname(__file__))
from daemon_process import (COLOR, CONNECT, DISCONNECT, END, PREFERENCES, QUERY, RESTART, SIZES, Caller, Daemon, frame,
                            wait_for)

PROGRAM = ""
ADDRESS = bytes([0x00, 0xAA, 0x01, 0x01, 0x00, 0x01])


class JvndTest(unittest.TestCase):
    def setUp(self):
        self.daemon = Daemon(self, PROGRAM)


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

    def test_a_root_has_one_daemon(self):
        self.daemon.start()
        second = Daemon(self, PROGRAM, self.daemon.root).start(ready=False)
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
            process = subprocess.Popen([PROGRAM], env=self.daemon.environment, stderr=subprocess.DEVNULL)
            path = os.path.join(value, below, "Library/Caches/jvncontrol.sock")
            wait_for(path, lambda: os.path.exists(path))
            process.terminate()
            self.assertEqual(process.wait(10), 0)

    def test_without_a_home_it_says_so(self):
        for name in ("HOME", "XDG_DATA_HOME"):
            self.daemon.environment.pop(name, None)
        run = subprocess.run([PROGRAM], env=self.daemon.environment, text=True, capture_output=True, timeout=10)
        self.assertEqual((run.returncode, run.stderr), (1, "jvnd: the user has no home folder\n"))


class Commands(JvndTest):
    def test_without_an_adapter_a_connect_is_refused_with_the_reason(self):
        self.daemon.start()
        self.assertEqual(self.daemon.ask(CONNECT, 1, ADDRESS), (9, 1))
        self.assertEqual(self.daemon.ask(CONNECT, 0), (9, 1))

    def test_commands_without_a_reply_leave_the_connection_open_for_the_next(self):
        self.daemon.start()
        with self.daemon.call() as caller:
            caller.send(frame(DISCONNECT, 1) + frame(COLOR, 1, b"\1\2\3") + frame(CONNECT, 6))
            self.assertEqual(caller.reply(), (9, 2))
            caller.send(frame(END))
            self.assertIsNone(caller.reply())

    def test_every_frame_may_be_cut_or_split_anywhere(self):
        self.daemon.start()
        for command, size in SIZES.items():
            if command == RESTART:
                continue
            whole = frame(command, 6)
            for cut in range(1, size):
                with self.daemon.call() as caller:
                    caller.send(whole[:cut])
                    if cut % 2:
                        continue  # closed there
                    caller.send(whole[cut:])
                    if command in (QUERY, END):
                        self.assertTrue(caller.is_closed())
                        continue
                    caller.send(frame(CONNECT, 6))
                    for _ in range(2 if command == CONNECT else 1):
                        self.assertEqual(caller.reply(), (9, 2))
        self.assertEqual(self.daemon.ask(CONNECT, 6), (9, 2))

    def test_nonsense_closes_the_connection(self):
        self.daemon.start()
        chance = random.Random(1)
        for _ in range(300):
            with self.daemon.call() as caller:
                data = chance.randbytes(chance.randrange(4, 200))
                if struct.unpack("<I", data[:4])[0] in SIZES:
                    continue
                caller.send(data)
                self.assertTrue(caller.is_closed())
        self.assertEqual(self.daemon.ask(CONNECT, 6), (9, 2))

    def test_the_seventeenth_connection_is_closed_at_once(self):
        self.daemon.start()
        callers = [self.daemon.call() for _ in range(16)]
        with self.daemon.call() as seventeenth:
            self.assertTrue(seventeenth.is_closed())
        callers.pop().__exit__()
        wait_for("room for another", lambda: self.daemon.ask(CONNECT, 6) == (9, 2))
        for caller in callers:
            caller.__exit__()

    def test_a_caller_that_is_silent_is_closed_after_five_seconds(self):
        self.daemon.start()
        begun = time.monotonic()
        with self.daemon.call() as caller:
            caller.send(frame(CONNECT, 6)[:11])
            self.assertTrue(caller.is_closed())
        self.assertGreater(time.monotonic() - begun, 4.9)

    @unittest.skipIf(os.geteuid(), "needs root, to be somebody else")
    def test_another_users_connection_is_closed(self):
        self.daemon.start()
        os.chmod(self.daemon.socket_path, 0o666)
        for folder in ("", "root", "root/Library", "root/Library/Caches"):
            os.chmod(os.path.join(self.daemon.folder, folder), 0o711)
        child = os.fork()
        if child == 0:
            os.setuid(65534)
            with self.daemon.call() as caller:
                try:
                    caller.send(frame(CONNECT, 6))
                except BrokenPipeError:
                    pass
                os._exit(0 if caller.reply() is None else 1)
        self.assertEqual(os.waitpid(child, 0)[1], 0)
        self.daemon.end()
        self.assertIn("another user's connection is refused", self.daemon.errors)

    def test_a_flood_is_answered_whole_and_leaves_others_their_turn(self):
        self.daemon.start()
        with self.daemon.call() as flooding:
            pid = os.fork()
            if pid == 0:
                flooding.send(frame(CONNECT, 6) * 20000)
                os._exit(0)
            self.assertEqual(self.daemon.ask(CONNECT, 6), (9, 2))
            for _ in range(20000):
                self.assertEqual(flooding.reply(), (9, 2))
            os.waitpid(pid, 0)

    def test_no_frame_and_no_address_of_another_is_logged_whole(self):
        self.daemon.start()
        self.daemon.ask(CONNECT, 1, ADDRESS)
        self.daemon.wait_said("refused, reason 1")
        self.daemon.end()
        text = self.daemon.said + self.daemon.errors
        self.assertNotIn("00 aa 01 01 00 01", text)
        self.assertNotIn("00:AA:01:01:00:01", text)


class Settings(JvndTest):
    def test_what_is_stored_counts_from_the_moment_that_it_is_in_the_file(self):
        self.daemon.start("--simulate")
        self.daemon.wait_said("keyboard does not play")
        self.daemon.write_preferences({"controller_type": 6})
        self.daemon.wait_said("keyboard plays while a game listens, 11 keys, plain profile")
        self.daemon.write_preferences({"controller_type": 6, "connection_mode": "1", "JVNKeyboardKeymapKey": {"4": 15}})
        self.daemon.wait_said("keyboard plays by hand, 1 keys, extended profile")

    def test_a_damaged_file_leaves_the_settings_in_force_and_is_logged_once(self):
        self.daemon.write_preferences({"controller_type": 6})
        self.daemon.start("--simulate")
        path = os.path.join(self.daemon.root, PREFERENCES)
        for _ in range(3):
            with open(path + ".x", "wb") as file:
                file.write(b"bplist00 and nothing more")
            os.rename(path + ".x", path)
        self.daemon.write_preferences({"controller_type": 6, "connection_mode": 1})
        self.daemon.wait_said("keyboard plays by hand")
        self.assertEqual(self.daemon.said.count("does not play"), 0)
        self.daemon.end()
        self.assertLessEqual(self.daemon.errors.count("what was read before holds"), 1)


class Simulated(JvndTest):
    """With controllers that are simulated, all of jvnd is as it always is."""

    LIGHT = "light of ..:00:01 shows "

    def world(self, words, bluetooth="on"):
        path = os.path.join(self.daemon.root, "var/joyvane/simulated-controllers")
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path + ".new", "w") as file:
            file.write(f"bluetooth {bluetooth}\ncontroller 00:AA:01:01:00:01 type=1 {words} : Wireless Controller\n")
        os.rename(path + ".new", path)

    def start(self, words, bluetooth="on", **settings):
        self.world(words, bluetooth)
        self.daemon.write_preferences({"controller_type": 1, "connection_mode": 1, "PS4BluetoothAddress": ADDRESS,
                                       **settings})
        self.daemon.start("--simulate")

    def test_a_controller_is_connected_asked_for_lit_and_disconnected(self):
        self.start("paired trusted", JVNLEDColorKey="102030")
        self.assertIsNone(self.daemon.ask(QUERY))
        with self.daemon.call() as caller:
            caller.send(frame(CONNECT, 1, ADDRESS))
            self.assertEqual(caller.reply(), (8, 1))
            caller.send(frame(COLOR, 1, b"\xfe\x01\x02"))
        self.assertEqual(self.daemon.ask(QUERY), (5, 1))
        self.daemon.wait_said(self.LIGHT + "102030")
        self.daemon.wait_said(self.LIGHT + "fe0102")
        with self.daemon.call() as caller:
            caller.send(frame(DISCONNECT, 1) + frame(END))
            self.assertTrue(caller.is_closed())
        wait_for("the end of the link", lambda: self.daemon.ask(QUERY) is None)

    def test_the_light_is_set_again_when_the_controller_comes_back_and_when_another_color_is_stored(self):
        self.start("paired trusted connected", JVNLEDColorKey="102030")
        self.daemon.wait_said(self.LIGHT + "102030")
        self.world("paired trusted")
        wait_for("the loss of the link", lambda: self.daemon.ask(QUERY) is None)
        self.world("paired trusted connected")
        self.daemon.wait_said(self.LIGHT + "102030", 2)
        with self.daemon.call() as caller:
            caller.send(frame(COLOR, 1, b"\1\2\3"))
            self.daemon.wait_said(self.LIGHT + "010203")
        settings = {"controller_type": 1, "PS4BluetoothAddress": ADDRESS}
        self.daemon.write_preferences({**settings, "JVNLEDColorKey": "aabbcc"})
        self.daemon.wait_said(self.LIGHT + "aabbcc")

        # With ambient light games have it, until it is turned off again.
        self.daemon.write_preferences({**settings, "JVNLEDColorKey": "aabbcc", "JVNAmbientColorKey": True})
        with self.daemon.call() as caller:
            caller.send(frame(COLOR, 1, b"\4\5\6") + frame(CONNECT, 6))
            caller.reply()
        self.daemon.write_preferences({**settings, "JVNLEDColorKey": "ddeeff"})
        self.daemon.wait_said(self.LIGHT + "ddeeff")
        self.assertNotIn("040506", [line[-6:] for line in self.daemon.said.splitlines() if self.LIGHT in line])

    def test_what_goes_wrong_has_its_reason(self):
        for words, bluetooth, address, reason in (
                ("paired", "absent", ADDRESS, 1), ("paired", "blocked", ADDRESS, 1), ("paired", "on", ADDRESS[:5] + b"\7", 2),
                ("paired refuses", "on", ADDRESS, 3), ("paired forgot", "on", ADDRESS, 3), ("paired off", "on", ADDRESS, 4)):
            with self.subTest(words=words, bluetooth=bluetooth, reason=reason):
                self.start(words, bluetooth)
                self.assertEqual(self.daemon.ask(CONNECT, 1, address), (9, reason))
                self.daemon.end()

    def test_bluetooth_that_is_off_is_switched_on(self):
        self.start("paired", "off")
        self.assertEqual(self.daemon.ask(CONNECT, 1, ADDRESS), (8, 1))

    def test_a_pad_without_an_address_calls_by_itself(self):
        self.start("paired trusted")
        self.daemon.write_preferences({"controller_type": 0})
        with self.daemon.call() as caller:
            caller.send(frame(CONNECT, 0))
            wait_for("the attempt", lambda: self.daemon.ask(QUERY) == (5, 7))
            self.world("paired trusted connected")
            self.assertEqual(caller.reply(), (8, 0))
        self.assertEqual(self.daemon.ask(QUERY), (5, 1))

    def test_closing_and_the_end_of_the_session_cancel_a_connect(self):
        self.start("paired trusted")
        self.daemon.write_preferences({"controller_type": 0})
        for how in (b"", frame(END)):
            with self.daemon.call() as caller:
                caller.send(frame(CONNECT, 0))
                wait_for("the attempt", lambda: self.daemon.ask(QUERY) == (5, 7))
                if how:
                    caller.send(how)
                    self.assertTrue(caller.is_closed())
            wait_for("its end", lambda: self.daemon.ask(QUERY) is None)

    def test_two_at_once_are_joined_or_told_that_it_is_busy_and_a_disconnect_ends_both(self):
        self.start("paired trusted")
        self.daemon.write_preferences({"controller_type": 0})
        with self.daemon.call() as first, self.daemon.call() as second, self.daemon.call() as third:
            first.send(frame(CONNECT, 0))
            wait_for("the attempt", lambda: self.daemon.ask(QUERY) == (5, 7))
            second.send(frame(CONNECT, 0))
            third.send(frame(CONNECT, 1, ADDRESS))
            self.assertEqual(third.reply(), (9, 7))
            third.send(frame(DISCONNECT, 0))
            self.assertEqual(first.reply(), (9, 3))
            self.assertEqual(second.reply(), (9, 3))

    def test_it_ends_with_the_pipe_of_whoever_started_it(self):
        self.start("paired")
        self.daemon.process.stdin.close()
        self.assertEqual(self.daemon.process.wait(10), 0)


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
        second = Daemon(self, PROGRAM, self.daemon.root).start(ready=False)
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
        arguments = ["/bin/sh", "-c", shell, PROGRAM, "--root", self.daemon.root, "--trace", "--input-socket",
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
        run = subprocess.run([PROGRAM, *arguments], text=True, capture_output=True, timeout=10)
        return run.returncode, run.stdout, run.stderr

    def test_help_and_version_are_said_on_standard_output(self):
        code, out, err = self.run_with("--help")
        self.assertEqual((code, err), (0, ""))
        self.assertIn("Usage: jvnd", out)
        self.assertEqual(self.run_with("--version")[0], 0)

    def test_what_is_no_option_is_an_error(self):
        self.assertEqual(self.run_with("--dance"), (2, "", "jvnd: --dance is no option; see jvnd --help\n"))


if __name__ == "__main__":
    PROGRAM = sys.argv.pop(1)
    unittest.main(verbosity=2)
