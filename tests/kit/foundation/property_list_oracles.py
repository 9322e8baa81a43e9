#!/usr/bin/python3
"""Holds the property-list reader and writer against two others, with values made at random.

Usage: property_list_oracles.py <converter>

Every value is written by the other one, as XML and binary, read and written again by ours, and read back by the other
one; what comes back must be the same value of the same types, floating point bit for bit.
"""

import datetime
import math
import pathlib
import plistlib
import random
import shutil
import struct
import subprocess
import sys
import tempfile

VALUES = 2000
# The year 1000: plistutil writes earlier ones with fewer digits.
EARLIEST = -31_580_000_000
EPOCH = datetime.datetime(2001, 1, 1)


def random_text(rng):
    kinds = ["abc XYZ 019 .,<>&\"'", "äöüßéñ€", "日本語한국어", "𝄞😀🎮", "\t\n", "�\ue000"]
    return "".join(rng.choice(rng.choice(kinds)) for _ in range(rng.choice([0, 1, 5, 14, 15, 16, 40, 300])))


def random_integer(rng):
    edge = 1 << rng.choice([0, 7, 8, 15, 16, 31, 32, 53, 62, 63, 64])
    return max(-(1 << 63), min((1 << 64) - 1, rng.choice([1, -1]) * edge + rng.randint(-2, 2)))


def random_real(rng):
    while True:
        value = struct.unpack("<d", struct.pack("<Q", rng.getrandbits(64)))[0]
        value = rng.choice([value, rng.uniform(-1000, 1000), 0.0, -0.0, 5e-324, 0.1, math.inf, -math.inf])
        if not math.isnan(value):
            return value


def random_value(rng, depth=0):
    kind = rng.randrange(9 if depth < 5 else 7)
    if kind == 0:
        return rng.choice([True, False])
    if kind == 1:
        return random_integer(rng)
    if kind == 2:
        return random_real(rng)
    if kind in (3, 4):
        return random_text(rng)
    if kind == 5:
        return rng.randbytes(rng.choice([0, 1, 2, 3, 14, 15, 100, 1000]))
    if kind == 6:
        return EPOCH + datetime.timedelta(seconds=rng.randint(EARLIEST, 250_000_000_000))
    count = rng.choice([0, 1, 2, 5, 14, 15, 16])
    if kind == 7:
        return [random_value(rng, depth + 1) for _ in range(count)]
    return {random_text(rng): random_value(rng, depth + 1) for _ in range(count)}


def same(a, b, sign_of_zero=True):
    if type(a) is not type(b):
        return False
    if isinstance(a, float) and (a != 0 or sign_of_zero):
        return struct.pack("<d", a) == struct.pack("<d", b)
    if isinstance(a, list):
        return len(a) == len(b) and all(same(x, y, sign_of_zero) for x, y in zip(a, b))
    if isinstance(a, dict):
        return list(a) == list(b) and all(same(a[key], b[key], sign_of_zero) for key in a)
    return a == b


def convert(converter, source, target):
    target.mkdir()
    subprocess.run([converter, source, target], check=True)


def against_plistlib(converter, folder, values):
    source, target = folder / "source", folder / "target"
    source.mkdir()
    for index, value in enumerate(values):
        for form in (plistlib.FMT_XML, plistlib.FMT_BINARY):
            (source / f"{index}.{form.name}").write_bytes(plistlib.dumps(value, fmt=form, sort_keys=False))
    convert(converter, source, target)
    failures = []
    for index in range(len(values)):
        for form in (plistlib.FMT_XML, plistlib.FMT_BINARY):
            path = target / f"{index}.{form.name}"
            # Not the value itself: plistlib writes one object for 0.0 and -0.0.
            expected = plistlib.loads((source / path.name).read_bytes())
            if not path.exists() or not same(plistlib.loads(path.read_bytes()), expected):
                failures.append(path.name)
    return failures


def against_plistutil(converter, folder, values):
    """The tool is slow to start, so the values come in a few arrays. It turns our binary into XML and that back."""
    source, ours = folder / "lists", folder / "lists-ours"
    source.mkdir()
    chunks = [values[at : at + 200] for at in range(0, len(values), 200)]
    for index, chunk in enumerate(chunks):
        (source / f"{index}.plist").write_bytes(plistlib.dumps(chunk, fmt=plistlib.FMT_BINARY, sort_keys=False))
    convert(converter, source, ours)
    theirs = folder / "lists-theirs"
    theirs.mkdir()
    for index in range(len(chunks)):
        xml, binary = theirs / f"{index}.xml", theirs / f"{index}.binary"
        subprocess.run(["plistutil", "-i", ours / f"{index}.plist", "-o", xml], check=True)
        subprocess.run(["plistutil", "-i", xml, "-o", binary], check=True)
    back = folder / "lists-back"
    convert(converter, theirs, back)
    failures = []
    for index in range(len(chunks)):
        for name in (f"{index}.xml", f"{index}.binary"):
            path = back / name
            if not path.exists():
                failures.append(f"{name}: {(back / (name + '.refused')).read_text()}")
                continue
            read = plistlib.loads(path.read_bytes())
            for at, value in enumerate(plistlib.loads((source / f"{index}.plist").read_bytes())):
                # plistutil writes -0.0 as 0.0.
                if not same(value, read[at], sign_of_zero=False):
                    failures.append(f"{name}[{at}]: {value!r} became {read[at]!r}"[:400])
    return failures


def main():
    converter = sys.argv[1]
    rng = random.Random(20240229)
    values = [random_value(rng) for _ in range(VALUES)]
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        failures = against_plistlib(converter, folder, values)
        if shutil.which("plistutil"):
            failures += against_plistutil(converter, folder, values)
        else:
            print("plistutil is not installed: held against plistlib only")
    for failure in failures[:20]:
        print("differs:", failure)
    print(f"{VALUES} values, {len(failures)} differences")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
