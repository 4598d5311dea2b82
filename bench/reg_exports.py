"""What it takes the Linux program to read the registry of a machine from an export of 50 MB.

Usage: bench/reg_exports.py HSCOPE [RUNS]     (HSCOPE from the preset "linux")
For each editor and contents of make_exports.py, in one run: the processor time of a whole run with a profile
of one key, its ratio to that of iconv over the same file, and the resident memory at the peak. The report must
hold the export's last key. Exit code 1 when a run takes 3 seconds or 300 MB.
"""

import pathlib
import sys
import tempfile

import make_exports
from linux_costs import MACHINE, PROFILE, cost

MEGABYTES = 50
LESS_SECONDS = 3
LESS_MEGABYTES = 300


def least(command, folder, runs):
    """The least time of the runs, the rest is what else the machine did, and the largest memory."""
    costs = [cost(command, folder) for _ in range(runs)]
    return (min(run.milliseconds for run in costs) / 1000,
            max(run.peak_kilobytes for run in costs) * 1024 / 1_000_000)


def measure(hscope, editor, contents, folder, runs):
    machine = folder / "machine"
    export = machine / "export.reg"
    with open(export, "wb") as file:
        make_exports.write(editor, contents, MEGABYTES, file)
    seconds, megabytes = least([hscope, "--machine", machine, folder / "bench.ini", folder], folder, runs)
    if make_exports.LAST_VALUE.encode("cp1252") not in (folder / "report.txt").read_bytes():
        sys.exit(f"{editor}, {contents}: the report lacks the last key")
    encoding = make_exports.EDITORS[editor].encoding
    beside, _ = least(["iconv", "-f", encoding, "-t", "utf-8", export], folder, runs)
    print(f"{editor:<12} {contents:<6} {seconds:8.2f} {seconds / beside:8.2f} {megabytes:8.0f}", flush=True)
    return seconds < LESS_SECONDS and megabytes < LESS_MEGABYTES


def main():
    hscope = pathlib.Path(sys.argv[1]).resolve()
    runs = int(sys.argv[2]) if len(sys.argv) > 2 else 3
    print(f"{'':<19} {'seconds':>8} {'to iconv':>8} {'MB':>8}")
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        (folder / "machine").mkdir()
        (folder / "machine/machine.ini").write_text(MACHINE)
        section = "[REGISTRY KEYS]\r\n" + make_exports.LAST_KEY.replace("HKEY_LOCAL_MACHINE", "HKLM") + "\r\n"
        (folder / "bench.ini").write_text(PROFILE + section, newline="")
        within = [measure(hscope, editor, contents, folder, runs) for editor in make_exports.EDITORS
                  for contents in make_exports.CONTENTS]
    return 0 if all(within) else 1


if __name__ == "__main__":
    sys.exit(main())
