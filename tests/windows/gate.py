#!/usr/bin/env python3
"""The gate over hscope.exe: what the loaders and processors of old systems would refuse.

    gate.py EXE [--symbols SYMBOLS_EXE] [--plugin FUNCTION] [--imports LIST] [--instructions LIST]
                [--max-size BYTES] [--same OTHER_EXE]

With --plugin the file is a plug-in that exports this function and nothing else.
Prints each finding on a line of its own; exit code 1 when there is any, 0 when there is none, 2
when the gate could not look. Without the file with symbols a static constructor has no name, and no
function can have an allowance for the instructions of the list.
"""

import argparse
import pathlib
import re
import struct
import subprocess
import sys

import pe_file

HERE = pathlib.Path(__file__).resolve().parent
OBJDUMP = "i686-w64-mingw32-objdump"

# --- Headers ---

EXPECTED_HEADER = {
    "Machine": (0x14C, "i386"),
    "Subsystem": (2, "graphical"),
    "MajorSubsystem": (4, "an older loader refuses a newer subsystem"),
    "MinorSubsystem": (0, "an older loader refuses a newer subsystem"),
    "MajorOs": (4, "as the subsystem"),
    "MinorOs": (0, "as the subsystem"),
    "DllCharacteristics": (0, "no dynamic base, no NX, nothing young"),
    "ImageBase": (0x400000, "the only base that all these systems load at without relocations"),
    "SectionAlignment": (0x1000, "the page"),
    "FileAlignment": (0x200, "the sector"),
    "StackReserve": (0x20000, "NT 3.51 answers a larger wish with a tiny stack"),
    "StackCommit": (0x1000, "the page"),
    "TimeDateStamp": (0, "the same bytes on every build"),
}
CHARACTERISTICS = 0x103  # relocations stripped, executable, 32-bit
CHARACTERISTICS_NEVER = 0x2020  # library, addresses above 2 GB
FORBIDDEN_DIRECTORIES = {
    pe_file.DIRECTORY_EXPORT: "exports",
    pe_file.DIRECTORY_RELOCATION: "relocations",
    pe_file.DIRECTORY_TLS: "thread-local storage",
    pe_file.DIRECTORY_DELAY_IMPORT: "delayed imports",
}
SECTION_EXECUTABLE = 0x20000000

# A plug-in lies where there is room, on the stack of whoever calls it.
PROGRAM_ALONE = {"ImageBase", "StackReserve", "StackCommit"}
PLUGIN_CHARACTERISTICS = 0x2102  # library, executable, 32-bit
PLUGIN_CHARACTERISTICS_NEVER = 0x21  # relocations stripped, addresses above 2 GB
PLUGIN_DIRECTORIES = {pe_file.DIRECTORY_EXPORT, pe_file.DIRECTORY_RELOCATION}


def check_headers(pe, is_plugin):
    for field, (expected, why) in EXPECTED_HEADER.items():
        if pe.header[field] != expected and not (is_plugin and field in PROGRAM_ALONE):
            yield f"header: {field} is {pe.header[field]:#x}, not {expected:#x} ({why})"
    flags = pe.header["Characteristics"]
    needed, never, what = (
        (PLUGIN_CHARACTERISTICS, PLUGIN_CHARACTERISTICS_NEVER, "movable library") if is_plugin
        else (CHARACTERISTICS, CHARACTERISTICS_NEVER, "program at a fixed base"))
    if flags & needed != needed or flags & never:
        yield f"header: Characteristics is {flags:#x}, no plain 32-bit {what}"
    for number, what in FORBIDDEN_DIRECTORIES.items():
        belongs = is_plugin and number in PLUGIN_DIRECTORIES
        if pe.has_directory(number) != belongs:
            yield f"header: has {'no ' if belongs else ''}{what}"
    for section in pe.sections:
        if section.name == ".tls" or section.name == ".reloc" and not is_plugin:
            yield f"section: {section.name} is there"
        if section.flags & SECTION_EXECUTABLE and section.name != ".text":
            yield f"section: {section.name} holds code as well"


# --- Imports and exports ---


def check_exports(pe, function):
    names = pe.exports()
    if names != [function]:
        yield f"exports: {', '.join(names) or 'nothing'}, not {function} alone"


def read_table(path, columns):
    """The rows of a tab-separated list with '#' comments."""
    for number, line in enumerate(path.read_text().splitlines(), 1):
        if not line or line.startswith("#"):
            continue
        cells = line.split("\t")
        if len(cells) != columns or not all(cells):
            raise ValueError(f"{path}:{number}: not {columns} columns")
        yield cells


