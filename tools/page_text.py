"""Turns a page of the handbook (Markdown) into a text for the editor of any Windows.

pandoc reads the page and lays the text out; in between, what only a browser can show is put into
words: the texts of links name the files of the package, headings are underlined, and wide tables
get columns that fit. Pictures are left out. What a page may hold is what stands in Page.blocks and Page.inlines below:
everything else is refused, since it would be lost or garbled.
"""
import json
import pathlib
import posixpath
import re
import subprocess
import textwrap

WIDTH = 76
# Blanks before the first column of a table, and between two.
TABLE_INDENT, TABLE_GAP = 2, 3
HEADING_LINES = {1: "=", 2: "-", 3: "."}


class PageError(Exception):
    """A page that can't be turned into a text; says where and why."""


def pandoc(text, *options):
    try:
        done = subprocess.run(["pandoc", f"--columns={WIDTH}", *options], input=text.encode(),
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE)
    except OSError as error:
        raise PageError(f"pandoc can't be run: {error.strerror}") from error
    if done.returncode != 0:
        raise PageError(f"pandoc: {done.stderr.decode(errors='replace').strip()}")
    return done.stdout.decode()


def words(inlines):
    """The bare text of inlines that Page.inlines has already put into words."""
    return "".join(part["c"] if part["t"] == "Str" else " " for part in inlines)


def plain_words(text):
    """Inlines of a text that may be broken at its blanks."""
    parts = []
    for word in text.split(" "):
        parts += [{"t": "Space"}, {"t": "Str", "c": word}]
    return parts[1:]


def column_widths(wishes, least, room):
    """Divides the room: a column that wishes less than its equal share gets its wish, and leaves
    the rest to the others. None when even the longest words do not fit."""
    widths = [0] * len(wishes)
    for done, column in enumerate(sorted(range(len(wishes)), key=wishes.__getitem__)):
        share = room // (len(wishes) - done)
        widths[column] = max(min(wishes[column], share), least[column])
        room -= widths[column]
    return widths if room >= 0 else None


