"""What the engine decides and writes before any pixel, compared with the gdal2tiles that is installed:
levels, tiles, windows of the image, KML, and the pages of the map. MOSAICON_TELL_TEXTS is the program that
tells it."""

import os
import pathlib
import random
import subprocess
import sys
import types
import unittest

TOP = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(TOP / "tools" / "gdal2tiles"))
import mosaicon_tiler_engine  # noqa: E402

# With the corrections that the tiling script makes.
TILER = mosaicon_tiler_engine._prepare_process()
MERCATOR = TILER.GlobalMercator()
PLACEHOLDER = "INSERT_YOUR_KEY_HERE"
MOST_TILES = 2000


def told(*words):
    run = subprocess.run(
        [os.environ["MOSAICON_TELL_TEXTS"], *map(str, words)], check=True, capture_output=True
    )
    return run.stdout.decode()


def options(**more):
    return types.SimpleNamespace(xyz=False, profile="mercator", **more)


class Image:
    """At random; some at the edge of a tile, some with the pixels of a level."""

    def __init__(self, chance):
        self.width = chance.choice([1, 2, 3, 50, 300, 3000])
        self.height = chance.choice([1, 7, 256, 900, 2000])
        self.pixel = chance.choice(
            [0.05, 0.3, 1.7, 28.5, 156.543033928041, MERCATOR.Resolution(chance.randint(8, 20))]
        )
        self.left = chance.choice([chance.uniform(-2e7, 1.9e7), 0.0, -self.pixel])
        self.top = chance.choice([chance.uniform(-1.8e7, 1.9e7), 0.0, 1e-3])
        if chance.random() < 0.4:
            level = MERCATOR.ZoomForPixelSize(self.pixel)
            tile = MERCATOR.MetersToTile(self.left, self.top, level)
            self.left, _, _, self.top = MERCATOR.TileBounds(*tile, level)
        self.right = self.left + self.width * self.pixel
        self.bottom = self.top - self.height * self.pixel
        self.coarsest = MERCATOR.ZoomForPixelSize(self.pixel * max(self.width, self.height) / 256.0)
        self.finest = max(self.coarsest, MERCATOR.ZoomForPixelSize(self.pixel))

    def words(self):
        return repr(self.left), repr(self.top), repr(self.pixel), self.width, self.height

    def ranges(self):
        for level in range(self.coarsest, self.finest + 1):
            west, south = MERCATOR.MetersToTile(self.left, self.bottom, level)
            east, north = MERCATOR.MetersToTile(self.right, self.top, level)
            last = 2**level - 1
            yield max(0, west), max(0, south), min(last, east), min(last, north)

    def degrees(self):
        south, west = MERCATOR.MetersToLatLon(self.left, self.bottom)
        north, east = MERCATOR.MetersToLatLon(self.right, self.top)
        return max(-85.05112878, south), max(-180.0, west), min(85.05112878, north), min(180.0, east)

    def dataset(self):
        return types.SimpleNamespace(
            GetGeoTransform=lambda: (self.left, self.pixel, 0, self.top, 0, -self.pixel),
            RasterXSize=self.width,
            RasterYSize=self.height,
        )


def images(count):
    """The seed is told when a test fails: it is the name of the case."""
    seed = 0
    while count > 0:
        image = Image(random.Random(seed))
        west, south, east, north = list(image.ranges())[-1]
        if (east - west + 1) * (north - south + 1) <= MOST_TILES:
            yield seed, image
            count -= 1
        seed += 1


def plan_of(image):
    def line(*numbers):
        return " ".join(map(str, numbers))

    ranges = list(image.ranges())
    yield line(image.coarsest, image.finest, sum((e - w + 1) * (n - s + 1) for w, s, e, n in ranges))
    for each in ranges:
        yield line(*each)
    west, south, east, north = ranges[-1]
    for row in range(north, south - 1, -1):
        for column in range(west, east + 1):
            left, bottom, right, top = MERCATOR.TileBounds(column, row, image.finest)
            window, query = TILER.GDAL2Tiles.geo_query(
                None, image.dataset(), left, top, right, bottom, querysize=1024
            )
            yield line(*window, *query)
    yield from map(repr, image.degrees())


class Texts(unittest.TestCase):
    def test_plan(self):
        for seed, image in images(150):
            with self.subTest(seed):
                self.assertEqual(told("plan", *image.words()).splitlines(), list(plan_of(image)))

    def test_kml(self):
        wanted = options(url="../a&b/c d/", title='Hä & "<x>')

        def kml(*tile, children=None):
            return TILER.generate_kml(*tile, "png", 256, MERCATOR.TileLatLonBounds, wanted, children)

        self.assertEqual(told("leaf"), kml(139430, 172265, 18))
        self.assertEqual(told("overview"), kml(0, 5, 3, children=[(0, 11, 4), (1, 11, 4), (0, 10, 4)]))
        self.assertEqual(told("root"), kml(None, None, None, children=[(0, 5, 3), (1, 5, 3)]))

    def test_pages(self):
        for seed, image in images(25):
            chance = random.Random(seed)
            title = chance.choice(['Hä@WEST@ "x" & <y>', "a\tb", "@", "plain %s %d"])
            key = chance.choice(["", "AIza$1"])
            url = chance.choice(["../x/", "../../maps/ö&\"<>'/"])
            pages = TILER.GDAL2Tiles.__new__(TILER.GDAL2Tiles)
            pages.options = options(
                title=title, url=url, googlekey=key or PLACEHOLDER, bingkey=PLACEHOLDER, copyright=""
            )
            pages.swne, pages.tminz, pages.tmaxz = image.degrees(), image.coarsest, image.finest
            pages.ominx, pages.ominy, pages.omaxx, pages.omaxy = (
                image.left,
                image.bottom,
                image.right,
                image.top,
            )
            pages.tile_size, pages.tileext, pages.out_srs = 256, "png", None
            for page, text in (
                ("google", pages.generate_googlemaps),
                ("leaflet", pages.generate_leaflet),
                ("openlayers", pages.generate_openlayers),
                ("tilemap", pages.generate_tilemapresource),
            ):
                with self.subTest((seed, page)):
                    self.assertEqual(told(page, *image.words(), title, key, url), text())


if __name__ == "__main__":
    unittest.main()
