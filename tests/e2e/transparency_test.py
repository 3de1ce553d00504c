"""The colour that becomes transparent."""

import unittest

from batch_support import BatchTest, start_wine
from rasters import make_raster, solid
from results import Job, ResultChecks, shown_colours

WHITE, RED, BLUE, BLACK, GROUND = (255,) * 3, (255, 0, 0), (0, 0, 255), (0, 0, 0), (90, 120, 150)
# Far from the middle of its zone: on the map it stands askew.
ASKEW = (32632, 700000, 5300000)


def setUpModule():
    start_wine()


def squares(*colours):
    """Large squares of the colours on the ground."""
    pixels = solid(GROUND, 40 + 100 * len(colours), 200)
    for number, colour in enumerate(colours):
        left = 40 + 100 * number
        for band, value in enumerate(colour):
            pixels[band, 50:150, left : left + 60] = value
    return pixels


class Transparency(BatchTest, ResultChecks):
    COLOURS = (WHITE, RED, BLUE, BLACK)

    def run_job(self, pixels, *options):
        orthophoto = make_raster(self.folder / "photo.tif", ASKEW, pixels)
        run = self.batch("--target", "out", *options, orthophoto)
        self.assertEqual((run.code, run.errors), (0, []), run)
        return shown_colours(Job(self.folder / "out").folder(0))

    def check(self, transparent, *options):
        shown = self.run_job(squares(*self.COLOURS), *options)
        expected = {GROUND, *self.COLOURS} - {transparent}
        self.assertEqual(shown & {GROUND, *self.COLOURS}, expected)

    def test_is_that_of_black_by_default(self):
        self.check(BLACK)

    def test_can_be_that_of_white(self):
        self.check(WHITE, "--transparency", "FFFFFF")

    def test_tells_red_from_blue(self):
        self.check(RED, "--transparency", "ff0000")
        self.check(BLUE, "--transparency=0000FF", "--overwrite=yes")

    def test_leaves_no_black_collar_around_the_image(self):
        shown = self.run_job(squares(WHITE), "--transparency", "FFFFFF")
        self.assertIn(GROUND, shown)
        self.assertEqual([colour for colour in shown if max(colour) < 90], [])

    def test_of_a_grey_image_is_its_first_component(self):
        shown = self.run_job(squares(WHITE, BLACK)[:1], "--transparency", "FF0000")
        self.assertEqual(shown & {(0,) * 3, (90,) * 3, (255,) * 3}, {(0,) * 3, (90,) * 3})


if __name__ == "__main__":
    unittest.main()
