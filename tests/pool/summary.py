"""What a run of the tests comes to: summary.py FOLDER STAGES.

FOLDER holds what CTest wrote with --output-junit results.xml. STAGES is a file with one line for each stage
of the run: its seconds, a blank and its name. Prints how many tests passed and failed, the ten slowest, and
the stages.
"""

import pathlib
import sys
import xml.etree.ElementTree

SLOWEST = 10


def results_of(path):
    """(name, seconds, status) of every test; CTest calls them "run", "fail", "notrun" and "disabled"."""
    root = xml.etree.ElementTree.parse(path).getroot()
    return [
        (case.get("name"), float(case.get("time") or 0), case.get("status")) for case in root.iter("testcase")
    ]


def not_passed(results):
    """A test that was not run has not passed."""
    return {name for name, _, status in results if status != "run"}


def lines_of(results, stages):
    """Sentences for people."""
    failed = not_passed(results)
    lines = [f"{len(results) - len(failed)} tests passed, {len(failed)} failed"]
    lines += [f"  failed: {name}" for name in sorted(failed)]
    lines.append("the slowest:")
    slowest = sorted(results, key=lambda result: -result[1])[:SLOWEST]
    lines += [f"  {seconds:6.1f} s  {name}" for name, seconds, _ in slowest]
    lines.append("seconds by stage:")
    lines += [f"  {int(seconds):6d} s  {name}" for seconds, name in stages]
    return lines


def read_stages(path):
    with open(path, encoding="utf-8") as file:
        return [tuple(line.rstrip("\n").split(" ", 1)) for line in file]


if __name__ == "__main__":
    folder = pathlib.Path(sys.argv[1])
    print("\n".join(lines_of(results_of(folder / "results.xml"), read_stages(sys.argv[2]))))
