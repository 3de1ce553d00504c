"""Images that are not three bands of eight bits in a system with a number."""

import unittest

import numpy
from osgeo import gdal

from batch_support import ENGINE, TILER, BatchTest, start_wine, windows_path
from rasters import NATIONAL_GRID, OWN_ZONE, make_raster, picture, solid
from results import Job, ResultChecks, shown_colours

RGBA = (gdal.GCI_RedBand, gdal.GCI_GreenBand, gdal.GCI_BlueBand, gdal.GCI_AlphaBand)
OWN_PROJECTION = (
    'PROJCS["Own",GEOGCS["WGS 84",DATUM["WGS_1984",SPHEROID["WGS 84",6378137,298.257223563]],'
    'PRIMEM["Greenwich",0],UNIT["degree",0.0174532925199433],AUTHORITY["EPSG","4326"]],'
    'PROJECTION["Transverse_Mercator"],PARAMETER["latitude_of_origin",0],'
    'PARAMETER["central_meridian",9.1],PARAMETER["scale_factor",1],'
    'PARAMETER["false_easting",500000],PARAMETER["false_northing",0],UNIT["metre",1]]'
)


def setUpModule():
    start_wine()


class OddRasters(BatchTest, ResultChecks):
    def run_job(self, orthophotos):
        self.job = Job(self.folder / "out", len(orthophotos))
        return self.batch("--target", self.job.target, *orthophotos)


class CanBeTiled(OddRasters):
    def test_with_one_or_four_bands_or_one_pixel(self):
        transparent = solid([10, 120, 240, 255], 200, 200)
        transparent[:, :, 100:] = 0
        cases = {
            "grey": (dict(pixels=solid([77], 200, 200)), {(77, 77, 77)}),
            "four": (
                dict(pixels=solid([10, 120, 240, 30], 200, 200), options=["ALPHA=NO"]),
                {(10, 120, 240)},
            ),
            "rgba": (dict(pixels=transparent, colours=RGBA), {(10, 120, 240)}),
            "dot": (dict(pixels=solid([10, 120, 240], 1, 1)), {(10, 120, 240)}),
            "line": (dict(pixels=solid([10, 120, 240], 2000, 1)), {(10, 120, 240)}),
            "grid": (dict(pixels=transparent, colours=RGBA, place=NATIONAL_GRID), {(10, 120, 240)}),
        }
        orthophotos = [make_raster(self.folder / (name + ".tif"), **how) for name, (how, _) in cases.items()]
        run = self.run_job(orthophotos)
        self.assertEqual((run.code, run.errors), (0, []), run)
        self.assert_output(run, self.job.output(orthophotos))
        for index, (name, (how, colours)) in enumerate(cases.items()):
            with self.subTest(image=name):
                folder = self.job.folder(index)
                self.assertTrue((folder / ".jpg").is_file())
                if name != "line":  # thinner than a pixel of a tile
                    self.assertEqual(shown_colours(folder), colours)
                self.assert_links_resolve(folder)

    def test_in_a_projection_without_a_number(self):
        orthophoto = make_raster(self.folder / "own.tif", wkt=OWN_PROJECTION)
        run = self.run_job([orthophoto])
        self.assertEqual((run.code, run.errors), (0, []), run)
        self.assert_position(self.job.target, orthophoto)

    def test_in_its_zone_without_a_number_of_its_own(self):
        """A GeoTIFF would get the number back from its driver; a virtual raster keeps what it says."""
        make_raster(self.folder / "pixels.tif", place=None)
        wkt = OWN_PROJECTION.replace("9.1]", "9]").replace('"scale_factor",1]', '"scale_factor",0.9996]')
        orthophoto = self.folder / "zone.vrt"
        gdal.Translate(
            str(orthophoto),
            str(self.folder / "pixels.tif"),
            format="VRT",
            outputSRS=wkt,
            outputBounds=(500000, 4983000, 500384, 4982688),
        )
        run = self.run_job([orthophoto])
        self.assertEqual((run.code, run.errors), (0, []), run)
        self.assert_position(self.job.target, orthophoto)
        self.assertFalse((self.folder / "zone2.vrt").exists(), "it was reprojected")

    def test_with_grey_and_transparency(self):
        grey = picture(200, 200)[:2]
        grey[1, :, :100] = 0
        grey[1, :, 100:] = 255
        orthophoto = make_raster(
            self.folder / "grey.tif", pixels=grey, colours=(gdal.GCI_GrayIndex, gdal.GCI_AlphaBand)
        )
        run = self.run_job([orthophoto])
        self.assertEqual((run.code, run.errors), (0, []), run)
        self.assertEqual(gdal.Open(str(self.job.target / ".jpg")).RasterCount, 1)
        self.assert_links_resolve(self.job.target)

    def test_and_are_not_replaced_by_their_picture(self):
        target = self.folder / "photos"
        target.mkdir()
        made = make_raster(self.folder / "photo.tif")
        photo = target / "photo.jpg"
        gdal.Translate(str(photo), str(made), format="JPEG")
        before = photo.read_bytes()
        self.batch("--target", target, "--title", "photo", "--overwrite", "yes", photo)
        self.assertEqual(photo.read_bytes(), before)
        self.assert_links_resolve(target)

    def test_with_a_rotation_that_is_told_to_be_lost(self):
        orthophoto = make_raster(self.folder / "turned.tif", NATIONAL_GRID)
        dataset = gdal.Open(str(orthophoto), gdal.GA_Update)
        left, width, _, top, _, height = dataset.GetGeoTransform()
        dataset.SetGeoTransform((left, width, 0.3, top, 0.3, height))
        dataset = None
        run = self.run_job([orthophoto])
        self.assertEqual(
            (run.code, run.errors),
            (
                0,
                [
                    f"mosaicon-batch: {windows_path(orthophoto)}: the image is rotated, but will be placed "
                    "without its rotation"
                ],
            ),
            run,
        )

    def test_in_degrees(self):
        orthophoto = make_raster(self.folder / "degrees.tif", (4326, 9.0, 45.0), pixel_size=1e-5)
        run = self.run_job([orthophoto])
        self.assertEqual((run.code, run.errors), (0, []), run)
        self.assert_position(self.job.target, orthophoto)


