#!/usr/bin/env python3
"""./package makes what was promised, the same bytes everywhere, and people can work with it.

    package_test.py [unittest options]

`Package` and `Pages` look at the package and at how it is made; `UnderWine` starts its program with
each of its profiles. Exit code 77 with one line means that this machine lacks the compiler for
Windows or pandoc, or Wine when only UnderWine is asked for.
"""

import hashlib
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest
import zipfile

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
sys.path.insert(0, str(ROOT / "tools"))

import make_package  # noqa: E402
import page_text  # noqa: E402

PAGES = ["docs/profile.md", "docs/recipes.md", "docs/support.md"]
# What does not get its name in the package by the rule.
RENAMED = {"docs/using.md": "README.TXT", "docs/behaviour.md": "DOCS/CHOICES.TXT",
           "LICENSE": "LICENSE.TXT"}

scratch = None  # a folder that goes with the tests
package = None  # the zip file that ./package has made there


def run(*command, code=0, **options):
    done = subprocess.run([str(word) for word in command], stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, encoding="utf-8", errors="replace",
                          **{"cwd": ROOT, **options})
    if done.returncode != code:
        raise AssertionError(f"{command}: {done.returncode} instead of {code}\n{done.stdout}")
    return done.stdout


def files_of(path):
    with zipfile.ZipFile(path) as archive:
        return {name: archive.read(name) for name in archive.namelist()}


def unpack(name):
    folder = scratch / name
    with zipfile.ZipFile(package) as archive:
        archive.extractall(folder)
    return folder


def copy_of_sources(name):
    """Another folder with all that a package is made from, the build apart."""
    folder = scratch / name
    shutil.copytree(ROOT, folder, ignore=shutil.ignore_patterns(
        "build", "out", ".git", "__pycache__", "machines", "reports", "corpus"))
    (folder / "machines").mkdir()
    return folder


