"""The pixels of tiles, compared with the gdal2tiles that is installed, for images that lie in the map's
projection already. MOSAICON_TELL_PIXELS is the program that cuts them."""

import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

import numpy
from osgeo import gdal, osr
from osgeo_utils import gdal2tiles

TOP = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(TOP / "src" / "tiler"))
from texts_test import images  # noqa: E402

gdal.UseExceptions()
TILE = 256
IMAGES = 12
MOST_PIXELS = 400_000


def noise(image, seed):
    """Of all colours and transparencies; large parts are wholly transparent."""
    pixels = numpy.random.RandomState(seed).randint(0, 256, (image.height, image.width, 4))
    pixels[: image.height // 3, :, 3] = 0
    return pixels.astype(numpy.uint8)


def write_raster(path, image, pixels):
    raster = gdal.GetDriverByName("GTiff").Create(str(path), image.width, image.height, 4)
    raster.SetGeoTransform((image.left, image.pixel, 0, image.top, 0, -image.pixel))
    mercator = osr.SpatialReference()
    mercator.ImportFromEPSG(3857)
    raster.SetProjection(mercator.ExportToWkt())
    for number in range(4):
        raster.GetRasterBand(number + 1).WriteArray(pixels[:, :, number])
    raster.GetRasterBand(4).SetColorInterpretation(gdal.GCI_AlphaBand)
    raster.FlushCache()


def tiles_of(image):
    """As the program tells them."""
    for level in range(image.finest, image.coarsest - 1, -1):
        west, south, east, north = list(image.ranges())[level - image.coarsest]
        for row in range(north, south - 1, -1):
            for column in range(west, east + 1):
                yield level, column, row


def cut(image, pixels):
    words = map(str, image.words())
    run = subprocess.run(
        [os.environ["MOSAICON_TELL_PIXELS"], *words], input=pixels.tobytes(), check=True, capture_output=True
    )
    return numpy.frombuffer(run.stdout, numpy.uint8).reshape(-1, TILE, TILE, 4)


def small_images():
    for seed, image in images(10 * IMAGES):
        inside = max(abs(image.left), abs(image.right), abs(image.top), abs(image.bottom)) < 1.9e7
        if inside and image.width * image.height <= MOST_PIXELS and image.finest - image.coarsest < 6:
            yield seed, image


class Pixels(unittest.TestCase):
    def test_tiles_of_all_levels(self):
        count = 0
        for seed, image in list(small_images())[:IMAGES]:
            with self.subTest(seed), tempfile.TemporaryDirectory() as folder:
                pixels = noise(image, seed)
                path, output = pathlib.Path(folder, "image.tif"), pathlib.Path(folder, "tiles")
                write_raster(path, image, pixels)
                gdal2tiles.main(
                    ["gdal2tiles.py", "-q", "--profile=mercator", "-w", "none", str(path), str(output)]
                )
                names = list(tiles_of(image))
                ours = cut(image, pixels)
                self.assertEqual(len(ours), len(names))
                self.assertEqual(len(list(output.glob("*/*/*.png"))), len(names))
                for (level, column, row), tile in zip(names, ours):
                    theirs = gdal.Open(str(output / str(level) / str(column) / f"{row}.png")).ReadAsArray()
                    different = numpy.count_nonzero(numpy.moveaxis(theirs, 0, -1) != tile)
                    self.assertEqual(different, 0, (level, column, row))
                    count += 1
        self.assertGreater(count, IMAGES)


if __name__ == "__main__":
    unittest.main()
