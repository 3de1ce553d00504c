"""Maps with JPEG and WebP tiles: which tile is of which kind, that everything which leads to tiles knows it,
and that such maps are made, ended, taken up and shared like others. MOSAICON_TILER is the engine."""

import json
import pathlib
import re
import shutil
import subprocess
import sys
import unittest
import xml.etree.ElementTree as ElementTree

TOP = pathlib.Path(__file__).resolve().parents[2]
sys.path[:0] = [str(TOP / "src" / "tiler" / "testing"), str(TOP / "tests" / "support")]
import engine_cases as cases  # noqa: E402
import exact_average as exact  # noqa: E402
import kml_rules  # noqa: E402
from engine_runs import ENGINE, JOURNAL, OK, EngineRuns  # noqa: E402

SIGNATURES = {".jpg": b"\xff\xd8\xff", ".png": b"\x89PNG", ".webp": b"RIFF"}
OTHERS = "{urn:mosaicon:tiles}"


def tiles_of(folder):
    """Level, column and row of each tile, and its file."""
    found = {}
    for path in folder.glob("*/*/*"):
        if path.suffix in SIGNATURES:
            found.setdefault((int(path.parts[-3]), int(path.parts[-2]), int(path.stem)), []).append(path)
    return found


def spread(runs, count, kinds):
    """The kind of each tile of a level."""
    listed = [kinds[i % 2] for i, run in enumerate(runs) for _ in range(run)]
    return listed + [kinds[0]] * (count - len(listed))


