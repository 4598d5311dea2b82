#!/usr/bin/env python3
"""The exe's own object code reads IDE drives on an emulated PC, through a call gate alone.

    ports_test.py WINDOWS_BUILD_FOLDER [unittest options]    (its ports_kernel.bin must be up to date)

Exit code 77 with one line means that this machine has no emulator or no compiler for Windows.
"""

import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
EMULATOR = "qemu-system-i386"
SECONDS = 60
SUCCESS = 33  # the emulator's exit code when the kernel ends well

kernel = None
image_folder = None

CONTROLLERS = "primary", "secondary", "tertiary", "quaternary"
BUSES = "ide.0", "ide.1", "third.0", "fourth.0"
# The channels that the chipset does not have are on cards.
CARDS = {2: "isa-ide,id=third,iobase=0x1e8,iobase2=0x3ee,irq=11",
         3: "isa-ide,id=fourth,iobase=0x168,iobase2=0x36e,irq=12"}


def place(drive):
    return f"bus={BUSES[drive // 2]},unit={drive % 2}"


class Disk:
    """What the emulator is told of a disk, and what the program then says of it."""

    def __init__(self, model, serial, revision, cylinders, heads, sectors):
        self.texts = model, serial, revision
        self.geometry = cylinders, heads, sectors

    def options(self, drive, image):
        image.write_bytes(b"")
        cylinders, heads, sectors = self.geometry
        with image.open("r+b") as file:
            file.truncate(cylinders * heads * sectors * 512)
        values = zip(("model", "serial", "ver", "cyls", "heads", "secs"),
                     self.texts + self.geometry)
        return ["-drive", f"if=none,id=d{drive},format=raw,file={image}", "-device",
                ",".join([f"ide-hd,drive=d{drive}", place(drive),
                          *(f"{name}={value}" for name, value in values)])]

    def line(self, drive):
        where = f"{CONTROLLERS[drive // 2]} controller", ("master drive", "slave drive")[drive % 2]
        fields = *where, *(text.strip() for text in self.texts), "fixed", *map(str, self.geometry)
        return "|".join(fields)


class CdDrive:
    @staticmethod
    def options(drive, _):
        return ["-device", "ide-cd," + place(drive)]

    @staticmethod
    def line(_):
        return "none"


def run(drives, machine="pc", processor="486", words=""):
    """The lines that the program prints, with what stands behind the first ': ' of each."""
    command = [EMULATOR, "-machine", machine, "-cpu", processor, "-accel", "tcg", "-m", "16",
               "-nodefaults", "-display", "none", "-no-reboot", "-kernel", kernel, "-append", words,
               "-debugcon", "stdio", "-device", "isa-debug-exit,iobase=0xf4,iosize=4"]
    for channel in sorted({drive // 2 for drive in drives} & CARDS.keys()):
        command += ["-device", CARDS[channel]]
    for drive, device in drives.items():
        command += device.options(drive, image_folder / f"{drive}.img")
    done = subprocess.run(command, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, timeout=SECONDS, encoding="latin-1")
    if done.returncode != SUCCESS:
        raise AssertionError(f"{command}: {done.returncode}\n{done.stdout}")
    return dict(line.split(": ", 1) for line in done.stdout.splitlines())


REACHED = "byte yes, word yes, write yes; table written yes, as before yes"
UNTOUCHED = "byte no, word no, write no; table written no, as before yes"
TABLES = {
    "plain read": "fault 13",
    "plain write": "fault 13",
    "slot free": REACHED,
    "slot taken": "byte yes, word yes, write yes; table written yes, as before no",
    "slot free again": REACHED,
    "robbery": "intruded yes, byte no, well yes, as before yes",
    "after the end": UNTOUCHED,
    "code elsewhere": REACHED,
    "nt": UNTOUCHED,
    "no free slot": UNTOUCHED,
    "no flat code": UNTOUCHED,
    "read-only table": UNTOUCHED,
    "kernel's own table": UNTOUCHED,
    "table in the program's memory": UNTOUCHED,
    "half a table": UNTOUCHED,
    "invented address": UNTOUCHED,
    "address of other memory": UNTOUCHED,
    # Nothing tells it from the table but a gate in it.
    "address of a copy": "byte no, word no, write no; table written yes, as before yes",
}
ALWAYS = {"after the drives": REACHED, "timer": "yes"}


class Ports(unittest.TestCase):
    maxDiff = None

    def check(self, drives, found):
        expected = {f"drive {n}": drives[n].line(n) if n in drives else "none" for n in range(8)}
        self.assertEqual({name: found[name] for name in expected}, expected)
        self.assertEqual({name: found[name] for name in ALWAYS}, ALWAYS)

    def test_every_table(self):
        drives = {0: Disk("MAXTOR 6L040J2", "662219158403", "A93.0500", 39, 16, 63),
                  1: Disk("  padded  model  ", " ", "", 306, 4, 17),
                  2: CdDrive(),
                  7: Disk("M" * 40, "S" * 20, "REVISION", 77, 7, 7)}
        found = run(drives, processor="max", words="tables")
        self.check(drives, found)
        self.assertEqual({name: found[name] for name in TABLES}, TABLES)
        # Of what another does in the middle of a transfer some comes too early or too late to stop it.
        for what in "intrusions", "second claimants", "ends":
            done = re.fullmatch(r"(\d+), transfers refused (\d+), well yes", found[what])
            self.assertIsNotNone(done, found[what])
            self.assertTrue(0 < int(done[2]) < int(done[1]), found[what])

    def test_nobody_answers(self):
        for machine in "pc", "q35":
            with self.subTest(machine):
                self.check({}, run({}, machine))


def main():
    global kernel, image_folder
    for group, what in ("emulator", "an emulator"), ("cross", "the compiler for Windows"):
        if subprocess.run([ROOT / "tools/setup.sh", "has", group]).returncode != 0:
            print(f"skipped: {what} is not available on this machine")
            return 77
    kernel = pathlib.Path(sys.argv[1]).resolve() / "ports_kernel.bin"
    with tempfile.TemporaryDirectory() as folder:
        image_folder = pathlib.Path(folder)
        program = unittest.main(argv=[sys.argv[0], *sys.argv[2:]], exit=False)
    return 0 if program.result.wasSuccessful() else 1


if __name__ == "__main__":
    sys.exit(main())
