"""Runs of the engine on one orthophoto. MOSAICON_TILER is the engine."""

import os
import pathlib
import shutil
import subprocess
import tempfile
import time
import unittest

import engine_cases as cases

ENGINE = os.environ["MOSAICON_TILER"]
SEED = 14  # 1,200 x 900 pixels
JOURNAL = ".mosaicon-tiles"
OK = (0, "RESULT OK")


class EngineRuns(unittest.TestCase):
    """Each test begins without an output folder; self.reference is what a run makes that nobody disturbs."""

    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory(prefix="wiesen é ")
        cls.addClassCleanup(folder.cleanup)
        cls.folder = pathlib.Path(folder.name)
        cls.image = cls.folder / "bild.tif"
        cls.arguments = cases.make_case(SEED, cls.image).arguments
        # The last part of the address, and so of the documents, is the name of the folder.
        cls.reference = cls.folder / "reference" / "m"
        start = time.monotonic()
        cases.run([ENGINE], cls.arguments, cls.image, cls.reference, cls.folder / "log")
        cls.duration = time.monotonic() - start

    def setUp(self):
        self.assertTrue((self.reference / "doc.kml").exists())
        self.assertGreater(len(list(self.reference.glob("*/*/*.png"))), 30)
        self.output = self.folder / "output" / "m"
        shutil.rmtree(self.output, ignore_errors=True)

    def run_engine(self, output, *more):
        return cases.run([ENGINE, *more], self.arguments, self.image, output, self.folder / "log")

    def start_engine(self, *more, log="log of its own"):
        run = subprocess.Popen(
            [ENGINE, *more, *self.arguments, str(self.image), str(self.output)],
            env={**os.environ, "MOSAICON_TILER_LOG": str(self.folder / log)},
            stdout=subprocess.DEVNULL,
        )
        self.addCleanup(run.wait)
        self.addCleanup(run.kill)
        return run

    def check_end(self):
        names = cases.files_of(self.reference)
        self.assertEqual(cases.files_of(self.output), names)
        for name in names:
            self.assertEqual((self.output / name).read_bytes(), (self.reference / name).read_bytes(), name)
