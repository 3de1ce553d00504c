"""That the page of a folder with several maps shows them all on one map, whatever their folders are called
and wherever they lie."""

import unittest
import urllib.parse

from page_case import LAPTOP, LOADED, PHONE, VIEWS, PageCase
from pyramid import Map, tile_at, write_maps

TITLES = ("North field", '<b>Das große Feld</b> & "more" </script> 測量', "Farm")
FOLDERS = ("tile_0", "my ortho", "Äcker #1 100% a?b&c")
TILES = """[].map.call(document.querySelectorAll("img.leaflet-tile"), function (each) {
    return [each.src, each.naturalWidth]; })"""
ENTRIES = "document.querySelectorAll('.entry')"


def layer(number, question):
    return f"Mosaicon.infos[{number}].layer.{question}"


class IndexPageTest(PageCase):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.maps = [
            Map(11.570, 48.140, title=TITLES[0], folder=FOLDERS[0]),
            Map(11.572, 48.141, title=TITLES[1], folder=FOLDERS[1], coarsest=16, finest=17),
            Map(
                11.567,
                48.137,
                metres=150,
                title=TITLES[2],
                folder=FOLDERS[2],
                kml={"disk": None, "web": None},
            ),
        ]
        write_maps(cls.root / "all", cls.maps, title="Three <fields>")
        cls.far = [
            Map(15.65, 78.22, folder="a", title="Svalbard"),
            Map(-70.0, -53.0, folder="b", title="South"),
        ]
        write_maps(cls.root / "far", cls.far)

    def folders_shown(self, tab):
        """The folders whose tiles are there; all of them have to be whole, and no others than exist."""
        tab.wait_for(LOADED)
        shown = set()
        for source, width in tab.evaluate(TILES):
            self.assertEqual(width, 256, source)
            shown.add(urllib.parse.unquote(source.split("/")[-4]))
        return shown

    def test_all_are_shown_from_server_and_disk_in_every_window(self):
        for view in VIEWS:
            for disk in (False, True):
                with self.subTest(view=view, disk=disk):
                    tab = self.open("all/index.html", disk, view)
                    self.assertEqual(self.folders_shown(tab), set(FOLDERS))
                    self.assertEqual(self.complaints(tab), [])
                    for one in self.maps:
                        self.assertTrue(tab.evaluate(f"Mosaicon.map.getBounds().contains({one.bounds()})"))
                    for _ in range(2):
                        self.assertEqual(self.overlaps(tab, view), [])
                        tab.click(".toggle")

    def test_each_has_its_title_and_its_links(self):
        for disk in (False, True):
            with self.subTest(disk=disk):
                tab = self.open("all/index.html", disk)
                titles = f"[].map.call({ENTRIES}, (each) => each.querySelector('.shown').textContent)"
                self.assertEqual(tab.evaluate(titles), list(TITLES))
                self.assertEqual(tab.evaluate("document.title"), "Three <fields>")
                kml = "googleearth_loc.kml" if disk else "googleearth_web.kml"
                expected = [[f"{FOLDERS[0]}/leaflet.html", f"{FOLDERS[0]}/{kml}"]]
                expected += [[f"{FOLDERS[1]}/leaflet.html", f"{FOLDERS[1]}/{kml}"]]
                expected += [[f"{FOLDERS[2]}/leaflet.html"]]
                links = f"[...{ENTRIES}].map((each) => [...each.querySelectorAll('a')].map((a) => a.href))"
                root = (self.root.as_uri() if disk else self.origin) + "/all/"
                found = [[each.removeprefix(root) for each in links] for links in tab.evaluate(links)]
                self.assertEqual(
                    [[urllib.parse.unquote(each) for each in links] for links in found], expected
                )

    def test_the_links_lead_to_pages_that_work(self):
        for disk in (False, True):
            tab = self.open("all/index.html", disk)
            for number, one in enumerate(self.maps):
                with self.subTest(disk=disk, folder=one.folder):
                    page = tab.evaluate(f"{ENTRIES}[{number}].querySelector('a').getAttribute('href')")
                    own = self.open(f"all/{page}", disk)
                    self.assertEqual(self.folders_shown(own), {one.folder})
                    self.assertEqual(self.complaints(own), [])

    def test_one_can_be_switched_off_and_on(self):
        tab = self.open("all/index.html")
        slider = f"{ENTRIES}[1].querySelector('[type=range]').disabled"
        for shown in (False, True):
            tab.evaluate(f"{ENTRIES}[1].id = 'second'")
            tab.click("#second .shown")
            self.assertEqual(FOLDERS[1] in self.folders_shown(tab), shown)
            self.assertEqual(tab.evaluate(slider), not shown)
        tab.evaluate(f"{ENTRIES}[0].querySelector('[type=checkbox]').focus()")
        tab.press(" ")
        self.assertEqual(self.folders_shown(tab), set(FOLDERS[1:]))
        self.assertEqual(self.complaints(tab), [])

    def test_each_has_an_opacity_of_its_own(self):
        tab = self.open("all/index.html")
        tab.evaluate(f"{ENTRIES}[1].querySelector('[type=range]').focus()")
        tab.press("ArrowLeft")
        opacities = [
            tab.evaluate(f"getComputedStyle({layer(i, 'getContainer()')}).opacity") for i in range(3)
        ]
        self.assertEqual(opacities, ["1", "0.99", "1"])

    def test_one_can_be_looked_at(self):
        tab = self.open("all/index.html", view=PHONE)
        tab.click(".toggle")
        for number, one in enumerate(self.maps):
            place = f"Math.abs(Mosaicon.map.getCenter().lng - {one.longitude}) < 1e-4"
            tab.evaluate(f"{ENTRIES}[{number}].querySelector('button').click()")
            tab.wait_for(place)
            tab.wait_for(f"Mosaicon.map.getBounds().contains({one.bounds()})")
        tab.settle()
        self.assertEqual(self.complaints(tab), [])

    def test_the_last_of_quick_clicks_counts(self):
        tab = self.open("all/index.html")
        tab.evaluate(
            f"""new Promise(function (done) {{
            function click(number) {{ {ENTRIES}[number].querySelector('button').click(); }}
            Mosaicon.map.once('zoomanim', function () {{
                setTimeout(function () {{ click(1); click(2); done(); }}, 0);
            }});
            click(0);
        }})"""
        )
        tab.wait_for(f"Math.abs(Mosaicon.map.getCenter().lng - {self.maps[2].longitude}) < 1e-4")
        tab.wait_for(f"Mosaicon.map.getBounds().contains({self.maps[2].bounds()})")

    def test_the_first_lies_on_top(self):
        tab = self.open("all/index.html")
        levels = [int(tab.evaluate(layer(i, "getContainer().style.zIndex"))) for i in range(3)]
        self.assertEqual(levels, sorted(levels, reverse=True))
        self.assertEqual(len(set(levels)), 3)

    def test_a_coarser_one_stays_when_one_zooms_in(self):
        tab = self.open("all/index.html")
        self.set_view(tab, [48.141, 11.572], 19)
        sources = [source for source, _ in tab.evaluate(TILES) if "/my%20ortho/" in source]
        self.assertGreater(len(sources), 0)
        column, row = tile_at(17, 11.572, 48.141)
        self.assertTrue(any(each.endswith(f"/17/{column}/{row}.png") for each in sources), sources)
        self.assertEqual(self.complaints(tab), [])

    def test_maps_far_apart_are_marked_and_found(self):
        for disk in (False, True):
            tab = self.open("far/index.html", disk, LAPTOP)
            self.assertEqual(self.complaints(tab), [])
            marks = "document.querySelectorAll('path.leaflet-interactive').length"
            self.assertEqual(tab.evaluate(marks), 2)
            for one in self.far:
                self.assertTrue(tab.evaluate(f"Mosaicon.map.getBounds().contains({one.bounds()})"))
            tab.evaluate(f"{ENTRIES}[0].querySelector('[type=checkbox]').click()")
            self.assertEqual(tab.evaluate(marks), 1)
            tab.evaluate(f"{ENTRIES}[1].querySelector('button').click()")
            tab.wait_for("Mosaicon.map.getZoom() > 12")
            self.assertEqual(self.folders_shown(tab), {"b"})
            self.assertEqual(tab.evaluate(marks), 0)


if __name__ == "__main__":
    unittest.main()