class Package(unittest.TestCase):
    def setUp(self):
        self.files = files_of(package)

    def test_holds_what_was_promised(self):
        sources = [path.relative_to(ROOT).as_posix() for folder in ("sdk", "profiles")
                   for path in (ROOT / folder).iterdir()] + PAGES
        expected = {source.upper().replace(".MD", ".TXT") for source in sources}
        self.assertEqual(set(self.files), {*expected, *RENAMED.values(), "HSCOPE.EXE",
                                           "SDK/SAMPLE.DLL", "SHA256.TXT"})
        for name in self.files:
            self.assertRegex(name, r"^([A-Z0-9]{1,8}/)?[A-Z0-9]{1,8}\.[A-Z0-9]{1,3}$")
        for name in ("HSCOPE.EXE", "SDK/SAMPLE.DLL"):
            built = ROOT / "build/windows" / pathlib.PurePath(name).name.lower()
            self.assertEqual(self.files[name], built.read_bytes())

    def test_texts_read_well_in_any_editor(self):
        for name, data in self.files.items():
            if name.endswith((".EXE", ".DLL")):
                continue
            with self.subTest(name):
                end = b"\n" if name.endswith(".SH") else b"\r\n"
                lines = data.split(end)
                self.assertEqual(lines.pop(), b"")
                self.assertNotRegex(b"".join(lines), rb"[^\t\x20-\x7e]")
                if name.endswith(".TXT") and name != "SHA256.TXT":
                    self.assertLessEqual(max(map(len, lines)), 79)
                    self.assertNotRegex(b"\n".join(lines), rb"`|\]\(|\*\*")

    def test_readme_tells_of_every_file(self):
        readme = self.files["README.TXT"].decode().upper()
        number = package.stem.removeprefix("hscope-").upper()
        self.assertTrue(readme.startswith(f"HOSTSCOPE {number}\r\n"), readme[:40])
        untold = {name for name in self.files if name.rpartition("/")[2] not in readme}
        self.assertLessEqual(untold, {"README.TXT"})

    def test_sums(self):
        folder = unpack("sums")
        checked = run("sha256sum", "--check", "--strict", "SHA256.TXT", cwd=folder)
        self.assertEqual(sorted(re.findall(r"^(\S+): OK$", checked, re.M)),
                         sorted(set(self.files) - {"SHA256.TXT"}))
        run("sha256sum", "--check", "--strict", package.name + ".sha256", cwd=package.parent)

    def test_entries_tell_nothing_of_the_machine(self):
        with zipfile.ZipFile(package) as archive:
            entries = archive.infolist()
        self.assertEqual([entry.filename for entry in entries], sorted(self.files))
        for entry in entries:
            self.assertEqual((entry.create_system, entry.extra, entry.comment, entry.flag_bits,
                              entry.external_attr, entry.date_time),
                             (0, b"", b"", 0, 0x20, entries[0].date_time), entry.filename)

    def test_same_bytes_everywhere(self):
        sources = copy_of_sources("elsewhere")
        for profile in (sources / "profiles").iterdir():
            profile.write_bytes(profile.read_bytes().replace(b"\r\n", b"\n"))
        for path in sources.rglob("*"):
            os.utime(path, (10**9, 10**9))
        build = scratch / "another build"
        build.mkdir()
        for name in ("hscope.exe", "sample.dll"):
            shutil.copy(ROOT / "build/windows" / name, build)
        made = scratch / "made elsewhere"
        made.mkdir()
        environment = {"PATH": os.environ["PATH"], "HOME": "/nonexistent", "TZ": "Asia/Tokyo",
                       "LC_ALL": "C", "PYTHONHASHSEED": "7"}
        run(sys.executable, sources / "tools/make_package.py", sources, build, made,
            cwd="/", env=environment, preexec_fn=lambda: os.umask(0o077))
        self.assertEqual((made / package.name).read_bytes(), package.read_bytes())

    def test_refusals(self):
        """Each fault of the sources ends the packaging with its reason, and no package."""
        changelog = (ROOT / "CHANGELOG.md").read_text()
        bad_date = re.sub(r"(?m)^(## [^,]*).*", r"\1, 31 June 2026", changelog)
        faults = [
            ("docs/recipes.md", None, r"a link to recipes\.md, which is not there"),
            ("profiles/support.ini", "a\n; Gr\u00fc\u00dfe\n", r"ini:2: not a line of ASCII"),
            ("docs/support.md", "> quoted\n", r"docs/support\.md: holds a BlockQuote"),
            ("platform/resources.h", "\n", r"names no ProductVersion"),
            ("CHANGELOG.md", "# Changelog\n", r'no heading "## [\w.]+, \.\.\."'),
            ("CHANGELOG.md", bad_date, r'"31 June 2026" is no date'),
        ]
        sources = copy_of_sources("faulty")
        made = scratch / "made of faults"
        made.mkdir()
        for name, text, reason in faults:
            with self.subTest(reason):
                kept = (sources / name).read_bytes()
                (sources / name).unlink() if text is None else (sources / name).write_text(text)
                said = run(sys.executable, ROOT / "tools/make_package.py", sources,
                           ROOT / "build/windows", made, code=1)
                (sources / name).write_bytes(kept)
                self.assertRegex(said, f"^package: .*{reason}.*\n$")
                self.assertEqual(list(made.iterdir()), [])

    def test_date_is_that_of_the_release(self):
        for heading, date in (("1.0, 7 March 2027", "2027-03-07"),
                              ("1.0, in the making", "1980-01-01")):
            (scratch / "CHANGELOG.md").write_text(f"## 1.1, 1 May 2028\n\n## {heading}\n")
            self.assertEqual(str(make_package.release_date(scratch, "1.0")), date)

    def test_kit_builds_its_sample(self):
        """As its page says: all names in small letters, then the script of the kit."""
        kit = scratch / "kit"
        kit.mkdir()
        for name, data in self.files.items():
            if name.startswith("SDK/"):
                (kit / name[4:].lower()).write_bytes(data)
        run("sh", "build.sh", "sample.c", "own.dll", cwd=kit)
        self.assertEqual((kit / "own.dll").stat().st_size, (kit / "sample.dll").stat().st_size)
        # A name in capitals does not make it C++.
        (kit / "sample.c").rename(kit / "SAMPLE.C")
        run("sh", "build.sh", "SAMPLE.C", "own.dll", cwd=kit)

    def test_command_line(self):
        self.assertIn("Usage: ./package [folder]", run(ROOT / "package", "--help"))
        for arguments in (["--nosuch"], ["a", "b"], ["/proc/nosuch"]):
            self.assertRegex(run(ROOT / "package", *arguments, code=2), "^package: .*\n$")


