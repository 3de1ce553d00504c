"""What a visitor can do with the page of a map, by mouse, finger, keyboard and screen reader, and what the
page does not offer where it cannot keep it."""

import json
import re
import unittest

from page_case import CONTROLS, LAPTOP, LOADED, PHONE, VIEWS, PageCase
from pyramid import Map, write_map

HERE = (48.14, 11.57)
OSM = "https://tile.openstreetmap.org/"
PIXEL = bytes.fromhex("47494638396101000100800000000000ffffff2c00000000010001000002024401003b")
MESSAGE = "document.querySelector('[role=status]').textContent"
LABELS = (
    CONTROLS + """.map(function (node) { return node.getAttribute("aria-label") || node.textContent; })"""
)
FINDS_NOTHING = """Object.defineProperty(navigator, "geolocation", {{value: {{
    getCurrentPosition: function (found, failed) {{ failed({{code: {code}}}); }} }} }});"""
# The contrast of each text with what is behind it, by the formula of WCAG.
CONTRASTS = """(function () {
    function channels(colour) { return colour.match(/[0-9.]+/g).map(Number); }
    function light(colour) {
        var parts = channels(colour).slice(0, 3).map(function (each) {
            each /= 255;
            return each <= 0.03928 ? each / 12.92 : Math.pow((each + 0.055) / 1.055, 2.4);
        });
        return 0.2126 * parts[0] + 0.7152 * parts[1] + 0.0722 * parts[2];
    }
    function behind(node) {
        for (; node; node = node.parentElement) {
            var colour = getComputedStyle(node).backgroundColor, alpha = channels(colour)[3];
            if (alpha === undefined || alpha >= 0.9) { return colour; }
        }
        return "rgb(255, 255, 255)";
    }
    return [].filter.call(document.body.querySelectorAll("*"), function (node) {
        return node.offsetWidth && node.firstChild && node.firstChild.nodeType === 3 &&
            node.textContent.trim();
    }).map(function (node) {
        var one = light(getComputedStyle(node).color) + 0.05, other = light(behind(node)) + 0.05;
        return [node.textContent, Math.max(one, other) / Math.min(one, other)];
    });
})()"""


class ControlsCase(PageCase):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        write_map(cls.root / "one", Map(HERE[1], HERE[0], title="Gravel pit"))

    def labels(self, tab):
        return tab.evaluate(LABELS)


class LinkTest(ControlsCase):
    def test_the_kml_is_the_one_for_the_place_of_the_page(self):
        disk_file, web_file = "googleearth_loc.kml", "googleearth_web.kml"
        for kml, on_disk, on_web in (
            ({"disk": disk_file, "web": web_file}, disk_file, web_file),
            ({"disk": disk_file, "web": None}, disk_file, None),
            ({"disk": None, "web": web_file}, web_file, web_file),
            ({"disk": None, "web": None}, None, None),
            ({"disk": "a #1%.kml", "web": "ä b.kml"}, "a%20%231%25.kml", "%C3%A4%20b.kml"),
        ):
            folder = f"kml {len(list(self.root.iterdir()))}"
            write_map(self.root / folder, Map(HERE[1], HERE[0], metres=60, kml=kml))
            for disk, expected in ((True, on_disk), (False, on_web)):
                with self.subTest(kml=kml, disk=disk):
                    tab = self.open(f"{folder.replace(' ', '%20')}/leaflet.html", disk)
                    links = tab.evaluate(
                        """[].filter.call(document.links, function (each) {
                        return /Google Earth/.test(each.textContent); }).map(function (each) {
                        return each.getAttribute("href"); })"""
                    )
                    self.assertEqual(links, [expected] if expected else [])


