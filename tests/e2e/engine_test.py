"""The tile engine in the tool folder: it takes the place of the tiling script and its interpreter."""

import os
import subprocess
import unittest

from osgeo import gdal

from batch_support import ENGINE, PATIENCE, WINE, start_wine, windows_path
from rasters import NATIONAL_GRID, OWN_ZONE, make_raster, noise, read_pixels
from results import Job, links
from tool_folder import ToolFolderTest


def setUpModule():
    start_wine()


class Engine(ToolFolderTest):
    def test_needs_neither_interpreter_nor_script(self):
        tools = self.stage / "gdal2tiles"
        self.assertFalse((tools / "python.exe").exists())
        for script in tools.glob("*.py"):
            script.unlink()
        run = self.run_job()
        self.assertEqual((run.code, run.errors), (0, []), run)
        self.assert_result(self.job, 0, self.own)

    def test_makes_pixels_in_the_way_that_is_asked_for(self):
        make_raster(self.own, pixels=noise(300, 260))
        colours = {tuple(colour) for colour in gdal.Open(str(self.own)).ReadAsArray().reshape(3, -1).T}
        for mode, is_one_of_them in (("near", True), ("average", False)):
            with self.subTest(mode):
                run = self.run_job("--overwrite", "yes", "--resampling", mode, self.own)
                self.assertEqual((run.code, run.errors), (0, []), run)
                tiles = list(self.job.target.glob("*/*/*.png"))
                finest = max(int(tile.parts[-3]) for tile in tiles)
                self.assertGreater(len(tiles), 3)
                found = set()
                for tile in tiles:
                    if int(tile.parts[-3]) == finest:
                        pixels = read_pixels(tile)
                        found |= {tuple(colour) for colour in pixels[:3][:, pixels[3] == 255].T}
                self.assertGreater(len(found), 1000)
                self.assertEqual(found <= colours, is_one_of_them)

    def test_makes_small_tiles_where_they_are_asked_for(self):
        make_raster(self.own, pixels=noise(900, 800))
        run = self.run_job("--tiles", "auto", self.own)
        self.assertEqual((run.code, run.errors), (0, []), run)
        self.assert_links_resolve(self.job.target)
        suffixes = {path.suffix for path in self.job.target.glob("*/*/*")}
        self.assertEqual(suffixes, {".jpg", ".png", ".kml"})

    def test_makes_pages_alone_of_webp(self):
        self.assertEqual(self.run_job(self.own).code, 0)
        run = self.run_job("--overwrite", "yes", "--tiles=webp", self.own)
        self.assertEqual((run.code, run.errors), (0, []), run)
        reason = "no KML is made, because Google Earth does not show WebP images"
        self.assertIn(f"- {windows_path(self.own)}: {reason}", run.output)
        self.assertEqual({path.suffix for path in self.job.target.glob("*/*/*")}, {".webp"})
        self.assertEqual(list(self.job.target.glob("*.kml")), [], "of the earlier job")

    def test_is_called_as_the_script_is(self):
        self.replace_tool(self.stage, ENGINE)
        self.run_job()
        [[name, directory, path, gdal, data, plugins, command_line]] = self.calls()
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
        # The second one is reprojected first, each time anew.
        grid = make_raster(self.folder / "grid.tif", NATIONAL_GRID)
        for orthophoto, place in ((self.own, OWN_ZONE), (grid, NATIONAL_GRID)):
            with self.subTest(orthophoto.name):
                job = Job(self.folder / f"out_{orthophoto.stem}", 1)
                in_the_way = job.target / "leaflet.html"
                in_the_way.mkdir(parents=True)
                run = self.run_into(job, orthophoto)
                self.assertEqual(run.code, 1, run)
                self.assertIn("leaflet.html", run.errors[0])
                times = {tile: tile.stat().st_mtime_ns for tile in job.target.rglob("*.png")}
                self.assertGreater(len(times), 3)
                in_the_way.rmdir()
                run = self.run_into(job, orthophoto)
                self.assertEqual((run.code, run.errors), (0, []), run)
                self.assertEqual({tile: tile.stat().st_mtime_ns for tile in times}, times)
                self.assert_result(job, 0, orthophoto, place)

    def run_into(self, job, orthophoto):
        return self.batch("--target", job.target, "--overwrite", "yes", orthophoto, stage=self.stage)

    def test_shares_its_work(self):
        whole, shared = self.folder / "whole" / "m", self.folder / "shared" / "m"
        self.cut(whole)
        for index in range(3):
            self.cut(shared, f"--shard={index}/3")
        self.assertFalse((shared / "doc.kml").exists())
        self.cut(shared, "--merge")
        names = sorted(path.relative_to(whole) for path in whole.rglob("*") if path.is_file())
        self.assertGreater(len(names), 10)
        self.assertEqual(
            sorted(path.relative_to(shared) for path in shared.rglob("*") if path.is_file()), names
        )
        for name in names:
            self.assertEqual((shared / name).read_bytes(), (whole / name).read_bytes(), name)

    def cut(self, output, *options):
        log = self.folder / "log"
        log.unlink(missing_ok=True)
        run = subprocess.run(
            [
                WINE,
                self.stage / "gdal2tiles" / ENGINE,
                *options,
                "-k",
                *map(windows_path, (self.own, output)),
            ],
            env={**os.environ, "MOSAICON_TILER_LOG": windows_path(log)},
            stdout=subprocess.DEVNULL,
            timeout=PATIENCE,
            check=False,
        )
        # The exit code is Wine's: it kills a program that is done, but slow to leave the memory.
        self.assertEqual(log.read_text().splitlines()[-1], "RESULT OK", run.returncode)


if __name__ == "__main__":
    unittest.main()
