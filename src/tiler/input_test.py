"""Orthophotos of all kinds of values: their tiles are those of an image of bytes that was computed from them
with numpy. MOSAICON_TILER is the engine."""

import contextlib
import os
import pathlib
import sys
import tempfile
import unittest

import numpy
from osgeo import gdal

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent / "testing"))
import engine_cases as cases  # noqa: E402
import input_images as images  # noqa: E402

ENGINE = os.environ["MOSAICON_TILER"]
HEIGHT, WIDTH = 210, 330
WHITE = 0xFFFFFF
RGB = [gdal.GCI_RedBand, gdal.GCI_GreenBand, gdal.GCI_BlueBand]


def slopes(bands, kind, low, high):
    """Of all values between the two, with a little noise."""
    rows, columns = numpy.mgrid[0:HEIGHT, 0:WIDTH]
    chance = numpy.random.RandomState(bands)
    pixels = [
        (rows * (band + 2) + columns * 3) % 500 / 500 + chance.uniform(0, 0.2, (HEIGHT, WIDTH))
        for band in range(bands)
    ]
    return (low + numpy.stack(pixels) / 1.2 * (high - low)).astype(kind)


def hole():
    """255, but for a part of it."""
    mask = numpy.full((HEIGHT, WIDTH), 255, numpy.uint8)
    mask[60:150, 100:220] = 0
    return mask


class InputTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="wiesen é ")
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.log = self.folder / "log"

    def cut(self, image, name, *arguments):
        output = self.folder / name / "m"
        self.assertEqual(
            cases.run([ENGINE], arguments, image, output, self.log), (0, "RESULT OK"), self.log.read_text()
        )
        return output

    def tiles(self, output):
        return [name for name in cases.files_of(output) if name.suffix == ".png"]

    @contextlib.contextmanager
    def part(self, what):
        """A part of the test, with a folder of its own."""
        before = self.folder
        self.folder = before / f"part {len(list(before.iterdir()))}"
        self.folder.mkdir()
        with self.subTest(what):
            yield
        self.folder = before

    def assert_same(self, ours, expected, tolerance):
        names = self.tiles(expected)
        self.assertGreater(len(names), 1)
        self.assertEqual(self.tiles(ours), names)
        visible = 0
        for name in names:
            mine, theirs = (cases.decoded(folder / name).astype(int) for folder in (ours, expected))
            self.assertTrue((mine[3] == theirs[3]).all(), name)
            # What is hidden may have any colour, and what is half hidden a part of it.
            shown = theirs[3] == 255
            self.assertLessEqual(abs(mine - theirs)[:, shown].max(initial=0), tolerance, name)
            visible += numpy.count_nonzero(shown)
        self.assertGreater(visible, 1000)

    def check(self, image, colours, alpha=None, arguments=(), tolerance=0):
        """The tiles of an image are those of these colours."""
        ours = self.cut(image, "ours", *arguments)
        self.said = self.log.read_text()
        seen = images.write_seen(self.folder / "seen.tif", colours, alpha)
        self.assert_same(ours, self.cut(seen, "expected", *arguments), tolerance)


