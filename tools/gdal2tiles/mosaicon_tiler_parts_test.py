"""The parts of the tiling script that need no tiles: log, arguments, files, worker pool."""

import contextlib
import functools
import os
import shutil
import tempfile
import time
import unittest
from unittest import mock

import mosaicon_tiler_arguments as arguments
import mosaicon_tiler_console as console
import mosaicon_tiler_files as files
from mosaicon_tiler_errors import TilerError, reason_of
from mosaicon_tiler_pool import WorkerPool
from testing.tiler_test_case import TilerTestCase, solid


class Log(TilerTestCase):
    def fail_quickly(self):
        """A run that ends at once, with its log wherever the environment puts it."""
        self.run_script(self.arguments(self.path("no.tif")))
        self.assertEqual(self.code, 1)

    def test_run_has_a_start_line_and_a_result_line(self):
        self.fail_quickly()
        lines = self.log.splitlines()
        self.assertRegex(
            lines[0],
            r"^START \d{4}-\d\d-\d\d \d\d:\d\d:\d\d Python [\d.]+ .*GDAL [\d.]+.*no\.tif",
        )
        self.assertTrue(lines[-1].startswith("RESULT FAILED the image "))

    def test_second_run_is_appended(self):
        self.fail_quickly()
        self.fail_quickly()
        self.assertEqual(self.log.count("START "), 2)

    def use_standard_log(self):
        del self.environment["MOSAICON_TILER_LOG"]
        self.environment["LOCALAPPDATA"] = self.root
        self.log_file = self.path("Mosaicon", "Logs", "gdal2tiles.log")
        os.makedirs(os.path.dirname(self.log_file))

    def test_large_log_is_rotated(self):
        self.use_standard_log()
        old = "x" * (console.MAXIMUM_LOG_SIZE + 1)
        with open(self.log_file, "w") as stream:
            stream.write(old)
        self.fail_quickly()
        self.assertTrue(self.log.startswith("START "))
        self.assertEqual(self.read(self.log_file + ".old"), old)

    def test_log_that_the_caller_named_is_never_rotated(self):
        with open(self.log_file, "w") as stream:
            stream.write("x" * (console.MAXIMUM_LOG_SIZE + 1))
        self.fail_quickly()
        self.assertFalse(os.path.exists(self.log_file + ".old"))
        self.assertTrue(self.log.splitlines()[-1].startswith("RESULT FAILED "))

    def test_log_at_the_limit_is_kept(self):
        self.use_standard_log()
        with open(self.log_file, "w") as stream:
            stream.write("x" * console.MAXIMUM_LOG_SIZE)
        self.fail_quickly()
        self.assertFalse(os.path.exists(self.log_file + ".old"))

    def test_log_that_cannot_be_opened_does_not_stop_the_run(self):
        with open(self.path("file"), "w"):
            pass
        self.environment["MOSAICON_TILER_LOG"] = self.path("file", "log")
        self.run_script(self.arguments(self.raster(solid((1, 2, 3)))))
        self.assertEqual(self.code, 0)
        self.assertEqual(self.records[-1], "Progress 1.00 done")

    @unittest.skipUnless(os.path.exists("/dev/full"), "needs a device that is always full")
    def test_log_that_cannot_be_written_does_not_stop_the_run(self):
        self.environment["MOSAICON_TILER_LOG"] = "/dev/full"
        for processes in ("1", "2"):
            with self.subTest(processes):
                self.environment["MOSAICON_TILER_PROCESSES"] = processes
                self.run_script(self.arguments(self.raster(solid((1, 2, 3)))))
                self.assertEqual(self.code, 0)
                self.assertEqual(self.records[-1], "Progress 1.00 done")
                self.assertIn("doc.kml", self.files())
                shutil.rmtree(self.output)
        self.run_script(self.arguments(self.path("no.tif")))
        self.assertEqual(self.code, 1)

    def test_default_places(self):
        del self.environment["MOSAICON_TILER_LOG"]
        self.environment.pop("LOCALAPPDATA", None)
        self.environment["XDG_STATE_HOME"] = self.path("state")
        self.fail_quickly()
        self.environment["LOCALAPPDATA"] = self.path("local")
        self.fail_quickly()
        for names in (("state", "mosaicon"), ("local", "Mosaicon", "Logs")):
            log = self.read(self.path(*names, "gdal2tiles.log"))
            self.assertEqual(log.count("START "), 1)


