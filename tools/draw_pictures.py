#!/usr/bin/env python3
"""Draws the pictures of hscope.exe: its icon, the dialog's background tile and the hand cursor.

    tools/draw_pictures.py [FOLDER]    (default: platform/windows/pictures)

The files are kept in the tree; run this after changing a drawing. Old loaders read neither
compressed pictures nor alpha, so the icon has 16 colours and a mask, and the tile 256 colours. All
arithmetic is on integers, so the bytes are the same on every machine.
"""

import pathlib
import struct
import sys

# The sixteen colours that every display of the time has, in their fixed order.
VGA = [
    (0, 0, 0), (128, 0, 0), (0, 128, 0), (128, 128, 0),
    (0, 0, 128), (128, 0, 128), (0, 128, 128), (192, 192, 192),
    (128, 128, 128), (255, 0, 0), (0, 255, 0), (255, 255, 0),
    (0, 0, 255), (255, 0, 255), (0, 255, 255), (255, 255, 255),
]
BLACK, OLIVE, NAVY, SILVER = 0, 3, 4, 7
GREY, LIME, YELLOW, CYAN, WHITE = 8, 10, 11, 14, 15
CLEAR = None  # a pixel where the desktop shows through


class Canvas:
    """A square of palette numbers. Right and bottom edges belong to what is drawn."""

    def __init__(self, side):
        self.side = side
        self.rows = [[CLEAR] * side for _ in range(side)]

    def box(self, left, top, right, bottom, colour):
        for y in range(top, bottom + 1):
            for x in range(left, right + 1):
                self.rows[y][x] = colour

    def dot(self, x, y, colour):
        self.box(x, y, x, y, colour)

    def raised_box(self, left, top, right, bottom):
        """A silver block lit from the upper left."""
        self.box(left, top, right, bottom, BLACK)
        self.box(left, top, right - 1, bottom - 1, GREY)
        self.box(left + 1, top + 1, right - 2, bottom - 2, WHITE)
        self.box(left + 2, top + 2, right - 2, bottom - 2, SILVER)

    def sunken_box(self, left, top, right, bottom, colour):
        self.box(left, top, right, bottom, WHITE)
        self.box(left, top, right - 1, bottom - 1, GREY)
        self.box(left + 1, top + 1, right - 1, bottom - 1, colour)

    def stamp(self, left, top, rows):
        """Pixels by their letter; a dot leaves what is there."""
        for y, row in enumerate(rows, top):
            for x, letter in enumerate(row, left):
                if letter != ".":
                    self.dot(x, y, LETTERS[letter])

    def print_line(self, y, colour, *runs):
        """Runs of pixels (first, last) that read as a line of small print."""
        for first, last in runs:
            self.box(first, y, last, y, colour)


LETTERS = {
    "#": BLACK, "w": WHITE, "s": SILVER, "g": GREY, "c": CYAN, "n": NAVY,
    "y": YELLOW, "o": OLIVE,
}

# The icon: a screen that lists its findings in green, and a magnifying glass that enlarges them.

LARGE_GLASS = [
    "....######..........",
    "..##wwwwss##........",
    ".#wwccccccsg#.......",
    ".#wcwwnncccg#.......",
    "#wcwwcnncccsg#......",
    "#wcwccccccccg#......",
    "#wcccnnnccccg#......",
    "#wccccnnccccg#......",
    "#sccccnnccccg#......",
    "#gscccnnccccg#......",
    ".#gccnnnncsg#.......",
    ".#gsccccccgg#.......",
    "..##gggggg##o#......",
    "....######.#oyo#....",
    "............#oyo#...",
    ".............#oyo#..",
    "..............#oyo#.",
    "...............#oyo#",
    "................#oo#",
    ".................##.",
]

SMALL_GLASS = [
    "..####.....",
    ".#wwsg#....",
    "#wwcccg#...",
    "#wccccg#...",
    "#sccccg#...",
    "#gcccsg#...",
    ".#ggggg#...",
    "..#####oo..",
    "......#oyo.",
    ".......#oyo",
    "........#oo",
]