@unittest.skipUnless(TILER == ENGINE, "the tiling script takes bytes only")
class OtherValues(OddRasters):
    """Whatever they are, they are seen in the tiles and in the picture, in both roads to the tiles."""

    CASES = {
        "bands": dict(pixels=numpy.concatenate([picture(320, 260)] * 2)),
        "whole": dict(pixels=picture(320, 260).astype(numpy.uint16) * 40, kind=gdal.GDT_UInt16),
        "real": dict(pixels=picture(320, 260)[:1] / 255, kind=gdal.GDT_Float32),
        "palette": dict(pixels=picture(320, 260)[:1], palette=True),
    }

    def check(self, place):
        orthophotos = [
            make_raster(self.folder / (name + ".tif"), place=place, **how) for name, how in self.CASES.items()
        ]
        run = self.run_job(orthophotos)
        self.assertEqual((run.code, run.errors), (0, []), run)
        for index, name in enumerate(self.CASES):
            with self.subTest(name):
                folder = self.job.folder(index)
                self.assertGreater(len(shown_colours(folder)), 100)
                seen = gdal.Open(str(folder / ".jpg")).ReadAsArray()
                self.assertLess(seen.min(), 20)
                self.assertGreater(seen.max(), 200)
                self.assert_position(folder, orthophotos[index])

    def test_in_its_own_zone(self):
        self.check(OWN_ZONE)

    def test_after_reprojection(self):
        self.check(NATIONAL_GRID)


@unittest.skipUnless(TILER == ENGINE, "the tiling script sees what the tools left of it")
class Surroundings(OddRasters):
    """A mask, and what lies outside of a reprojected image, are transparent whatever the colour is."""

    def test_of_a_reprojected_image(self):
        orthophoto = make_raster(self.folder / "a.tif", NATIONAL_GRID, pixels=solid([10, 120, 240], 300, 300))
        dataset = gdal.Open(str(orthophoto), gdal.GA_Update)
        dataset.CreateMaskBand(gdal.GMF_PER_DATASET)
        mask = numpy.full((300, 300), 255, numpy.uint8)
        mask[100:200, 100:200] = 0
        dataset.GetRasterBand(1).GetMaskBand().WriteArray(mask)
        dataset = None
        self.job = Job(self.folder / "out", 1)
        run = self.batch("--target", self.job.target, "--transparency", "ffffff", orthophoto)
        self.assertEqual((run.code, run.errors), (0, []), run)
        self.assertEqual(shown_colours(self.job.target), {(10, 120, 240)})


class CannotBeTiled(OddRasters):
    CASES = {
        "complex": (
            dict(kind=gdal.GDT_CInt16),
            "the image has 32-bit pixels (CInt16); convert it to 8 bits before tiling",
        ),
    }
    CASES_OF_THE_SCRIPT = {
        "six bands": (
            dict(pixels=solid(range(6))),
            "the image has 6 bands; only 1 to 4 bands of 8 bits can be tiled",
        ),
        "16 bits": (
            dict(kind=gdal.GDT_UInt16),
            "the image has 16-bit pixels (UInt16); convert it " "to 8 bits before tiling",
        ),
        "real": (
            dict(kind=gdal.GDT_Float32, pixels=solid([1])),
            "the image has 32-bit pixels (Float32); convert it to 8 bits before tiling",
        ),
        "palette": (
            dict(pixels=solid([1]), palette=True),
            "the image has a colour palette; convert it to RGB before tiling",
        ),
    }

    def check(self, place):
        cases = self.CASES if TILER == ENGINE else {**self.CASES, **self.CASES_OF_THE_SCRIPT}
        bad = [
            make_raster(self.folder / (name + ".tif"), place=place, **how) for name, (how, _) in cases.items()
        ]
        good = make_raster(self.folder / "good.tif", place)
        run = self.run_job([*bad, good])
        self.assert_failed(run, *zip(bad, (reason for _, reason in cases.values())))
        for index in range(len(bad)):
            self.assertFalse(self.job.folder(index).exists())
        self.assert_links_resolve(self.job.folder(len(bad)))

    def test_in_its_own_zone(self):
        self.check(OWN_ZONE)

    def test_after_reprojection(self):
        self.check(NATIONAL_GRID)


if __name__ == "__main__":
    unittest.main()
