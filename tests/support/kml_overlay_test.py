"""What kml_overlay.py finds in super-overlays of two levels: one that is right, and each with one change."""

import pathlib
import sys
import tempfile
import unittest
import zipfile

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent))
from kml_rules import faults_of_overlay
from kml_samples import document
from kml_tree import Box

PNG = b"\x89PNG\r\n\x1a\n" + bytes(20)
WHOLE = Box(2, 0, 2, 0)
QUARTERS = {"nw": Box(2, 1, 1, 0), "ne": Box(2, 1, 2, 1), "sw": Box(1, 0, 1, 0), "se": Box(1, 0, 2, 1)}


def sides(box):
    return "".join(f"<{side}>{getattr(box, side)}</{side}>" for side in ("north", "south", "east", "west"))


def region(box, least, most):
    lod = f"<minLodPixels>{least}</minLodPixels><maxLodPixels>{most}</maxLodPixels>"
    return f"<Region><LatLonAltBox>{sides(box)}</LatLonAltBox><Lod>{lod}</Lod></Region>"


def tile(box, order, image, own_region=""):
    icon = f"<drawOrder>{order}</drawOrder><Icon><href>{image}</href></Icon>"
    return f"<GroundOverlay>{own_region}{icon}<LatLonBox>{sides(box)}</LatLonBox></GroundOverlay>"


def link(box, href):
    return f"<NetworkLink>{region(box, 128, -1)}<Link><href>{href}</href></Link></NetworkLink>\n"


def finer_file(name):
    box = QUARTERS[name]
    return document(region(box, 128, -1) + tile(box, 2, f"{name}.png"))


def files():
    """A right one: doc.kml leads to the coarse tile, and that to its four quarters."""
    links = "".join(link(box, f"1/{name}.kml") for name, box in QUARTERS.items())
    content = {
        "doc.kml": document(link(WHOLE, "whole.kml")),
        "whole.kml": document(region(WHOLE, 128, 256) + tile(WHOLE, 1, "whole.png") + "\n" + links),
        "whole.png": PNG,
    }
    for name in QUARTERS:
        content[f"1/{name}.kml"] = finer_file(name)
        content[f"1/{name}.png"] = PNG
    return content


def in_one_file(most=256):
    tiles = [tile(box, 2, f"1/{name}.png", region(box, 128, -1)) for name, box in QUARTERS.items()]
    coarse = tile(WHOLE, 1, "whole.png", region(WHOLE, 128, most))
    return {
        **files(),
        "doc.kml": document(f"{region(WHOLE, 128, -1)}{coarse}<Folder>{''.join(tiles)}</Folder>"),
    }


