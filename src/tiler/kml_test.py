"""KML of whole maps: it keeps the rules of OGC KML 2.2, and shows a map without holes and doubles.
MOSAICON_TILER is the engine."""

import os
import pathlib
import sys
import tempfile
import unittest

import numpy
from osgeo import gdal

TOP = pathlib.Path(__file__).resolve().parents[2]
sys.path[:0] = [str(TOP / "src" / "tiler" / "testing"), str(TOP / "tests" / "support")]
import engine_cases as cases  # noqa: E402
import exact_average as exact  # noqa: E402
import kml_rules  # noqa: E402
import kml_tree  # noqa: E402

ENGINE = os.environ["MOSAICON_TILER"]
TITLE = 'Wiese "é" & <x>'


class Kml(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="wiesen ")
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.output = self.folder / "m"

    def cut(self, alpha=None, srs="EPSG:32632", place=(500000.0, 0.8, 0.0, 5540000.0, 0.0, -0.8), *arguments):
        pixels = exact.texture(1100, 1500, seed=1)
        if alpha is not None:
            pixels = numpy.concatenate([pixels, numpy.full((1, 1100, 1500), alpha, numpy.uint8)])
        image = self.folder / "a.tif"
        raster = gdal.GetDriverByName("GTiff").Create(
            str(image), 1500, 1100, len(pixels), options=["ALPHA=" + ("NO" if alpha is None else "YES")]
        )
        raster.SetGeoTransform(place)
        raster.SetProjection(exact.srs_of(srs).ExportToWkt())
        raster.WriteArray(pixels)
        raster = None
        log = self.folder / "log"
        arguments = ["-k", "-t", TITLE, *arguments]
        self.assertEqual(
            cases.run([ENGINE], arguments, image, self.output, log), (0, "RESULT OK"), log.read_text()
        )
        return image

    def ground(self, image):
        """Degrees."""
        dataset = gdal.Open(str(image))
        change = exact.osr.CoordinateTransformation(
            exact.srs_of(dataset.GetProjection()), exact.srs_of("EPSG:4326")
        )
        place = dataset.GetGeoTransform()
        corners = [
            change.TransformPoint(*gdal.ApplyGeoTransform(place, x, y))[:2]
            for x in (0, dataset.RasterXSize)
            for y in (0, dataset.RasterYSize)
        ]
        west, south = map(min, zip(*corners))
        east, north = map(max, zip(*corners))
        return kml_tree.Box(north=north, south=south, east=east, west=west)

    def test_keeps_all_rules(self):
        places = {
            "EPSG:32632": (500000.0, 0.8, 0.0, 5540000.0, 0.0, -0.8),
            "EPSG:32733": (500000.0, 12.0, 0.0, 6000000.0, 0.0, -12.0),
            "EPSG:4326": (-60.0, 0.08, 0.0, 50.0, 0.0, -0.08),
        }
        for srs, place in places.items():
            with self.subTest(srs):
                self.output = self.folder / srs.replace(":", " ")
                image = self.cut(None, srs, place)
                # What nothing shines through stays below finer tiles until they are there.
                faults = kml_rules.faults_of_overlay(
                    self.output / "doc.kml", ground=self.ground(image), most_overlap=2
                )
                self.assertEqual(faults, [])
                self.assertGreater(len(list(self.output.glob("*/*/*.kml"))), 5)

    def test_draws_nothing_twice_where_it_shines_through(self):
        image = self.cut(alpha=120)
        faults = kml_rules.faults_of_overlay(self.output / "doc.kml", ground=self.ground(image))
        self.assertEqual(faults, [])
        self.cut(alpha=255)
        self.assertNotEqual(kml_rules.faults_of_overlay(self.output / "doc.kml"), [], "the check sees it")

    def test_has_a_line_for_each_link(self):
        """The program rewrites links line by line."""
        self.cut()
        for path in [self.output / "doc.kml", *self.output.glob("*/*/*.kml")]:
            for line in path.read_text().splitlines():
                words = line.strip()
                self.assertTrue(
                    "href" not in words or words.startswith("<href>") and words.endswith("</href>")
                )
                self.assertTrue("Link>" not in words or words in LINKS, line)


LINKS = ("<Link>", "</Link>", "<NetworkLink>", "</NetworkLink>")

if __name__ == "__main__":
    unittest.main()
