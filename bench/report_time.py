"""What a whole run of the Linux program costs, told beside the cost of starting any program at all.

Usage: bench/report_time.py HSCOPE [RUNS]     (HSCOPE from the preset "linux")
Prints the processor time (user and system) of a run over machines/winxp with profiles/full.ini, of a run of
/bin/true, and their ratio, measured in turn in one go.
"""

import os
import pathlib
import statistics
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent


def processor_milliseconds(command, folder):
    """User and system time of one run, in milliseconds."""
    process = subprocess.Popen(command, cwd=folder, stdin=subprocess.DEVNULL,
                               stdout=subprocess.DEVNULL)
    _, status, usage = os.wait4(process.pid, 0)
    if status != 0:
        sys.exit(f"{command[0]} ended with {status}")
    return (usage.ru_utime + usage.ru_stime) * 1000


def main():
    hscope = str(pathlib.Path(sys.argv[1]).resolve())
    runs = int(sys.argv[2]) if len(sys.argv) > 2 else 50
    with tempfile.TemporaryDirectory() as folder:
        report = [hscope, "--machine", str(ROOT / "machines" / "winxp"),
                  str(ROOT / "profiles" / "full.ini"), folder]
        bare = ["/bin/true"]
        figures = [(processor_milliseconds(report, folder), processor_milliseconds(bare, folder))
                   for _ in range(runs)]
    ours, theirs = (statistics.median(column) for column in zip(*figures))
    print(f"whole report   {ours:8.2f} ms of processor time (median of {runs} runs, "
          f"at most {max(figure[0] for figure in figures):.2f})")
    print(f"/bin/true      {theirs:8.2f} ms")
    print(f"ratio          {ours / max(theirs, 0.001):8.2f}")


if __name__ == "__main__":
    main()
