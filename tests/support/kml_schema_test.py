"""What kml_schema.py finds: for each rule a file that breaks it and one that keeps it."""

import pathlib
import sys
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent))
import kml_schema
from kml_rules import faults
from kml_samples import HEAD, ICON, LIST, document, link, lod, look, overlay, style
from kml_tree import parse


def data(content):
    return f"<ExtendedData>{content}</ExtendedData>"


def stamp(when):
    return f"<TimeStamp><when>{when}</when></TimeStamp>"


# What keeps a rule; what breaks it; and the beginning of the one sentence that tells it, after the line.
ORDER = [
    ("<name>a</name>", "<nome>a</nome>", "nome: may not stand in Document"),
    ("<name>a</name><open>1</open>", "<open>1</open><name>a</name>", "name: must stand before open"),
    ("<name>a</name>", "<name>a</name><name>b</name>", "name: stands in Document more than once"),
    ("<snippet/>", "<snippet/><snippet/>", "snippet: stands in Document more than once"),
    ("<snippet/>", "<snippet/><Snippet/>", "Snippet: stands in Document more than once"),
    (overlay(), overlay(more="<drawOrder/>"), "drawOrder: must stand before Icon in GroundOverlay"),
    (overlay(), overlay(icon="<altitude/>" + ICON), "Icon: must stand before altitude"),
    (
        lod("<minLodPixels/><maxLodPixels/>"),
        lod("<maxLodPixels/><minLodPixels/>"),
        "minLodPixels: must stand be",
    ),
    (
        "<visibility/>" + style(LIST),
        style(LIST) + "<visibility/>",
        "visibility: must stand before StyleSelector",
    ),
    (data("<a xmlns='b'/>"), "<a xmlns='b'/>", "a: may not stand in Document"),
    (data("<a xmlns='b'/>"), data("<name/>"), "name: may not stand in ExtendedData"),
    (
        "<Metadata><name/></Metadata>",
        "<Metadata><nome/></Metadata><name/>",
        "name: must stand before Metadata",
    ),
    (data("<Data><value/></Data>"), data("<Data><displayName/></Data>"), "Data: has no value"),
    (
        style("<IconStyle><Icon><href>a</href></Icon></IconStyle>"),
        style("<IconStyle><Icon><refreshMode/></Icon></IconStyle>"),
        "refreshMode: may not stand in Icon",
    ),
    (
        "<author xmlns='http://www.w3.org/2005/Atom'/>",
        "<author xmlns='http://www.w3.org/2005/Atom'/><name/>",
        "name: must stand before atom:author",
    ),
]
TEXT = [
    (style(LIST), style("text" + LIST), "Style: has the text 'text' beside its elements"),
    ("<name>a</name>", "<name>a<open>1</open></name>", "open: may not stand in name"),
    ("<open>true</open>", "<open>yes</open>", "open: 'yes' is no boolean"),
    ("<open/>", "<open> </open>", "open: ' ' is no boolean"),
    (stamp("2026"), "<TimeStamp><when/></TimeStamp>", "when: '' is no time"),
    (stamp("2026-02"), stamp("2026-13"), "when: '2026-13' is no time"),
    (stamp("2026-02-03"), stamp("2026-02-32"), "when: '2026-02-32' is no time"),
    (stamp("2026-02-03T04:05:06.7+01:00"), stamp("2026-02-03T04:05"), "when: '2026-02-03T04:05' is no time"),
    (
        link("<refreshMode>onChange</refreshMode>"),
        link("<refreshMode> onChange</refreshMode>"),
        "refreshMode: ' onChange' is no one of onChange, onInterval, onExpire",
    ),
    (
        link("<viewRefreshMode>onRegion</viewRefreshMode>"),
        link("<viewRefreshMode>onregion</viewRefreshMode>"),
        "viewRefreshMode: 'onregion' is no",
    ),
    (
        style("<ListStyle><listItemType>checkHideChildren</listItemType></ListStyle>"),
        style("<ListStyle><listItemType>hide</listItemType></ListStyle>"),
        "listItemType: 'hide' is no",
    ),
    (
        lod("<minLodPixels> 1e1 </minLodPixels>"),
        lod("<minLodPixels>1_0</minLodPixels>"),
        "minLodPixels: '1_0' is",
    ),
    (
        lod("<maxLodPixels>INF</maxLodPixels>"),
        lod("<maxLodPixels>inf</maxLodPixels>"),
        "maxLodPixels: 'inf' is no",
    ),
    (
        overlay(icon="<drawOrder>-3</drawOrder>"),
        overlay(icon="<drawOrder>3.5</drawOrder>"),
        "drawOrder: '3.5' is",
    ),
    (
        overlay(icon="<drawOrder>2147483647</drawOrder>"),
        overlay(icon="<drawOrder>2147483648</drawOrder>"),
        "drawOrder: '2147483648' is no int",
    ),
    (
        overlay(icon="<color>7fFfffff</color>"),
        overlay(icon="<color>fffffff</color>"),
        "color: 'fffffff' is no color",
    ),
    (
        look("<heading>-360</heading>"),
        look("<heading>361</heading>"),
        "heading: '361' is no number from -360 to",
    ),
    (look("<tilt>180</tilt>"), look("<tilt>-1</tilt>"), "tilt: '-1' is no number from 0 to 180"),
    (look(""), look("", "<longitude>181</longitude>"), "longitude: '181' is no number from -180 to 180"),
    (look(""), look("", "<latitude>-91</latitude>"), "latitude: '-91' is no number from -90 to 90"),
    (overlay(), overlay("<east>-180.1</east>"), "east: '-180.1' is no number"),
    ("<styleUrl>a b#c</styleUrl>", "<styleUrl>#a#b</styleUrl>", "styleUrl: '#a#b' is no anyURI"),
    (
        style("<ListStyle><ItemIcon><state>open error</state></ItemIcon></ListStyle>"),
        style("<ListStyle><ItemIcon><state>open shut</state></ItemIcon></ListStyle>"),
        "state: 'open shut' is no state",
    ),
    (
        style("<IconStyle><hotSpot/></IconStyle>"),
        style("<IconStyle><hotSpot>1</hotSpot></IconStyle>"),
        "hotSpot: '1' is no vector",
    ),
]
ATTRIBUTES = [
    ("<name/>", "<name id='a'/>", "name: has no attribute id"),
    ("<Folder id='a' targetId='b'/>", "<Folder ID='a'/>", "Folder: has no attribute ID"),
    ("<Folder xsi:type='a'/>", "<Folder xml:lang='a'/>", "Folder: has no attribute lang"),
    ("<Folder id='ä1'/>", "<Folder id='1a'/>", "Folder: '1a' of the attribute id is no ID"),
    (
        "<Folder id='a'/><Folder id='b'/>",
        "<Folder id='a'/><Folder id='a'/>",
        "Folder: the id 'a' is that of line 3",
    ),
    (
        "<Snippet maxLines='2'/>",
        "<Snippet maxLines='two'/>",
        "Snippet: 'two' of the attribute maxLines is no int",
    ),
    (
        style("<IconStyle><hotSpot xunits='pixels'/></IconStyle>"),
        style("<IconStyle><hotSpot xunits='metres'/></IconStyle>"),
        "hotSpot: 'metres' of the attribute xunits is no units",
    ),
    (
        data("<SchemaData><SimpleData name='a'/></SchemaData>"),
        data("<SchemaData><SimpleData/></SchemaData>"),
        "SimpleData: lacks its attribute name",
    ),
]