class BackgroundTest(ControlsCase):
    BUTTON = "[...document.querySelectorAll('button')].find((each) => /OpenStreetMap/.test(each.textContent))"

    def asked(self, tab):
        requests = [each["request"] for method, each in tab.events() if method == "Network.requestWillBeSent"]
        return [each for each in requests if each["url"].startswith(OSM)]

    def test_it_is_asked_for_after_a_click_and_no_sooner(self):
        tab = self.open("one/leaflet.html", stand_ins={OSM + "*": ("image/gif", PIXEL)})
        credits = "document.querySelector('.credits').textContent"
        self.assertEqual(self.asked(tab), [])
        self.assertNotIn("OpenStreetMap", tab.evaluate(credits))
        tab.evaluate(f"{self.BUTTON}.id = 'background'")
        tab.click("#background")
        tab.settle()
        asked = self.asked(tab)
        self.assertGreater(len(asked), 0)
        for each in asked:
            self.assertRegex(each["url"], rf"^{re.escape(OSM)}\d+/\d+/\d+\.png$")
            self.assertEqual(each["headers"].get("Referer"), self.origin + "/", "its owner wants to know")
        self.assertEqual(self.complaints(tab, [OSM]), [])
        self.assertIn("© OpenStreetMap contributors", tab.evaluate(credits))
        link = "document.querySelector('.credits a[href*=copyright]').href"
        self.assertEqual(tab.evaluate(link), "https://www.openstreetmap.org/copyright")
        self.assertEqual(tab.evaluate(f"{self.BUTTON}.textContent"), "Hide OpenStreetMap")
        tab.click("#background")
        self.assertNotIn("OpenStreetMap", tab.evaluate(credits))
        self.assertEqual(tab.evaluate(f"{self.BUTTON}.getAttribute('aria-pressed')"), "false")

    def test_the_page_stays_usable_when_it_does_not_come(self):
        tab = self.open("one/leaflet.html")
        tab.evaluate(f"{self.BUTTON}.click()")
        tab.wait_for(f"{MESSAGE}.indexOf('background map cannot be loaded') > 0")
        tab.settle()
        shown = "[].filter.call(document.images, (each) => each.naturalWidth == 256).length"
        self.assertGreater(tab.evaluate(shown), 0)
        tab.click(".message button")
        self.assertEqual(tab.evaluate(MESSAGE), "")

    def test_without_network_it_is_not_offered(self):
        tab = self.open("one/leaflet.html")
        self.assertEqual(tab.evaluate(f"{self.BUTTON}.disabled"), False)
        tab.set_offline(True)
        tab.wait_for(f"{self.BUTTON}.disabled")
        self.assertEqual(tab.evaluate(f"{self.BUTTON}.textContent"), "OpenStreetMap needs the internet")
        tab.set_offline(False)
        tab.wait_for(f"!{self.BUTTON}.disabled")

    def test_from_a_disk_it_is_explained(self):
        tab = self.open("one/leaflet.html", disk=True)
        self.assertIsNone(tab.evaluate(f"{self.BUTTON} || null"))
        self.assertIn("when this page is on a web site", tab.evaluate("document.body.innerText"))


class OwnPositionTest(ControlsCase):
    BUTTON = "button[aria-label='Where am I?']"

    def ask(self, latitude, longitude):
        tab = self.open("one/leaflet.html")
        permission = {"origin": self.origin, "permissions": ["geolocation"]}
        self.browser.call("Browser.grantPermissions", **permission)
        self.addCleanup(self.browser.call, "Browser.resetPermissions")
        tab.call("Emulation.setGeolocationOverride", latitude=latitude, longitude=longitude, accuracy=12)
        tab.click(self.BUTTON)
        tab.wait_for(f"/blue dot/.test({MESSAGE})")
        self.assertEqual(self.complaints(tab), [])
        return tab

    def test_it_is_shown_with_its_accuracy(self):
        tab = self.ask(HERE[0] + 0.001, HERE[1] + 0.001)
        self.assertEqual(tab.evaluate(MESSAGE), "The blue dot shows where you are, within about 12 m.")
        tab.wait_for("Math.abs(Mosaicon.map.getCenter().lat - 48.141) < 1e-4")
        boxes = "[document.querySelector('svg path[stroke=\"#0b4f9e\"]').getBBox().width]"
        metres = "1 / Mosaicon.map.distance(*)".replace(
            "*",
            "Mosaicon.map.containerPointToLatLng([0, 300]), Mosaicon.map.containerPointToLatLng([1, 300])",
        )
        self.assertAlmostEqual(tab.evaluate(boxes)[0], 24 * tab.evaluate(metres), delta=3)

    def test_one_outside_is_shown_together_with_the_map(self):
        tab = self.ask(HERE[0] + 0.05, HERE[1])
        self.assertIn("You are outside this map.", tab.evaluate(MESSAGE))
        both = f"Mosaicon.map.getBounds().contains([{HERE[0] + 0.05}, {HERE[1]}])"
        tab.wait_for(f"{both} && Mosaicon.map.getBounds().contains(Mosaicon.infos[0].area)")

    def test_what_fails_is_said(self):
        for code, words in ((1, "not allowed"), (2, "cannot find"), (3, "too long")):
            with self.subTest(code):
                tab = self.open("one/leaflet.html", scripts=[FINDS_NOTHING.format(code=code)])
                tab.click(self.BUTTON)
                self.assertIn(words, tab.evaluate(MESSAGE))

    def test_it_is_offered_only_where_it_works(self):
        unsafe = "Object.defineProperty(window, 'isSecureContext', {value: false})"
        unable = "Object.defineProperty(navigator, 'geolocation', {value: undefined})"
        for scripts, disk, offered in (
            ([], False, 1),
            ([unsafe], False, 0),
            ([unable], False, 0),
            ([], True, 0),
        ):
            with self.subTest(scripts=scripts, disk=disk):
                tab = self.open("one/leaflet.html", disk, scripts=scripts)
                self.assertEqual(tab.evaluate(f'document.querySelectorAll("{self.BUTTON}").length'), offered)
                self.assertEqual(self.complaints(tab), [])


