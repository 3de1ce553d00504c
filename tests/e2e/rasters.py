"""Orthophotos for the end-to-end tests, small and of known content."""

import numpy
from osgeo import gdal, osr

gdal.UseExceptions()

# EPSG code and upper left corner.
OWN_ZONE = (32632, 500000, 4983000)  # WGS84 UTM 32 north: nothing is to be reprojected
NATIONAL_GRID = (3003, 1500000, 4983000)  # Monte Mario zone 1, to EPSG:32632
SOUTH = (31985, 288776, 9120760)  # SIRGAS 2000 UTM 25 south, to EPSG:32725
TARGET_ZONES = {OWN_ZONE: "EPSG:32632", NATIONAL_GRID: "EPSG:32632", SOUTH: "EPSG:32725"}


def wkt_of(epsg):
    srs = osr.SpatialReference()
    srs.ImportFromEPSG(epsg)
    return srs.ExportToWkt()


def picture(width, height):
    """Smooth colours that tell left from right and top from bottom, with a black square in it."""
    y, x = numpy.mgrid[0:height, 0:width]
    bands = numpy.stack([20 + x * 200 // width, 20 + y * 200 // height, 60 + (x + y) % 100])
    bands[:, height // 3 : height // 2, width // 4 : width // 3] = 0
    return bands.astype(numpy.uint8)


def solid(values, width=60, height=40, kind=numpy.uint8):
    return numpy.stack([numpy.full((height, width), value, kind) for value in values])


def noise(width, height):
    """Nothing that PNG could compress."""
    return numpy.random.RandomState(1).randint(1, 255, (3, height, width)).astype(numpy.uint8)


def make_raster(
    path,
    place=OWN_ZONE,
    pixels=None,
    pixel_size=1.2,
    kind=gdal.GDT_Byte,
    wkt=None,
    colours=(),
    palette=False,
    options=(),
):
    """Returns the path. place None: no position; wkt: instead of that of the place."""
    pixels = picture(320, 260) if pixels is None else pixels
    bands, height, width = pixels.shape
    dataset = gdal.GetDriverByName("GTiff").Create(str(path), width, height, bands, kind, list(options))
    if place:
        epsg, left, top = place
        dataset.SetProjection(wkt_of(epsg) if wkt is None else wkt)
        dataset.SetGeoTransform((left, pixel_size, 0, top, 0, -pixel_size))
    for number, colour in enumerate(colours, 1):
        dataset.GetRasterBand(number).SetColorInterpretation(colour)
    if palette:
        table = gdal.ColorTable()
        table.CreateColorRamp(0, (0, 0, 0), 255, (255, 255, 255))
        dataset.GetRasterBand(1).SetColorTable(table)
    dataset.WriteArray(pixels)
    dataset = None  # closes it
    return path


def make_endless_raster(path, size=40000):
    """One that no tiler is done with soon. It takes no room: its pixels were never written."""
    dataset = gdal.GetDriverByName("GTiff").Create(
        str(path), size, size, 3, gdal.GDT_Byte, ["SPARSE_OK=TRUE", "TILED=YES", "BIGTIFF=YES"]
    )
    epsg, left, top = OWN_ZONE
    dataset.SetProjection(wkt_of(epsg))
    dataset.SetGeoTransform((left, 0.5, 0, top, 0, -0.5))
    return path


def corners_in_degrees(path):
    """West, south, east and north of a raster, straight from its own reference."""
    dataset = gdal.Open(str(path))
    left, width, _, top, _, height = dataset.GetGeoTransform()
    source, degrees = osr.SpatialReference(), osr.SpatialReference()
    source.ImportFromWkt(dataset.GetProjection())
    degrees.ImportFromEPSG(4326)
    for srs in (source, degrees):
        srs.SetAxisMappingStrategy(osr.OAMS_TRADITIONAL_GIS_ORDER)
    to_degrees = osr.CoordinateTransformation(source, degrees)
    points = [
        to_degrees.TransformPoint(
            left + x * width * dataset.RasterXSize, top + y * height * dataset.RasterYSize
        )
        for x in (0, 1)
        for y in (0, 1)
    ]
    longitudes, latitudes = [p[0] for p in points], [p[1] for p in points]
    return min(longitudes), min(latitudes), max(longitudes), max(latitudes)


def read_pixels(path):
    """Red, green, blue and alpha of a tile, whatever its file leaves out."""
    pixels = gdal.Open(str(path)).ReadAsArray()
    if pixels.ndim == 2:
        pixels = pixels[numpy.newaxis]
    if len(pixels) % 2 == 1:
        pixels = numpy.concatenate([pixels, numpy.full_like(pixels[:1], 255)])
    return numpy.concatenate([pixels[:1]] * 3 + [pixels[1:]]) if len(pixels) == 2 else pixels
