"""Plants faults in files of its own and holds tools/lint.sh to finding them.

Usage: lint_test.py LINT. Exit code 77 when a tool is missing.
"""

import pathlib
import subprocess
import sys
import tempfile


def source(name, body):
    """A function that calls one of its own. That has the same name in all files, as it may."""
    return f"namespace {{\n\nint Own() {{\n{body}}}\n\n}}  // namespace\n\nint {name}() {{\n  return Own();\n}}\n"


CLEAN = source("First", "  return 1;\n")
THROUGH_NULL = source("Second", "  int* place = nullptr;\n  return *place;\n")
THE_SAME_EITHER_WAY = source("Third", "  int n = 1;\n  if (n == 1)\n    n = 2;\n  else\n    n = 2;\n  return n;\n")
PAST_THE_END = source("Fourth", "  int row[2] = {};\n  row[2] = 1;\n  return row[0];\n")
WIDE = "#pragma once\ninline long Wide(int number) {\n  return 2 * number;\n}\n"
WIDE_IN_HEADER = '#include "FOLDER/wide.h"\n' + source("Fifth", "  return static_cast<int>(Wide(1));\n")

# The part, the files beside the header, and what the findings name; None when there is nothing to find.
CASES = [
    ("tidy", {"a.cpp": CLEAN}, None),
    ("tidy", {"a.cpp": CLEAN, "b.cpp": THROUGH_NULL}, "clang-analyzer-core.NullDereference"),
    ("tidy", {"a.cpp": CLEAN, "b.cpp": THE_SAME_EITHER_WAY}, "bugprone-branch-clone"),
    ("tidy", {"a.cpp": CLEAN, "b.cpp": WIDE_IN_HEADER}, "wide.h:3:10: error: performing an implicit widening"),
    ("tidy", {"a.cpp": CLEAN, "b.cpp": "int Cut() {\n"}, "clang-diagnostic-error"),
    ("cppcheck", {"a.cpp": CLEAN}, None),
    ("cppcheck", {"a.cpp": CLEAN, "b.cpp": THROUGH_NULL}, "nullPointer"),
    ("cppcheck", {"a.cpp": PAST_THE_END}, "arrayIndexOutOfBounds"),
    ("shellcheck", {"a.sh": "#!/bin/sh\necho \"$1\"\n"}, None),
    ("shellcheck", {"a.sh": "#!/bin/sh\nrm -r $1\n"}, "SC2086"),
    ("layout", {"a.cpp": CLEAN}, None),
    ("layout", {"a.cpp": CLEAN.replace("{\n  return", "{ return")}, "clang-format-violations"),
]


def outcome(lint, part, files):
    with tempfile.TemporaryDirectory() as folder:
        # A room's name, since findings in headers of other folders are not told.
        room = pathlib.Path(folder, "util")
        room.mkdir()
        (room / "wide.h").write_text(WIDE)
        for name, text in files.items():
            (room / name).write_text(text.replace("FOLDER", str(room)))
        run = subprocess.run([lint, part, *(room / name for name in files)], capture_output=True, text=True)
    return run.returncode, run.stdout + run.stderr


def main():
    failures = 0
    for part, files, expected in CASES:
        code, said = outcome(sys.argv[1], part, files)
        if code == 77:
            print(said)
            return 77
        if code != (0 if expected is None else 1) or (expected or "nothing found") not in said:
            print(f"{part} over {files}: expected {expected}, got exit code {code} and\n{said}")
            failures += 1
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
