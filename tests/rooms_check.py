"""Holds the sources against the plan of the rooms: an include never points up, and nothing outside
platform/ and linux/ names a system header or asks which platform it is.

Usage: rooms_check.py ROOT. Prints one line per finding; exit code 1 when there is one.
"""

import pathlib
import re
import sys

# What each room may include besides itself.
MAY_INCLUDE = {
    "platform": set(),
    "platform/windows": {"platform"},
    "platform/host": {"platform"},
    "util": {"platform"},
    "profile": {"platform", "util"},
    "report": {"platform", "util", "profile"},
    "probes/system": {"platform", "util", "profile", "report"},
    "probes/devices": {"platform", "util", "profile", "report"},
    "scans": {"platform", "util", "profile", "report"},
    "delivery": {"platform", "util"},
    "app/controls": {"platform", "util"},
    "app": {"platform", "util", "profile", "report", "probes/system", "probes/devices", "scans",
            "delivery", "app/controls"},
    "linux": {"platform", "platform/host", "util", "profile", "report", "probes/system", "probes/devices",
              "scans", "delivery", "app/controls", "app"},
}

# The table of contents is the one file of its room that knows the probes. The run's last step is to
# open the report; delivery/ stands on util/ alone, so nothing turns round.
EXTRA = {"report/section_table.cpp": {"probes/system", "probes/devices", "scans"},
         "report/report_worker.cpp": {"delivery"},
         "platform/win32.h": {"platform/host"}}

# Headers of the language's standard library; a header with a slash or ".h" is the system's.
STANDARD_C = {"stdarg.h", "stddef.h", "stdint.h"}
INCLUDE = re.compile(r'^\s*#\s*include\s*(?:"([^"]+)"|<([^>]+)>)')
PLATFORM_QUESTION = re.compile(r"^\s*#\s*(?:ifdef|ifndef|if|elif).*\b(_WIN32|__linux__|__MINGW\w*|_WIN64)\b")


def room_of(path):
    """The longest room that the path lies in, or None."""
    rooms = [room for room in MAY_INCLUDE if path.startswith(room + "/")]
    return max(rooms, key=len, default=None)


def findings_in(name, text):
    room = room_of(name)
    if room is None:
        return
    allowed = MAY_INCLUDE[room] | {room} | EXTRA.get(name, set())
    for number, line in enumerate(text.splitlines(), 1):
        match = INCLUDE.match(line)
        if match and match.group(1):
            target = room_of(match.group(1))
            if target is None:
                yield f"{name}:{number}: \"{match.group(1)}\" lies in no room"
            elif target not in allowed:
                yield f"{name}:{number}: {room}/ may not include {target}/"
        elif not name.startswith(("platform/", "linux/")):
            if match and (match.group(2).endswith(".h") or "/" in match.group(2)) \
                    and match.group(2) not in STANDARD_C:
                yield f"{name}:{number}: system header <{match.group(2)}> outside platform/"
            if PLATFORM_QUESTION.match(line):
                yield f"{name}:{number}: asks for the platform outside platform/"


def check(root):
    findings = []
    for top in sorted({room.split("/")[0] for room in MAY_INCLUDE}):
        for path in sorted((root / top).rglob("*")):
            if path.suffix in (".h", ".cpp"):
                name = path.relative_to(root).as_posix()
                findings.extend(findings_in(name, path.read_text(encoding="utf-8")))
    return findings


if __name__ == "__main__":
    found = check(pathlib.Path(sys.argv[1]))
    print("\n".join(found) if found else "The rooms are in order.")
    sys.exit(1 if found else 0)
