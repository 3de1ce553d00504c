"""What kml_ats.py finds: for each test of the suite a file that breaks it and one that keeps it."""

import contextlib
import io
import pathlib
import sys
import tempfile
import unittest
import zipfile

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent))
from kml_ats import CHECKS, NOT_APPLICABLE
from kml_rules import faults, main, rules
from kml_samples import HEAD, ICON, LIST, PLACE, SIDES
from kml_samples import camera, document, link, lod, look, overlay, region, style, style_map

PNG = b"\x89PNG\r\n\x1a\n"
STYLED = "<styleUrl>#s</styleUrl>" + style(LIST)
TO_S = "<styleUrl>#s</styleUrl>"
NORMAL, HIGHLIGHT = (f"<key>{key}</key>{TO_S}" for key in ("normal", "highlight"))
OPAQUE = "<altitudeMode>absolute</altitudeMode>"
PIXELS = "<minLodPixels>{}</minLodPixels><maxLodPixels>{}</maxLodPixels>"
STOP, INTERVAL = "<viewRefreshMode>onStop</viewRefreshMode>", "<refreshMode>onInterval</refreshMode>"


def item_icon(content, attribute=""):
    return style(f"<ListStyle><ItemIcon{attribute}>{content}</ItemIcon></ListStyle>")


