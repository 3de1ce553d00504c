"""Levels 2 and 3 of the Abstract Test Suite of OGC KML 2.2, and what is derived (kml_ats.py)."""

import re

from kml_ats_must import atc, empty_of, lacking, links_of, most_pixels, rule
from kml_tree import KML, fault, outside_update

OVERLAYS = ("GroundOverlay", "ScreenOverlay", "PhotoOverlay")


@atc(45, "the root has a feature or a NetworkLinkControl")
def minimal_kml(root, _):
    if not any(child.space == KML for child in root.children):
        yield fault(rule(45), root, "has no feature")


@atc(46, "a viewFormat has a parameter")
def view_format(root, _):
    for element in (each for each in root.walk() if each.is_kml("viewFormat")):
        if not re.search(r"\[\w+\]", element.text):
            yield fault(rule(46), element, "has no parameter")


@atc(47, "a httpQuery has a parameter")
def http_query(root, _):
    for element in (each for each in root.walk() if each.is_kml("httpQuery")):
        if not re.search(r"\[(clientVersion|kmlVersion|clientName|language)\]", element.text):
            yield fault(rule(47), element, "has no parameter")


@atc(51, "a refreshInterval is for onInterval only, a viewRefreshTime for onStop only")
def link_refresh(root, _):
    for link in links_of(root):
        for name, mode, wanted in (
            ("refreshInterval", "refreshMode", "onInterval"),
            ("viewRefreshTime", "viewRefreshMode", "onStop"),
        ):
            if link.child(name) is not None and link.value(mode) != wanted:
                yield fault(rule(51), link, f"has a {name}, but its {mode} is not {wanted}")


@atc(53, "a GroundOverlay has a LatLonBox with its four sides")
def minimal_overlay(root, _):
    # The sides are asked for by 11.
    yield from lacking(53, outside_update(root, "GroundOverlay"), "GroundOverlay", "LatLonBox")


@atc(54, "a Camera has latitude, longitude and altitude, and is not clampToGround")
def camera(root, _):
    cameras = outside_update(root, "Camera")
    yield from lacking(54, cameras, "Camera", "latitude", "longitude", "altitude")
    for each in cameras:
        if each.value("altitudeMode", "clampToGround") == "clampToGround":
            yield fault(rule(54), each, "is clampToGround")


@atc(56, "an overlay has an Icon")
def overlay_icon(root, _):
    for name in OVERLAYS:
        yield from lacking(56, outside_update(root, name), name, "Icon")


def _not_empty(number, name):
    @atc(number, f"{name} is not empty")
    def check(root, _):
        for element in outside_update(root, name):
            if element.is_empty():
                yield fault(rule(number), element, "is empty")


for _number, _name in (
    (58, "BalloonStyle"),
    (59, "ExtendedData"),
    (60, "Folder"),
    (61, "IconStyle"),
    (65, "Style"),
):
    _not_empty(_number, _name)


@atc(64, "a ListStyle has a listItemType, a bgColor or an ItemIcon")
def list_style(root, _):
    yield from empty_of(64, outside_update(root, "ListStyle"), "listItemType", "bgColor", "ItemIcon")


@atc(68, "a StyleMap has two Pairs, of the keys normal and highlight")
def style_map(root, _):
    for each in outside_update(root, "StyleMap"):
        keys = sorted(pair.value("key", "normal") for pair in each.kml_children("Pair"))
        if keys != ["highlight", "normal"]:
            yield fault(rule(68), each, "has not one Pair for normal and one for highlight")


@atc(74, "minFadeExtent + maxFadeExtent <= maxLodPixels - minLodPixels")
def fade_extents(root, _):
    for lod in (each for each in root.walk() if each.is_kml("Lod")):
        fading = lod.number("minFadeExtent", 0) + lod.number("maxFadeExtent", 0)
        if not fading <= most_pixels(lod) - lod.number("minLodPixels", 0):
            yield fault(rule(74), lod, "fades over more pixels than it is shown for")


def _deprecated(number, parent, name):
    @atc(number, f"no {name} in a {parent}: deprecated" if parent else f"no {name}: deprecated")
    def check(root, _):
        for element in root.walk():
            if element.is_kml(name) and (not parent or element.parent.is_kml(parent)):
                yield fault(rule(number), element, "is deprecated")


for _number, _parent, _name in (
    (71, "BalloonStyle", "color"),
    (72, "", "Metadata"),
    (76, "", "Snippet"),
    (77, "NetworkLink", "Url"),
):
    _deprecated(_number, _parent, _name)


@atc("derived", "north and south are latitudes, from -90 to 90; the schema has -180 to 180")
def latitudes(root, _):
    for side in (each for each in root.walk() if each.is_kml("north", "south")):
        if not -90 <= side.parent.number(side.name, 0) <= 90:
            yield fault("derived", side, f"{side.text} is no latitude")


@atc("derived", "pixels and the range of a LookAt are not negative, but for maxLodPixels of -1")
def sizes(root, _):
    for element in root.walk():
        if not element.is_kml("minLodPixels", "maxLodPixels", "minFadeExtent", "maxFadeExtent", "range"):
            continue
        value = element.parent.number(element.name, 0)
        if not value >= 0 and not (element.name == "maxLodPixels" and value == -1):
            yield fault("derived", element, f"{element.text} is negative")


@atc("derived", "a href is a reference as RFC 3986 has it; letters beyond ASCII are let pass")
def reference(root, _):
    for href in (each for each in root.walk() if each.is_kml("href")):
        text = href.text.strip()
        wrong = re.search(r"[\x00-\x20\"<>\\^`{|}]|%(?![0-9A-Fa-f]{2})|#.*#", text)
        if not text:
            yield fault("derived", href, "is empty")
        elif wrong:
            yield fault("derived", href, f"'{text}' has '{wrong.group()}', which no reference has")
