#!/usr/bin/env python3
"""The exe passes the gate and builds to the same bytes elsewhere; the gate names each fault.

    gate_test.py WINDOWS_BUILD_FOLDER [unittest options]    (its hscope.exe must be up to date)

Exit code 77 with one line means that this machine has no compiler for Windows.
"""

import pathlib
import re
import shutil
import struct
import subprocess
import sys
import tempfile
import unittest

HERE = pathlib.Path(__file__).resolve().parent
ROOT = HERE.parent.parent
sys.path.insert(0, str(HERE))

import pe_file  # noqa: E402

windows_folder = None  # of the exe that was built for shipping
case_folder = None  # of the programs built from gate_cases


def run(*command, folder=ROOT):
    done = subprocess.run([str(word) for word in command], cwd=folder, stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, encoding="utf-8", errors="replace")
    return done.returncode, done.stdout


def must_run(*command, folder=ROOT):
    status, output = run(*command, folder=folder)
    if status != 0:
        raise RuntimeError(f"{' '.join(map(str, command))}: {status}\n{output}")


def gate(*arguments):
    status, output = run(sys.executable, HERE / "gate.py", *arguments)
    return status, output.splitlines()


def program_and_symbols(folder, name):
    return folder / f"{name}.exe", "--symbols", folder / f"{name}_symbols.exe"


class Table(unittest.TestCase):
    def check_findings(self, arguments, expected):
        """Every finding matches one pattern, and every pattern one finding."""
        status, lines = gate(*arguments)
        unmet = list(expected)
        surplus = []
        for line in lines:
            match = next((pattern for pattern in unmet if re.search(pattern, line)), None)
            if match is None:
                surplus.append(line)
            else:
                unmet.remove(match)
        self.assertEqual((surplus, unmet), ([], []), "findings not expected, expected not found")
        self.assertEqual(status, 1 if expected else 0)


class RealExe(Table):
    def test_passes(self):
        self.check_findings(program_and_symbols(windows_folder, "hscope"), [])

    def test_same_bytes_from_another_folder(self):
        with tempfile.TemporaryDirectory() as folder:
            copy = pathlib.Path(folder) / "elsewhere"
            shutil.copytree(ROOT, copy, ignore=shutil.ignore_patterns("build", "out", ".git"))
            must_run("cmake", "--preset", "windows", folder=copy)
            must_run("cmake", "--build", "--preset", "windows", "--target", "hscope", "-j", "2",
                     folder=copy)
            self.check_findings(
                [*program_and_symbols(windows_folder, "hscope"), "--same",
                 copy / "build/windows/hscope.exe"], [])


class PlugIns(Table):
    """The sample plug-in, and others with one fault each: a source, options of the kit's build."""

    FUNCTION = "WriteConfigurationFiles"
    SAMPLE, FAULTS = ROOT / "sdk/sample.c", HERE / "gate_cases/plugin.c"
    CASES = {
        "good": (FAULTS, [], []),
        "dynamic_base": (FAULTS, ["-Wl,--dynamicbase"], ["DllCharacteristics is 0x40"]),
        "young_subsystem": (FAULTS, ["-Wl,--subsystem,windows:5.1"],
                            ["MajorSubsystem is 0x5", "MinorSubsystem is 0x1"]),
        "other_name": (FAULTS, ["-DWriteConfigurationFiles=WriteOther"],
                       ["exports: WriteOther, not WriteConfigurationFiles alone"]),
        "two_names": (FAULTS, ["-DSECOND_EXPORT"],
                      ["exports: Second, WriteConfigurationFiles, not"]),
        "young_import": (FAULTS, ["-DYOUNG_IMPORT"], ["GetDiskFreeSpaceExA is not on the list"]),
        "young_instruction": (FAULTS, ["-DYOUNG_INSTRUCTION"], ["bswap at"]),
        "thread_storage": (FAULTS, ["-DTHREAD_STORAGE"], ["has thread-local storage"]),
        "time_stamp": (SAMPLE, ["-Wl,--insert-timestamp"], ["TimeDateStamp is 0x"]),
    }

    @staticmethod
    def build(source, output, options=(), kit=ROOT / "sdk"):
        must_run(kit / "build.sh", source, output, *options)
        return output

    def test_the_sample_passes_and_is_the_same_elsewhere(self):
        sample = windows_folder / "sample.dll"
        with tempfile.TemporaryDirectory() as folder:
            kit = pathlib.Path(folder) / "kit"
            shutil.copytree(ROOT / "sdk", kit)
            other = self.build(kit / "sample.c", kit / "sample.dll", kit=kit)
            self.check_findings([sample, "--plugin", self.FUNCTION, "--same", other], [])
        self.assertEqual({i.library for i in pe_file.PeFile(sample.read_bytes()).imports()},
                         {"KERNEL32.dll"})

    def test_each_fault_is_named(self):
        for name, (source, options, expected) in self.CASES.items():
            with self.subTest(name):
                dll = self.build(source, case_folder / f"{name}.dll", options)
                self.check_findings([dll, "--plugin", self.FUNCTION], expected)

    def test_without_relocations(self):
        data = bytearray((windows_folder / "sample.dll").read_bytes())
        header = struct.unpack_from("<I", data, 0x3C)[0] + 24
        data[header - 2] |= 1
        directory = header + 96 + 8 * pe_file.DIRECTORY_RELOCATION
        data[directory:directory + 8] = bytes(8)
        fixed = case_folder / "fixed.dll"
        fixed.write_bytes(data)
        self.check_findings([fixed, "--plugin", self.FUNCTION],
                            ["Characteristics .* movable library", "has no relocations"])

    def test_a_program_is_no_plug_in(self):
        status, lines = gate(case_folder / "good.exe", "--plugin", self.FUNCTION)
        self.assertEqual(status, 1)
        for expected in ("movable library", "has no relocations", "exports: nothing, not",
                         "resources: a plug-in has none"):
            self.assertRegex("\n".join(lines), expected)


