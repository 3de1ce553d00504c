"""Files that are no orthophotos: each is told, and the next one is worked on all the same."""

import struct
import unittest

from osgeo import gdal

from batch_support import BatchTest, snapshot, start_wine, windows_path
from rasters import OWN_ZONE, make_raster, noise, picture, solid, wkt_of
from results import Job, ResultChecks, files_below

NO_POSITION = "Unable to get geographic information into selected file"


def setUpModule():
    start_wine()


def write_vrt(path, size, pixel_size, source="", wkt=None):
    wkt = (wkt or wkt_of(OWN_ZONE[0])).replace('"', "&quot;")
    path.write_text(
        f'<VRTDataset rasterXSize="{size}" rasterYSize="{size}"><SRS>{wkt}</SRS>'
        f"<GeoTransform>500000, {pixel_size}, 0, 4983000, 0, -{pixel_size}</GeoTransform>"
        f'<VRTRasterBand dataType="Byte" band="1">{source}</VRTRasterBand></VRTDataset>'
    )
    return path


def claim_size(path, size):
    """Changes the width and the height in the header of a TIFF file."""
    data = bytearray(path.read_bytes())
    (directory,) = struct.unpack_from("<I", data, 4)
    (count,) = struct.unpack_from("<H", data, directory)
    for entry in range(directory + 2, directory + 2 + 12 * count, 12):
        (tag,) = struct.unpack_from("<H", data, entry)
        if tag in (256, 257):
            struct.pack_into("<HII", data, entry + 2, 4, 1, size)
    path.write_bytes(data)
    return path


class BadInput(BatchTest, ResultChecks):
    def setUp(self):
        super().setUp()
        self.inputs = self.folder / "in"
        self.inputs.mkdir()
        self.bad = self.inputs / "bad.tif"
        self.good = make_raster(self.inputs / "good.tif", pixels=solid([90, 120, 150]))

    def run_job(self, *inputs, count):
        self.job = Job(self.folder / "out", count)
        before = snapshot(self.inputs)
        run = self.batch("--target", self.job.target, *inputs)
        self.assertEqual(snapshot(self.inputs), before, "the inputs were changed")
        return run

    def told(self, *messages):
        return [f"mosaicon-batch: {windows_path(path)}: {text}" for path, text in messages]

    def not_recognized(self, path):
        return (
            f"{NO_POSITION} (it cannot be opened: `{windows_path(path)}' not recognized as a "
            "supported file format)"
        )


class FileWithoutPosition(BadInput):
    """Is refused before the job, which has one orthophoto less then."""

    def check(self, cause=None):
        """Without a cause no driver of GDAL wants the file."""
        run = self.run_job(self.bad, self.good, count=1)
        message = f"{NO_POSITION} ({cause})" if cause else self.not_recognized(self.bad)
        self.assertEqual((run.code, run.errors), (1, self.told((self.bad, message))), run)
        self.assert_output(run, self.job.output([self.good]))
        self.assert_links_resolve(self.job.target)

    def check_driver_words(self, words):
        run = self.run_job(self.bad, self.good, count=1)
        self.assertEqual((run.code, len(run.errors)), (1, 1), run)
        (start,) = self.told((self.bad, NO_POSITION + " (it cannot be opened: "))
        self.assertTrue(run.errors[0].startswith(start), run)
        self.assertIn(words, run.errors[0])
        self.assert_output(run, self.job.output([self.good]))

    def test_an_empty_file(self):
        self.bad.touch()
        self.check()

    def test_a_text(self):
        self.bad.write_text("II* this is no image\r\n" * 50)
        self.check()

    def test_the_beginning_of_an_image(self):
        self.bad.write_bytes(self.good.read_bytes()[:100])
        self.check_driver_words("TIFF")

    def test_an_image_that_is_too_large_to_count(self):
        make_raster(self.bad, pixels=solid([9]), options=["TILED=YES", "BLOCKXSIZE=16", "BLOCKYSIZE=16"])
        claim_size(self.bad, 2**31 - 1)
        self.check_driver_words("bad.tif")

    def test_an_image_of_no_size(self):
        write_vrt(self.bad, 0, 1)
        self.check_driver_words("Invalid dataset dimensions : 0 x 0")

    def test_an_image_without_reference(self):
        make_raster(self.bad, place=None)
        self.check("it names no coordinate system")

    def test_an_image_without_position(self):
        make_raster(self.bad, place=None)
        gdal.Open(str(self.bad), gdal.GA_Update).SetProjection(wkt_of(OWN_ZONE[0]))
        self.check("it does not say where it lies")

    def test_an_image_in_a_grid_that_is_nowhere_on_the_globe(self):
        make_raster(self.bad, wkt='LOCAL_CS["Site grid",UNIT["metre",1]]')
        self.check("its coordinates cannot be converted to longitude and latitude")

    def test_an_image_with_a_reference_that_has_no_number(self):
        self.bad = write_vrt(
            self.inputs / "bad.vrt",
            9,
            1,
            wkt=(
                'PROJCS["Site",GEOGCS["Site",DATUM["Site",SPHEROID["Site",6378137,298.25]],'
                'PRIMEM["Greenwich",0],UNIT["degree",0.0174532925199433]],'
                'PROJECTION["Transverse_Mercator"],PARAMETER["central_meridian",9],UNIT["metre",1]]'
            ),
        )
        self.check("its coordinate system has no EPSG code")

    def test_an_image_in_a_folder_is_told_with_its_name(self):
        make_raster(self.bad, place=None)
        run = self.run_job(self.inputs, count=1)
        message = "no geographic information, skipped (it names no coordinate system)"
        self.assertEqual((run.code, run.errors), (1, self.told((self.bad, message))), run)
        self.assert_output(run, self.job.output([self.good]))


