"""Fixture of the end-to-end tests: runs mosaicon-batch under Wine and watches what it leaves.

Needs in the environment:
  MOSAICON_STAGE      the program's folder, laid out with the tile engine or with python.exe for Wine
  MOSAICON_FAKE_TOOL  fake_tool.exe, which stands in for tools (see fake_tool.cpp)
  WINEPREFIX          a complete Wine prefix; what runs uses a copy of it, beside it
"""

import hashlib
import os
import pathlib
import shutil
import signal
import subprocess
import sys
import tempfile
import unittest
import uuid

sys.path.insert(0, str(pathlib.Path(__file__).parent.parent / "support"))
from wine_prefix import WinePrefix, link_or_copy  # noqa: E402
from wine_side import WINE, keep_wine_running, wait_until, windows_path  # noqa: E402

PATIENCE = 600  # seconds until a test calls a run hung
MARK = "MOSAICON_E2E_RUN"


def folder_from_environment(name, what):
    path = pathlib.Path(os.environ.get(name) or sys.exit(f"{name} is not set: it names {what}"))
    return path if path.exists() else sys.exit(f"{name} names {path}, which does not exist")


STAGE = folder_from_environment("MOSAICON_STAGE", "the program's folder").resolve()
FAKE_TOOL = folder_from_environment("MOSAICON_FAKE_TOOL", "fake_tool.exe").resolve()
WINEPREFIX = folder_from_environment("WINEPREFIX", "the Wine prefix to use").resolve()
if not (STAGE / "mosaicon-batch.exe").exists():
    sys.exit(f"there is no mosaicon-batch.exe in {STAGE}")

# What cuts the tiles, and a word of its command line on this side: the engine is started without its name.
ENGINE = "mosaicon-tiler.exe"
TILER = ENGINE if (STAGE / "gdal2tiles" / ENGINE).exists() else "python.exe"
TILER_AT_WORK = "mercator" if TILER == ENGINE else "gdal2tiles.py"


def start_wine():
    """For a whole module: a fresh copy of the Wine prefix, so that other users of it are neither seen
    nor disturbed, and one Wine process that lives as long as the module."""
    prefix = WinePrefix(WINEPREFIX, "e2e")
    unittest.addModuleCleanup(prefix.close)
    keep_wine_running(PATIENCE)
    # Whoever makes the first window starts Wine's desktop, which keeps the starter's standard error
    # open for as long as Wine runs. So that is a run of whose output nobody waits for the end.
    subprocess.run(
        [WINE, windows_path(STAGE / "mosaicon-batch.exe"), "--target", r"C:\no", "no.tif"],
        stdin=subprocess.DEVNULL,
        stdout=subprocess.DEVNULL,
        stderr=subprocess.DEVNULL,
        timeout=PATIENCE,
        check=False,
    )


def user_folders(*below):
    users = pathlib.Path(os.environ["WINEPREFIX"]) / "drive_c" / "users"
    return list(users.glob(os.path.join("*", *below)))


def left_in_user_folders():
    """Logs and temporary folders, of this program and of its tiling script."""
    found = set()
    for logs in user_folders("AppData", "Local", "Mosaicon", "Logs"):
        found.update(logs.iterdir())
    for temporary in user_folders("Temp") + user_folders("AppData", "Local", "Temp"):
        found.update(temporary.glob("mosaicon-tiler-*"))
    return found


def snapshot(folder):
    """Every file below a folder with its content's checksum."""
    return {
        str(path.relative_to(folder)): hashlib.sha256(path.read_bytes()).hexdigest()
        for path in sorted(pathlib.Path(folder).rglob("*"))
        if path.is_file()
    }


def as_root(*command):
    """Mounts need it; the project's set-up does as well."""
    subprocess.run(command if os.geteuid() == 0 else ["sudo", "-n", *command], check=True)


class Run:
    """What a run of the program said."""

    def __init__(self, code, output, errors):
        self.code = code
        self.raw_output = output
        self.output = self._lines(output)
        self.errors = self._lines(errors)

    @staticmethod
    def _lines(data):
        text = data.decode("cp1252")
        if "\n" in text.replace("\r\n", "") or "\r" in text.replace("\r\n", ""):
            raise AssertionError(f"line ends that are not CR LF in {text!r}")
        return text.split("\r\n")[:-1] if text.endswith("\r\n") or not text else text.split("\r\n")

    def __repr__(self):
        return f"exit code {self.code}\noutput {self.output}\nerrors {self.errors}"


