"""Ctrl+C: the program ends soon, with all that it has started, and starts nothing more."""

import os
import signal
import time
import unittest

from batch_support import (
    ENGINE,
    PATIENCE,
    STAGE,
    TILER,
    TILER_AT_WORK,
    BatchTest,
    start_wine,
    wait_until,
    windows_path,
)
from rasters import NATIONAL_GRID, OWN_ZONE, make_endless_raster, make_raster, read_pixels
from results import ResultChecks

SOON = 100  # seconds; a tool is looked at every five
ENDLESS = "600000"


def setUpModule():
    start_wine()


class AbortTest(BatchTest, ResultChecks):
    def setUp(self):
        super().setUp()
        self.stage = self.private_stage()
        self.target = self.folder / "out"
        self.call_list = self.folder / "calls"

    def start_job(self, *orthophotos, **environment):
        return self.start(
            "--target",
            self.target,
            *orthophotos,
            stage=self.stage,
            environment={
                "FAKE_TOOL_CALLS": windows_path(self.call_list),
                "FAKE_TOOL_MILLISECONDS": ENDLESS,
                **environment,
            },
        )

    def calls(self):
        if not self.call_list.exists():
            return []
        return [line.split("\t")[0] for line in self.call_list.read_text("cp1252").splitlines()]

    def await_that(self, condition, what):
        self.assertTrue(wait_until(condition, PATIENCE), f"{what} did not come about")

    def interrupt(self, started):
        """Wine takes the signal for Ctrl+C."""
        self.assertIsNone(started.poll(), "the program ended before it was interrupted")
        start = time.monotonic()
        os.kill(started.pid, signal.SIGINT)
        run = self.finish(started)
        self.assertLess(time.monotonic() - start, SOON)
        return run

    def assert_aborted(self, run, labels=()):
        self.assertEqual((run.code, run.errors), (130, []), run)
        self.assert_output(run, ["Target folder: " + windows_path(self.target), *labels, "Aborted by user"])
        self.check_that_nothing_is_left()
        self.assertEqual(self.new_logs(), [])


class WhileATool(AbortTest):
    """The tool that works is the last one that was started."""

    def setUp(self):
        super().setUp()
        self.grid = make_raster(self.folder / "grid.tif", NATIONAL_GRID)
        self.own = make_raster(self.folder / "own.tif", OWN_ZONE)

    def check(self, orthophotos, faked, labels=()):
        for name in faked:
            self.replace_tool(self.stage, name)
        started = self.start_job(*orthophotos)
        self.await_that(self.calls, "the call of " + faked[0])
        self.assertGreater(len(self.processes()), 1)
        self.assert_aborted(self.interrupt(started), labels)
        self.assertEqual(self.calls(), faked[:1])

    def test_translates(self):
        self.check([self.grid, self.own], ["gdal_translate.exe", "gdalwarp.exe", TILER])
        self.assertEqual(os.listdir(self.target), [])

    def test_warps(self):
        # The label of the step that is left out then is shown all the same.
        self.check([self.grid, self.own], ["gdalwarp.exe", TILER], ["Process 1/2 -  -"])

    def test_tiles(self):
        self.check([self.own, self.grid], [TILER, "gdal_translate.exe", "gdalwarp.exe"], ["Process 1/2 -  -"])


class WhatWasBeingWritten(AbortTest):
    """A tiler that is killed cannot remove its own."""

    def test_is_removed(self):
        self.replace_tool(self.stage, TILER)
        started = self.start_job(make_raster(self.folder / "own.tif"))
        self.await_that(self.calls, "the call of " + TILER)
        column = self.target / "12" / "7"
        column.mkdir(parents=True)
        for name in ("9.png", "9.kml.~mos", "10.png.~mos"):
            (column / name).touch()
        (self.target / "tilemapresource.xml.~mos").touch()
        self.assert_aborted(self.interrupt(started), ["Process 1/1 -  -"])
        self.assertEqual(os.listdir(column), ["9.png"])
        self.assertEqual(list(self.target.rglob("*.~mos")), [])


class WhileTiles(AbortTest):
    def interrupt_at_work(self, processes):
        # It must not be done before the abort takes effect, which may be seven seconds later.
        large = make_endless_raster(self.folder / "large.tif")
        own = make_raster(self.folder / "own.tif")
        started = self.start_job(large, own, MOSAICON_TILER_PROCESSES=str(processes))
        self.await_that(lambda: list(self.target.glob("tile_0/*/*/*.png")), "the first tile")
        self.assertTrue(self.processes(TILER_AT_WORK))
        self.workers = self.processes("spawn_main")
        run = self.interrupt(started)
        self.assert_aborted(run, ["Process 1/2 -  -"])
        return run

    def test_are_cut_by_several_workers(self):
        self.interrupt_at_work(2)
        self.assertEqual(len(self.workers), 0 if TILER == ENGINE else 2)
        self.assertFalse((self.target / "tile_1").exists())
        self.assert_whole_files()

    def test_are_cut_by_one_process(self):
        self.interrupt_at_work(1)
        self.assertFalse((self.target / "tile_1").exists())
        self.assert_whole_files()

    def assert_whole_files(self):
        """What is there is whole, and not all of it is there."""
        self.assertFalse(list(self.target.rglob("*.~mos")))
        self.assertFalse(list(self.target.glob("tile_0/*.kml")), "links to tiles that are missing")
        tiles = list(self.target.rglob("*.png"))
        self.assertTrue(tiles)
        for tile in tiles:
            read_pixels(tile)
        self.assertFalse((self.target / "tile_0" / "leaflet.html").exists(), "all was done already")


class Twice(AbortTest):
    def test_is_the_same_as_once(self):
        self.replace_tool(self.stage, "gdalwarp.exe")
        started = self.start_job(make_raster(self.folder / "grid.tif", NATIONAL_GRID))
        self.await_that(self.calls, "the call of gdalwarp.exe")
        os.kill(started.pid, signal.SIGINT)
        time.sleep(0.2)
        self.assert_aborted(self.interrupt(started), ["Process 1/1 -  -"])


class Afterwards(AbortTest):
    def test_the_same_job_can_be_done(self):
        own = make_raster(self.folder / "own.tif")
        self.replace_tool(self.stage, TILER)
        started = self.start_job(own)
        self.await_that(self.calls, "the call of " + TILER)
        self.assert_aborted(self.interrupt(started), ["Process 1/1 -  -"])
        self.replace_tool(self.stage, TILER, STAGE / "gdal2tiles" / TILER)
        run = self.batch("--target", self.target, "--overwrite", "yes", own, stage=self.stage)
        self.assertEqual((run.code, run.errors), (0, []), run)
        self.assert_links_resolve(self.target)


if __name__ == "__main__":
    unittest.main()