class WindowTest(ControlsCase):
    def test_full_screen_is_offered_where_there_is_one(self):
        tab = self.open("one/leaflet.html")
        tab.click("button[title='Full screen']")
        tab.wait_for("document.fullscreenElement === document.documentElement")
        tab.wait_for(
            "document.querySelector(\"button[title='Full screen']\").getAttribute('aria-pressed') == 'true'"
        )
        tab.click("button[title='Full screen']")
        tab.wait_for("!document.fullscreenElement")
        never = "Object.defineProperty(document, 'fullscreenEnabled', {value: false});"
        never += "Object.defineProperty(document, 'webkitFullscreenEnabled', {value: false});"
        tab = self.open("one/leaflet.html", scripts=[never])
        self.assertNotIn("Full screen", self.labels(tab))
        self.assertIn("Zoom in", self.labels(tab))

    def test_who_wants_no_movement_gets_none(self):
        options = "[Mosaicon.map.options.zoomAnimation, Mosaicon.map.options.fadeAnimation]"
        tab = self.open("one/leaflet.html")
        self.assertEqual(tab.evaluate(options), [True, True])
        reduced = [{"name": "prefers-reduced-motion", "value": "reduce"}]
        tab.call("Emulation.setEmulatedMedia", features=reduced)
        tab.go(f"{self.origin}/one/leaflet.html")
        self.assertEqual(tab.evaluate(options), [False, False])

    def test_the_sheet_is_filled_and_everything_comes_back(self):
        note = """window.print = function () { window.printed = {
            loading: Mosaicon.infos[0].layer.isLoading(), size: Mosaicon.map.getSize(),
            seen: Mosaicon.map.getBounds().contains(window.before) };
            window.dispatchEvent(new Event("afterprint")); };"""
        state = "[Mosaicon.map.getSize(), Mosaicon.map.getZoom(), Mosaicon.map.getCenter()]"
        for view, size in ((LAPTOP, [960, 590]), (PHONE, [700, 860])):
            with self.subTest(view):
                tab = self.open("one/leaflet.html", view=view, scripts=[note])
                if view is PHONE:
                    tab.evaluate("void Mosaicon.map.setZoom(17, {animate: false})")
                before = tab.evaluate(f"window.before = Mosaicon.map.getBounds().pad(-0.01); {state}")
                tab.evaluate(
                    "[...document.querySelectorAll('button')].find((e) => e.textContent == 'Print').click()"
                )
                printed = tab.wait_for("window.printed")
                self.assertEqual(printed["loading"], False)
                self.assertEqual([printed["size"]["x"], printed["size"]["y"]], size)
                self.assertTrue(printed["seen"], "all that was in the window")
                after = tab.evaluate(state)
                self.assertEqual(after[:2], before[:2])
                for axis in ("lat", "lng"):
                    self.assertAlmostEqual(after[2][axis], before[2][axis], places=6)
                self.assertEqual(self.complaints(tab), [])

    def test_it_prints_on_one_sheet_without_controls(self):
        for view, landscape in ((LAPTOP, True), (PHONE, False)):
            with self.subTest(view):
                tab = self.open("one/leaflet.html", view=view)
                size = tab.evaluate("Mosaicon.map.getSize()")
                pdf = tab.print_to_pdf()
                self.assertEqual(len(re.findall(rb"/Type\s*/Page\b", pdf)), 1)
                width, height = (
                    float(each) for each in re.search(rb"/MediaBox \[0 0 (\S+) (\S+)\]", pdf).groups()
                )
                self.assertEqual(width > height, landscape)
                self.assertEqual(tab.evaluate("Mosaicon.map.getSize()"), size)
                tab.call("Emulation.setEmulatedMedia", media="print")
                shown = "[...document.querySelectorAll('*')].filter((each) => each.offsetWidth)"
                shown += ".map((each) => each.className)"
                shown = {str(each).split(" ")[0] for each in tab.evaluate(shown)}
                self.assertFalse(shown & {"tools", "panel", "button", "position", "message"}, shown)
                self.assertTrue({"leaflet-control-scale", "credits", "map"} <= shown, shown)
                self.assertIn("Gravel pit", tab.evaluate("document.body.innerText"))


