"""Folders with maps as the tile engine writes them: tiles, and the pages filled in."""

import dataclasses
import html
import itertools
import json
import math
import pathlib
import re
import shutil

import numpy
from osgeo import gdal

gdal.UseExceptions()

SOURCES = pathlib.Path(__file__).parent.parent.parent / "src" / "tiler" / "pages" / "map"
LEAFLET = pathlib.Path("/usr/share/javascript/leaflet")
OWN_FILES = ("leaflet-licence.txt", "map.css", "map.js", "position.js", "tiles.js", "tools.js")
SOURCE_MAP = re.compile(r"^(//# sourceMappingURL=.*|/\*# sourceMappingURL=.*\*/)\n?", re.MULTILINE)
EDGE = 20037508.342789244  # of the projection, in its metres


@dataclasses.dataclass
class Map:
    """A square orthophoto around a place. Its tiles are as many as its size needs."""

    longitude: float
    latitude: float
    metres: float = 400  # of the projection
    coarsest: int = 15
    finest: int = 18
    title: str = "Orthophoto"
    folder: str = ""
    mixed: bool = False  # JPEG where nothing is transparent
    kml: dict = dataclasses.field(
        default_factory=lambda: {"disk": "googleearth_loc.kml", "web": "googleearth_web.kml"}
    )

    def corners(self):
        x, y = mercator(self.longitude, self.latitude)
        half = self.metres / 2
        return x - half, y - half, x + half, y + half

    def bounds(self):
        west, south, east, north = self.corners()
        return [[latitude_of(south), west / EDGE * 180], [latitude_of(north), east / EDGE * 180]]

    def levels(self):
        west, south, east, north = self.corners()
        levels = {}
        for z in range(self.coarsest, self.finest + 1):
            size = 2 * EDGE / 2**z
            levels[str(z)] = [math.floor((each + EDGE) / size) for each in (west, south, east, north)]
        return levels

    def kind(self, z, column, row):
        size = 2 * EDGE / 2**z
        left, lower = column * size - EDGE, row * size - EDGE
        west, south, east, north = self.corners()
        is_inside = west <= left and left + size < east and south <= lower and lower + size < north
        return "jpg" if self.mixed and is_inside else "png"

    def runs(self):
        """Lengths of rows of neighbours of a kind, by turns JPEG and PNG, from the south-west."""
        runs = {}
        for z, (west, south, east, north) in self.levels().items():
            kinds = [
                self.kind(int(z), column, row)
                for row in range(south, north + 1)
                for column in range(west, east + 1)
            ]
            groups = [(kind, len(list(group))) for kind, group in itertools.groupby(kinds)]
            runs[z] = [0] * (groups[0][0] == "png") + [length for _, length in groups]
        return runs

    def described(self):
        names = ("title", "coarsest", "finest", "kml") + (("folder",) if self.folder else ())
        described = {name: getattr(self, name) for name in names}
        if self.mixed:
            described["tiles"] = {"kinds": ["jpg", "png"], "runs": self.runs()}
        return {**described, "bounds": self.bounds(), "levels": self.levels()}


def mercator(longitude, latitude):
    return longitude / 180 * EDGE, math.asinh(math.tan(math.radians(latitude))) / math.pi * EDGE


def latitude_of(y):
    return math.degrees(math.atan(math.sinh(y / EDGE * math.pi)))


def tile_at(z, longitude, latitude):
    """Column and row, counted from the south."""
    size = 2 * EDGE / 2**z
    return tuple(math.floor((each + EDGE) / size) for each in mercator(longitude, latitude))


def json_for_page(value):
    """Without "<", so that nothing in it can end the script element, or begin a comment there."""
    return json.dumps(value, ensure_ascii=False).replace("<", "\\u003c")


def write_page(path, kind, title, data):
    """kind: "map" or "maps". All marks at once: what is filled in may itself look like a mark."""
    marks = {"TITLE": html.escape(title), "KIND": kind, "DATA": json_for_page(data)}
    page = (SOURCES / "page.html").read_text(encoding="utf-8")
    path.write_text(re.sub("@([A-Z]+)@", lambda mark: marks[mark[1]], page), encoding="utf-8")


def write_leaflet(folder):
    folder = folder / "leaflet"
    folder.mkdir(parents=True)
    for source, name in (("leaflet.css", "leaflet.css"), ("leaflet.min.js", "leaflet.js")):
        text = (LEAFLET / source).read_text(encoding="utf-8")
        (folder / name).write_text(SOURCE_MAP.sub("", text), encoding="utf-8")
    for name in OWN_FILES:
        shutil.copyfile(SOURCES / name, folder / name)


def write_map(folder, one):
    """One map with its page, in the folder itself."""
    write_leaflet(folder)
    write_page(folder / "leaflet.html", "map", one.title, one.described())
    for name in filter(None, one.kml.values()):
        (folder / name).write_text("<kml/>", encoding="utf-8")
    for z, (west, south, east, north) in one.levels().items():
        for column in range(west, east + 1):
            for row in range(south, north + 1):
                kind = one.kind(int(z), column, row)
                write_tile(folder / z / str(column) / f"{row}.{kind}", int(z), column, row, one.corners())


def write_maps(folder, maps, title="Three fields"):
    """The index page, and a folder for each map."""
    write_leaflet(folder)
    write_page(folder / "index.html", "maps", title, [one.described() for one in maps])
    for one in maps:
        write_map(folder / one.folder, one)


def write_tile(path, z, column, row, corners):
    """Fields with paths between them; transparent where the orthophoto does not reach."""
    size = 2 * EDGE / 2**z
    steps = (numpy.arange(256) + 0.5) / 256
    x = (column + steps)[None, :] * size - EDGE + numpy.zeros((256, 1))
    y = (row + 1 - steps)[:, None] * size - EDGE + numpy.zeros((1, 256))
    west, south, east, north = corners
    path_here = (numpy.sin(x / 30) * numpy.cos(y / 20) > 0.8) | (numpy.abs((x - y) % 90) < 4)
    green = 120 + 40 * numpy.sin(x / 45 + numpy.sin(y / 60)) + 25 * numpy.sin(x / 3)
    bands = [numpy.where(path_here, 205, green * 0.8), numpy.where(path_here, 195, green), green * 0.5]
    bands.append(numpy.where((x >= west) & (x < east) & (y >= south) & (y < north), 255, 0))
    is_opaque = path.suffix == ".jpg"
    bands = bands[:3] if is_opaque else bands
    memory = gdal.GetDriverByName("MEM").Create("", 256, 256, len(bands), gdal.GDT_Byte)
    for number, band in enumerate(bands, 1):
        memory.GetRasterBand(number).WriteArray(numpy.clip(band, 0, 255).astype(numpy.uint8))
    path.parent.mkdir(parents=True, exist_ok=True)
    # GDAL would have names with "%" in ways of its own.
    gdal.GetDriverByName("JPEG" if is_opaque else "PNG").CreateCopy("/vsimem/tile", memory)
    length = gdal.VSIStatL("/vsimem/tile").size
    file = gdal.VSIFOpenL("/vsimem/tile", "rb")
    path.write_bytes(bytes(gdal.VSIFReadL(1, length, file)))
    gdal.VSIFCloseL(file)
