"""What memory hscope.exe takes for itself under Wine, at its peak.

Usage: bench/memory.py WINDOWS_BUILD_FOLDER [PROFILE]     (the profile is profiles/full.ini; the build folder
holds the target hscope_counted)
Prints for the program with the profile, and with every switch off:
  blocks    what the program has had of the heap, and of whole pages (the list of processes, what DOS is
            handed), at most, counted at its own calls,
  image     the pages of its file, which all are its own on the oldest systems,
  stacks    the reserve of its two threads, which a run does not exceed,
and beside them what the whole process has written to at most (look by look), which is mostly Wine's: its
libraries, and all that they take for themselves, as for DirectX done by software. Exit code 1 when blocks, image
and stacks together are more than 3 MB.
"""

import pathlib
import re
import shutil
import struct
import subprocess
import sys
import tempfile
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent
sys.path.insert(0, str(ROOT / "tests/windows"))

import pe_file  # noqa: E402

MOST_KILOBYTES = 3 * 1024
LOOK_SECONDS = 0.01
QUIET_SECONDS = 5  # without a change of anything: the program waits for a key
LONGEST_SECONDS = 180
WRITTEN = re.compile(r"^Private_Dirty: +(\d+) kB$", re.MULTILINE)


def find_process(session, name):
    """The process of that name among those that the session has started."""
    for folder in pathlib.Path("/proc").glob("[0-9]*"):
        try:
            if ((folder / "comm").read_text().strip() == name[:15] and
                    f"wine-runs/{session}".encode() in (folder / "environ").read_bytes()):
                return folder
        except OSError:
            continue
    return None


def look(process, counter):
    """The peak of the blocks and what the whole process has written to now, in KB."""
    with (process / "mem").open("rb") as memory:
        memory.seek(counter)
        blocks = struct.unpack("<I", memory.read(4))[0] / 1024
    written = WRITTEN.search((process / "smaps_rollup").read_text())
    return blocks, int(written[1])


def peaks(program, counter, profile):
    """The largest of each in a run, which is ended once it has come to rest."""
    session = subprocess.Popen([ROOT / "tools/under_wine.sh", program, profile],
                               stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    largest, last, process = (0, 0), None, None
    quiet_since = time.monotonic()
    end = quiet_since + LONGEST_SECONDS
    while session.poll() is None and time.monotonic() < end:
        process = process or find_process(session.pid, program.name)
        try:
            now = look(process, counter) if process else None
        except (OSError, struct.error, TypeError):
            now = None  # not loaded yet, or gone
        if now != last:
            last, quiet_since = now, time.monotonic()
        elif now and time.monotonic() - quiet_since > QUIET_SECONDS:
            break
        largest = tuple(map(max, largest, now or (0, 0)))
        time.sleep(LOOK_SECONDS)
    session.terminate()
    session.wait()
    return largest


def counter_address(symbols):
    listing = subprocess.run(["i686-w64-mingw32-nm", symbols], check=True, stdout=subprocess.PIPE,
                             encoding="ascii").stdout
    return int(re.search(r"^([0-9a-f]+) \w counted_peak$", listing, re.MULTILINE)[1], 16)


def main():
    build = pathlib.Path(sys.argv[1]).resolve()
    profile = pathlib.Path(sys.argv[2]) if len(sys.argv) > 2 else ROOT / "profiles/full.ini"
    counter = counter_address(build / "hscope_counted_symbols.exe")
    program = pe_file.PeFile((build / "hscope.exe").read_bytes())
    image = program.header["ImageSize"] // 1024
    stacks = 2 * program.header["StackReserve"] // 1024
    own = {}
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        for file in "hscope_counted.exe", "sample.dll":
            shutil.copy(build / file, folder)
        shutil.copy(profile, folder / "profile.ini")
        (folder / "none.ini").write_bytes(b"[GENERAL]\r\nReportFileName=none.txt\r\n")
        print(f"{'KB':<18}{'blocks':>9}{'image':>9}{'stacks':>9}{'together':>10}{'process':>10}")
        for run in "none.ini", "profile.ini":
            blocks, process = peaks(folder / "hscope_counted.exe", counter, run)
            if blocks == 0:
                sys.exit("there was nothing to look at")
            own[run] = blocks + image + stacks
            print(f"{run:<18}{blocks:>9.1f}{image:>9}{stacks:>9}{own[run]:>10.1f}{process:>10}")
    return 0 if own["profile.ini"] <= MOST_KILOBYTES else 1


if __name__ == "__main__":
    sys.exit(main())
