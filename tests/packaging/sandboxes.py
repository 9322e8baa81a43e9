"""The sandboxes of our units, as the service manager's own tool judges them, setting by setting: sandboxes.py FOLDER

The folder has the units as they are installed.
"""

import json
import os
import shutil
import subprocess
import sys
import unittest

FOLDER = ""
SKIPPED = 77  # what CTest takes for a test that is left out


def findings(unit, value):
    """What the tool finds closed (True) or open (False)."""
    told = subprocess.run(["systemd-analyze", "--no-pager", "security", "--offline=true", "--json=short", os.path.join(FOLDER, unit)],
                          check=True, capture_output=True, text=True).stdout
    return {finding["name"].rstrip("=") for finding in json.loads(told) if finding["set"] is value}


def settings(unit):
    with open(os.path.join(FOLDER, unit), encoding="utf-8") as file:
        return [line for line in file.read().splitlines() if "=" in line and not line.startswith("#")]


class Sandboxes(unittest.TestCase):
    def test_of_the_input_service_only_what_it_needs_is_open(self):
        # Root owns the devices; udev speaks by netlink, which a network of its own would cut off, and the bus by a
        # local socket.
        self.assertEqual(findings("jvninputd.service", value=False),
                         {"RootDirectory=/RootImage", "User=/DynamicUser", "PrivateUsers", "PrivateDevices", "DeviceAllow",
                          "PrivateNetwork", "RestrictAddressFamilies=~AF_NETLINK", "RestrictAddressFamilies=~AF_UNIX"})

    def test_the_input_service_has_input_devices_and_lights_alone_and_leaves_no_memory_behind(self):
        lines = settings("jvninputd.service")
        self.assertEqual([line for line in lines if line.startswith(("DevicePolicy", "DeviceAllow", "ReadWritePaths"))],
                         ["DevicePolicy=closed", "DeviceAllow=char-input rw", "DeviceAllow=/dev/uinput rw",
                          "ReadWritePaths=-/sys/devices"])
        # A dump of its memory would have keys in it.
        for line in ("CapabilityBoundingSet=", "SecureBits=noroot-locked", "LimitCORE=0"):
            self.assertIn(line, lines)

    def test_the_users_daemon_has_local_sockets_alone_and_gains_no_rights(self):
        closed = findings("jvnd.service", value=True)
        self.assertLessEqual(
            {"NoNewPrivileges", "RestrictSUIDSGID", "RestrictAddressFamilies=~AF_(INET|INET6)", "RestrictAddressFamilies=~AF_NETLINK",
             "RestrictAddressFamilies=~AF_PACKET", "RestrictAddressFamilies=~…", "MemoryDenyWriteExecute", "LockPersonality",
             "RestrictRealtime", "SystemCallArchitectures", "UMask"}, closed)
        for kind in ("user", "pid", "net", "uts", "mnt", "cgroup", "ipc"):
            self.assertIn(f"RestrictNamespaces=~{kind}", closed)
        for calls in ("swap", "reboot", "raw-io", "obsolete", "mount", "module", "debug", "cpu-emulation", "clock"):
            self.assertIn(f"SystemCallFilter=~@{calls}", closed)


if __name__ == "__main__":
    FOLDER = sys.argv.pop(1)
    if not shutil.which("systemd-analyze"):
        print("systemd-analyze is not here")
        sys.exit(SKIPPED)
    unittest.main(verbosity=2)
