"""What scripts need that start programs for Windows: under Wine, or on Windows itself."""

import os
import pathlib
import subprocess
import time
import unittest

UNDER_WINE = os.name != "nt"
WINE = os.environ.get("WINE", "wine")


def windows_path(path):
    return "Z:" + str(path).replace("/", "\\") if UNDER_WINE else str(path)


def unix_path(path):
    """Of what windows_path has made."""
    return pathlib.Path(path.removeprefix("Z:").replace("\\", "/"))


def keep_wine_running(patience):
    """For a whole module: otherwise each program starts Wine's own processes anew, which inherit its pipes
    and hold them open until they end, seconds later."""
    if not UNDER_WINE:
        return
    shell = subprocess.Popen(
        [WINE, "cmd"],
        env={**os.environ, "WINEDEBUG": "-all"},
        stdin=subprocess.PIPE,
        stdout=subprocess.PIPE,
        stderr=subprocess.DEVNULL,
    )
    unittest.addModuleCleanup(shell.communicate, b"exit\n", timeout=patience)
    if not shell.stdout.readline():
        raise RuntimeError("Wine does not start")


def wait_until(condition, seconds):
    """Whether it came true in time."""
    deadline = time.monotonic() + seconds
    while not condition():
        if time.monotonic() > deadline:
            return False
        time.sleep(0.02)
    return True