class BuiltFaults(Table):
    FIXED_BASE = "header: Characteristics .* fixed base"
    CASES = {
        "good": [],
        "dynamic_base": ["DllCharacteristics is 0x40", FIXED_BASE, "has relocations",
                         r"\.reloc is there"],
        "nx_compatible": ["DllCharacteristics is 0x100"],
        "large_addresses": [FIXED_BASE],
        "other_base": ["ImageBase is 0x10000000"],
        "console": ["header: Subsystem is 0x3"],
        "young_subsystem": ["MajorSubsystem is 0x5", "MinorSubsystem is 0x1"],
        "young_system": ["MajorOs is 0x5", "MinorOs is 0x1"],
        "large_stack": ["StackReserve is 0x200000"],
        "time_stamp": ["TimeDateStamp is 0x"],
        # The name of the file is among its exports, and differs.
        "exported": ["has exports", FIXED_BASE, "has relocations", r"\.reloc is there",
                     "symbols: .* another program"],
        "young_imports": ["GetDiskFreeSpaceExA is not on the list", "RegisterClassExA is not",
                          "GetClassInfoExA is not", "LoadImageA is not"],
        "import_by_number": ["import: COMCTL32.DLL by the number 328"],
        "young_instructions": ["cmove at .* in Fault", "bswap at", "cmpxchg at", "fcomi at"],
        "port_transfer": ["in at .* in Fault: reaches past", "callf at", "movcr at"],
        "processor_question": ["cpuid at .* in hostscope::AskProcessor"],
        "static_constructor": ["static constructor or destructor __GLOBAL__sub_I",
                               "does not end with empty tables"],
        "thread_storage": ["has thread-local storage"],
        "extended_dialog": [r"dialog 101: an extended template \(DIALOGEX\)"],
    }

    def test_each_is_named(self):
        for name, expected in self.CASES.items():
            with self.subTest(name):
                self.check_findings(program_and_symbols(case_folder, name), expected)

    def test_allowances_hold_for_one_function_and_its_instructions(self):
        for allowance, expected in (
                ("hostscope::AskProcessor\tcpuid rdtsc", []),
                ("hostscope::AskProcessor\trdtsc", ["cpuid at"]),
                ("Fault\tcpuid", ["cpuid at"])):
            with self.subTest(allowance), tempfile.NamedTemporaryFile("w") as listed:
                listed.write(f"# function\tmnemonics\n{allowance}\n")
                listed.flush()
                self.check_findings(
                    [*program_and_symbols(case_folder, "processor_question"), "--instructions",
                     listed.name], expected)

    def test_compared_with_other_files(self):
        good = case_folder / "good.exe"
        for arguments, expected in (
                (["--same", good], []),
                (["--same", case_folder / "large_stack.exe"], ["same: differs from offset 0x"]),
                (["--symbols", case_folder / "young_imports_symbols.exe"], ["another program"]),
                (["--symbols", good], ["symbols: the file has none"]),
                (["--max-size", str(good.stat().st_size)], []),
                (["--max-size", str(good.stat().st_size - 1)], ["size: "])):
            with self.subTest(arguments):
                self.check_findings([good, *arguments], expected)

    def test_refuses_lists_it_cannot_read(self):
        with tempfile.NamedTemporaryFile("w") as listed:
            listed.write("kernel32\tExitProcess\n")
            listed.flush()
            status, lines = gate(case_folder / "good.exe", "--imports", listed.name)
        self.assertEqual(status, 2)
        self.assertIn(":1: not 3 columns", lines[0])


