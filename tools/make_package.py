#!/usr/bin/env python3
"""Makes the package, hscope-VERSION.zip, from the sources and a finished build for Windows:

  tools/make_package.py SOURCES BUILD FOLDER

Beside it lies its SHA-256 (hscope-VERSION.zip.sha256), which is also printed. The same sources and
the same build give the same bytes, whoever makes them, when and where. ./package builds, and calls
this. Exit code: 0, 1 with one line on standard error when there is no package.
"""
import datetime
import hashlib
import io
import os
import pathlib
import re
import sys
import zipfile

import page_text

# Names that MS-DOS knows as well.
SAMPLES = ["full", "minimal", "support", "hardware", "software"]
PROGRAMS = {"HSCOPE.EXE": "hscope.exe", "SDK/SAMPLE.DLL": "sample.dll"}
README = "README.TXT"
PAGES = {
    README: "docs/using.md",
    "DOCS/PROFILE.TXT": "docs/profile.md",
    "DOCS/RECIPES.TXT": "docs/recipes.md",
    "DOCS/CHOICES.TXT": "docs/behaviour.md",
    "DOCS/SUPPORT.TXT": "docs/support.md",
    "SDK/README.TXT": "sdk/README.md",
}
TEXTS = {
    "LICENSE.TXT": "LICENSE",
    **{f"PROFILES/{name.upper()}.INI": f"profiles/{name}.ini" for name in SAMPLES},
    "SDK/HSPLUGIN.H": "sdk/hsplugin.h",
    "SDK/SAMPLE.C": "sdk/sample.c",
}
# A shell takes no carriage return at the end of a line.
SCRIPTS = {"SDK/BUILD.SH": "sdk/build.sh"}
SUMS = "SHA256.TXT"


class PackageError(Exception):
    """There is no package; says why."""


def read(path):
    try:
        return path.read_bytes()
    except OSError as error:
        raise PackageError(f"{path} can't be read: {error.strerror}") from error


def read_text(sources, name):
    """The lines of a text of the sources, which is ASCII; without line ends."""
    text = read(sources / name).replace(b"\r\n", b"\n")
    for number, line in enumerate(text.split(b"\n"), 1):
        if not line.isascii() or b"\r" in line or b"\0" in line:
            raise PackageError(f"{name}:{number}: not a line of ASCII")
    return text.decode()


def version(sources):
    """As the version record of the exe tells it."""
    found = re.search(r'VALUE\("ProductVersion", "([\w.]+)"\)',
                      read_text(sources, "platform/resources.h"))
    if not found:
        raise PackageError("platform/resources.h names no ProductVersion")
    return found[1]


def release_date(sources, number):
    """The date behind the version's heading in the changelog, "## 0.93b, 1 May 2026". A version in
    the making has none: it gets the first day that a package can tell."""
    changelog = read_text(sources, "CHANGELOG.md")
    heading = re.search(rf"^## {re.escape(number)}, (.*)$", changelog, re.M)
    if not heading:
        raise PackageError(f"CHANGELOG.md has no heading \"## {number}, ...\"")
    if not heading[1][:1].isdigit():
        return datetime.date(1980, 1, 1)
    try:
        return datetime.datetime.strptime(heading[1].strip(), "%d %B %Y").date()
    except ValueError as error:
        raise PackageError(f"CHANGELOG.md: \"{heading[1]}\" is no date like 1 May 2026") from error


def collect(sources, build, number):
    """The bytes of all files of the package but the sums, by their names."""
    names = {source: name for name, source in {**PAGES, **TEXTS, **SCRIPTS}.items()}
    names.update({"docs/": "DOCS", "profiles/": "PROFILES", "sdk/": "SDK"})
    files = {name: read(build / program) for name, program in PROGRAMS.items()}
    for name, source in PAGES.items():
        read_text(sources, source)
        text = page_text.Page(sources, source, names).text()
        if name == README:
            text = f"Hostscope {number}\n\n{text}"
        files[name] = text.replace("\n", "\r\n").encode("ascii")
    for name, source in TEXTS.items():
        files[name] = read_text(sources, source).replace("\n", "\r\n").encode("ascii")
    for name, source in SCRIPTS.items():
        files[name] = read_text(sources, source).encode("ascii")
    return files


def sums(files):
    """One line for each file, as sha256sum writes and checks them."""
    lines = [f"{hashlib.sha256(data).hexdigest()}  {name}\r\n"
             for name, data in sorted(files.items())]
    return "".join(lines).encode("ascii")


def pack(files, date):
    """The bytes of the zip file. Nothing in it tells of the machine that made it."""
    result = io.BytesIO()
    with zipfile.ZipFile(result, "w", zipfile.ZIP_DEFLATED, compresslevel=9) as package:
        for name, data in sorted(files.items()):
            # Noon, so that no time zone makes it another day.
            entry = zipfile.ZipInfo(name, (date.year, date.month, date.day, 12, 0, 0))
            entry.compress_type = zipfile.ZIP_DEFLATED
            # From MS-DOS, whose attribute for a changed file is set, and whether it is a text.
            entry.create_system = 0
            entry.external_attr = 0x20
            entry.internal_attr = 0 if name in PROGRAMS else 1
            package.writestr(entry, data)
    return result.getvalue()


def write(path, data):
    """All of it or nothing."""
    new = path.with_name(path.name + ".new")
    try:
        new.write_bytes(data)
        os.replace(new, path)
    except OSError as error:
        raise PackageError(f"{path} can't be written: {error.strerror}") from error


def make(sources, build, folder):
    number = version(sources)
    files = collect(sources, build, number)
    files[SUMS] = sums(files)
    package = pack(files, release_date(sources, number))
    path = folder / f"hscope-{number}.zip"
    line = f"{hashlib.sha256(package).hexdigest()}  {path.name}\n"
    write(path, package)
    write(path.with_name(path.name + ".sha256"), line.encode("ascii"))
    print(f"{path}: {len(files)} files, {len(package)} bytes, SHA-256:\n{line}", end="")


def main(arguments):
    if len(arguments) != 3:
        print(__doc__, file=sys.stderr)
        return 2
    try:
        make(*map(pathlib.Path, arguments))
    except (PackageError, page_text.PageError) as error:
        print(f"package: {error}", file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
