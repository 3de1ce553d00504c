"""Tiles in one step from the image: beside exact averages that are computed from its pixels with numpy, and
through the virtual rasters of GDAL's tools. MOSAICON_TILER is the engine."""

import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

import numpy
from osgeo import gdal

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent / "testing"))
import engine_cases as cases  # noqa: E402
import exact_average as exact  # noqa: E402

ENGINE = os.environ["MOSAICON_TILER"]
SIZE = 420, 560  # rows, columns
PLACES = {  # of the upper left corner, metres
    "EPSG:32632": (500000.0, 5540000.0),
    "EPSG:31467": (3500075.0, 5541500.0),  # another datum
    "EPSG:3857": (1000000.3, 6000000.7),
}


class SharpTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="wiesen é ")
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.log = self.folder / "log"

    def write(self, name, pixels, srs="EPSG:32632", pixel=0.8, turn=0.0, alpha=False):
        path = self.folder / name
        bands, height, width = pixels.shape
        raster = gdal.GetDriverByName("GTiff").Create(str(path), width, height, bands)
        left, top = PLACES[srs]
        across, down = pixel * numpy.cos(turn), pixel * numpy.sin(turn)
        raster.SetGeoTransform((left, across, down, top, down, -across))
        raster.SetProjection(exact.srs_of(srs).ExportToWkt())
        raster.WriteArray(pixels)
        if alpha:
            raster.GetRasterBand(bands).SetColorInterpretation(gdal.GCI_AlphaBand)
        raster.FlushCache()
        return path

    def cut(self, image, name="tiles", *arguments):
        output = self.folder / name
        result = cases.run([ENGINE, "--threads=2"], arguments, image, output, self.log)
        self.assertEqual(result, (0, "RESULT OK"), self.log.read_text())
        return Tiles(output)

    def road(self, image, zone="EPSG:32632", points=(0, 0), translate=(), warp=()):
        """Through both tools, as a job has an image in another system. points: what the control points say
        beside the truth, in metres."""
        source = exact.Source(image)
        place = gdal.Open(str(image)).GetGeoTransform()
        change = exact.osr.CoordinateTransformation(
            exact.srs_of(gdal.Open(str(image)).GetProjection()), exact.srs_of(zone)
        )
        words = []
        for column, row in ((0, 0), (0, source.height), (source.width, 0), (source.width, source.height)):
            x, y, _ = change.TransformPoint(*gdal.ApplyGeoTransform(place, column, row))
            words += ["-gcp", column, row, f"{x + points[0]:.20f}", f"{y + points[1]:.20f}"]
        plain, warped = self.folder / "plain.vrt", self.folder / "warped.vrt"
        self.run_tool("gdal_translate", "-of", "VRT", "-a_srs", zone, *words, *translate, image, plain)
        self.run_tool("gdalwarp", "-overwrite", "-of", "VRT", "-t_srs", zone, *warp, plain, warped)
        return warped

    def run_tool(self, *words):
        subprocess.run([str(word) for word in (words[0], "-q", *words[1:])], check=True)

    def assert_near(self, ours, expected, tolerance):
        self.assertEqual(ours.names(), expected.names())
        self.assertGreater(len(ours.names()), 3)
        for name in ours.names():
            mine, theirs = ours.pixels(name), expected.pixels(name)
            self.assertLessEqual(abs(mine[3] - theirs[3]).max(), tolerance, name)
            shown = theirs[3] == 255
            self.assertLessEqual(abs(mine - theirs)[:, shown].max(initial=0), tolerance, name)


class Tiles:
    def __init__(self, folder):
        self.folder = folder

    def names(self):
        return [name for name in cases.files_of(self.folder) if name.suffix == ".png"]

    def pixels(self, name):
        """Red, green, blue, alpha."""
        return cases.decoded(self.folder / name).astype(float)

    def finest(self):
        """(level, column, row): pixels"""
        numbers = [tuple(int(part) for part in name.with_suffix("").parts) for name in self.names()]
        most = max(number[0] for number in numbers)
        return {
            number: self.pixels(f"{'/'.join(map(str, number))}.png")
            for number in numbers
            if number[0] == most
        }


