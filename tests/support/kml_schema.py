"""What the schema of KML 2.2, ogckml22.xsd of OGC 07-147r2, asks of a file: which elements there are, in
which order, how often, with which attributes and what kind of text.

All elements of the schema are here, though a super-overlay has few of them: so a name that is missing here is
a name that is no KML. What stands in for the abstract extension elements (gx: and the like) is not in this
schema, and so is a fault."""

import functools
import re

from kml_tree import DOUBLE, KML, fault

ATOM = "http://www.w3.org/2005/Atom"
XAL = "urn:oasis:names:tc:ciq:xsdschema:xAL:2.0"
XSI = "http://www.w3.org/2001/XMLSchema-instance"
PREFIXES = {"atom": ATOM, "xal": XAL}

GROUPS = {
    "Geometry": "Point LineString LinearRing Polygon MultiGeometry Model",
    "View": "LookAt Camera",
    "Time": "TimeStamp TimeSpan",
    "StyleSelector": "Style StyleMap",
    "Container": "Document Folder",
    "Feature": "Document Folder Placemark NetworkLink GroundOverlay ScreenOverlay PhotoOverlay",
}
_FEATURE = (
    "name? visibility? open? atom:author? atom:link? address? xal:AddressDetails? phoneNumber? "
    "Snippet|snippet? description? View? Time? styleUrl? StyleSelector* Region? Metadata|ExtendedData? "
)
_OVERLAY = _FEATURE + "color? drawOrder? Icon? "
_SIDES = "north? south? east? west? "
_LINK = (
    "href? refreshMode? refreshInterval? viewRefreshMode? viewRefreshTime? viewBoundScale? viewFormat? "
    "httpQuery?"
)
_POSITION = "longitude? latitude? altitude? "

# What has elements: their names in order; "?" at most once, "*" as often as one likes, "+" at least once, "|"
# one or the other. A name of GROUPS stands for any of these.
OBJECTS = {
    "Document": _FEATURE + "Schema* Feature*",
    "Folder": _FEATURE + "Feature*",
    "Placemark": _FEATURE + "Geometry?",
    "NetworkLink": _FEATURE + "refreshVisibility? flyToView? Url|Link?",
    "GroundOverlay": _OVERLAY + "altitude? altitudeMode? LatLonBox?",
    "ScreenOverlay": _OVERLAY + "overlayXY? screenXY? rotationXY? size? rotation?",
    "PhotoOverlay": _OVERLAY + "rotation? ViewVolume? ImagePyramid? Point? shape?",
    "LookAt": _POSITION + "heading? tilt? range? altitudeMode?",
    "Camera": _POSITION + "heading? tilt? roll? altitudeMode?",
    "Region": "LatLonAltBox? Lod?",
    "LatLonAltBox": _SIDES + "minAltitude? maxAltitude? altitudeMode?",
    "LatLonBox": _SIDES + "rotation?",
    "Lod": "minLodPixels? maxLodPixels? minFadeExtent? maxFadeExtent?",
    "Icon": _LINK,
    "Link": _LINK,
    "Url": _LINK,
    "TimeStamp": "when?",
    "TimeSpan": "begin? end?",
    "Style": "IconStyle? LabelStyle? LineStyle? PolyStyle? BalloonStyle? ListStyle?",
    "StyleMap": "Pair*",
    "Pair": "key? styleUrl? StyleSelector?",
    "IconStyle": "color? colorMode? scale? heading? Icon? hotSpot?",
    "LabelStyle": "color? colorMode? scale?",
    "LineStyle": "color? colorMode? width?",
    "PolyStyle": "color? colorMode? fill? outline?",
    "BalloonStyle": "color|bgColor? textColor? text? displayMode?",
    "ListStyle": "listItemType? bgColor? ItemIcon* maxSnippetLines?",
    "ItemIcon": "state? href?",
    "Point": "extrude? altitudeMode? coordinates?",
    "LineString": "extrude? tessellate? altitudeMode? coordinates?",
    "LinearRing": "extrude? tessellate? altitudeMode? coordinates?",
    "Polygon": "extrude? tessellate? altitudeMode? outerBoundaryIs? innerBoundaryIs*",
    "MultiGeometry": "Geometry*",
    "Model": "altitudeMode? Location? Orientation? Scale? Link? ResourceMap?",
    "Location": _POSITION,
    "Orientation": "heading? tilt? roll?",
    "Scale": "x? y? z?",
    "ResourceMap": "Alias*",
    "Alias": "targetHref? sourceHref?",
    "ViewVolume": "leftFov? rightFov? bottomFov? topFov? near?",
    "ImagePyramid": "tileSize? maxWidth? maxHeight? gridOrigin?",
    "SchemaData": "SimpleData*",
    "Data": "displayName? value",
}
# The same of what is no object: it has no id and no targetId.
OTHERS = {
    "kml": "NetworkLinkControl? Feature?",
    "NetworkLinkControl": "minRefreshPeriod? maxSessionLength? cookie? message? linkName? linkDescription? "
    "linkSnippet? expires? Update? View?",
    "Update": "targetHref Create|Delete|Change+",
    "Create": "Container*",
    "Delete": "Feature*",
    "Change": "ANY-OBJECT*",
    "Schema": "SimpleField*",
    "SimpleField": "displayName?",
    "ExtendedData": "Data* SchemaData* ANY-OTHER*",
    "Metadata": "ANY*",
    "outerBoundaryIs": "LinearRing?",
    "innerBoundaryIs": "LinearRing?",
}
ATTRIBUTES = {
    "kml": {"hint": "string"},
    "Schema": {"name": "string", "id": "ID"},
    "SimpleField": {"type": "string", "name": "string"},
    "SchemaData": {"schemaUrl": "anyURI"},
    "Data": {"name": "string"},
    "SimpleData": {"name": "string"},
    "Snippet": {"maxLines": "int"},
    "linkSnippet": {"maxLines": "int"},
}
_VECTOR = {"x": "double", "y": "double", "xunits": "units", "yunits": "units"}

