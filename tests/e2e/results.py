"""What the result of an orthophoto must look like."""

import json
import math
import os
import re
import pathlib
import posixpath
import subprocess
import sys
import unittest
from dataclasses import dataclass
from urllib.parse import unquote, urlsplit
from xml.etree import ElementTree

import numpy
from osgeo import gdal

from batch_support import ENGINE, PATIENCE, TILER, windows_path
from wine_side import unix_path
from rasters import OWN_ZONE, TARGET_ZONES, corners_in_degrees, read_pixels

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "src" / "tiler" / "testing"))
import exact_average  # noqa: E402
import kml_rules  # noqa: E402

# What leaflet.html needs.
PAGE_FILES = (
    *("leaflet.css", "leaflet.js", "leaflet-licence.txt"),
    *("map.css", "map.js", "position.js", "tiles.js", "tools.js"),
)
KML = "{http://www.opengis.net/kml/2.2}"


@dataclass
class Job:
    """What the program was asked for; the title as it must appear, with underscores."""

    target: pathlib.Path
    count: int = 1
    title: str = ""
    url: str = ""
    key: str = ""

    def folder(self, index):
        return self.target if self.count == 1 else self.target / f"tile_{index}"

    def map_name(self, index):
        return self.title if self.count == 1 or not self.title else f"{self.title}_{index}"

    def output(self, orthophotos, log=None, notes=()):
        """The lines of standard output, without the elapsed time."""
        if log is None:
            log = [f"- {windows_path(path)}: OK" for path in orthophotos]
        return [
            *notes,
            "Target folder: " + windows_path(self.target),
            *(f"Process {i + 1}/{self.count} - {self.map_name(i)} -" for i in range(self.count)),
            *log,
            *("Result: " + windows_path(self.folder(i)) for i in range(self.count)),
        ]


def links(kml, kinds=("Link", "Icon")):
    """The targets of all links of a KML file, which must be well-formed."""
    root = ElementTree.parse(kml).getroot()
    return [element.find(KML + "href").text for kind in kinds for element in root.iter(KML + kind)]