class PatchedFaults(Table):
    """Faults that no tool at hand produces: bytes of the good program are replaced."""

    def setUp(self):
        self.good = (case_folder / "good.exe").read_bytes()
        pe = pe_file.PeFile(self.good)
        self.resources = {(r.kind, r.name): self.good.index(r.data) for r in pe.resources()}
        self.header = struct.unpack_from("<I", self.good, 0x3C)[0] + 24

    def check_patch(self, offset, replacement, expected):
        with tempfile.NamedTemporaryFile(suffix=".exe") as patched:
            patched.write(self.good[:offset] + replacement + self.good[offset + len(replacement):])
            patched.flush()
            self.check_findings([patched.name], expected)

    def check_text_patch(self, old, new, expected):
        old, new = (text.encode("utf-16-le") for text in (old, new))
        self.assertEqual((self.good.count(old), len(old)), (1, len(new)), old)
        self.check_patch(self.good.index(old), new, expected)

    def test_each_is_named(self):
        dialog, bitmap, icon_group = (5, 101), (2, 101), (14, 101)
        for resource, place, replacement, expected in (
                (dialog, 0, "4404ca80", ["dialog 101: style is 0x80ca0444"]),
                (dialog, 14, "a000", [r"dialog 101: place is \(0, 0, 160, 164\)"]),
                (dialog, 8, "0100", ["dialog 101: has no item 1002"]),
                (bitmap, 4, "20000000", [r"bitmap 101: .* \(40, 32, 64, 1, 8, 0\)"]),
                (icon_group, 4, "0100", ["icon 101: width, height, colours are"]),
                (icon_group, 12, "0800", ["icon 101: 32 x 32 says 8 bits"]),
                ((3, 1), 14, "0800", ["icon 101, 32 x 32: header"]),
                ((1, 1), 0, "2000", ["hand cursor: the hot spot 32, 0"]),
                ((16, 1), 40, "ffffffff", ["version 1: a version record without its signature"])):
            with self.subTest((resource, place, replacement)):
                self.check_patch(self.resources[resource] + place, bytes.fromhex(replacement),
                                 expected)

    def test_each_text_is_named(self):
        for old, new, expected in (
                ("MS Sans Serif", "MS Shell Dlg\0", ["dialog 101: font is"]),
                ("&Send e-mail", "&Mail a note", ["dialog 101: item 1002 is"]),
                ("v.0.93b", "v.0.94b", ["strings: 3 is"]),
                ("hscope.exe", "hscope.com", ["version: OriginalFilename is hscope.com"])):
            with self.subTest(old):
                self.check_text_patch(old, new, expected)

    def test_each_header_field_is_named(self):
        directories = 96
        for place, replacement, expected in (
                (32, "00200000", ["SectionAlignment is 0x2000"]),
                (directories + 8 * 13, "0010000010000000", ["has delayed imports"]),
                (directories + 8 * 2, "0000000000000000",
                 ["no (icon|bitmap|cursor|dialog|strings|version)"] * 9),
                (0, "0b02", ["file: no 32-bit PE file"])):
            with self.subTest((place, replacement)):
                self.check_patch(self.header + place, bytes.fromhex(replacement), expected)

    def test_broken_files_are_findings(self):
        for length in (0, 1, 0x3C, 0x100, 0x180, 0x400, 0x1000, len(self.good) // 2):
            with self.subTest(length), tempfile.NamedTemporaryFile(suffix=".exe") as broken:
                broken.write(self.good[:length])
                broken.flush()
                status, lines = gate(broken.name)
                self.assertEqual(status, 1)
                self.assertRegex(lines[-1], "^[a-z]+[^:]*: ")


def main():
    global windows_folder, case_folder
    if len(sys.argv) < 2:
        print(__doc__, file=sys.stderr)
        return 2
    if run(ROOT / "tools/setup.sh", "has", "cross")[0] != 0:
        print("skipped: the compiler for Windows is not available on this machine")
        return 77
    windows_folder = pathlib.Path(sys.argv[1]).resolve()
    with tempfile.TemporaryDirectory() as folder:
        case_folder = pathlib.Path(folder)
        must_run("cmake", "-G", "Ninja", "-S", HERE / "gate_cases", "-B", case_folder,
                 f"-DCMAKE_TOOLCHAIN_FILE={ROOT / 'cmake/mingw-i686.cmake'}",
                 "-DCMAKE_BUILD_TYPE=None")
        must_run("cmake", "--build", case_folder, "-j", "2")
        program = unittest.main(argv=[sys.argv[0], *sys.argv[2:]], exit=False)
    return 0 if program.result.wasSuccessful() else 1


if __name__ == "__main__":
    sys.exit(main())
