"""Images at the ends of the web map, and beyond them."""

import os
import shutil
import unittest

from testing.tiler_test_case import TilerTestCase, noise


class Extents(TilerTestCase):
    """Where the web map ends. The corner is that of an image of 200 x 150 pixels."""

    CUT_OPEN = "reaches across 180 degrees of longitude, where web maps are cut open"
    TOO_FAR_NORTH = "reaches beyond 85.05 degrees of latitude, where web maps end"
    HALF = "covers more than half of the globe"

    def run_at(self, epsg, left, top, pixel):
        corner = (left, pixel, 0, top, 0, -pixel)
        image = self.raster(noise(), epsg=epsg, corner=corner)
        self.run_script(self.arguments(image, srs="EPSG:%d" % epsg))

    def test_beyond_are_refused(self):
        for reason, *place in (
            (self.CUT_OPEN, 4326, 179.95, 10, 0.001),
            (self.CUT_OPEN, 4326, -180.05, 10, 0.001),
            (self.CUT_OPEN, 3857, 20036000, 1100000, 10),
            (self.CUT_OPEN, 32660, 827000, 1100000, 50),
            (self.CUT_OPEN, 2193, 2100000, 5500000, 3000),
            (self.TOO_FAR_NORTH, 4326, 9, 85.1, 0.001),
            (self.TOO_FAR_NORTH, 4326, 9, -84.95, 0.001),
            (self.TOO_FAR_NORTH, 3413, -100000, 75000, 1000),
            (self.HALF, 4326, -180, 67.5, 1.8 * 0.999),
            (self.HALF, 4326, 0, 67.5, 1.8 * 0.999),
            (self.HALF, 4326, -95, 67.5, 0.95),
        ):
            with self.subTest(place=place):
                self.run_at(*place)
                self.assert_failed("the image " + reason)
                self.assert_no_progress()
                self.assertFalse(os.path.exists(self.output))

    def test_up_to_the_ends_are_tiled(self):
        for place in (
            (4326, 179.8, 10, 0.001),
            (4326, -180, 10, 0.001),
            (4326, 9, 85.05, 0.001),
            (32660, 800000, 1100000, 100),
            (4326, -89, 60, 0.88),
        ):
            with self.subTest(place=place):
                self.run_at(*place)
                self.assertEqual(self.code, 0, self.log)
                self.assertGreater((self.base_tiles()[3] == 255).sum(), 2000)
                shutil.rmtree(self.output)


if __name__ == "__main__":
    unittest.main()
