"""The tiling engine: everything that is known here about osgeo_utils.gdal2tiles.

run() makes the pyramid of one TilingJob; another engine only has to offer
load() and run(). The rest are corrections, put into the tiler's module by
name, in this process and in every worker; each is skipped by a version that
lacks the name. Written for GDAL 3.2 to 3.12.
"""

import copy
import functools
import multiprocessing
import os
import sys
from xml.etree import ElementTree
from xml.sax.saxutils import escape

import mosaicon_tiler_files as files
from mosaicon_tiler_console import redirect_to_log
from mosaicon_tiler_errors import TilerError, one_line
from mosaicon_tiler_pool import MAXIMUM_PROCESSES, WorkerPool


def load():
    """The tiler's module. Raises TilerError when the GDAL Python package is missing."""
    try:
        from osgeo import gdal
        from osgeo_utils import gdal2tiles
    except ImportError as error:
        raise TilerError(
            "The GDAL Python package is not installed for the Python interpreter %s (%s)"
            % (sys.executable, one_line(error))
        ) from error
    # Or a pixel that cannot be read becomes a transparent one.
    gdal.UseExceptions()
    return gdal2tiles


def run(job, processes, on_progress):
    """Cuts all tiles of a TilingJob into its output folder.

    on_progress(done, total) is called in this thread as tiles are finished,
    those of the overview levels included. Raises TilerError or whatever the
    tiler raises; no worker process is left in any case.
    """
    tiler = _prepare_process()
    processes = min(processes, MAXIMUM_PROCESSES)
    _count_tiles(tiler, on_progress)
    if job.nodata:
        _fill_collar(tiler, job.nodata)
    write_pages = _write_pages_last(tiler)
    pools = []

    def make_pool(processes=processes):
        pools.append(WorkerPool(processes, _prepare_worker))
        return pools[-1]

    # Imported from there when it is needed; older versions have it already.
    multiprocessing.Pool = make_pool
    _replace(tiler, "Pool", lambda _: make_pool)
    try:
        code = tiler.main(_command_line(job, processes))
    finally:
        for pool in pools:
            pool.terminate()
    if code:
        raise TilerError("the tiler ended with code %s" % code)
    write_pages()


def _command_line(job, processes):
    request = job.request
    # "--name=value": a value that looks like an option stays a value.
    line = [
        "gdal2tiles.py",
        "--profile=mercator",
        "--processes=%d" % processes,
        "--title=" + request.title,
    ]
    if job.nodata:
        line.append("--srcnodata=" + ",".join(map(str, job.nodata)))
    if request.srs:
        line.append("--s_srs=" + request.srs)
    if request.kml:
        line.append("-k")
    if request.url:
        line.append("--url=" + request.url)
    if request.key:
        line.append("--googlekey=" + request.key)
    return line + [job.input, request.output]


def _prepare_worker():
    redirect_to_log()  # Windows does not hand the redirection down
    _prepare_process()


def _prepare_process():
    tiler = load()
    _write_whole_tiles(tiler.gdal)
    tiler.open = files.open_whole
    _replace(tiler, "my_open", lambda _: files.open_whole)
    _replace(tiler, "exit_with_error", lambda _: _fail)
    _replace(tiler, "generate_kml", _correct_kml)
    _replace(tiler.GDAL2Tiles, "generate_tilemapresource", _escape_tile_map_url)
    return tiler


def _replace(owner, name, make):
    plain = getattr(owner, name, None)
    if plain is not None:
        setattr(owner, name, make(plain))


def _fail(message, details=""):
    """For the tiler's own function, which prints its usage and exits."""
    raise TilerError(message)


def _escaped(url):
    return escape(url, {'"': "&quot;"})


def _correct_kml(plain):
    @functools.wraps(plain)
    def generate_kml(tx, ty, tz, ext, size, swne, options, *rest, **more):
        options = copy.copy(options)
        if tx is None:
            # doc.kml. Its link rewriter repeats the last line when a line
            # break follows it, so the file must end in the closing tag.
            options.url = _escaped(options.url)
        elif options.url:
            # The KML of a tile lies two folders below the one that url is for.
            options.url = "../../"
        text = plain(tx, ty, tz, ext, size, swne, options, *rest, **more)
        return text.rstrip() if tx is None else text

    return generate_kml


