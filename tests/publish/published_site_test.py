"""From an orthophoto to what visitors see: published_site_test.py COMMAND...

COMMAND (ui/publish_web_test.cpp in its Wine prefix) makes a data set "harbour" in the real window, uploads
it to a real FTP server, updates the index page and compares both sides. What lies on the server then is
opened over HTTP: each page in a real browser, each link by a client that knows nothing but addresses."""

import os
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

TESTS = pathlib.Path(__file__).parent.parent
sys.path[:0] = [str(TESTS / "support"), str(TESTS / "servers")]
import ftp_servers  # noqa: E402
from web_check import WebCheck  # noqa: E402

COMMAND = sys.argv[1:]
FTP_SERVER = "vsftpd"
DATA_SET = "harbour"

# The Google page loads its library from another host, which must not be reached here; without it the page
# fails with an error like "google is not defined". Errors that follow from a missing library cannot be told
# from our own. There is no copy of Google's; in its place is an object that lets everything be done with it:
# that shows errors of the page's own scripts, but not whether Google would draw the map.
GOOGLE_ADDRESS = "https://maps.googleapis.com/maps/api/js?key=no-key"
ANYTHING = b"""window.google = (function everything() {
  return new Proxy(function () {}, {
    get: (target, name) => name === Symbol.toPrimitive ? () => 1
                         : name === 'prototype' ? target.prototype : everything(),
    apply: everything,
    construct: everything,
  });
})();"""

SHOWN_TILES = """[...document.querySelectorAll('img.leaflet-tile')]
                     .filter(each => each.naturalWidth > 0).map(each => each.src)"""
SHOWN_PICTURES = "[...document.images].filter(each => each.naturalWidth > 0).map(each => each.src)"
LINKS = "[...document.links].map(each => each.href)"


class PublishedSiteTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory(prefix="mosaicon site ")
        cls.addClassCleanup(folder.cleanup)
        cls.root = pathlib.Path(folder.name)
        cls.root.chmod(0o755)
        cls.web = WebCheck(cls.root).__enter__()
        cls.addClassCleanup(cls.web.__exit__)
        with ftp_servers.start(FTP_SERVER, root=cls.root) as server:
            environment = {**os.environ, **server.environment(), "MOSAICON_WEB_URL": cls.web.origin}
            run = subprocess.run(COMMAND, env=environment, check=False)
        if run.returncode != 0:
            raise AssertionError(f"nothing was published: exit code {run.returncode}")

    def published(self, suffix):
        """The paths of all files with that suffix, as the web server names them."""
        return {f"/{path.relative_to(self.root)}" for path in (self.root / DATA_SET).rglob(f"*{suffix}")}

    def local(self, addresses):
        return [each.removeprefix(self.web.origin) for each in addresses if each.startswith(self.web.origin)]

    def test_the_kml_leads_to_every_tile(self):
        for name in ("googleearth_web.kml", "googleearth_loc.kml"):
            with self.subTest(name):
                self.web.requests.clear()
                self.assertEqual(self.web.broken_kml_links(f"{DATA_SET}/{name}"), [])
                visited = {each.path for each in self.web.requests}
                self.assertEqual(
                    visited - {f"/{DATA_SET}/{name}"}, self.pyramid(".png") | self.pyramid(".kml")
                )

    def pyramid(self, suffix):
        return {path for path in self.published(suffix) if re.search(r"/\d+/\d+/\d+\.\w+$", path)}

    def test_the_web_kml_holds_no_relative_link(self):
        _, content = self.web.fetch(f"{DATA_SET}/googleearth_web.kml")
        links = re.findall(r"<href>(.*)</href>", content.decode())
        self.assertGreater(len(links), 0)
        for link in links:
            self.assertTrue(link.startswith(f"{self.web.origin}/{DATA_SET}/"), link)

    def test_the_index_page_leads_to_the_data_set(self):
        visit = self.web.open_page("index.html", f"[{SHOWN_PICTURES}, {LINKS}]")
        self.assertEqual(visit.faults(), [])
        pictures, links = map(self.local, visit.value)
        self.assertEqual(pictures, [f"/{DATA_SET}/The_harbour.jpg"])
        # The survey of a folder ends with the first picture that has its KML, in the server's order.
        self.assertEqual(links, [f"/{DATA_SET}/googleearth_loc.kml"])
        for path in pictures + links:
            self.assertEqual(self.web.fetch(path[1:]), (200, (self.root / path[1:]).read_bytes()), path)

    def test_the_map_page_shows_the_tiles(self):
        visit = self.web.open_page(f"{DATA_SET}/leaflet.html", f"[{SHOWN_TILES}, {LINKS}]")
        self.assertEqual((visit.faults(), visit.console), ([], []))
        self.assertTrue(all(each.path.startswith(f"/{DATA_SET}/") for each in visit.requests))
        tiles, links = map(self.local, visit.value)
        self.assertEqual(links, [f"/{DATA_SET}/googleearth_web.kml"])
        shown = set(tiles)
        zooms = {path.split("/")[2] for path in shown}
        self.assertEqual(len(zooms), 1, shown)
        self.assertEqual(shown, {path for path in self.published(".png") if path.split("/")[2] in zooms})

    def test_the_google_page_has_no_errors_of_its_own(self):
        visit = self.web.open_page(
            f"{DATA_SET}/googlemaps.html",
            "mapMaxZoom - mapMinZoom",
            {GOOGLE_ADDRESS: ("text/javascript", ANYTHING)},
        )
        self.assertEqual(visit.faults(), [])
        self.assertEqual(visit.value, 1)

    def test_no_other_page_was_published(self):
        self.assertEqual(
            self.published(".html"), {f"/{DATA_SET}/leaflet.html", f"/{DATA_SET}/googlemaps.html"}
        )


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
