"""What was installed makes maps, under Wine. See setup_case.py. Needs in addition the program that drives the
window in MOSAICON_DRIVE_WINDOW."""

import os
import pathlib
import shutil
import sys
import unittest

from osgeo import gdal

from package_case import TOP
from setup_case import DONE, FOLDER, SetupCase, names_below, on_drive, run
from setup_case import set_up_prefix as setUpModule  # noqa: F401

sys.path[:0] = [str(TOP / part) for part in ("tests/support", "tests/servers", "src/tiler/testing")]
import exact_average  # noqa: E402
import kml_rules  # noqa: E402
from in_own_prefix import Screen  # noqa: E402
from second_user import SecondUser  # noqa: E402
from vsftpd_kind import Vsftpd  # noqa: E402

DRIVE_WINDOW = pathlib.Path(os.environ["MOSAICON_DRIVE_WINDOW"])


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

    def check_map(self, folder):
        self.assertEqual(kml_rules.faults_of_overlay(folder / "googleearth_loc.kml", most_overlap=2), [])
        self.assertGreater(len(list(folder.glob("*/*/*.png"))), 5)

    def make_a_map(self, **more):
        code, text = run(
            FOLDER + r"\mosaicon-batch.exe", "--target", r"C:\photos\maps", r"C:\photos\field.tif", **more
        )
        self.assertEqual(code, 0, text)
        self.check_map(on_drive(r"C:\photos\maps"))

    def test_without_a_window(self):
        self.assertEqual(self.install(), DONE)
        self.make_a_map()
        # The folder of the program may be one that only administrators write to.
        self.assertEqual(names_below(self.installed), names_below(self.program) | {"uninstall.exe"})

    def test_through_the_window(self):
        """As the entry of the start menu starts it, with an upload at the end."""
        self.assertEqual(self.install(), DONE)
        for name in (DRIVE_WINDOW, *DRIVE_WINDOW.parents[2].glob("stage/lib*.dll")):
            shutil.copyfile(name, self.photo.parent / name.name)
        server = self.enterContext(Vsftpd())
        with Screen():
            code, text = run(
                r"C:\photos\drive_window.exe",
                FOLDER + r"\Mosaicon.exe",
                r"C:\photos\field.tif",
                r"C:\photos\maps",
                r"C:\photos\report.txt",
                r"C:\photos",
                environment=server.environment(),
            )
        self.assertEqual(code, 0, text)
        maps = self.photo.parent / "maps"
        self.check_map(maps)
        published = pathlib.Path(server.root) / "maps"
        self.assertEqual(names_below(published), names_below(maps))
        for name in names_below(maps):
            self.assertEqual((published / name).read_bytes(), (maps / name).read_bytes(), name)

    def test_for_somebody_who_may_not_change_the_programs(self):
        """An administrator has installed them for all users, and somebody else makes a map."""
        self.assertEqual(self.install("/ALLUSERS"), DONE)
        before = names_below(self.installed)
        with SecondUser(self.installed) as user:
            self.assertFalse(user.may_write_to(on_drive(FOLDER)))
            self.assertTrue(user.may_write_to(on_drive(r"C:\photos")))
            self.make_a_map(as_user=user.command)
            self.assertEqual(names_below(on_drive(FOLDER)), before)


if __name__ == "__main__":
    unittest.main()