class SmallTiles(EngineRuns):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.image = cls.folder / "turned.tif"
        cls.write_image(cls.image)
        cls.arguments = ["-p", "mercator", "-k", "-t", "Wiese"]
        cls.exact = cls.folder / "exact" / "m"
        cls.make(cls.exact, "--tiles=png")
        cls.reference = cls.folder / "small" / "m"
        cls.make(cls.reference, "--tiles=auto")

    @classmethod
    def write_image(cls, path):
        """Its corners lie within tiles, so that there are tiles of both kinds in all directions."""
        raster = cases.gdal.GetDriverByName("GTiff").Create(str(path), 2600, 2200, 3)
        raster.SetGeoTransform((500000.0, 0.49, 0.08, 5540000.0, 0.08, -0.49))
        raster.SetProjection(exact.srs_of("EPSG:32632").ExportToWkt())
        raster.WriteArray(exact.texture(2200, 2600, seed=3))

    @classmethod
    def make(cls, output, *more):
        done = cases.run([ENGINE, *more], cls.arguments, cls.image, output, cls.folder / "log")
        assert done == OK, done

    def setUp(self):
        self.output = self.folder / "output" / "m"
        shutil.rmtree(self.output, ignore_errors=True)

    def check_kinds(self, output):
        """Each tile once, opaque ones as JPEG. Returns how many there are of each."""
        counts = {}
        for place, paths in tiles_of(output).items():
            self.assertEqual(len(paths), 1, place)
            path = paths[0]
            self.assertTrue(path.read_bytes().startswith(SIGNATURES[path.suffix]), path)
            is_opaque = (
                cases.decoded(self.exact / path.relative_to(output).with_suffix(".png"))[3] == 255
            ).all()
            self.assertEqual(path.suffix, ".jpg" if is_opaque else ".png", path)
            counts[path.suffix] = counts.get(path.suffix, 0) + 1
        return counts

    def told(self, output):
        """What the page of the map says of the kinds of all tiles."""
        page = (output / "leaflet.html").read_text()
        data = json.loads(re.search(r'id="map-data">(.*?)</script>', page, re.DOTALL)[1])
        kinds, runs = data["tiles"]["kinds"], data["tiles"]["runs"]
        found = {}
        for level, (west, south, east, north) in data["levels"].items():
            places = [(int(level), x, y) for y in range(south, north + 1) for x in range(west, east + 1)]
            found.update(zip(places, spread(runs.get(level, []), len(places), kinds)))
        return found

    def test_are_jpeg_where_nothing_is_transparent(self):
        counts = self.check_kinds(self.reference)
        self.assertGreater(min(counts.get(".jpg", 0), counts.get(".png", 0)), 10, counts)
        self.assertEqual(set(tiles_of(self.reference)), set(tiles_of(self.exact)))

    def test_are_much_smaller_and_look_the_same(self):
        sizes = [0, 0]  # of the tiles that are JPEG: as they are, and exact
        for path in self.reference.glob("*/*/*.jpg"):
            sizes[0] += path.stat().st_size
            sizes[1] += (self.exact / path.relative_to(self.reference).with_suffix(".png")).stat().st_size
        self.assertLess(3 * sizes[0], sizes[1])
        for place, (path,) in tiles_of(self.reference).items():
            exactly = cases.decoded(self.exact / path.relative_to(self.reference).with_suffix(".png"))
            shown = exactly[3] > 0
            if shown.any():
                pixels = cases.decoded(path)[:3].astype(float)
                self.assertGreater(exact.decibels(pixels[:, shown], exactly[:3, shown]), 30, place)

    def test_are_told_by_the_page(self):
        self.assertEqual(
            self.told(self.reference),
            {place: paths[0].suffix[1:] for place, paths in tiles_of(self.reference).items()},
        )
        self.assertNotIn('"tiles"', (self.exact / "leaflet.html").read_text())

    def test_are_told_by_the_tile_map_resource(self):
        root = ElementTree.parse(self.reference / "tilemapresource.xml").getroot()
        usual = root.find("TileFormat").attrib
        other = root.find(OTHERS + "OtherTiles")
        self.assertEqual(
            {usual["extension"]: usual["mime-type"], other.attrib["extension"]: other.attrib["mime-type"]},
            {"jpg": "image/jpeg", "png": "image/png"},
        )
        kinds = [usual["extension"], other.attrib["extension"]]
        tiles = tiles_of(self.reference)
        for level in sorted({place[0] for place in tiles}):
            places = sorted((p for p in tiles if p[0] == level), key=lambda p: (p[2], p[1]))
            runs = [each.text for each in other if each.attrib["order"] == str(level)]
            listed = spread(map(int, runs[0].split()) if runs else [], len(places), kinds)
            self.assertEqual(listed, [tiles[place][0].suffix[1:] for place in places], level)

    def test_are_shown_in_google_earth(self):
        faults = kml_rules.faults_of_overlay(self.reference / "doc.kml", most_overlap=2)
        self.assertEqual(faults, [])
        shown = [
            (file.parent / href).resolve()
            for file in self.reference.glob("*/*/*.kml")
            for href in re.findall("<href>(.*)</href>", file.read_text())
            if not href.endswith(".kml")
        ]
        self.assertEqual(sorted(shown), sorted(path for (path,) in tiles_of(self.reference).values()))

    def test_can_be_chosen_by_a_variable(self):
        variable = {"MOSAICON_TILER_TILES": "auto"}
        log = self.folder / "log"
        self.assertEqual(cases.run([ENGINE], self.arguments, self.image, self.output, log, **variable), OK)
        self.check_end()
        code, line = cases.run(
            [ENGINE], self.arguments, self.image, self.output, log, MOSAICON_TILER_TILES="gif"
        )
        self.assertEqual(
            (code, line), (1, "RESULT FAILED the kind of tiles 'gif' is none of png, auto, webp")
        )

    def test_take_the_place_of_tiles_of_another_kind(self):
        for options in (["--tiles=png"], ["--tiles=webp"], ["--tiles=png"]):
            self.assertEqual(self.run_engine(self.output, *options), OK)
            suffix = options[0].replace("--tiles=", ".")
            self.assertEqual({path.suffix for (path,) in tiles_of(self.output).values()}, {suffix})
            self.assertEqual(bool(list(self.output.glob("*/*/*.kml"))), suffix == ".png")
        self.assertEqual(self.run_engine(self.output, "--tiles=auto"), OK)
        self.check_end()

    def test_are_taken_up_and_shared_like_others(self):
        # A folder where the coarsest tile is to be: all but that is done.
        (top,) = min(tiles_of(self.reference).items())[1]
        blocked = self.output / top.relative_to(self.reference)
        for again in range(2):
            blocked.mkdir(parents=True)
            self.assertEqual(self.run_engine(self.output, "--tiles=auto")[0], 1)
            self.assertTrue((self.output / JOURNAL).exists())
            blocked.rmdir()
            if again:
                min(self.output.glob("*/*/*.jpg")).write_bytes(b"")
            self.assertEqual(self.run_engine(self.output, "--tiles=auto"), OK)
            self.check_end()
            shutil.rmtree(self.output)
        for index in (1, 0, 2):
            self.assertEqual(self.run_engine(self.output, "--tiles=auto", f"--shard={index}/3"), OK)
        self.assertEqual(self.run_engine(self.output, "--merge")[0], 1, "of other options")
        self.assertEqual(self.run_engine(self.output, "--tiles=auto", "--merge"), OK)
        self.check_end()

    def test_of_another_number_of_threads_are_the_same(self):
        self.assertEqual(self.run_engine(self.output, "--tiles=auto", "--threads=3"), OK)
        self.check_end()

    def test_of_webp_are_for_pages_alone(self):
        self.assertEqual(self.run_engine(self.output, "--tiles=webp"), OK)
        self.assertIn("No KML is made: Google Earth does not show WebP", (self.folder / "log").read_text())
        self.assertEqual(list(self.output.rglob("*.kml")), [])
        tiles = tiles_of(self.output)
        self.assertEqual(set(tiles), set(tiles_of(self.exact)))
        self.assertEqual(set(self.told(self.output).values()), {"webp"})
        self.assertIn('"kml": {"disk": null, "web": null}', (self.output / "leaflet.html").read_text())
        self.assertIn('extension="webp"/>', (self.output / "tilemapresource.xml").read_text())
        for (path,) in tiles.values():
            self.assertTrue(path.read_bytes().startswith(SIGNATURES[".webp"]))
            exactly = cases.decoded(self.exact / path.relative_to(self.output).with_suffix(".png"))
            self.assertTrue((cases.decoded(path)[3] == exactly[3]).all(), path)

    def test_leave_no_variable_to_what_is_as_gdal2tiles_makes_it(self):
        run = cases.run(
            [ENGINE, "--sampling=gdal2tiles"],
            self.arguments,
            self.image,
            self.output,
            self.folder / "log",
            MOSAICON_TILER_TILES="auto",
        )
        self.assertEqual(run, OK)
        self.assertEqual({path.suffix for (path,) in tiles_of(self.output).values()}, {".png"})

    def test_name_tiles_in_all_pages(self):
        for page in ("googlemaps.html", "openlayers.html"):
            text = (self.reference / page).read_text()
            self.assertIn('<script src="leaflet/tiles.js"></script>', text)
            self.assertIn("Mosaicon.tileName(orthophoto, ", text)


if __name__ == "__main__":
    subprocess.run([ENGINE, "--version"], check=True, stdout=subprocess.DEVNULL)
    unittest.main()
