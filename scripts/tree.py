"""What the checks share: the files of the tree, and how a check says what it found."""

import os
import re
import subprocess
import sys

INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]')


def root_folder(arguments: list[str]) -> str:
    """The folder named on the command line, else the one that scripts/ is in."""
    if arguments:
        return os.path.abspath(arguments[0])
    return os.path.dirname(os.path.dirname(os.path.abspath(__file__)))


def files(root: str, *suffixes: str) -> list[str]:
    """Paths below root, relative to it, of the files that belong to the project: git's, or else all but build/."""
    if os.path.exists(os.path.join(root, ".git")):
        listed = subprocess.run(
            ["git", "-c", "safe.directory=*", "ls-files", "-z", "--cached", "--others", "--exclude-standard"],
            cwd=root, check=True, capture_output=True, text=True,
        ).stdout.split("\0")
        found = {path for path in listed if path and os.path.isfile(os.path.join(root, path))}
    else:
        found = set()
        for folder, folders, names in os.walk(root):
            folders[:] = [name for name in folders if name not in ("build", "pictures", "__pycache__")]
            found.update(os.path.relpath(os.path.join(folder, name), root) for name in names)
    return sorted(path for path in found if not suffixes or path.endswith(suffixes))


def lines(root: str, path: str) -> list[str]:
    """The lines of a text file; none for one that is not text."""
    with open(os.path.join(root, path), "rb") as file:
        content = file.read()
    return [] if b"\0" in content else content.decode("utf-8", "replace").splitlines()


def report(findings: list[str], sound: str) -> int:
    """Prints what was found, or that all is sound; the exit code that goes with it."""
    print("\n".join(findings) if findings else sound, file=sys.stderr if findings else sys.stdout)
    return 1 if findings else 0
