"""Every link and picture of the pages leads somewhere, and the sample profiles open in any old editor.

Usage: pages_test.py ROOT
"""

import pathlib
import re
import sys
import unittest

ROOT = pathlib.Path(sys.argv.pop(1)).resolve()
PROFILE_COLUMNS = 76
LINK = re.compile(r"\[[^]]*\]\(([^)\s]+)\)")
CODE = re.compile(r"`[^`]*`|^    .*$", re.MULTILINE)


def pages():
    return [page for page in sorted(ROOT.rglob("*.md"))
            if page.relative_to(ROOT).parts[0] not in ("build", "out")]


def anchors(page):
    """The names under which the headings of the page are reached."""
    headings = re.findall(r"^#+ (.*)$", page.read_text(encoding="utf-8"), re.MULTILINE)
    return {re.sub(r"[^\w\- ]", "", heading.lower()).replace(" ", "-") for heading in headings}


class PagesTest(unittest.TestCase):
    def test_links_and_pictures_are_there(self):
        found = 0
        for page in pages():
            for target in LINK.findall(CODE.sub("", page.read_text(encoding="utf-8"))):
                if re.match(r"[a-z]+:", target):
                    continue
                found += 1
                path, _, anchor = target.partition("#")
                goal = page.parent / path if path else page
                with self.subTest(page=str(page.relative_to(ROOT)), target=target):
                    self.assertTrue(goal.exists(), "leads nowhere")
                    if anchor:
                        self.assertIn(anchor, anchors(goal))
        self.assertGreater(found, 0)

    def test_profiles_are_ascii_lines_that_fit(self):
        profiles = sorted((ROOT / "profiles").glob("*.ini"))
        self.assertTrue(profiles)
        for profile in profiles:
            text = profile.read_bytes()
            with self.subTest(profile.name):
                self.assertTrue(text.isascii())
                self.assertTrue(text.endswith(b"\r\n"))
                for number, line in enumerate(text.split(b"\r\n"), 1):
                    self.assertNotRegex(line, rb"[\r\n]", f"line {number}: not CR LF at its end")
                    self.assertLessEqual(len(line), PROFILE_COLUMNS, f"line {number}")


if __name__ == "__main__":
    unittest.main()