# What has text: the kinds of it. "=" is before those that have a default and so may be empty.
TEXTS = {
    "string": "address cookie description displayName httpQuery linkDescription linkName message name "
    "phoneNumber snippet text value viewFormat href Snippet linkSnippet SimpleData",
    "anyURI": "sourceHref styleUrl targetHref",
    "=boolean": "extrude fill flyToView open outline refreshVisibility tessellate visibility",
    "=int": "drawOrder maxSnippetLines maxHeight maxWidth tileSize",
    "=double": "altitude maxSessionLength minAltitude minFadeExtent minLodPixels minRefreshPeriod "
    "maxAltitude maxFadeExtent maxLodPixels near range refreshInterval scale viewBoundScale viewRefreshTime "
    "width x y z",
    "=color": "bgColor color textColor",
    "=-90 to 90": "bottomFov latitude topFov",
    "=0 to 180": "tilt",
    "=-180 to 180": "east leftFov longitude north rightFov roll rotation south west",
    "=-360 to 360": "heading",
    "time": "begin end expires when",
    "list": "coordinates",
    "state": "state",
    "vector": "hotSpot overlayXY rotationXY screenXY size",
    "=altitudeMode": "altitudeMode",
    "=colorMode": "colorMode",
    "=displayMode": "displayMode",
    "=gridOrigin": "gridOrigin",
    "=key": "key",
    "=listItemType": "listItemType",
    "=refreshMode": "refreshMode",
    "=viewRefreshMode": "viewRefreshMode",
    "=shape": "shape",
}
WORDS = {
    "altitudeMode": "clampToGround relativeToGround absolute",
    "colorMode": "normal random",
    "displayMode": "default hide",
    "gridOrigin": "lowerLeft upperLeft",
    "key": "normal highlight",
    "listItemType": "radioFolder check checkHideChildren checkOffOnly",
    "refreshMode": "onChange onInterval onExpire",
    "viewRefreshMode": "never onRequest onStop onRegion",
    "shape": "rectangle cylinder sphere",
    "units": "fraction pixels insetPixels",
}
STATES = {"open", "closed", "error", "fetching0", "fetching1", "fetching2"}

MODELS = {**OBJECTS, **OTHERS}
KINDS = {name: kind for kind, names in TEXTS.items() for name in names.split()}
NAME = re.compile(r"[^\W\d][\w.\-]*")
_ZONE = r"(Z|[+-]\d\d:\d\d)?"
_DAY = r"-?\d{4,}-(0[1-9]|1[0-2])-(0[1-9]|[12]\d|3[01])"
_CLOCK = r"T(([01]\d|2[0-3]):[0-5]\d:[0-5]\d(\.\d+)?|24:00:00(\.0+)?)"
_MONTH = r"-?\d{4,}(-(0[1-9]|1[0-2]))?"
TIME = re.compile(f"({_DAY}({_CLOCK})?|{_MONTH}){_ZONE}")
PATTERNS = {"ID": NAME, "NCName": NAME, "color": re.compile("[0-9a-fA-F]{8}"), "time": TIME, "double": DOUBLE}


def _is_uri(text):
    return text.count("#") <= 1


def _is_int(text):
    return bool(re.fullmatch(r"[+-]?\d+", text)) and -(2**31) <= int(text) < 2**31


