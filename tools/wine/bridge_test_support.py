"""Fixture of python_bridge_test.py: a tool folder of its own, and ways to start python.exe."""

import json
import os
import pathlib
import re
import select
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "tests" / "support"))
import wine_side  # noqa: E402
from wine_side import WINE  # noqa: E402

BRIDGE = pathlib.Path(os.environ["MOSAICON_BRIDGE"]).resolve()
WINEPREFIX = pathlib.Path(os.environ["WINEPREFIX"]).resolve(strict=True)
PATIENCE = 300  # seconds until a test calls a run hung

# Prints what the script got, for Bridge.told.
TELL_ARGUMENTS = "import json, sys; print(json.dumps(sys.argv[1:]))"


def wait_until(condition, seconds):
    """The time that it took, or None when it did not come true."""
    start = time.monotonic()
    while time.monotonic() - start < seconds:
        if condition():
            return time.monotonic() - start
        time.sleep(0.02)
    return None


def command_line_of(pid):
    try:
        return pathlib.Path(f"/proc/{pid}/cmdline").read_bytes().decode(errors="replace")
    except OSError:
        return ""


def directory_of(pid):
    try:
        return os.readlink(f"/proc/{pid}/cwd")
    except OSError:
        return ""


def is_alive(pid):
    return command_line_of(pid) != ""  # empty for a zombie, too


def parent_of(pid):
    stat = pathlib.Path(f"/proc/{pid}/stat").read_text()
    return int(stat.rpartition(")")[2].split()[1])


def keep_wine_running():
    wine_side.keep_wine_running(PATIENCE)


class BridgeTest(unittest.TestCase):
    def setUp(self):
        # The letters are part of the test: blanks and accents in the place of installation.
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="wine bridge à "))
        self.addCleanup(shutil.rmtree, self.folder)
        for name in (BRIDGE.name, "python_host.py", "launcher_for_test.exe"):
            shutil.copy(BRIDGE.parent / name, self.folder)
        self.addCleanup(self.check_that_nothing_is_left)

    def processes(self, part=""):
        """Processes at work in this test's folder, with the given text in the command line."""
        pids = [int(name) for name in os.listdir("/proc") if name.isdigit()]
        return [
            pid
            for pid in pids
            if is_alive(pid) and part in command_line_of(pid) and directory_of(pid) == str(self.folder)
        ]

    def agents(self):
        """The two processes of python_host.py, parent first."""
        first, second = self.processes("python_host.py")
        return (first, second) if parent_of(second) == first else (second, first)

    def check_that_nothing_is_left(self):
        if wait_until(lambda: not self.processes(), 20) is None:
            left = {pid: command_line_of(pid) for pid in self.processes()}
            for pid in left:
                os.kill(pid, signal.SIGKILL)
            self.fail(f"left over: {left}")

    def script(self, text, name="script.py"):
        path = self.folder / name
        path.write_text(text, encoding="utf-8")
        return path

    def environment(self, changes):
        return {**os.environ, "WINEDEBUG": "-all", "LC_ALL": "C.UTF-8", **changes}

    def run_bridge(self, *arguments, program=(BRIDGE.name,), **changes):
        """Ordinary start: the command line begins with the program's name."""
        return subprocess.run(
            [WINE, *program, *arguments],
            cwd=self.folder,
            env=self.environment(changes),
            stdin=subprocess.DEVNULL,
            capture_output=True,
            timeout=PATIENCE,
            check=False,
        )

    def told(self, *arguments, program=(BRIDGE.name,), **changes):
        """What a script finds out that prints JSON."""
        result = self.run_bridge(*arguments, program=program, **changes)
        self.assertEqual((result.returncode, result.stderr), (0, b""))
        return json.loads(result.stdout)

    def launch(self, command_line, lifetime_ms=0):
        """Start as the program does it; see launcher_for_test.cpp."""
        launched = subprocess.Popen(
            [WINE, "launcher_for_test.exe", BRIDGE.name, str(lifetime_ms), command_line],
            cwd=self.folder,
            env=self.environment({}),
            stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE,
            stderr=subprocess.PIPE,
            bufsize=0,
        )
        self.addCleanup(self.abandon, launched)
        return launched

    def abandon(self, launched):
        """Whatever a failed test has left running: without the agents, nothing goes on."""
        if launched.poll() is None:
            for pid in self.processes("python_host.py"):
                os.kill(pid, signal.SIGKILL)
        launched.communicate(timeout=PATIENCE)

    def first_output(self, launched):
        """What is there as soon as anything is there."""
        self.assertTrue(select.select([launched.stdout], [], [], PATIENCE)[0], "no output")
        output = os.read(launched.stdout.fileno(), 4096)
        if not output:
            _, errors = launched.communicate(timeout=PATIENCE)
            self.fail(f"ended with {launched.returncode} and without output: {errors}")
        return output

    def finish(self, launched):
        """Rest of the output, and the exit code of python.exe."""
        output, errors = launched.communicate(timeout=PATIENCE)
        self.assertEqual(launched.returncode, 0, errors)
        return output, int(re.search(rb"exit code (\d+)", errors).group(1))
