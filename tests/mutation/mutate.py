"""Changes the sources of some rooms, one small thing at a time, and asks the tests of the room whether they
notice. What they do not notice is behaviour that no test shows, or makes no difference at all.

The checkout stays as it is: mutants live in the build folder. One that does not compile is not counted.
"""

import argparse
import concurrent.futures
import json
import pathlib
import random
import sys
from dataclasses import dataclass, field

sys.path.insert(0, str(pathlib.Path(__file__).parent))
from equivalents import Equivalents
from mutants import mutants_of
from rooms import ROOMS, sources_of
from test_programs import PLAIN, SANITIZED, BuildFolder, TestPrograms

TOP = pathlib.Path(__file__).resolve().parents[2]
BUILD = TOP / "build" / "mutate"
SURVIVORS = BUILD / "survivors.json"  # of the last run
ENOUGH = 85  # per cent of the mutants of a room that are not known as equivalent


@dataclass
class Outcome:
    """Of one source, or of all of a room."""

    noticed: int = 0
    equivalent: int = 0
    survivors: list = field(default_factory=list)

    def add(self, other):
        self.noticed += other.noticed
        self.equivalent += other.equivalent
        self.survivors += other.survivors

    def percent(self):
        counted = self.noticed + len(self.survivors)
        return 100.0 if counted == 0 else 100.0 * self.noticed / counted

    def row(self, name):
        survived = len(self.survivors)
        total = self.noticed + self.equivalent + survived
        return f"{name:32}{total:8}{self.noticed:9}{survived:10}{self.equivalent:12}{self.percent():10.1f}"


HEADING = f"{'':32}{'mutants':>8}{'noticed':>9}{'survived':>10}{'equivalent':>12}{'per cent':>10}"


def passes(text, testers):
    """What is not noticed is tried with the sanitizers, which these tests run with. Every thread takes one of
    the testers for itself."""
    tester = testers.pop()
    try:
        passed = tester.passes(text, PLAIN)
        return tester.passes(text, SANITIZED) if passed else passed
    finally:
        testers.append(tester)


def check_source(file, text, mutants, testers, equivalents):
    with concurrent.futures.ThreadPoolExecutor(len(testers)) as pool:
        passed = list(pool.map(lambda mutant: passes(mutant.applied(text), testers), mutants))
    survivors = [mutant for mutant, has_passed in zip(mutants, passed) if has_passed]
    known, unknown = equivalents.split(file, survivors)
    for mutant in unknown:
        print(f"{file}:{mutant.line}: {mutant.before}\n  -> {mutant.after}", flush=True)
    return Outcome(passed.count(False), len(known), unknown), survivors


def complaints(file, mutants, equivalents, survivors=None):
    """What is wrong with the list of equivalents. The survivors are those of a whole run."""
    stale = equivalents.beyond(file, mutants)
    for _, before, after in stale:
        yield f"{file}: listed as equivalent, but there is no such mutant: {before} -> {after}"
    if survivors is None:
        return
    for key in equivalents.beyond(file, survivors):
        if key not in stale:
            yield f"{file}: listed as equivalent, but it was noticed: {key[1]} -> {key[2]}"


def choose(file, mutants, arguments, survived_before):
    if arguments.again:
        mutants = [m for m in mutants if [file, m.before, m.after] in survived_before]
    if arguments.sample is not None and arguments.sample < len(mutants):
        chosen = random.Random(f"{arguments.seed} {file}").sample(range(len(mutants)), arguments.sample)
        mutants = [mutants[i] for i in sorted(chosen)]
    return mutants


def parse(command_line):
    parser = argparse.ArgumentParser(prog="scripts/mutate", description=__doc__)
    parser.add_argument("rooms", metavar="ROOM", nargs="*", help=f"{', '.join(ROOMS)}; all without one")
    parser.add_argument("--file", action="append", metavar="NAME", help="only this source, as room/name.cpp")
    parser.add_argument("--list", action="store_true", help="the mutants, without running any")
    parser.add_argument("--jobs", type=int, default=1, metavar="N", help="mutants at once")
    parser.add_argument("--sample", type=int, metavar="N", help="only so many of each source, by chance")
    parser.add_argument("--seed", default="0", help="another chance")
    parser.add_argument("--again", action="store_true", help="only what survived the last time")
    arguments = parser.parse_args(command_line)
    for room in arguments.rooms:
        if room not in ROOMS:
            parser.error(f"there is no room {room}")
    arguments.sources = {}
    for room in arguments.rooms or ROOMS:
        arguments.sources.update(sources_of(room))
    for name in arguments.file or []:
        if name not in arguments.sources:
            parser.error(f"{name} is none of the sources in tests/mutation/rooms.py")
    if arguments.file:
        arguments.sources = {file: arguments.sources[file] for file in arguments.file}
    return arguments


def read(file):
    return (TOP / "src" / file).read_text(encoding="utf-8")


def list_mutants(arguments):
    for file in arguments.sources:
        for mutant in choose(file, mutants_of(read(file)), arguments, survivors_before()):
            print(f"{file}:{mutant.line}: {mutant.before}\n  -> {mutant.after}")


def survivors_before():
    return json.loads(SURVIVORS.read_text(encoding="utf-8")) if SURVIVORS.exists() else []


def run(arguments, equivalents):
    build = BuildFolder(BUILD)
    build.build(sorted({program for programs in arguments.sources.values() for program in programs}))
    before, remembered, wrong, outcomes = survivors_before(), [], [], {}
    for file, programs in arguments.sources.items():
        text = read(file)
        everything = mutants_of(text)
        mutants = choose(file, everything, arguments, before)
        if not mutants and arguments.again:
            continue
        scratch = [BUILD / "mutants" / str(i) for i in range(arguments.jobs)]
        testers = [TestPrograms(build, TOP / "src" / file, programs, folder) for folder in scratch]
        outcomes[file], survivors = check_source(file, text, mutants, testers, equivalents)
        print(f"{file}: {outcomes[file].percent():.1f} per cent of {len(mutants)}", flush=True)
        remembered += [[file, mutant.before, mutant.after] for mutant in outcomes[file].survivors]
        is_whole = len(mutants) == len(everything)
        wrong += complaints(file, everything, equivalents, survivors if is_whole else None)
        SURVIVORS.write_text(json.dumps(remembered, indent=1), encoding="utf-8")
    return outcomes, wrong


def report(outcomes, wrong):
    """Returns whether all is well."""
    rooms = {}
    print(HEADING)
    for file, outcome in outcomes.items():
        print(outcome.row(file))
        rooms.setdefault(file.split("/")[0], Outcome()).add(outcome)
    for room, outcome in rooms.items():
        print(outcome.row(f"all of {room}"))
    for complaint in wrong:
        print(complaint)
    return not wrong and all(outcome.percent() >= ENOUGH for outcome in rooms.values())


def main(command_line):
    arguments = parse(command_line)
    if arguments.list:
        list_mutants(arguments)
        return 0
    equivalents = Equivalents((TOP / "tests/mutation/equivalent.txt").read_text(encoding="utf-8"))
    outcomes, wrong = run(arguments, equivalents)
    known = {file for room in ROOMS for file in sources_of(room)}
    wrong += [
        f"listed as equivalent, but not mutated: {file}" for file in equivalents.files() if file not in known
    ]
    return 0 if report(outcomes, wrong) else 1


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
