"""The setup program under Wine: what it installs, and what it leaves alone. See setup_case.py."""

import pathlib
import shutil
import subprocess
import sys
import unittest

from package_case import TOP
from setup_case import (
    ADMINISTRATOR,
    DONE,
    FAILED,
    FOLDER,
    KEY,
    PATIENCE,
    RUNNING,
    SETTINGS,
    SetupCase,
    names_below,
    on_drive,
    registry,
    run,
    run_line,
)
from setup_case import set_up_prefix as setUpModule  # noqa: F401

sys.path[:0] = [str(TOP / part) for part in ("tests/support", "packaging")]
import make_package  # noqa: E402
from in_own_prefix import Screen  # noqa: E402
from wine_side import WINE, wait_until  # noqa: E402

MENU = r"HKCU\Software\Classes\SystemFileAssociations\.tif\shell\Mosaicon"
KEY_OF_ALL = KEY.replace("HKCU", "HKLM")


class Setup(SetupCase):
    def test_installs_everything_for_this_user(self):
        self.assertEqual(self.install(), DONE)
        self.assertEqual(names_below(self.installed), names_below(self.program) | {"uninstall.exe"})
        for name in names_below(self.program):
            self.assertEqual((self.installed / name).read_bytes(), (self.program / name).read_bytes(), name)
        told = {"DisplayName": "Mosaicon", "DisplayVersion": self.version, "Publisher": "Kovel Software"}
        for value, text in {
            **told,
            "InstallLocation": FOLDER,
            "DisplayIcon": FOLDER + r"\Mosaicon.exe",
        }.items():
            self.assertEqual(registry(KEY, value), text, value)
        kilobytes = sum(path.stat().st_size for path in self.program.rglob("*") if path.is_file()) / 1024
        self.assertAlmostEqual(int(registry(KEY, "EstimatedSize"), 16), kilobytes, delta=2)
        self.assertEqual(set(self.shortcuts()), {"Programs"})
        shortcut = self.shortcuts()["Programs"].read_bytes()
        for part in FOLDER.split("\\")[1:] + ["Mosaicon.exe"]:
            self.assertTrue(part.encode("utf-16-le") in shortcut or part.encode("cp1252") in shortcut, part)
        self.assertIsNone(registry(MENU, "Icon"))

    def test_adds_what_is_asked_for(self):
        self.assertEqual(self.install("/DESKTOP", "/EXPLORER"), DONE)
        self.assertEqual(set(self.shortcuts()), {"Programs", "Desktop"})
        command = (
            registry(MENU + r"\command", "(Default)") or run("reg", "query", MENU + r"\command", "/ve")[1]
        )
        self.assertIn(f'"{FOLDER}\\Mosaicon.exe" "%1"', command)
        # A repair leaves it as it is.
        self.assertEqual(self.install(), DONE)
        self.assertEqual(set(self.shortcuts()), {"Programs", "Desktop"})
        self.assertEqual(self.uninstall(), DONE)
        self.assertEqual(self.shortcuts(), {})
        self.assertIsNone(registry(MENU, "Icon"))

    def test_repairs_what_is_damaged(self):
        self.assertEqual(self.install(), DONE)
        (self.installed / "mosaicon-batch.exe").write_bytes(b"")
        (self.installed / "share" / "proj" / "proj.db").unlink()
        self.assertEqual(self.install(folder=None), DONE)
        self.assertEqual(names_below(self.installed), names_below(self.program) | {"uninstall.exe"})
        name = "mosaicon-batch.exe"
        self.assertEqual((self.installed / name).read_bytes(), (self.program / name).read_bytes())

    def older_setup(self):
        """Of a version with a file that is there no more."""
        stage = self.folder / "older"
        shutil.rmtree(stage, ignore_errors=True)
        stage.mkdir()
        for name in ("LICENSE.txt", "Mosaicon.exe", "crashrpt.dll"):
            shutil.copyfile(self.program / name, stage / name)
        (stage / "gdal2tiles").mkdir()
        (stage / "gdal2tiles" / "old.dll").write_bytes(b"old")
        work = self.folder / "older work"
        work.mkdir(exist_ok=True)
        make_package.make_setup(stage, on_drive(r"C:\older.exe"), work, "0.9.9", 1700000000)
        return r"C:\older.exe"

    def test_takes_the_place_of_an_older_version(self):
        self.assertEqual(self.install("/DESKTOP", setup=self.older_setup()), DONE)
        self.assertEqual(registry(KEY, "DisplayVersion"), "0.9.9")
        run("reg", "add", SETTINGS + r"\Input", "/v", "MapTitle", "/d", "Harbour", "/f")
        own = self.installed / "my maps" / "leaflet.html"
        own.parent.mkdir()
        own.write_text("mine")
        self.assertEqual(self.install(folder=None), DONE)
        self.assertEqual(registry(KEY, "DisplayVersion"), self.version)
        self.assertFalse((self.installed / "gdal2tiles" / "old.dll").exists())
        self.assertTrue((self.installed / "gdal2tiles" / "mosaicon-tiler.exe").exists())
        self.assertEqual(own.read_text(), "mine")
        self.assertEqual(registry(SETTINGS + r"\Input", "MapTitle"), "Harbour")
        self.assertEqual(set(self.shortcuts()), {"Programs", "Desktop"})

    def test_moves_to_another_folder(self):
        self.assertEqual(self.install("/EXPLORER", setup=self.older_setup()), DONE)
        elsewhere = FOLDER + " 2"
        self.assertEqual(self.install(folder=elsewhere), DONE)
        self.assertEqual(list(self.installed.rglob("*")), [])
        self.assertEqual(registry(KEY, "InstallLocation"), elsewhere)
        self.assertEqual(registry(MENU, "Icon"), elsewhere + r"\Mosaicon.exe")
        shutil.copyfile(on_drive(elsewhere + r"\uninstall.exe"), on_drive(r"C:\uninstall.exe"))
        self.assertEqual(run_line(r"C:\uninstall.exe", "/S", "_?=" + elsewhere), DONE)
        self.assertIsNone(registry(KEY, "InstallLocation"))

    def test_writes_over_nothing_of_the_users(self):
        self.installed.mkdir(parents=True)
        own = self.installed / "README.txt"
        own.write_text("mine")
        self.assertEqual(self.install(), FAILED)
        self.assertEqual(own.read_text(), "mine")
        self.assertEqual(names_below(self.installed), {"README.txt"})
        self.assertIsNone(registry(KEY, "InstallLocation"))

    def test_is_for_all_users_on_request(self):
        """Wine's user is an administrator."""
        self.assertEqual(self.install("/ALLUSERS"), DONE)
        self.assertEqual(registry(KEY_OF_ALL, "InstallLocation"), FOLDER)
        self.assertIsNone(registry(KEY, "InstallLocation"))
        self.assertIn("ProgramData", str(self.shortcuts_of_all()))
        self.assertEqual(self.install(), ADMINISTRATOR, "there is no second one beside it")
        self.assertEqual(self.uninstall(), DONE)
        self.assertIsNone(registry(KEY_OF_ALL, "InstallLocation"))
        self.assertEqual(self.shortcuts_of_all(), [])

    def shortcuts_of_all(self):
        return list(on_drive(r"C:\ProgramData").rglob("Mosaicon.lnk"))

    def test_removes_all_but_what_is_the_users_own(self):
        self.assertEqual(self.install(), DONE)
        run("reg", "add", SETTINGS + r"\Input", "/v", "MapTitle", "/d", "Harbour", "/f")
        local = next(on_drive(r"C:\users").glob("*/AppData/Local"))
        report = local / "Mosaicon" / "CrashReports" / "1" / "report.xml"
        report.parent.mkdir(parents=True)
        report.write_text("x")
        own = self.installed / "gdal2tiles" / "mine.txt"
        own.write_text("mine")
        self.assertEqual(self.uninstall(), DONE)
        self.assertEqual(names_below(self.installed), {"gdal2tiles/mine.txt"})
        self.assertIsNone(registry(KEY, "DisplayName"))
        self.assertEqual(self.shortcuts(), {})
        self.assertEqual(registry(SETTINGS + r"\Input", "MapTitle"), "Harbour")
        self.assertTrue(report.exists())
        own.unlink()
        self.assertEqual(self.install(), DONE)
        self.assertEqual(self.uninstall("/PURGE"), DONE)
        self.assertFalse(self.installed.exists() and list(self.installed.rglob("*")))
        self.assertIsNone(registry(SETTINGS + r"\Input", "MapTitle"))
        self.assertFalse((local / "Mosaicon").exists())

    def test_does_not_end_a_program_that_runs(self):
        self.assertEqual(self.install(), DONE)
        with Screen(), subprocess.Popen(
            [WINE, FOLDER + r"\Mosaicon.exe"], stdin=subprocess.DEVNULL
        ) as program:
            try:
                self.assertTrue(wait_until(self.runs, PATIENCE))
                self.assertEqual(self.install(), RUNNING)
                self.assertEqual(self.uninstall(), RUNNING)
                self.assertIsNone(program.poll(), "it still runs")
                self.assertEqual(names_below(self.installed), names_below(self.program) | {"uninstall.exe"})
            finally:
                run("taskkill", "/f", "/im", "Mosaicon.exe")

    @staticmethod
    def runs():
        """Whether its program is loaded, and so may not be written to."""
        for process in pathlib.Path("/proc").glob("[0-9]*"):
            try:
                if any(b"Mosaicon.exe" in line for line in (process / "maps").read_bytes().splitlines()):
                    return True
            except OSError:  # it has ended, or is somebody else's
                pass
        return False


if __name__ == "__main__":
    unittest.main()
