"""The engine beside the tiling script and the gdal2tiles that is installed, on small orthophotos of all
kinds. MOSAICON_TILER is the engine. scripts/compare-engines goes on with others."""

import os
import pathlib
import sys
import tempfile
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent / "testing"))
import engine_cases as cases  # noqa: E402

ENGINE = os.environ["MOSAICON_TILER"]
SAMPLING = "--sampling=gdal2tiles"
SEEDS = range(40)


class Comparison(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="wiesen é ")
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def make(self, seed):
        image = self.folder / f"{seed}.tif"
        return cases.make_case(seed, image), image

    def run_engine(self, case, image, name, *more):
        output = self.folder / name / "m"
        result = cases.run([ENGINE, SAMPLING, *more], case.arguments, image, output, self.folder / "log")
        return result, output

    def test_makes_what_the_script_makes(self):
        tiles = 0
        for seed in SEEDS:
            case, image = self.make(seed)
            with self.subTest(case.kind, seed=seed):
                ours, output = self.run_engine(case, image, f"ours {seed}")
                reference = self.folder / f"theirs {seed}" / "m"
                theirs = cases.run(
                    cases.script_command(), case.arguments, image, reference, self.folder / "log"
                )
                self.assertEqual(ours, theirs)
                found, count = cases.differences(output.parent, reference.parent)
                self.assertEqual(found, [])
                tiles += count
        self.assertGreater(tiles, 200)

    def test_writes_the_same_bytes_whatever_the_number_of_threads(self):
        case, image = self.make(14)
        _, one = self.run_engine(case, image, "1", "--threads=1")
        names = cases.files_of(one)
        self.assertGreater(len(names), 20)
        for threads in ("2", "3", "16"):
            _, more = self.run_engine(case, image, threads, "--threads", threads)
            self.assertEqual(cases.files_of(more), names)
            for name in names:
                self.assertEqual((one / name).read_bytes(), (more / name).read_bytes(), name)

    def test_finds_a_difference(self):
        case, image = self.make(1)
        _, one = self.run_engine(case, image, "one")
        _, two = self.run_engine(case, image, "two")
        self.assertEqual(cases.differences(one, two)[0], [])
        tile = next(name for name in cases.files_of(one) if name.suffix == ".png")
        pixels = cases.gdal.Open(str(one / tile)).ReadAsArray()
        pixels[0, 0, 0] ^= 1
        memory = cases.gdal_array.OpenArray(pixels)
        cases.gdal.GetDriverByName("PNG").CreateCopy(str(two / tile), memory)
        (two / "doc.kml").unlink()
        self.assertEqual(cases.differences(one, two)[0], ["doc.kml is only ours", f"{tile}: 1 pixels differ"])


if __name__ == "__main__":
    unittest.main()