def check_imports(pe, allowed):
    for library, function in pe.imports():
        if isinstance(function, int):
            yield f"import: {library} by the number {function}"
        elif (library.lower().removesuffix(".dll"), function) not in allowed:
            yield f"import: {library} {function} is not on the list of what every target exports"


# --- Resources ---

KIND_NAMES = {1: "cursor", 2: "bitmap", 3: "icon", 4: "menu", 5: "dialog", 6: "strings",
              12: "cursor group", 14: "icon group", 16: "version", 24: "manifest"}
CURSOR, BITMAP, ICON, DIALOG, STRINGS, CURSOR_GROUP, ICON_GROUP, VERSION = 1, 2, 3, 5, 6, 12, 14, 16

EXPECTED_RESOURCES = {(ICON_GROUP, 101), (BITMAP, 101), (DIALOG, 101), (STRINGS, 1), (VERSION, 1),
                      (CURSOR_GROUP, 32649), (ICON, 1), (ICON, 2), (CURSOR, 1)}

EXPECTED_DIALOG = {
    # Popup, caption, system menu, minimise box; 3-D look and font are the only DS_ bits.
    "style": "0x80ca0044", "extended style": "0x10000", "place": (0, 0, 158, 164),
    "menu": "", "class": "", "caption": "Hostscope", "font": (8, "MS Sans Serif"),
    "item 102": ("LISTBOX", "", (4, 36, 150, 111), "0x50014100", "0x200"),
    "item 1002": ("BUTTON", "&Send e-mail after exit", (4, 152, 84, 9), "0x50010503", "0x0"),
}
EXPECTED_VERSION = {
    "file version": (0, 9, 3, 0), "product version": (0, 9, 3, 0), "FileVersion": "0.9.3.0",
    "ProductVersion": "0.93b", "InternalName": "Hostscope", "OriginalFilename": "hscope.exe",
    "ProductName": "Hostscope Utility",
}
EXPECTED_STRINGS = {1: re.compile(r"http://\S+"), 2: re.compile("Close"),
                    3: re.compile(r"Hostscope v\.0\.93b")}


def compare_fields(what, found, expected, whole):
    for field in expected:
        if field not in found:
            yield f"{what}: has no {field}"
        elif found[field] != expected[field]:
            yield f"{what}: {field} is {found[field]}, not {expected[field]}"
    if whole:
        yield from (f"{what}: has {field} as well" for field in found.keys() - expected.keys())


