"""Reads a 32-bit PE program file: headers, sections, imports, symbols and resources.

Only reads and names what stands there; what is right or wrong is gate.py's business. What does
not parse raises BadFile.
"""

import collections
import struct

DIRECTORY_EXPORT, DIRECTORY_IMPORT, DIRECTORY_RESOURCE = 0, 1, 2
DIRECTORY_RELOCATION, DIRECTORY_TLS, DIRECTORY_DELAY_IMPORT = 5, 9, 13

Section = collections.namedtuple("Section", "name address size flags data")
Import = collections.namedtuple("Import", "library function")  # function: a name or an ordinal
Resource = collections.namedtuple("Resource", "kind name language data")

HEADER_FIELDS = (
    "Magic MajorLinker MinorLinker CodeSize DataSize BssSize EntryPoint CodeBase DataBase "
    "ImageBase SectionAlignment FileAlignment MajorOs MinorOs MajorImage MinorImage "
    "MajorSubsystem MinorSubsystem Win32Version ImageSize HeaderSize CheckSum Subsystem "
    "DllCharacteristics StackReserve StackCommit HeapReserve HeapCommit LoaderFlags "
    "DirectoryCount").split()
HEADER_LAYOUT = "<HBB9I6H4I2H6I"


class BadFile(Exception):
    pass


def unpack(layout, data, offset):
    try:
        return struct.unpack_from(layout, data, offset)
    except struct.error:
        raise BadFile(f"ends before offset {offset:#x}") from None


def text_at(data, offset):
    end = data.find(b"\0", offset)
    if not 0 <= offset < len(data) or end < 0:
        raise BadFile(f"no text at {offset:#x}")
    return data[offset:end].decode("latin-1")


class PeFile:
    """header: the optional header's fields by name, and Machine, TimeDateStamp, Characteristics."""

    def __init__(self, data):
        self.data = data
        if data[:2] != b"MZ":
            raise BadFile("no program file")
        start, = unpack("<I", data, 0x3C)
        if data[start:start + 4] != b"PE\0\0":
            raise BadFile("no PE file")
        machine, count, stamp, symbols, symbol_count, size, flags = unpack(
            "<HHIIIHH", data, start + 4)
        optional = start + 24
        self.header = dict(zip(HEADER_FIELDS, unpack(HEADER_LAYOUT, data, optional)))
        self.header.update(Machine=machine, TimeDateStamp=stamp, Characteristics=flags)
        if self.header["Magic"] != 0x10B:
            raise BadFile("no 32-bit PE file")
        directories = min(self.header["DirectoryCount"], 16)
        self.directories = [unpack("<II", data, optional + 96 + 8 * i) for i in range(directories)]
        self.directories += [(0, 0)] * (16 - directories)
        self.symbol_names = list(self._read_symbols(symbols, symbol_count))
        self.sections = [self._read_section(optional + size + 40 * i) for i in range(count)]

    def _read_section(self, offset):
        name = self.data[offset:offset + 8].rstrip(b"\0").decode("latin-1")
        size, address, raw_size, raw, flags = unpack("<IIII12xI", self.data, offset + 8)
        return Section(name, address, size, flags, self.data[raw:raw + min(raw_size, size)])

    def _read_symbols(self, offset, count):
        names = offset + 18 * count
        index = 0
        while index < count:
            record = offset + 18 * index
            zeroes, place = unpack("<II", self.data, record)
            if zeroes == 0:
                yield text_at(self.data, names + place)
            else:
                yield self.data[record:record + 8].rstrip(b"\0").decode("latin-1")
            index += 1 + self.data[record + 17]

    def at(self, address):
        """Everything in the file from an image address to the end of its section."""
        for section in self.sections:
            if section.address <= address < section.address + len(section.data):
                return section.data[address - section.address:]
        raise BadFile(f"nothing at address {address:#x}")

    def has_directory(self, number):
        return self.directories[number] != (0, 0)

    def imports(self):
        address, size = self.directories[DIRECTORY_IMPORT]
        if size == 0:
            return
        table = self.at(address)
        for offset in range(0, len(table), 20):
            names, _, _, library, addresses = unpack("<5I", table, offset)
            if library == 0:
                return
            thunks = self.at(names or addresses)
            for place in range(0, len(thunks), 4):
                entry, = unpack("<I", thunks, place)
                if entry == 0:
                    break
                function = entry & 0xFFFF if entry >> 31 else text_at(self.at(entry + 2), 0)
                yield Import(text_at(self.at(library), 0), function)

    def exports(self):
        """The exported names; a function without a name counts by its number, as text."""
        address, size = self.directories[DIRECTORY_EXPORT]
        if size == 0:
            return []
        base, functions, named, _, names, numbers = unpack("<6I", self.at(address), 16)
        by_index = {unpack("<H", self.at(numbers), 2 * i)[0]:
                    text_at(self.at(unpack("<I", self.at(names), 4 * i)[0]), 0)
                    for i in range(named)}
        return [by_index.get(index, str(base + index)) for index in range(functions)]

    def resources(self):
        address, size = self.directories[DIRECTORY_RESOURCE]
        if size == 0:
            return
        tree = self.at(address)
        for kind, kind_table in self._resource_entries(tree, 0):
            for name, name_table in self._resource_entries(tree, kind_table):
                for language, leaf in self._resource_entries(tree, name_table):
                    place, length, _, _ = unpack("<4I", tree, leaf)
                    yield Resource(kind, name, language, self.at(place)[:length])

    @staticmethod
    def _resource_entries(tree, offset):
        named, numbered = unpack("<HH", tree, offset + 12)
        for index in range(named + numbered):
            name, place = unpack("<II", tree, offset + 16 + 8 * index)
            if name >> 31:
                name = counted_text(tree, name & 0x7FFFFFFF)[0]
            yield name, place & 0x7FFFFFFF


