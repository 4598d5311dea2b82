#!/usr/bin/env python3
"""Writes a small program file (PE32, without code) that holds a version resource and nothing else, for
the drives of described machines.

Usage: make_versioned_file.py FILE VERSION [--language 0409] [--size BYTES] [NAME=TEXT ...]

VERSION is four numbers with dots between them, or "none" for a resource without the fixed record. The
texts (CompanyName=..., FileDescription=...) go into the string table of the language, in hexadecimal,
with code page 1252. --size fills the file up.
"""

import argparse
import pathlib
import struct

SECTION = 0x200  # its place in the file, and the alignment there
ADDRESS = 0x1000
CODE_PAGE = 1252


def on(size, data):
    """The bytes, filled up to a multiple of the size."""
    return data + bytes(-len(data) % size)


def node(name, value=b"", length=0, text=True, children=()):
    data = on(4, bytes(6) + name.encode("utf-16-le") + bytes(2)) + value
    for child in children:
        data = on(4, data) + child
    return struct.pack("<3H", len(data), length, text) + data[6:]


def version_block(version, language, texts):
    strings = [node(name, text.encode("utf-16-le") + bytes(2), len(text) + 1) for name, text in texts]
    table = node(f"{language:04X}{CODE_PAGE:04X}", children=strings)
    translation = node("Translation", struct.pack("<2H", language, CODE_PAGE), 4, False)
    fixed = b""
    if version is not None:
        high = version[0] << 16 | version[1]
        low = version[2] << 16 | version[3]
        # For 32-bit Windows, a library.
        fixed = struct.pack("<13I", 0xFEEF04BD, 0x10000, high, low, high, low, 0x3F, 0, 0x40004, 2, 0, 0, 0)
    return node("VS_VERSION_INFO", fixed, len(fixed), False,
                [node("StringFileInfo", children=[table]), node("VarFileInfo", children=[translation])])


def resources(block, language):
    """The tree of types, names and languages with a single leaf, and the block behind it."""
    def folder(number, target):
        return struct.pack("<IIIHHII", 0, 0, 0, 0, 1, number, target)
    levels = folder(16, 0x80000018) + folder(1, 0x80000030) + folder(language, 0x48)
    return levels + struct.pack("<4I", ADDRESS + len(levels) + 16, len(block), 0, 0) + block


def program_file(section):
    size = len(section)
    header = b"MZ".ljust(0x3C, b"\0") + struct.pack("<I", 0x40)
    header += b"PE\0\0" + struct.pack("<HHIIIHH", 0x14C, 1, 0, 0, 0, 224, 0x2102)
    optional = struct.pack("<HBB3I3I", 0x10B, 6, 0, 0, size, 0, 0, ADDRESS, ADDRESS)
    optional += struct.pack("<3I", 0x10000000, 0x1000, SECTION)
    optional += struct.pack("<6HI", 4, 0, 0, 0, 4, 0, 0)
    optional += struct.pack("<3IHH", ADDRESS + size + -size % 0x1000, SECTION, 0, 2, 0)
    optional += struct.pack("<6I", 0x100000, 0x1000, 0x100000, 0x1000, 0, 16)
    optional += struct.pack("<6I", 0, 0, 0, 0, ADDRESS, size) + bytes(13 * 8)
    header += optional + b".rsrc".ljust(8, b"\0")
    header += struct.pack("<8I", size, ADDRESS, size, SECTION, 0, 0, 0, 0x40000040)
    return on(SECTION, header) + section


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("file", type=pathlib.Path)
    parser.add_argument("version")
    parser.add_argument("texts", nargs="*", metavar="NAME=TEXT")
    parser.add_argument("--language", type=lambda text: int(text, 16), default=0x409)
    parser.add_argument("--size", type=int, default=0)
    arguments = parser.parse_intermixed_args()
    version = None
    if arguments.version != "none":
        version = [int(part) for part in arguments.version.split(".")]
        if len(version) != 4 or not all(0 <= part <= 0xFFFF for part in version):
            parser.error("the version is no four numbers up to 65535")
    texts = [text.partition("=")[::2] for text in arguments.texts]
    block = version_block(version, arguments.language, texts)
    section = on(SECTION, resources(block, arguments.language))
    data = program_file(section)
    arguments.file.parent.mkdir(parents=True, exist_ok=True)
    arguments.file.write_bytes(data.ljust(arguments.size, b"\0"))


if __name__ == "__main__":
    main()
