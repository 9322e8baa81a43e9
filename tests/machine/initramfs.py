"""The archive that the test machine's kernel unpacks first: busybox, the modules to reach the files, our scripts."""

import glob
import os
import re
import shutil
import subprocess
import tempfile

# What is started, and opened, all the time in the machine. The kernel gets it with the archive, so that none of it is
# asked of the emulator again and again.
PROGRAMS = (
    "/lib/systemd/systemd", "/lib/systemd/systemd-journald", "/lib/systemd/systemd-logind", "/lib/systemd/systemd-udevd",
    "/lib/systemd/systemd-user-runtime-dir", "systemctl", "systemd-run", "udevadm", "loginctl", "journalctl", "busctl",
    "dbus-daemon", "dbus-run-session", "bash", "sh", "awk", "base64", "cat", "cut", "date", "env", "grep", "id", "kmod", "mkdir",
    "pgrep", "setpriv", "sleep", "timeout", "btvirt", "/usr/libexec/bluetooth/bluetoothd",
)
OTHER_FILES = (
    "/etc/ld.so.cache", "/usr/lib/locale/C.utf8/*", "/usr/lib/locale/C.utf8/LC_MESSAGES/*", "/lib/*/libnss_systemd.so.2",
    "/lib/*/security/pam_systemd.so", "/lib/*/security/pam_permit.so", "/lib/*/security/pam_loginuid.so",
)
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


def libraries(program: str) -> list[str]:
    """What the loader maps for a program."""
    told = subprocess.run(["ldd", program], capture_output=True, text=True, check=False).stdout
    return re.findall(r"(/\S+) \(0x", told)


def hot_files(programs: list[str]) -> set[str]:
    """The files of PROGRAMS and OTHER_FILES that are on this system, and the libraries of these and of the programs."""
    started = [found for name in PROGRAMS if (found := shutil.which(name))]
    others = [found for pattern in OTHER_FILES for found in glob.glob(pattern) if os.path.isfile(found)]
    mapped = [library for program in (*started, *others, *programs) for library in libraries(program)]
    return {os.path.realpath(name) for name in (*started, *others, *mapped)}


def pack(path: str, modules: str, names: tuple[str, ...], guests: list[str], hot: set[str] = frozenset()) -> None:
    """Writes the archive; modules is the folder with the one kernel's modules, of which it gets the named ones. Of the
    folders with our scripts a later one's files replace an earlier one's. The hot files are below /hot."""
    with tempfile.TemporaryDirectory() as root:
        for folder in ("bin", "modules", "proc", "sys", "dev", "lower", "layer", "new"):
            os.makedirs(os.path.join(root, folder))
        shutil.copy(shutil.which("busybox"), os.path.join(root, "bin"))
        for number, module in enumerate(module_files(modules, names), 10):
            shutil.copy(module, os.path.join(root, "modules", f"{number}-{os.path.basename(module)}"))
        for name in hot:
            os.makedirs(os.path.dirname(root + "/hot" + name), exist_ok=True)
            shutil.copy(name, root + "/hot" + name)
        for guest in guests:
            shutil.copytree(guest, os.path.join(root, "guest"), dirs_exist_ok=True)
        shutil.move(os.path.join(root, "guest", "init"), root)
        names = [os.path.relpath(os.path.join(folder, name), root)
                 for folder, folders, files in os.walk(root) for name in [*folders, *files]]
        with open(path, "wb") as archive:
            subprocess.run(["cpio", "--create", "--format=newc", "--quiet", "--owner=0:0"],
                           input="\n".join(names).encode(), cwd=root, stdout=archive, check=True)
