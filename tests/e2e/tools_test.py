"""Tools that are missing, refuse to work, or do nothing."""

import shutil
import unittest

from batch_support import STAGE, link_or_copy, start_wine, windows_path
from rasters import NATIONAL_GRID, make_raster
from results import files_below, links
from tool_folder import ToolFolderTest

CONTACT = r"\. Please contact .+ \(\S+@\S+\)$"
TRANSLATOR, WARPER, SCRIPT, INTERPRETER = (
    "gdal_translate.exe",
    "gdalwarp.exe",
    "gdal2tiles.py",
    "python.exe",
)


def setUpModule():
    start_wine()


class ToolsTest(ToolFolderTest):
    maps = 2

    def setUp(self):
        super().setUp()
        self.grid = make_raster(self.folder / "grid.tif", NATIONAL_GRID)

    def orthophotos(self):
        return self.grid, self.own

    def assert_not_started(self, run, *orthophotos):
        self.assertEqual(run.code, 1, run)
        told = [line for line in run.errors if "FAILED" in line]
        self.assertEqual(len(told), len(orthophotos), run)
        for path, line in zip(orthophotos, told):
            start = f"mosaicon-batch: FAILED {windows_path(path)}: the tiler did not start"
            self.assertEqual(line[: len(start)], start)


class MissingTool(ToolsTest):
    MESSAGES = {
        SCRIPT: "Unable to find the process data script gdal2tiles",
        TRANSLATOR: "Unable to find the process data tool gdal_translate",
        WARPER: "Unable to find the process data tool gdalwarp",
        INTERPRETER: "Unable to find the process data scripts",
    }

    def assert_missing(self, run, name):
        self.assertEqual(run.code, 3, run)
        self.assertEqual(len(run.errors), 1, run)
        self.assertRegex(run.errors[0], "^mosaicon-batch: " + self.MESSAGES[name] + CONTACT)
        self.assertFalse(self.job.target.exists(), "the target folder was made all the same")

    def test_is_told_before_anything_is_done(self):
        for name in self.MESSAGES:
            with self.subTest(tool=name):
                (self.stage / "gdal2tiles" / name).unlink()
                run = self.run_job()
                link_or_copy(STAGE / "gdal2tiles" / name, self.stage / "gdal2tiles" / name)
                self.assert_missing(run, name)

    def test_is_the_only_one_that_is_told_of_several(self):
        for name in reversed(self.MESSAGES):
            (self.stage / "gdal2tiles" / name).unlink()
            self.assert_missing(self.run_job(), name)


class ToolThatDoesNothing(ToolsTest):
    def test_translator(self):
        self.replace_tool(self.stage, TRANSLATOR)
        run = self.run_job()
        reason = "gdal_translate could not write " + windows_path(self.folder / "grid.vrt")
        self.assert_failed(run, (self.grid, reason))
        self.assertIn("- unable to apply translation to " + windows_path(self.grid), run.output)
        self.assert_result(self.job, 1, self.own)
        self.assertEqual([call[0] for call in self.calls()], [TRANSLATOR])

    def test_translator_when_an_older_file_is_there(self):
        self.assertEqual(self.run_job().code, 0)
        self.assertTrue((self.folder / "grid.vrt").exists())
        shutil.rmtree(self.job.target)
        self.replace_tool(self.stage, TRANSLATOR)
        run = self.run_job()
        reason = "gdal_translate could not write " + windows_path(self.folder / "grid.vrt")
        self.assert_failed(run, (self.grid, reason))
        self.assertFalse((self.folder / "grid.vrt").exists())
        self.assertTrue((self.folder / "grid2.vrt").exists(), "nothing was written in its place")
        self.assertFalse((self.job.folder(0) / "googleearth_loc.kml").exists())

    def test_warper(self):
        self.replace_tool(self.stage, WARPER)
        run = self.run_job()
        reason = "gdalwarp could not write " + windows_path(self.folder / "grid2.vrt")
        self.assert_failed(run, (self.grid, reason))
        self.assertFalse((self.job.target / "tile_0" / "googleearth_loc.kml").exists())
        self.assert_result(self.job, 1, self.own)

    def test_interpreter(self):
        self.replace_tool(self.stage, INTERPRETER)
        self.assert_not_started(self.run_job(), self.grid, self.own)

    def test_that_is_no_program_at_all(self):
        for name in (TRANSLATOR, INTERPRETER):
            path = self.stage / "gdal2tiles" / name
            path.unlink()
            path.write_text("not a program")
        reason = "gdal_translate could not write " + windows_path(self.folder / "grid.vrt")
        self.assert_failed(self.run_job(self.grid), (self.grid, reason))
        self.assert_not_started(self.run_job(self.own), self.own)


class Python(ToolsTest):
    def interpreter(self, text):
        path = self.folder / "interpreter"
        path.write_text("#!/bin/sh\n" + text)
        path.chmod(0o755)
        return {"MOSAICON_HOST_PYTHON": str(path)}

    def test_that_is_not_installed(self):
        run = self.run_job(self.own, MOSAICON_HOST_PYTHON="/nonexistent/python3")
        self.assert_not_started(run, self.own)

    def test_that_fails_at_once(self):
        run = self.run_job(self.own, **self.interpreter("exit 1\n"))
        self.assert_not_started(run, self.own)

    def test_without_the_gdal_package(self):
        packages = self.folder / "packages" / "osgeo"
        packages.mkdir(parents=True)
        (packages / "__init__.py").write_text("raise ImportError('No module named osgeo')")
        run = self.run_job(self.own, PYTHONPATH=str(packages.parent))
        self.assertEqual(run.code, 1)
        self.assertRegex(
            run.errors[0],
            r": The GDAL Python package is not installed for the Python interpreter "
            r"/usr/bin/python3[0-9.]* \(No module named osgeo\)$",
        )
        self.assertRegex(run.errors[1], "^mosaicon-batch: details are in ")
        self.assertIn("Traceback", self.new_logs()[0].read_text())
        self.assertEqual(files_below(self.job.target), {".jpg"})


class Surroundings(ToolsTest):
    def test_of_the_tools_are_the_tool_folder_and_its_data(self):
        for name in (TRANSLATOR, WARPER, INTERPRETER):
            self.replace_tool(self.stage, name)
        self.run_job()
        folder = windows_path(self.stage / "gdal2tiles")
        calls = {call[0]: call[1:] for call in self.calls()}
        self.assertEqual(set(calls), {TRANSLATOR, INTERPRETER})
        for name, (directory, path, gdal, data, plugins, command_line) in calls.items():
            self.assertEqual(directory, folder)
            self.assertEqual(path.split(";")[-1], folder)
            self.assertIn("C:\\windows\\system32", path.split(";"))
            self.assertEqual(
                [gdal, data, plugins], [folder, folder + "\\gdal-data", folder + "\\gdalplugins"]
            )
            self.assertTrue(command_line.startswith(" "), f"{name}: {command_line}")

    def test_of_the_tools_work_without_an_installed_gdal(self):
        """The data of GDAL and PROJ come from the program's folder, not from the variables."""
        run = self.run_job(GDAL_DATA="Z:\\nonexistent", PROJ_LIB="", GDAL_DRIVER_PATH="disable")
        self.assertEqual((run.code, run.errors), (0, []), run)
        self.assertTrue(links(self.job.folder(0) / "googleearth_loc.kml"))
        self.assert_position(self.job.folder(0), self.grid)


if __name__ == "__main__":
    unittest.main()