class AccessTest(ControlsCase):
    def test_the_tab_key_reaches_every_control_and_shows_where_it_is(self):
        for view in VIEWS:
            with self.subTest(view):
                tab = self.open("one/leaflet.html", view=view)
                wanted, reached = set(self.labels(tab)), []
                for _ in range(len(wanted) + 2):
                    tab.press("Tab")
                    reached.append(
                        tab.evaluate(
                            """(function (node) {
                        var ring = getComputedStyle(node, node.id === "map" ? "::after" : null);
                        return [node.getAttribute("aria-label") || node.textContent,
                            node.id === "map" ? ring.borderTopWidth : ring.outlineWidth];
                    })(document.activeElement)"""
                        )
                    )
                self.assertGreaterEqual(len(wanted), 7)
                self.assertEqual(wanted - {label for label, _ in reached}, set())
                self.assertEqual({ring for label, ring in reached if label in wanted}, {"3px"})

    def test_keys_press_buttons_and_move_the_map(self):
        tab = self.open("one/leaflet.html")
        zoom = tab.evaluate("Mosaicon.map.getZoom()")
        tab.evaluate("document.querySelector(\"[aria-label='Zoom out']\").focus()")
        tab.press("Enter")
        tab.wait_for(f"Mosaicon.map.getZoom() == {zoom - 1}")
        tab.settle()
        tab.evaluate("document.querySelector('.toggle').focus()")
        tab.press(" ")
        self.assertEqual(
            tab.evaluate("document.querySelector('.toggle').getAttribute('aria-expanded')"), "false"
        )
        tab.evaluate("Mosaicon.nodes.map.focus()")
        tab.press("+")
        tab.wait_for(f"Mosaicon.map.getZoom() == {zoom}")
        centre = tab.evaluate("Mosaicon.map.getCenter().lng")
        tab.press("ArrowRight")
        tab.wait_for(f"Mosaicon.map.getCenter().lng > {centre}")
        tab.evaluate("document.querySelector(\"[aria-label='Show the whole map']\").focus()")
        tab.press("Enter")
        tab.wait_for("Mosaicon.map.getBounds().contains(Mosaicon.infos[0].area)")

    def test_limits_of_zooming_are_told(self):
        tab = self.open("one/leaflet.html")
        state = "['in', 'out'].map((each) => document.querySelector(`[aria-label='Zoom ${each}']`)"
        state += ".getAttribute('aria-disabled'))"
        for zoom, expected in ((30, ["true", "false"]), (0, ["false", "true"]), (17, ["false", "false"])):
            tab.evaluate(f"void Mosaicon.map.setZoom({zoom}, {{animate: false}})")
            tab.wait_for(LOADED)
            self.assertEqual(tab.evaluate(state), expected)

    def test_screen_readers_hear_what_each_control_is(self):
        tab = self.open("one/leaflet.html")
        tab.call("Accessibility.enable")
        found = {}
        for node in tab.call("Accessibility.getFullAXTree")["nodes"]:
            states = {each["name"]: each["value"].get("value") for each in node.get("properties", [])}
            if states.get("focusable") and node["role"]["value"] != "RootWebArea":
                found[node["name"]["value"]] = node["role"]["value"]
        self.assertNotIn("", found)
        expected = {"Options": "button", "Zoom in": "button", "Opacity": "slider", "Print": "button"}
        expected |= {"Open in Google Earth": "link", "Show OpenStreetMap": "button", "Where am I?": "button"}
        self.assertEqual(found, {**found, **expected})
        self.assertEqual(tab.evaluate("document.documentElement.lang"), "en")
        live = "document.querySelector('[role=status]').getAttribute('aria-live')"
        self.assertEqual(tab.evaluate(live), "polite")

    def test_texts_stand_out_and_fingers_find_the_controls(self):
        for disk in (True, False):
            tab = self.open("one/leaflet.html", disk, PHONE)
            tab.click(".toggle")
            tab.evaluate("Mosaicon.say('A message')")
            contrasts = tab.evaluate(CONTRASTS)
            self.assertGreater(len(contrasts), 8)
            self.assertEqual([each for each in contrasts if each[1] < 4.5], [])
            sizes = tab.evaluate(
                CONTROLS.replace("a[href]", "a.button")
                + """.map(function (node) {
                return [node.textContent || node.title, node.offsetWidth, node.offsetHeight]; })"""
            )
            self.assertEqual([each for each in sizes if min(each[1:]) < 44], [], json.dumps(sizes))

    def test_the_page_may_be_enlarged(self):
        tab = self.open("one/leaflet.html", view=PHONE)
        viewport = tab.evaluate("document.querySelector('meta[name=viewport]').content")
        self.assertEqual(viewport, "width=device-width, initial-scale=1")


if __name__ == "__main__":
    unittest.main()