class ImageThatNoMapHolds(BadInput):
    CUT_OPEN = (
        "the image reaches across 180 degrees of longitude, where web maps are cut open, or "
        "covers more than half of the globe"
    )
    PLACES = {
        "globe": (4326, -180, 90, 0.6),
        "Fiji": (3460, 2100000, 4000000, 1000),
        "sea": (4326, 179.5, 10, 0.001),
        "zone": (32660, 827000, 1100000, 50),
        "mercator": (3857, 20036000, 1100000, 10),
    }

    def test_is_told_before_anything_is_done(self):
        paths = []
        for name, (epsg, left, top, pixel_size) in self.PLACES.items():
            paths.append(
                make_raster(
                    self.inputs / (name + ".tif"),
                    (epsg, left, top),
                    pixels=noise(600, 300),
                    pixel_size=pixel_size,
                )
            )
        north = make_raster(self.inputs / "north.tif", (4326, 9, 85.1), pixel_size=0.001)
        run = self.run_job(*paths, north, self.good, count=1)
        self.assertEqual(
            run.errors,
            self.told(
                *((path, self.CUT_OPEN) for path in paths),
                (north, "the image reaches beyond 85.05 degrees of latitude, where web maps end"),
            ),
            run,
        )
        self.assertEqual(run.code, 1)
        self.assert_output(run, self.job.output([self.good]))
        self.assert_links_resolve(self.job.target)

    def test_is_told_by_the_script_when_only_its_reprojection_is_too_large(self):
        """The corners end at 180 degrees; the upright image in its zone reaches beyond."""
        self.bad = make_raster(self.bad, (4326, 179, 10), pixels=noise(400, 300), pixel_size=0.0025)
        run = self.batch("--target", self.folder / "out", self.bad)
        self.assert_failed(
            run,
            (
                self.bad,
                "the image reaches across 180 degrees of longitude, where web maps are cut open; "
                "tile its western and its eastern part on their own",
            ),
        )
        self.assertEqual(files_below(self.folder / "out"), {".jpg"})


