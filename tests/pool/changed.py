"""Which tests the changes since the last commit can have touched, and which of them there is time for.

    changed.py POOL SECONDS JOBS PRESET=BUILD_FOLDER...

Prints their names as pool.py has them, PRESET/NAME, one in a line; tells on standard error what is left out.
POOL is the folder of pool.py, where CTest keeps how long each test takes. The builds must be up to date:
Ninja's record of what was included tells which programs hold a changed file.
"""

import functools
import pathlib
import re
import subprocess
import sys

from pool import costs, properties_of, tests_of

TOP = pathlib.Path(__file__).resolve().parents[2]
UNKNOWN = 10.0  # seconds, of a test that never ran
# Changes of these can show anywhere.
EVERYWHERE = re.compile(r"(^|/)CMake|^cmake/|^tests/support/|^scripts/set-up\.sh$|^\.clang-tidy$|^test$")
IMPORT = re.compile(r"^\s*(?:from|import) ([\w.]+)", re.MULTILINE)


def lines_from(*command, folder=TOP):
    return subprocess.run(command, cwd=folder, check=True, capture_output=True, text=True).stdout.splitlines()


def changed_files():
    """Those that differ from the last commit, and new ones, as absolute paths."""
    names = lines_from("git", "diff", "--name-only", "HEAD")
    names += lines_from("git", "ls-files", "--others", "--exclude-standard")
    return {(TOP / name).resolve() for name in names}


def objects_with(build, changed):
    """The object files, relative to the build folder, in which a changed file was compiled."""
    found, name = set(), ""
    for line in lines_from("ninja", "-t", "deps", folder=build):
        if line.startswith(" "):
            if (build / line.strip()).resolve() in changed:
                found.add(name)
        else:
            name = line.partition(":")[0]
    return found


def imported(script):
    """The script and those of its folder and of tests/support that it imports, directly or not."""
    found, open_ones = set(), [script]
    while open_ones:
        path = open_ones.pop()
        if path in found:
            continue
        found.add(path)
        for module in IMPORT.findall(path.read_text(encoding="utf-8", errors="replace")):
            name = module.replace(".", "/") + ".py"
            folders = (path.parent, script.parent, TOP / "tests" / "support", TOP / "tests" / "servers")
            open_ones += [folder / name for folder in folders if (folder / name).is_file()]
    return found


def reads(test, changed):
    """Whether a changed file is one of those that the test says it needs, or in such a folder."""
    needed = properties_of(test).get("REQUIRED_FILES", [])
    return any(path.is_relative_to(place) for place in needed for path in changed)


class Build:
    """What is known of one build folder."""

    def __init__(self, folder, changed):
        self.folder = folder.resolve()
        self.changed = changed
        self.objects = objects_with(self.folder, changed)

    @functools.cache
    def is_touched(self, target):
        """Whether a file of the build folder is made from a changed one."""
        inputs = lines_from("ninja", "-t", "inputs", target, folder=self.folder)
        return any(name in self.objects or (self.folder / name).resolve() in self.changed for name in inputs)

    def program_is_touched(self):
        """Whether the laid-out program is."""
        names = (
            "src/app/Mosaicon.exe",
            "src/batch/mosaicon-batch.exe",
            "src/crashrpt/crashsender.exe",
            "src/tiler/mosaicon-tiler.exe",
        )
        tools = TOP / "tools"
        return any(map(self.is_touched, names)) or any(
            path.is_relative_to(tools) and not path.name.endswith("_test.py") for path in self.changed
        )

    def touches(self, test):
        if reads(test, self.changed):
            return True
        for word in [*test["command"], *properties_of(test).get("ENVIRONMENT", [])]:
            path = pathlib.Path(word.partition("=")[2] if "=" in word else word)
            if path.name in ("stage", "stage-python") and self.program_is_touched():
                return True
            if not path.is_file():
                continue
            if path.is_relative_to(self.folder) and self.is_touched(str(path.relative_to(self.folder))):
                return True
            if path.suffix == ".py" and imported(path.resolve()) & self.changed:
                return True
        return False


def that_fit(names, seconds_of, seconds, jobs):
    """As many as are done in the time, the quick ones first; and the others."""
    chosen, left_out, total = [], [], 0.0
    for name in sorted(names, key=lambda name: seconds_of.get(name, UNKNOWN)):
        cost = seconds_of.get(name, UNKNOWN)
        if cost <= seconds and (total + cost) / jobs <= seconds:
            chosen.append(name)
            total += cost
        else:
            left_out.append(name)
    return chosen, left_out


def touched_tests(builds, changed):
    everything = any(EVERYWHERE.search(path.relative_to(TOP).as_posix()) for path in changed)
    for preset, folder in builds.items():
        build = Build(pathlib.Path(folder), changed)
        for test in tests_of(folder):
            if everything or build.touches(test):
                yield f"{preset}/{test['name']}"


def main(pool, seconds, jobs, *builds):
    changed = changed_files()
    if not changed:
        sys.exit("nothing has changed since the last commit")
    names = list(touched_tests(dict(build.split("=", 1) for build in builds), changed))
    chosen, left_out = that_fit(names, costs(pathlib.Path(pool)), float(seconds), int(jobs))
    for name in left_out:
        print(f"left out, there is no time for it: {name}", file=sys.stderr)
    print("\n".join(chosen))


if __name__ == "__main__":
    main(*sys.argv[1:])
