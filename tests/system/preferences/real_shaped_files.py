"""Preferences files in the shapes that real programs give them.

real_shaped_files.py make ORIGINALS FOLDER     writes forty to both folders
real_shaped_files.py compare ORIGINALS FOLDER  every value that was there still is, of the same type; two keys are new
"""

import datetime
import plistlib
import random
import shutil
import sys
from pathlib import Path

CHANGED = {"JVNForceExtendedGamepad": True, "controller_type": 5}


def scalar(source):
    return source.choice([
        lambda: source.randint(-(2 ** 63), 2 ** 63 - 1),
        lambda: source.randint(2 ** 63, 2 ** 64 - 1),
        lambda: source.randint(0, 255),
        lambda: source.choice([0, 1, -1, 127, 128, 255, 256, 65535, 65536, 2 ** 31, 2 ** 32]),
        lambda: source.uniform(-1e6, 1e6),
        lambda: source.choice([0.0, -0.0, 1.0, 0.1, 1e308, 5e-324, float("inf")]),
        lambda: source.random() < 0.5,
        lambda: source.randbytes(source.choice([0, 1, 6, 16, 300])),
        lambda: "".join(source.choice("abc xyzÄß€日本🎮<&>\"'\n\t") for _ in range(source.randint(0, 40))),
        lambda: datetime.datetime(2001, 1, 1) + datetime.timedelta(seconds=source.randint(-10 ** 9, 10 ** 9)),
    ])()


def value(source, depth):
    kind = source.random()
    if depth == 0 or kind < 0.6:
        return scalar(source)
    if kind < 0.8:
        return [value(source, depth - 1) for _ in range(source.randint(0, 6))]
    return {f"key {i}": value(source, depth - 1) for i in range(source.randint(0, 6))}


def page(source):
    """As the page, the daemon and the discovery tool leave it."""
    return {
        "controller_type": source.randint(0, 6),
        "connection_mode": source.randint(0, 1),
        "JVNAmbientColorKey": source.random() < 0.5,
        "JVNLEDColorKey": f"{source.randint(0, 0xFFFFFF):06x}",
        "PS4BluetoothAddress": source.randbytes(6),
        "JVNKeyboardKeymapKey": {str(code): i + 1 for i, code in enumerate(source.sample(range(4, 232), 11))},
    }


def make(originals, folder):
    for number in range(40):
        source = random.Random(number)
        values = page(source) if number % 2 == 0 else {}
        values.update({f"entry {i}": value(source, 4) for i in range(source.randint(0, 30))})
        style = plistlib.FMT_XML if number % 4 < 2 else plistlib.FMT_BINARY
        name = f"com.example.program{number}.plist"
        with open(originals / name, "wb") as file:
            plistlib.dump(values, file, fmt=style, sort_keys=number % 3 == 0)
        shutil.copy(originals / name, folder / name)


def same(a, b):
    if type(a) is not type(b):
        return False
    if isinstance(a, dict):
        return list(a) == list(b) and all(same(a[key], b[key]) for key in a)
    if isinstance(a, list):
        return len(a) == len(b) and all(map(same, a, b))
    if isinstance(a, float):
        return a.hex() == b.hex()
    return a == b


def compare(originals, folder):
    agreed = 0
    for path in sorted(originals.iterdir()):
        before = plistlib.loads(path.read_bytes())
        after = plistlib.loads((folder / path.name).read_bytes())
        expected = {**before, **CHANGED}
        if not (set(after) == set(expected) and all(same(expected[key], after[key]) for key in expected)):
            wrong = [key for key in expected if not same(expected[key], after.get(key))]
            print(f"{path.name}: {wrong}", file=sys.stderr)
        else:
            agreed += 1
    print(f"{agreed} files agree")


if __name__ == "__main__":
    {"make": make, "compare": compare}[sys.argv[1]](Path(sys.argv[2]), Path(sys.argv[3]))