class ProgressRecords(unittest.TestCase):
    def setUp(self):
        self.reader, self.writer = os.pipe()

    def written(self):
        """The fractions in the pipe, which is closed for it."""
        os.close(self.writer)
        with os.fdopen(self.reader) as stream:
            return [line.split(" ")[1] for line in stream]

    def test_only_new_whole_per_cents_are_written(self):
        records = console.ProgressRecords(self.writer, heartbeat=60)
        records.start()
        for done, total in ((1, 1000), (10, 1000), (19, 1000), (5, 1000), (1000, 1000)):
            records.report(done, total)
        records.report(1001, 1000)
        records.finish()
        records.close()
        self.assertEqual(self.written(), ["0.00", "0.01", "0.99", "1.00"])

    def test_last_one_is_repeated_in_a_time_of_silence(self):
        records = console.ProgressRecords(self.writer, heartbeat=0.01)
        self.assertEqual(os.read(self.reader, 19), b"Progress 0.00 done\n")
        records.report(37, 100)
        last = b""
        while last != b"Progress 0.37 done\n" * 3:
            last = (last + os.read(self.reader, 19))[-57:]
        records.close()
        self.assertEqual(set(self.written()) - {"0.37"}, set())

    def test_reader_that_has_gone_is_no_failure(self):
        os.close(self.reader)
        records = console.ProgressRecords(self.writer)
        records.start()
        records.finish()
        records.close()
        os.close(self.writer)

    def test_missing_output_is_no_failure(self):
        records = console.ProgressRecords(None)
        records.start()
        records.finish()
        records.close()
        self.assertEqual(self.written(), [])

    def test_nobody_waits_for_a_pipe_that_nobody_empties(self):
        os.set_blocking(self.writer, False)
        with contextlib.suppress(BlockingIOError):
            while True:
                os.write(self.writer, b" " * 4096)
        os.set_blocking(self.writer, True)
        records = console.ProgressRecords(self.writer, heartbeat=0.01)
        for done in range(101):
            records.report(done, 100)
        records.finish()
        with mock.patch.object(console, "LAST_RECORD_SECONDS", 0.1):
            records.close()
        # Whoever reads in the end finds them all, and in order.
        with os.fdopen(self.reader, "rb") as stream:
            os.read(self.reader, 1 << 20)
            for percent in range(101):
                expected = b"Progress %.2f done\n" % (percent / 100)
                while (line := stream.readline().lstrip()) != expected:
                    self.assertEqual(line, b"Progress 0.00 done\n")
        os.close(self.writer)


class Arguments(unittest.TestCase):
    def test_colour_is_unpacked(self):
        for text, colour in (
            ("0", (0, 0, 0)),
            ("255", (255, 0, 0)),
            ("65280", (0, 255, 0)),
            ("16711680", (0, 0, 255)),
            ("16777215", (255, 255, 255)),
            ("197121", (1, 2, 3)),
        ):
            self.assertEqual(arguments.unpack_colour(text), colour)

    def test_key_is_hidden(self):
        for given, shown in (
            (["-g", "key", "in", "out"], ["-g", "***", "in", "out"]),
            (["-gkey", "in"], ["-g***", "in"]),
            (["-k", "in"], ["-k", "in"]),
        ):
            self.assertEqual(arguments.without_key(given), shown)

    def test_reason_is_one_line(self):
        self.assertEqual(reason_of(TilerError("a\n  b\r\n")), "a b")