def draw_large_icon():
    icon = Canvas(32)
    icon.raised_box(0, 1, 26, 20)
    icon.sunken_box(3, 4, 23, 16, BLACK)
    icon.box(19, 18, 22, 18, GREY)
    icon.box(5, 18, 6, 18, LIME)
    icon.box(9, 21, 17, 22, GREY)
    icon.box(10, 21, 13, 22, SILVER)
    icon.box(18, 21, 18, 22, BLACK)
    icon.raised_box(4, 23, 22, 27)

    icon.print_line(6, LIME, (6, 8), (10, 14), (16, 20))
    icon.print_line(8, LIME, (6, 10), (12, 13))
    icon.print_line(10, LIME, (6, 7), (9, 12))
    icon.print_line(12, LIME, (6, 10))
    icon.print_line(14, LIME, (6, 8), (10, 11))

    icon.stamp(12, 11, LARGE_GLASS)
    return icon


def draw_small_icon():
    icon = Canvas(16)
    icon.raised_box(0, 0, 13, 10)
    icon.box(2, 2, 11, 8, BLACK)
    icon.print_line(3, LIME, (3, 5), (7, 9))
    icon.print_line(5, LIME, (3, 4))
    icon.print_line(7, LIME, (3, 3))
    icon.box(4, 11, 9, 11, GREY)
    icon.box(2, 12, 10, 14, BLACK)
    icon.box(2, 12, 9, 13, SILVER)
    icon.box(2, 12, 9, 12, WHITE)
    icon.stamp(5, 5, SMALL_GLASS)
    return icon


# The background: plaster of a cool light grey, lit from the upper left. It repeats without a seam
# and stays between the two shades that emboss the dialog's texts (240 above, 200 below).

TILE_SIDE = 64
TONES = 16  # dark to light; the palette holds each in as many tints, grey to blue


def lattice(seed, x, y):
    """A repeatable number from 0 to 255 for a point of the noise's grid."""
    mixed = (x * 374761393 + y * 668265263 + seed * 2147483647) & 0xFFFFFFFF
    mixed = ((mixed ^ mixed >> 13) * 1274126177) & 0xFFFFFFFF
    return (mixed ^ mixed >> 16) & 0xFF


def blend(first, second, part):
    """From first to second by part of 256, easing in and out; the result in 256ths of theirs."""
    eased = part * part * (768 - 2 * part)
    return (first * (1 << 24) + (second - first) * eased) >> 16


def noise(seed, cell, x, y):
    """Smooth noise, 0 to 65280, in bumps of `cell` pixels that meet across the tile's edges."""
    count = TILE_SIDE // cell
    column, row = x // cell % count, y // cell % count
    right, below = (column + 1) % count, (row + 1) % count
    part_x, part_y = x % cell * 256 // cell, y % cell * 256 // cell
    above = blend(lattice(seed, column, row), lattice(seed, right, row), part_x)
    under = blend(lattice(seed, column, below), lattice(seed, right, below), part_x)
    return blend(above, under, part_y) >> 8


def plaster_height(x, y):
    return sum(weight * noise(seed, cell, x, y)
               for seed, (cell, weight) in enumerate([(16, 10), (8, 5), (4, 2)], 1))


