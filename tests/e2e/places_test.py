"""Names and places of the input and of the result that are not as usual, or cannot be used."""

import unittest

from batch_support import BatchTest, as_root, snapshot, start_wine, windows_path
from rasters import NATIONAL_GRID, OWN_ZONE, make_raster, noise, solid
from results import Job, ResultChecks

ACCENTS = "No accented words must be into orthophoto path and name. Please check it"


def setUpModule():
    start_wine()


class PlacesTest(BatchTest, ResultChecks):
    def setUp(self):
        super().setUp()
        self.job = Job(self.folder / "out")

    def told(self, path, text):
        return f"mosaicon-batch: {windows_path(path)}: {text}"

    def make(self, *parts, place=OWN_ZONE, pixels=None):
        path = self.folder.joinpath(*parts)
        path.parent.mkdir(parents=True, exist_ok=True)
        return make_raster(path, place, pixels)

    def mount_tmpfs(self, name, options):
        """A small disk of its own."""
        path = self.folder / name
        path.mkdir()
        as_root("mount", "-t", "tmpfs", "-o", options + ",mode=777", "mosaicon-e2e", str(path))
        self.addCleanup(as_root, "umount", "--lazy", str(path))
        return path


class Names(PlacesTest):
    def check_made(self, orthophoto, job, *options):
        run = self.batch("--target", job.target, *options, orthophoto)
        self.assertEqual((run.code, run.errors), (0, []), run)
        self.assert_output(run, job.output([orthophoto]))
        self.assert_links_resolve(job.target)
        self.assertTrue((job.target / (job.title + ".jpg")).is_file())

    def test_with_letters_of_the_code_page(self):
        orthophoto = self.make("Größe ñ", "für ç ß.tif", place=NATIONAL_GRID)
        self.check_made(orthophoto, Job(self.folder / "Übersicht", title="Höhe"), "--title", "Höhe")
        self.assertTrue(orthophoto.with_name("für ç ß2.vrt").is_file())

    def test_of_the_target_may_have_accents(self):
        self.check_made(self.make("photo.tif"), Job(self.folder / "città"))

    def test_with_signs_that_mean_something_elsewhere(self):
        orthophoto = self.make("100% & (own) 'x' #1;$HOME^,=.tif", place=NATIONAL_GRID)
        self.check_made(orthophoto, Job(self.folder / "50%_&_(out)_#1"))

    def test_with_accents_are_refused_and_the_next_is_done(self):
        in_name, in_folder = self.make("città.tif"), self.make("perché", "photo.tif")
        good = self.make("good.tif")
        before = snapshot(self.folder)
        run = self.batch("--target", self.job.target, in_name, in_folder.parent, good)
        self.assertEqual(run.code, 1)
        self.assertEqual(run.errors, [self.told(in_name, ACCENTS), self.told(in_folder, ACCENTS)])
        self.assert_output(run, self.job.output([good]))
        self.assert_links_resolve(self.job.target)
        self.assertLess(before.items(), snapshot(self.folder).items())

    def test_that_are_long_but_not_too_long(self):
        name = "n" * (250 - len(windows_path(self.folder)) - 1 - 4) + ".tif"
        orthophoto = self.make(name, place=NATIONAL_GRID)
        self.assertEqual(len(windows_path(orthophoto)), 250)
        self.check_made(orthophoto, self.job)

    def test_that_are_too_long_are_told_and_the_next_is_done(self):
        long = self.make("a" * 120, "b" * 120, "c" * 60 + ".tif", place=NATIONAL_GRID)
        good = self.make("good.tif")
        run = self.batch("--target", self.job.target, long, good)
        self.assertEqual(run.code, 1, run)
        self.assertEqual(
            run.errors, [self.told(long, "there is no such file or folder (the path is too long)")]
        )
        self.assert_output(run, self.job.output([good]))


class Target(PlacesTest):
    def setUp(self):
        super().setUp()
        self.photo = self.make("photo.tif")

    def check_not_made(self, target):
        """No tool is run then, also none for the input."""
        grid = self.make("grid.tif", place=NATIONAL_GRID)
        before = snapshot(self.folder)
        run = self.batch("--target", target, grid, self.photo)
        self.assertEqual(run.code, 3, run)
        self.assertEqual(
            run.errors,
            [
                f"mosaicon-batch: Unable to create folder {windows_path(target)} or parent folder "
                "doesn't exist"
            ],
        )
        self.assertEqual(run.output, ["Target folder: " + windows_path(target)])
        self.assertEqual(snapshot(self.folder), before)

    def test_without_parent_folder(self):
        self.check_not_made(self.folder / "none" / "out")

    def test_below_a_file(self):
        self.check_not_made(self.photo / "out")

    def test_where_nobody_may_write(self):
        self.check_not_made(self.mount_tmpfs("locked", "size=1m,ro") / "out")

    def test_that_is_a_file(self):
        self.job.target.write_text("my only copy")
        for orthophotos in ([self.photo], [self.photo, self.make("second.tif")]):
            with self.subTest(count=len(orthophotos)):
                run = self.batch("--target", self.job.target, *orthophotos)
                self.assertEqual(self.job.target.read_text(), "my only copy")
                self.assertIn(run.code, (1, 3))
                self.assertTrue(run.errors)
                self.assertEqual(
                    len([line for line in run.errors if "FAILED" in line]),
                    len(orthophotos) if run.code == 1 else 0,
                    run,
                )

    def test_that_is_read_only(self):
        disk = self.mount_tmpfs("disk", "size=1m")
        (disk / "out").mkdir()
        as_root("mount", "-o", "remount,ro", str(disk))
        run = self.batch("--target", disk / "out", self.photo)
        self.assertEqual(run.code, 1, run)
        # In the words of the system that the tiler sees.
        self.assertRegex(
            run.errors[0], r"FAILED Z:\\.*photo\.tif: .*: ?(Access denied|Read-only file system)"
        )

    def test_on_a_disk_that_becomes_full(self):
        disk = self.mount_tmpfs("disk", "size=1m")
        small = self.make("in", "small.tif", pixels=solid([50, 60, 70]))
        large = self.make("in", "large.tif", pixels=noise(900, 900))
        job = Job(disk / "out", 2)
        before = snapshot(self.folder / "in")
        run = self.batch("--target", job.target, small, large)
        self.assertEqual(run.code, 1, run)
        self.assertRegex(run.errors[0], r"FAILED Z:\\.*large\.tif: could not write .*: the disk is full$")
        self.assertIn(f"- {windows_path(small)}: OK", run.output)
        self.assert_links_resolve(job.folder(0))
        self.assertEqual(list(disk.rglob("*.~mos")), [])
        self.assertEqual(snapshot(self.folder / "in"), before)


class Source(PlacesTest):
    def test_where_nobody_may_write_is_no_matter_unless_it_must_be_reprojected(self):
        disk = self.mount_tmpfs("disk", "size=2m")
        grid = self.make("disk", "grid.tif", place=NATIONAL_GRID)
        own = self.make("disk", "own.tif")
        as_root("mount", "-o", "remount,ro", str(disk))
        job = Job(self.folder / "out", 2)
        run = self.batch("--target", job.target, grid, own)
        reason = "gdal_translate could not write " + windows_path(disk / "grid.vrt")
        self.assert_failed(run, (grid, reason))
        self.assertIn("- unable to apply translation to " + windows_path(grid), run.output)
        self.assert_links_resolve(job.folder(1))


if __name__ == "__main__":
    unittest.main()