def _escape_tile_map_url(plain):
    @functools.wraps(plain)
    def generate_tilemapresource(self):
        url = self.options.url
        self.options.url = _escaped(url)
        try:
            return plain(self)
        finally:
            self.options.url = url

    return generate_tilemapresource


def _fill_collar(tiler, nodata):
    """Gives what lies outside the reprojected image the transparent colour.

    The tiler adds INIT_DEST=NO_DATA beside the INIT_DEST=0 that is there
    already and wins, so around an image whose transparent colour is not black
    stands an opaque black collar.
    """

    def make(plain):
        @functools.wraps(plain)
        def add_gdal_warp_options_to_string(vrt, options):
            options = dict(options)
            if "INIT_DEST" not in options:
                return plain(vrt, options)
            root = ElementTree.fromstring(vrt)
            for parent in root.iter("GDALWarpOptions"):
                for option in parent.findall("Option[@name='INIT_DEST']"):
                    parent.remove(option)
            options["INIT_DEST"] = ",".join(map(str, nodata))
            return plain(ElementTree.tostring(root, encoding="unicode"), options)

        return add_gdal_warp_options_to_string

    _replace(tiler, "add_gdal_warp_options_to_string", make)


def _count_tiles(tiler, on_progress):
    """Makes the tiler's two progress bars, base and overview tiles, one count."""
    count = {"done": 0, "total": 0}

    class ProgressBar:
        def __init__(self, total_items):
            pass

        def start(self):
            pass

        def log_progress(self, nb_items=1):
            count["done"] += nb_items
            on_progress(count["done"], count["total"])

    def make(plain):
        @functools.wraps(plain)
        def worker_tile_details(*args, **kwargs):
            conf, details = plain(*args, **kwargs)
            count["total"] = len(details)
            for zoom in range(conf.tminz, conf.tmaxz):
                west, south, east, north = conf.tminmax[zoom]
                count["total"] += (1 + east - west) * (1 + north - south)
            return conf, details

        return worker_tile_details

    tiler.ProgressBar = ProgressBar
    _replace(tiler, "worker_tile_details", make)


def _write_pages_last(tiler):
    """Keeps the tiler from writing its pages and doc.kml before the tiles that they show.

    Returns the function that writes them; a run that fails or is killed before
    leaves no document whose links lead nowhere.
    """
    pages = []

    def make(plain):
        @functools.wraps(plain)
        def generate_metadata(self):
            os.makedirs(self.output_folder, exist_ok=True)
            pages.append(functools.partial(plain, self))

        return generate_metadata

    _replace(tiler.GDAL2Tiles, "generate_metadata", make)

    def write_pages():
        for write in pages:
            write()

    return write_pages


def _write_whole_tiles(gdal):
    """Encodes tiles in memory and lets them appear in the folder complete or not at all."""
    plain = gdal.Driver.CreateCopy

    @functools.wraps(plain)
    def create_copy(driver, name, *args, **kwargs):
        if not name or name.startswith("/vsi") or driver.ShortName in ("MEM", "VRT"):
            return plain(driver, name, *args, **kwargs)
        memory = "/vsimem/mosaicon_tile_%d" % os.getpid()
        try:
            if plain(driver, memory, *args, **kwargs) is None:
                raise TilerError("the tile %s could not be encoded" % name)
            files.write_file(name, _content(gdal, memory))
        finally:
            for left in (memory, memory + ".aux.xml"):
                if gdal.VSIStatL(left) is not None:
                    gdal.Unlink(left)
        return None

    gdal.Driver.CreateCopy = create_copy


def _content(gdal, path):
    size = gdal.VSIStatL(path).size
    stream = gdal.VSIFOpenL(path, "rb")
    try:
        return bytes(gdal.VSIFReadL(1, size, stream))
    finally:
        gdal.VSIFCloseL(stream)
