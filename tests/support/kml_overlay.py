"""What a super-overlay must keep beside what each of its files must: all that it leads to is there, and what
is seen of it has neither holes nor doubles. It is followed from its first file as a viewer of the earth does
it. Rules of this file begin with "overlay"; the standard does not ask for them."""

import dataclasses
import os
import pathlib
from urllib.parse import unquote, urlsplit

from kml_ats import faults_of_root
from kml_ats_must import most_pixels
from kml_tree import Box, Element, NotWellFormed, box_of, fault, parse

SLACK = 1e-9  # degrees of rounding
NEARLY = 1 + 1e-6
RULE = "overlay"


@dataclasses.dataclass(eq=False)
class Region:
    box: Box
    least: float  # pixels
    most: float
    outer: "Region" = None


@dataclasses.dataclass(eq=False)
class Tile:
    """A GroundOverlay."""

    element: Element
    file: pathlib.Path
    box: Box
    region: Region
    order: float
    above: list  # lists of tiles: those of the same file, and of the files that lead to it
    finer: list = dataclasses.field(default_factory=list)

    def whole(self):
        """The region that decides when it is drawn; where it has none, it always is."""
        return self.region or Region(self.box, 0, float("inf"))

    def starts(self, coarser):
        """From how many pixels of the coarser tile's region on it is drawn, by its own region and those of
        the links that lead to it."""
        whole = coarser.whole()
        pixels, region = 0, self.whole()
        while region is not None and region is not coarser.region:
            # By widths: both in Mercator's projection and in degrees these are halved from level to level,
            # which the heights in degrees are not.
            pixels = max(pixels, region.least * whole.box.width() / region.box.width())
            region = region.outer
        return pixels


class _Walk:
    def __init__(self, root_file, address):
        self._top = pathlib.Path(os.path.abspath(root_file)).parent
        self._address = address
        self._reached = {}
        self._open = []
        self.faults = []
        self.tiles = []

    def tell(self, file, sentence):
        self.faults.append(f"{os.path.relpath(file, self._top)}: {sentence}")

    def file_of(self, href, file):
        """The file that a link in another one is about; LookupError when it is none of the folder."""
        folder = file.parent
        if self._address and href.startswith(self._address):
            href, folder = href[len(self._address) :], self._top
        parts = urlsplit(href)
        path = pathlib.Path(os.path.normpath(folder / unquote(parts.path)))
        if parts.scheme or parts.netloc or not parts.path or self._top not in path.parents:
            raise LookupError(href)
        return path

    def _read(self, href, length, file):
        path = self.file_of(href, file)
        if not path.is_file():
            return None
        with open(path, "rb") as stream:
            return stream.read(length)

    def visit(self, file, region, above):
        try:
            root = parse(file.read_bytes())
        except NotWellFormed as error:
            self.tell(file, str(error))
            return
        for each in faults_of_root(root, lambda href, length: self._read(href, length, file)):
            self.tell(file, each)
        tiles, links = [], []
        for feature in root.children:
            self._look_at(feature, region, file, ([*above, tiles], links))
        self.tiles += tiles
        self._open.append(file)
        for href, inner in links:
            self._follow(href, inner, file, [*above, tiles])
        self._open.pop()

    def _look_at(self, feature, region, file, found):
        region = self._region_of(feature, region, file)
        above, links = found
        if feature.is_kml("GroundOverlay"):
            self._add_tile(feature, region, file, above)
        link = feature.child("Link", "Url") if feature.is_kml("NetworkLink") else None
        if link is not None and link.child("href") is not None:
            links.append((link.child("href"), region))
        for child in feature.kml_children("Document", "Folder", "NetworkLink", "GroundOverlay"):
            self._look_at(child, region, file, found)

    def _region_of(self, feature, outer, file):
        own = feature.child("Region")
        box = own and own.child("LatLonAltBox") and box_of(own.child("LatLonAltBox"))
        if box is None:
            return outer
        if outer is not None and not outer.box.has(box, SLACK):
            self.tell(file, fault(RULE, own, "does not lie inside the region around it"))
        lod = own.child("Lod")
        if lod is None:
            return Region(box, 0, float("inf"), outer)
        return Region(box, lod.number("minLodPixels", 0), most_pixels(lod), outer)

    def _add_tile(self, overlay, region, file, above):
        sides = overlay.child("LatLonBox")
        box = sides and box_of(sides)
        if box is None:
            return
        if region is not None and not region.box.has(box, SLACK):
            self.tell(file, fault(RULE, overlay, "does not lie inside its region"))
        above[-1].append(Tile(overlay, file, box, region, overlay.number("drawOrder", 0), above))
        icon = overlay.child("Icon")
        if icon is not None and icon.child("href") is not None:
            self._reach(icon.child("href"), file)

    def _reach(self, href, file):
        """The file of a link that is there and reached for the first time, or None."""
        text = href.text.strip()
        try:
            path = self.file_of(text, file)
        except LookupError:
            self.tell(file, fault(RULE, href, f"'{text}' leads out of the folder"))
            return None
        if path in [*self._open, file] and href.parent.name != "Icon":
            self.tell(file, fault(RULE, href, f"'{text}' leads back: a circle"))
        elif path in self._reached:
            self.tell(file, fault(RULE, href, f"'{text}' is reached from {self._reached[path]} already"))
        else:
            self._reached[path] = os.path.relpath(file, self._top)
            return path
        return None

    def _follow(self, href, region, file, above):
        path = self._reach(href, file)
        # What is not there has been told with the link; what is in an archive is not followed.
        if path is not None and path.is_file() and path.suffix.lower() != ".kmz":
            self.visit(path, region, above)


