"""That the web check finds what is wrong, and only that."""

import os
import pathlib
import sys
import tempfile
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).parent.parent / "support"))
from chromium import Chromium  # noqa: E402
from web_check import Request, WebCheck  # noqa: E402

PIXEL = bytes.fromhex("47494638396101000100800000000000ffffff2c00000000010001000002024401003b")
KML = '<?xml version="1.0" encoding="utf-8"?><kml xmlns="http://www.opengis.net/kml/2.2">{}</kml>'
LINK = "<NetworkLink><Link><href>{}</href></Link></NetworkLink>"
ICON = "<GroundOverlay><Icon><href>{}</href></Icon></GroundOverlay>"


class WebCase(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="mosaicon web check ")
        self.addCleanup(folder.cleanup)
        self.root = pathlib.Path(folder.name)
        self.web = WebCheck(self.root).__enter__()
        self.addCleanup(self.web.__exit__)

    def write(self, name, content):
        path = self.root / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(content if isinstance(content, bytes) else content.encode())


class PageTest(WebCase):
    def visit(self, body):
        self.write("page.html", f"<!DOCTYPE html><title>page</title>{body}")
        self.write("a b.gif", PIXEL)
        return self.web.open_page("page.html")

    def test_a_good_page_has_no_fault(self):
        visit = self.visit('<img src="a b.gif"><script>console.log("fine"); console.warn("so so")</script>')
        self.assertEqual(visit.faults(), [])
        self.assertEqual(
            visit.requests, [Request("GET", "/page.html", 200), Request("GET", "/a%20b.gif", 200)]
        )
        self.assertEqual(
            [(each.level, each.text) for each in visit.console], [("log", "fine"), ("warning", "so so")]
        )
        self.assertEqual({each.source for each in visit.console}, {f"{self.web.origin}/page.html"})

    def test_a_missing_page_is_a_fault(self):
        visit = self.web.open_page("none.html")
        self.assertEqual(visit.requests, [Request("GET", "/none.html", 404)])
        self.assertNotEqual(visit.faults(), [])

    def test_a_missing_picture_is_a_fault(self):
        visit = self.visit('<img src="none.gif">')
        self.assertIn(Request("GET", "/none.gif", 404), visit.requests)
        self.assertIn("GET /none.gif: 404", visit.faults())
        self.assertTrue(
            any(each.level == "error" and each.source.endswith("/none.gif") for each in visit.console),
            visit.console,
        )

    def test_an_error_of_a_script_is_a_fault(self):
        for script in (
            "missingFunction();",
            "console.error('missingFunction');",
            "missingFunction(",
            "setTimeout(() => missingFunction(), 100)",
            "Promise.reject(new Error('missingFunction'))",
        ):
            with self.subTest(script):
                faults = self.visit(f"<script>{script}</script>").faults()
                self.assertEqual(len(faults), 1, faults)
                self.assertIn("page.html", faults[0])

    def test_a_script_file_has_faults_under_its_own_name(self):
        self.write("script.js", "missingFunction();")
        faults = self.visit('<script src="script.js"></script>').faults()
        self.assertEqual(len(faults), 1, faults)
        self.assertIn("/script.js: ReferenceError", faults[0])

    def test_other_hosts_cannot_be_reached_and_that_is_no_fault(self):
        others = (
            "http://www.maps.example/a.js",
            "https://connect.facebook.net/a.js",
            "http://192.0.2.1/a.js",
        )
        visit = self.visit("".join(f'<script src="{other}" async></script>' for other in others))
        self.assertEqual(visit.faults(), [])
        self.assertEqual({address for address, _ in visit.failed}, set(others))
        self.assertEqual({each.source for each in visit.console if each.level == "error"}, set(others))
        self.assertEqual(visit.requests, [Request("GET", "/page.html", 200)])

    def test_what_fails_here_because_of_another_host_is_a_fault(self):
        visit = self.visit(
            '<script src="http://www.maps.example/api.js"></script><script>Api.show();</script>'
        )
        faults = visit.faults()
        self.assertEqual(len(faults), 1, faults)
        self.assertIn("Api is not defined", faults[0])

    def test_a_file_of_this_machine_is_a_fault(self):
        self.assertNotEqual(self.visit('<img src="file:///etc/hostname">').faults(), [])

    def test_a_page_can_be_asked_for_more(self):
        self.write("page.html", "<a href='a b#c'>")
        self.assertEqual(
            self.web.open_page("page.html", "[...document.links].map(link => link.href)").value,
            [f"{self.web.origin}/a%20b#c"],
        )
        with self.assertRaises(ValueError):
            self.web.open_page("page.html", "missingFunction()")

    def test_another_host_may_have_a_stand_in(self):
        self.write(
            "page.html",
            """<!DOCTYPE html><title>page</title>
            <script src="http://www.maps.example/api.js"></script><script>Api.show();</script>
            <script src="http://www.maps.example/other.js"></script>""",
        )
        api = b"var Api = {show: () => { document.title = 'shown'; }}; // " + b"x" * 300000
        visit = self.web.open_page(
            "page.html", "document.title", {"http://www.maps.example/api.js": ("text/javascript", api)}
        )
        self.assertEqual(visit.faults(), [])
        self.assertEqual(visit.value, "shown")
        self.assertEqual([address for address, _ in visit.failed], ["http://www.maps.example/other.js"])
        self.assertEqual(len(self.web.open_page("page.html").faults()), 1, "only where it was asked for")

    def test_pages_are_visited_afresh(self):
        self.assertNotEqual(self.visit('<img src="none.gif">').faults(), [])
        for _ in range(2):
            visit = self.visit('<img src="a b.gif">')
            self.assertEqual(visit.faults(), [])
            self.assertEqual(len(visit.requests), 2)


