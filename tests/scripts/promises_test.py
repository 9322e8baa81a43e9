"""Each test that docs/security.md names is there: promises_test.py ROOT

A file in backquotes, then the names of tests in it.
"""

import os
import re
import sys


def main() -> int:
    root = sys.argv[1]
    with open(os.path.join(root, "docs", "security.md"), encoding="utf-8") as file:
        rows = [line.rsplit("|", 2)[1] for line in file if line.startswith("|") and line.count("|") > 2]
    known, missing = 0, []
    for row in rows:
        for path, names in re.findall(r"`((?:tests|scripts)/[^`]*)`([^`]*)", row):
            try:
                with open(os.path.join(root, path), encoding="utf-8") as file:
                    text = file.read()
            except FileNotFoundError:
                missing.append(path)
                continue
            for name in re.findall(r"\b(?:[A-Z][a-z0-9]*(?:[A-Z][A-Za-z0-9]*)+|test_\w+)\b", names):
                known += 1
                if f", {name})" not in text and f"def {name}(" not in text:
                    missing.append(f"{path}: {name}")
    for line in missing:
        print(f"docs/security.md names what is not there: {line}")
    print(f"{known} tests hold what is promised")
    return 1 if missing or known < 20 else 0


if __name__ == "__main__":
    sys.exit(main())
