"""Orthophotos whose values are no colours yet, and what is to be seen of them, computed without GDAL."""

import numpy
from osgeo import gdal, osr

gdal.UseExceptions()
ZONE = 32632
GRID = 31467  # a national grid in the same place
CORNER = (500000.0, 5200000.0)  # in the zone, upper left
PIXEL = 0.8  # metres
TYPES = {
    numpy.dtype(kind): number
    for kind, number in (
        ("uint8", gdal.GDT_Byte),
        ("uint16", gdal.GDT_UInt16),
        ("int16", gdal.GDT_Int16),
        ("uint32", gdal.GDT_UInt32),
        ("int32", gdal.GDT_Int32),
        ("float32", gdal.GDT_Float32),
        ("float64", gdal.GDT_Float64),
    )
}


def srs(code):
    reference = osr.SpatialReference()
    reference.ImportFromEPSG(code)
    reference.SetAxisMappingStrategy(osr.OAMS_TRADITIONAL_GIS_ORDER)
    return reference


def corner(code):
    return osr.CoordinateTransformation(srs(ZONE), srs(code)).TransformPoint(*CORNER)[:2]


def write(path, pixels, code=ZONE, meanings=(), nodata=None, palette=None, mask=None, options=()):
    """pixels: bands, rows, columns."""
    bands, height, width = pixels.shape
    raster = gdal.GetDriverByName("GTiff").Create(
        str(path), width, height, bands, TYPES[pixels.dtype], options=list(options)
    )
    left, top = corner(code)
    raster.SetGeoTransform((left, PIXEL, 0, top, 0, -PIXEL))
    raster.SetProjection(srs(code).ExportToWkt())
    for number, meaning in enumerate(meanings, 1):
        raster.GetRasterBand(number).SetColorInterpretation(meaning)
    if palette is not None:
        table = gdal.ColorTable()
        for index, colour in enumerate(palette):
            table.SetColorEntry(index, tuple(map(int, colour)))
        raster.GetRasterBand(1).SetColorTable(table)
    for number in range(1, bands + 1):
        if nodata is not None:
            raster.GetRasterBand(number).SetNoDataValue(nodata)
    raster.WriteArray(pixels)
    if mask is not None:
        raster.CreateMaskBand(gdal.GMF_PER_DATASET)
        raster.GetRasterBand(1).GetMaskBand().WriteArray(mask)
    raster.FlushCache()
    return path


def write_seen(path, colours, alpha=None, code=ZONE):
    """What is to be seen, in bytes."""
    if alpha is None:
        return write(path, colours, code)
    meanings = (
        [gdal.GCI_GrayIndex]
        if len(colours) == 1
        else [gdal.GCI_RedBand, gdal.GCI_GreenBand, gdal.GCI_BlueBand]
    )
    pixels = numpy.concatenate([colours, alpha[numpy.newaxis]]).astype(numpy.uint8)
    return write(path, pixels, code, [*meanings, gdal.GCI_AlphaBand])


def value_range(values):
    """The values that two per cent are darker and brighter than."""
    values = numpy.sort(values.astype(numpy.float64).ravel())
    black, white = (values[int(share * (len(values) - 1) + 0.5)] for share in (0.02, 0.98))
    return (black, white) if black < white else (black - 1, black + 1)


def stretched(pixels, seen=None):
    """seen: which pixels count."""
    counting = pixels if seen is None else pixels[:, seen]
    black, white = value_range(counting)
    with numpy.errstate(invalid="ignore"):
        values = (pixels.astype(numpy.float64) - black) * 255 / (white - black)
    return numpy.nan_to_num(numpy.clip(numpy.floor(values + 0.5), 0, 255)).astype(numpy.uint8)


def translated_and_warped(path, to):
    """As a job does it for an image that is not in its zone; returns the second virtual raster."""
    image = gdal.Open(str(path))
    place = image.GetGeoTransform()
    change = osr.CoordinateTransformation(srs(GRID), srs(ZONE))
    points = []
    for column, row in (
        (0, 0),
        (0, image.RasterYSize),
        (image.RasterXSize, 0),
        (image.RasterXSize, image.RasterYSize),
    ):
        x, y, _ = change.TransformPoint(*gdal.ApplyGeoTransform(place, column, row))
        points.append(gdal.GCP(x, y, 0, column, row))
    image = None
    first, second = to.with_suffix(".vrt"), to.with_name(to.stem + "2.vrt")
    gdal.Translate(str(first), str(path), format="VRT", outputSRS=f"EPSG:{ZONE}", GCPs=points)
    gdal.Warp(str(second), str(first), format="VRT", dstSRS=f"EPSG:{ZONE}")
    return second
