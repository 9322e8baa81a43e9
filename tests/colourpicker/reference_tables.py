#!/usr/bin/env python3
"""Writes a C++ header with what the colour arithmetic must give, worked out without it.

Colours come from exact rationals, held against colorsys; what the widget reckons in single precision is rounded to it
after every operation. Usage: reference_tables.py <header>
"""

import colorsys
import struct
import sys
from fractions import Fraction

FIELDS = [  # width, height, tile, limit
    (320, 356, 16, 0.9),
    (375, 519, 16, 0.9),
    (100, 50, 10, 0.95),
    (33, 47, 5, 1.0),
    (251.5, 130.25, 12.5, 0.25),
]


def single(value):
    return struct.unpack("f", struct.pack("f", value))[0]


def hsv(r, g, b):
    """Hue, saturation and brightness of exact components, exactly."""
    most, least = max(r, g, b), min(r, g, b)
    if most == least:
        return Fraction(0), Fraction(0), most
    spread = most - least
    if most == r:
        h = ((g - b) / spread) % 6
    elif most == g:
        h = (b - r) / spread + 2
    else:
        h = (r - g) / spread + 4
    return h / 6, spread / most, most


def rgb(h, s, v):
    """The hexcone the other way, exactly."""
    turn = h * 6
    whole = turn.numerator // turn.denominator
    f = turn - whole
    p, q, t = v * (1 - s), v * (1 - s * f), v * (1 - s * (1 - f))
    return [(v, t, p), (q, v, p), (p, v, t), (p, q, v), (t, p, v), (v, p, q)][whole % 6]


def agree(exact, rounded):
    for a, b in zip(exact, rounded):
        if abs(float(a) - b) > 1e-12:
            sys.exit(f"the two ways of reckoning disagree: {exact} {rounded}")


def row(*values):
    return "    {" + ", ".join(repr(float(v)) for v in values) + "},"


def table(out, declaration, rows):
    out.append(f"inline constexpr {declaration} {{")
    out.extend(rows)
    out.append("};")


def main():
    out = ["#pragma once", "// Made by reference_tables.py.", ""]

    out.append("struct ReferenceColor { double red, green, blue, h, s, v; };")
    rows = []
    for level in range(256):
        exact = hsv(*[Fraction(level, 255)] * 3)
        rows.append(row(*[level / 255] * 3, *exact))
    table(out, "ReferenceColor referenceGreys[]", rows)

    rows = []
    for r in range(0, 256, 17):
        for g in range(0, 256, 17):
            for b in range(0, 256, 17):
                exact = hsv(Fraction(r, 255), Fraction(g, 255), Fraction(b, 255))
                agree(exact, colorsys.rgb_to_hsv(r / 255, g / 255, b / 255))
                rows.append(row(r / 255, g / 255, b / 255, *exact))
    table(out, "ReferenceColor referenceColors[]", rows)

    out.append("struct ReferenceTile { int field, column, row; double hue, saturation, red, green, blue; };")
    out.append("struct ReferenceField { double width, height, tile, limit; int columns, rows; };")
    rows, fields = [], []
    brightness = Fraction(3, 4)
    for number, (width, height, tile, limit) in enumerate(FIELDS):
        columns = int(Fraction(width) / Fraction(tile))
        count = int(Fraction(height) / Fraction(tile))
        fields.append(f"    {{{width!r}, {height!r}, {tile!r}, {single(limit)!r}, {columns}, {count}}},")
        for i in range(columns):
            for j in range(count):
                h = Fraction(i, columns)
                s = 1 - Fraction(single(limit)) * j / (count - 1)
                exact = rgb(h, s, brightness)
                agree(exact, colorsys.hsv_to_rgb(float(h), float(s), float(brightness)))
                rows.append(f"    {{{number}, {i}, {j}, " + row(h, s, *exact)[5:])
    table(out, "ReferenceField referenceFields[]", fields)
    table(out, "ReferenceTile referenceTiles[]", rows)
    out.append(f"inline constexpr double referenceTileBrightness = {float(brightness)!r};")

    # A slider 268 points wide: its bar is 228, the track of the cursor 212, from 28.
    out.append("struct ReferencePosition { double x, brightness; float fraction; };")
    start, width, limit = 28, 212, single(0.4)
    rows = []
    for step in range(1000):
        x = Fraction(268 * step, 999)
        distance = min(max(x - start, Fraction(0)), Fraction(width))
        brightness = Fraction(limit) + (1 - Fraction(limit)) * (1 - distance / width)
        value = single(float(brightness))
        fraction = single(single(single(limit - value) / single(1 - limit)) + 1)
        rows.append(f"    {{{float(x)!r}, {float(brightness)!r}, static_cast<float>({fraction!r})}},")
    table(out, "ReferencePosition referencePositions[]", rows)

    with open(sys.argv[1], "w", encoding="utf-8") as file:
        file.write("\n".join(out) + "\n")


main()
