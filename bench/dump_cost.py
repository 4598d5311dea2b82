"""What a dump of many registry values costs the Linux program, in time and in memory.

Usage: bench/dump_cost.py HSCOPE [RUNS]     (HSCOPE from the preset "linux")
Describes machines with 50,000, 100,000 and 200,000 values and runs each with the key dumped and without.
Prints the processor time of the difference, its ratio to half as many values, and how much more memory the
run with the dump takes at its peak. Exit code 1 when a dump of 100,000 values takes a second, when twice the
values take more than 2.5 times the time, or when the memory grows with their number.
"""

import pathlib
import statistics
import sys
import tempfile

import measure

MOST_MILLISECONDS = 1000  # for 100,000 values
MOST_RATIO = 2.5
MOST_KILOBYTES = 512
DUMP = measure.PROFILE + "[REGISTRY KEYS]\r\nHKLM\\Software\\Bench\r\n"
KINDS = ('"some text of a usual size"', "dword:0000002a", "hex:01,02,03,04,05,06,07,08,ff")


def describe_machine(folder, count):
    values = (f'"Value {i}"={KINDS[i % len(KINDS)]}\n' for i in range(count))
    measure.describe_machine(folder, "[HKEY_LOCAL_MACHINE\\Software\\Bench]\n" + "".join(values))


def main():
    hscope = str(pathlib.Path(sys.argv[1]).resolve())
    runs = int(sys.argv[2]) if len(sys.argv) > 2 else 5
    print(f"{'values':>10} {'dump, ms':>10} {'ratio':>7} {'whole run, ms':>14} {'more memory, KB':>16}")
    before = None
    within = True
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        (folder / "dump.ini").write_text(DUMP, newline="")
        (folder / "none.ini").write_text(measure.PROFILE, newline="")
        for count in (50_000, 100_000, 200_000):
            machine = str(count)
            describe_machine(folder / machine, count)
            pairs = [(measure.report_cost(hscope, machine, "dump.ini", folder),
                      measure.report_cost(hscope, machine, "none.ini", folder))
                     for _ in range(runs)]
            # The least is what the work takes; the rest is what else the machine did.
            least = [min(cost.milliseconds for cost in side) for side in zip(*pairs)]
            dump = least[0] - least[1]
            whole = statistics.median(w.milliseconds for w, _ in pairs)
            memory = statistics.median(w.peak_kilobytes - o.peak_kilobytes for w, o in pairs)
            ratio = f"{dump / before:.2f}" if before else "-"
            print(f"{count:>10} {dump:>10.1f} {ratio:>7} {whole:>14.1f} {memory:>16.0f}")
            within &= (dump < MOST_MILLISECONDS * count / 100_000 and memory < MOST_KILOBYTES and
                       (before is None or dump < MOST_RATIO * before))
            before = dump
    return 0 if within else 1


if __name__ == "__main__":
    sys.exit(main())
