"""What was set up under Wine, from an empty prefix in which no other folder of this machine can be reached.
Needs in the environment a complete Wine prefix in WINEPREFIX, which is copied, and the build in
MOSAICON_PACKAGE_BUILD."""

import os
import pathlib
import re
import shutil
import subprocess
import sys
import unittest

from package_case import TOP, PackageCase

sys.path.insert(0, str(TOP / "tests" / "support"))
from wine_prefix import WinePrefix  # noqa: E402
from wine_side import WINE, keep_wine_running  # noqa: E402

PATIENCE = 300  # seconds
FOLDER = r"C:\Programme ä\Mosaicon hier"
KEY = r"HKCU\Software\Microsoft\Windows\CurrentVersion\Uninstall\Mosaicon"
SETTINGS = r"HKCU\Software\Kovel Software\Mosaicon"
DONE, FAILED, RUNNING, ADMINISTRATOR = 0, 2, 3, 4


def set_up_prefix():
    """For a whole module."""
    prefix = WinePrefix(pathlib.Path(os.environ["WINEPREFIX"]).resolve(), "package")
    unittest.addModuleCleanup(prefix.close)
    os.environ["WINEDEBUG"] = "-all"
    # All but the drive C: whoever looks for a file of the build finds nothing.
    (prefix.path / "dosdevices" / "z:").unlink()
    for link in (prefix.path / "drive_c" / "users").glob("*/*"):
        if link.is_symlink():  # to a folder of whoever runs the tests
            link.unlink()
            link.mkdir()
    keep_wine_running(PATIENCE)


def on_drive(path):
    """The place on this side of a file of the drive C."""
    drive = pathlib.Path(os.environ["WINEPREFIX"]) / "drive_c"
    return drive / path.removeprefix("C:\\").replace("\\", "/")


def run(*command, environment=None, as_user=()):
    """The exit code and what was said, in the letters of consoles. as_user: what makes a command that of
    another user."""
    done = subprocess.run(
        [*as_user, WINE, *command],
        env={**os.environ, **(environment or {})},
        stdin=subprocess.DEVNULL,
        stdout=subprocess.PIPE,
        stderr=subprocess.DEVNULL,
        timeout=PATIENCE,
        check=False,
        cwd=on_drive("C:\\windows"),
    )
    return done.returncode, done.stdout.decode("cp437", "replace")


def run_line(*words):
    """Words that stay as they are: the setup takes the rest of its line for the folder, without quotes."""
    return run("cmd", "/c", " ".join(words))[0]


def registry(key, value):
    """None where there is no such value."""
    code, text = run("reg", "query", key, "/v", value)
    found = re.search(rf"{value}\s+REG_\w+\s+(.*?)\r?$", text, re.MULTILINE)
    return found[1] if code == 0 and found else None


def names_below(folder):
    return {path.relative_to(folder).as_posix() for path in folder.rglob("*") if path.is_file()}


class SetupCase(PackageCase):
    compression = "no"

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        shutil.copyfile(next(cls.package.glob("*-setup.exe")), on_drive(r"C:\setup.exe"))

    def setUp(self):
        self.installed = on_drive(FOLDER)
        self.addCleanup(self.remove)

    def remove(self):
        if (self.installed / "uninstall.exe").exists():
            self.uninstall("/PURGE")
        shutil.rmtree(self.installed.parent, ignore_errors=True)
        run("reg", "delete", SETTINGS, "/f")

    def install(self, *options, setup=r"C:\setup.exe", folder=FOLDER):
        return run_line(setup, "/S", *options, *([f"/D={folder}"] if folder else []))

    def uninstall(self, *options):
        """A copy of it, so that its end can be waited for. The original stays then."""
        shutil.copyfile(self.installed / "uninstall.exe", on_drive(r"C:\uninstall.exe"))
        code = run_line(r"C:\uninstall.exe", "/S", *options, "_?=" + FOLDER)
        if code == DONE:
            (self.installed / "uninstall.exe").unlink(missing_ok=True)
        return code

    def shortcuts(self):
        users = on_drive(r"C:\users")
        return {path.parent.name: path for path in users.rglob("Mosaicon.lnk")}
