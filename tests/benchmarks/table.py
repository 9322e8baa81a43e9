"""The rows of ./bench and how they are printed: each figure beside the bare work, a peer's figure and its limit."""

from __future__ import annotations

from dataclasses import dataclass


@dataclass
class Row:
    what: str
    unit: str
    ours: float | None = None
    bare: float | None = None  # the same without us: an empty window, the bare system calls
    bare_name: str = ""
    peer: float | None = None  # another program that is installed
    peer_name: str = ""
    # At most so much, in the unit; or so many times the bare figure, or the peer's.
    most: float | None = None
    most_bare: float | None = None
    most_peer: float | None = None
    problem: str = ""  # why it could not be measured

    @property
    def limit(self):
        """The strictest limit, in the unit; None when nothing limits it."""
        limits = [self.most]
        if self.most_bare is not None and self.bare is not None:
            limits.append(self.most_bare * self.bare)
        if self.most_peer is not None and self.peer is not None:
            limits.append(self.most_peer * self.peer)
        return min((limit for limit in limits if limit is not None), default=None)

    @property
    def is_missed(self):
        return self.ours is not None and self.limit is not None and self.ours > self.limit

    @property
    def verdict(self):
        if self.problem:
            return f"not measured: {self.problem}"
        if self.limit is None:
            return ""
        return "MISSED" if self.is_missed else "kept"


def figure(value, unit):
    """Three digits that count; a dash for what there is not."""
    if value is None:
        return "-"
    digits = 0 if unit == "" or value >= 100 else 1 if value >= 10 else 2
    return f"{value:.{digits}f} {unit}".rstrip()


def times(ours, other):
    return f"{ours / other:.2f} x" if ours is not None and other else ""


def render(rows):
    """The table as text."""
    lines = [("", "ours", "limit", "", "bare", "", "peer", "", "")]
    for row in rows:
        lines.append((
            row.what,
            figure(row.ours, row.unit),
            figure(row.limit, row.unit),
            times(row.ours, row.bare), figure(row.bare, row.unit) if row.bare_name else "", row.bare_name,
            times(row.ours, row.peer), figure(row.peer, row.unit) if row.peer_name else "",
            row.peer_name,
        ))
    heads = ("", "ours", "limit", "times", "bare", "", "times", "peer", "")
    lines[0] = heads
    widths = [max(len(line[i]) for line in lines) for i in range(len(heads))]
    words = (0, 5, 8)
    text = []
    for line, row in zip(lines, [None, *rows]):
        cells = [cell.ljust(width) if i in words else cell.rjust(width)
                 for i, (cell, width) in enumerate(zip(line, widths))]
        text.append(("  ".join(cells) + "  " + (row.verdict if row else "")).rstrip())
    text.insert(1, "-" * max(map(len, text)))
    return "\n".join(text)


def google_benchmark(report, name, clock="real_time"):
    """The median time of a benchmark in Google Benchmark's JSON, in microseconds; `clock` may be "cpu_time"."""
    factors = {"ns": 1e-3, "us": 1, "ms": 1e3, "s": 1e6}
    found = [entry for entry in report["benchmarks"] if entry.get("run_name", entry["name"]).split("/real_time")[0] == name]
    if any(entry.get("error_occurred") for entry in found):
        raise ValueError(f"{name} failed")
    medians = [entry for entry in found if entry.get("aggregate_name") == "median"] or found
    if not medians:
        raise ValueError(f"{name} was not reported")
    return medians[0][clock] * factors[medians[0]["time_unit"]]


def key_values(line):
    """"name a=1 b=2.5" as numbers by name."""
    return {key: float(value) for key, value in (word.split("=", 1) for word in line.split() if "=" in word)}