class Palettes(InputTest):
    COLOURS = numpy.random.RandomState(5).randint(0, 255, (256, 4)).astype(numpy.uint8)

    def setUp(self):
        super().setUp()
        self.pixels = slopes(1, numpy.uint8, 0, 255)
        self.palette = self.COLOURS.copy()
        self.palette[:, 3] = 255

    def seen(self):
        return numpy.moveaxis(self.palette[self.pixels[0]], 2, 0)

    def write(self, **more):
        return images.write(self.folder / "a.tif", self.pixels, palette=self.palette, **more)

    def test_become_colours(self):
        self.check(self.write(), self.seen()[:3])
        self.assertIn("The colours of the palette are shown.", self.said)

    def test_may_have_a_colour_that_is_transparent(self):
        self.palette[100:150] = (255, 255, 255, 255)
        self.check(self.write(), self.seen()[:3], arguments=["-a", str(WHITE)])

    def test_may_have_an_entry_of_no_data(self):
        self.pixels[hole()[numpy.newaxis] == 0] = 7
        self.check(
            self.write(nodata=7),
            self.seen()[:3],
            numpy.where(self.pixels[0] == 7, 0, 255),
            ["-a", str(WHITE)],
        )

    def test_may_have_transparent_entries(self):
        """A TIFF has none."""
        self.palette[200:, 3] = 0
        self.palette[:50, 3] = 120
        opaque = self.write()
        image = self.folder / "b.png"
        raster = gdal.Open(str(opaque))
        memory = gdal.GetDriverByName("MEM").CreateCopy("", raster)
        table = gdal.ColorTable()
        for index, colour in enumerate(self.palette):
            table.SetColorEntry(index, tuple(map(int, colour)))
        memory.GetRasterBand(1).SetColorTable(table)
        gdal.GetDriverByName("PNG").CreateCopy(str(image), memory)
        seen = self.seen()
        self.check(image, seen[:3], seen[3], ["-a", "0"])

    def test_may_lie_in_the_projection_of_the_map(self):
        self.palette[100:150] = (255, 255, 255, 255)
        image = images.write(self.folder / "a.tif", self.pixels, code=3857, palette=self.palette, nodata=7)
        hidden = (self.pixels[0] == 7) | (self.pixels[0] >= 100) & (self.pixels[0] < 150)
        seen = images.write_seen(
            self.folder / "b.tif", self.seen()[:3], numpy.where(hidden, 0, 255), code=3857
        )
        self.assert_same(self.cut(image, "ours", "-a", str(WHITE)), self.cut(seen, "expected"), 0)


class OtherValues(InputTest):
    """A stretched value may be rounded another way when it lies in the middle of two."""

    def check_stretched(self, pixels, seen=None, arguments=(), **how):
        image = images.write(self.folder / "a.tif", pixels, **how)
        alpha = None if seen is None else numpy.where(seen, 255, 0)
        colours = images.stretched(pixels[[0, 1, 2] if len(pixels) >= 3 else [0]], seen)
        self.check(image, colours, alpha, arguments, tolerance=1)
        self.assertIn("are shown from black to white.", self.said)

    def test_of_whole_numbers_are_stretched(self):
        for bands, kind, low, high in (
            (3, "uint16", 300, 9000),
            (1, "int16", -400, 3000),
            (4, "uint16", 0, 65535),
            (1, "uint32", 10, 4e9),
            (3, "int32", -2e9, 2e9),
        ):
            with self.subTest(kind, bands=bands):
                self.check_stretched(slopes(bands, kind, low, high))

    def test_of_real_numbers_are_stretched(self):
        for kind, low, high in (("float32", 0.01, 0.4), ("float64", -1e9, 1e9)):
            with self.subTest(kind):
                self.check_stretched(slopes(3, kind, low, high))

    def test_that_are_no_number_are_transparent(self):
        pixels = slopes(1, "float32", 120, 900)
        pixels[:, hole() == 0] = numpy.nan
        for nodata in (None, numpy.nan):
            with self.subTest(nodata):
                self.check_stretched(pixels, hole() != 0, nodata=nodata)

    def test_of_no_data_are_transparent_and_do_not_count(self):
        for bands, kind, low, high, nodata in (
            (1, "int16", 100, 3000, -32768),
            (3, "uint16", 100, 3000, 65535),
            (1, "float32", 5, 6, -9999),
            (3, "float32", 5, 6, -3.4028234663852886e38),
        ):
            with self.subTest(kind, bands=bands):
                pixels = slopes(bands, kind, low, high)
                pixels[:, hole() == 0] = nodata
                self.check_stretched(pixels, hole() != 0, ["-a", str(WHITE)], nodata=nodata)

    def test_of_the_transparent_colour_are_transparent(self):
        for colour, value in ((0, 0), (WHITE, 65535)):
            with self.subTest(colour):
                pixels = slopes(3, "uint16", 900, 20000)
                pixels[:, hole() == 0] = value
                image = images.write(self.folder / "a.tif", pixels)
                colours = images.stretched(pixels, hole() != 0)
                ours = self.cut(image, f"ours {colour}", "-a", str(colour))
                seen = images.write_seen(self.folder / "seen.tif", colours, hole())
                self.assert_same(ours, self.cut(seen, f"expected {colour}"), 1)

    def test_with_another_transparent_colour_are_another_map(self):
        image = images.write(self.folder / "a.tif", slopes(3, "uint16", 900, 20000))
        self.cut(image, "ours", "--shard=0/1", "-a", "0")
        self.assertEqual(
            cases.run([ENGINE], ["--merge", "-a", str(WHITE)], image, self.folder / "ours" / "m", self.log),
            (1, "RESULT FAILED the share 0/1 is of another image or of other options"),
        )

    def test_keep_their_transparency(self):
        pixels = slopes(4, "uint16", 200, 5000)
        pixels[3] = hole().astype(numpy.uint16) * 257
        self.check_stretched(pixels, hole() != 0, ["-a", "0"], meanings=[*RGB, gdal.GCI_AlphaBand])

    def test_keep_their_mask(self):
        self.check_stretched(slopes(3, "uint16", 200, 5000), hole() != 0, ["-a", "0"], mask=hole())

    def test_that_are_all_the_same_are_grey(self):
        self.check_stretched(numpy.full((1, HEIGHT, WIDTH), 700, numpy.uint16))