def fits(kind, text):
    """Whether the text is of that kind."""
    if kind in ("string", "list"):
        return True
    # White space counts in a word, and nowhere else.
    if kind in WORDS:
        return text in WORDS[kind].split()
    text = text.strip()
    if kind in PATTERNS:
        return PATTERNS[kind].fullmatch(text) is not None
    if kind == "vector":
        return not text
    if kind == "state":
        return STATES.issuperset(text.split())
    if " to " in kind:
        least, most = map(float, kind.split(" to "))
        return DOUBLE.fullmatch(text) is not None and least <= float(text) <= most
    return {"anyURI": _is_uri, "int": _is_int, "boolean": {"true", "false", "1", "0"}.__contains__}[kind](
        text
    )


def _names(word):
    """What may stand where the model has that word, as (namespace, name)."""
    for name in word.split("|"):
        prefix, _, local = name.rpartition(":")
        for each in GROUPS.get(local, local).split():
            yield PREFIXES.get(prefix, KML), each


def _fits_wildcard(word, element):
    if word == "ANY-OBJECT":
        return element.is_kml(*OBJECTS)
    return word == "ANY" or word == "ANY-OTHER" and element.space not in ("", KML)


class _Part:
    """One place of a model."""

    def __init__(self, word):
        self.word = word.rstrip("?*+")
        self.least = 0 if word[-1] in "?*" else 1
        self.most = float("inf") if word[-1] in "*+" else 1
        self._names = set(_names(self.word))

    def takes(self, element):
        return (element.space, element.name) in self._names or _fits_wildcard(self.word, element)


@functools.lru_cache(maxsize=None)
def _parts(model):
    return [_Part(word) for word in model.split()]


def _model_of(element):
    # Of the two elements of that name, the one of an IconStyle is the plainer.
    if element.name == "Icon" and element.parent is not None and element.parent.is_kml("IconStyle"):
        return "href?"
    return MODELS[element.name]


def _why_not(parts, child, place):
    """The words for a child that does not fit at that place or after it."""
    found = next((index for index, part in enumerate(parts) if part.takes(child)), None)
    if found is None:
        return f"may not stand in {child.parent.name}"
    if found == place:
        return f"stands in {child.parent.name} more than once"
    return f"must stand before {parts[place].word} in {child.parent.name}"


def _order_faults(element):
    parts = _parts(_model_of(element))
    counts = [0] * len(parts)
    place = 0
    for child in element.children:
        later = (i for i in range(place, len(parts)) if parts[i].takes(child) and counts[i] < parts[i].most)
        found = next(later, None)
        if found is None:
            yield fault("schema", child, _why_not(parts, child, place))
        else:
            counts[found] += 1
            place = found
    for part, count in zip(parts, counts):
        if count < part.least:
            yield fault("schema", element, f"has no {part.word}")


def _text_faults(element):
    kind = KINDS[element.name]
    for child in element.children:
        yield fault("schema", child, f"may not stand in {element.name}, which has text only")
    if element.text == "" and kind.startswith("="):
        return
    if not fits(kind.lstrip("="), element.text):
        yield fault("schema", element, f"'{element.text}' is no {_description(kind.lstrip('='))}")


def _description(kind):
    if kind in WORDS:
        return "one of " + ", ".join(WORDS[kind].split())
    return f"number from {kind}" if " to " in kind else kind


def _attributes_of(element):
    own = ATTRIBUTES.get(element.name, {})
    if KINDS.get(element.name) == "vector":
        own = _VECTOR
    return {"id": "ID", "targetId": "NCName", **own} if element.name in OBJECTS else own


def _attribute_faults(element):
    allowed = _attributes_of(element)
    for (space, name), value in element.attributes.items():
        if space == XSI:
            continue
        if space or name not in allowed:
            yield fault("schema", element, f"has no attribute {name}")
        elif not fits(allowed[name], value):
            yield fault("schema", element, f"'{value}' of the attribute {name} is no {allowed[name]}")
    if element.name == "SimpleData" and ("", "name") not in element.attributes:
        yield fault("schema", element, "lacks its attribute name")


def _element_faults(element):
    if element.name in KINDS:
        yield from _text_faults(element)
    elif element.name in MODELS:
        if element.text.strip():
            yield fault("schema", element, f"has the text '{element.text.strip()}' beside its elements")
        yield from _order_faults(element)
    yield from _attribute_faults(element)


def _id_faults(root):
    owners = {}
    for element in root.walk():
        if element.space != KML or not element.id():
            continue
        owner = owners.setdefault(element.id(), element)
        if owner is not element:
            yield fault("schema", element, f"the id '{element.id()}' is that of line {owner.line} already")


def faults(root):
    """Of the whole tree. What is of other namespaces is looked at only for where it stands."""
    for element in root.walk():
        if element.space == KML:
            yield from _element_faults(element)
    yield from _id_faults(root)
