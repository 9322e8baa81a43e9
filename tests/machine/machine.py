"""The test machines: the distribution's kernel under plain emulation, over the files of this system, or with a disk of
its own on which the distribution is installed.

A running machine is known by its folder, which holds the sockets that it listens to and its console's log.
"""

import base64
import os
import platform
import shlex
import shutil
import socket
import subprocess
import sys
import time
import uuid

import initramfs

HERE = os.path.dirname(os.path.abspath(__file__))
SOURCE = os.path.dirname(os.path.dirname(HERE))
KERNEL = os.path.join(SOURCE, "build", "machine", "kernel")
DISK = os.path.join(SOURCE, "build", "machine", "system", "disk")
EMULATOR = "qemu-system-x86_64"
BOOT_SECONDS = 400  # 15 on an idle computer, minutes on one that is busy with other machines
LIFE_SECONDS = 3600  # then a machine that somebody forgot ends by itself
OFTEN_STARTED = ("jvnd", "jvndiscovery", "jvninput", "jvninputd")  # by tests
END = b"\n\x1eend "


class MachineError(Exception):
    """The machine did not start, or did not answer; the text is for people."""


def left_out(installed: bool = False) -> str | None:
    """Why this computer has no test machine, or not the one with an installed system; None where it has it."""
    if platform.machine() != "x86_64":
        return f"The test machine is left out: its kernel is for x86_64, and this is {platform.machine()}."
    if not os.path.exists(os.path.join(KERNEL, "vmlinuz")) and not shutil.which("apt-get"):
        return "The test machine is left out: its kernel comes as a Debian package, and this is no Debian system."
    if installed and not os.path.exists(DISK):
        return "The installed system is left out: its disk is missing; scripts/install-deps machine builds it."
    return None


def share(path: str, tag: str) -> list[str]:
    return ["-virtfs", f"local,path={path},mount_tag={tag},security_model=none,readonly=on,multidevs=remap"]


def emulator_command(folder: str, installed: bool, *kernel_words: str) -> list[str]:
    """The emulator for a machine whose files are in that folder, from where it must be started."""
    if not shutil.which(EMULATOR) or not os.path.exists(os.path.join(KERNEL, "vmlinuz")):
        raise MachineError("The emulator or the kernel is missing; scripts/install-deps machine fetches them.")
    archive, modules, guest = os.path.join(folder, "initramfs"), os.path.join(KERNEL, "modules"), os.path.join(HERE, "guest")
    if installed:
        initramfs.pack(archive, modules, (*initramfs.MODULES, *initramfs.DISK_MODULES),
                       [guest, os.path.join(HERE, "system", "guest")])
        # What is written to the disk is thrown away with the machine.
        files = ["-drive", f"file={DISK},if=virtio,format=raw,snapshot=on", *share(SOURCE, "source")]
        kernel_words = (f"joyvane.source={SOURCE}", *kernel_words)
    else:
        ours = [path for name in OFTEN_STARTED if os.path.exists(path := os.path.join(SOURCE, "build", "release", "bin", name))]
        initramfs.pack(archive, modules, initramfs.MODULES, [guest], initramfs.hot_files(ours))
        files = share("/", "root")
    words = [
        "console=ttyS0", "quiet", "panic=-1",
        # A self-test of the ciphers fails under emulation, and Bluetooth would have no keys.
        "cryptomgr.notests",
        # What is typed on virtual keyboards shall not stop the machine.
        "sysctl.kernel.sysrq=0",
        # The clock that real computers read without asking the kernel; the one that it would take here is slow to read.
        "tsc=reliable", "clocksource=tsc",
        # The emulator translates code anew for each address at which it runs: programs that are at other addresses each
        # time they are started take four times as long.
        "norandmaps",
        # Nobody attacks it, so that nothing need be cleared, checked, counted or noted twice; devices that come and go all
        # the time need not wait for each other; no memory is so large that addresses need five tables.
        "mitigations=off", "init_on_alloc=0", "randomize_kstack_offset=off", "lsm=capability", "audit=0", "nowatchdog",
        "cgroup.memory=nokmem,nosocket", "psi=0", "rcupdate.rcu_expedited=1", "no5lvl",
        "systemd.show_status=0", "systemd.log_target=journal-or-kmsg", *kernel_words,
    ]
    return [
        EMULATOR, "-machine", "pc,i8042=off", "-accel", "tcg,thread=multi",
        # Copying by bytes and guarding each access to a program's memory is quick in hardware alone.
        "-cpu", "max,-erms,-smap", "-smp", "2", "-m", "1024" if installed else "768",
        "-nodefaults", "-no-user-config", "-display", "none", "-no-reboot",
        "-kernel", os.path.join(KERNEL, "vmlinuz"), "-initrd", "initramfs", "-append", " ".join(words),
        *files, *share(modules, "modules"),
        "-device", "virtio-serial-pci", "-chardev", "socket,id=port,path=port,server=on,wait=off",
        "-device", "virtserialport,chardev=port,name=joyvane",
    ]


def connect(folder: str, name: str) -> socket.socket:
    """Connects to one of the folder's sockets, however long the folder's path is; OSError when nobody listens."""
    handle = os.open(folder, os.O_PATH)
    try:
        connection = socket.socket(socket.AF_UNIX)
        connection.connect(f"/proc/self/fd/{handle}/{name}")
        return connection
    finally:
        os.close(handle)


