"""What runs of the Linux program cost in processor time and memory.

Usage: bench/linux_costs.py HSCOPE [RUNS]     (HSCOPE from the preset "linux")
Prints
  - the time of a whole report over machines/winxp, and its ratio to that of /bin/true,
  - for a key with 50,000, 100,000 and 200,000 values and for 1,000, 2,000 and 4,000 ports: what their dump
    or list adds to a run, its ratio to half as many, and how much more memory the run takes at its peak.
Exit code 1 when twice as many take more than 2.5 times the time, when a dump of 100,000 values takes a
second, or when its memory grows with their number.
"""

import collections
import os
import pathlib
import statistics
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
MACHINE = "[Version]\nMajor = 5\nMinor = 0\nBuild = 2195\nPlatform = 2\n"
PROFILE = "[GENERAL]\r\nSign=Hostscope INI file\r\nReportFileName=report.txt\r\n"
MOST_RATIO = 2.5
MOST_MILLISECONDS = 0.01  # for a value
MOST_KILOBYTES = 512

Cost = collections.namedtuple("Cost", "milliseconds peak_kilobytes")
Scale = collections.namedtuple("Scale", "what section counts keys")

KINDS = ('"some text of a usual size"', "dword:0000002a", "hex:01,02,03,04,05,06,07,08,ff")
SYSTEM = "HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet"
PORTS = "{4D36E978-E325-11CE-BFC1-08002BE10318}"


def values(count):
    return "[HKEY_LOCAL_MACHINE\\Software\\Bench]\n" + "".join(
        f'"Value {i}"={KINDS[i % len(KINDS)]}\n' for i in range(count))


def ports(count):
    return f'[{SYSTEM}\\Control\\Class\\{PORTS}]\n"Class"="Ports"\n' + "".join(
        f'[{SYSTEM}\\Enum\\BENCH\\PORT\\{i:04}]\n"ClassGUID"="{PORTS}"\n"Mfg"="Somebody"\n'
        f'"FriendlyName"="A port of the usual kind"\n"Driver"="{PORTS}\\\\{i:04}"\n'
        f'[{SYSTEM}\\Enum\\BENCH\\PORT\\{i:04}\\Control]\n'
        f'[{SYSTEM}\\Enum\\BENCH\\PORT\\{i:04}\\Device Parameters]\n"PortName"="COM{i}"\n'
        f'[{SYSTEM}\\Control\\Class\\{PORTS}\\{i:04}]\n"DriverDate"="7-1-2001"\n'
        for i in range(count))


SCALES = (Scale("values", "[REGISTRY KEYS]\r\nHKLM\\Software\\Bench\r\n", (50_000, 100_000, 200_000), values),
          Scale("ports", "[PORT]\r\nPorts=1\r\n", (1_000, 2_000, 4_000), ports))


def cost(command, folder):
    """User and system time and the largest resident memory of one run in the folder."""
    process = subprocess.Popen(command, cwd=folder, stdin=subprocess.DEVNULL,
                               stdout=subprocess.DEVNULL)
    _, status, usage = os.wait4(process.pid, 0)
    if status != 0:
        sys.exit(f"{command[0]} ended with {status}")
    return Cost((usage.ru_utime + usage.ru_stime) * 1000, usage.ru_maxrss)


def added(hscope, machine, section, folder, runs):
    """What the section adds: the least of the times, the rest is what else the machine did."""
    costs = []
    for text in PROFILE + section, PROFILE:
        (folder / "bench.ini").write_text(text, newline="")
        costs.append([cost([hscope, "--machine", machine, folder / "bench.ini", folder], folder)
                      for _ in range(runs)])
    least = [min(run.milliseconds for run in side) for side in costs]
    peaks = [statistics.median(run.peak_kilobytes for run in side) for side in costs]
    return Cost(least[0] - least[1], peaks[0] - peaks[1])


def whole_report(hscope, folder, runs):
    report = [hscope, "--machine", ROOT / "machines/winxp", ROOT / "profiles/full.ini", folder]
    ours, bare = (statistics.median(cost(command, folder).milliseconds for _ in range(runs))
                  for command in (report, ["/bin/true"]))
    print(f"whole report {ours:.2f} ms, /bin/true {bare:.2f} ms, ratio {ours / max(bare, 0.001):.2f}")


def main():
    hscope = pathlib.Path(sys.argv[1]).resolve()
    runs = int(sys.argv[2]) if len(sys.argv) > 2 else 15
    within = True
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        whole_report(hscope, folder, runs)
        print(f"{'':>17} {'added, ms':>10} {'ratio':>7} {'more memory, KB':>16}")
        for scale in SCALES:
            before = None
            for count in scale.counts:
                machine = folder / str(count)
                machine.mkdir()
                (machine / "machine.ini").write_text(MACHINE)
                (machine / "keys.reg").write_text("REGEDIT4\n\n" + scale.keys(count))
                time, memory = added(hscope, machine, scale.section, folder, runs)
                ratio = f"{time / before:.2f}" if before else "-"
                print(f"{count:>10} {scale.what:>6} {time:>10.1f} {ratio:>7} {memory:>16.0f}")
                within &= before is None or time < MOST_RATIO * before
                if scale.what == "values":
                    within &= time < MOST_MILLISECONDS * count and memory < MOST_KILOBYTES
                before = time
    return 0 if within else 1


if __name__ == "__main__":
    sys.exit(main())
