"""What tiles of the finest level ought to show: the average over the area of each of their pixels, of the
source image's square pixels at their exact places, computed in double precision."""

import math

import numpy
from osgeo import gdal, osr

gdal.UseExceptions()
TILE = 256
HALF_WORLD = math.pi * 6378137
NODES = 64  # parts of a tile's side between exactly known positions


def srs_of(text):
    srs = osr.SpatialReference()
    srs.SetFromUserInput(text)
    srs.SetAxisMappingStrategy(osr.OAMS_TRADITIONAL_GIS_ORDER)
    return srs


def texture(height, width, seed, sample=None):
    """Three bands with detail of all sizes and hard edges; or of a real image, mirrored."""
    if sample is not None:
        across = numpy.concatenate([sample, sample[:, :, ::-1]], axis=2)
        square = numpy.concatenate([across, across[:, ::-1]], axis=1)
        rows = (numpy.arange(height) + 37 * seed) % square.shape[1]
        columns = (numpy.arange(width) + 53 * seed) % square.shape[2]
        return square[:, rows][:, :, columns]
    chance = numpy.random.RandomState(seed)
    picture = numpy.zeros((3, height, width))
    size = 4
    while size < 256:
        coarse = chance.uniform(-1, 1, (3, height // size + 2, width // size + 2))
        rows, columns = numpy.arange(height) / size, numpy.arange(width) / size
        picture += size**0.8 * bilinear(coarse, rows, columns)
        size *= 2
    picture += 30 * (numpy.arange(width) // 23 % 2) + 30 * (numpy.arange(height) // 31 % 2)[:, numpy.newaxis]
    low, high = picture.min(), picture.max()
    return (5 + (picture - low) / (high - low) * 245).astype(numpy.uint8)


def bilinear(values, rows, columns):
    """At all pairs of rows and columns, which may lie between those of the values."""
    top, left = rows.astype(int), columns.astype(int)
    down, across = (rows - top)[:, numpy.newaxis], columns - left
    upper = values[..., top, :][..., left] * (1 - across) + values[..., top, :][..., left + 1] * across
    lower = (
        values[..., top + 1, :][..., left] * (1 - across) + values[..., top + 1, :][..., left + 1] * across
    )
    return upper * (1 - down) + lower * down


class Source:
    """An image with a place of its own; it is asked for positions on the map."""

    def __init__(self, path):
        image = gdal.Open(str(path))
        self.pixels = image.ReadAsArray().astype(numpy.float64)
        self.back = gdal.InvGeoTransform(image.GetGeoTransform())
        self.change = osr.CoordinateTransformation(srs_of("EPSG:3857"), srs_of(image.GetProjection()))
        self.height, self.width = self.pixels.shape[-2:]

    def positions(self, level, column, row):
        """Columns and rows of the image, of the nodes of a tile (TMS)."""
        side = 2 * HALF_WORLD / 2**level
        west, north = column * side - HALF_WORLD, (row + 1) * side - HALF_WORLD
        steps = numpy.arange(NODES + 2) / NODES * side
        points = [(west + x, north - y) for y in steps for x in steps]
        places = numpy.array(self.change.TransformPoints(points))[:, :2]
        x = self.back[0] + self.back[1] * places[:, 0] + self.back[2] * places[:, 1]
        y = self.back[3] + self.back[4] * places[:, 0] + self.back[5] * places[:, 1]
        return x.reshape(NODES + 2, NODES + 2), y.reshape(NODES + 2, NODES + 2)

    def tile(self, level, column, row, samples=16):
        """Averages of the bands that lie within the image, and what part of each pixel does. samples: in a
        pixel, along each axis."""
        xs, ys = self.positions(level, column, row)
        bands = numpy.zeros((len(self.pixels), TILE, TILE))
        covered = numpy.zeros((TILE, TILE))
        step = 32  # rows of the tile at a time
        across = (numpy.arange(TILE * samples) + 0.5) / samples / TILE * NODES
        for top in range(0, TILE, step):
            down = (numpy.arange(step * samples) + 0.5) / samples / TILE * NODES + top / TILE * NODES
            x, y = bilinear(xs, down, across), bilinear(ys, down, across)
            inside = (x >= 0) & (y >= 0) & (x < self.width) & (y < self.height)
            x, y = numpy.where(inside, x, 0).astype(int), numpy.where(inside, y, 0).astype(int)
            shape = (step, samples, TILE, samples)
            covered[top : top + step] = inside.reshape(shape).mean((1, 3))
            for band, pixels in enumerate(self.pixels):
                seen = numpy.where(inside, pixels[y, x], 0)
                bands[band, top : top + step] = seen.reshape(shape).mean((1, 3))
        return bands / numpy.maximum(covered, 1e-9), covered


def decibels(ours, truth):
    """Peak signal to noise, of arrays of grey levels."""
    return 10 * math.log10(255**2 / max(((ours - truth) ** 2).mean(), 1e-12))


def shift(ours, truth):
    """Pixels that ours is displaced by, across and down: those that explain the difference best."""
    down, across = numpy.gradient(truth, axis=(-2, -1))
    inner = (..., slice(2, -2), slice(2, -2))
    slopes = numpy.stack([across[inner].ravel(), down[inner].ravel()], axis=1)
    difference = (truth - ours)[inner].ravel()
    return numpy.linalg.lstsq(slopes, difference, rcond=None)[0]
