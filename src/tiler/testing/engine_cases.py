"""Small orthophotos of all kinds, each made from a number, and what both engines make of one."""

import dataclasses
import os
import pathlib
import random
import subprocess
import sys

import numpy
from osgeo import gdal, gdal_array, osr  # noqa: F401

TOP = pathlib.Path(__file__).resolve().parents[3]
SCRIPT = TOP / "tools" / "gdal2tiles" / "gdal2tiles.py"
PATIENCE = 600  # seconds until a run counts as hung
RADIUS = 6378137.0
WORLD = 2 * numpy.pi * RADIUS

# EPSG codes, and degrees west, south, east, north of where they are used.
SYSTEMS = [
    (3857, (-179, -80, 179, 80)),
    (4326, (-179, -84, 179, 84)),
    (32633, (12, 1, 18, 83)),
    (32733, (12, -79, 18, -1)),
    (31983, (-48, -40, -42, -1)),
    (2154, (-4, 42, 8, 51)),
    (3035, (-10, 36, 30, 68)),
    (25832, (6, 40, 12, 70)),
    (31467, (7.5, 47, 10.5, 55)),
    (27700, (-6, 50, 1, 58)),
    (28992, (4, 51, 7, 53.5)),
    (21781, (6, 46, 10, 47.5)),
    (2056, (6, 46, 10, 47.5)),
    (5070, (-120, 25, -70, 48)),
    (3413, (-100, 61, 30, 84)),
    (3031, (-100, -84, 30, -61)),
    (2193, (167, -47, 178, -35)),
    (4258, (-10, 36, 30, 70)),
]
METRES_PER_DEGREE = 111_320.0
COLOURS = [(0, 0, 0), (255, 255, 255), (255, 0, 0), (10, 200, 30)]


@dataclasses.dataclass
class Case:
    seed: int
    arguments: list  # without the image and the output folder
    kind: str  # in words, for who looks at a difference


def _srs(code):
    srs = osr.SpatialReference()
    srs.ImportFromEPSG(code)
    srs.SetAxisMappingStrategy(osr.OAMS_TRADITIONAL_GIS_ORDER)
    return srs


def _position(chance, code, area):
    """Of the upper left corner, in the system."""
    west, south, east, north = area
    longitude, latitude = chance.uniform(west, east), chance.uniform(south, north)
    if chance.random() < 0.04:  # across the date line, or where no web map reaches
        longitude, latitude = chance.choice([(179.9999, 10.0), (15.0, 85.04), (15.0, -85.04)])
    change = osr.CoordinateTransformation(_srs(4326), _srs(code))
    x, y, _ = change.TransformPoint(longitude, latitude)
    return (x, y) if numpy.isfinite(x + y) else (0.0, 0.0)


def _on_tile_edge(chance, x, y):
    """The nearest corner of a tile; pixels of a level or of another size."""
    level = chance.randint(14, 20)
    pixel = WORLD / 256 / 2**level
    tile = pixel * 256
    x, y = round(x / tile) * tile, round(y / tile) * tile
    if chance.random() < 0.5:
        pixel *= chance.uniform(0.5, 2)
    return x, y, pixel


def _geo_transform(chance, code, area):
    x, y = _position(chance, code, area)
    pixel = chance.choice([0.05, 0.2, 1, 2.5, 10, 28.5, 120, 1000]) * chance.uniform(0.8, 1.25)
    if code == 3857 and chance.random() < 0.6:
        x, y, pixel = _on_tile_edge(chance, x, y)
    if code in (4326, 4258):
        pixel /= METRES_PER_DEGREE
    across, down, turn = pixel, -pixel, 0.0
    kind = "north up"
    shape = chance.random()
    if shape < 0.08:
        down, kind = pixel, "south up"
    elif shape < 0.2 and code != 3857:
        angle = chance.uniform(-3, 3)
        across, turn = pixel * numpy.cos(angle), pixel * numpy.sin(angle)
        return (x, across, turn, y, turn, -across), "rotated"
    elif shape < 0.3:
        down, kind = down * chance.uniform(0.6, 1.6), "oblong pixels"
    return (x, across, 0.0, y, 0.0, down), kind