class Page:
    """One page of the sources. `names` gives the names in the package by those in the sources, of
    folders too, which end with a slash there; `source` is the page's own name in the sources."""

    def __init__(self, root, source, names):
        self.root, self.source, self.names = pathlib.Path(root), source, names

    def text(self):
        """The page as lines of at most WIDTH characters of ASCII; a code block may be wider."""
        markdown = (self.root / self.source).read_text(encoding="utf-8")
        document = json.loads(pandoc(markdown, "--from=gfm", "--to=json"))
        document["blocks"] = self.blocks(document["blocks"])
        text = pandoc(json.dumps(document), "--from=json", "--to=plain")
        text = "".join(line.rstrip() + "\n" for line in text.splitlines())
        self.check(text)
        return text

    def refuse(self, what):
        raise PageError(f"{self.source}: {what}")

    def check(self, text):
        for line in text.split("\n"):
            if not line.isascii():
                self.refuse(f"a character that is not ASCII: {line.strip()!r}")
            if len(line) > WIDTH and not line.startswith("    "):
                self.refuse(f"a line that can't be broken at {WIDTH} characters: {line!r}")
        flat = " ".join(text.split())
        dangling = re.search(r"[\w./-]+\.md\b(?! in the sources)", flat)
        if dangling:
            self.refuse(f"{dangling[0]} is named, without a link to it")

    # Blocks.

    def blocks(self, blocks):
        kinds = {"Para": self.inlines, "Plain": self.inlines, "Header": self.heading,
                 "BulletList": self.bullets, "OrderedList": self.numbers,
                 "CodeBlock": lambda content: content, "Table": self.table}
        blocks = [block for block in blocks if not self.is_picture(block)]
        for block in blocks:
            if block["t"] not in kinds:
                self.refuse(f"holds a {block['t']}, which can't be put into a text: "
                            f"{json.dumps(block.get('c'))[:200]}")
            block["c"] = kinds[block["t"]](block["c"])
            if block["t"] == "Header":
                block["t"] = "Para"
        return blocks

    @staticmethod
    def is_picture(block):
        """A paragraph of its own, which no text can show."""
        return block["t"] == "Para" and [part["t"] for part in block["c"]] == ["Image"]

    def heading(self, content):
        """The words and a line below them."""
        level, _, inlines = content
        text = words(self.inlines(inlines))
        if level not in HEADING_LINES or len(text) > WIDTH:
            self.refuse(f"a heading that is too deep or too long: {text}")
        line = {"t": "Str", "c": HEADING_LINES[level] * len(text)}
        return [*plain_words(text), {"t": "LineBreak"}, line]

    def bullets(self, items):
        return [self.blocks(item) for item in items]

    def numbers(self, content):
        return [content[0], self.bullets(content[1])]

    def table(self, content):
        _, caption, columns, (_, head), bodies, _ = content
        if caption != [None, []] or len(bodies) != 1:
            self.refuse("a table of an unknown shape")
        rows = [[self.cell(cell) for cell in cells] for _, cells in head + bodies[0][3]]
        texts = [[words(cell) for cell in column] for column in zip(*rows)]
        wishes = [max(map(len, column)) for column in texts]
        room = WIDTH - TABLE_INDENT - TABLE_GAP * len(columns)
        if sum(wishes) > room:
            least = [max(len(word) for text in column for word in text.split()) for column in texts]
            widths = column_widths(wishes, least, room)
            if widths is None:
                self.refuse(f"a table that needs more than {WIDTH} characters side by side")
            self.break_cells(columns, rows, widths)
        return content

    def cell(self, cell):
        """Puts the cell into words; the words."""
        if len(cell[4]) == 0:
            return []
        [block] = cell[4]
        # Code that stands alone needs no quotes.
        alone = len(block["c"]) == 1 and block["c"][0]["t"] == "Code"
        block["c"] = (plain_words(block["c"][0]["c"][1]) if alone else self.inlines(block["c"]))
        return block["c"]

    @staticmethod
    def break_cells(columns, rows, widths):
        """Breaks the lines here, since pandoc leaves but one blank between columns."""
        for cells in rows:
            for cell, width in zip(cells, widths):
                lines = textwrap.wrap(words(cell), width, break_on_hyphens=False)
                cell[:] = [part for line in lines
                           for part in [{"t": "LineBreak"}, *plain_words(line)]][1:]
        for column, width in zip(columns, widths):
            # pandoc adds one blank, and rounds down.
            column[1] = {"t": "ColWidth", "c": (width + TABLE_GAP - 1 + 0.5) / WIDTH}

    # Inlines: everything becomes words and the blanks between.

    def inlines(self, inlines):
        kinds = {"Str": self.word, "Space": lambda _: [{"t": "Space"}],
                 "SoftBreak": lambda _: [{"t": "Space"}], "Emph": self.inlines,
                 "Strong": self.inlines, "Code": self.code, "Link": self.link}
        result = []
        for inline in inlines:
            if inline["t"] not in kinds:
                self.refuse(f"a {inline['t']} within a paragraph can't be put into a text: "
                            f"{json.dumps(inline.get('c'))[:200]}")
            result += kinds[inline["t"]](inline.get("c"))
        return result

    def word(self, text):
        if "`" in text:
            self.refuse(f"a backtick without its partner, or a bar in a table's code: {text}")
        return [{"t": "Str", "c": text}]

    def code(self, content):
        """What the reader types, as it is; between quotes where its ends could not be told."""
        text = content[1]
        if text in self.names:
            text = self.name_in_package(text)
        elif '"' not in text and not re.fullmatch(r"[^ ]*\w[^ ]*|\[.*\]|<.*>", text):
            text = f'"{text}"'
        return plain_words(text)

    def link(self, content):
        text, target = words(self.inlines(content[1])), content[2][0]
        if re.match(r"[a-z]+:", target):
            return plain_words(text if text == target else f"{text} ({target})")
        target = target.partition("#")[0]
        if not target:
            return plain_words(text)
        path = posixpath.normpath(posixpath.join(posixpath.dirname(self.source), target))
        if path.startswith(("/", "../")) or not (self.root / path).exists():
            self.refuse(f"a link to {target}, which is not there")
        if (self.root / path).is_dir():
            path += "/"
        names_path = text in (target, path, posixpath.basename(path))
        name = self.name_in_package(path)
        return plain_words(name if names_path else f"{text} ({name})")

    def name_in_package(self, path):
        if path not in self.names:
            return f"{path} in the sources"
        folder, name = posixpath.split(self.names[path])
        beside = folder == posixpath.dirname(self.names[self.source])
        return name if beside or not folder else f"{folder}\\{name}"
