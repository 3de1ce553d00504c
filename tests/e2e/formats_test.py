"""Orthophotos in the formats and codecs that they come in: the maps are those of the plain pixels."""

import unittest

import numpy
from osgeo import gdal

from batch_support import BatchTest, start_wine
from rasters import make_raster, picture
from results import Job, ResultChecks, files_below, read_pixels

TILED = ["TILED=YES", "BLOCKXSIZE=128", "BLOCKYSIZE=128"]
WIDTH, HEIGHT = 320, 260
GEOTIFFS = {
    "striped": [],
    "tiled": TILED,
    "bigtiff": ["BIGTIFF=YES", *TILED],
    "planes": ["INTERLEAVE=BAND", "COMPRESS=PACKBITS"],
    "lzw": ["COMPRESS=LZW", "PREDICTOR=2"],
    "deflate": ["COMPRESS=DEFLATE", "PREDICTOR=2", *TILED],
    "zstd": ["COMPRESS=ZSTD", "PREDICTOR=2", *TILED],
    "webp": ["COMPRESS=WEBP", "WEBP_LOSSLESS=YES", *TILED],
    "lossy webp": ["COMPRESS=WEBP", "WEBP_LEVEL=80", *TILED],
    "lerc": ["COMPRESS=LERC_DEFLATE", *TILED],
    "jpeg": ["COMPRESS=JPEG", "JPEG_QUALITY=85", *TILED],
    "jpeg ycbcr": ["COMPRESS=JPEG", "PHOTOMETRIC=YCBCR", *TILED],
    "bits": ["NBITS=7", "COMPRESS=DEFLATE"],
}
# Decoders may round another way.
LOSSY = 2


def setUpModule():
    start_wine()


class FormatTest(BatchTest, ResultChecks):
    def setUp(self):
        super().setUp()
        self.plain = make_raster(self.folder / "plain.tif", pixels=picture(WIDTH, HEIGHT) // 2)
        self.orthophotos = []

    def copy(self, name, driver, options=(), source=None):
        path = self.folder / name
        gdal.Translate(str(path), str(source or self.plain), format=driver, creationOptions=list(options))
        self.orthophotos.append(path)
        return path

    def decoded(self, orthophoto):
        """The same pixels without any codec, with what is transparent as a band."""
        image = gdal.Open(str(orthophoto))
        bands = [image.GetRasterBand(number + 1).ReadAsArray() for number in range(image.RasterCount)]
        pixels = numpy.stack([*bands, image.GetRasterBand(1).GetMaskBand().ReadAsArray()]).astype(
            bands[0].dtype
        )
        plain = self.folder / "decoded" / f"{orthophoto.stem}.tif"
        plain.parent.mkdir(exist_ok=True)
        meanings = [gdal.GCI_RedBand, gdal.GCI_GreenBand, gdal.GCI_BlueBand, gdal.GCI_AlphaBand]
        return make_raster(plain, pixels=pixels, colours=meanings)

    def check(self):
        count = len(self.orthophotos)
        job, expected = Job(self.folder / "out", count), Job(self.folder / "same", count)
        plain = [self.decoded(path) for path in self.orthophotos]
        for each, orthophotos in ((job, self.orthophotos), (expected, plain)):
            run = self.batch("--target", each.target, "--transparency", "010203", *orthophotos)
            self.assertEqual((run.code, run.errors), (0, []), run)
        for index, orthophoto in enumerate(self.orthophotos):
            with self.subTest(orthophoto.name):
                self.assert_same_tiles(job.folder(index), expected.folder(index))
                self.assertTrue((job.folder(index) / ".jpg").is_file())

    def assert_same_tiles(self, made, expected):
        tiles = [path for path in sorted(files_below(expected)) if path.endswith(".png")]
        self.assertGreater(len(tiles), 3)
        self.assertEqual([path for path in sorted(files_below(made)) if path.endswith(".png")], tiles)
        visible = 0
        for path in tiles:
            a, b = (read_pixels(folder / path).astype(int) for folder in (made, expected))
            self.assertEqual(a.shape, b.shape, path)
            self.assertTrue((a[3] == b[3]).all(), path)
            # What is hidden may have any colour, and what is half hidden a part of it.
            self.assertLessEqual(abs(a - b)[:, b[3] == 255].max(initial=0), LOSSY, path)
            visible += numpy.count_nonzero(b[3] == 255)
        self.assertGreater(visible, 1000)


class Formats(FormatTest):
    def test_of_geotiffs(self):
        for name, options in GEOTIFFS.items():
            self.copy(name.replace(" ", "_") + ".tif", "GTiff", options)
        self.check()

    def test_that_have_a_reference_within(self):
        self.copy("lossless.jp2", "JP2OpenJPEG", ["QUALITY=100", "REVERSIBLE=YES"])
        self.copy("lossy.jp2", "JP2OpenJPEG", ["QUALITY=20"])
        self.copy("erdas.img", "HFA")
        self.copy("compressed.img", "HFA", ["COMPRESSED=YES"])
        self.copy("virtual.vrt", "VRT")
        self.check()

    def test_that_have_a_reference_beside_them(self):
        for name, driver in (("a.png", "PNG"), ("b.jpg", "JPEG"), ("c.bmp", "BMP"), ("d.webp", "WEBP")):
            path = self.copy(name, driver, ["WORLDFILE=YES"] if driver != "WEBP" else [])
            self.assertTrue(path.with_name(name + ".aux.xml").exists())
        self.check()

    def test_with_masks_and_overviews(self):
        source = gdal.Open(str(self.plain), gdal.GA_Update)
        source.CreateMaskBand(gdal.GMF_PER_DATASET)
        mask = numpy.full((HEIGHT, WIDTH), 255, numpy.uint8)
        mask[50:150, 80:200] = 0
        source.GetRasterBand(1).GetMaskBand().WriteArray(mask)
        source = None
        self.addCleanup(gdal.SetConfigOption, "GDAL_TIFF_INTERNAL_MASK", None)
        for internal in ("YES", "NO"):
            gdal.SetConfigOption("GDAL_TIFF_INTERNAL_MASK", internal)
            path = self.copy(
                f"internal_{internal}.tif", "GTiff", ["COMPRESS=JPEG", "PHOTOMETRIC=YCBCR", *TILED]
            )
            self.assertEqual(path.with_name(path.name + ".msk").exists(), internal == "NO")
        gdal.SetConfigOption("GDAL_TIFF_INTERNAL_MASK", None)
        path = self.copy("overviews.tif", "GTiff", ["COMPRESS=DEFLATE"])
        image = gdal.Open(str(path))
        image.BuildOverviews("AVERAGE", [2, 4])
        image = None
        self.assertTrue(path.with_name("overviews.tif.ovr").exists())
        self.check()


if __name__ == "__main__":
    unittest.main()