class ServerTest(WebCase):
    def test_names_are_bytes(self):
        name = os.fsdecode(b"caf\xe9 ?#.txt")
        self.write(name, "here")
        self.assertEqual(self.web.fetch("caf%E9%20%3F%23.txt"), (200, b"here"))
        self.assertEqual(self.web.fetch("caf%C3%A9%20%3F%23.txt")[0], 404)

    def test_nothing_outside_the_folder_is_shown(self):
        (self.root / "below").mkdir()
        with WebCheck(self.root / "below") as web:
            self.write("secret.txt", "secret")
            for path in ("../secret.txt", "%2e%2e/secret.txt", "..%2Fsecret.txt", f"/{self.root}/secret.txt"):
                self.assertEqual(web.fetch(path)[0], 404, path)


class BrowserTest(unittest.TestCase):
    def test_nothing_of_it_is_left(self):
        with Chromium() as browser:
            session, profile = browser.process.pid, browser.profile.name
            browser.open_page("about:blank")
            self.assertGreater(len(processes_of(session)), 1)
        self.assertEqual(processes_of(session), [])
        self.assertFalse(os.path.exists(profile))


def processes_of(session):
    """Process ids of a session, without those that have ended."""
    found = []
    for stat in pathlib.Path("/proc").glob("[0-9]*/stat"):
        try:
            state, _, _, its_session = stat.read_text().rpartition(")")[2].split()[:4]
        except (FileNotFoundError, ProcessLookupError):
            continue
        if int(its_session) == session and state not in "ZX":
            found.append(int(stat.parent.name))
    return found


class KmlTest(WebCase):
    PUBLISHED = "http://www.maps.example/my maps"

    def setUp(self):
        super().setUp()
        self.write("set/0/0.png", PIXEL)
        self.write("set/0/0.kml", KML.format(ICON.format("0.png")))

    def broken(self, *links):
        self.write("set/doc.kml", KML.format("".join(LINK.format(link) for link in links)))
        return self.web.broken_kml_links("set/doc.kml", self.PUBLISHED)

    def test_links_that_lead_to_files_are_whole(self):
        self.assertEqual(self.broken("0/0.kml", f"{self.PUBLISHED}/set/0/0.kml", "../set/0/0.png"), [])
        self.assertEqual(
            [each.path for each in self.web.requests], ["/set/doc.kml", "/set/0/0.png", "/set/0/0.kml"]
        )

    def test_links_may_go_up_and_down(self):
        self.assertEqual(self.broken(f"{self.PUBLISHED}/set/../set/./0/0.kml"), [])
        for link in (f"{self.PUBLISHED}/set/../0/0.kml", f"{self.PUBLISHED}/../set/0/0.kml"):
            with self.subTest(link):
                self.assertEqual(len(self.broken(link)), 1)

    def test_a_ring_of_links_ends(self):
        self.assertEqual(self.broken("doc.kml", "../set/doc.kml"), [])

    def test_links_that_lead_nowhere_are_told(self):
        for link in (
            "none.kml",
            f"{self.PUBLISHED}/none/0.kml",
            "0/",
            "0",
            "",
            "../../set/0/0.kml",
            "http://elsewhere.example/0.kml",
            r"C:\maps\0.kml",
            "file:///etc/hostname",
        ):
            with self.subTest(link):
                broken = self.broken(link, "0/0.kml")
                self.assertEqual(len(broken), 1, broken)

    def test_links_of_linked_files_are_followed(self):
        self.write("set/0/0.kml", KML.format(LINK.format("1.kml")))
        self.write("set/0/1.kml", KML.format(ICON.format("none.png")))
        broken = self.broken("0/0.kml")
        self.assertEqual(len(broken), 1, broken)
        self.assertIn("/set/0/none.png in ", broken[0])

    def test_a_file_that_is_no_xml_is_told(self):
        self.write("set/0/0.kml", KML.format("<open>"))
        self.assertEqual(len(self.broken("0/0.kml")), 1)

    def test_a_missing_first_file_is_told(self):
        self.assertEqual(len(self.web.broken_kml_links("none.kml")), 1)


if __name__ == "__main__":
    unittest.main()
