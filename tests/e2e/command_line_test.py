"""What the program does with its command line, and what it remembers of it."""

import re
import subprocess
import unittest

from osgeo import gdal

from batch_support import PATIENCE, WINE, BatchTest, snapshot, start_wine, windows_path
from rasters import NATIONAL_GRID, make_raster
from results import Job, ResultChecks

BATCH_SETTINGS = r"^HKEY_CURRENT_USER\\Software\\[^\\]+\\Mosaicon Batch(\\|$)"
TRY_HELP = "Try mosaicon-batch --help"


def setUpModule():
    start_wine()


class Information(BatchTest):
    def test_help_names_every_option_and_exit_code(self):
        run = self.batch("--help")
        self.assertEqual((run.code, run.errors), (0, []))
        self.assertTrue(run.output[0].startswith("Usage: mosaicon-batch "))
        text = "\n".join(run.output)
        for word in (
            "--target",
            "--title",
            "--url",
            "--google-key",
            "--transparency",
            "--resampling",
            "--overwrite",
            "--quiet",
            "--help",
            "--version",
            " 0 ",
            " 1 ",
            " 2 ",
            "3 ",
            "130 ",
        ):
            self.assertIn(word, text)

    def test_help_goes_before_all_else(self):
        self.assertEqual(self.batch("none.tif", "--help").code, 0)

    def test_version(self):
        run = self.batch("--version")
        self.assertEqual((run.code, run.errors, len(run.output)), (0, [], 1))
        self.assertRegex(run.output[0], r"^mosaicon-batch \d+\.\d+\.\d+$")


class WrongArguments(BatchTest):
    def setUp(self):
        super().setUp()
        self.photo = make_raster(self.folder / "photo.tif", NATIONAL_GRID)

    def assert_refused(self, arguments, *errors):
        with self.subTest(arguments=arguments):
            before = snapshot(self.folder)
            run = self.batch(*arguments)
            self.assertEqual((run.code, run.output, run.errors), (2, [], list(errors)))
            self.assertEqual(snapshot(self.folder), before)
            self.assertFalse((self.folder / "out").exists())

    def test_are_told_in_a_sentence(self):
        given = ("--target", "out", "photo.tif")
        colour = "--transparency needs six hexadecimal digits RRGGBB, not "
        cases = {
            (): "no orthophoto or folder is given",
            ("--target", "out"): "no orthophoto or folder is given",
            ("photo.tif",): "--target is missing: name the folder for the result",
            ("photo.tif", "--target"): "--target needs a value",
            (*given, "--colour", "1"): "unknown option --colour",
            (*given, "--transparency", "white"): colour + '"white"',
            (*given, "--transparency=FFF"): colour + '"FFF"',
            (*given, "--overwrite", "maybe"): '--overwrite needs yes or no, not "maybe"',
            (*given, "--url="): "--url needs an address",
            (*given, "--title", "a/b"): '--title must not contain any of \\ / : * ? " < > |',
            (*given, "--google-key", "a b"): "--google-key must not contain blanks or quotes",
            (
                *given,
                "--resampling",
                "best",
            ): "--resampling knows average, near, bilinear, cubic, cubicspline, lanczos, "
            'antialias, not "best"',
        }
        for arguments, problem in cases.items():
            self.assert_refused(arguments, "mosaicon-batch: " + problem, TRY_HELP)

    def test_that_are_empty_are_refused(self):
        self.assert_refused(("--target", "out", ""), "mosaicon-batch: an input is an empty text", TRY_HELP)

    def test_root_folders_are_refused(self):
        for root in ("Z:\\", "z:/", "C:\\", "\\", "Z:\\tmp\\.."):
            self.assert_refused(
                ("--target", root, "photo.tif"), "mosaicon-batch: Root folders (e.g. c:\\) are not allowed! "
            )

    def test_addresses_with_accents_are_refused(self):
        self.assert_refused(
            ("--target", "out", "photo.tif", "--url", "http://example.org/città"),
            "mosaicon-batch: No accented words must be included into target absolute url. " "Please check it",
        )


