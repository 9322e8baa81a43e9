"""Preferences files of real life, as the keymap editor meets them.

real_life_files.py make FOLDER     writes forty, "<row>-<key>-<number>.plist": the row to arm and the key to press
real_life_files.py compare FOLDER  holds "<name>.plist.after" against what that must make of "<name>.plist", value for
                                   value and type for type, and against what the packaged tool reads in it
"""

import plistlib
import random
import shutil
import subprocess
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).parent.parent / "system" / "preferences"))
sys.dont_write_bytecode = True
from real_shaped_files import page, same, value  # noqa: E402

KEYMAP = "JVNKeyboardKeymapKey"
DEFAULTS = {"26": 3, "4": 2, "22": 4, "7": 1, "12": 8, "13": 7, "14": 5, "15": 6, "31": 9, "37": 10, "41": 21}
CODES = [*range(1, 11), 21, *range(11, 21)]


def keymaps(source):
    """What may stand under the key, by turns; None: the key is missing."""
    keys = [str(code) for code in source.sample(range(4, 232), 12)]
    codes = [source.randint(1, 21) for _ in keys]
    yield dict(zip(keys, codes))
    yield dict(zip(keys, map(str, codes)))  # as another program wrote it: all are text
    yield {key: source.choice([str(code), code, float(code), code + 0.75]) for key, code in zip(keys, codes)}
    yield {key: 3 for key in keys}  # all keys for one input
    yield dict(zip(keys, (0, -1, 22, 99, 255, 65536, 2 ** 31, 2 ** 32 + 3, 2 ** 63, 2 ** 64 - 1, -(2 ** 63), 1)))
    yield {}
    yield None
    yield source.choice(["text", 7, 1.5, True, b"data", ["26", 3]])
    yield {"4": True, "5": "abc", "6": b"\x03", "7": [3], "8": {"3": 3}, "W": 3, "": 4, " 9": 5, "0x1a": 6, "号": 7}
    yield {str(code): code % 21 + 1 for code in range(4, 1000)}


def make(folder):
    number = 0
    while number < 40:
        for keymap in keymaps(random.Random(number)):
            source = random.Random(1000 + number)
            values = page(source)
            values["controller_type"] = 6
            values.update({f"entry {i}": value(source, 4) for i in range(source.randint(0, 30))})
            values["Schlüssel 日本 🎮"] = {"nested": [{"date": "no"}, [[]], {}, "", b""]}
            values.pop(KEYMAP)
            if keymap is not None:
                values[KEYMAP] = keymap
            style = plistlib.FMT_XML if number % 4 < 2 else plistlib.FMT_BINARY
            key = source.choice([list(DEFAULTS)[number % 11], str(source.randint(4, 231))])
            path = folder / f"{number % 21}-{key}-{number}.plist"
            with open(path, "wb") as file:
                plistlib.dump(values, file, fmt=style, sort_keys=number % 3 == 0)
            number += 1


def integer(stored):
    """The integer value of whatever stands in a keymap."""
    if isinstance(stored, (bool, int)):
        # A value beyond 63 bits is no row's, whichever way it is cut.
        return int(stored)
    if isinstance(stored, float):
        return int(stored)
    if isinstance(stored, str):
        digits = stored.strip()
        return int(digits) if digits.isdecimal() else 0
    return 0


def edited(values, row, key):
    keymap = values.get(KEYMAP)
    keymap = dict(keymap if isinstance(keymap, dict) else DEFAULTS)
    code = CODES[row]
    former = next((each for each, stored in keymap.items() if integer(stored) == code), None)
    if former is not None:
        del keymap[former]
    keymap[key] = code
    return {**values, KEYMAP: keymap}


def alike(a, b):
    """As `same`, in any order."""
    if isinstance(a, dict) and isinstance(b, dict):
        return a.keys() == b.keys() and all(alike(a[key], b[key]) for key in a)
    return same(a, b)


def read_by_tool(path):
    result = subprocess.run(["plistutil", "-f", "xml", "-i", path, "-o", "-"], capture_output=True)
    return plistlib.loads(result.stdout) if result.returncode == 0 and result.stdout else {}


def compare(folder):
    agreed = 0
    for path in sorted(folder.glob("*.plist")):
        row, key, _ = path.stem.split("-")
        expected = edited(plistlib.loads(path.read_bytes()), int(row), key)
        saved = Path(f"{path}.after").read_bytes()
        after = plistlib.loads(saved)
        wrong = [each for each in {**expected, **after} if not alike(expected.get(each), after.get(each))]
        if not saved.startswith(b"bplist00"):
            wrong.append("not binary")
        if shutil.which("plistutil"):
            tool = read_by_tool(f"{path}.after")
            # It cannot tell -1 from the greatest number of 64 bits, so not all values are asked for.
            if set(tool) != set(expected) or set(tool[KEYMAP]) != set(expected[KEYMAP]) or tool[KEYMAP][key] != CODES[int(row)]:
                wrong.append("plistutil")
        if wrong:
            print(f"{path.name}: {wrong}", file=sys.stderr)
        else:
            agreed += 1
    print(f"{agreed} files agree")


if __name__ == "__main__":
    {"make": make, "compare": compare}[sys.argv[1]](Path(sys.argv[2]))