class Files(TilerTestCase):
    def test_failed_write_keeps_the_old_file(self):
        path = self.path("tile.png")
        files.write_file(path, b"old")
        with mock.patch("os.replace", side_effect=OSError(28, "No space left")):
            with self.assertRaisesRegex(TilerError, "tile.png: the disk is full"):
                files.write_file(path, b"new")
        self.assertEqual(self.read(path), "old")
        self.assertEqual(sorted(os.listdir(self.root)), ["temp", "tile.png"])

    def test_file_that_a_scanner_holds_is_tried_again(self):
        path = self.path("tile.png")
        real, held = os.replace, [PermissionError(13, "held"), PermissionError(13, "held")]

        def replace(source, target):
            if held:
                raise held.pop()
            real(source, target)

        with mock.patch("os.replace", replace):
            files.write_file(path, b"new")
        self.assertEqual(self.read(path), "new")

    def test_interrupted_text_is_not_written(self):
        path = self.path("doc.kml")
        with self.assertRaises(ZeroDivisionError):
            with files.open_whole(path, "w") as stream:
                stream.write("half")
                1 / 0
        self.assertFalse(os.path.exists(path))

    def test_partial_files_of_killed_workers_are_removed(self):
        os.makedirs(self.path("out", "3", "4"))
        for name in ("5.png", "6.png" + files.PARTIAL_SUFFIX):
            with open(self.path("out", "3", "4", name), "w"):
                pass
        files.remove_partial_files(self.path("out"))
        self.assertEqual(self.files(self.path("out")), ["3/4/5.png"])

    def test_only_old_run_folders_are_removed(self):
        now = time.time()
        for name, age in (
            (files.RUN_FOLDER_PREFIX + "old", 3),
            (files.RUN_FOLDER_PREFIX + "young", 1),
            ("another-old", 3),
        ):
            folder = os.path.join(self.temp, name)
            os.makedirs(os.path.join(folder, "inner"))
            os.utime(folder, (now, now - age * 24 * 3600))
        with mock.patch("tempfile.tempdir", self.temp):
            files.remove_stale_run_folders()
        self.assertEqual(
            sorted(os.listdir(self.temp)),
            ["another-old", files.RUN_FOLDER_PREFIX + "young"],
        )


def prepare_nothing():
    """Workers find these functions by name, so they cannot be local to a test."""


def make_file(folder, item):
    with open(os.path.join(folder, str(item)), "x"):
        pass


def die_at_start():
    os._exit(3)


def die_at_seven(item):
    if item == 7:
        os._exit(4)


def fail_at_seven(item):
    if item == 7:
        raise ValueError("seven")


class Pool(unittest.TestCase):
    def run_pool(self, function, prepare=prepare_nothing):
        begin = time.monotonic()
        try:
            with WorkerPool(2, prepare) as pool:
                return len(list(pool.imap_unordered(function, range(100), 5)))
        finally:
            self.assertLess(time.monotonic() - begin, 120)

    def test_every_item_is_done(self):
        with tempfile.TemporaryDirectory() as folder:
            touch = functools.partial(make_file, folder)
            self.assertEqual(self.run_pool(touch), 100)
            self.assertEqual(len(os.listdir(folder)), 100)

    def test_failure_of_an_item_is_told(self):
        with self.assertRaisesRegex(TilerError, "ValueError: seven"):
            self.run_pool(fail_at_seven)

    def test_death_of_a_worker_is_told(self):
        with self.assertRaisesRegex(TilerError, r"\(exit code 4\)"):
            self.run_pool(die_at_seven)

    def test_death_of_a_starting_worker_is_told(self):
        with self.assertRaisesRegex(TilerError, r"\(exit code 3\)"):
            self.run_pool(fail_at_seven, die_at_start)


if __name__ == "__main__":
    unittest.main()