class Overlay(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="wiesen é ")
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name) / "m"

    def faults(self, content, **more):
        for name, text in content.items():
            path = self.folder / name
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_bytes(text if isinstance(text, bytes) else text.encode())
        return faults_of_overlay(self.folder / "doc.kml", **more)

    def changed(self, name, old, new):
        content = files()
        self.assertIn(old, content[name])
        return {**content, name: content[name].replace(old, new)}

    def check(self, content, *sentences, **more):
        found = self.faults(content, **more)
        self.assertEqual(len(found), len(sentences), found)
        for each, sentence in zip(found, sentences):
            self.assertTrue(each.startswith(sentence), (each, sentence))

    def test_a_right_one(self):
        self.check(files())
        self.check(files(), ground=Box(1.9, 0.1, 1.9, 0.1))
        self.check(in_one_file())

    def test_faults_of_each_file_are_told(self):
        self.check(
            self.changed("1/nw.kml", "<Document>", "<Document><open>yes</open>"),
            "1/nw.kml: schema, line 2, open: 'yes' is no boolean",
        )

    def test_first_file_is_missing(self):
        self.check({"other.kml": ""}, "doc.kml: there is no such file")

    def test_what_is_led_to_is_there(self):
        without_kml, without_image = files(), files()
        del without_kml["whole.kml"], without_image["1/se.png"]
        self.check(without_kml, "doc.kml: ATC 10, line 3, href: there is no 'whole.kml'")
        self.folder = self.folder / "second"
        self.check(without_image, "1/se.kml: ATC 18, line 3, href: there is no 'se.png'")

    def test_what_is_led_to_is_of_its_kind(self):
        self.check(
            {**files(), "whole.kml": PNG},
            "doc.kml: ATC 10, line 3, href: 'whole.kml' is no KML file",
            "whole.kml: schema, line 1: the file is not well-formed",
        )
        self.check(
            {**files(), "whole.png": b"<html/>"}, "whole.kml: ATC 18, line 3, href: 'whole.png' is no image"
        )

    def test_an_archive_is_led_to(self):
        content = self.changed("doc.kml", "whole.kml", "whole.kmz")
        self.folder.mkdir()
        with zipfile.ZipFile(self.folder / "whole.kmz", "w") as archive:
            archive.writestr("doc.kml", document("<name/>"))
        self.check(content)

    def test_links_stay_in_the_folder(self):
        self.check(
            self.changed("doc.kml", "whole.kml", "../whole.kml"),
            "doc.kml: overlay, line 3, href: '../whole.kml' leads out of the folder",
        )
        self.check(
            self.changed("whole.kml", "whole.png", "http://maps.example/whole.png"),
            "whole.kml: overlay, line 3, href: 'http://maps.example/whole.png' leads out of the folder",
        )
        self.check(self.changed("doc.kml", "whole.kml", "../m/wh%6Fle.kml"))

    def test_links_of_a_published_copy(self):
        address = "http://maps.example/ä b/"
        content = self.changed("doc.kml", "whole.kml", "http://maps.example/m/whole.kml")
        self.check(content, address="http://maps.example/m/")
        self.check(content, "doc.kml: overlay, line 3, href: 'http:", address=address)

    def test_regions_lie_inside_each_other(self):
        inside = sides(QUARTERS["nw"])
        for name in ("whole.kml", "1/nw.kml"):  # a link's region, and that of the file it leads to
            box = "<LatLonAltBox>" + inside
            content = self.changed(name, box, box.replace("<north>2<", "<north>2.00000001<"))
            self.assertIn(
                "Region: does not lie inside the region around it", " ".join(self.faults(content)), name
            )
            content = self.changed(name, box, box.replace("<north>2<", "<north>2.0000000001<"))
            self.check(content)

    def test_a_tile_lies_inside_its_region(self):
        box = sides(QUARTERS["nw"])
        content = self.changed(
            "1/nw.kml", "<LatLonAltBox>" + box, "<LatLonAltBox>" + box.replace(">2<", ">1.9<")
        )
        self.check(content, "1/nw.kml: overlay, line 3, GroundOverlay: does not lie inside its region")

    def test_a_tile_is_not_drawn_under_finer_ones(self):
        told = "GroundOverlay: is drawn under its finer tiles, from 256 to "
        for most in (257, 2048, -1):
            content = self.changed("whole.kml", "Pixels>256<", f"Pixels>{most}<")
            self.check(content, f"whole.kml: overlay, line 3, {told}{'inf' if most == -1 else most} of")
        self.check(in_one_file(512), f"doc.kml: overlay, line 3, {told}512")
        self.check(in_one_file(512), most_overlap=2)

    def test_a_tile_without_a_region_is_drawn_for_ever(self):
        content = files()
        content["doc.kml"] = document("<NetworkLink><Link><href>whole.kml</href></Link></NetworkLink>")
        content["whole.kml"] = content["whole.kml"].replace(region(WHOLE, 128, 256), "")
        self.check(
            content, "whole.kml: overlay, line 3, GroundOverlay: is drawn under its finer tiles, from 256"
        )

    def test_a_tile_does_not_go_before_finer_ones_come(self):
        told = (
            "whole.kml: overlay, line 3, GroundOverlay: goes at {} of its pixels, but finer tiles come at {}"
        )
        self.check(self.changed("whole.kml", "Pixels>256<", "Pixels>255<"), told.format(255, 256))
        # A file is read from when its link's region is active on.
        late = self.changed("whole.kml", link(QUARTERS["nw"], "1/nw.kml"), "").copy()
        late["whole.kml"] = late["whole.kml"].replace(
            "</Document>", link(QUARTERS["nw"], "1/nw.kml").replace(">128<", ">200<") + "</Document>"
        )
        self.check(late, told.format(256, 400))

    def test_the_finest_tiles_stay(self):
        self.check(
            self.changed("1/ne.kml", "Pixels>-1<", "Pixels>2048<"),
            "1/ne.kml: overlay, line 3, GroundOverlay: nothing is finer, but it goes at 2048 pixels",
        )

    def test_finer_tiles_cover_a_coarser_one(self):
        told = "whole.kml: overlay, line 3, GroundOverlay: its finer tiles leave a part of it free"
        one_less = self.changed("whole.kml", link(QUARTERS["sw"], "1/sw.kml"), "")
        self.check(one_less, told)
        self.check(one_less, told, ground=Box(2, 0.9, 2, 0))
        self.check(one_less, ground=Box(2, 1, 2, 0))
        # A whole side: known only where the ground is.
        one_less["whole.kml"] = one_less["whole.kml"].replace(link(QUARTERS["se"], "1/se.kml"), "")
        self.check(one_less)
        self.check(one_less, told, ground=WHOLE)

    def test_finer_tiles_are_drawn_above(self):
        for order in (2, 3):
            self.check(
                self.changed("whole.kml", "<drawOrder>1<", f"<drawOrder>{order}<"),
                *[f"whole.kml: overlay, line 3, GroundOverlay: its drawOrder {order} is not below 2"] * 4,
            )

    def test_no_file_is_reached_twice(self):
        first = link(QUARTERS["sw"], "1/sw.kml")
        self.check(
            self.changed("whole.kml", first, first + first),
            "whole.kml: overlay, line 7, href: '1/sw.kml' is reached from whole.kml already",
        )
        self.check(
            self.changed("1/sw.kml", "sw.png", "../whole.png"),
            "1/sw.kml: overlay, line 3, href: '../whole.png' is reached from whole.kml already",
        )

    def test_no_circle(self):
        for href in ("../doc.kml", "sw.kml", "../whole.kml"):
            content = files()
            content["1/sw.kml"] = content["1/sw.kml"].replace(
                "\n</Document>", link(QUARTERS["sw"], href) + "</Document>"
            )
            self.check(content, f"1/sw.kml: overlay, line 3, href: '{href}' leads back: a circle")


if __name__ == "__main__":
    unittest.main()
