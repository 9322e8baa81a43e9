"""What jvnd does with what callers send to its control socket, with what is stored, and with simulated controllers.

    commands_test.py JVND
"""

import os
import random
import shutil
import signal
import socket
import struct
import sys
import time
import unittest

sys.path.insert(0, os.path.dirname(__file__))
from daemon_process import COLOR, CONNECT, DISCONNECT, END, PREFERENCES, QUERY, RESTART, SIZES, JvndTest, frame, wait_for

ADDRESS = bytes([0x00, 0xAA, 0x01, 0x01, 0x00, 0x01])


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

    def test_a_folder_that_was_taken_away_and_is_back_is_read_again_when_somebody_calls(self):
        self.daemon.write_preferences({"controller_type": 6})
        self.daemon.start("--simulate")
        self.daemon.wait_said("keyboard plays")
        shutil.rmtree(os.path.join(self.daemon.root, "var/mobile"))
        self.daemon.wait_said("keyboard does not play")
        self.daemon.write_preferences({"controller_type": 6})
        self.daemon.ask(CONNECT, 6)
        self.daemon.wait_said("keyboard plays", 2)

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
            self.daemon.wait_said(self.LIGHT + "102030")
            caller.send(frame(COLOR, 1, b"\xfe\x01\x02"))
        self.assertEqual(self.daemon.ask(QUERY), (5, 1))
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

    def test_what_is_stored_before_a_command_counts_for_it_however_late_the_daemon_hears_of_both(self):
        self.start("paired trusted connected")
        wait_for("the link", lambda: self.daemon.ask(QUERY) == (5, 1))
        paired = {"controller_type": 1, "PS4BluetoothAddress": ADDRESS}
        for settings, reply in (({"controller_type": 6}, None), (paired, (5, 1))):
            self.daemon.process.send_signal(signal.SIGSTOP)
            with self.daemon.call() as caller:  # heard of before the file is
                self.daemon.write_preferences(settings)
                caller.send(frame(QUERY))
                self.daemon.process.send_signal(signal.SIGCONT)
                self.assertEqual(caller.reply(), reply)

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


if __name__ == "__main__":
    JvndTest.program = sys.argv.pop(1)
    unittest.main(verbosity=2)
