"""What the tests of the map pages share: a folder of maps that a web server shows and that lies on a disk,
one browser for a whole class, and questions about what a page shows."""

import json
import pathlib
import sys
import tempfile
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).parent.parent / "support"))
from browser_tab import View  # noqa: E402
from chromium import Chromium  # noqa: E402
from web_check import console_messages, failed_requests  # noqa: E402
from web_server import WebServer, files_in  # noqa: E402

PHONE, LAPTOP, LARGE = View(360, 640, phone=True), View(1366, 768), View(2560, 1440)
VIEWS = (PHONE, LAPTOP, LARGE)

LOADED = "Mosaicon.infos.every(function (info) { return !info.layer.isLoading(); })"
# Each tile with its address, its width as a picture, and the place in its middle.
TILES = """[].map.call(document.querySelectorAll("img.leaflet-tile"), function (tile) {
    var box = tile.getBoundingClientRect(), map = Mosaicon.nodes.map.getBoundingClientRect();
    var place = Mosaicon.map.containerPointToLatLng(
        [box.left + box.width / 2 - map.left, box.top + box.height / 2 - map.top]);
    return {src: tile.src, width: tile.naturalWidth, lat: place.lat, lng: place.lng,
        opacity: getComputedStyle(tile).opacity};
})"""
BOXES = """(function () {
    var names = ["h1", ".toggle", ".tool", ".leaflet-control-scale", ".panel", ".position", ".credits",
        ".message"];
    return [].filter.call(document.querySelectorAll(names.join()), function (node) {
        return node.offsetWidth && !node.classList.contains("empty");
    }).map(function (node) {
        var box = node.getBoundingClientRect();
        return {name: node.className + " " + (node.title || node.tagName), left: box.left, top: box.top,
            right: box.right, bottom: box.bottom};
    });
})()"""
CONTROLS = """[].filter.call(document.querySelectorAll("button, a[href], input, [tabindex='0']"),
    function (node) { return node.offsetWidth && !node.disabled; })"""


class PageCase(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory(prefix="mosaicon map page ")
        cls.addClassCleanup(folder.cleanup)
        cls.root = pathlib.Path(folder.name)
        server = WebServer(files_in(cls.root))
        server.__enter__()
        cls.addClassCleanup(server.__exit__, None, None, None)
        cls.origin = server.url
        cls.browser = Chromium().__enter__()
        cls.addClassCleanup(cls.browser.__exit__, None, None, None)

    def open(self, path, disk=False, view=LAPTOP, **options):
        """A tab that shows a page of the folder; path is as in an address."""
        tab = self.browser.tab(view=view, offline=disk, **options)
        self.addCleanup(tab.__exit__)
        tab.go(f"{self.root.as_uri() if disk else self.origin}/{path}")
        return tab

    def complaints(self, tab, allowed=()):
        """What a visitor's browser could complain about: everything on the console, what is not found, and
        requests to any other place; allowed are the beginnings of other addresses."""
        ours = (self.origin + "/", self.root.as_uri() + "/", "data:", *allowed)
        complaints = [f"{each.level}: {each.text} ({each.source})" for each in console_messages(tab.events())]
        complaints += [f"{address}: {reason}" for address, reason in failed_requests(tab.events())]
        for method, parameters in tab.events():
            if method == "Network.requestWillBeSent":
                address = parameters["request"]["url"]
                complaints += [] if address.startswith(ours) else [f"{address} is elsewhere"]
            elif method == "Network.responseReceived":
                answer = parameters["response"]
                # A file of the disk has no status.
                complaints += [] if answer["status"] in (0, 200) else [f"{answer['url']}: {answer['status']}"]
        return complaints

    def set_view(self, tab, place, zoom):
        tab.evaluate(f"void Mosaicon.map.setView({json.dumps(place)}, {zoom}, {{animate: false}})")
        tab.wait_for(LOADED)

    def overlaps(self, tab, view):
        """Sentences on what leaves the window, or lies over another thing."""
        boxes = tab.evaluate(BOXES)
        names = " ".join(each["name"] for each in boxes)
        self.assertTrue(all(name in names for name in ("toggle", "Zoom in", "scale", "credits")), names)
        wrong = [
            f"{each} leaves the window"
            for each in boxes
            if each["left"] < 0
            or each["top"] < 0
            or each["right"] > view.width + 0.1
            or each["bottom"] > view.height + 0.1
        ]
        for i, one in enumerate(boxes):
            wrong += [f"{one} and {other}" for other in boxes[:i] if do_overlap(one, other)]
        wide = "[...document.querySelectorAll('html, h1, .panel')].map("
        wide += "function (node) { return node.scrollWidth - node.clientWidth; })"
        return wrong + [f"wider than its window: {each}" for each in tab.evaluate(wide) if each > 0]


def do_overlap(one, other):
    across = min(one["right"], other["right"]) - max(one["left"], other["left"])
    down = min(one["bottom"], other["bottom"]) - max(one["top"], other["top"])
    return across > 0.1 and down > 0.1
