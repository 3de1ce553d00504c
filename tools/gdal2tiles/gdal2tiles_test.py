"""What the tiling script makes of good images."""

import os
import subprocess
import sys
import unittest

sys.dont_write_bytecode = True
sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))

import numpy  # noqa: E402
from testing.tiler_test_case import (  # noqa: E402
    BLACK,
    ENGINE,
    MERCATOR_CORNER,
    RED,
    WEB_MERCATOR,
    WHITE,
    TilerTestCase,
    noise,
    of_the_script,
    solid,
    visible_pixels,
)
from osgeo import gdal  # noqa: E402
from xml.etree import ElementTree  # noqa: E402


class Records(TilerTestCase):
    def check_records(self):
        """Every record is well-formed, and the whole per cents rise from 0.00 to 1.00.

        Returns each of them once: on a slow machine some are repeated.
        """
        fractions = []
        for record in self.records:
            self.assertRegex(record, r"^Progress [01]\.\d\d done$")
            fractions.append(float(record.split(" ")[1]))
        self.assertEqual(fractions[0], 0)
        self.assertEqual(fractions[-1], 1)
        self.assertEqual(fractions, sorted(fractions))
        return sorted(set(fractions))

    def test_rise_with_every_tile_of_all_levels(self):
        self.tile(self.raster(noise(height=700, width=700)))
        count = len(self.tile_names())
        self.assertGreater(count, 12)
        # The last tile's record is left out in favour of 1.00.
        expected = [i * 100 // count for i in range(count)] + [99, 100]
        self.assertEqual([round(f * 100) for f in self.check_records()], expected)

    def test_are_the_same_with_worker_processes(self):
        self.environment["MOSAICON_TILER_PROCESSES"] = "2"
        self.tile(self.raster(noise(height=700, width=700)))
        self.assertGreater(len(self.check_records()), 12)
        self.assert_nothing_temporary()

    def test_are_all_that_is_written_when_gdal_talks(self):
        self.environment.update(CPL_DEBUG="ON", MOSAICON_TILER_PROCESSES="2")
        self.tile(self.raster(noise()))
        self.check_records()
        self.assertIn("GDAL: ", self.log)

    @of_the_script
    def test_go_on_while_nothing_happens(self):
        """Here while a package is slow to load; the reader can end a run only when one arrives."""
        package = self.path("slow", "osgeo")
        os.makedirs(package)
        with open(os.path.join(package, "__init__.py"), "w") as stream:
            stream.write("import time; time.sleep(5); raise ImportError('slow')")
        self.environment["PYTHONPATH"] = self.path("slow")
        self.run_script(self.arguments(self.path("any.tif")))
        self.assert_no_progress()
        self.assertGreaterEqual(len(self.records), 2)


class ComparedWithPlainTiler(TilerTestCase):
    def run_plain(self, image, colour, srs="EPSG:32633"):
        self.plain = self.path("plain", os.path.basename(self.output))
        line = [sys.executable, "-m", "osgeo_utils.gdal2tiles", "-a", colour]
        line += ["-s", srs, "-p", "mercator", "-k", "-u", "../"]
        subprocess.run(
            line + [image, self.plain],
            env=self.environment,
            stdout=subprocess.DEVNULL,
            check=True,
        )

    def content(self, folder, name):
        with open(os.path.join(folder, name), "rb") as stream:
            return stream.read()

    def check_same(self, image):
        self.run_plain(image, "0,0,0")
        self.assertEqual(self.files(), self.files(self.plain))
        for name in self.files():
            ours, plain = (self.content(f, name) for f in (self.output, self.plain))
            if name == "doc.kml":
                plain = plain.rstrip()
            elif name.endswith(".kml"):
                plain = plain.replace(b"<href>../karten 1/", b"<href>../../")
            if ENGINE and name.endswith(".png"):
                ours, plain = (visible_pixels(os.path.join(f, name)) for f in (self.output, self.plain))
            self.assertEqual(ours, plain, name)

    def test_black_gives_the_same_files(self):
        array = noise(height=400, width=500)
        array[:, 100:200, 100:200] = 0
        image = self.raster(array)
        self.tile(image, colour=BLACK)
        self.check_same(image)

    def test_black_gives_the_same_files_with_worker_processes(self):
        self.environment["MOSAICON_TILER_PROCESSES"] = "2"
        image = self.raster(noise(height=400, width=500))
        self.tile(image, colour=BLACK)
        self.check_same(image)

    def test_plain_tiler_has_the_black_collar_that_is_corrected_here(self):
        image = self.raster(solid((10, 200, 90)))
        self.run_plain(image, "255,255,255")
        self.output = self.plain
        red, green, blue, alpha = self.base_tiles()
        self.assertTrue(((red == 0) & (green == 0) & (alpha == 255)).any())


class Transparency(TilerTestCase):
    def check(self, array, colour, visible, **more):
        """Opaque pixels have the visible colour; hole and collar are transparent."""
        self.tile(self.raster(array, **more.pop("raster", {})), colour=colour, **more)
        *colours, alpha = self.base_tiles()
        opaque = alpha == 255
        self.assertGreater(opaque.sum(), 5000)
        for band, value in zip(colours, visible):
            self.assertEqual(numpy.unique(band[opaque]).tolist(), [value])
        self.transparent = (alpha == 0).sum()
        return len(colours)

    def check_hole(self, hole, colour, visible, **more):
        """The hole, a fifth of the image, adds to the transparent pixels."""
        array = solid(visible)
        self.check(array, colour, visible, **more)
        before = self.transparent
        for band, value in enumerate(hole):
            array[band, 50:100, 50:150] = value
        bands = self.check(array, colour, visible, **more)
        self.assertGreater(self.transparent, before + 3000)
        return bands

    def test_white(self):
        self.check_hole((255, 255, 255), WHITE, (10, 200, 90))

    def test_red(self):
        self.check_hole((255, 0, 0), RED, (10, 200, 90))

    def test_black(self):
        self.check_hole((0, 0, 0), BLACK, (10, 200, 90))

    def test_one_band_takes_the_red_component(self):
        colour = 200 + 7 * 256 + 9 * 65536
        self.assertEqual(self.check_hole((200,), colour, (40,)), 1)

    def test_image_in_the_map_srs(self):
        place = dict(epsg=WEB_MERCATOR, corner=MERCATOR_CORNER)
        where = dict(srs="EPSG:3857", raster=place)
        self.check_hole((255, 255, 255), WHITE, (10, 200, 90), **where)

    def test_fourth_band_that_is_no_alpha_is_left_out(self):
        options = dict(options=["ALPHA=NO", "PHOTOMETRIC=RGB"])
        array = solid((10, 200, 90, 77))
        bands = self.check(array, WHITE, (10, 200, 90), raster=options)
        self.assertEqual(bands, 3)

    def test_alpha_band_wins_over_the_colour(self):
        # Under the transparent half lies another colour than the one of -a.
        array = solid((10, 200, 90, 255))
        array[:, :, 100:] = numpy.array([50, 60, 70, 0])[:, None, None]
        self.check(array, BLACK, (10, 200, 90))
        self.assertIn("its own transparency", self.log)

    def test_alpha_band_wins_over_nodata_values_of_the_file(self):
        array = solid((10, 200, 90, 255))
        array[:, :, 100:] = numpy.array([50, 60, 70, 0])[:, None, None]
        path = self.raster(array)
        dataset = gdal.Open(path, gdal.GA_Update)
        dataset.GetRasterBand(1).SetNoDataValue(1)
        dataset = None
        self.tile(path)
        *colours, alpha = self.base_tiles()
        self.assertEqual(numpy.unique(colours[0][alpha == 255]).tolist(), [10])

    def test_mask_wins_over_the_colour(self):
        array = solid((0, 0, 0))
        array[:, :, 100:] = 50
        path = self.raster(array)
        dataset = gdal.Open(path, gdal.GA_Update)
        dataset.CreateMaskBand(gdal.GMF_PER_DATASET)
        dataset.GetRasterBand(1).GetMaskBand().WriteArray(
            numpy.where(array[0] == 0, 255, 0).astype(numpy.uint8)
        )
        dataset = None
        self.tile(path, colour=BLACK)
        *colours, alpha = self.base_tiles()
        self.assertGreater((alpha == 255).sum(), 5000)
        self.assertEqual(numpy.unique(colours[0][alpha == 255]).tolist(), [0])


class Links(TilerTestCase):
    def check_links(self, **more):
        self.tile(self.raster(noise(height=700, width=700)), **more)
        documents = [n for n in self.files() if n.endswith(".kml")]
        self.assertGreater(len(documents), 12)
        for document in documents:
            for href, path in self.links(document):
                self.assertTrue(os.path.isfile(path), "%s in %s" % (href, document))
        return [href for href, _ in self.links("doc.kml")]

    def test_resolve_in_the_target_folder(self):
        for href in self.check_links(url="../"):
            self.assertTrue(href.startswith("../karten 1/"), href)

    def test_resolve_in_a_folder_of_many(self):
        self.output = self.path("karten", "tile_0")
        for href in self.check_links(url="../../karten"):
            self.assertTrue(href.startswith("../../karten/tile_0/"), href)

    def test_resolve_in_a_folder_with_special_letters(self):
        self.output = self.path("Dupont & Fils <é>")
        self.check_links(url="../")
        ElementTree.parse(os.path.join(self.output, "tilemapresource.xml"))

    def test_doc_kml_ends_in_its_closing_tag(self):
        self.check_links()
        self.assertTrue(self.read(os.path.join(self.output, "doc.kml")).endswith("</kml>"))


class Texts(TilerTestCase):
    def title_of(self, **more):
        self.tile(self.raster(solid((1, 2, 3)), name="ä ö.tif"), **more)
        document = ElementTree.parse(os.path.join(self.output, "doc.kml"))
        return document.find(".//{*}name").text

    def test_title_with_special_letters(self):
        title = "Höhe <1> & \"Straße\" 'x' 漢 %s"
        self.assertEqual(self.title_of(extra=["-t", title]), title)

    def test_title_that_looks_like_an_option(self):
        self.assertEqual(self.title_of(extra=["-t", "--version"]), "--version")

    def test_no_title_gives_the_name_of_the_image(self):
        self.assertEqual(self.title_of(), "ä ö.tif")

    def test_google_key_reaches_the_page_but_not_the_log(self):
        self.tile(self.raster(solid((1, 2, 3))), extra=["-g", "Geheim123"])
        page = self.read(os.path.join(self.output, "googlemaps.html"))
        self.assertIn("key=Geheim123", page)
        self.assertNotIn("Geheim123", self.log)


if __name__ == "__main__":
    unittest.main()
