"""The engine with several threads under ThreadSanitizer, which ends a run at the first race that it sees.
MOSAICON_TILER is the engine that is built for it."""

import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent / "testing"))
import engine_cases as cases  # noqa: E402

ENGINE = os.environ["MOSAICON_TILER"]
SEEDS = (14, 3, 7)  # a large one, which has most of the work, and others


class Threads(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="wiesen é ")
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.reports = self.folder / "report"
        # Of deadlocks it would tell those that GDAL may have within itself.
        self.options = f"halt_on_error=1:detect_deadlocks=0:exitcode=66:log_path='{self.reports}'"

    def run_engine(self, case, image, *more):
        result = cases.run(
            [ENGINE, *more],
            case.arguments,
            image,
            self.folder / "m",
            self.folder / "log",
            TSAN_OPTIONS=self.options,
        )
        for report in self.folder.glob("report*"):
            self.fail(report.read_text())
        return result

    def test_meet_no_race(self):
        for seed in SEEDS:
            image = self.folder / f"{seed}.tif"
            case = cases.make_case(seed, image)
            with self.subTest(case.kind):
                self.assertEqual(self.run_engine(case, image, "--threads=4"), (0, "RESULT OK"))
        self.assertGreater(len(list(self.folder.glob("m/*/*/*.png"))), 40)

    def test_meet_no_race_at_strips_that_they_share(self):
        source, image = self.folder / "source.tif", self.folder / "bild.tif"
        case = cases.make_case(SEEDS[0], source)
        cases.gdal.Translate(
            str(image), str(source), bandList=[1, 1, 1], creationOptions=["TILED=NO", "COMPRESS=DEFLATE"]
        )
        self.assertEqual(self.run_engine(case, image, "--threads=4"), (0, "RESULT OK"))

    def test_meet_no_race_when_a_run_is_taken_up(self):
        image = self.folder / "bild.tif"
        case = cases.make_case(SEEDS[0], image)
        self.assertEqual(self.run_engine(case, image, "--threads=3", "--shard=0/1"), (0, "RESULT OK"))
        self.assertEqual(self.run_engine(case, image, "--threads=4", "--merge"), (0, "RESULT OK"))

    def test_are_watched(self):
        said = subprocess.run(
            [ENGINE, "--version"],
            env={**os.environ, "TSAN_OPTIONS": "help=1"},
            capture_output=True,
            text=True,
            check=True,
        )
        self.assertIn("ThreadSanitizer", said.stdout + said.stderr)


if __name__ == "__main__":
    unittest.main()