class Pixels(SharpTest):
    def test_are_exact_averages_at_their_places(self):
        for srs, pixel, turn in (
            ("EPSG:32632", 0.83, 0.0),
            ("EPSG:31467", 0.11, 0.04),
            ("EPSG:32632", 1.7, 0.7),
            ("EPSG:3857", 0.9, 0.0),
        ):
            with self.subTest(srs, pixel=pixel, turn=turn):
                image = self.write("a.tif", exact.texture(*SIZE, seed=7), srs, pixel, turn)
                source = exact.Source(image)
                seen = 0
                for number, ours in self.cut(image, f"tiles {srs} {turn}").finest().items():
                    whole = ours[3] == 255
                    if whole.mean() < 0.2:
                        continue
                    truth, covered = source.tile(*number)
                    self.assertLess(abs(ours[3] / 255 - covered).max(), 0.05)
                    self.assertGreater(exact.decibels(ours[:3][:, whole], truth[:, whole]), 50)
                    if whole.all():
                        self.assertLess(abs(exact.shift(ours[:3], truth)).max(), 0.02)
                    seen += 1
                self.assertGreater(seen, 0)

    def test_of_overviews_are_averages_of_finer_ones(self):
        pixels = exact.texture(*SIZE, seed=3)
        alpha = numpy.full((1, *SIZE), 255, numpy.uint8)
        alpha[:, 100:300, 150:400] = 0
        tiles = self.cut(self.write("a.tif", numpy.concatenate([pixels, alpha]), alpha=True))
        checked = 0
        for name in tiles.names():
            level, column, row = (int(part) for part in name.with_suffix("").parts)
            finer = [f"{level + 1}/{2 * column + x}/{2 * row + y}.png" for y in (1, 0) for x in (0, 1)]
            if not all((tiles.folder / each).exists() for each in finer):
                continue
            quarters = [tiles.pixels(each) for each in finer]
            four = numpy.block([[quarters[0], quarters[1]], [quarters[2], quarters[3]]])
            weights = four[3].reshape(256, 2, 256, 2)
            sums = (four[:3].reshape(3, 256, 2, 256, 2) * weights).sum((2, 4))
            ours, expected = tiles.pixels(name), sums / numpy.maximum(weights.sum((1, 3)), 1)
            self.assertLessEqual(abs(ours[3] - weights.mean((1, 3))).max(), 0.5)
            self.assertLessEqual(abs(ours[:3] - expected)[:, ours[3] > 0].max(), 0.5 + 1e-6)
            checked += 1
        self.assertGreater(checked, 0)

    def test_have_no_fringe_where_the_image_ends(self):
        colour = numpy.array([200, 90, 40], numpy.uint8)
        pixels = numpy.broadcast_to(colour[:, None, None], (3, *SIZE)).copy()
        hidden = numpy.zeros(SIZE, bool)
        hidden[100:201, 151:300] = True
        alpha = numpy.where(hidden, 0, 255).astype(numpy.uint8)[None]
        black = numpy.where(hidden, 0, pixels).astype(numpy.uint8)
        masked = self.write("mask.tif", black)
        raster = gdal.Open(str(masked), gdal.GA_Update)
        raster.CreateMaskBand(gdal.GMF_PER_DATASET)
        raster.GetRasterBand(1).GetMaskBand().WriteArray(alpha[0])
        raster = None
        nodata = self.write("nodata.tif", black)
        raster = gdal.Open(str(nodata), gdal.GA_Update)
        for number in (1, 2, 3):
            raster.GetRasterBand(number).SetNoDataValue(0)
        raster = None
        images = {
            "alpha": (self.write("alpha.tif", numpy.concatenate([black, alpha]), alpha=True), ()),
            "mask": (masked, ()),
            "nodata": (nodata, ()),
            "colour": (self.write("colour.tif", black), ("-a", "0")),
        }
        expected = self.cut(images["alpha"][0], "expected")
        for name, (image, arguments) in images.items():
            for way in ("itself", "road"):
                with self.subTest(name, way=way):
                    path = image if way == "itself" else self.road(image, "EPSG:32633")
                    tiles = self.cut(path, f"{name} {way}", *arguments)
                    for tile in tiles.names():
                        seen = tiles.pixels(tile)
                        self.assertLessEqual(
                            abs(seen[:3] - colour[:, None, None])[:, seen[3] > 0].max(initial=0), 0
                        )
                    if way == "itself":
                        self.assert_near(tiles, expected, 0)

    def test_may_be_made_in_other_ways(self):
        pixels = exact.texture(*SIZE, seed=9)
        image = self.write("a.tif", pixels, "EPSG:3857", pixel=1.0)
        seen = {}
        for mode in ("average", "near", "bilinear", "cubic", "cubicspline", "lanczos", "antialias"):
            seen[mode] = self.cut(image, mode, f"--resampling={mode}").finest()
        number = max(seen["near"], key=lambda each: (seen["near"][each][3] == 255).sum())
        shown = seen["near"][number][3] == 255
        found = {mode: tiles[number][:3][:, shown] for mode, tiles in seen.items()}
        colours = {tuple(colour) for colour in pixels.reshape(3, -1).T}
        self.assertTrue(all(tuple(colour) in colours for colour in found["near"].T))
        self.assertTrue((found["lanczos"] == found["antialias"]).all())
        names = [mode for mode in found if mode != "antialias"]
        for index, mode in enumerate(names):
            self.assertGreater(exact.decibels(found[mode], found["average"]), 20, mode)
            for other in names[:index]:
                self.assertTrue((found[mode] != found[other]).any(), (mode, other))


