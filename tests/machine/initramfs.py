"""The archive that the test machine's kernel unpacks first: busybox, the modules to reach the files, our scripts."""

import os
import shutil
import subprocess
import tempfile

MODULES = ("virtio_pci", "virtio_console", "9pnet_virtio", "9p", "overlay")
DISK_MODULES = ("virtio_blk", "crc32c_generic", "ext4")


def module_files(modules: str, names: tuple[str, ...]) -> list[str]:
    """The files of these modules and of what they need, in the order in which they are loaded."""
    folder = os.path.join(modules, os.listdir(modules)[0])
    needs = {}
    path_of = {}
    with open(os.path.join(folder, "modules.dep"), encoding="ascii") as file:
        for line in file:
            path, _, others = line.partition(":")
            needs[path] = others.split()
            path_of[os.path.basename(path).partition(".")[0].replace("-", "_")] = path
    # modules.dep names first what is loaded last.
    ordered = [path for name in names for path in (*reversed(needs[path_of[name]]), path_of[name])]
    return [os.path.join(folder, path) for path in dict.fromkeys(ordered)]


def pack(path: str, modules: str, names: tuple[str, ...], guests: list[str]) -> None:
    """Writes the archive; modules is the folder with the one kernel's modules, of which it gets the named ones. Of the
    folders with our scripts a later one's files replace an earlier one's."""
    with tempfile.TemporaryDirectory() as root:
        for folder in ("bin", "modules", "proc", "sys", "dev", "lower", "layer", "new"):
            os.makedirs(os.path.join(root, folder))
        shutil.copy(shutil.which("busybox"), os.path.join(root, "bin"))
        for number, module in enumerate(module_files(modules, names), 10):
            shutil.copy(module, os.path.join(root, "modules", f"{number}-{os.path.basename(module)}"))
        for guest in guests:
            shutil.copytree(guest, os.path.join(root, "guest"), dirs_exist_ok=True)
        shutil.move(os.path.join(root, "guest", "init"), root)
        names = [os.path.relpath(os.path.join(folder, name), root)
                 for folder, folders, files in os.walk(root) for name in [*folders, *files]]
        with open(path, "wb") as archive:
            subprocess.run(["cpio", "--create", "--format=newc", "--quiet", "--owner=0:0"],
                           input="\n".join(names).encode(), cwd=root, stdout=archive, check=True)
