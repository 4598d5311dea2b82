"""Writes large registry exports as the registry editors write them, with what registries are full of.

Usage: bench/make_exports.py EDITOR CONTENTS MEGABYTES FILE
  EDITOR    a row of EDITORS: win98, win2000, winxp, or win2000-old and winxp-old, which save the form of
            Windows 98 and NT 4.0
  CONTENTS  usual: classes, devices, installed products with long texts, binary data
            small: nothing but small keys with a default value, as below HKEY_CLASSES_ROOT
The same arguments give the same bytes. The last key of each file is LAST_KEY, with LAST_VALUE.
"""

import collections
import itertools
import random
import sys

LAST_KEY = r"HKEY_LOCAL_MACHINE\SOFTWARE\Last key"
LAST_VALUE = "That is all \u20ac"

Editor = collections.namedtuple("Editor", "header encoding text_data is_nt")
OLD = "REGEDIT4", "cp1252", "cp1252"
NEW = "Windows Registry Editor Version 5.00", "utf-16le", "utf-16le"
EDITORS = {"win98": Editor(*OLD, False), "win2000": Editor(*NEW, True), "winxp": Editor(*NEW, True),
           "win2000-old": Editor(*OLD, True), "winxp-old": Editor(*OLD, True)}

# Types of data; TEXT is written between quotes and NUMBER after "dword:".
NONE, TEXT, EXPAND, BINARY, NUMBER, MULTI = 0, 1, 2, 3, 4, 7
LINE = 80

Value = collections.namedtuple("Value", "name type data")


def text(name, data):
    return Value(name, TEXT, data)


def quoted(characters):
    return '"' + characters.replace("\\", "\\\\").replace('"', '\\"') + '"'


def hex_lines(start, data):
    """The bytes after the start of a line, broken as the editors break them."""
    lines, line = [], start
    for at, byte in enumerate(data):
        line += f"{byte:02x}" + ("," if at + 1 < len(data) else "")
        if len(line) >= LINE - 3 and at + 1 < len(data):
            lines.append(line + "\\")
            line = "  "
    return "\r\n".join([*lines, line])


def written(editor, value):
    start = (quoted(value.name) if value.name else "@") + "="
    if value.type == TEXT:
        return start + quoted(value.data)
    if value.type == NUMBER and isinstance(value.data, int):
        return start + f"dword:{value.data:08x}"
    kind = "hex:" if value.type == BINARY else f"hex({value.type:x}):"
    data = value.data
    if value.type in (EXPAND, MULTI):
        data = "".join(part + "\0" for part in ([data] if value.type == EXPAND else [*data, ""]))
        data = data.encode(editor.text_data, "replace")
    return hex_lines(start + kind, data)


def guid(dice):
    number = f"{dice.getrandbits(128):032X}"
    return "{" + "-".join((number[:8], number[8:12], number[12:16], number[16:20], number[20:])) + "}"


WORDS = "Shell Folder Mail Sheet Draw Frame Picture Audio Proxy Größe Größer Señal Prévu Text Data Link".split()


def words(dice, count):
    return " ".join(dice.choice(WORDS) for _ in range(count))


def classes(dice, number, _):
    """A class as a program registers it."""
    name = f"{dice.choice(WORDS)}.{dice.choice(WORDS)}{number}"
    its_guid = guid(dice)
    top = r"HKEY_CLASSES_ROOT\CLSID" + "\\" + its_guid
    yield top, [text("", words(dice, 3))]
    yield top + r"\InprocServer32", [text("", rf"C:\WINDOWS\SYSTEM\{name[:8]}.DLL"),
                                     text("ThreadingModel", "Both")]
    yield top + r"\ProgID", [text("", name + ".1")]
    yield top + r"\Programmable", []
    yield top + r"\TypeLib", [text("", guid(dice))]
    yield top + r"\VersionIndependentProgID", [text("", name)]
    yield "HKEY_CLASSES_ROOT\\" + name, [text("", words(dice, 3))]
    yield "HKEY_CLASSES_ROOT\\" + name + r"\CLSID", [text("", its_guid)]


def extensions(dice, number, _):
    yield f"HKEY_CLASSES_ROOT\\.x{number:x}", [text("", f"x{number:x}file")]
    yield f"HKEY_CLASSES_ROOT\\x{number:x}file", [text("", words(dice, 1))]
    yield rf"HKEY_CLASSES_ROOT\x{number:x}file\shell", []
    yield rf"HKEY_CLASSES_ROOT\x{number:x}file\shell\open", [text("", "")]
    yield rf"HKEY_CLASSES_ROOT\x{number:x}file\shell\open\command", [text("", '"C:\\X.EXE" "%1"')]
    interface = rf"HKEY_CLASSES_ROOT\Interface\{guid(dice)}"
    yield interface, [text("", dice.choice(WORDS))]
    yield interface + r"\NumMethods", [text("", str(number % 90))]


