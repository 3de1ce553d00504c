"""That the page of one map shows it: from a web server and from a disk without any network, in windows of all
sizes, asking for tiles that exist and for nothing else."""

import itertools
import shutil
import unittest

import numpy
from page_case import BOXES, LAPTOP, LOADED, PHONE, TILES, VIEWS, PageCase
from pyramid import Map, tile_at, write_map
from osgeo import osr

osr.UseExceptions()
HERE = (48.14, 11.57)
ODD_TITLE = "\"><script>alert(1)</script> & 'x' <!--<script> </SCRIPT> @MAP@ \\u003c 測量 עברית"
# Latitude, longitude, and the zone where it is an exception.
PLACES = [
    (48.137, 11.575, None),
    (-33.857, 151.215, None),
    (-54.8, -68.3, None),
    (0.0, 9.0, None),
    (-0.0001, -78.5, None),
    (40.0, -179.999, 1),
    (40.0, 179.999, 60),
    (60.39, 5.32, 32),
    (55.99, 5.0, 31),
    (64.0, 5.0, 31),
    (62.0, 11.999, 32),
    (78.22, 15.65, 33),
    (78.0, 8.99, 31),
    (78.0, 9.0, 33),
    (80.0, 21.0, 35),
    (80.0, 32.99, 35),
    (80.0, 33.0, 37),
    (71.99, 9.5, 32),
    (83.99, -30.0, None),
    (-79.99, 45.0, None),
]


class MapPageCase(PageCase):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.map = Map(HERE[1], HERE[0], title="Gravel pit, flight of 12 May")
        write_map(cls.root / "one", cls.map)

    def changed(self, name, **changes):
        """A page without tiles beside those of the one map."""
        described = Map(HERE[1], HERE[0], **changes)
        folder = self.root / name
        shutil.rmtree(folder, ignore_errors=True)
        write_map(folder, described)
        return f"{name}/leaflet.html"


