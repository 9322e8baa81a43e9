"""The guide as a page for browsers: guide.py CMARK SOURCE.md TARGET.html"""

import os
import re
import subprocess
import sys

PAGE = """<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>Using Joyvane</title>
<style>
:root {{ color-scheme: light dark; }}
body {{ font: 1rem/1.5 sans-serif; max-width: 42rem; margin: 0 auto; padding: 1rem; }}
img {{ max-width: 100%; }}
table {{ border-collapse: collapse; }}
td, th {{ border: 1px solid GrayText; padding: .3rem .6rem; text-align: left; vertical-align: top; }}
pre {{ overflow-x: auto; }}
</style>
</head>
<body>
{body}</body>
</html>
"""


def with_anchors(body: str) -> str:
    """Headings can be linked to by their words, as on the pages where the guide's source is read."""
    def heading(match: re.Match) -> str:
        words = re.sub(r"[^a-z0-9 -]", "", re.sub(r"<[^>]*>", "", match.group(2)).lower())
        return f'<h{match.group(1)} id="{words.replace(" ", "-")}">{match.group(2)}</h{match.group(1)}>'
    return re.sub(r"<h([1-6])>(.*?)</h\1>", heading, body)


def with_dark_pictures(body: str, folder: str) -> str:
    """Where there is a picture of the same in the dark, who reads in the dark sees that one."""
    def picture(match: re.Match) -> str:
        dark = re.sub(r"(\.[a-z]+)$", r"-dark\1", match.group(1))
        if not os.path.exists(os.path.join(folder, dark)):
            return match.group(0)
        return f'<picture><source srcset="{dark}" media="(prefers-color-scheme: dark)">{match.group(0)}</picture>'
    return re.sub(r'<img src="([^"]+)"[^>]*>', picture, body)


def main() -> None:
    cmark, source, target = sys.argv[1:]
    body = subprocess.run([cmark, "--extension", "table", source], check=True, capture_output=True, text=True).stdout
    with open(target, "w", encoding="utf-8") as file:
        file.write(PAGE.format(body=with_dark_pictures(with_anchors(body), os.path.dirname(source))))


if __name__ == "__main__":
    main()
