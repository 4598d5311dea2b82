"""What a list of many devices costs the Linux program.

Usage: bench/device_cost.py HSCOPE [RUNS]     (HSCOPE from the preset "linux")
Describes machines with 1,000, 2,000 and 4,000 ports and runs each with the ports listed and without. Prints
the processor time of the difference and its ratio to half as many devices. Exit code 1 when twice the
devices take more than 2.5 times the time.
"""

import pathlib
import sys
import tempfile

import measure

MOST_RATIO = 2.5
LIST = measure.PROFILE + "[PORT]\r\nPorts=1\r\n"
CONTROL_SET = "HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet"
PORTS = "{4D36E978-E325-11CE-BFC1-08002BE10318}"
DEVICE = f"""[{CONTROL_SET}\\Enum\\BENCH\\PORT\\{{number:04}}]
"ClassGUID"="{PORTS}"
"FriendlyName"="A port of the usual kind"
"Mfg"="Somebody"
"Driver"="{PORTS}\\\\{{number:04}}"
[{CONTROL_SET}\\Enum\\BENCH\\PORT\\{{number:04}}\\Control]
[{CONTROL_SET}\\Enum\\BENCH\\PORT\\{{number:04}}\\Device Parameters]
"PortName"="COM{{number}}"
[{CONTROL_SET}\\Control\\Class\\{PORTS}\\{{number:04}}]
"DriverDate"="7-1-2001"
"""


def describe_machine(folder, count):
    devices = "".join(DEVICE.replace("{number:04}", f"{i:04}").replace("{number}", str(i))
                      for i in range(count))
    measure.describe_machine(
        folder, f'[{CONTROL_SET}\\Control\\Class\\{PORTS}]\n"Class"="Ports"\n{devices}')


def least(hscope, machine, profile, folder, runs):
    # The least is what the work takes; the rest is what else the machine did.
    return min(measure.report_cost(hscope, machine, profile, folder).milliseconds
               for _ in range(runs))


def main():
    hscope = str(pathlib.Path(sys.argv[1]).resolve())
    runs = int(sys.argv[2]) if len(sys.argv) > 2 else 15
    print(f"{'devices':>10} {'list, ms':>10} {'ratio':>7}")
    before = None
    within = True
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        (folder / "list.ini").write_text(LIST, newline="")
        (folder / "none.ini").write_text(measure.PROFILE, newline="")
        for count in (1_000, 2_000, 4_000):
            machine = str(count)
            describe_machine(folder / machine, count)
            time = (least(hscope, machine, "list.ini", folder, runs) -
                    least(hscope, machine, "none.ini", folder, runs))
            print(f"{count:>10} {time:>10.1f} {f'{time / before:.2f}' if before else '-':>7}")
            within &= before is None or time < MOST_RATIO * before
            before = time
    return 0 if within else 1


if __name__ == "__main__":
    sys.exit(main())
