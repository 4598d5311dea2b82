"""The cost of running a command."""

import collections
import os
import subprocess
import sys

MACHINE = "[Version]\nMajor = 5\nMinor = 0\nBuild = 2195\nPlatform = 2\n"
PROFILE = "[GENERAL]\r\nSign=Hostscope INI file\r\nReportFileName=report.txt\r\n"

Cost = collections.namedtuple("Cost", ("milliseconds", "peak_kilobytes"))


def cost(command, folder):
    """User and system time and the largest resident memory of one run in the folder."""
    process = subprocess.Popen(command, cwd=folder, stdin=subprocess.DEVNULL,
                               stdout=subprocess.DEVNULL)
    _, status, usage = os.wait4(process.pid, 0)
    if status != 0:
        sys.exit(f"{command[0]} ended with {status}")
    return Cost((usage.ru_utime + usage.ru_stime) * 1000, usage.ru_maxrss)


def report_cost(hscope, machine, profile, folder):
    """The same for a report of the Linux program; machine and profile lie in the folder."""
    return cost([hscope, "--machine", str(folder / machine), str(folder / profile), str(folder)],
                folder)


def describe_machine(folder, exported_keys):
    """Makes the folder of a Windows 2000 machine with these keys, as a registry export has them."""
    folder.mkdir()
    (folder / "machine.ini").write_text(MACHINE)
    (folder / "keys.reg").write_text("REGEDIT4\n\n" + exported_keys)