def _pixels(chance, bands, height, width):
    numbers = numpy.random.RandomState(chance.randint(0, 2**31))
    kind = chance.choice(["noise", "slopes", "flat"])
    if kind == "noise":
        pixels = numbers.randint(0, 256, (bands, height, width))
    elif kind == "slopes":
        rows, columns = numpy.mgrid[0:height, 0:width]
        pixels = numpy.stack([(rows * (3 + b) + columns * (7 - b)) % 256 for b in range(bands)])
    else:
        pixels = numpy.full((bands, height, width), 90)
        pixels[:, : height // 2, : width // 3] = 200
    pixels = pixels.astype(numpy.uint8)
    # A part in one of the colours that may be called transparent.
    for band, value in zip(range(bands), chance.choice(COLOURS)):
        pixels[band, height // 3 : height // 3 + height // 4 + 1, width // 4 : width // 2 + 1] = value
    return pixels, kind


def _set_control_points(chance, raster, transform, code):
    """In place of a position: corners and middle, a little displaced."""
    width, height = raster.RasterXSize, raster.RasterYSize
    points = []
    for column, row in ((0, 0), (width, 0), (0, height), (width, height), (width / 2, height / 2)):
        x, y = gdal.ApplyGeoTransform(transform, column, row)
        wobble = abs(transform[1]) * chance.uniform(-0.3, 0.3)
        points.append(gdal.GCP(x + wobble, y - wobble, 0, column, row))
    raster.SetGCPs(points, _srs(code).ExportToWkt())


def make_case(seed, path):
    """Writes the image and returns the Case. Everything depends on the seed alone."""
    chance = random.Random(seed)
    code, area = chance.choice(SYSTEMS)
    width = chance.choice([1, 2, 3, 17, 100, 256, 257, 300, 700, 1200])
    height = chance.choice([1, 2, 5, 31, 99, 256, 280, 520, 900])
    bands = chance.choice([1, 1, 2, 3, 3, 3, 3, 4, 4])
    transform, shape = _geo_transform(chance, code, area)
    options = chance.choice([[], ["TILED=YES", "BLOCKXSIZE=64", "BLOCKYSIZE=64"], ["COMPRESS=DEFLATE"]])
    has_alpha = bands in (2, 4) and chance.random() < 0.7
    raster = gdal.GetDriverByName("GTiff").Create(
        str(path), width, height, bands, gdal.GDT_Byte, [*options, "ALPHA=" + ("YES" if has_alpha else "NO")]
    )
    pixels, content = _pixels(chance, bands, height, width)
    raster.WriteArray(pixels)
    transparency = "alpha" if has_alpha else "none"
    if chance.random() < 0.15:
        _set_control_points(chance, raster, transform, code)
        shape = "control points"
    else:
        raster.SetGeoTransform(transform)
        raster.SetProjection(_srs(code).ExportToWkt())
    if chance.random() < 0.2:
        nodata = chance.choice([0, 255, 90])
        for number in range(1, bands + 1):
            raster.GetRasterBand(number).SetNoDataValue(nodata)
        transparency += ", nodata"
    if not has_alpha and chance.random() < 0.12:
        gdal.SetConfigOption("GDAL_TIFF_INTERNAL_MASK", "YES")
        raster.CreateMaskBand(gdal.GMF_PER_DATASET)
        mask = numpy.full((height, width), 255, numpy.uint8)
        mask[height // 2 :, : width // 2] = 0
        raster.GetRasterBand(1).GetMaskBand().WriteArray(mask)
        transparency += ", mask"
    raster = None
    arguments = ["-p", "mercator", "-k", "-u", chance.choice(["../", "../../karten/ä&b", "../"])]
    if chance.random() < 0.8:
        red, green, blue = chance.choice(COLOURS)
        arguments += ["-a", str(red + 256 * green + 65536 * blue)]
    if chance.random() < 0.6:
        arguments += ["-s", f"EPSG:{code}"]
    if chance.random() < 0.5:
        arguments += ["-t", chance.choice(["Title", 'Hä & "<x>"', "-dash", "it's @WEST@ 100 %"])]
    if chance.random() < 0.3:
        arguments += ["-g", "AIza$key"]
    kind = f"EPSG:{code}, {width} x {height} x {bands}, {shape}, {content}, transparency: {transparency}"
    return Case(seed, arguments, f"{kind}, arguments {arguments}")


def run(command, arguments, image, output, log, **environment):
    """Exit code and last line of the log."""
    log.write_text("")
    done = subprocess.run(
        [*map(str, command), *arguments, str(image), str(output)],
        env={**os.environ, "MOSAICON_TILER_LOG": str(log), "MOSAICON_TILER_PROCESSES": "1", **environment},
        stdin=subprocess.DEVNULL,
        capture_output=True,
        timeout=PATIENCE,
        check=False,
    )
    lines = log.read_text(encoding="utf-8").splitlines()
    return done.returncode, lines[-1] if lines else ""


def script_command():
    return [sys.executable, "-B", SCRIPT]


def files_of(folder):
    return sorted(path.relative_to(folder) for path in folder.rglob("*") if path.is_file())


def decoded(path):
    """Red, green, blue, alpha, whatever the file leaves out."""
    pixels = gdal.Open(str(path)).ReadAsArray()
    if pixels.ndim == 2:
        pixels = pixels[numpy.newaxis]
    opaque = numpy.full((1, *pixels.shape[1:]), 255, numpy.uint8)
    if pixels.shape[0] in (1, 3):
        pixels = numpy.concatenate([pixels, opaque])
    return numpy.concatenate([pixels[:1]] * 3 + [pixels[1:]]) if pixels.shape[0] == 2 else pixels


def differences(ours, theirs):
    """In words, one for each file that differs; the second number is that of tiles compared."""
    found, tiles = [], 0
    our_files, their_files = files_of(ours), files_of(theirs)
    for path in sorted(set(our_files) ^ set(their_files)):
        found.append(f"{path} is only {'ours' if path in our_files else 'theirs'}")
    for path in sorted(set(our_files) & set(their_files)):
        if path.suffix == ".png":
            tiles += 1
            a, b = decoded(ours / path), decoded(theirs / path)
            if a.shape != b.shape:
                found.append(f"{path}: {a.shape} and {b.shape}")
            elif (a != b).any():
                found.append(f"{path}: {numpy.count_nonzero((a != b).any(axis=0))} pixels differ")
        elif (ours / path).read_bytes() != (theirs / path).read_bytes():
            found.append(f"{path}: another text")
    return found, tiles
