"""Runs clang-tidy over the shipped sources, many of them in one go.

Usage: tidy.py FOLDER [SOURCES...]   FOLDER keeps what was found clean; without SOURCES: all

Of a run over a single source nearly all time goes into the headers of the standard library. So a
few units include all sources. A unit is read again when anything in it changed since it was last
found clean. Prints the findings and a closing line; exit code 1 when there is a finding.
HOSTSCOPE_LINT_JOBS: how many units are read at a time (default: one per core).
"""

import collections
import concurrent.futures
import functools
import hashlib
import json
import os
import pathlib
import re
import subprocess
import sys
import zlib

ROOT = pathlib.Path(__file__).resolve().parent.parent
SETTINGS = ROOT / ".clang-tidy"
# Of the analyzer's way through a function. Ten times as many steps find no more here, in five times
# the time.
STEPS = "max-nodes=20000"
FLAGS = ["-std=c++20", f"-I{ROOT}", "-Wall", "-Wextra", "-Wno-missing-field-initializers",
         "-Xclang", "-analyzer-config", "-Xclang", STEPS]
CROSS_COMPILER = "i686-w64-mingw32-g++-posix"
CROSS_FLAGS = ["--target=i686-w64-mingw32", "-march=i386", "-ffreestanding", "-fno-exceptions", "-fno-rtti",
               "-DWINVER=0x0400", "-D_WIN32_WINNT=0x0400"]

INCLUDE = re.compile(r'^#include "(.+)"', re.M)
UNNAMED = re.compile(r"^namespace \{\n(.*?)^\}  // namespace\n", re.M | re.S)
# The name that a line at the left margin declares; clang-format decides what stands there.
DECLARED = re.compile(r"^(?:__attribute__\(\(\w+\)\) )?\w[\w:<>,. &*\[\]]*?[ &*]([A-Za-z_]\w*)"
                      r"(?: final)?(?:\(| ?(?::(?!:)|[={;\[]))", re.M)
FINDING = re.compile(r"^\S+?:\d+:\d+: (?:warning|error): ")
UNREADABLE = re.compile(r"^(.*) \[clang-diagnostic-error", re.M)


@functools.cache
def text_of(name):
    return (ROOT / name).read_text()


@functools.cache
def headers_of(name):
    """All our headers that the source needs, directly or not."""
    found = {}
    for header in INCLUDE.findall(text_of(name)):
        found.update(dict.fromkeys((*headers_of(header), header)))
    return tuple(found)


def unit_text(names):
    """Includes the sources. What a source declares for itself would clash with what another, or a header
    that it does not know, calls the same; so that has another name in each source."""
    headers = dict.fromkeys(header for name in names for header in headers_of(name))
    own = {name: set(DECLARED.findall("".join(UNNAMED.findall(text_of(name))))) for name in names}
    uses = collections.Counter(word for words in own.values() for word in words)
    for header in headers:
        uses.update(set(DECLARED.findall(text_of(header))))
    first = dict.fromkeys(header for name in names for header in INCLUDE.findall(text_of(name)))
    lines = [f'#include "{header}"' for header in first]
    for number, name in enumerate(names):
        # A member's name is nobody's own.
        words = [word for word in sorted(own[name])
                 if uses[word] > 1 and not re.search(rf"(\.|->|::){word}\b", text_of(name))]
        lines += [f"#define {word} {word}Of{number}" for word in words]
        lines.append(f'#include "{name}"')
        lines += [f"#undef {word}" for word in words]
    return "\n".join(lines) + "\n"


