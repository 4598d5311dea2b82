"""The check of the rooms finds what it is there for."""

import unittest

from rooms_check import findings_in

CASES = [
    ("an include that points up", "util/text.cpp", '#include "report/item.h"', 1),
    ("a probe that knows another room's probe", "probes/system/user.cpp",
     '#include "probes/devices/scanner.h"', 1),
    ("the report that knows a probe", "report/item.cpp", '#include "probes/system/user.h"', 1),
    ("the table of contents that knows a probe", "report/section_table.cpp",
     '#include "probes/system/user.h"', 0),
    ("the report that knows delivery", "report/item.cpp", '#include "delivery/open_report.h"', 1),
    ("the last step of the run", "report/report_worker.cpp", '#include "delivery/open_report.h"', 0),
    ("a header of no room", "util/text.cpp", '#include "text.h"', 1),
    ("a system header", "app/entry.cpp", "#include <windows.h>", 1),
    ("a Linux header", "util/text.cpp", "#include <sys/stat.h>", 1),
    ("a system header in the platform", "platform/win32.h", "#include <windows.h>", 0),
    ("a question for the platform", "util/text.cpp", "#ifdef _WIN32", 1),
    ("a question for the platform, spelled out", "util/text.cpp", "#if defined(_WIN32)", 1),
    ("the standard library", "util/text.cpp", "#include <algorithm>\n#include <stdarg.h>", 0),
    ("an include that points down", "app/entry.cpp", '#include "util/text.h"', 0),
    ("the Linux program that knows the layer and the report", "linux/main.cpp",
     '#include "platform/host/machine.h"\n#include "report/section_table.h"', 0),
    ("the layer that knows the Linux program", "platform/host/machine.cpp",
     '#include "linux/main.h"', 1),
]


class RoomsCheckTest(unittest.TestCase):
    def test_findings(self):
        for what, name, text, count in CASES:
            with self.subTest(what):
                self.assertEqual(len(list(findings_in(name, text))), count)


if __name__ == "__main__":
    unittest.main()
