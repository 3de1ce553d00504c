"""Failing runs of the tiling script: the reason is told, and nothing half-made stays."""

import os
import signal
import time
import unittest
from xml.etree import ElementTree

import numpy
from testing.tiler_test_case import (
    ENGINE,
    FIRST_RECORD,
    TilerTestCase,
    has_own_process,
    make_raster,
    noise,
    of_the_script,
    solid,
    workers_of,
)
from osgeo import gdal

try:
    import resource
except ImportError:
    resource = None  # Windows


class Refusals(TilerTestCase):
    """The output folder is not even made."""

    def check(self, image, reason, **more):
        self.run_script(self.arguments(image, **more))
        self.assert_failed(reason)
        self.assert_no_progress()
        self.assertFalse(os.path.exists(self.output))

    @of_the_script
    def test_six_bands(self):
        self.check(self.raster(noise(6)), "the image has 6 bands; only 1 to 4 bands")

    @of_the_script
    def test_sixteen_bits(self):
        image = self.raster(noise().astype(numpy.uint16), kind=gdal.GDT_UInt16)
        self.check(image, r"16-bit pixels \(UInt16\); convert it to 8 bits")

    def test_complex_numbers(self):
        image = self.raster(noise().astype(numpy.complex64), kind=gdal.GDT_CFloat32)
        self.check(image, r"64-bit pixels \(CFloat32\); convert it to 8 bits")

    @of_the_script
    def test_palette(self):
        image = self.raster(noise(1))
        table = gdal.ColorTable()
        table.SetColorEntry(1, (255, 0, 0))
        dataset = gdal.Open(image, gdal.GA_Update)
        dataset.GetRasterBand(1).SetColorTable(table)
        dataset = None
        self.check(image, "colour palette")

    def test_no_georeference(self):
        self.check(self.raster(noise(), corner=None), "no georeference")

    def test_unknown_srs(self):
        image = self.raster(noise())
        self.check(image, "coordinate system EPSG:1 is not known", srs="EPSG:1")

    def test_missing_file(self):
        self.check(self.path("fehlt.tif"), "fehlt.tif does not exist")

    def test_no_image(self):
        path = self.path("text.tif")
        with open(path, "w") as stream:
            stream.write("no image")
        self.check(path, "could not be opened")

    def test_truncated_file(self):
        path = self.raster(noise())
        os.truncate(path, os.path.getsize(path) // 2)
        self.check(path, "is incomplete or damaged")

    def test_header_alone(self):
        path = self.raster(noise())
        os.truncate(path, 20)
        self.check(path, "could not be opened")

    def test_bad_command_lines(self):
        image = self.raster(noise())
        for colour, reason in (
            ("16777216", "'16777216' is not a number"),
            ("white", "'white' is not a number"),
            ("-1", "'-1' is not a number"),
        ):
            with self.subTest(colour):
                self.check(image, reason, colour=colour)
        self.check(image, "not understood", extra=["-x"])
        self.check(image, "must end with the image", extra=["tail"])


class OldDocument(TilerTestCase):
    """An earlier run's doc.kml would pass for this run's."""

    def test_is_gone_after_any_failure(self):
        os.makedirs(self.output)
        for image in (self.path("none.tif"), self.raster(noise(), corner=None)):
            with open(os.path.join(self.output, "doc.kml"), "w") as stream:
                stream.write("old")
            self.run_script(self.arguments(image))
            self.assert_failed("the image ")
        self.assertEqual(os.listdir(self.output), [])


@of_the_script
class MissingPackage(TilerTestCase):
    REASON = "The GDAL Python package is not installed for the Python interpreter "

    def check(self, **more):
        self.run_script(self.arguments(self.path("any.tif")), **more)
        self.assert_failed(self.REASON)
        self.assert_no_progress()

    def test_interpreter_without_packages(self):
        self.check(python=["-I", "-S"])

    def test_package_that_cannot_be_loaded(self):
        for package in ("osgeo", "osgeo_utils"):
            with self.subTest(package):
                folder = self.path("without " + package)
                os.makedirs(os.path.join(folder, package))
                stub = os.path.join(folder, package, "__init__.py")
                with open(stub, "w") as stream:
                    stream.write("raise ImportError('DLL load\\nfailed')\n")
                self.environment["PYTHONPATH"] = folder
                self.check()
                self.assertIn("(DLL load failed)", self.log.splitlines()[-1])


class ReadFailures(TilerTestCase):
    def test_damage_in_the_middle_of_the_file(self):
        array = solid((10, 20, 30), height=600, width=500)
        image = self.raster(array, options=["COMPRESS=DEFLATE", "BLOCKYSIZE=16"])
        with open(image, "r+b") as stream:
            stream.seek(os.path.getsize(image) // 2)
            stream.write(b"\xff" * 200)
        for processes in ("1", "2"):
            with self.subTest(processes):
                self.environment["MOSAICON_TILER_PROCESSES"] = processes
                self.run_script(self.arguments(image))
                self.assert_failed("the image could not be read or tiled: ")
                self.assertIn(FIRST_RECORD, self.records)
                self.assertTrue(self.tile_names())


class WriteFailures(TilerTestCase):
    def check_tiles_are_whole(self):
        for name in self.tile_names():
            tile = gdal.Open(os.path.join(self.output, name))
            self.assertEqual(tile.ReadAsArray().shape, (4, 256, 256))

    def block_one_tile(self, processes, level):
        self.environment["MOSAICON_TILER_PROCESSES"] = processes
        image = self.raster(noise(height=500, width=500))
        self.tile(image)
        blocked = sorted(self.tile_names())[level]
        self.output = self.path("zweite")
        os.makedirs(os.path.join(self.output, blocked))
        self.run_script(self.arguments(image))
        self.assert_failed("could not write .*" + blocked)
        self.check_tiles_are_whole()

    def test_folder_in_the_place_of_a_base_tile(self):
        self.block_one_tile("1", level=-1)

    def test_folder_in_the_place_of_a_base_tile_with_workers(self):
        self.block_one_tile("2", level=-1)

    def test_folder_in_the_place_of_an_overview_tile_with_workers(self):
        self.block_one_tile("2", level=0)

    @unittest.skipUnless(resource, "needs a limit on the size of files")
    def test_file_that_cannot_grow(self):
        # The pages fit below the first limit, a tile of noise does not; with the other it is the
        # pages that are too large.
        loud = self.raster(noise(height=500, width=500))
        plain = self.raster(solid((1, 2, 3)), "plain.tif")
        for image, processes, limit, name in (
            (loud, "1", 64 * 1024, r"\d\.png"),
            (loud, "2", 64 * 1024, r"\d\.png"),
            (plain, "1", 8 * 1024, "googlemaps.html"),
        ):
            with self.subTest(processes=processes, limit=limit):
                self.environment["MOSAICON_TILER_PROCESSES"] = processes
                limits = (resource.RLIMIT_FSIZE, (limit, limit))
                self.run_script(
                    self.arguments(image),
                    preexec_fn=lambda: resource.setrlimit(*limits),
                )
                self.assert_failed("could not write .*%s: File too large" % name)
                self.check_tiles_are_whole()

    def test_output_that_is_a_file(self):
        self.output = self.raster(solid((1, 2, 3)), "datei")
        self.run_script(self.arguments(self.raster(noise())))
        self.assert_failed("datei: File exists")


@unittest.skipUnless(os.path.isdir("/proc/self"), "looks at processes through /proc")
class KilledProcesses(TilerTestCase):
    def start_and_wait_for_tiles(self, processes):
        """Starts a run of some seconds and returns when it has written some tiles."""
        self.environment["MOSAICON_TILER_PROCESSES"] = processes
        image = make_raster(self.path("langsam.tif"), noise(height=2600, width=2600))
        process = self.start(self.arguments(image))
        while process.stdout.readline().split()[1] < b"0.02":
            pass
        self.workers = workers_of(process.pid)
        self.assertEqual(len(self.workers), 0 if processes == "1" or ENGINE else int(processes))
        return process

    def assert_ends(self, pids):
        deadline = time.monotonic() + 300
        while any(map(has_own_process, pids)):
            self.assertLess(time.monotonic(), deadline, "a process lives on")
            time.sleep(0.05)

    def kill(self, process):
        process.kill()
        process.communicate()

    def test_killed_run_leaves_no_document(self):
        """That of an earlier job in the same place stays, and its links lead to whole files."""
        self.kill(self.start_and_wait_for_tiles("1"))
        self.assertTrue(self.tile_names())
        self.assertEqual([n for n in self.files() if "/" not in n], [])

        image = self.raster(noise(height=2600, width=2600), "früher.tif")
        self.tile(image)
        earlier = os.path.join(self.output, "googleearth_loc.kml")
        os.rename(os.path.join(self.output, "doc.kml"), earlier)
        self.kill(self.start_and_wait_for_tiles("1"))
        self.assertNotIn("doc.kml", self.files())
        links = list(self.links("googleearth_loc.kml"))
        self.assertTrue(links)
        for _, path in links:
            ElementTree.parse(path)

    def test_next_run_removes_the_partial_files_of_a_killed_one(self):
        """Also those of tiles that it does not make itself, and when it fails."""
        folder = os.path.join(self.output, "9", "9")
        foreign = os.path.join(self.output, "mine")
        for path in (folder, foreign):
            os.makedirs(path)
            with open(os.path.join(path, "9.png.~mos"), "w"):
                pass
        self.run_script(self.arguments(self.path("none.tif")))
        self.assertEqual(os.listdir(folder), [])
        self.assertEqual(os.listdir(foreign), ["9.png.~mos"])

    @of_the_script
    def test_killed_worker_fails_the_run(self):
        process = self.start_and_wait_for_tiles("2")
        os.kill(self.workers[0], signal.SIGKILL)
        self.collect(process, timeout=300)
        self.assert_failed(r"a worker process ended unexpectedly \(exit code -9\)")
        self.assert_ends(self.workers)

    def test_terminated_run_ends_with_its_workers(self):
        for processes in ("1", "2"):
            with self.subTest(processes):
                process = self.start_and_wait_for_tiles(processes)
                process.terminate()
                self.collect(process, timeout=300)
                self.assert_failed("the run was stopped", code=143)
                self.assert_ends(self.workers)

    def test_workers_do_not_outlive_a_killed_run(self):
        self.kill(self.start_and_wait_for_tiles("2"))
        self.assert_ends(self.workers)


if __name__ == "__main__":
    unittest.main()
