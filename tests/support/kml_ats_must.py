"""Level 1 of the Abstract Test Suite of OGC KML 2.2: what every file must keep (kml_ats.py)."""

import calendar
import io
import re
import zipfile
from datetime import datetime, timedelta, timezone
from urllib.parse import urldefrag, urlsplit

import kml_schema
from kml_tree import KML, NotWellFormed, fault, outside_update, parse

CHECKS = {}  # number, or "derived": what is asked, and the function
LINKS = ("Link", "Icon", "Url")
IMAGES = (b"\x89PNG\r\n\x1a\n", b"\xff\xd8\xff", b"GIF87a", b"GIF89a", b"BM", b"II*\0", b"MM\0*")
INFINITE = float("inf")


def atc(number, asks):
    """Enters a function, which yields the faults of a tree."""

    def enter(check):
        CHECKS.setdefault(number, []).append((asks, check))
        return check

    return enter


def rule(number):
    return f"ATC {number}"


@atc(1, "the root is kml of the namespace of KML 2.2; where not, nothing else is asked")
def root_element(root, _):
    if not root.is_kml("kml"):
        yield fault(rule(1), root, f"the root is no kml of {KML}")


@atc(2, "the file is well-formed, and valid by ogckml22.xsd")
def schema(root, _):
    yield from kml_schema.faults(root)


def _instant(text):
    """The first moment of a year, month, day or time; None where it is none."""
    match = re.fullmatch(
        r"(\d{4})(?:-(\d\d))?(?:-(\d\d))?(?:T([\d:]{8})[.\d]*)?(Z|[+-]\d\d:\d\d)?", text or ""
    )
    if match is None:
        return None
    year, month, day, clock, zone = match.groups()
    try:
        moment = datetime.fromisoformat(f"{year}-{month or '01'}-{day or '01'}T{clock or '00:00:00'}")
    except ValueError:
        return None
    hours, minutes = (int(part) for part in (zone[1:] if zone not in (None, "Z") else "00:00").split(":"))
    ahead = timedelta(hours=hours, minutes=minutes) * (-1 if zone and zone[0] == "-" else 1)
    return calendar.timegm((moment - ahead).replace(tzinfo=timezone.utc).timetuple())


@atc(4, "a TimeSpan has a begin or an end; the begin is before the end")
def time_span(root, _):
    for span in root.walk():
        if not span.is_kml("TimeSpan"):
            continue
        begin, end = _instant(span.value("begin")), _instant(span.value("end"))
        if span.child("begin", "end") is None:
            yield fault(rule(4), span, "has neither begin nor end")
        elif begin is not None and end is not None and begin >= end:
            yield fault(rule(4), span, "does not begin before its end")


@atc(5, "a TimeStamp has a when")
def time_stamp(root, _):
    yield from lacking(5, root.walk(), "TimeStamp", "when")


def lacking(number, elements, name, *needed):
    for element in elements:
        if not element.is_kml(name):
            continue
        for each in needed:
            if element.child(each) is None:
                yield fault(rule(number), element, f"has no {each}")


def empty_of(number, elements, *names):
    for element in elements:
        if element.child(*names) is None:
            yield fault(rule(number), element, f"has none of {', '.join(names)}")


def _style_target(root, address, resolve):
    """The element that a styleUrl is about; LookupError where that cannot be told."""
    file, fragment = urldefrag(address)
    if file:
        if resolve is None:
            raise LookupError(file)
        content = resolve(file, -1)
        try:
            root = None if content is None else parse(content)
        except NotWellFormed:
            root = None
    return next((each for each in root.walk() if each.id() == fragment), None) if root is not None else None


@atc(6, "a styleUrl is http:, file: or relative, and its fragment is the id of a style that there is")
def style_reference(root, resolve):
    for url in (each for each in root.walk() if each.is_kml("styleUrl")):
        address = url.text.strip()
        if urlsplit(address).scheme not in ("", "http", "file"):
            yield fault(rule(6), url, f"'{address}' is neither relative nor of http or file")
        if not kml_schema.fits("NCName", urldefrag(address).fragment):
            yield fault(rule(6), url, f"'{address}' has no fragment that is an id")
            continue
        try:
            style = _style_target(root, address, resolve)
        except LookupError:
            continue
        if style is None or not style.is_kml("Style", "StyleMap"):
            yield fault(rule(6), url, f"'{address}' leads to no style")


@atc(7, "a shared style is of a Document, and has an id")
def shared_style(root, _):
    used = {each.text.strip() for each in root.walk() if each.is_kml("styleUrl")}
    for style in (each for each in root.walk() if each.is_kml("Style", "StyleMap")):
        in_document = style.parent is not None and style.parent.is_kml("Document")
        if in_document and not style.id():
            yield fault(rule(7), style, "is of a Document, and so shared, but has no id")
        if not in_document and f"#{style.id()}" in used:
            yield fault(rule(7), style, f"is shared as '{style.id()}', but is not of a Document")


def _side_faults(number, box):
    north, south, east, west = (box.number(side) for side in ("north", "south", "east", "west"))
    if north is not None and south is not None and not north > south:
        yield fault(rule(number), box, f"north {north} is not above south {south}")
    if east is not None and west is not None and not east > west:
        yield fault(rule(number), box, f"east {east} is not above west {west}")


