"""The setup program and what it installs, under Wine, from an empty prefix in which no other folder of this
machine can be reached. Needs in the environment a complete Wine prefix in WINEPREFIX, which is copied, the
build in MOSAICON_PACKAGE_BUILD and the program that drives the window in MOSAICON_DRIVE_WINDOW."""

import os
import pathlib
import re
import shutil
import subprocess
import sys
import unittest

from osgeo import gdal

from package_case import TOP, PackageCase

sys.path[:0] = [str(TOP / part) for part in ("tests/support", "packaging", "src/tiler/testing")]
import exact_average  # noqa: E402
import kml_rules  # noqa: E402
import make_package  # noqa: E402
from in_own_prefix import Screen  # noqa: E402
from wine_prefix import WinePrefix  # noqa: E402
from wine_side import WINE, keep_wine_running, wait_until  # noqa: E402

DRIVE_WINDOW = pathlib.Path(os.environ["MOSAICON_DRIVE_WINDOW"])
PATIENCE = 300  # seconds
FOLDER = r"C:\Programme ä\Mosaicon hier"
KEY = r"HKCU\Software\Microsoft\Windows\CurrentVersion\Uninstall\Mosaicon"
SETTINGS = r"HKCU\Software\Kovel Software\Mosaicon"
MENU = r"HKCU\Software\Classes\SystemFileAssociations\.tif\shell\Mosaicon"
KEY_OF_ALL = KEY.replace("HKCU", "HKLM")
DONE, FAILED, RUNNING, ADMINISTRATOR = 0, 2, 3, 4


def setUpModule():
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


def run(*command, folder=None):
    """The exit code and what was said, in the letters of consoles."""
    done = subprocess.run(
        [WINE, *command],
        stdin=subprocess.DEVNULL,
        stdout=subprocess.PIPE,
        stderr=subprocess.DEVNULL,
        timeout=PATIENCE,
        check=False,
        cwd=folder or on_drive("C:\\windows"),
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

    def shortcuts(self):
        users = on_drive(r"C:\users")
        return {path.parent.name: path for path in users.rglob("Mosaicon.lnk")}


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


class Work(SetupCase):
    """What was installed makes maps."""

    def setUp(self):
        super().setUp()
        self.photo = on_drive(r"C:\photos\field.tif")
        self.photo.parent.mkdir(exist_ok=True)
        self.addCleanup(shutil.rmtree, self.photo.parent)
        raster = gdal.GetDriverByName("GTiff").Create(str(self.photo), 600, 500, 3)
        raster.SetGeoTransform((500000.0, 0.5, 0.0, 5540000.0, 0.0, -0.5))
        raster.SetProjection(exact_average.srs_of("EPSG:32632").ExportToWkt())
        raster.WriteArray(exact_average.texture(500, 600, seed=5))
        raster = None
        self.assertEqual(self.install(), DONE)

    def check_map(self, folder):
        self.assertEqual(kml_rules.faults_of_overlay(folder / "googleearth_loc.kml", most_overlap=2), [])
        self.assertGreater(len(list(folder.glob("*/*/*.png"))), 5)

    def test_without_a_window(self):
        code, text = run(
            FOLDER + r"\mosaicon-batch.exe", "--target", r"C:\photos\maps", r"C:\photos\field.tif"
        )
        self.assertEqual(code, 0, text)
        self.check_map(self.photo.parent / "maps")
        # The folder of the program may be one that only administrators write to.
        self.assertEqual(names_below(self.installed), names_below(self.program) | {"uninstall.exe"})

    def test_through_the_window(self):
        """As the entry of the start menu starts it."""
        for name in (DRIVE_WINDOW, *DRIVE_WINDOW.parents[2].glob("stage/lib*.dll")):
            shutil.copyfile(name, self.photo.parent / name.name)
        with Screen():
            code, text = run(
                r"C:\photos\drive_window.exe",
                FOLDER + r"\Mosaicon.exe",
                r"C:\photos\field.tif",
                r"C:\photos\maps",
                r"C:\photos\report.txt",
                r"C:\photos",
            )
        self.assertEqual(code, 0, text)
        self.check_map(self.photo.parent / "maps")


if __name__ == "__main__":
    unittest.main()