class Quiet(BatchTest, ResultChecks):
    def test_prints_nothing_when_all_is_well(self):
        run = self.batch(
            "--quiet", "--target", "out", "--url", "example.org/out", make_raster(self.folder / "photo.tif")
        )
        self.assertEqual((run.code, run.output, run.errors), (0, [], []))
        self.assert_links_resolve(self.folder / "out")

    def test_prints_what_failed(self):
        complex_numbers = make_raster(self.folder / "complex.tif", kind=gdal.GDT_CInt16)
        run = self.batch("--quiet", "--target", "out", complex_numbers)
        self.assertEqual(run.output, [])
        self.assert_failed(
            run,
            (complex_numbers, "the image has 32-bit pixels (CInt16); convert it to 8 bits before tiling"),
        )


class Paths(BatchTest, ResultChecks):
    def test_may_be_relative_and_mixed(self):
        (self.folder / "in" / "deep").mkdir(parents=True)
        (self.folder / "all").mkdir()
        orthophotos = [
            make_raster(self.folder / name)
            for name in ("in/deep/1.tif", "in/2.tif", "3.tif", "all/4.tif", "--5.tif")
        ]
        job = Job(self.folder / "in" / "out_of_it", 5)
        run = self.batch(
            "--target",
            "all\\..\\in/out of it\\",
            "in\\deep\\1.tif",
            "in/2.tif",
            ".\\3.tif",
            "all\\",
            "--",
            "--5.tif",
        )
        self.assertEqual((run.code, run.errors), (0, []), run)
        self.assert_output(run, job.output(orthophotos))
        for index in range(job.count):
            self.assert_links_resolve(job.folder(index))

    def test_of_the_tools_do_not_depend_on_the_current_folder(self):
        """Only the program's own folder counts, however it was named."""
        stage = self.private_stage()
        photo = make_raster(self.folder / "photo.tif", NATIONAL_GRID)
        environment = self.environment()
        finished = subprocess.run(
            [WINE, "mosaicon-batch.exe", "--target", windows_path(self.folder / "out"), windows_path(photo)],
            cwd=stage,
            env=environment,
            stdin=subprocess.DEVNULL,
            capture_output=True,
            timeout=PATIENCE,
            check=False,
        )
        self.assertEqual((finished.returncode, finished.stderr), (0, b""))
        self.assert_links_resolve(self.folder / "out")


class Settings(BatchTest):
    def registry(self):
        """Everything under HKEY_CURRENT_USER: values by key."""
        path = self.folder / "registry"
        subprocess.run(
            [WINE, "reg", "export", "HKCU", windows_path(path), "/y"],
            check=True,
            stdin=subprocess.DEVNULL,
            stdout=subprocess.DEVNULL,
            timeout=PATIENCE,
        )
        sections = re.split(r"\r\n\[(.*?)\]\r\n", path.read_bytes().decode("utf-16"))
        return {
            key: sorted(filter(None, values.split("\r\n")))
            for key, values in zip(sections[1::2], sections[2::2])
        }

    def test_are_kept_apart_from_those_of_the_window(self):
        photo = make_raster(self.folder / "photo.tif")
        before = self.registry()
        run = self.batch(
            "--target",
            "my out",
            "--title",
            "My map",
            "--url",
            "example.org/a",
            "--google-key",
            "K-1",
            "--transparency",
            "010AFF",
            "--resampling",
            "lanczos",
            photo,
        )
        self.assertEqual((run.code, run.errors), (0, []), run)
        after = self.registry()
        changed = {key for key in before.keys() | after.keys() if before.get(key) != after.get(key)}
        settings = [key for key in changed if key.endswith("\\Input")]
        self.assertEqual(len(settings), 1, changed)
        for key in changed:
            self.assertRegex(key, BATCH_SETTINGS)
        folder = windows_path(self.folder / "my_out").replace("\\", "\\\\")
        self.assertEqual(
            after[settings[0]],
            [
                '"GoogleAPI"="K-1"',
                '"MapTitle"="My_map"',
                '"Resampling"="5"',
                f'"TargetFolder"="{folder}"',
                '"TargetURL"="http://example.org/a"',
                '"Transparency_B"="255"',
                '"Transparency_G"="10"',
                '"Transparency_R"="1"',
            ],
        )


if __name__ == "__main__":
    unittest.main()
