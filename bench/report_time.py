"""What a whole run of the Linux program costs, told beside the cost of starting any program at all.

Usage: bench/report_time.py HSCOPE [RUNS]     (HSCOPE from the preset "linux")
Prints the processor time (user and system) of a run over machines/winxp with profiles/full.ini, of a run of
/bin/true, and their ratio, measured in turn in one go.
"""

import pathlib
import statistics
import sys
import tempfile

import measure

ROOT = pathlib.Path(__file__).resolve().parent.parent


def main():
    hscope = str(pathlib.Path(sys.argv[1]).resolve())
    runs = int(sys.argv[2]) if len(sys.argv) > 2 else 50
    with tempfile.TemporaryDirectory() as folder:
        report = [hscope, "--machine", str(ROOT / "machines" / "winxp"),
                  str(ROOT / "profiles" / "full.ini"), folder]
        bare = ["/bin/true"]
        figures = [(measure.cost(report, folder).milliseconds, measure.cost(bare, folder).milliseconds)
                   for _ in range(runs)]
    ours, theirs = (statistics.median(column) for column in zip(*figures))
    print(f"whole report   {ours:8.2f} ms of processor time (median of {runs} runs, "
          f"at most {max(figure[0] for figure in figures):.2f})")
    print(f"/bin/true      {theirs:8.2f} ms")
    print(f"ratio          {ours / max(theirs, 0.001):8.2f}")


if __name__ == "__main__":
    main()
