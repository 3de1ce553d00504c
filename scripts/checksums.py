"""Lists of checksums for generated files that are committed beside their sources.

A script that generates files ends with write_list; a test calls problems, so
that nobody commits a changed source without its new results. The lists have
the form that sha256sum checks too.
"""

import hashlib
import os
import pathlib


def _checksum(path):
    return hashlib.sha256(path.read_bytes()).hexdigest()


def _name(path, folder):
    return pathlib.PurePath(os.path.relpath(path.resolve(), folder.resolve())).as_posix()


def write_list(list_path, paths):
    """Writes the checksums of paths; their names are relative to the folder of the list."""
    list_path = pathlib.Path(list_path)
    lines = sorted((_name(pathlib.Path(path), list_path.parent), path) for path in paths)
    text = "".join(f"{_checksum(pathlib.Path(path))}  {name}\n" for name, path in lines)
    list_path.write_text(text, encoding="utf-8", newline="\n")


def read_list(list_path):
    """The checksums by name."""
    lines = pathlib.Path(list_path).read_text(encoding="utf-8").splitlines()
    return {name: checksum for checksum, name in (line.split("  ", 1) for line in lines)}


def problems(list_path, paths):
    """What differs between the list and the files that must be in it, one sentence each."""
    folder = pathlib.Path(list_path).parent
    listed = read_list(list_path)
    expected = {_name(pathlib.Path(path), folder) for path in paths}
    found = [f"{name} is not in the list" for name in sorted(expected - listed.keys())]
    for name, checksum in sorted(listed.items()):
        path = folder / name
        if not path.is_file():
            found.append(f"{name} is missing")
        elif _checksum(path) != checksum:
            found.append(f"{name} has changed")
    return found