class BatchTest(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        # The blanks are part of every test.
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="mosaicon e2e ")).resolve()
        self.addCleanup(shutil.rmtree, self.folder)
        self.mark = uuid.uuid4().hex
        self.known = left_in_user_folders()
        self.addCleanup(self.remove_logs)
        self.addCleanup(self.check_that_nothing_is_left)

    # Running

    def command(self, *arguments, stage=STAGE):
        """Paths are given with a drive, texts as they are."""
        return [
            WINE,
            windows_path(stage / "mosaicon-batch.exe"),
            *(
                windows_path(argument) if isinstance(argument, pathlib.Path) else argument
                for argument in arguments
            ),
        ]

    def environment(self, **changes):
        return {**os.environ, "WINEDEBUG": "-all", MARK: self.mark, **changes}

    def start(self, *arguments, stage=STAGE, environment=None, **options):
        options = {
            "stdin": subprocess.DEVNULL,
            "stdout": subprocess.PIPE,
            "stderr": subprocess.PIPE,
            **options,
        }
        started = subprocess.Popen(
            self.command(*arguments, stage=stage),
            cwd=self.folder,
            env=self.environment(**(environment or {})),
            **options,
        )
        self.addCleanup(self.abandon, started)
        return started

    def finish(self, started):
        output, errors = started.communicate(timeout=PATIENCE)
        return Run(started.returncode, output, errors)

    def batch(self, *arguments, **options):
        return self.finish(self.start(*arguments, **options))

    def abandon(self, started):
        if started.poll() is None:
            started.kill()
        started.communicate(timeout=PATIENCE)

    # The program's folder

    def private_stage(self):
        """A copy of the program's folder that a test may break."""
        target = self.folder / "program"
        if not target.exists():
            shutil.copytree(STAGE, target, copy_function=link_or_copy)
        return target

    def replace_tool(self, stage, name, replacement=FAKE_TOOL):
        path = stage / "gdal2tiles" / name
        path.unlink()  # never write into it: it is one file with the original
        shutil.copy(replacement, path)

    # Watching

    def marked_processes(self):
        """Live processes that this test's runs started: process ids and command lines."""
        for name in filter(str.isdigit, os.listdir("/proc")):
            try:
                marked = f"{MARK}={self.mark}".encode() in pathlib.Path(f"/proc/{name}/environ").read_bytes()
                line = pathlib.Path(f"/proc/{name}/cmdline").read_bytes().rstrip(b"\0")
            except OSError:
                continue
            if marked and line:
                yield int(name), line.decode(errors="replace")

    def processes(self, part=""):
        """Those of Wine itself are left out."""
        return {
            pid: line
            for pid, line in self.marked_processes()
            if part in line and not line.lower().startswith("c:\\windows\\")
        }

    def waiting_places(self):
        """Where in the kernel the threads of all processes wait that this test's runs started, those of
        Wine as well: what a report of a hang needs."""
        found = []
        for pid, line in self.marked_processes():
            try:
                places = [
                    (task / "wchan").read_text() for task in pathlib.Path(f"/proc/{pid}/task").iterdir()
                ]
            except OSError:
                continue
            found.append(f"{pid} {line}: {', '.join(places)}")
        return found

    def check_that_nothing_is_left(self):
        if not wait_until(lambda: not self.processes(), 20):
            left = self.processes()
            for pid in left:
                os.kill(pid, signal.SIGKILL)
            self.fail(f"processes left over: {left}")
        if not wait_until(lambda: not self.new_folders(), 20):
            self.fail(f"temporary folders left over: {self.new_folders()}")

    def new_folders(self):
        return [path for path in left_in_user_folders() - self.known if path.is_dir()]

    def new_logs(self):
        return sorted(path for path in left_in_user_folders() - self.known if path.is_file())

    def remove_logs(self):
        for path in self.new_logs():
            path.unlink()
