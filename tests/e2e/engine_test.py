"""The tile engine in the tool folder: it takes the place of the tiling script and its interpreter."""

import unittest

from batch_support import ENGINE, BatchTest, start_wine, windows_path
from rasters import NATIONAL_GRID, OWN_ZONE, make_raster
from results import Job, ResultChecks, links


def setUpModule():
    start_wine()


class EngineTest(BatchTest, ResultChecks):
    def setUp(self):
        super().setUp()
        self.stage = self.private_stage()
        self.own = make_raster(self.folder / "own.tif", OWN_ZONE)
        self.job = Job(self.folder / "out", 1)
        self.call_list = self.folder / "calls"

    def run_job(self, *orthophotos, **environment):
        environment = {"FAKE_TOOL_CALLS": windows_path(self.call_list), **environment}
        orthophotos = orthophotos or (self.own,)
        return self.batch(
            "--target", self.job.target, *orthophotos, stage=self.stage, environment=environment
        )


class Engine(EngineTest):
    def test_needs_neither_interpreter_nor_script(self):
        tools = self.stage / "gdal2tiles"
        self.assertFalse((tools / "python.exe").exists())
        for script in tools.glob("*.py"):
            script.unlink()
        run = self.run_job()
        self.assertEqual((run.code, run.errors), (0, []), run)
        self.assert_result(self.job, 0, self.own)

    def test_is_called_as_the_script_is(self):
        self.replace_tool(self.stage, ENGINE)
        self.run_job()
        [[name, directory, path, gdal, data, plugins, command_line]] = [
            line.split("\t") for line in self.call_list.read_text("cp1252").splitlines()
        ]
        folder = windows_path(self.stage / "gdal2tiles")
        self.assertEqual((name, directory, gdal), (ENGINE, folder, folder))
        self.assertEqual(path.split(";")[-1], folder)
        self.assertEqual((data, plugins), (folder + "\\gdal-data", folder + "\\gdalplugins"))
        self.assertEqual(
            command_line,
            f' -a 0 -s EPSG:32632 -p mercator   -k -u ../  "{windows_path(self.own)}"'
            f' "{windows_path(self.job.target)}"',
        )

    def test_that_does_not_work_is_told(self):
        for what in ("does nothing", "is no program"):
            with self.subTest(what):
                path = self.stage / "gdal2tiles" / ENGINE
                if what == "does nothing":
                    self.replace_tool(self.stage, ENGINE)
                else:
                    path.unlink()
                    path.write_text("not a program")
                run = self.run_job("--overwrite", "yes", self.own)
                self.assertEqual(run.code, 1, run)
                self.assertIn(
                    f"mosaicon-batch: FAILED {windows_path(self.own)}: the tiler did not start"
                    " or was ended from outside",
                    run.errors,
                )

    def test_takes_its_data_from_the_tool_folder(self):
        grid = make_raster(self.folder / "grid.tif", NATIONAL_GRID)
        run = self.run_job(grid, GDAL_DATA="Z:\\nonexistent", PROJ_LIB="", GDAL_DRIVER_PATH="disable")
        self.assertEqual((run.code, run.errors), (0, []), run)
        self.assertTrue(links(self.job.folder(0) / "googleearth_loc.kml"))
        self.assert_position(self.job.folder(0), grid)

    def test_takes_up_a_job_that_failed(self):
        in_the_way = self.job.target / "leaflet.html"
        in_the_way.mkdir(parents=True)
        run = self.run_job("--overwrite", "yes", self.own)
        self.assertEqual(run.code, 1, run)
        self.assertIn("leaflet.html", run.errors[0])
        times = {tile: tile.stat().st_mtime_ns for tile in self.job.target.rglob("*.png")}
        self.assertGreater(len(times), 3)
        in_the_way.rmdir()
        run = self.run_job("--overwrite", "yes", self.own)
        self.assertEqual((run.code, run.errors), (0, []), run)
        finest = max(int(tile.parts[-3]) for tile in times)
        for tile, time in times.items():
            if int(tile.parts[-3]) == finest:
                self.assertEqual(tile.stat().st_mtime_ns, time, "was made again")
        self.assert_result(self.job, 0, self.own)


if __name__ == "__main__":
    unittest.main()
