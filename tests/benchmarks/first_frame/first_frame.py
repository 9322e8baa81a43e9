"""What the whole process costs: time from exec to pixels on the screen, peak memory, wake-ups while nothing happens.

first_frame.py EMPTY_WINDOW SETTINGS BUNDLE [--runs N] [--idle SECONDS] [--limits]

The two programs take turns on one virtual X server, so that both meet the same machine. With --limits the exit code is 1
when the application needs more than 1.25 times the empty window's time or 1.3 times its memory, or wakes up.
"""

import argparse
import mmap
import os
import signal
import statistics
import struct
import sys
import time

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "end_to_end"))
import jv_e2e  # noqa: E402

TIME_LIMIT = 1.25
MEMORY_LIMIT = 1.3
# Seconds from the first frame until a program counts as idle: a page without its daemon says so for six seconds.
SETTLE = 8.0


class Screen:
    """The X server's own pixels, as it keeps them in a file."""

    def __init__(self, path):
        with open(path, "rb") as file:
            self.bytes = mmap.mmap(file.fileno(), 0, access=mmap.ACCESS_READ)
        fields = struct.unpack(">25I", self.bytes[:100])
        self.start = fields[0] + 12 * fields[19] + 8 * fields[12] + 4 * 8  # the pixel at (8, 8)

    def is_painted(self):
        return self.bytes[self.start] != 0


def start(command, environment):
    begin = time.perf_counter()
    silence = [(os.POSIX_SPAWN_OPEN, 1, os.devnull, os.O_WRONLY, 0), (os.POSIX_SPAWN_DUP2, 1, 2)]
    process = os.posix_spawn(command[0], command, environment, file_actions=silence)
    return process, begin


def end(process):
    """Stops the program; its peak memory in KiB and its seconds of processor time."""
    os.kill(process, signal.SIGKILL)
    _, _, usage = os.wait4(process, 0)
    return usage.ru_maxrss, usage.ru_utime + usage.ru_stime


def wait_until(condition, what):
    limit = time.perf_counter() + 20
    while not condition():
        if time.perf_counter() > limit:
            raise SystemExit(f"first_frame: {what} within 20 s: no")
        time.sleep(0.0001)


def one_run(command, screen, environment):
    wait_until(lambda: not screen.is_painted(), "an empty screen")
    process, begin = start(command, environment)
    wait_until(screen.is_painted, f"a frame of {os.path.basename(command[0])}")
    seconds = time.perf_counter() - begin
    time.sleep(0.15)  # the frame is on the screen; let what the program does after it count for its memory
    return seconds, *end(process)


def wake_ups(process):
    total = 0
    for task in os.listdir(f"/proc/{process}/task"):
        with open(f"/proc/{process}/task/{task}/status") as file:
            for line in file:
                if "ctxt_switches" in line:
                    total += int(line.split()[1])
    return total


def idle_wake_ups(command, screen, environment, seconds):
    process, _ = start(command, environment)
    wait_until(screen.is_painted, "a frame")
    time.sleep(SETTLE)
    before = wake_ups(process)
    time.sleep(seconds)
    count = wake_ups(process) - before
    end(process)
    return count


def measure(commands, screen, environment, runs):
    """(seconds to the first frame, peak memory in KiB, seconds of processor time) of each run of each command by name.
    All take turns."""
    results = {name: [] for name in commands}
    for turn in range(runs + 1):
        for name, command in commands.items():
            result = one_run(command, screen, environment)
            if turn:  # the first one warms the caches
                results[name].append(result)
    return results


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("empty_window")
    parser.add_argument("settings")
    parser.add_argument("bundle")
    parser.add_argument("--runs", type=int, default=21)
    parser.add_argument("--idle", type=float, default=10)
    parser.add_argument("--limits", action="store_true")
    options = parser.parse_args()

    with jv_e2e.Desktop(accessible=False) as desktop:
        environment = desktop.environment
        screen = Screen(desktop.path("screen", "Xvfb_screen0"))
        commands = {
            "empty window": [options.empty_window],
            "settings": [options.settings, "--root", desktop.path("root"), "--bundle", options.bundle],
        }
        runs = measure(commands, screen, environment, options.runs)
        idle = idle_wake_ups(commands["settings"], screen, environment, options.idle) if options.idle else 0

    times = {name: statistics.median(run[0] for run in results) * 1000 for name, results in runs.items()}
    memory = {name: statistics.median(run[1] for run in results) / 1024 for name, results in runs.items()}
    work = {name: statistics.median(run[2] for run in results) * 1000 for name, results in runs.items()}
    time_ratio = times["settings"] / times["empty window"]
    memory_ratio = memory["settings"] / memory["empty window"]
    print(f"{'':24}{'empty window':>14}{'settings':>12}{'ratio':>8}{'limit':>8}")
    print(f"{'first frame, ms':24}{times['empty window']:14.1f}{times['settings']:12.1f}{time_ratio:8.2f}{TIME_LIMIT:8.2f}")
    work_ratio = work["settings"] / work["empty window"]
    print(f"{'processor time, ms':24}{work['empty window']:14.1f}{work['settings']:12.1f}{work_ratio:8.2f}")
    print(f"{'peak memory, MiB':24}{memory['empty window']:14.1f}{memory['settings']:12.1f}{memory_ratio:8.2f}{MEMORY_LIMIT:8.2f}")
    if options.idle:
        print(f"{f'wake-ups in {options.idle:g} s idle':24}{'':14}{idle:12d}{'':8}{0:8d}")
    broken = time_ratio > TIME_LIMIT or memory_ratio > MEMORY_LIMIT or idle > 0
    return 1 if options.limits and broken else 0


if __name__ == "__main__":
    sys.exit(main())