class ShowingTest(MapPageCase):
    def check_tiles(self, tab):
        tab.wait_for(LOADED)
        tiles = tab.evaluate(TILES)
        self.assertGreater(len(tiles), 0)
        for tile in tiles:
            path, _ = tile["src"].rsplit(".", 1)
            z, column, row = (int(each) for each in path.split("/")[-3:])
            self.assertEqual(tile["width"], 256, tile)
            self.assertEqual((column, row), tile_at(z, tile["lng"], tile["lat"]), tile)
        return {tile["src"] for tile in tiles}

    def check_fit(self, tab):
        left, top, right, bottom, width, height = tab.evaluate(
            """(function () {
            var map = Mosaicon.map, area = Mosaicon.infos[0].area, size = map.getSize();
            var corner = map.latLngToContainerPoint(area.getNorthWest());
            var other = map.latLngToContainerPoint(area.getSouthEast());
            return [corner.x, corner.y, other.x, other.y, size.x, size.y];
        })()"""
        )
        self.assertTrue(
            8 <= left < right <= width - 8 and 8 <= top < bottom <= height - 8, (left, right, width)
        )
        nearest = tab.evaluate("Mosaicon.map.getZoom() == Mosaicon.map.getMaxZoom()")
        too_large = 2 * (right - left) > width - 32 or 2 * (bottom - top) > height - 32
        self.assertTrue(nearest or too_large, "it could be larger")

    def test_it_is_shown_from_server_and_disk_in_every_window(self):
        for view in VIEWS:
            for disk in (False, True):
                with self.subTest(view=view, disk=disk):
                    tab = self.open("one/leaflet.html", disk, view)
                    self.assertEqual(self.complaints(tab), [])
                    self.check_fit(tab)
                    self.check_tiles(tab)
                    opacity = "getComputedStyle(Mosaicon.infos[0].layer.getContainer()).opacity"
                    self.assertEqual(tab.evaluate(opacity), "1")
                    self.assertEqual(tab.evaluate("navigator.onLine"), not disk)
                    self.assertEqual(tab.evaluate("document.title"), self.map.title)

    def test_only_tiles_that_exist_are_asked_for_wherever_one_looks(self):
        self.check_every_tile(self.map, "one/leaflet.html")

    def test_tiles_of_both_kinds_are_asked_for_by_their_names(self):
        mixed = Map(HERE[1], HERE[0], metres=900, mixed=True)
        write_map(self.root / "mixed", mixed)
        seen = self.check_every_tile(mixed, "mixed/leaflet.html")
        counts = [sum(each.endswith(kind) for each in seen) for kind in (".jpg", ".png")]
        self.assertGreater(min(counts), 10, counts)

    def check_every_tile(self, one, address):
        tab = self.open(address)
        (south, west), (north, east) = one.bounds()
        lowest, highest = tab.evaluate("[Mosaicon.map.getMinZoom(), Mosaicon.map.getMaxZoom()]")
        self.assertLess(lowest, one.coarsest)
        self.assertEqual(highest, one.finest + 1)
        seen = set()
        for zoom in range(lowest, highest + 1):
            for place in itertools.product(numpy.linspace(south, north, 5), numpy.linspace(west, east, 3)):
                self.set_view(tab, place, zoom)
                seen |= self.check_tiles(tab)
        self.set_view(tab, [-40, -170], lowest)
        self.assertEqual(self.complaints(tab), [])
        every = sum((e - w + 1) * (n - s + 1) for w, s, e, n in one.levels().values())
        self.assertEqual(len(seen), every, "every tile can be seen")
        return seen

    def test_it_is_shown_at_twice_its_finest_level(self):
        tab = self.open("one/leaflet.html", disk=True)
        self.set_view(tab, HERE, self.map.finest + 1)
        self.assertTrue(all(f"/{self.map.finest}/" in each for each in self.check_tiles(tab)))
        tab.evaluate("void Mosaicon.map.setZoom(30, {animate: false})")
        self.assertEqual(tab.evaluate("Mosaicon.map.getZoom()"), self.map.finest + 1)

    def test_one_tile_far_from_its_level_is_shown_and_marked(self):
        tab = self.open(self.changed("small", metres=60, coarsest=18, finest=18))
        self.set_view(tab, HERE, 14)
        self.check_tiles(tab)
        self.assertEqual(tab.evaluate("document.querySelectorAll('path.leaflet-interactive').length"), 1)
        tab.click("path.leaflet-interactive")
        tab.wait_for("Mosaicon.map.getZoom() == 19")
        self.assertEqual(tab.evaluate("document.querySelectorAll('path.leaflet-interactive').length"), 0)

    def test_the_slider_changes_the_opacity(self):
        tab = self.open("one/leaflet.html")
        tab.evaluate("document.querySelector('input[type=range]').focus()")
        tab.press("ArrowLeft")
        opacity = "getComputedStyle(Mosaicon.infos[0].layer.getContainer()).opacity"
        self.assertEqual(tab.evaluate(opacity), "0.99")
        self.assertEqual(tab.evaluate("document.querySelector('.value').textContent"), "99\u00a0%")
        tab.press("Home")
        self.assertEqual(tab.evaluate(opacity), "0")
        self.set_view(tab, HERE, 17)
        self.assertEqual(tab.evaluate(opacity), "0", "it stays")

    def test_nothing_lies_over_another_thing_or_outside(self):
        long_title = "Baggersee" * 12 + " and then some more words of a long title, as surveyors like them"
        for page in ("one/leaflet.html", self.changed("long", metres=60, title=long_title)):
            for view in VIEWS:
                with self.subTest(page=page, view=view):
                    tab = self.open(page, view=view)
                    panel = "document.querySelector('.panel').hidden"
                    self.assertEqual(tab.evaluate(panel), view is PHONE, "closed where it takes much room")
                    for _ in range(2):
                        self.assertEqual(self.overlaps(tab, view), [])
                        tab.click(".toggle")
                    tab.evaluate("Mosaicon.say('You are outside this map. The blue dot shows where.')")
                    boxes = tab.evaluate(BOXES)
                    self.assertTrue(any("message" in each["name"] for each in boxes))
                    self.assertEqual(self.overlaps(tab, view), [])
                    tab.click(".message button")
                    self.assertEqual(len(tab.evaluate(BOXES)), len(boxes) - 1)

    def test_a_title_may_hold_anything(self):
        tab = self.open(self.changed("odd", metres=60, title=ODD_TITLE), disk=True)
        self.assertEqual(self.complaints(tab), [])
        self.assertEqual(tab.evaluate("document.title"), ODD_TITLE)
        self.assertEqual(tab.evaluate("document.querySelector('h1').textContent"), ODD_TITLE)
        self.assertEqual(tab.evaluate("Mosaicon.infos[0].title"), ODD_TITLE)

    def test_a_page_without_its_folder_says_so(self):
        scripts = ("leaflet.js", "map.js", "tools.js", "position.js", "tiles.js")
        for missing in ("", *scripts, "map.css", "leaflet.css"):
            with self.subTest(missing):
                page = self.changed("alone", metres=60)
                if missing:
                    (self.root / "alone" / "leaflet" / missing).unlink()
                else:
                    shutil.rmtree(self.root / "alone" / "leaflet")
                tab = self.open(page, disk=True)
                self.assertIn("the folder “leaflet”", tab.evaluate("document.body.innerText"))
        tab = self.open("one/leaflet.html", disk=True)
        self.assertNotIn("the folder “leaflet”", tab.evaluate("document.body.innerText"))

    def test_a_missing_tile_is_told(self):
        page = self.changed("holes", metres=60)
        shutil.rmtree(self.root / "holes" / "18")
        tab = self.open(page)
        tab.wait_for("document.querySelector('[role=status]').textContent.indexOf('could not be loaded') > 0")

    def test_without_javascript_it_says_so(self):
        with self.browser.tab(view=LAPTOP) as tab:
            tab.call("Emulation.setScriptExecutionDisabled", value=True)
            tab.go(f"{self.origin}/one/leaflet.html")
            self.assertIn("needs JavaScript", tab.evaluate("document.body.innerText"))