class Unit:
    """Sources that are read in one go, with the flags beside FLAGS."""

    def __init__(self, names, flags):
        self.names = names
        self.flags = flags

    def key(self):
        """Changes with everything that the findings depend on."""
        key = hashlib.sha256(repr((tool_version(), SETTINGS.read_text(), FLAGS, self.flags)).encode())
        key.update(pathlib.Path(__file__).read_bytes())
        for name in dict.fromkeys(file for name in self.names for file in (*headers_of(name), name)):
            key.update(f"{name}\n{text_of(name)}".encode())
        return key.hexdigest()

    def findings(self, folder):
        """Each with the lines that belong to it."""
        # The analyzer looks into what is included only by a file of such a name.
        file = folder / f"UnifiedSource{id(self)}.cpp"
        if len(self.names) == 1:
            file = ROOT / self.names[0]
        else:
            file.write_text(unit_text(self.names))
        try:
            run = subprocess.run(["clang-tidy", "--quiet", f"--config-file={SETTINGS}", str(file), "--",
                                  *FLAGS, *self.flags], capture_output=True, text=True, cwd=ROOT)
        finally:
            if len(self.names) > 1:
                file.unlink()
        unreadable = UNREADABLE.search(run.stdout)
        if unreadable and len(self.names) > 1:
            # Either there is a source that can't be read, or two that can't be read together.
            half = len(self.names) // 2
            parts = [Unit(names, self.flags) for names in (self.names[:half], self.names[half:])]
            found = [finding for part in parts for finding in part.findings(folder)]
            if not found:
                print(f"tidy: slower than need be: {unreadable[1]}")
            return found
        findings = []
        for line in run.stdout.replace(f"{ROOT}/", "").splitlines():
            if FINDING.match(line) or not findings and run.returncode != 0:
                findings.append(line)
            elif findings:
                findings[-1] += "\n" + line
        if run.returncode != 0 and not findings:
            findings.append(run.stderr)
        return findings


@functools.cache
def tool_version():
    return subprocess.run(["clang-tidy", "--version"], capture_output=True, text=True, check=True).stdout


def names_in(*patterns):
    return sorted(str(file.relative_to(ROOT)) for pattern in patterns for file in ROOT.glob(pattern))


def cross_flags():
    """For what only the exe needs; None where its compiler's headers are missing."""
    try:
        found = subprocess.run([CROSS_COMPILER, "-print-file-name=include/c++"], capture_output=True,
                               text=True, check=True).stdout.strip()
    except FileNotFoundError:
        return None
    return [*CROSS_FLAGS, "-isystem", found, "-isystem", f"{found}/i686-w64-mingw32"]


def all_units():
    def units(names, parts, flags=()):
        # By name, so that a change of one source leaves the other units as they are.
        for part in range(parts):
            own = [name for name in names if zlib.crc32(name.encode()) % parts == part]
            if own:
                yield Unit(own, list(flags))

    yield from units(names_in("platform/host/*.cpp", "linux/*.cpp"), 4)
    yield from units(names_in("util/*.cpp", "profile/*.cpp", "report/*.cpp", "probes/*/*.cpp", "scans/*.cpp",
                              "delivery/*.cpp", "app/**/*.cpp"), 3)
    flags = cross_flags()
    if flags:
        yield from units(names_in("platform/windows/*.cpp"), 1, flags)
    else:
        print(f"tidy: without platform/windows, since there is no {CROSS_COMPILER}")


def main():
    folder = pathlib.Path(sys.argv[1]).resolve()
    folder.mkdir(parents=True, exist_ok=True)
    units = [Unit(sys.argv[2:], [])] if sys.argv[2:] else list(all_units())
    clean_file = folder / "clean.json"
    clean = set(json.loads(clean_file.read_text())) if clean_file.exists() else set()
    due = [unit for unit in units if unit.key() not in clean]
    jobs = int(os.environ.get("HOSTSCOPE_LINT_JOBS", 0)) or len(os.sched_getaffinity(0))
    with concurrent.futures.ThreadPoolExecutor(jobs) as pool:
        found = list(pool.map(lambda unit: unit.findings(folder), due))
    # A header's findings come with every unit that includes it.
    findings = dict.fromkeys(finding for some in found for finding in some)
    for finding in findings:
        print(finding)
    if len(sys.argv) == 2:
        dirty = {unit.key() for unit, some in zip(due, found) if some}
        clean_file.write_text(json.dumps(sorted({unit.key() for unit in units} - dirty)))
    sources = sum(len(unit.names) for unit in units)
    print(f"tidy: {len(findings)} findings in {sources} sources; {len(due)} of {len(units)} units were due")
    return 1 if findings else 0


if __name__ == "__main__":
    sys.exit(main())
