"""The guide as a page for browsers: guide.py CMARK SOURCE.md TARGET.html"""

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


def main() -> None:
    cmark, source, target = sys.argv[1:]
    body = subprocess.run([cmark, "--extension", "table", source], check=True, capture_output=True, text=True).stdout
    with open(target, "w", encoding="utf-8") as file:
        file.write(PAGE.format(body=body))


if __name__ == "__main__":
    main()
