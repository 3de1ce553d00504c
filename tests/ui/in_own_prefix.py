#!/usr/bin/env python3
"""Runs a Windows program in a Wine prefix of its own: a copy of the one in WINEPREFIX that is thrown
away afterwards. What the program stores is not found by others, nor what others store by it.

    in_own_prefix.py [--dpi DOTS_PER_INCH] PROGRAM [ARGUMENT...]

Wine draws the frames of windows itself there, because a bare screen has nobody else to do it. The exit
code is the program's. MOSAICON_UI_RUN marks it and all that it starts, for who looks for leftovers.
"""

import argparse
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import uuid

PATIENCE = 60  # seconds for Wine to end

REGISTRY = """
[Software\\\\Wine\\\\X11 Driver]
"Managed"="N"

[Control Panel\\\\Desktop]
"LogPixels"=dword:{dpi:08x}
"""


def link_or_copy(source, target):
    """The registry is written to, everything else is only read."""
    if source.endswith(".reg"):
        shutil.copy2(source, target)
        return
    try:
        os.link(source, target)
    except OSError:
        shutil.copy2(source, target)


def copy_prefix(target, dpi):
    source = pathlib.Path(os.environ.get("WINEPREFIX") or sys.exit("WINEPREFIX is not set"))
    shutil.copytree(source, target, symlinks=True, dirs_exist_ok=True, copy_function=link_or_copy)
    registry = target / "user.reg"
    text = registry.read_text()
    without_dpi = "".join(line for line in text.splitlines(True) if not line.startswith('"LogPixels"'))
    registry.write_text(without_dpi + REGISTRY.format(dpi=dpi))


def wait_for_wine():
    """Wine's own processes outlive the program for a moment."""
    try:
        subprocess.run(["wineserver", "-w"], timeout=PATIENCE)
    except subprocess.TimeoutExpired:
        subprocess.run(["wineserver", "-k"])


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--dpi", type=int, default=96)
    parser.add_argument("program")
    parser.add_argument("arguments", nargs=argparse.REMAINDER)
    options = parser.parse_args()
    # Beside the original, so that its files can be linked.
    beside = pathlib.Path(os.environ.get("WINEPREFIX", ".")).parent
    with tempfile.TemporaryDirectory(prefix="ui-prefix-", dir=beside,
                                     ignore_cleanup_errors=True) as folder:
        copy_prefix(pathlib.Path(folder), options.dpi)
        os.environ.update(WINEPREFIX=folder, MOSAICON_UI_RUN=uuid.uuid4().hex)
        run = subprocess.run([os.environ.get("WINE", "wine"), options.program, *options.arguments])
        wait_for_wine()
    return run.returncode


if __name__ == "__main__":
    sys.exit(main())