# Number; what keeps it; what breaks it, and no other; the beginning of the sentence, after the line.
MUST = [
    (4, "<TimeSpan><end>2026</end></TimeSpan>", "<TimeSpan id='a'/>", "TimeSpan: has neither"),
    (
        4,
        "<TimeSpan><begin>2026-01-01T00:00:00+01:00</begin><end>2026</end></TimeSpan>",
        "<TimeSpan><begin>2026-01-01T00:00:00-01:00</begin><end>2026</end></TimeSpan>",
        "TimeSpan: does not begin before its end",
    ),
    (5, "<TimeStamp><when>2026</when></TimeStamp>", "<TimeStamp id='a'/>", "TimeStamp: has no when"),
    (6, STYLED, "<styleUrl>#t</styleUrl>" + style(LIST), "styleUrl: '#t' leads to no style"),
    (6, STYLED, "<styleUrl>s</styleUrl>" + style(LIST), "styleUrl: 's' has no fragment"),
    (6, STYLED, "<styleUrl>#f</styleUrl><Folder id='f'><name/></Folder>", "styleUrl: '#f' leads to no style"),
    (
        6,
        "<styleUrl>http://a/b#s</styleUrl>",
        "<styleUrl>ftp://a/b#s</styleUrl>",
        "styleUrl: 'ftp://a/b#s' is",
    ),
    (7, style(LIST), style(LIST, ""), "Style: is of a Document, and so shared, but has no id"),
    (7, style_map(NORMAL, HIGHLIGHT), style_map(NORMAL, HIGHLIGHT, ""), "StyleMap: is of a Document"),
    (
        7,
        STYLED + f"<Folder>{style(LIST, '')}</Folder>",
        TO_S + f"<Folder>{style(LIST)}</Folder>",
        "Style: is shared as 's', but is not of a Document",
    ),
    (
        8,
        region("<north>2</north><south>1</south>"),
        region("<north>1</north><south>1</south>"),
        "LatLonAltBox: north",
    ),
    (8, region("<east>2</east><west>1</west>"), region("<east>1</east><west>1</west>"), "LatLonAltBox: east"),
    (
        8,
        region(f"<minAltitude>2</minAltitude><maxAltitude>2</maxAltitude>{OPAQUE}"),
        region(f"<minAltitude>2</minAltitude><maxAltitude>1</maxAltitude>{OPAQUE}"),
        "LatLonAltBox: minAltitude is above",
    ),
    (
        8,
        region("<maxAltitude>2</maxAltitude>"),
        region("<minAltitude>1</minAltitude><maxAltitude>2</maxAltitude>"),
        "LatLonAltBox: has altitudes, but is clampToGround",
    ),
    *(
        (
            9,
            link(f"{before}<{name}>0.1</{name}>"),
            link(f"{before}<{name}>0</{name}>"),
            f"Link: {name} is not above 0",
        )
        for before, name in ((INTERVAL, "refreshInterval"), (STOP, "viewRefreshTime"), ("", "viewBoundScale"))
    ),
    (11, overlay(), overlay("<north>2</north><south>1</south><east>2</east>"), "LatLonBox: has no west"),
    (11, overlay(), overlay(SIDES.replace("<north>2", "<north>1")), "LatLonBox: north 1.0 is not above"),
    (11, overlay(), overlay(SIDES.replace("<west>1", "<west>2")), "LatLonBox: east 2.0 is not above"),
    (21, "<NetworkLink id='a'/>", "<NetworkLink> </NetworkLink>", "NetworkLink: is empty"),
    (
        33,
        overlay(more=f"<altitude>3</altitude>{OPAQUE}"),
        overlay(more=OPAQUE),
        "GroundOverlay: is absolute, but has no",
    ),
    (36, style_map(NORMAL, HIGHLIGHT), style_map(TO_S, HIGHLIGHT), "Pair: has no key"),
    (36, style_map(NORMAL, HIGHLIGHT), style_map("<key/>", HIGHLIGHT), "Pair: has none of styleUrl"),
    (37, item_icon("<href>a</href>"), item_icon("", " id='a'"), "ItemIcon: has no href"),
    (38, look("<range>1</range>"), look("<tilt>0</tilt>"), "LookAt: has no range"),
    (38, look("<range>1</range>"), look("<range>1</range>", "<latitude/>"), "LookAt: has no longitude"),
    (38, look("<range>1</range>"), look("<range>1</range>", "<longitude/>"), "LookAt: has no latitude"),
    (
        38,
        look("<tilt>90</tilt><range/>"),
        look("<tilt>91</tilt><range/>"),
        "LookAt: its tilt is not from 0 to 90",
    ),
    (
        38,
        look(f"<range>1</range>{OPAQUE}", PLACE + "<altitude/>"),
        look(f"<range>1</range>{OPAQUE}"),
        "LookAt: is not clampToGround",
    ),
    (39, lod(PIXELS.format(4, 5)), lod("<maxLodPixels>5</maxLodPixels>"), "Lod: has no minLodPixels"),
    (39, lod(PIXELS.format(5, -1)), lod(PIXELS.format(5, 5)), "Lod: minLodPixels are not less"),
    (40, link(), "<NetworkLink><Link><refreshMode/></Link></NetworkLink>", "Link: has no href"),
    (40, overlay(), overlay(icon="<Icon><refreshMode/></Icon>"), "Icon: has no href"),
    (
        41,
        lod("<minLodPixels/>"),
        "<Region><Lod><minLodPixels/></Lod></Region>",
        "Region: has no LatLonAltBox",
    ),
    (41, region(SIDES), f"<Region><LatLonAltBox>{SIDES}</LatLonAltBox></Region>", "Region: has no Lod"),
]
SHOULD = [
    (
        46,
        link("<viewFormat>BBOX=[bboxWest]</viewFormat>"),
        link("<viewFormat/>"),
        "viewFormat: has no parameter",
    ),
    (
        47,
        link("<httpQuery>a=[language]</httpQuery>"),
        link("<httpQuery>a=[b]</httpQuery>"),
        "httpQuery: has no",
    ),
    (
        51,
        link(INTERVAL + "<refreshInterval/>"),
        link("<refreshInterval/>"),
        "Link: has a refreshInterval, but its refreshMode is not onInterval",
    ),
    (
        51,
        link(STOP + "<viewRefreshTime/>"),
        link("<viewRefreshMode>onRegion</viewRefreshMode><viewRefreshTime/>"),
        "Link: has a viewRefreshTime, but its viewRefreshMode is not onStop",
    ),
    (53, overlay(), f"<GroundOverlay>{ICON}</GroundOverlay>", "GroundOverlay: has no LatLonBox"),
    (54, camera(PLACE + "<altitude/>"), camera(PLACE), "Camera: has no altitude"),
    (54, camera(PLACE + "<altitude/>"), camera("<latitude/><altitude/>"), "Camera: has no longitude"),
    (54, camera(PLACE + "<altitude/>"), camera("<longitude/><altitude/>"), "Camera: has no latitude"),
    (54, camera(PLACE + "<altitude/>"), f"<Camera>{PLACE}<altitude/></Camera>", "Camera: is clampToGround"),
    (56, overlay(), overlay(icon=""), "GroundOverlay: has no Icon"),
    (
        58,
        style("<BalloonStyle><text/></BalloonStyle>"),
        style("<BalloonStyle id='a'/>"),
        "BalloonStyle: is empty",
    ),
    (59, "<ExtendedData><a xmlns='b'/></ExtendedData>", "<ExtendedData/>", "ExtendedData: is empty"),
    (60, "<Folder><name/></Folder>", "<Folder id='a'/>", "Folder: is empty"),
    (61, style("<IconStyle><scale/></IconStyle>"), style("<IconStyle id='a'/>"), "IconStyle: is empty"),
    (64, style(LIST), style("<ListStyle><maxSnippetLines/></ListStyle>"), "ListStyle: has none of"),
    (65, style(LIST), style(""), "Style: is empty"),
    (68, style_map(HIGHLIGHT, NORMAL), style_map(NORMAL, NORMAL), "StyleMap: has not one Pair for normal"),
]
MAY = [
    (
        71,
        style("<BalloonStyle><bgColor/></BalloonStyle>"),
        style("<BalloonStyle><color/></BalloonStyle>"),
        "color: is deprecated",
    ),
    (72, "<ExtendedData><a xmlns='b'/></ExtendedData>", "<Metadata/>", "Metadata: is deprecated"),
    (
        74,
        lod(PIXELS.format(1, 5) + "<minFadeExtent>2</minFadeExtent><maxFadeExtent>2</maxFadeExtent>"),
        lod(PIXELS.format(1, 5) + "<minFadeExtent>2</minFadeExtent><maxFadeExtent>3</maxFadeExtent>"),
        "Lod: fades over more pixels",
    ),
    (
        74,
        lod(PIXELS.format(1, -1) + "<minFadeExtent>9</minFadeExtent>"),
        lod(PIXELS.format(1, 9) + "<minFadeExtent>9</minFadeExtent>"),
        "Lod: fades over more pixels",
    ),
    (76, "<snippet>a</snippet>", "<Snippet>a</Snippet>", "Snippet: is deprecated"),
    (77, link(), "<NetworkLink><Url><href>a</href></Url></NetworkLink>", "Url: is deprecated"),
]
DERIVED = [
    (
        overlay(SIDES.replace("<north>2", "<north>90")),
        overlay(SIDES.replace("<north>2", "<north>91")),
        "north: 91",
    ),
    (lod(PIXELS.format(0, -1)), lod(PIXELS.format(-1, -1)), "minLodPixels: -1 is negative"),
    (look("<range>0</range>"), look("<range>-1</range>"), "range: -1 is negative"),
    (link(href="a%20ü.kml"), link(href="a b.kml"), "href: 'a b.kml' has ' '"),
    (link(href="../a&amp;b'.kml"), link(href="..\\a.kml"), "href: '..\\a.kml' has '\\'"),
    (link(href="100%25.kml"), link(href="100%.kml"), "href: '100%.kml' has '%'"),
    (link(href="a.kml#b"), link(href="a#b#c"), "href: 'a#b#c' has '#b#'"),
    (link(), link(href=" "), "href: is empty"),
]
OF_THEIR_OWN = {1, 2, 10, 18, 45}  # tested by name below; 2 in kml_schema_test.py


