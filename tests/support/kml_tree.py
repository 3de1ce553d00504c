"""A KML file as a tree whose elements know their line, which the checks of KML tell.

A fault is a sentence: the rule, the line, the element, and what is wrong."""

import dataclasses
import math
import re
from xml.parsers import expat

KML = "http://www.opengis.net/kml/2.2"
# As XML Schema has it; Python takes "1_0", "nan" and "infinity" as well.
DOUBLE = re.compile(r"[+-]?(\d+(\.\d*)?|\.\d+)([eE][+-]?\d+)?|-?INF|NaN")


class NotWellFormed(Exception):
    """Has what is wrong as a sentence."""


@dataclasses.dataclass(eq=False)
class Element:
    space: str  # its namespace; empty for none
    name: str  # without a prefix
    line: int
    attributes: dict  # by (namespace, name)
    parent: "Element" = None
    children: list = dataclasses.field(default_factory=list)
    text: str = ""  # all that stands directly in it

    def is_kml(self, *names):
        return self.space == KML and self.name in names

    def kml_children(self, *names):
        return [child for child in self.children if child.is_kml(*names)]

    def child(self, *names):
        """The first of these names, or None."""
        return next(iter(self.kml_children(*names)), None)

    def value(self, name, default=None):
        """What the child of that name says, without the white space around it. An empty one says the default,
        as the schema has it."""
        child = self.child(name)
        return default if child is None else child.text.strip() or default

    def number(self, name, default=None):
        """The same of a number; the default where there is none, which the schema's check tells."""
        text = self.value(name)
        return float(text) if text and DOUBLE.fullmatch(text) else default

    def id(self):
        return self.attributes.get(("", "id"), "")

    def is_empty(self):
        return not self.children and not self.text.strip()

    def walk(self):
        """Itself and all below, in the order of the file."""
        yield self
        for child in self.children:
            yield from child.walk()

    def is_in_update(self):
        return self.parent is not None and (self.parent.is_kml("Update") or self.parent.is_in_update())


class _Builder:
    def __init__(self, parser):
        self._parser = parser
        self._open = []
        self.root = None
        parser.StartElementHandler = self._start
        parser.EndElementHandler = lambda _: self._open.pop()
        parser.CharacterDataHandler = self._add_text

    def _start(self, name, attributes):
        parent = self._open[-1] if self._open else None
        named = {_split(key): value for key, value in attributes.items()}
        element = Element(*_split(name), self._parser.CurrentLineNumber, named, parent)
        if parent is None:
            self.root = element
        else:
            parent.children.append(element)
        self._open.append(element)

    def _add_text(self, text):
        self._open[-1].text += text


def _split(name):
    space, _, local = name.rpartition(" ")
    return space, local


def parse(content):
    """The root element. Bytes are read as their XML declaration says, a str as what it is."""
    parser = expat.ParserCreate("utf-8" if isinstance(content, str) else None, " ")
    builder = _Builder(parser)
    try:
        parser.Parse(content.encode() if isinstance(content, str) else content, True)
    except expat.ExpatError as error:
        reason = expat.ErrorString(error.code)
        raise NotWellFormed(f"schema, line {error.lineno}: the file is not well-formed: {reason}") from error
    return builder.root


def fault(rule, element, text):
    return f"{rule}, line {element.line}, {element.name}: {text}"


def outside_update(root, *names):
    """All elements of these names that are no part of an Update, to which most rules do not apply."""
    return [each for each in root.walk() if each.is_kml(*names) and not each.is_in_update()]


@dataclasses.dataclass(frozen=True)
class Box:
    """In degrees."""

    north: float
    south: float
    east: float
    west: float

    def width(self):
        return self.east - self.west

    def area(self):
        return self.width() * (self.north - self.south)

    def has(self, other, slack):
        return (
            other.north <= self.north + slack
            and other.south >= self.south - slack
            and other.east <= self.east + slack
            and other.west >= self.west - slack
        )

    def clipped(self, other):
        """What both have; of no or negative width or height where that is nothing."""
        return Box(
            min(self.north, other.north),
            max(self.south, other.south),
            min(self.east, other.east),
            max(self.west, other.west),
        )


def box_of(element):
    """Of a LatLonBox or LatLonAltBox; None where a side is missing, is no finite number, or nothing is
    between them."""
    sides = [element.number(side) for side in ("north", "south", "east", "west")]
    if any(side is None or not math.isfinite(side) for side in sides):
        return None
    box = Box(*sides)
    return box if box.north > box.south and box.east > box.west else None
