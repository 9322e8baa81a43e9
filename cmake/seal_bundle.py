"""Copies a bundle's manifest and adds the size and the digest of its module, which is checked before it is loaded.

seal_bundle.py MANIFEST MODULE OUTPUT
"""

import hashlib
import os
import plistlib
import sys


def main() -> int:
    manifest_path, module_path, output_path = sys.argv[1:]
    with open(manifest_path, "rb") as file:
        manifest = plistlib.load(file)
    with open(module_path, "rb") as file:
        module = file.read()

    named = manifest.get("CFBundleExecutable")
    if named != os.path.basename(module_path):
        print(f"{manifest_path}: CFBundleExecutable is {named!r}, but the module is {module_path}", file=sys.stderr)
        return 1

    manifest["JVNModuleSize"] = len(module)
    manifest["JVNModuleSHA256"] = hashlib.sha256(module).hexdigest()
    temporary = output_path + ".new"
    with open(temporary, "wb") as file:
        plistlib.dump(manifest, file, sort_keys=False)
    os.replace(temporary, output_path)
    return 0


if __name__ == "__main__":
    sys.exit(main())
