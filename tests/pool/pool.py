"""One CTest folder with the tests of several builds, so that CTest runs all of them side by side and begins
with the longest.

    pool.py FOLDER PRESET=BUILD_FOLDER... [--labels LABEL...] [--only FILE]

Each test keeps its command and its properties and is called PRESET/NAME. --only names a file with such names,
one in a line: the others are left out. CTest itself remembers in FOLDER how long each took.
"""

import argparse
import json
import pathlib
import subprocess


def tests_of(build):
    """As CTest tells them: name, command and properties."""
    told = subprocess.run(
        ["ctest", "--test-dir", str(build), "--show-only=json-v1"], check=True, capture_output=True, text=True
    )
    return [test for test in json.loads(told.stdout)["tests"] if "command" in test]


def properties_of(test):
    return {each["name"]: each["value"] for each in test["properties"]}


def quoted(text):
    """For CMake: a bracket argument holds any text that does not hold its end."""
    return f"[==[{text}]==]"


def value_of(value):
    """A list becomes one with semicolons; its own are escaped."""
    if isinstance(value, list):
        return ";".join(str(each).replace(";", "\\;") for each in value)
    if isinstance(value, bool):
        return "ON" if value else "OFF"
    return str(value)


def entry(preset, test, known):
    """The lines of a CTest file that declare it. What is not known to CTest yet counts as long as it may
    take: those come first."""
    name = f"{preset}/{test['name']}"
    properties = properties_of(test)
    if name not in known and "TIMEOUT" in properties:
        properties["COST"] = properties["TIMEOUT"]
    lines = [f"add_test({quoted(name)} {' '.join(map(quoted, test['command']))})"]
    for key, value in properties.items():
        lines.append(f"set_tests_properties({quoted(name)} PROPERTIES {key} {quoted(value_of(value))})")
    return "\n".join(lines)


def costs(folder):
    """Seconds by name of the tests that CTest has run in the folder."""
    path = folder / "Testing" / "Temporary" / "CTestCostData.txt"
    if not path.exists():
        return {}
    fields = [line.split() for line in path.read_text(encoding="utf-8").partition("---")[0].splitlines()]
    return {name: float(seconds) for name, _, seconds in fields}


def has_label(test, labels):
    return not labels or bool(set(labels) & set(properties_of(test).get("LABELS", [])))


def write_pool(folder, builds, labels=(), only=None):
    """builds: build folders by preset. Returns how many tests the pool has."""
    known = costs(folder)
    entries = [
        entry(preset, test, known)
        for preset, build in builds.items()
        for test in tests_of(build)
        if has_label(test, labels) and (only is None or f"{preset}/{test['name']}" in only)
    ]
    folder.mkdir(parents=True, exist_ok=True)
    (folder / "CTestTestfile.cmake").write_text("\n".join(entries) + "\n", encoding="utf-8")
    return len(entries)


def main():
    parser = argparse.ArgumentParser(usage=__doc__)
    parser.add_argument("folder", type=pathlib.Path)
    parser.add_argument("builds", nargs="+")
    parser.add_argument("--labels", nargs="*", default=[])
    parser.add_argument("--only", type=pathlib.Path)
    options = parser.parse_args()
    builds = dict(build.split("=", 1) for build in options.builds)
    only = set(options.only.read_text(encoding="utf-8").split()) if options.only else None
    print(f"{write_pool(options.folder, builds, options.labels, only)} tests")


if __name__ == "__main__":
    main()