def counted_text(data, offset):
    """A 16-bit text behind its length, and the offset after it."""
    length, = unpack("<H", data, offset)
    end = offset + 2 + 2 * length
    return data[offset + 2:end].decode("utf-16-le"), end


def closed_text(data, offset):
    """A 16-bit text up to its zero, and the offset after that."""
    end = offset
    while unpack("<H", data, end)[0] != 0:
        end += 2
    return data[offset:end].decode("utf-16-le"), end + 2


def text_or_number(data, offset):
    """A dialog's menu, class or title: a 16-bit text, a number behind 0xFFFF, or nothing ("")."""
    first, = unpack("<H", data, offset)
    if first == 0xFFFF:
        return unpack("<H", data, offset + 2)[0], offset + 4
    return closed_text(data, offset)


PREDEFINED_CLASSES = {0x80: "BUTTON", 0x81: "EDIT", 0x82: "STATIC", 0x83: "LISTBOX",
                      0x84: "SCROLLBAR", 0x85: "COMBOBOX"}


def class_name(value):
    return PREDEFINED_CLASSES.get(value, value.upper() if isinstance(value, str) else value)


def read_dialog(data):
    """A plain dialog template as a flat record: the dialog's own fields, then one per item id."""
    style, extended, count, *place = unpack("<IIHhhhh", data, 0)
    if style == 0xFFFF0001:
        raise BadFile("an extended template (DIALOGEX)")
    menu, offset = text_or_number(data, 18)
    window_class, offset = text_or_number(data, offset)
    caption, offset = closed_text(data, offset)
    fields = {"style": hex(style), "extended style": hex(extended), "place": tuple(place),
              "menu": menu, "class": window_class, "caption": caption}
    if style & 0x40:
        points, = unpack("<H", data, offset)
        face, offset = closed_text(data, offset + 2)
        fields["font"] = (points, face)
    for _ in range(count):
        offset = (offset + 3) & ~3
        style, extended, *place, identifier = unpack("<IIhhhhH", data, offset)
        kind, offset = text_or_number(data, offset + 18)
        text, offset = text_or_number(data, offset)
        extra, = unpack("<H", data, offset)
        offset += 2 + extra
        fields[f"item {identifier}"] = (class_name(kind), text, tuple(place), hex(style),
                                        hex(extended))
    return fields


def read_version(data):
    """The version record as a flat record: the four numbers of each version, then the texts."""
    fields = {}
    _read_version_block(data, 0, fields)
    return fields


def _read_version_block(data, start, fields):
    length, value_length, is_text = unpack("<HHH", data, start)
    if length < 6 or start + length > len(data):
        raise BadFile(f"a version block of {length} bytes")
    key, offset = closed_text(data, start + 6)
    offset = (offset + 3) & ~3
    if key == "VS_VERSION_INFO":
        signature, _, *numbers = unpack("<6I", data, offset)
        if signature != 0xFEEF04BD:
            raise BadFile("a version record without its signature")
        parts = [half for number in numbers for half in (number >> 16, number & 0xFFFF)]
        fields["file version"] = tuple(parts[0:4])
        fields["product version"] = tuple(parts[4:8])
        offset += value_length
    elif is_text and value_length:
        fields[key] = closed_text(data, offset)[0]
        return
    elif not is_text:
        return
    while offset + 6 <= start + length:
        offset = (offset + 3) & ~3
        _read_version_block(data, offset, fields)
        offset += unpack("<H", data, offset)[0]