class PositionTest(MapPageCase):
    def test_utm_is_that_of_proj(self):
        tab = self.open("one/leaflet.html")
        world = osr.SpatialReference()
        world.ImportFromEPSG(4326)
        for latitude, longitude, zone in PLACES:
            with self.subTest(latitude=latitude, longitude=longitude):
                ours = tab.evaluate(f"Mosaicon.utm({latitude}, {longitude})")
                self.assertEqual(ours["zone"], zone or int((longitude + 180) // 6) + 1)
                self.assertEqual(ours["north"], latitude >= 0)
                grid = osr.SpatialReference()
                grid.ImportFromEPSG((32600 if latitude >= 0 else 32700) + ours["zone"])
                x, y, _ = osr.CoordinateTransformation(world, grid).TransformPoint(latitude, longitude)
                self.assertAlmostEqual(ours["easting"], x, delta=0.000005)
                self.assertAlmostEqual(ours["northing"], y, delta=0.000005)
        self.assertIsNone(tab.evaluate("Mosaicon.utm(84.01, 0)"))
        self.assertIsNone(tab.evaluate("Mosaicon.utm(-80.01, 0)"))

    def test_texts_name_the_half_of_the_world(self):
        tab = self.open("one/leaflet.html")
        text = tab.evaluate("Mosaicon.positionText({lat: -33.857, lng: 151.215}, 5)")
        self.assertEqual(text["degrees"], "33.85700° S, 151.21500° E")
        self.assertRegex(text["grid"], r"^UTM 56S: 33\d{4} m E, 625\d{4} m N$")
        text = tab.evaluate("Mosaicon.positionText({lat: 85, lng: -1}, 0.01)")
        self.assertEqual(text, {"degrees": "85.0000000° N, 1.0000000° W", "grid": "UTM: no zone here"})

    def test_the_place_under_the_pointer_is_told(self):
        tab = self.open("one/leaflet.html")
        place = (HERE[0] + 0.0005, HERE[1] - 0.001)
        x, y = tab.evaluate(
            f"""(function () {{
            var point = Mosaicon.map.latLngToContainerPoint([{place[0]}, {place[1]}]);
            var box = Mosaicon.nodes.map.getBoundingClientRect();
            return [Math.round(point.x + box.left), Math.round(point.y + box.top)];
        }})()"""
        )
        shown = "document.querySelector('.position').textContent"
        self.assertRegex(tab.evaluate(shown), "^Centre: 48[.]1")
        tab.move_mouse(x, y)
        words = tab.evaluate(shown).replace("°", "").replace(",", "").split()
        self.assertEqual(words[0], "Pointer:")
        pixel = 360 / 256 / 2 ** tab.evaluate("Mosaicon.map.getZoom()")
        self.assertAlmostEqual(float(words[1]), place[0], delta=pixel)
        self.assertAlmostEqual(float(words[3]), place[1], delta=pixel)
        tab.move_mouse(3, 3)
        self.assertRegex(tab.evaluate(shown), "^Centre: 48[.]1")


if __name__ == "__main__":
    unittest.main()
