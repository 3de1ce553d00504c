"""Whole jobs, from the orthophotos to the last link, compared with what the plain tiler makes."""

import json
import re
import unittest

from batch_support import ENGINE, TILER, BatchTest, start_wine
from rasters import NATIONAL_GRID, OWN_ZONE, SOUTH, make_raster, picture
from results import PAGE_FILES, Job, ResultChecks, files_below, links
from web_check import WebCheck
import kml_rules

SHOWN_TILES = """[...document.querySelectorAll('img.leaflet-tile')]
                     .filter(each => each.naturalWidth > 0).length"""
PLACES = {"a own.tif": OWN_ZONE, "b grid.TIF": NATIONAL_GRID, "c south.tif": SOUTH}


def make_orthophoto(path, place):
    """Large enough for more than one level of tiles."""
    return make_raster(path, place, picture(600, 450))


def setUpModule():
    start_wine()


class Jobs(BatchTest, ResultChecks):
    def check(self, run, job, orthophotos, places, notes=()):
        self.assertEqual((run.code, run.errors), (0, []), run)
        self.assert_output(run, job.output(orthophotos, notes=notes))
        self.assertEqual(self.new_logs(), [], "a log stays although all is well")
        for index, (orthophoto, place) in enumerate(zip(orthophotos, places)):
            with self.subTest(orthophoto=orthophoto.name):
                self.assert_result(job, index, orthophoto, place)
                levels = [path for path in job.folder(index).iterdir() if path.name.isdigit()]
                self.assertGreater(len(levels), 1)
        if job.count > 1 and TILER == ENGINE:
            self.assert_index(job)

    def assert_index(self, job):
        """A page and documents that show all maps."""
        names = {"index.html", "googleearth_all.KML", *(f"leaflet/{name}" for name in PAGE_FILES)}
        if job.url:
            names.add("googleearth_all_web.KML")
        found = {path for path in files_below(job.target) if not path.startswith("tile_")}
        self.assertEqual(found, names)
        page = (job.target / "index.html").read_text()
        maps = json.loads(re.search(r'id="maps-data">(.*?)</script>', page, re.DOTALL)[1])
        self.assertEqual([each["folder"] for each in maps], [f"tile_{i}" for i in range(job.count)])
        self.assertEqual(
            links(job.target / "googleearth_all.KML"), [f"tile_{i}/googleearth_loc.kml" for i in range(3)]
        )
        for name in filter(lambda name: name.endswith("KML"), names):
            self.assertEqual(kml_rules.faults((job.target / name).read_bytes()), [])
        with WebCheck(job.target) as web:
            visit = web.open_page("index.html", SHOWN_TILES)
            self.assertEqual((visit.faults(), visit.console), ([], []))
            self.assertGreater(visit.value, 0)


class JobOfThree(Jobs):
    def setUp(self):
        super().setUp()
        (self.folder / "photos").mkdir()
        self.orthophotos = [
            make_orthophoto(self.folder / "photos" / name, place) for name, place in PLACES.items()
        ]

    def test_takes_all_images_of_a_folder_and_every_option(self):
        for name in ("notes.txt", "a own.tif.ovr.bak", "preview.jpg"):
            (self.folder / "photos" / name).write_text("no orthophoto")
        job = Job(self.folder / "maps", 3, "Our_own_map", "http://www.example.org/x/maps", "Key-1_2")
        run = self.batch(
            "--google-key",
            job.key,
            "--url",
            "www.example.org/x/maps",
            "--title=Our own map",
            "--target",
            "maps",
            "photos",
        )
        self.check(
            run, job, self.orthophotos, PLACES.values(), notes=["Target URL: http://www.example.org/x/maps"]
        )
        self.assertEqual(
            {path.name for path in (self.folder / "photos").iterdir()},
            {
                *PLACES,
                "notes.txt",
                "a own.tif.ovr.bak",
                "preview.jpg",
                "b grid.vrt",
                "b grid2.vrt",
                "c south.vrt",
                "c south2.vrt",
            },
        )

    def test_takes_images_one_by_one_without_options(self):
        reverse = self.orthophotos[::-1]
        job = Job(self.folder / "maps", 3)
        run = self.batch(*reverse, "--target", job.target)
        self.check(run, job, reverse, list(PLACES.values())[::-1])


class JobOfOne(Jobs):
    def test_leaves_everything_out_that_was_not_asked_for(self):
        orthophoto = make_orthophoto(self.folder / "photo.tif", OWN_ZONE)
        job = Job(self.folder / "map")
        self.check(self.batch("--target", job.target, orthophoto), job, [orthophoto], [OWN_ZONE])
        self.assertFalse((self.folder / "photo.vrt").exists())

    def test_rewrites_links_for_a_url_that_ends_with_a_slash(self):
        orthophoto = make_orthophoto(self.folder / "photo.tif", NATIONAL_GRID)
        job = Job(self.folder / "out_map", title="Title", url="http://example.org:8080/a/out_map/")
        run = self.batch("--target=out map\\", "--title", "Title", "photo.tif", "--url", job.url)
        self.check(run, job, [orthophoto], [NATIONAL_GRID])

    def test_keeps_the_map_page_with_a_key(self):
        orthophoto = make_orthophoto(self.folder / "photo.tif", SOUTH)
        job = Job(self.folder / "map", key="AIza-key")
        run = self.batch("--google-key=AIza-key", "--target", "map", "photo.tif")
        self.check(run, job, [orthophoto], [SOUTH])
        self.assertIn("AIza-key", (job.target / "googlemaps.html").read_text())

    def test_names_every_page_by_the_title(self):
        orthophoto = make_orthophoto(self.folder / "photo.tif", OWN_ZONE)
        job = Job(self.folder / "map", title="-a_&_b'-")
        run = self.batch("--title", "-a & b'-", "--target", "map", "photo.tif")
        self.check(run, job, [orthophoto], [OWN_ZONE])
        page = (job.target / "leaflet.html").read_text()
        self.assertIn("<title>-a_&amp;_b'-</title>", page)


if __name__ == "__main__":
    unittest.main()
