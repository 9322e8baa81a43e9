"""What Joyvane costs, as one table: bench.py BUILD-FOLDER [--quick] [--record] [NAME...]

With names only the rows that have one of them in theirs. With --record the figures become this release's line in
docs/performance.md. The exit code is 0, also when a limit is missed; it is 1 when
something could not be measured.
"""

import argparse
import contextlib
import datetime
import json
import os
import plistlib
import socket
import statistics
import subprocess
import sys
import tempfile
import time

HERE = os.path.dirname(os.path.abspath(__file__))
for folder in ("first_frame", "drag_step", "road", os.path.join("..", "end_to_end")):
    sys.path.insert(0, os.path.join(HERE, folder))
import drag_step  # noqa: E402
import first_frame  # noqa: E402
import history  # noqa: E402
import jv_e2e  # noqa: E402
import tap_to_frame  # noqa: E402
from table import Row, google_benchmark, key_values, render  # noqa: E402

ENTRIES = 256  # of a keymap: every key of a keyboard


class Bench:
    def __init__(self, build, is_quick):
        self.build = os.path.abspath(build)
        self.is_quick = is_quick

    def program(self, name):
        path = os.path.join(self.build, "bin", name)
        if not os.path.exists(path):
            raise FileNotFoundError(f"{name} is not built")
        return path

    def bundle(self, name):
        return os.path.join(self.build, "lib", "joyvane", f"{name}.bundle")

    # The whole process, from outside.

    def windows(self):
        """First frame, memory and idling of a page, of an empty window and of the toolkit's colour dialog."""
        runs = 3 if self.is_quick else 21
        idle_seconds = 2 if self.is_quick else 10
        rows = []
        with jv_e2e.Desktop(accessible=False) as desktop:
            screen = first_frame.Screen(desktop.path("screen", "Xvfb_screen0"))
            settings = [self.program("joyvane-settings"), "--root", desktop.path("root"), "--bundle"]
            commands = {
                "empty": [self.program("empty_window")],
                "dialog": [self.program("drag_step_dialog")],
                "sample page": [*settings, self.bundle("Sample")],
                "Joyvane's page": [*settings, self.bundle("Joyvane")],
            }
            measured = first_frame.measure(commands, screen, desktop.environment, runs)
            for index, (what, unit, factor, limit) in enumerate((
                ("first frame", "ms", 1000, first_frame.TIME_LIMIT),
                ("peak memory", "MiB", 1 / 1024, first_frame.MEMORY_LIMIT),
            )):
                median = {name: statistics.median(run[index] for run in results) * factor
                          for name, results in measured.items()}
                for page in ("sample page", "Joyvane's page"):
                    rows.append(Row(f"{what}, {page}", unit, median[page], median["empty"], "empty window",
                                    median["dialog"], "QColorDialog", most_bare=limit))
            idle = {name: first_frame.idle_wake_ups(command, screen, desktop.environment, idle_seconds)
                    for name, command in commands.items()}
            for page in ("sample page", "Joyvane's page"):
                rows.append(Row(f"wake-ups in {idle_seconds} s idle, {page}", "", idle[page], idle["empty"],
                                "empty window", idle["dialog"], "QColorDialog", most=0))
        return rows

    def dragging(self):
        """Processor time of one step of a drag over the colour field."""
        steps = 100 if self.is_quick else 500
        rounds = 1 if self.is_quick else 3
        programs = (
            ("ours", "0,111,368,512", self.program("joyvane-picker") + " --size 375x623 --scale 1"),
            ("bare", "", self.program("drag_step_bare") + " repaint"),
            ("dialog", "", self.program("drag_step_dialog")),
        )
        times = {name: [] for name, *_ in programs}
        with jv_e2e.Desktop(accessible=False) as desktop:
            for _ in range(rounds):
                for name, field, command in programs:
                    times[name].append(drag_step.drag(desktop, command, field.split(",") if field else None, steps))
        ours, bare, dialog = (statistics.median(times[name]) * 1000 for name, *_ in programs)
        return [Row("drag step on the colour field", "ms", ours, bare, "same rectangles", dialog, "QColorDialog",
                    most_bare=1.3, most_peer=0.6)]

    # In one process.

    def google(self, program, *arguments):
        least = "0.05" if self.is_quick else "0.3"
        repetitions = "1" if self.is_quick else "5"
        output = subprocess.run(
            [self.program(program), "--benchmark_format=json", f"--benchmark_min_time={least}",
             f"--benchmark_repetitions={repetitions}", *arguments],
            check=True, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True).stdout
        return json.loads(output)

    def exchange(self):
        """Asking the daemon for its connection."""
        output = subprocess.run([self.program("exchange_benchmark"), "--benchmark_filter=BesideBare"],
                                check=True, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True).stdout
        found = key_values(output.strip().splitlines()[-1])
        with self.daemon_root() as root:
            python, start = self.python_exchange(root), self.daemon_start(root)
        return [Row("exchange with the daemon", "us", found["ours_us"], found["bare_us"], "bare client",
                    python, "Python's socket", most_bare=1.2),
                Row("the daemon's answer in an exchange", "us", found["daemon_us"], found["server_us"], "bare server",
                    most_bare=1.2),
                Row("exchange with the daemon that starts", "ms", start, most=20)]

    @staticmethod
    @contextlib.contextmanager
    def daemon_root():
        """A root with a simulated controller that is connected."""
        with tempfile.TemporaryDirectory() as root:
            def write(path, data):
                os.makedirs(os.path.dirname(os.path.join(root, path)))
                with open(os.path.join(root, path), "wb") as file:
                    file.write(data)

            address = bytes([0x00, 0xAA, 0x01, 0x01, 0x00, 0x01])
            write("var/mobile/Library/Preferences/com.quorrel.joyvane.plist",
                  plistlib.dumps({"controller_type": 1, "PS4BluetoothAddress": address}))
            write("var/joyvane/simulated-controllers",
                  b"bluetooth on\ncontroller 00:AA:01:01:00:01 type=1 paired trusted connected : Pad\n")
            yield root

    @contextlib.contextmanager
    def daemon(self, root):
        daemon = subprocess.Popen([self.program("jvnd"), "--simulate", "--root", root], stdin=subprocess.PIPE,
                                  stderr=subprocess.DEVNULL)
        try:
            yield
        finally:
            daemon.terminate()
            daemon.wait()
            daemon.stdin.close()

    @staticmethod
    def ask_daemon(root):
        """True when it has answered; False while nobody listens."""
        with socket.socket(socket.AF_UNIX) as client:
            client.settimeout(1)
            try:
                client.connect(os.path.join(root, "Library/Caches/jvncontrol.sock"))
                client.sendall(bytes([5]) + bytes(11))
                return len(client.recv(12, socket.MSG_WAITALL)) == 12
            except OSError:
                return False

    def python_exchange(self, root):
        with self.daemon(root):
            jv_e2e.wait_for("the daemon", lambda: self.ask_daemon(root))
            return self.median_time(lambda: self.ask_daemon(root), 100 if self.is_quick else 1000)

    def daemon_start(self, root):
        """From its start as a process to its first answer, in milliseconds."""
        times = []
        for _ in range(5 if self.is_quick else 31):
            begun = time.perf_counter()
            with self.daemon(root):
                while not self.ask_daemon(root):
                    time.sleep(0.0002)
                times.append(time.perf_counter() - begun)
        return statistics.median(times) * 1e3

    def key_to_pad(self):
        """A key's way to the pad, in the test machine; the figures are the emulator's, their relation is ours."""
        presses = 30 if self.is_quick else 500
        rate = 1000
        machine = os.path.join(HERE, "..", "..", "scripts", "machine")
        output = subprocess.run([machine, "run", "--timeout", "280", self.program("input_latency"), str(presses), str(rate)],
                                check=True, stdout=subprocess.PIPE, text=True).stdout
        found = {}
        for line in output.splitlines():
            name, *figures = line.split()
            if len(figures) == 4:
                found[name] = [float(figure) for figure in figures]
            else:
                print(line, file=sys.stderr)
        ours, bare = found["jvninputd"], found["bare"]
        rows = []
        for peer in ("xboxdrv", "interception"):
            median, _, lost, lost_fast = found.get(peer, [None] * 4)
            rows += [
                Row("key to pad, median", "us", ours[0], bare[0], "bare loop", median, peer, most_bare=1.2),
                Row("key to pad, lost one by one", "", ours[2], bare[2], "bare loop", lost, peer, most=0),
                Row(f"key to pad, lost at {rate}/s", "", ours[3], bare[3], "bare loop", lost_fast, peer, most=0),
            ]
        return sorted(rows, key=lambda row: row.what)

    def road(self):
        """From a key to a game's library, from the page to a light, from the daemon's start to a pad; what the daemons cost.

        The figures of the test machine are the emulator's; their relations are ours.
        """
        times = 20 if self.is_quick else 200
        machine = os.path.join(HERE, "..", "..", "scripts", "machine")
        output = subprocess.run([machine, "run", "--timeout", "480", self.program("road"), str(times)],
                                check=True, stdout=subprocess.PIPE, text=True).stdout
        found = {line.split()[0]: key_values(line) for line in output.splitlines() if "ours=" in line}

        def row(what, unit, name, scale, bare="", peer="", **limits):
            figures = {key: value * scale for key, value in found.get(name, {}).items()}
            if "ours" not in figures:
                return Row(what, unit, problem="the machine did not say")
            return Row(what, unit, figures["ours"], figures.get("bare"), bare, figures.get("peer"), peer, **limits)

        tap = tap_to_frame.median_time(self.program("joyvane-settings"), 10 if self.is_quick else 60) / 1000
        return [row("road: key to game's event", "us", "key_to_game", 1, "bare loop", "xboxdrv", most_bare=1.2),
                row("road: key to game that spins", "us", "key_to_spinning_game", 1, "bare loop", "xboxdrv", most_bare=1.2),
                # A frame of the screen.
                Row("road: tap on colour field to frame", "ms", tap, most=16.7),
                row("road: frame to driver's report", "ms", "light", 1e-3, "written by hand", "brightnessctl", most_peer=1),
                # Two devices are made, the pad and the keyboard for what is not mapped; and a program is loaded and
                # started first, which by hand is there already. That is the larger part of what is above the limit.
                row("road: daemon's start to pad", "ms", "ready", 1e-3, "a device by hand", "xboxdrv", most_bare=2),
                row("road: memory at rest", "MiB", "memory", 1 / 1024, "", "xboxdrv", most=4),
                row("road: wake-ups in 5 s at rest", "", "wake_ups", 1, "", "xboxdrv", most=0)]

    def settings_write(self):
        """One changed setting, safely on the disk."""
        report = self.google("preferences_benchmark", "--benchmark_filter=bareSystemCalls|settingsWrite|switchInManyKeys")
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "file.plist")
            with open(path, "wb") as file:
                plistlib.dump({f"key {i}": i for i in range(20)}, file, fmt=plistlib.FMT_BINARY)
            count = 0

            def write():
                nonlocal count
                count += 1
                with open(path, "rb") as file:
                    settings = plistlib.load(file)
                settings["controller_type"] = count % 7
                with open(path + ".temporary", "wb") as file:
                    plistlib.dump(settings, file, fmt=plistlib.FMT_BINARY)
                    file.flush()
                    os.fsync(file.fileno())
                os.rename(path + ".temporary", path)
                descriptor = os.open(folder, os.O_RDONLY | os.O_DIRECTORY)
                os.fsync(descriptor)
                os.close(descriptor)

            peer = self.median_time(write, 20 if self.is_quick else 200)
        # A save keeps the main thread for 50 ms at the most.
        return [Row("settings write", "us", google_benchmark(report, "settingsWrite"),
                    google_benchmark(report, "bareSystemCalls"), "bare system calls", peer, "Python's plistlib",
                    most=50_000),
                # A frame of the screen.
                Row("settings write, switch among 90,000 keys: main thread", "ms",
                    google_benchmark(report, "switchInManyKeys/iterations:10/manual_time") / 1e3, most=16)]

    def keymap(self):
        """The keymap's bytes to values, and back."""
        report = self.google("property_list_benchmark", f"--benchmark_filter=(readBinaryKeymap|writeKeymap)/{ENTRIES}$")
        value = {"JVNKeyboardKeymapKey": {str(i): i % 21 + 1 for i in range(ENTRIES)}}
        data = plistlib.dumps(value, fmt=plistlib.FMT_BINARY, sort_keys=False)
        rounds = 20 if self.is_quick else 500
        load = self.median_time(lambda: plistlib.loads(data), rounds, time.process_time)
        save = self.median_time(lambda: plistlib.dumps(value, fmt=plistlib.FMT_BINARY, sort_keys=False), rounds,
                                time.process_time)
        return [Row("keymap load", "us", google_benchmark(report, f"readBinaryKeymap/{ENTRIES}", "cpu_time"),
                    peer=load, peer_name="Python's plistlib", most_peer=0.1),
                Row("keymap save", "us", google_benchmark(report, f"writeKeymap/{ENTRIES}", "cpu_time"),
                    peer=save, peer_name="Python's plistlib", most_peer=0.1)]

    @staticmethod
    def median_time(call, rounds, clock=time.perf_counter):
        """In microseconds."""
        times = []
        for _ in range(rounds):
            start = clock()
            call()
            times.append(clock() - start)
        return statistics.median(times) * 1e6