def devices(dice, number, is_nt):
    top = r"HKEY_LOCAL_MACHINE\SYSTEM\CurrentControlSet\Enum" if is_nt else r"HKEY_LOCAL_MACHINE\Enum"
    top += rf"\PCI\VEN_{dice.getrandbits(16):04X}&DEV_{number:04X}&SUBSYS_00000000&REV_01\000000"
    ids = [f"PCI\\VEN_8086&DEV_{number:04X}", f"PCI\\VEN_8086&CC_{number % 256:04X}"]
    yield top, [text("DeviceDesc", words(dice, 4)), text("Mfg", words(dice, 2)),
                Value("HardwareID", MULTI, ids) if is_nt else text("HardwareID", ",".join(ids)),
                Value("Capabilities", NUMBER, number) if is_nt else
                Value("Capabilities", BINARY, number.to_bytes(4, "little")),
                Value("ConfigFlags", NUMBER, b"\0\0"), text("ClassGUID", guid(dice)),
                Value("BootConfig", 8 if is_nt else BINARY, dice.randbytes(68))]
    yield top + r"\LogConf", []
    yield top + r"\Control", [Value("DeviceReference", NUMBER, dice.getrandbits(32))] if is_nt else []
    if not is_nt:
        yield rf"HKEY_DYN_DATA\Config Manager\Enum\C{number:07X}", [
            text("HardWareKey", top.split("\\Enum\\")[1]), Value("Problem", BINARY, bytes(4)),
            Value("Allocation", BINARY, bytes(64))]


def products(dice, number, _):
    top = r"HKEY_LOCAL_MACHINE\SOFTWARE\Microsoft\Windows\CurrentVersion"
    place = rf"C:\Programme\{words(dice, 2)}\{number}"
    yield rf"{top}\Uninstall\{guid(dice)}", [
        text("DisplayName", words(dice, 5)), text("Publisher", words(dice, 2)),
        Value("UninstallString", EXPAND, rf"%SystemRoot%\UNINST.EXE -f{place}\DeIsL1.isu -c{place}\_ISREG32.DLL"),
        text("Comments", "\r\n".join(words(dice, 12) for _ in range(4))),
        Value("EstimatedSize", NUMBER, dice.getrandbits(24)), Value("Parts", NONE, b"")]
    yield rf"{top}\Installer\Components\{guid(dice)}", [
        Value(f"{dice.getrandbits(128):032X}", MULTI, [rf"{place}\{name}.DLL" for name in WORDS[:6]])]


def binary_data(dice, number, _):
    sizes = [int(dice.paretovariate(0.9) * 60) % 200_000 for _ in range(4)]
    yield rf"HKEY_USERS\.DEFAULT\Software\Bags\{number}", [
        Value(f"Item {at}", BINARY, dice.randbytes(size)) for at, size in enumerate(sizes)]


# What is taken by turns, so that each has about the share of a file that it has of a real registry.
CONTENTS = {"usual": (classes, classes, classes, extensions, devices, products, binary_data),
            "small": (extensions,)}


def key_text(editor, key, values):
    return "\r\n".join([f"[{key}]", *(written(editor, value) for value in values)]) + "\r\n\r\n"


def write(editor_name, contents, megabytes, file):
    editor = EDITORS[editor_name]
    dice = random.Random(editor_name + contents)
    if editor.encoding.startswith("utf-16"):
        file.write(b"\xff\xfe")
    file.write((editor.header + "\r\n\r\n").encode(editor.encoding))
    for number in itertools.count():
        if file.tell() >= megabytes * 1_000_000:
            break
        lines = [key_text(editor, key, values) for kind in CONTENTS[contents]
                 for key, values in kind(dice, number, editor.is_nt)]
        file.write("".join(lines).encode(editor.encoding, "replace"))
    file.write(key_text(editor, LAST_KEY, [text("", LAST_VALUE)]).encode(editor.encoding))


def main():
    editor, contents, megabytes, name = sys.argv[1:]
    with open(name, "wb") as file:
        write(editor, contents, float(megabytes), file)


if __name__ == "__main__":
    main()