class ManyBands(InputTest):
    def test_show_those_that_are_marked(self):
        pixels = slopes(6, numpy.uint8, 0, 255)
        blank = gdal.GCI_Undefined
        image = images.write(self.folder / "a.tif", pixels, meanings=[blank, *reversed(RGB), blank, blank])
        self.check(image, pixels[[3, 2, 1]], arguments=["-a", "0"])
        self.assertIn("Of the image's bands [4, 3, 2] are shown.", self.said)

    def test_show_the_first_when_none_is_marked(self):
        pixels = slopes(7, numpy.uint16, 0, 255)
        meanings = [gdal.GCI_GrayIndex] + [gdal.GCI_Undefined] * 6
        image = images.write(self.folder / "a.tif", pixels, meanings=meanings)
        self.check(image, images.stretched(pixels[:3]), tolerance=1)

    def test_keep_their_transparency(self):
        pixels = slopes(5, numpy.uint8, 0, 255)
        pixels[4] = hole()
        meanings = [*RGB, gdal.GCI_Undefined, gdal.GCI_AlphaBand]
        self.check(
            images.write(self.folder / "a.tif", pixels, meanings=meanings), pixels[:3], hole(), ["-a", "0"]
        )

    def test_may_call_a_value_no_data(self):
        pixels = slopes(5, numpy.uint8, 1, 255)
        pixels[:, hole() == 0] = 0
        pixels[0, :40] = 0  # in one of them alone
        self.check(images.write(self.folder / "a.tif", pixels, nodata=0), pixels[:3], hole())


class Complex(InputTest):
    def test_is_refused(self):
        image = self.folder / "a.tif"
        images.write(image, slopes(1, "int16", 0, 9))
        made = self.folder / "b.tif"
        gdal.Translate(str(made), str(image), outputType=gdal.GDT_CInt16)
        self.assertEqual(
            cases.run([ENGINE], [], made, self.folder / "m", self.log),
            (1, "RESULT FAILED the image has 32-bit pixels (CInt16); convert it to 8 bits before tiling"),
        )


