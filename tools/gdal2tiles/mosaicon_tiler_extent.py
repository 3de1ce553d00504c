"""Whether the tiles of a web map can hold an image.

The map is cut open at 180 degrees of longitude and ends at 85 degrees of
latitude. The tiler knows nothing of that: it stretches an image that lies on
both sides of the cut over the whole globe, where it is a speck at the coarsest
level, and drops without a word what lies beyond the ends.
"""

import math

from osgeo import gdal, osr

from mosaicon_tiler_errors import TilerError

LATITUDE_LIMIT = 85.0511287798066  # where the map of the whole globe is a square
HALF_GLOBE = 180.0
SAMPLES = 20  # steps in each direction


def _positions(size):
    """Centres of pixels from the first to the last: an image may end exactly at the limits."""
    steps = min(SAMPLES, size - 1)
    return [0.5 + (size - 1) * i / max(1, steps) for i in range(steps + 1)]


def _longitudes_and_latitudes(dataset, srs):
    """Rows of (longitude, latitude) in degrees, the longitude from -180 to 180."""
    degrees = osr.SpatialReference()
    degrees.ImportFromEPSG(4326)
    options = ["SRC_SRS=" + srs.ExportToWkt(), "DST_SRS=" + degrees.ExportToWkt()]
    columns, rows = map(_positions, (dataset.RasterXSize, dataset.RasterYSize))
    try:
        transformer = gdal.Transformer(dataset, None, options + ["INSERT_CENTER_LONG=NO"])
        points, found = transformer.TransformPoints(0, [(x, y) for y in rows for x in columns])
    except RuntimeError:
        points, found = [], []
    if not all(found) or not all(math.isfinite(p[0] + p[1]) for p in points):
        points = []
    if not points:
        raise TilerError("the image has parts that lie nowhere on the globe")
    points = [((x + HALF_GLOBE) % 360.0 - HALF_GLOBE, y) for x, y, _ in points]
    return [points[i : i + len(columns)] for i in range(0, len(points), len(columns))]


def _span(longitudes):
    """Degrees from the westernmost to the easternmost of neighbours, counted on across the cut."""
    place = 0.0
    places = [place]
    for here, there in zip(longitudes, longitudes[1:]):
        place += (there - here + HALF_GLOBE) % 360.0 - HALF_GLOBE
        places.append(place)
    return max(places) - min(places)


def check_extent(dataset, srs):
    """Raises TilerError when the tiles would not hold the image."""
    grid = _longitudes_and_latitudes(dataset, srs)
    lines = [[x for x, _ in line] for line in [*grid, *zip(*grid)]]
    if any(_span(line) > HALF_GLOBE for line in lines):
        raise TilerError("the image covers more than half of the globe")
    if any(abs(latitude) > LATITUDE_LIMIT for row in grid for _, latitude in row):
        raise TilerError("the image reaches beyond 85.05 degrees of latitude, where web maps end")
    if any(max(line) - min(line) > HALF_GLOBE for line in lines):
        raise TilerError(
            "the image reaches across 180 degrees of longitude, where web maps are cut"
            " open; tile its western and its eastern part on their own"
        )