class DamagedFile(BadInput):
    """Is found out by the tiling script."""

    def check(self, reason, bad=None):
        bad = bad or self.bad
        run = self.run_job(bad, self.good, count=2)
        self.assertEqual((run.code, len(run.errors)), (1, 2), run)
        self.assertRegex(run.errors[0], r"^mosaicon-batch: FAILED Z:\\.*\\bad\.\w+: " + reason)
        self.assertRegex(run.errors[1], "^mosaicon-batch: details are in C:")
        self.assertIn(f"- {windows_path(self.good)}: OK", run.output)
        self.assertNotIn(f"- {windows_path(bad)}: OK", run.output)
        self.assertEqual(list(self.job.folder(0).glob("*.kml")), [])
        self.assert_links_resolve(self.job.folder(1))

    def test_whose_end_is_missing(self):
        make_raster(self.bad, pixels=noise(120, 90))
        # The directory that says where everything is must stay.
        data = self.bad.read_bytes()
        self.assertLess(struct.unpack_from("<I", data, 4)[0], 5000)
        self.bad.write_bytes(data[: len(data) // 2])
        self.check(r"the image \S.*bad\.tif is incomplete or damaged: ")

    def test_whose_middle_is_damaged(self):
        make_raster(self.bad, pixels=picture(400, 300), options=["COMPRESS=DEFLATE", "TILED=YES"])
        data = bytearray(self.bad.read_bytes())
        middle = len(data) // 2
        data[middle : middle + 200] = b"\xff" * 200
        self.bad.write_bytes(data)
        gdal.Open(str(self.bad)).ReadRaster(399, 299, 1, 1)  # the end is well
        self.check("the image could not be read or tiled: .+")

    def test_that_claims_to_be_larger_than_it_is(self):
        make_raster(
            self.bad,
            pixels=solid([9]),
            options=["TILED=YES", "BLOCKXSIZE=16", "BLOCKYSIZE=16"],
            pixel_size=0.01,
        )
        claim_size(self.bad, 60000)
        self.check(r"the image \S.*bad\.tif is incomplete or damaged: ")

    def test_of_huge_size_whose_source_is_missing(self):
        size = 2_000_000_000
        bad = write_vrt(
            self.inputs / "bad.vrt",
            size,
            1e-6,
            '<SimpleSource><SourceFilename relativeToVRT="1">none.tif</SourceFilename>'
            '<SourceBand>1</SourceBand><SourceProperties RasterXSize="%d" RasterYSize="%d" '
            'DataType="Byte" BlockXSize="128" BlockYSize="128"/></SimpleSource>' % (size, size),
        )
        self.check(r"the image \S.*bad\.vrt is incomplete or damaged: .*none\.tif", bad)


class NothingAtAll(BadInput):
    NOTHING = "mosaicon-batch: there is no orthophoto to work on"

    def check(self, *messages):
        run = self.run_job(*(path for path, _ in messages), count=1)
        self.assertEqual(run.errors, [*self.told(*messages), self.NOTHING], run)
        self.assertEqual((run.code, run.output), (1, []))
        self.assertFalse(self.job.target.exists())

    def test_bad_files_only(self):
        self.bad.write_text("no image")
        nowhere = make_raster(self.inputs / "nowhere.tif", place=None)
        self.check(
            (self.bad, self.not_recognized(self.bad)),
            (nowhere, NO_POSITION + " (it names no coordinate system)"),
        )

    def test_a_folder_without_images(self):
        empty = self.folder / "empty"
        (empty / "below.tif").mkdir(parents=True)
        make_raster(empty / "below.tif" / "deeper.tif")
        (empty / "notes.txt").write_text("no image")
        self.check((empty, "No valid orthophoto found inside selected folder"))

    def test_files_that_do_not_exist(self):
        message = "there is no such file or folder"
        self.check((self.inputs / "none.tif", message), (self.folder / "none" / "none.tif", message))


class SeveralAtOnce(BadInput):
    def test_are_told_in_order_and_do_not_stop_the_rest(self):
        self.bad.write_text("no image")
        complex_numbers = make_raster(self.inputs / "complex.tif", kind=gdal.GDT_CInt16)
        last = make_raster(self.inputs / "last.tif")
        run = self.run_job(self.bad, self.good, complex_numbers, self.inputs / "none.tif", last, count=3)
        self.assert_failed(
            run,
            (complex_numbers, "the image has 32-bit pixels (CInt16); convert it to 8 bits before tiling"),
            before=self.told(
                (self.bad, self.not_recognized(self.bad)),
                (self.inputs / "none.tif", "there is no such file or folder"),
            ),
        )
        self.assert_links_resolve(self.job.folder(0))
        self.assertEqual(files_below(self.job.folder(1)), set())
        self.assert_links_resolve(self.job.folder(2))


if __name__ == "__main__":
    unittest.main()