def schema_faults(text):
    return list(kml_schema.faults(parse(text)))


class Schema(unittest.TestCase):
    def check(self, cases):
        for good, bad, sentence in cases:
            with self.subTest(bad):
                self.assertEqual(schema_faults(document(good)), [])
                found = schema_faults(document(bad))
                self.assertEqual(len(found), 1, found)
                self.assertTrue(found[0].startswith(f"schema, line 3, {sentence}"), found)

    def test_order_and_number_of_elements(self):
        self.check(ORDER)

    def test_text(self):
        self.check(TEXT)

    def test_attributes(self):
        self.check(ATTRIBUTES)

    def test_update(self):
        def update(content):
            link_control = f"<Update><targetHref>a</targetHref>{content}</Update>"
            return f"{HEAD}<NetworkLinkControl>{link_control}</NetworkLinkControl></kml>"

        self.assertEqual(
            schema_faults(update("<Change><Lod/></Change><Delete/><Change><Icon/></Change>")), []
        )
        self.assertEqual(schema_faults(update("")), ["schema, line 1, Update: has no Create|Delete|Change"])
        self.assertEqual(
            schema_faults(update("<Change><name/></Change>")),
            ["schema, line 1, name: may not stand in Change"],
        )

    def test_what_is_not_well_formed(self):
        self.assertEqual(faults(document("<name>a</name>").encode("utf-16")), [])
        for bad in ("", "<kml>", document("<name>a & b</name>"), b"\xff"):
            with self.subTest(bad):
                self.assertRegex("".join(faults(bad)), "^schema, line [13]: the file is not well-formed: ")

    def test_every_name_of_a_model_has_a_content(self):
        known = {*kml_schema.MODELS, *kml_schema.KINDS}
        for name, model in kml_schema.MODELS.items():
            words = (word for part in model.split() for word in part.rstrip("?*+").split("|"))
            used = {each for word in words for each in kml_schema.GROUPS.get(word, word).split()}
            foreign = {each for each in used if ":" in each or each.startswith("ANY")}
            self.assertEqual(used - known - foreign, set(), name)

    def test_every_kind_of_text_can_be_right_and_wrong(self):
        right = {
            "anyURI": "a",
            "boolean": "1",
            "color": "0" * 8,
            "time": "2026",
            "vector": "",
            "state": "open",
        }
        for kind in map(lambda kind: kind.lstrip("="), kml_schema.TEXTS):
            if kind in ("string", "list"):  # anything is of these
                continue
            words = kml_schema.WORDS.get(kind, right.get(kind, "7")).split() or [""]
            self.assertTrue(all(kml_schema.fits(kind, word) for word in words), kind)
            self.assertFalse(kml_schema.fits(kind, "no#such#thing"), kind)


if __name__ == "__main__":
    unittest.main()