class SeenThrough(SharpTest):
    def check(self, image, warped, behind, tolerance=1):
        expected = self.cut(image, "expected")
        ours = self.cut(warped, "ours", "-s", "EPSG:32632")
        self.assertIn(f"The pixels are read from {behind}", self.log.read_text())
        common = sorted(set(ours.finest()) & set(expected.finest()))
        self.assertGreater(len(common), 0)
        for number in common:
            mine, theirs = ours.finest()[number], expected.finest()[number]
            self.assertLessEqual(abs(mine - theirs).max(), tolerance)

    def test_is_what_a_job_makes_of_an_image(self):
        image = self.write("a.tif", exact.texture(*SIZE, seed=2), "EPSG:31467")
        self.check(image, self.road(image), image)

    def test_are_control_points_that_say_something_else(self):
        image = self.write("a.tif", exact.texture(*SIZE, seed=2), "EPSG:31467")
        warped = self.road(image, points=(40.0, -15.0))
        tiles = self.cut(warped, "tiles", "-s", "EPSG:32632")
        self.assertIn(f"The pixels are read from {self.folder / 'plain.vrt'}", self.log.read_text())
        # The points count.
        source = exact.Source(image)
        moved = gdal.GetDriverByName("GTiff").CreateCopy(
            str(self.folder / "moved.tif"), gdal.Open(str(image))
        )
        place = list(moved.GetGeoTransform())
        place[0], place[3] = place[0] + 40.0, place[3] - 15.0
        moved.SetGeoTransform(place)
        moved = None
        source = exact.Source(self.folder / "moved.tif")
        number, ours = max(tiles.finest().items(), key=lambda each: (each[1][3] == 255).sum())
        truth, _ = source.tile(*number)
        whole = ours[3] == 255
        self.assertGreater(whole.mean(), 0.3)
        # Both systems turn the points a little differently.
        self.assertGreater(exact.decibels(ours[:3][:, whole], truth[:, whole]), 30)

    def test_is_only_what_shows_the_image_as_it_is(self):
        image = self.write("a.tif", exact.texture(*SIZE, seed=2), "EPSG:31467")
        left, top, *_ = gdal.Open(str(self.road(image))).GetGeoTransform()[0::3]
        for what, translate, warp in (
            ("a part", (), ("-te", left + 100, top - 200, left + 300, top - 50)),
            ("mixed pixels", (), ("-r", "cubic")),
            ("hidden pixels", (), ("-srcnodata", "100")),
            ("another way through the points", (), ("-tps",)),
        ):
            with self.subTest(what):
                warped = self.road(image, translate=translate, warp=warp)
                self.log.unlink(missing_ok=True)
                self.cut(warped, what, "-s", "EPSG:32632")
                self.assertNotIn("The pixels are read from", self.log.read_text())
        for what, translate in (
            ("moved pixels", ("-srcwin", 10, 10, 300, 300)),
            ("changed pixels", ("-scale", 0, 255, 255, 0)),
            ("other bands", ("-b", 3, "-b", 2, "-b", 1)),
        ):
            with self.subTest(what):
                warped = self.road(image, translate=translate)
                self.log.unlink(missing_ok=True)
                self.cut(warped, what, "-s", "EPSG:32632")
                self.assertNotIn(f"The pixels are read from {image}", self.log.read_text())


if __name__ == "__main__":
    unittest.main()