def level(value, lowest, highest, count):
    """The step of `count` equal ones from lowest to highest in which the value lies."""
    return min(max((value - lowest) * count // (highest - lowest), 0), count - 1)


def background_bytes():
    heights = [[plaster_height(x, y) for x in range(TILE_SIDE)] for y in range(TILE_SIDE)]
    rows = []
    for y in range(TILE_SIDE):
        row = []
        for x in range(TILE_SIDE):
            slope = heights[y][x] - heights[y - 1][x - 1]
            tint = noise(9, 32, x, y)
            row.append(TONES * level(slope, -120000, 120000, TONES) + level(tint, 0, 65280, TONES))
        rows.append(row)
    palette = [(210 + tone + tone // 4 - tint // 4, 216 + tone, 222 + tone * 3 // 4 + tint // 4)
               for tone in range(TONES) for tint in range(TONES)]
    picture = pack_rows(rows, 8)
    headers = bitmap_header(TILE_SIDE, TILE_SIDE, 8, len(picture), 256) + colour_table(palette)
    offset = 14 + len(headers)
    return struct.pack("<2sIHHI", b"BM", offset + len(picture), 0, 0, offset) + headers + picture


# The hand that points at the link; its cuff is buttoned.

HAND_HOT_SPOT = (5, 0)  # the tip of the finger
HAND = [
    "....###..........",
    "...#www#.........",
    "...#www#.........",
    "...#www#.........",
    "...#www#.........",
    "...#www###.......",
    "...#www#ww###....",
    "...#www#ww#ww##..",
    "##.#www#ww#ww#w#.",
    "#w##www#ww#ww#ww#",
    "#ww#wwwwwwwwwwww#",
    "#wwwwwwwwwwwwwww#",
    ".#wwwwwwwwwwwwww#",
    "..#wwwwwwwwwwwww#",
    "...#wwwwwwwwwwww#",
    "...#wwwwwwwwwww#.",
    "....#wwwwwwwwww#.",
    ".....#wwwwwwww#..",
    ".....#wwwwwwww#..",
    "....############.",
    "....##########w#.",
    "....############.",
]


def draw_hand():
    cursor = Canvas(32)
    cursor.stamp(0, 0, HAND)
    return cursor


def pack_rows(rows, bits):
    """Bottom-up rows of numbers, the first pixel in the highest bits, each row on four bytes."""
    packed = bytearray()
    for row in reversed(rows):
        line = 0
        for value in row:
            line = line << bits | value
        length = len(row) * bits
        padded = (length + 31) // 32 * 32
        packed += (line << (padded - length)).to_bytes(padded // 8, "big")
    return bytes(packed)


def bitmap_header(width, height, bits, size, colours):
    return struct.pack("<IiiHHIIiiII", 40, width, height, 1, bits, 0, size, 0, 0, colours, 0)


def colour_table(colours):
    return b"".join(struct.pack("BBBB", blue, green, red, 0) for red, green, blue in colours)


def icon_image(rows, bits, colours):
    """Colours and mask of one picture; its header counts the rows of both."""
    side = len(rows)
    picture = pack_rows([[0 if p is CLEAR else p for p in row] for row in rows], bits)
    mask = pack_rows([[int(p is CLEAR) for p in row] for row in rows], 1)
    header = bitmap_header(side, 2 * side, bits, len(picture) + len(mask), len(colours))
    return header + colour_table(colours) + picture + mask


def icon_file(kind, images):
    """Kind 1 is an icon, with planes and bits in its entries; 2 a cursor, with the hot spot."""
    offset = 6 + 16 * len(images)
    entries, bodies = b"", b""
    for side, colour_count, first, second, body in images:
        entries += struct.pack("<BBBBHHII", side, side, colour_count, 0, first, second,
                               len(body), offset + len(bodies))
        bodies += body
    return struct.pack("<HHH", 0, kind, len(images)) + entries + bodies


def icon_bytes():
    images = [(canvas.side, 16, 1, 4, icon_image(canvas.rows, 4, VGA))
              for canvas in (draw_large_icon(), draw_small_icon())]
    return icon_file(1, images)


def cursor_bytes():
    rows = [[CLEAR if p is CLEAR else int(p == WHITE) for p in row] for row in draw_hand().rows]
    return icon_file(2, [(32, 2, *HAND_HOT_SPOT, icon_image(rows, 1, [VGA[BLACK], VGA[WHITE]]))])


def main():
    default = pathlib.Path(__file__).resolve().parent.parent / "platform/windows/pictures"
    folder = pathlib.Path(sys.argv[1]) if len(sys.argv) > 1 else default
    folder.mkdir(parents=True, exist_ok=True)
    for name, content in (("hostscope.ico", icon_bytes()), ("background.bmp", background_bytes()),
                          ("hand.cur", cursor_bytes())):
        (folder / name).write_bytes(content)


if __name__ == "__main__":
    main()
