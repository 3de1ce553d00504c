"""That the index page works in a browser: the pages that the unit tests expect byte for byte are shown
beside files of the names that they link."""

import os
import pathlib
import sys
import tempfile
import unittest

HERE = pathlib.Path(__file__).parent
PAGES = HERE.parent.parent / "src" / "publish" / "testing" / "data"
sys.path.insert(0, str(HERE.parent / "support"))
from web_check import WebCheck  # noqa: E402

PIXEL = bytes.fromhex("47494638396101000100800000000000ffffff2c00000000010001000002024401003b")
# The addresses of pictures, and of links into the published folder, as the browser understands them.
PICTURES = "[...document.images].filter(each => each.naturalWidth == 1).map(each => each.src)"
LINKS = "[...document.links].map(each => each.href)"

PLAIN = (
    "single/preview.jpg",
    "single/doc.kml",
    "single/googlemaps.html",
    "tiles/tile_0/a.jpg",
    "tiles/tile_0/doc.kml",
    "tiles/tile_0/googlemaps.html",
    "tiles/tile_1/doc.kml",
    "tiles/tile_1/googlemaps.html",
    "my data/a b.jpg",
    "my data/my doc.kml",
)
ODD = (
    "<b>\"x\" onload='y'/a&b#c.jpg",
    "<b>\"x\" onload='y'/100%.kml",
    b"<b>\"x\" onload='y'/googlemaps?caf\xe9.html",
    b"c:caf\xe9/ x\\y.jpg ",
    b"c:caf\xe9/\n.kml",
)


class IndexPageTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="mosaicon index ")
        self.addCleanup(folder.cleanup)
        self.root = pathlib.Path(folder.name)
        self.web = WebCheck(self.root).__enter__()
        self.addCleanup(self.web.__exit__)

    def check(self, page, published, files):
        (self.root / page).write_bytes((PAGES / page).read_bytes())
        for name in files:
            path = self.root / os.fsdecode(name)
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_bytes(PIXEL)
        visit = self.web.open_page(page, f"({{pictures: {PICTURES}, links: {LINKS}}})")
        self.assertEqual(visit.faults(), [])

        pictures = [each for each in visit.value["pictures"] if each.startswith(self.web.origin)]
        links = [each for each in visit.value["links"] if each.startswith(published)]
        reached = {address.removeprefix(self.web.origin + "/") for address in pictures}
        reached |= {address.removeprefix(published + "/") for address in links}
        self.assertEqual(len(pictures) + len(links), len(files))
        self.assertEqual(len(reached), len(files), reached)
        for path in reached:
            self.assertEqual(self.web.fetch(path), (200, PIXEL), path)

    def test_pictures_and_links_lead_to_the_files(self):
        self.check("index_plain.html", "http://www.maps.example/ortho", PLAIN)

    def test_odd_names_lead_to_their_files(self):
        self.check("index_hostile.html", "http://m.example/a&b", ODD)

    def test_a_page_without_data_sets_is_whole(self):
        self.check("index_empty.html", "http://www.maps.example/ortho", ())


if __name__ == "__main__":
    unittest.main()
