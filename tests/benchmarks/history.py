"""The history of ./bench in docs/performance.md: one line a release, a column a figure, newest first."""

from __future__ import annotations

import os
import platform

from table import figure, times

# The column's head, the row of ./bench, and what its figure is held against beside its own.
COLUMNS = (
    ("first frame", "first frame, Joyvane's page", "bare"),
    ("peak memory", "peak memory, Joyvane's page", "bare"),
    ("drag step", "drag step on the colour field", "bare"),
    ("exchange", "exchange with the daemon", "bare"),
    ("settings write", "settings write", "bare"),
    ("switch among 90,000 keys", "settings write, switch among 90,000 keys: main thread", ""),
    ("keymap load", "keymap load", "peer"),
    ("keymap save", "keymap save", "peer"),
)
MARK = "<!-- history -->"


def head():
    names = ["release", "date", "machine", *(column for column, _, _ in COLUMNS)]
    return [f"| {' | '.join(names)} |", "|" + "---|" * len(names)]


def line(release, date, machine, rows):
    """One release; a dash for what was not measured."""
    by_name = {row.what: row for row in rows}

    def cell(name, against):
        row = by_name.get(name)
        if row is None or row.ours is None:
            return "-"
        compared = times(row.ours, getattr(row, against)) if against else ""
        return figure(row.ours, row.unit) + (f" ({compared})" if compared else "")

    return f"| {' | '.join([release, date, machine, *(cell(name, against) for _, name, against in COLUMNS)])} |"


def add(text, new_line):
    """The document with the line; a release that is there already is replaced."""
    before, found, after = text.partition(MARK + "\n\n" + "\n".join(head()) + "\n")
    if not found:
        raise ValueError("the document has no history, or one with other columns")
    release = new_line.split("|")[1]
    # What is no line of the table comes after it.
    kept = [each for each in after.split("\n") if not (each.startswith("|") and each.split("|")[1] == release)]
    return before + found + "\n".join([new_line, *kept])


def machine():
    """Its processor, how many, and its kernel."""
    name = platform.machine()
    with open("/proc/cpuinfo", encoding="utf-8", errors="replace") as file:
        for each in file:
            if each.startswith("model name"):
                name = each.split(":", 1)[1].strip()
                break
    return f"{os.cpu_count()} x {name}, Linux {platform.release()}"