def check_picture(what, data, side, bits, mask):
    """A device-independent bitmap as the oldest loaders know it, as long as its header tells."""
    header_size, width, height, planes, depth, compression = struct.unpack_from("<IiiHHI", data)
    found = (header_size, width, height, planes, depth, compression)
    expected = (40, side, side * (2 if mask else 1), 1, bits, 0)
    if found != expected:
        yield f"{what}: header, width, height, planes, bits, packing are {found}, not {expected}"
        return
    rows = [side * bits] + ([side] if mask else [])
    size = 40 + 4 * 2 ** bits + sum((row + 31) // 32 * 4 * side for row in rows)
    if len(data) != size:
        yield f"{what}: {len(data)} bytes, not {size}"


def check_icon(group, by_name):
    kind, count = struct.unpack_from("<HH", group, 2)
    entries = [struct.unpack_from("<BBBBHHIH", group, 6 + 14 * i) for i in range(count)]
    sizes = [entry[:3] for entry in entries]
    if kind != 1 or sorted(sizes) != [(16, 16, 16), (32, 32, 16)]:
        yield f"icon 101: width, height, colours are {sizes}, not 32, 32, 16 and 16, 16, 16"
        return
    for side, _, _, _, _, bits, _, name in entries:
        if bits != 4:
            yield f"icon 101: {side} x {side} says {bits} bits, not 4"
        yield from check_picture(f"icon 101, {side} x {side}", by_name[ICON, name], side, 4, True)


def check_hand(group, by_name):
    kind, count, width, _, _, _, _, name = struct.unpack_from("<HHHHHHIH", group, 2)
    if (kind, count, width) != (2, 1, 32):
        yield f"hand cursor: {count} picture(s), {width} wide, not one, 32 wide"
        return
    x, y = struct.unpack_from("<HH", by_name[CURSOR, name])
    if not (x < 32 and y < 32):
        yield f"hand cursor: the hot spot {x}, {y} lies outside"
    yield from check_picture("hand cursor", by_name[CURSOR, name][4:], 32, 1, True)


def check_strings(block):
    offset = 0
    for identifier in range(16):
        text, offset = pe_file.counted_text(block, offset)
        expected = EXPECTED_STRINGS.get(identifier, re.compile(""))
        if not expected.fullmatch(text):
            yield f"strings: {identifier} is {text!r}, not {expected.pattern!r}"


def check_resources(pe):
    resources = list(pe.resources())
    by_name = {(r.kind, r.name): r.data for r in resources}
    for kind, name in sorted(EXPECTED_RESOURCES - by_name.keys()):
        yield f"resources: no {KIND_NAMES[kind]} {name}"
    for kind, name in by_name.keys() - EXPECTED_RESOURCES:
        yield f"resources: {KIND_NAMES.get(kind, kind)} {name} as well"
    if len(resources) != len(by_name):
        yield "resources: more than one language"
    checks = {
        (DIALOG, 101): lambda data: compare_fields(
            "dialog 101", pe_file.read_dialog(data), EXPECTED_DIALOG, whole=True),
        (VERSION, 1): lambda data: compare_fields(
            "version", pe_file.read_version(data), EXPECTED_VERSION, whole=False),
        (BITMAP, 101): lambda data: check_picture("bitmap 101", data, 64, 8, False),
        (ICON_GROUP, 101): lambda data: check_icon(data, by_name),
        (CURSOR_GROUP, 32649): lambda data: check_hand(data, by_name),
        (STRINGS, 1): check_strings,
    }
    for (kind, name), check in checks.items():
        if (kind, name) not in by_name:
            continue
        try:
            yield from check(by_name[kind, name])
        except (pe_file.BadFile, struct.error, KeyError, UnicodeDecodeError) as error:
            yield f"{KIND_NAMES[kind]} {name}: {error}"


# --- Code ---

CONDITIONS = "o no b ae e ne be a s ns p np l ge le g".split()

# As the disassembler names them in its Intel notation.
INTEGER_INSTRUCTIONS = set("""
    aaa aad aam aas adc add and bound bsf bsr bt btc btr bts call cbw cdq clc cld cmc cmp cmps cwd
    cwde daa das dec div enter idiv imul inc int3 jcxz jecxz jmp lahf lds lea leave les lfs lgs lods
    loop loope loopne lss mov movs movsx movzx mul neg nop not or pop popa popaw popf popfw push pusha
    pushaw pushf pushfw rcl rcr ret rol ror sahf sal sar sbb scas shl shld shr shrd stc std stos sub
    test xchg xlat xor wait fwait
    """.split()) | {"j" + c for c in CONDITIONS} | {"set" + c for c in CONDITIONS}

# These reach past the system, or ask about what is the system's alone; some systems stop the program.
SYSTEM_INSTRUCTIONS = set("""
    arpl callf cli clts hlt in ins int into iret iretd iretw jmpf lar lgdtd lidtd lldt lmsw lsl ltr
    movcr out outs retf sgdtd sidtd sldt smsw sti str verr verw
    """.split())
SYSTEM_FORMS = ((re.compile("call (?:FWORD|0x[0-9a-f]+:)"), "callf"),
                (re.compile("jmp (?:FWORD|0x[0-9a-f]+:)"), "jmpf"),
                (re.compile(r"mov .*\b[cdt]r\d"), "movcr"))

FLOAT_INSTRUCTIONS = set("""
    f2xm1 fabs fadd faddp fbld fbstp fchs fclex fcom fcomp fcompp fcos fdecstp fdiv fdivp fdivr
    fdivrp ffree fiadd ficom ficomp fidiv fidivr fild fimul fincstp finit fist fistp fisub fisubr
    fld fld1 fldcw fldenv fldl2e fldl2t fldlg2 fldln2 fldpi fldz fmul fmulp fnclex fninit fnop
    fnsave fnstcw fnstenv fnstsw fpatan fprem fprem1 fptan frndint frstor fsave fscale fsetpm fsin
    fsincos fsqrt fst fstcw fstenv fstp fstsw fsub fsubp fsubr fsubrp ftst fucom fucomp fucompp fxam
    fxch fxtract fyl2x fyl2xp1
    """.split())

PREFIXES = set("rep repz repnz lock data16 addr16 cs ds es fs gs ss".split())
FUNCTION_LINE = re.compile(r"^[0-9a-f]+ <(.*)>:$")
INSTRUCTION_LINE = re.compile(r"^ *([0-9a-f]+):\t(?:[0-9a-f]{2} )+ *\t(.*)$")


# The linker ends the code with the tables of static constructors and destructors: -1, addresses, 0.
EMPTY_TABLES = bytes.fromhex("ffffffff00000000") * 2


def instructions(path, end):
    """(function without unnamed namespaces and arguments, address, mnemonic) of every instruction before the end."""
    command = [OBJDUMP, "-d", "-C", "-w", "-M", "intel", f"--stop-address={end:#x}", path]
    listing = subprocess.run(command, check=True, stdout=subprocess.PIPE, encoding="latin-1").stdout
    function = ""
    for line in listing.splitlines():
        if match := FUNCTION_LINE.match(line):
            function = match[1].replace("(anonymous namespace)::", "").split("(")[0]
        elif match := INSTRUCTION_LINE.match(line):
            words = [word for word in match[2].split() if word not in PREFIXES]
            # A prefix that stands alone is an instruction of its own to the disassembler.
            form = next((name for form, name in SYSTEM_FORMS if form.match(" ".join(words))), None)
            yield function, match[1], form or (words[0] if words else "nop")


def check_code(path, allowances):
    pe = pe_file.PeFile(path.read_bytes())
    code = next((s for s in pe.sections if s.name == ".text"), None)
    if code is None or not code.data.endswith(EMPTY_TABLES):
        yield "code: it does not end with empty tables of static constructors and destructors"
        return
    end = pe.header["ImageBase"] + code.address + len(code.data) - len(EMPTY_TABLES)
    known = INTEGER_INSTRUCTIONS | FLOAT_INSTRUCTIONS
    count = 0
    for function, address, mnemonic in instructions(path, end):
        count += 1
        if mnemonic in known or mnemonic in allowances.get(function, ()):
            continue
        why = ("reaches past the system" if mnemonic in SYSTEM_INSTRUCTIONS
               else "not of an 80386 or 80387")
        yield f"code: {mnemonic} at {address} in {function}: {why}"
    if count == 0:
        yield "code: no instructions found"


def check_symbols(pe, symbols):
    """The file with symbols is the program, and holds nothing that start-up code had to run."""
    if not symbols.symbol_names:
        yield "symbols: the file has none"
    if [s[:4] for s in pe.sections] != [s[:4] for s in symbols.sections] or any(
            own.data != other.data for own, other in zip(pe.sections, symbols.sections)):
        yield "symbols: the file is another program"
    for name in symbols.symbol_names:
        if re.match(r"_*GLOBAL__(sub_)?[ID]", name):
            yield f"code: static constructor or destructor {name}, which nothing runs"


# --- The whole ---


def check_size(pe, limit):
    if len(pe.data) > limit:
        yield f"size: {len(pe.data)} bytes, more than {limit}"


def check_same(data, other):
    if data == other:
        return
    place = next((i for i, pair in enumerate(zip(data, other)) if pair[0] != pair[1]),
                 min(len(data), len(other)))
    yield f"same: differs from offset {place:#x} on ({len(data)} and {len(other)} bytes)"


def findings(options):
    imports = {(library, function) for library, function, _ in read_table(options.imports, 3)}
    allowances = {function: mnemonics.split()
                  for function, mnemonics in read_table(options.instructions, 2)}
    try:
        pe = pe_file.PeFile(options.exe.read_bytes())
        symbols = pe_file.PeFile(options.symbols.read_bytes()) if options.symbols else None
        yield from check_size(pe, options.max_size)
        yield from check_headers(pe, is_plugin=options.plugin is not None)
        yield from check_imports(pe, imports)
        if options.plugin is None:
            yield from check_resources(pe)
        else:
            yield from check_exports(pe, options.plugin)
            if pe.has_directory(pe_file.DIRECTORY_RESOURCE):
                yield "resources: a plug-in has none"
        if symbols:
            yield from check_symbols(pe, symbols)
        yield from check_code(options.symbols or options.exe, allowances)
    except pe_file.BadFile as error:
        yield f"file: {error}"
        return
    if options.same:
        yield from check_same(pe.data, options.same.read_bytes())


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n", 1)[0])
    parser.add_argument("exe", type=pathlib.Path)
    parser.add_argument("--symbols", type=pathlib.Path)
    parser.add_argument("--plugin", metavar="FUNCTION")
    parser.add_argument("--imports", type=pathlib.Path, default=HERE / "allowed_imports.tsv")
    parser.add_argument("--instructions", type=pathlib.Path,
                        default=HERE / "allowed_instructions.tsv")
    parser.add_argument("--max-size", type=int, default=98304)
    parser.add_argument("--same", type=pathlib.Path)
    options = parser.parse_args()
    try:
        found = list(findings(options))
    except (OSError, ValueError, subprocess.CalledProcessError) as error:
        print(f"gate.py: {error}", file=sys.stderr)
        return 2
    for finding in found:
        print(finding)
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