class Rules(unittest.TestCase):
    def check(self, rule, good, bad, sentence):
        with self.subTest(rule, bad=bad):
            self.assertEqual(faults(document(good)), [])
            found = faults(document(bad))
            self.assertEqual(len(found), 1, found)
            self.assertTrue(found[0].startswith(f"{rule}, line 3, {sentence}"), found)

    def test_suite(self):
        for number, *case in MUST + SHOULD + MAY:
            self.check(f"ATC {number}", *case)

    def test_what_is_derived(self):
        for case in DERIVED:
            self.check("derived", *case)

    def test_whole_suite_is_here_and_tested(self):
        self.assertEqual(
            sorted([*NOT_APPLICABLE, *(number for number in CHECKS if number != "derived")]),
            list(range(1, 78)),
        )
        tested = OF_THEIR_OWN.union(number for number, *_ in MUST + SHOULD + MAY)
        self.assertEqual(tested, CHECKS.keys() - {"derived"})

    def test_root(self):
        wrong = '<kml xmlns="http://earth.google.com/kml/2.1"><Folder/></kml>'
        self.assertEqual(
            faults(wrong), ["ATC 1, line 1, kml: the root is no kml of http://www.opengis.net/kml/2.2"]
        )
        self.assertEqual(faults(f"{HEAD}<Folder><name/></Folder></kml>"), [])
        self.assertEqual(faults(f"{HEAD}</kml>"), ["ATC 45, line 1, kml: has no feature"])

    def test_an_update_need_not_be_complete(self):
        def change(content):
            update = f"<Update><targetHref>http://a</targetHref><Change>{content}</Change></Update>"
            return f"{HEAD}<NetworkLinkControl>{update}</NetworkLinkControl></kml>"

        content = "<Lod/><Region/><Link/><Icon/><Style/><Folder/><LookAt/><Pair/><ItemIcon/><GroundOverlay/>"
        self.assertEqual(faults(change(content)), [])
        self.assertEqual(len(faults(change("<TimeStamp/>"))), 1)

    def resolved(self, content, there):
        asked = []

        def resolve(href, length):
            asked.append((href, length))
            if there is None:
                raise LookupError(href)
            return there.get(href)

        return faults(document(content), resolve), asked

    def test_a_network_link_leads_to_kml(self):
        packed = io.BytesIO()
        with zipfile.ZipFile(packed, "w") as archive:
            archive.writestr("files/a.png", PNG)
            archive.writestr("doc.kml", document("<name/>"))
        for good in (document("<name/>").encode(), packed.getvalue()):
            self.assertEqual(self.resolved(link(), {"a.kml": good}), ([], [("a.kml", -1)]))
        empty = io.BytesIO()
        zipfile.ZipFile(empty, "w").close()
        for bad in (PNG, b"", b"<html/>", b"PK\3\4", empty.getvalue()):
            found, _ = self.resolved(link(), {"a.kml": bad})
            self.assertEqual(found, ["ATC 10, line 3, href: 'a.kml' is no KML file"], bad)
        self.assertEqual(self.resolved(link(), {})[0], ["ATC 10, line 3, href: there is no 'a.kml'"])
        self.assertEqual(self.resolved(link(), None)[0], [])

    def test_an_icon_is_an_image(self):
        for good in (PNG, b"\xff\xd8\xff\xe0", b"GIF89a"):
            self.assertEqual(self.resolved(overlay(), {"a.png": good}), ([], [("a.png", 16)]))
        in_style = style(f"<IconStyle>{ICON}</IconStyle>")
        for content in (overlay(), in_style):
            found, _ = self.resolved(content, {"a.png": b"<kml/>"})
            self.assertEqual(found, ["ATC 18, line 3, href: 'a.png' is no image"])
            self.assertEqual(self.resolved(content, {})[0], ["ATC 18, line 3, href: there is no 'a.png'"])

    def test_a_style_may_be_in_another_file(self):
        content = "<styleUrl>a.kml#s</styleUrl>"
        self.assertEqual(faults(document(content)), [])
        self.assertEqual(self.resolved(content, {"a.kml": document(style(LIST)).encode()})[0], [])
        for there in ({}, {"a.kml": PNG}, {"a.kml": document("<name/>").encode()}):
            found, _ = self.resolved(content, there)
            self.assertEqual(found, ["ATC 6, line 3, styleUrl: 'a.kml#s' leads to no style"])

    def test_by_hand(self):
        with tempfile.TemporaryDirectory() as folder:
            path = pathlib.Path(folder) / "a.kml"
            told = io.StringIO()
            with contextlib.redirect_stdout(told):
                path.write_text(document("<name/>"))
                self.assertEqual(main([str(path)]), 0)
                path.write_text(document(link()))
                self.assertEqual(main([str(path)]), 0)
                self.assertEqual(main(["--overlay", str(path)]), 1)
                self.assertEqual(main(["--rules"]), 0)
        self.assertIn("leads back: a circle", told.getvalue())
        self.assertEqual(told.getvalue().splitlines()[-len(rules()) :], rules())


if __name__ == "__main__":
    unittest.main()