@atc(
    8,
    "LatLonAltBox: north > south, east > west, minAltitude <= maxAltitude; both only when not clampToGround",
)
def region_box(root, _):
    for box in (each for each in root.walk() if each.is_kml("LatLonAltBox")):
        yield from _side_faults(8, box)
        if box.number("minAltitude", 0) > box.number("maxAltitude", 0):
            yield fault(rule(8), box, "minAltitude is above maxAltitude")
        both = box.child("minAltitude") is not None and box.child("maxAltitude") is not None
        if both and box.value("altitudeMode", "clampToGround") == "clampToGround":
            yield fault(rule(8), box, "has altitudes, but is clampToGround")


def links_of(root):
    return (each for each in root.walk() if each.is_kml(*LINKS))


@atc(9, "refreshInterval, viewRefreshTime and viewBoundScale of a link are above 0")
def link_values(root, _):
    for link in links_of(root):
        for name in ("refreshInterval", "viewRefreshTime", "viewBoundScale"):
            if not link.number(name, 1) > 0:
                yield fault(rule(9), link, f"{name} is not above 0")


def _first_document(archive):
    """The text of the KML file that a KMZ file is for, or None."""
    try:
        with zipfile.ZipFile(io.BytesIO(archive)) as parts:
            name = next((each for each in parts.namelist() if each.lower().endswith(".kml")), None)
            return None if name is None else parts.read(name)
    except zipfile.BadZipFile:
        return None


def is_kml(content):
    """Whether these bytes are a KML or a KMZ file."""
    document = _first_document(content) if content.startswith(b"PK") else content
    try:
        return document is not None and parse(document).name == "kml"
    except NotWellFormed:
        return False


def _referent_fault(number, href, resolve, length, fits, what):
    try:
        content = resolve(href.text.strip(), length)
    except LookupError:
        return
    if content is None:
        yield fault(rule(number), href, f"there is no '{href.text.strip()}'")
    elif not fits(content):
        yield fault(rule(number), href, f"'{href.text.strip()}' is no {what}")


@atc(10, "a NetworkLink leads to a KML or KMZ file")
def link_referent(root, resolve):
    for href in (each for each in root.walk() if resolve is not None and each.is_kml("href")):
        if href.parent.is_kml("Link", "Url") and href.parent.parent.is_kml("NetworkLink"):
            yield from _referent_fault(10, href, resolve, -1, is_kml, "KML file")


@atc(11, "LatLonBox: has its four sides, north > south, east > west")
def overlay_box(root, _):
    yield from lacking(11, root.walk(), "LatLonBox", "north", "south", "east", "west")
    for box in (each for each in root.walk() if each.is_kml("LatLonBox")):
        yield from _side_faults(11, box)


@atc(18, "an Icon is an image; for an overlay 10 asks the same")
def icon_referent(root, resolve):
    for href in (each for each in root.walk() if resolve is not None and each.is_kml("href")):
        if href.parent.is_kml("Icon"):
            yield from _referent_fault(18, href, resolve, 16, lambda start: start.startswith(IMAGES), "image")


@atc(21, "an object has something in it, or an id")
def empty_object(root, _):
    for element in outside_update(root, *kml_schema.OBJECTS):
        if element.is_empty() and not element.id():
            yield fault(rule(21), element, "is empty, and has no id")


@atc(33, "a GroundOverlay that is absolute has an altitude")
def absolute_overlay(root, _):
    for overlay in (each for each in root.walk() if each.is_kml("GroundOverlay")):
        if overlay.value("altitudeMode") == "absolute" and overlay.child("altitude") is None:
            yield fault(rule(33), overlay, "is absolute, but has no altitude")


@atc(36, "a Pair has a key, and a styleUrl or a style")
def pair(root, _):
    yield from lacking(36, outside_update(root, "Pair"), "Pair", "key")
    yield from empty_of(36, outside_update(root, "Pair"), "styleUrl", "Style", "StyleMap")


@atc(37, "an ItemIcon has a href")
def item_icon(root, _):
    yield from lacking(37, outside_update(root, "ItemIcon"), "ItemIcon", "href")


@atc(
    38, "a LookAt has longitude, latitude and range; a tilt from 0 to 90; an altitude when not clampToGround"
)
def look_at(root, _):
    looks = outside_update(root, "LookAt")
    yield from lacking(38, looks, "LookAt", "longitude", "latitude", "range")
    for look in looks:
        if not 0 <= look.number("tilt", 0) <= 90:
            yield fault(rule(38), look, "its tilt is not from 0 to 90")
        if look.value("altitudeMode", "clampToGround") != "clampToGround" and look.child("altitude") is None:
            yield fault(rule(38), look, "is not clampToGround, but has no altitude")


def most_pixels(lod):
    """Of a Lod, where -1 and nothing are for ever."""
    most = lod.number("maxLodPixels", -1)
    return INFINITE if most == -1 else most


@atc(39, "a Lod has minLodPixels, which are less than maxLodPixels; -1 is infinite")
def lod_limits(root, _):
    lods = outside_update(root, "Lod")
    yield from lacking(39, lods, "Lod", "minLodPixels")
    for lod in lods:
        if not lod.number("minLodPixels", 0) < most_pixels(lod):
            yield fault(rule(39), lod, "minLodPixels are not less than maxLodPixels")


@atc(40, "a Link or Icon has a href")
def link_has_href(root, _):
    for name in ("Link", "Icon"):
        yield from lacking(40, outside_update(root, name), name, "href")


@atc(41, "a Region has a LatLonAltBox and a Lod")
def region(root, _):
    yield from lacking(41, outside_update(root, "Region"), "Region", "LatLonAltBox", "Lod")