class Warped(InputTest):
    """An image in another system than its zone's comes by way of gdal_translate and gdalwarp."""

    OPAQUE = numpy.full((HEIGHT, WIDTH), 255)

    def cut_warped(self, image, name, *arguments):
        (self.folder / name).mkdir()
        return self.cut(images.translated_and_warped(image, self.folder / name / "a"), name, *arguments)

    def check_warped(self, pixels, alpha, arguments, colours=None, tolerance=0, **how):
        """As an image of these colours, else of the pixels, with such a band of transparency."""
        image = images.write(self.folder / "a.tif", pixels, images.GRID, **how)
        ours = self.cut_warped(image, "ours", *arguments)
        seen = images.write_seen(
            self.folder / "seen.tif", pixels if colours is None else colours, alpha, images.GRID
        )
        self.assert_same(ours, self.cut_warped(seen, "expected"), tolerance)

    def test_masks_stay(self):
        pixels = slopes(3, numpy.uint8, 10, 240)
        self.addCleanup(gdal.SetConfigOption, "GDAL_TIFF_INTERNAL_MASK", None)
        for internal in ("YES", "NO"):
            gdal.SetConfigOption("GDAL_TIFF_INTERNAL_MASK", internal)
            with self.part(internal):
                self.check_warped(pixels, hole(), ["-a", str(WHITE)], mask=hole())
                self.assertEqual((self.folder / "a.tif.msk").exists(), internal == "NO")

    def test_what_lies_outside_is_transparent_whatever_the_colour(self):
        pixels = slopes(3, numpy.uint8, 10, 240)
        for arguments in ([], ["-a", "0"], ["-a", str(WHITE)], ["-a", "200"]):
            with self.part(arguments):
                self.check_warped(pixels, self.OPAQUE, arguments)

    def test_the_transparent_colour_still_counts(self):
        for colour, value in ((0, 0), (WHITE, 255)):
            with self.part(value):
                pixels = slopes(3, numpy.uint8, 10, 240)
                pixels[:, hole() == 0] = value
                self.check_warped(pixels, hole(), ["-a", str(colour)])

    def test_nodata_stays(self):
        pixels = slopes(3, numpy.uint16, 700, 9000)
        pixels[:, hole() == 0] = 5
        colours = images.stretched(pixels, hole() != 0)
        self.check_warped(pixels, hole(), ["-a", str(WHITE)], colours, tolerance=2, nodata=5)

    def test_palettes_and_other_values_go_the_same_way(self):
        palette = numpy.random.RandomState(5).randint(1, 254, (256, 3)).astype(numpy.uint8)
        indices = slopes(1, numpy.uint8, 0, 255)
        seen = numpy.moveaxis(palette[indices[0]], 2, 0)
        values = slopes(3, numpy.uint16, 700, 9000)
        # Warped, some pixels are there twice, and the range may be another by a value or two.
        for what, pixels, alpha, colours, colour, tolerance, how in (
            ("palette", indices, self.OPAQUE, seen, 0, 0, {"palette": palette}),
            ("black", values, self.OPAQUE, images.stretched(values), 0, 2, {}),
            ("other", values, self.OPAQUE, images.stretched(values), 77, 2, {}),
            ("mask", values, hole(), images.stretched(values, hole() != 0), 0, 2, {"mask": hole()}),
        ):
            with self.part(what):
                self.check_warped(pixels, alpha, ["-a", str(colour)], colours, tolerance, **how)


class Damage(InputTest):
    def damaged(self, where, **how):
        """A fifth of the bytes of a compressed image, from there on, are others: whole blocks of it."""
        image = images.write(self.folder / "a.tif", slopes(3, numpy.uint8, 0, 255), **how)
        content = bytearray(image.read_bytes())
        start = int(len(content) * where)
        length = len(content) // 5
        content[start : start + length] = bytes(length)
        image.write_bytes(content)
        return image

    def fail(self, image):
        code, reason = cases.run([ENGINE], [], image, self.folder / "m", self.log)
        self.assertEqual(code, 1)
        self.assertFalse((self.folder / "m" / "doc.kml").exists())
        return reason

    def test_is_told_with_its_place(self):
        tiled = ["TILED=YES", "BLOCKXSIZE=64", "BLOCKYSIZE=64"]
        for options in (["COMPRESS=DEFLATE"], ["COMPRESS=LZW", *tiled], ["COMPRESS=JPEG", *tiled]):
            with self.part(options):
                image = self.damaged(0.5, options=options)
                self.assertRegex(
                    self.fail(image),
                    r"^RESULT FAILED the image could not be read or tiled: .+; pixels \d+ to \d+ from the "
                    rf"left and \d+ to \d+ from the top of {image} are damaged$",
                )

    def test_is_told_of_the_image_that_a_virtual_one_is_made_of(self):
        image = self.damaged(0.2, code=images.GRID, options=["COMPRESS=DEFLATE"])
        reason = self.fail(images.translated_and_warped(image, self.folder / "b"))
        self.assertRegex(
            reason, rf"; pixels 0 to 329 from the left and \d+ to \d+ from the top of {image} are"
        )


if __name__ == "__main__":
    unittest.main()
