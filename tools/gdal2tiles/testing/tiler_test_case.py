"""What the tests of the tiling script share: rasters, runs of the script, tiles to look at."""

import glob
import os
import re
import shutil
import subprocess
import sys
import tempfile
import unittest
from xml.etree import ElementTree

import numpy
from osgeo import gdal, osr

gdal.UseExceptions()

HERE = os.path.dirname(os.path.abspath(__file__))
SCRIPT = os.path.join(os.path.dirname(HERE), "gdal2tiles.py")
# The program that is tested in place of the script when it is set: it takes the same arguments, and must
# make the same of them.
ENGINE = os.environ.get("MOSAICON_TILER")
of_the_script = unittest.skipIf(ENGINE, "about the script's processes, or what it alone cannot tile")
UTM = 32633
WEB_MERCATOR = 3857
BLACK, RED, WHITE = 0, 255, 0xFFFFFF
FIRST_RECORD = "Progress 0.00 done"

# Far from the zone's central meridian: reprojected, the image stands askew in a collar.
UTM_CORNER = (700000, 10, 0, 5300000, 0, -10)
MERCATOR_CORNER = (1700000, 10, 0, 6000000, 0, -10)


def solid(colour, height=150, width=200):
    """An array of bands, each filled with one value."""
    bands = [numpy.full((height, width), value, numpy.uint8) for value in colour]
    return numpy.stack(bands)


def noise(bands=3, height=150, width=200):
    """No pixel is black or white; PNG cannot compress it."""
    shape = (bands, height, width)
    return numpy.random.RandomState(1).randint(1, 255, shape).astype(numpy.uint8)


def make_raster(path, array, epsg=UTM, corner=UTM_CORNER, kind=gdal.GDT_Byte, options=()):
    """Returns the path. corner None: no georeference."""
    bands, height, width = array.shape
    driver = gdal.GetDriverByName("GTiff")
    dataset = driver.Create(path, width, height, bands, kind, list(options))
    if corner:
        srs = osr.SpatialReference()
        srs.ImportFromEPSG(epsg)
        dataset.SetProjection(srs.ExportToWkt())
        dataset.SetGeoTransform(corner)
    dataset.WriteArray(array)
    dataset = None
    return path


def visible_pixels(path):
    """Of a tile, with the transparency that a file of opaque pixels may leave out."""
    pixels = gdal.Open(path).ReadAsArray()
    if len(pixels) == 3:
        pixels = numpy.concatenate([pixels, numpy.full_like(pixels[:1], 255)])
    return pixels.tobytes()


def has_own_process(pid):
    """Whether a process lives (one that only waits to be collected does not count)."""
    try:
        with open("/proc/%d/stat" % pid) as stream:
            return stream.read().rpartition(")")[2].split()[0] != "Z"
    except OSError:
        return False


def workers_of(pid):
    """Process ids of the tiler's workers."""
    found = []
    for path in glob.glob("/proc/[0-9]*/stat"):
        try:
            with open(path) as stream:
                parent = int(stream.read().rpartition(")")[2].split()[1])
            with open(path.replace("stat", "cmdline"), "rb") as stream:
                is_worker = b"spawn_main" in stream.read()
        except OSError:
            continue
        if parent == pid and is_worker:
            found.append(int(path.split("/")[2]))
    return found


class TilerTestCase(unittest.TestCase):
    """Every test has a folder with blanks and accents in its path, a log and a temp folder."""

    def setUp(self):
        self.root = os.path.join(tempfile.mkdtemp(), "Grüne Wiesen é")
        self.addCleanup(shutil.rmtree, os.path.dirname(self.root))
        self.temp = self.path("temp")
        os.makedirs(self.temp)
        self.log_file = self.path("tiler.log")
        self.output = self.path("karten 1")
        self.environment = dict(
            os.environ,
            MOSAICON_TILER_LOG=self.log_file,
            MOSAICON_TILER_PROCESSES="1",
            PYTHONDONTWRITEBYTECODE="1",
            TMPDIR=self.temp,
        )

    def path(self, *names):
        return os.path.join(self.root, *names)

    def raster(self, array, name="ortho bild.tif", **more):
        return make_raster(self.path(name), array, **more)

    def arguments(self, image, colour=BLACK, srs="EPSG:%d" % UTM, url="../", extra=()):
        line = ["-a", str(colour), "-s", srs, "-p", "mercator"]
        return line + list(extra) + ["-k", "-u", url, image, self.output]

    def start(self, arguments, python=(), **more):
        program = [ENGINE, "--sampling=gdal2tiles"] if ENGINE else [sys.executable, *python, SCRIPT]
        return subprocess.Popen(
            [*program, *arguments],
            env=self.environment,
            stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE,
            stderr=subprocess.PIPE,
            **more,
        )

    def run_script(self, arguments, **more):
        """Runs to the end; sets self.code, self.records, self.log."""
        self.collect(self.start(arguments, **more), timeout=600)

    def collect(self, process, timeout):
        try:
            output, errors = process.communicate(timeout=timeout)
        except subprocess.TimeoutExpired:
            process.kill()
            process.communicate()
            self.fail("the script did not end within %s seconds" % timeout)
        self.code = process.returncode
        self.records = output.decode().splitlines()
        self.assertEqual(errors, b"")
        self.log = self.read(self.log_file) if os.path.isfile(self.log_file) else ""

    def tile(self, image, *, colour=BLACK, **more):
        """Runs and expects success."""
        self.run_script(self.arguments(image, colour, **more))
        self.assertEqual(self.code, 0, self.log)
        self.assertEqual(self.log.splitlines()[-1], "RESULT OK")

    def assert_failed(self, reason_pattern, code=1):
        self.assertEqual(self.code, code, self.log)
        self.assertNotIn("Progress 1.00 done", self.records)
        last = self.log.splitlines()[-1]
        self.assertRegex(last, "^RESULT FAILED .*" + reason_pattern)
        self.assert_nothing_temporary()
        self.assertNotIn("doc.kml", self.files())

    def assert_nothing_temporary(self):
        self.assertEqual(os.listdir(self.temp), [])
        self.assertEqual([n for n in self.files() if n.endswith(".~mos")], [])

    def assert_no_progress(self):
        """The first record may be there, again for every two seconds that the run took."""
        self.assertLessEqual(set(self.records), {FIRST_RECORD})

    @staticmethod
    def read(path):
        with open(path, encoding="utf-8") as stream:
            return stream.read()

    def files(self, folder=None):
        """Sorted names of all files below a folder, relative to it."""
        folder = folder or self.output
        found = glob.glob(os.path.join(glob.escape(folder), "**"), recursive=True)
        return sorted(os.path.relpath(f, folder) for f in found if os.path.isfile(f))

    def tile_names(self, folder=None):
        return [n for n in self.files(folder) if re.fullmatch(r"\d+/\d+/\d+\.png", n)]

    def base_tiles(self):
        """The pixels of all tiles of the deepest level: one array, bands first."""
        names = self.tile_names()
        deepest = max(int(n.split("/")[0]) for n in names)
        names = [n for n in names if n.startswith("%d/" % deepest)]
        return numpy.concatenate(
            [gdal.Open(os.path.join(self.output, n)).ReadAsArray() for n in names], axis=1
        )

    def links(self, kml):
        """(href, path that it leads to) for every href of a KML file below the output folder."""
        path = os.path.join(self.output, kml)
        for node in ElementTree.parse(path).iter("{http://www.opengis.net/kml/2.2}href"):
            yield node.text, os.path.join(os.path.dirname(path), node.text)
