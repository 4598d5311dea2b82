"""Prints what the summary of gcovr says of each folder, and of all outside the user interface.

Usage: coverage_table.py SUMMARY.json PERCENT. Exit code 1 when that total is PERCENT or less.

The user interface is the dialog with its controls, what stands in for windows, messages and drawing on
Linux, and the terminal in which the dialog is shown there.
"""

import collections
import json
import pathlib
import re
import sys

USER_INTERFACE = re.compile(r"""
    app/controls/ | app/(background|progress_dialog|progress_list)\.
    | platform/host/(comctl32|desktop|desktop_state|gdi32|progress_output|terminal)\.
    | platform/host/user32_(button|classes|default|dialog|dialog_keys|focus|list_box|message_box|messages
                            |paint|places|queue|resources|window_values|windows)\.""", re.VERBOSE)


def folder_of(name):
    folder = str(pathlib.PurePath(name).parent)
    return folder + (" (user interface)" if USER_INTERFACE.match(name) else "")


def row(title, run, lines):
    print(f"{title:<34} {lines:>7} {run:>7} {100 * run / max(lines, 1):>7.1f}")


def main():
    summary = json.loads(pathlib.Path(sys.argv[1]).read_text(encoding="utf-8"))
    folders = collections.defaultdict(collections.Counter)
    total = collections.Counter()
    for file in summary["files"]:
        counts = {"lines": file["line_total"], "run": file["line_covered"]}
        folders[folder_of(file["filename"])].update(counts)
        if not USER_INTERFACE.match(file["filename"]):
            total.update(counts)
    print(f"{'':<34} {'lines':>7} {'run':>7} {'percent':>7}")
    for folder in sorted(folders):
        row(folder, **folders[folder])
    row("outside the user interface", **total)
    return 0 if 100 * total["run"] > float(sys.argv[2]) * total["lines"] else 1


if __name__ == "__main__":
    sys.exit(main())
