#!/usr/bin/env python3
"""Runs a Windows program in a Wine prefix of its own: a copy of the one in WINEPREFIX that is thrown
away afterwards. What the program stores is not found by others, nor what others store by it. It also has
a screen of its own, on which its windows are in front.

    in_own_prefix.py [--dpi DOTS_PER_INCH] [--host] PROGRAM [ARGUMENT...]

With --host the program is one of this side, and what it starts by Wine is there. Wine draws the frames of
windows itself there, because a bare screen has nobody else to do it. The exit code is the program's.
MOSAICON_UI_RUN marks it and all that it starts, for who looks for leftovers."""

import argparse
import os
import pathlib
import subprocess
import sys
import uuid

from wine_prefix import WinePrefix

REGISTRY = """
[Software\\\\Wine\\\\X11 Driver]
"Managed"="N"

[Control Panel\\\\Desktop]
"LogPixels"=dword:{dpi:08x}
"""


def configure(prefix, dpi):
    registry = prefix / "user.reg"
    text = registry.read_text()
    without_dpi = "".join(line for line in text.splitlines(True) if not line.startswith('"LogPixels"'))
    registry.write_text(without_dpi + REGISTRY.format(dpi=dpi))


class Screen:
    """An X server for one run; DISPLAY names it."""

    def __enter__(self):
        read, write = os.pipe()
        self._server = subprocess.Popen(
            ["Xvfb", "-displayfd", str(write), "-screen", "0", "1920x1200x24", "-nolisten", "tcp"],
            pass_fds=[write],
            stdin=subprocess.DEVNULL,
            stderr=subprocess.DEVNULL,
        )
        os.close(write)
        with os.fdopen(read) as answer:
            number = answer.readline().strip()
        if not number:
            sys.exit("Xvfb does not start")
        os.environ["DISPLAY"] = f":{number}"
        return self

    def __exit__(self, *_):
        self._server.terminate()
        self._server.wait()


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--dpi", type=int, default=96)
    parser.add_argument("--host", action="store_true")
    parser.add_argument("program")
    parser.add_argument("arguments", nargs=argparse.REMAINDER)
    options = parser.parse_args()
    original = os.environ.get("WINEPREFIX") or sys.exit("WINEPREFIX is not set")
    with Screen():
        prefix = WinePrefix(pathlib.Path(original).resolve(), "ui")
        try:
            configure(prefix.path, options.dpi)
            os.environ["MOSAICON_UI_RUN"] = uuid.uuid4().hex
            runner = [] if options.host else [os.environ.get("WINE", "wine")]
            run = subprocess.run([*runner, options.program, *options.arguments], check=False)
        finally:
            prefix.close()
    return run.returncode


if __name__ == "__main__":
    sys.exit(main())
