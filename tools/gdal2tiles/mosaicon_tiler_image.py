"""Checks that an image can be tiled, and prepares it, before anything is written.

prepare() turns a Request into a TilingJob. Where the tiler would misread the
image, the job's input is a small virtual raster in the run's temporary folder:

- bands that are no colour and no transparency are left out (the tiler takes
  the last of two or four bands for transparency, whatever it holds);
- an image with transparency of its own loses its nodata values, and the
  transparent colour is not applied: the tiler would build one mask from all
  bands, in which every transparent pixel of another colour turns opaque;
- an image that is in the map's coordinate system already carries the
  transparent colour in its metadata: the tiler applies its own only to images
  that it reprojects.
"""

import os
from dataclasses import dataclass
from typing import List, Optional

from osgeo import gdal, osr

from mosaicon_tiler_arguments import Request
from mosaicon_tiler_console import log
from mosaicon_tiler_errors import TilerError, one_line
from mosaicon_tiler_extent import check_extent

MAP_SRS = 3857  # web Mercator, what the profile mercator tiles


@dataclass
class TilingJob:
    request: Request
    input: str  # what the tiler opens
    nodata: Optional[List[int]]  # one value for each colour band; None: none to apply


def _open(path):
    if not os.path.isfile(path):
        raise TilerError("the image %s does not exist" % path)
    try:
        return gdal.Open(path, gdal.GA_ReadOnly)
    except RuntimeError as error:
        raise TilerError("the image %s could not be opened: %s" % (path, one_line(error))) from error


def _bands(dataset):
    return [dataset.GetRasterBand(i + 1) for i in range(dataset.RasterCount)]


def _check_pixels(dataset):
    count = dataset.RasterCount
    if not 1 <= count <= 4:
        raise TilerError("the image has %d bands; only 1 to 4 bands of 8 bits can be tiled" % count)
    for band in _bands(dataset):
        if band.GetRasterColorTable() is not None:
            raise TilerError("the image has a colour palette; convert it to RGB before tiling")
        if band.DataType != gdal.GDT_Byte:
            raise TilerError(
                "the image has %d-bit pixels (%s); convert it to 8 bits before tiling"
                % (
                    gdal.GetDataTypeSize(band.DataType),
                    gdal.GetDataTypeName(band.DataType),
                )
            )


def _source_srs(dataset, wanted):
    srs = osr.SpatialReference()
    text = wanted or dataset.GetProjection() or dataset.GetGCPProjection()
    if not text:
        raise TilerError("the image does not say its coordinate system")
    try:
        known = srs.SetFromUserInput(text) == 0  # raises in some versions
    except RuntimeError:
        known = False
    if not known:
        raise TilerError("the coordinate system %s is not known" % (wanted or "of the image"))
    return srs


def _check_georeference(dataset):
    if dataset.GetGCPCount() == 0 and dataset.GetGeoTransform() == (0, 1, 0, 0, 0, 1):
        raise TilerError("the image has no georeference (neither position and pixel size nor control points)")


def _check_readable(path, dataset):
    """Reads the last pixel: an incomplete file opens well, but its end is missing."""
    try:
        for band in _bands(dataset):
            band.ReadRaster(dataset.RasterXSize - 1, dataset.RasterYSize - 1, 1, 1)
    except RuntimeError as error:
        raise TilerError("the image %s is incomplete or damaged: %s" % (path, one_line(error))) from error


def _is_alpha(band):
    return band.GetColorInterpretation() == gdal.GCI_AlphaBand


def _has_mask(dataset):
    """Whether a mask stands beside the bands (one that nodata values make does not count)."""
    flags = dataset.GetRasterBand(1).GetMaskFlags()
    return bool(flags & gdal.GMF_PER_DATASET) and not flags & gdal.GMF_NODATA


def _is_in_map_srs(dataset, srs):
    """The question as the tiler asks it when it decides whether to reproject."""
    target = osr.SpatialReference()
    target.ImportFromEPSG(MAP_SRS)
    return srs.ExportToProj4() == target.ExportToProj4() and dataset.GetGCPCount() == 0


def _chosen_bands(dataset):
    """Numbers of the bands to tile, colours first: 1 or 3, then alpha if there is one."""
    alpha = [i + 1 for i, band in enumerate(_bands(dataset)) if _is_alpha(band)]
    colours = [i + 1 for i in range(dataset.RasterCount) if i + 1 not in alpha]
    if not colours:
        raise TilerError("the image has no colour band")
    return colours[: 3 if len(colours) >= 3 else 1], alpha[:1]


def _write_virtual(dataset, folder, bands, metadata):
    path = os.path.join(folder, "input.vrt")
    gdal.Translate(
        path,
        dataset,
        format="VRT",
        bandList=bands,
        noData="none",
        metadataOptions=metadata,
    )
    return path


def prepare(request, folder):
    """Raises TilerError when the image cannot be tiled; writes to the temporary folder only."""
    dataset = _open(request.input)
    _check_pixels(dataset)
    srs = _source_srs(dataset, request.srs)
    _check_georeference(dataset)
    _check_readable(request.input, dataset)
    check_extent(dataset, srs)

    colours, alpha = _chosen_bands(dataset)
    bands = colours + alpha
    transparent = bool(alpha) or _has_mask(dataset)
    # Component i of the colour belongs to band i: red to the first, which is
    # also the only one of a grey image.
    nodata = list(request.colour[: len(colours)]) if request.colour else None
    if transparent and nodata:
        log("The image has its own transparency; the transparent colour is not used.")
        nodata = None
    if len(bands) != dataset.RasterCount:
        log("Of the image's bands only %s can be shown." % bands)

    has_nodata = any(b.GetNoDataValue() is not None for b in _bands(dataset))
    metadata = []
    if nodata and _is_in_map_srs(dataset, srs):
        metadata = ["NODATA_VALUES=" + " ".join(map(str, nodata))]
    path = request.input
    if bands != list(range(1, dataset.RasterCount + 1)) or (transparent and has_nodata) or metadata:
        path = _write_virtual(dataset, folder, bands, metadata)
    return TilingJob(request, path, nodata)
