"""The Linux program as a user starts it, over the sample machines.

Usage: linux_program_test.py HSCOPE ROOT [--renew]
With --renew the kept reports in tests/reports are written anew; read the difference before you commit it.
"""

import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

HSCOPE = pathlib.Path(sys.argv[1]).resolve()
ROOT = pathlib.Path(sys.argv[2]).resolve()
RENEW = "--renew" in sys.argv
MACHINES = ROOT / "machines"
KEPT = ROOT / "tests" / "reports"


def contents(folder):
    return {path.relative_to(folder): path.read_bytes()
            for path in folder.rglob("*") if path.is_file()}


def machines_of_the_page():
    page = (ROOT / "docs" / "machines.md").read_text()
    return re.findall(r"^\| `(\w+)` \|", page.split("\n\n    hscope")[0], re.MULTILINE)


class LinuxProgramTest(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="hostscope-"))
        self.addCleanup(shutil.rmtree, self.folder)

    def run_hscope(self, *arguments, cwd=None):
        return subprocess.run([HSCOPE, *map(str, arguments)], cwd=cwd or self.folder,
                              stdin=subprocess.DEVNULL, capture_output=True, timeout=60,
                              check=False)

    def report(self, name="hscope.txt"):
        return (self.folder / name).read_bytes()

    def test_whole_reports_of_the_sample_machines(self):
        machines = sorted(path.name for path in MACHINES.iterdir() if path.is_dir())
        self.assertEqual(machines, sorted(machines_of_the_page()))
        for machine in machines:
            with self.subTest(machine):
                before = contents(MACHINES / machine)
                result = self.run_hscope("--machine", MACHINES / machine,
                                         ROOT / "profiles" / "full.ini", self.folder)
                self.assertEqual((result.returncode, result.stderr), (0, b""))
                report = self.report()
                if RENEW:
                    (KEPT / f"{machine}.txt").write_bytes(report)
                kept = (KEPT / f"{machine}.txt").read_bytes()
                self.assertEqual(report.decode("cp1252").split("\r\n"),
                                 kept.decode("cp1252").split("\r\n"))
                self.assertEqual(report, kept)
                self.assertEqual(contents(MACHINES / machine), before, "the machine was changed")
                output = result.stdout.decode("utf-8")
                self.assertIn("Windows version...       Ok", output)
                self.assertIn("Press any key...", output)

    def test_profiles_and_folders_are_linux_paths(self):
        profile = b"[SYSTEM]\r\nTempFolder=1\r\n"
        signed = b"[GENERAL]\r\nSign=Hostscope INI file\r\nReportFileName=signed.txt\r\n"
        for folder in ("sub", "with space", "with:colon", "out"):
            (self.folder / folder).mkdir()
            (self.folder / folder / "my.ini").write_bytes(profile)
        (self.folder / "beside.INI").write_bytes(signed)
        cases = [
            ("relative profile", ["sub/my.ini"], "hscope.txt"),
            ("absolute profile", [self.folder / "sub" / "my.ini"], "hscope.txt"),
            ("a blank in the path", ["with space/my.ini", "with space"], "with space/hscope.txt"),
            ("a colon in the path", ["with:colon/my.ini", self.folder / "with:colon"],
             "with:colon/hscope.txt"),
            ("relative output folder", ["sub/my.ini", "out"], "out/hscope.txt"),
            ("the profile in the current folder", [], "signed.txt"),
        ]
        for what, arguments, report in cases:
            with self.subTest(what):
                result = self.run_hscope("--machine", MACHINES / "winxp", *arguments)
                self.assertEqual((result.returncode, result.stderr), (0, b""))
                self.assertTrue(self.report(report).startswith(b"Report generated on "))
                (self.folder / report).unlink()

    def test_what_stops_a_run_is_said(self):
        (self.folder / "p.ini").write_bytes(b"[SYSTEM]\r\nTempFolder=1\r\n")
        cases = [
            ("no profile", [], "Can not find ini file!"),
            ("a profile that is not there", ["none.ini"], "Can not open ini file!"),
            ("an output folder that is not there", ["p.ini", "none"], "Can not open output file!"),
            ("usage", ["?"], "Usage: hscope [ini] [out]"),
        ]
        for what, arguments, line in cases:
            with self.subTest(what):
                result = self.run_hscope("--machine", MACHINES / "winxp", *arguments)
                self.assertEqual(result.returncode, 0)
                self.assertIn(line, result.stdout.decode("utf-8"))
                self.assertEqual([p.name for p in self.folder.iterdir()], ["p.ini"])

    def test_what_a_debugger_is_told_is_shown_when_asked_for(self):
        (self.folder / "p.ini").write_bytes(b"[DIRECTX]\r\nVersion=1\r\n")
        machine = self.folder / "machine"
        machine.mkdir()
        (machine / "machine.ini").write_bytes(
            b"[Libraries]\nDINPUT.DLL = absent\n[DirectX]\nRelease = 8\n"
            b"[Version]\nMajor = 4\nMinor = 10\nBuild = 0x040A08AE\nPlatform = 1\n")
        for option, said in (([], b""), (["--debug-output"], b"Couldn't LoadLibrary DInput\n")):
            with self.subTest(option):
                result = self.run_hscope("--machine", machine, *option, "p.ini")
                self.assertEqual((result.returncode, result.stderr), (0, said))
                self.assertIn(b"DirectX version            2\r\n", self.report())

    def test_the_message_before_the_run_is_answered_with_its_first_button(self):
        (self.folder / "p.ini").write_bytes(
            b"[GENERAL]\r\nCreateMessageBox=1\r\nMessageButtons=4\r\n"
            b"[MESSAGE]\r\nGr\xfc\xdfe: #RFNAME#\r\n")
        result = self.run_hscope("--machine", MACHINES / "winxp", "p.ini")
        self.assertEqual((result.returncode, result.stderr), (0, b""))
        self.assertIn("Gr\u00fc\u00dfe: hscope.txt", result.stdout.decode("utf-8"))
        self.assertTrue(self.report().startswith(b"Report generated on "))

    def test_what_would_leave_the_machine_is_shown(self):
        (self.folder / "p.ini").write_bytes(
            b"[GENERAL]\r\nReportFileName=r.txt\r\n[POST-RUN]\r\nOpen=1\r\nEmail=1\r\nTo=a@x.example\r\n"
            b"Name=Ann\r\nCC=b@x.example\r\nBCC=c@x.example\r\nSubject=\xfcber\r\n[EMAIL TEXT]\r\nHello,\r\n\r\nAnn.")
        result = self.run_hscope("--machine", MACHINES / "win98se", "p.ini")
        report = self.folder / "r.txt"
        self.assertEqual(result.stdout.decode("utf-8").partition("Asked to open: ")[2].splitlines(), [
            str(report), "Prepared in the mail client (nothing is sent from here):", "  To: Ann <a@x.example>",
            "  Copy to: b@x.example", "  Blind copy to: c@x.example", "  Subject: \u00fcber",
            f"  Attached: {report}, {len(self.report('r.txt'))} bytes", "  Text:", "    Hello,", "", "    Ann."])

    def test_a_machine_that_cannot_be_read_is_refused_before_the_run(self):
        (self.folder / "p.ini").write_bytes(b"[SYSTEM]\r\nTempFolder=1\r\n")
        good = MACHINES / "winxp" / "machine.ini"
        cases = [
            ("no such folder", None, None, "none"),
            ("an unknown key", "machine.ini", b"\n[Version]\nColour = blue\n", "machine.ini:"),
            ("a malformed export", "zz.reg", b"REGEDIT4\r\n\r\n[HKEY_LOCAL_MACHINE\\X]\r\n\"a\"=dw\r\n",
             "zz.reg:4:"),
        ]
        for what, name, extra, said in cases:
            with self.subTest(what):
                machine = self.folder / "machine"
                shutil.rmtree(machine, ignore_errors=True)
                if name is not None:
                    machine.mkdir()
                    shutil.copy(good, machine / "machine.ini")
                    with open(machine / name, "ab") as file:
                        file.write(extra)
                else:
                    machine = self.folder / "none"
                result = self.run_hscope("--machine", machine, "p.ini")
                self.assertEqual(result.returncode, 2)
                self.assertIn(said, result.stderr.decode("utf-8"))
                self.assertFalse((self.folder / "hscope.txt").exists())

    def test_the_program_tells_of_itself(self):
        for option, said in (("--version", r"Hostscope Utility \d+\.\d+\S*\n"),
                             ("--help", r"Usage: hscope --machine DIR [\s\S]*\n")):
            result = self.run_hscope(option)
            self.assertEqual((result.returncode, result.stderr), (0, b""))
            self.assertRegex(result.stdout.decode("utf-8"), f"^{said}$")

    def test_a_checked_profile_is_answered_by_the_exit_code(self):
        head = b"[GENERAL]\r\nSign=Hostscope INI file\r\n"
        (self.folder / "good.ini").write_bytes(head)
        (self.folder / "bad.ini").write_bytes(head + b"[DISPLAY]\r\nMaxResolution\xe9=1\r\n")
        cases = [
            ("good.ini", 0, "good.ini: no findings\n", ""),
            ("bad.ini", 1, 'bad.ini:4: nothing reads the key "MaxResolution\u00e9"', ""),
            ("none.ini", 2, "", "none.ini: there is no such file"),
            (".", 2, "", "is not a file"),
        ]
        for name, code, output, error in cases:
            with self.subTest(name):
                result = self.run_hscope("--check-profile", name)
                self.assertEqual(result.returncode, code)
                self.assertIn(output, result.stdout.decode("utf-8"))
                self.assertIn(error, result.stderr.decode("utf-8"))
                self.assertEqual(result.stderr == b"", code != 2)

    def test_wrong_arguments_are_refused(self):
        for arguments in ([], ["--machine"], ["--colour"], ["--machine", MACHINES / "winxp", "a.ini", "b", "c"],
                          ["--machine", MACHINES / "winxp", 'a"b.ini'], ["--check-profile"],
                          ["--check-profile", "a.ini", "b.ini"]):
            with self.subTest(arguments):
                result = self.run_hscope(*arguments)
                self.assertEqual(result.returncode, 2)
                self.assertNotEqual(result.stderr, b"")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