class Pages(unittest.TestCase):
    """What becomes of a page; `page` is docs/page.md, DOCS/PAGE.TXT in the package."""

    NAMES = {"docs/page.md": "DOCS/PAGE.TXT", "docs/other.md": "DOCS/OTHER.TXT",
             "top.md": "TOP.TXT", "sdk/kit.h": "SDK/KIT.H", "sdk/": "SDK"}

    def setUp(self):
        self.root = pathlib.Path(tempfile.mkdtemp(dir=scratch))
        for name in (*self.NAMES, "docs/inside.md"):
            path = self.root / name
            if name.endswith("/"):
                path.mkdir(exist_ok=True)
            else:
                path.parent.mkdir(exist_ok=True)
                path.write_text("")

    def text(self, markdown):
        (self.root / "docs/page.md").write_text(markdown)
        return page_text.Page(self.root, "docs/page.md", self.NAMES).text()

    def test_becomes_a_text(self):
        rule = "  " + "-" * 72 + "\n"
        cases = [
            ("# One\n\n## Two\n\n### `[Three]`\n", "One\n===\n\nTwo\n---\n\n[Three]\n.......\n"),
            ("**Bold** and *stressed* and\na_b and <http://a.test/> and [b](http://b.test/).\n",
             "Bold and stressed and a_b and http://a.test/ and b (http://b.test/).\n"),
            # A link names the file in the package, once.
            ("[docs/other.md](other.md), [other.md](other.md#a), [more](other.md), [here](#one)\n",
             "OTHER.TXT, OTHER.TXT, more (OTHER.TXT), here\n"),
            ("[../top.md](../top.md) [kit.h](../sdk/kit.h) [the kit](../sdk/) `sdk/kit.h`\n",
             "TOP.TXT SDK\\KIT.H the kit (SDK) SDK\\KIT.H\n"),
            ("[inside](inside.md), [docs/inside.md](inside.md)\n",
             "inside (docs/inside.md in the sources), docs/inside.md in the sources\n"),
            # Code is quoted only where its ends could not be told.
            ("`Key`, `;`, `a b`, `[A B]`, `x \"y\"`, `\\`, `<A B>`\n",
             "Key, \";\", \"a b\", [A B], x \"y\", \"\\\", <A B>\n"),
            ("![The window](w.png)\n\n- a\n- b\n\n      code *as* `is`\n",
             "-   a\n\n-   b\n\n        code *as* `is`\n"),
            ("| A | B |\n|---|---|\n| `x y` | b\\|c |\n",
             "  A     B\n  ----- -----\n  x y   b|c\n"),
            (f"| Key | What |\n|---|---|\n| `Long` | {'word ' * 15} |\n| B | |\n",
             f"{rule}  Key    What\n  ------ {'-' * 65}\n  Long   {'word ' * 12}word\n"
             f"         word word\n\n  B\n{rule}"),
        ]
        for markdown, expected in cases:
            with self.subTest(markdown):
                self.assertEqual(self.text(markdown), expected)

    def test_is_refused(self):
        wide = "x" * 40
        cases = [
            ("> q\n", "BlockQuote"), ("a<b>c</b>\n", "RawInline"), ("<p>x</p>\n", "RawBlock"),
            ("***\n", "HorizontalRule"), ("a ~~b~~\n", "Strikeout"), ("a ![p](p.png)\n", "Image"),
            ("a  \nb\n", "LineBreak"), ("#### Deep\n", "heading"), ("- [ ] task\n", "ASCII"),
            ("a `b\n", "backtick"), ("| A |\n|---|\n| `a|b` |\n", "backtick"),
            ("[x](nosuch.md)\n", "not there"), ("[x](../../x)\n", "not there"),
            ("see docs/other.md\n", "without a link"), ("a &nbsp; b \u00e9\n", "ASCII"),
            ("y" * 80 + "\n", "broken"),
            (f"| A | B |\n|---|---|\n| {wide} | {wide} |\n", "side by side"),
        ]
        for markdown, reason in cases:
            with self.subTest(markdown), self.assertRaisesRegex(
                    page_text.PageError, rf"^docs/page\.md: .*{reason}"):
                self.text(markdown)


class UnderWine(unittest.TestCase):
    def test_profiles_give_their_reports(self):
        folder = unpack("as a user has it")
        shutil.copy(ROOT / "build/windows/mail_library.dll", folder)
        said = run(ROOT / "tools/under_wine.sh", ROOT / "build/windows/exe_tests.exe",
                   "--gtest_filter=*Packaged*",
                   env={**os.environ, "HSCOPE_EXE": str(folder / "HSCOPE.EXE")})
        self.assertRegex(said, r"\[  PASSED  \] 8 tests\.")


def missing():
    wanted = ["cross", "package"] + (["wine"] if sys.argv[1:] == ["UnderWine"] else [])
    return [group for group in wanted
            if subprocess.run([ROOT / "tools/setup.sh", "has", group]).returncode != 0]


def main():
    global scratch, package
    if missing():
        print(f"skipped: this machine lacks the groups {' '.join(missing())} of tools/setup.sh")
        return 77
    with tempfile.TemporaryDirectory() as folder:
        scratch = pathlib.Path(folder)
        made = scratch / "made"
        said = run(ROOT / "package", made)
        [package] = made.glob("*.zip")
        if hashlib.sha256(package.read_bytes()).hexdigest() not in said:
            raise AssertionError(f"./package does not tell the sum of what it made:\n{said}")
        program = unittest.main(argv=sys.argv, exit=False)
    return 0 if program.result.wasSuccessful() else 1


if __name__ == "__main__":
    sys.exit(main())