def stop(folder: str) -> None:
    """Ends the folder's machine, if it runs."""
    try:
        with connect(folder, "monitor") as monitor:
            monitor.settimeout(20)
            monitor.sendall(b"quit\n")
            while monitor.recv(4096):
                pass
    except OSError:
        pass  # it was not there, or has ended faster than it could say so


def end(process: subprocess.Popen) -> None:
    """Ends a machine that has just been started, and may not listen to anything yet."""
    process.terminate()  # "timeout" passes it on
    process.wait()


class Machine:
    """A connection to a running machine. One at a time."""

    def __init__(self, folder: str):
        self.folder = folder
        self.port = connect(folder, "port")
        self.received = b""

    @staticmethod
    def start(folder: str, installed: bool = False) -> "Machine":
        """Starts a machine in the background, instead of the one that may run there, and waits until it answers."""
        stop(folder)
        shutil.rmtree(folder, ignore_errors=True)
        os.makedirs(folder)
        command = [*emulator_command(folder, installed), "-serial", "file:console",
                   "-chardev", "socket,id=monitor,path=monitor,server=on,wait=off", "-mon", "chardev=monitor"]
        deadline = time.monotonic() + BOOT_SECONDS
        with open(os.path.join(folder, "emulator"), "wb") as said:
            process = subprocess.Popen(["timeout", "--kill-after=5", str(LIFE_SECONDS), *command], cwd=folder,
                                       stdin=subprocess.DEVNULL, stdout=said, stderr=said, start_new_session=True)
        try:
            while not os.path.exists(os.path.join(folder, "port")) and process.poll() is None:
                if time.monotonic() > deadline:
                    break
                time.sleep(0.02)
            machine = Machine(folder)
            machine.ping(deadline - time.monotonic())
            # The folders on the way to the programs may be closed to the machine's users; in its layer they are opened.
            machine.run(f"cd {shlex.quote(SOURCE)}; while [ $PWD != / ]; do chmod a+x .; cd ..; done", timeout=60)
            return machine
        except (OSError, MachineError) as error:
            end(process)
            raise MachineError(f"The machine did not start: {error}\n{logs(folder)}") from None
        except BaseException:  # whoever waits for it is ended
            end(process)
            raise

    @staticmethod
    def running(folder: str, installed: bool = False) -> "Machine":
        """The machine of that folder, which is started when it does not run or does not answer."""
        try:
            machine = Machine(folder)
            machine.ping(20)
            return machine
        except (OSError, MachineError):
            return Machine.start(folder, installed)

    def close(self) -> None:
        self.port.close()

    def ping(self, timeout: float) -> None:
        name = uuid.uuid4().hex
        self._send(f"ping {name}")
        self._receive_until(b"pong " + name.encode() + b"\n", time.monotonic() + timeout, None)

    def run(self, script: str, user: str = "root", timeout: int = 60, output=None) -> int:
        """Runs a script of the shell as that user and passes on what it says; gives its status, 124 past the timeout."""
        name = uuid.uuid4().hex
        coded = base64.b64encode(script.encode()).decode()
        self._send(f"run {name} {timeout} {user} {coded}")
        end = END + name.encode() + b" "
        # The machine ends the script by itself; only one that cannot is given up.
        deadline = time.monotonic() + timeout + 40
        self._receive_until(end, deadline, output)
        return int(self._receive_until(b"\n", deadline, None))

    def _send(self, line: str) -> None:
        self.port.settimeout(20)
        self.port.sendall(line.encode() + b"\n")

    def _receive_until(self, mark: bytes, deadline: float, output) -> bytes:
        """What comes before the mark, which is passed on as it comes when there is an output."""
        before = b""
        while mark not in self.received:
            if output:  # all but what may be the mark's beginning
                safe = max(0, len(self.received) - len(mark))
                output.write(self.received[:safe])
                output.flush()
                self.received = self.received[safe:]
            self.port.settimeout(max(0.1, deadline - time.monotonic()))
            try:
                data = self.port.recv(65536)
            except TimeoutError:
                raise MachineError("it does not answer") from None
            if not data:
                raise MachineError("it is gone")
            self.received += data
        before, _, self.received = self.received.partition(mark)
        if output:
            output.write(before)
            output.flush()
        return before


def logs(folder: str) -> str:
    """The end of what the machine's console and the emulator said."""
    text = ""
    for name in ("emulator", "console"):
        try:
            with open(os.path.join(folder, name), encoding="utf-8", errors="replace") as file:
                text += "".join(file.readlines()[-60:])
        except OSError:
            pass
    return text


def shell(folder: str, installed: bool = False) -> int:
    """A machine with a root shell on this terminal, until it is left."""
    words = ["joyvane.shell"]
    if sys.stdout.isatty():
        size = os.get_terminal_size()
        words.append(f"systemd.setenv=JOYVANE_SIZE={size.lines}x{size.columns}")
    return subprocess.run([*emulator_command(folder, installed, *words), "-serial", "mon:stdio"], cwd=folder, check=False).returncode