def record(bench, rows):
    said = subprocess.run([bench.program("joyvane-settings"), "--version"], check=True, stdout=subprocess.PIPE, text=True)
    path = os.path.join(HERE, "..", "..", "docs", "performance.md")
    with open(path, encoding="utf-8") as file:
        text = file.read()
    line = history.line(said.stdout.split()[-1], datetime.date.today().isoformat(), history.machine(), rows)
    with open(path, "w", encoding="utf-8") as file:
        file.write(history.add(text, line))


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("build")
    parser.add_argument("--quick", action="store_true", help="few rounds, to see that it works")
    parser.add_argument("--record", action="store_true", help="write this release's line into docs/performance.md")
    parser.add_argument("names", nargs="*", metavar="NAME")
    options = parser.parse_intermixed_args()
    bench = Bench(options.build, options.quick)
    groups = {
        "first frame, peak memory, wake-ups": bench.windows,
        "drag step": bench.dragging,
        "exchange": bench.exchange,
        "key to pad": bench.key_to_pad,
        "road": bench.road,
        "settings write": bench.settings_write,
        "keymap load, keymap save": bench.keymap,
    }
    rows = []
    for name, measure in groups.items():
        if options.names and not any(wanted in name for wanted in options.names):
            continue
        print(f"measuring {name}", file=sys.stderr)
        try:
            rows += measure()
        except (Exception, SystemExit) as error:  # the other rows are still worth having
            rows.append(Row(name, "", problem=str(error) or type(error).__name__))
    if options.names:
        rows = [row for row in rows if row.problem or any(wanted in row.what for wanted in options.names)]
    print(render(rows))
    if options.record:
        record(bench, rows)
    return 1 if any(row.problem for row in rows) or not rows else 0


if __name__ == "__main__":
    sys.exit(main())
