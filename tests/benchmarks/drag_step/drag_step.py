#!/usr/bin/env python3
"""What one step of a drag costs: from the pointer's event to repainted pixels, in the whole process.

drag_step.py [--steps N] [--rounds N] [--limit NAME=RATIO]... NAME[@X,Y,WIDTH,HEIGHT]=COMMAND...

Each command shows a window with a field to drag in, at the top left of a virtual X server's screen. Where the field is,
in pixels of the screen, stands beside the name, or the command writes it: "x y width height". All take the same drag in
turn; the table has the median of the rounds. The processor's time is the kernel's own count, in nanoseconds. With
--limit the exit code is 1 when the first command takes more than that many times what the named one takes.
"""

import argparse
import glob
import os
import shlex
import statistics
import sys
import time

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "end_to_end"))
import jv_e2e  # noqa: E402


def cpu_seconds(pid):
    total = 0
    for path in glob.glob(f"/proc/{pid}/task/*/schedstat"):
        with open(path, encoding="ascii") as file:
            total += int(file.read().split()[0])
    return total / 1e9


def drag(desktop, command, field, steps):
    """Seconds of processor time a step."""
    with desktop.start(shlex.split(command)) as program:
        x, y, width, height = map(int, field or program.process.stdout.readline().split())
        time.sleep(1.5)

        def place(step):
            return x + 10 + (width - 20) * step // steps, y + 10 + (height - 20) * (step * 7 % steps) // steps

        desktop.xdotool("mousemove", *place(0), "mousedown", 1)
        # The gesture begins, and what begins with it is over.
        desktop.xdotool("mousemove", x + width // 2, y + height // 2)
        time.sleep(0.5)
        before = cpu_seconds(program.process.pid)
        moves = []
        for step in range(steps):
            moves += ["mousemove", *place(step), "sleep", "0.02"]
        desktop.xdotool(*moves)
        time.sleep(0.2)
        spent = cpu_seconds(program.process.pid) - before
        desktop.xdotool("mouseup", 1)
        return spent / steps


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--steps", type=int, default=500)
    parser.add_argument("--rounds", type=int, default=3)
    parser.add_argument("--limit", action="append", default=[], metavar="NAME=RATIO")
    parser.add_argument("programs", nargs="+", metavar="NAME=COMMAND")
    options = parser.parse_args()
    programs = []
    for program in options.programs:
        place, command = program.split("=", 1)
        name, _, field = place.partition("@")
        programs.append((name, field.split(",") if field else None, command))

    seconds = {name: [] for name, *_ in programs}
    with jv_e2e.Desktop(accessible=False) as desktop:
        for _ in range(options.rounds):
            for name, field, command in programs:
                seconds[name].append(drag(desktop, command, field, options.steps))

    median = {name: statistics.median(values) for name, values in seconds.items()}
    first = programs[0][0]
    print(f"one step of a drag: {options.steps} steps, median of {options.rounds} rounds")
    for name, value in median.items():
        print(f"{name:30} {value * 1000:7.3f} ms   {first} takes {median[first] / value:.2f} times that")
    failed = False
    for limit in options.limit:
        name, ratio = limit.rsplit("=", 1)
        if median[first] > float(ratio) * median[name]:
            print(f"over the limit: at most {ratio} times {name}")
            failed = True
    sys.exit(1 if failed else 0)


if __name__ == "__main__":
    main()