def _join(tiles):
    """Gives each tile the finer ones: those of which it is the smallest that has all of it."""
    for tile in tiles:
        around = [
            each
            for group in tile.above
            for each in group
            if each.box.area() > 1.5 * tile.box.area() and each.box.has(tile.box, SLACK)
        ]
        if around:
            min(around, key=lambda each: each.box.area()).finer.append(tile)


def _is_covered(box, parts):
    """Whether the parts have all of the box: of the cells that their sides make, the middle of each."""
    rows = sorted({box.north, box.south, *(y for part in parts for y in (part.north, part.south))})
    columns = sorted({box.east, box.west, *(x for part in parts for x in (part.east, part.west))})
    cells = [
        Box(top, bottom, right, left)
        for bottom, top in zip(rows, rows[1:])
        for left, right in zip(columns, columns[1:])
        if top - bottom > SLACK and right - left > SLACK
    ]
    inner = [cell for cell in cells if box.has(cell, SLACK)]
    return all(any(part.has(cell, SLACK) for part in parts) for cell in inner)


def _pixel_faults(tile, most_overlap):
    most = tile.whole().most
    starts = [each.starts(tile) for each in tile.finer]
    if not starts:
        if most != float("inf"):
            yield f"nothing is finer, but it goes at {most:g} pixels"
        return
    if most > min(starts) * most_overlap * NEARLY:
        yield f"is drawn under its finer tiles, from {min(starts):g} to {most:g} of its pixels"
    if most * NEARLY < max(starts):
        yield f"goes at {most:g} of its pixels, but finer tiles come at {max(starts):g} only"


def _tile_faults(tile, ground, most_overlap):
    yield from _pixel_faults(tile, most_overlap)
    seen = tile.box.clipped(ground)
    if tile.finer and min(seen.width(), seen.north - seen.south) > SLACK:
        if not _is_covered(seen, [each.box for each in tile.finer]):
            yield "its finer tiles leave a part of it free"
    for each in tile.finer:
        if each.order <= tile.order:
            yield f"its drawOrder {tile.order:g} is not below {each.order:g} of a finer tile"


def _ground_of(tiles):
    """What the finest tiles of all have together."""
    finest = [tile.box for tile in tiles if not tile.finer]
    return Box(
        max(box.north for box in finest),
        min(box.south for box in finest),
        max(box.east for box in finest),
        min(box.west for box in finest),
    )


def faults_of_overlay(root_file, address="", ground=None, most_overlap=1):
    """Sentences about a super-overlay, each beginning with the file, relative to the folder of the first one.

    address: under which the folder is published, for copies whose links have it.
    ground: a kml_tree.Box, the extent of the image. What finer tiles must cover of a coarser one is the part
    in it; without it, the part in the extent of the finest tiles, and then a lost edge is not seen.
    most_overlap: how many times the size at which the finer tiles come a tile may have and still be drawn.
    """
    walk = _Walk(root_file, address)
    first = pathlib.Path(os.path.abspath(root_file))
    if not first.is_file():
        return [f"{first.name}: there is no such file"]
    walk.visit(first, None, [])
    _join(walk.tiles)
    ground = ground or (_ground_of(walk.tiles) if walk.tiles else None)
    for tile in walk.tiles:
        for each in _tile_faults(tile, ground, most_overlap):
            walk.tell(tile.file, fault(RULE, tile.element, each))
    return walk.faults
