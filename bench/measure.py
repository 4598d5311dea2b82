"""The cost of running a command."""

import collections
import os
import subprocess
import sys

Cost = collections.namedtuple("Cost", ("milliseconds", "peak_kilobytes"))


def cost(command, folder):
    """User and system time and the largest resident memory of one run in the folder."""
    process = subprocess.Popen(command, cwd=folder, stdin=subprocess.DEVNULL,
                               stdout=subprocess.DEVNULL)
    _, status, usage = os.wait4(process.pid, 0)
    if status != 0:
        sys.exit(f"{command[0]} ended with {status}")
    return Cost((usage.ru_utime + usage.ru_stime) * 1000, usage.ru_maxrss)