class ResultChecks(unittest.TestCase):
    """Checks to mix into a test case."""

    def assert_output(self, run, lines):
        """Standard output is exactly this, but for the elapsed time, which must be one."""
        times = [line for line in run.output if line.startswith("Total work time: ")]
        self.assertEqual(len(times), 1, run)
        self.assertRegex(times[0], r"^Total work time: \d\d:\d\d:\d\d$")
        self.assertEqual([line for line in run.output if line not in times], lines, run)

    def assert_failed(self, run, *failures, before=()):
        """The error lines tell these failures, and where the log is if there is one."""
        self.assertEqual(run.code, 1, run)
        lines = [f"mosaicon-batch: FAILED {windows_path(path)}: {reason}" for path, reason in failures]
        logs = self.new_logs()
        if logs:
            self.assertEqual(len(logs), 1)
            self.assertRegex(
                run.errors[-1],
                r"^mosaicon-batch: details are in C:\\.*\\" + logs[0].name.replace(".", r"\.") + "$",
            )
        self.assertEqual(run.errors[: len(run.errors) - len(logs)], [*before, *lines], run)
        for path, _ in failures:
            self.assertNotIn(f"- {windows_path(path)}: OK", run.output)
        for line in run.output:
            if line.startswith("Result: "):
                self.assertTrue(unix_path(line.removeprefix("Result: ")).is_dir(), line)

    def assert_links_resolve(self, folder):
        """The local KML and those of the tiles lead to files that exist."""
        documents = [folder / "googleearth_loc.kml", *folder.glob("*/*/*.kml")]
        self.assertGreater(len(documents), 1)
        for document in documents:
            targets = links(document)
            self.assertTrue(targets, f"{document} has no link")
            for target in targets:
                self.assertNotIn(":", target)
                path = document.parent / unquote(target)
                self.assertTrue(path.is_file(), f"{document} links {target}, which is missing")

    def assert_web_links_resolve(self, job, index):
        """The target folder stands for its URL, so that the URL's parent is the folder's."""
        folder = job.folder(index)
        local = links(folder / "googleearth_loc.kml")
        web = links(folder / "googleearth_web.kml")
        self.assertEqual(len(web), len(local))
        base = job.url.rstrip("/")
        for target in web:
            self.assertTrue(target.startswith(base + "/"), target)
            path = posixpath.normpath(unquote(urlsplit(target).path))
            parent = posixpath.dirname(urlsplit(base).path).rstrip("/") + "/"
            self.assertTrue(path.startswith(parent), f"{target} leads out of {parent}")
            self.assertTrue((job.target.parent / path[len(parent) :]).is_file(), f"{target} leads to no file")

    def assert_picture(self, folder, name, orthophoto):
        """A reduced copy of the orthophoto of about 76,800 pixels."""
        made = gdal.Open(str(folder / (name + ".jpg")))
        self.assertEqual(made.GetDriver().ShortName, "JPEG")
        source = gdal.Open(str(orthophoto))
        scale = math.sqrt(76800 / (source.RasterXSize * source.RasterYSize))
        size = [int(side * scale + 0.5) for side in (source.RasterXSize, source.RasterYSize)]
        self.assertEqual([made.RasterXSize, made.RasterYSize], size)
        expected = source.ReadAsArray(buf_xsize=size[0], buf_ysize=size[1]).astype(int)
        difference = numpy.abs(made.ReadAsArray().astype(int) - expected).mean()
        self.assertLess(difference, 5)

    def assert_position(self, folder, orthophoto):
        """The map covers the orthophoto's own corners, to within two pixels."""
        box = ElementTree.parse(folder / "tilemapresource.xml").getroot().find("BoundingBox")
        found = [float(box.get(name)) for name in ("minx", "miny", "maxx", "maxy")]
        expected = corners_in_degrees(orthophoto)
        pixels = gdal.Open(str(orthophoto)).RasterXSize
        tolerance = 2 * (expected[2] - expected[0]) / pixels
        for left, right in zip(found, expected):
            self.assertAlmostEqual(left, right, delta=tolerance)

    def assert_result(self, job, index, orthophoto, place=OWN_ZONE):
        """Everything about one orthophoto's folder."""
        folder, name = job.folder(index), job.map_name(index)
        self.assert_as_plain_tiler(job, index, orthophoto, place)
        self.assert_links_resolve(folder)
        if job.url:
            self.assert_web_links_resolve(job, index)
        self.assert_picture(folder, name, orthophoto)
        self.assert_position(folder, orthophoto)

    def assert_as_plain_tiler(self, job, index, orthophoto, place):
        folder, name = job.folder(index), job.map_name(index)
        plain = self.folder / "plain" / folder.name
        tile_input = orthophoto if place == OWN_ZONE else orthophoto.with_name(orthophoto.stem + "2.vrt")
        self.run_plain_tiler(job, name, tile_input, TARGET_ZONES[place], plain)
        made, expected = files_below(folder), files_below(plain)

        self.assertLess({"doc.kml", "openlayers.html", "googlemaps.html"}, expected)
        expected -= {"doc.kml", "openlayers.html"}
        if not job.key:
            expected.remove("googlemaps.html")
        added = {"googleearth_loc.kml", name + ".jpg"}
        if job.url:
            added.add("googleearth_web.kml")
        if TILER == ENGINE:
            added |= {f"leaflet/{name}" for name in PAGE_FILES}
            expected = without_skipped_documents(expected)
        self.assertEqual(made, expected | added)
        if TILER == ENGINE:
            expected.remove("leaflet.html")
            self.assert_page(folder, job)

        tiles = [path for path in expected if path.endswith(".png")]
        self.assertGreater(len(tiles), 3)
        if TILER == ENGINE:
            self.assert_exact(folder, tiles, orthophoto)
        else:
            for path in tiles:
                self.assertTrue(
                    (read_pixels(folder / path) == read_pixels(plain / path)).all(),
                    f"{path} differs from what the plain tiler makes",
                )
        for path in expected:
            if path.endswith(".html"):
                self.assertEqual(
                    with_fewer_digits((folder / path).read_text()),
                    with_fewer_digits((plain / path).read_text()),
                    path,
                )

    def assert_page(self, folder, job):
        """Its links are the documents that there are, which keep the rules."""
        self.assertEqual(kml_rules.faults_of_overlay(folder / "googleearth_loc.kml", most_overlap=2), [])
        if job.url:
            self.assertEqual(kml_rules.faults((folder / "googleearth_web.kml").read_bytes()), [])
        described = json.loads(
            re.search(r'id="map-data">(.*)</script>', (folder / "leaflet.html").read_text())[1]
        )
        web = "googleearth_web.kml" if job.url else None
        self.assertEqual(described["kml"], {"disk": "googleearth_loc.kml", "web": web})

    def assert_exact(self, folder, tiles, orthophoto):
        """The tile of the finest level that shows most is the average of the orthophoto's own pixels, at the
        places that it says itself."""
        finest = max(int(path.split("/")[0]) for path in tiles)
        shown = {
            path: numpy.count_nonzero(read_pixels(folder / path)[3] == 255)
            for path in tiles
            if path.startswith(f"{finest}/")
        }
        path = max(shown, key=shown.get)
        self.assertGreater(shown[path], 5000, path)
        pixels = read_pixels(folder / path).astype(float)
        whole = pixels[3] == 255
        truth, _ = exact_average.Source(orthophoto).tile(*map(int, path.removesuffix(".png").split("/")))
        noise = exact_average.decibels(pixels[:3][:, whole], truth[:3, whole])
        self.assertGreater(noise, 45, f"{path} is not what the orthophoto shows there")

    def run_plain_tiler(self, job, name, tile_input, epsg, output):
        base = "../" if job.count == 1 else "../../" + job.target.name
        options = [
            "-a",
            "0,0,0",
            "-s",
            epsg,
            "-p",
            "mercator",
            "-k",
            "-u",
            base,
            "-t",
            name or tile_input.name,
        ]
        options += ["-g", job.key] if job.key else []
        output.parent.mkdir(parents=True, exist_ok=True)
        subprocess.run(
            [
                sys.executable,
                "-B",
                "-m",
                "osgeo_utils.gdal2tiles",
                "-q",
                *options,
                str(tile_input),
                str(output),
            ],
            check=True,
            timeout=PATIENCE,
            stdout=subprocess.DEVNULL,
            cwd=self.folder,
        )


def with_fewer_digits(text):
    """The last digits depend on the mathematical library of the system: less than a millimetre."""
    return re.sub(r"\d+\.\d{9,}", lambda number: f"{float(number[0]):.9f}", text)


def without_skipped_documents(paths):
    """The engine's KML files hold two levels each, counted from the finest."""
    levels = {int(path.split("/")[0]) for path in paths if path.endswith(".png")}
    skipped = {level for level in levels - {min(levels)} if (max(levels) - level) % 2 == 0}
    return {path for path in paths if not (path.endswith(".kml") and path.split("/")[0] in map(str, skipped))}


def files_below(folder):
    return {
        os.path.relpath(os.path.join(parent, name), folder)
        for parent, _, names in os.walk(folder)
        for name in names
    }


def shown_colours(folder):
    """The colours of all pixels of the deepest level that are not transparent at all."""
    level = max((path for path in folder.iterdir() if path.name.isdigit()), key=lambda path: int(path.name))
    tiles = [read_pixels(path) for path in level.glob("*/*.png")]
    return {tuple(map(int, colour)) for tile in tiles for colour in tile[:-1, tile[-1] == 255].T}
