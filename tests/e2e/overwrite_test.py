"""Folders that are not empty: the option, the question, and what is done then."""

import fcntl
import os
import pty
import select
import subprocess
import tempfile
import termios
import time
import tty
import unittest

from osgeo import gdal

from batch_support import PATIENCE, BatchTest, Run, snapshot, start_wine, windows_path
from rasters import NATIONAL_GRID, make_raster
from results import Job, ResultChecks

QUESTION = ["Folders are not empty. All content will be overwritten.", "Continue? [yes/no/cancel] "]


def setUpModule():
    start_wine()


class OverwriteTest(BatchTest, ResultChecks):
    def setUp(self):
        super().setUp()
        self.first = make_raster(self.folder / "a.tif")
        self.second = make_raster(self.folder / "b.tif")
        self.job = Job(self.folder / "out", 2)

    def fill(self, index):
        self.job.folder(index).mkdir(parents=True, exist_ok=True)
        (self.job.folder(index) / "kept.txt").write_text("not of this program")

    def run_job(self, *options, **streams):
        return self.batch("--target", self.job.target, *options, self.first, self.second, **streams)

    def assert_untouched(self, before):
        self.assertEqual(snapshot(self.job.target), before)

    def skipped(self):
        return [(self.first, "skipped"), (self.second, "skipped")]

    def log_of_overwriting(self, *orthophotos):
        return [
            line
            for path in map(windows_path, orthophotos)
            for line in (f"- {path}: previous process result deleted", f"- {path}: OK")
        ]

    def output_of_none(self):
        folders = [line for line in self.job.output([], []) if not line.startswith("Process")]
        return [folders[0], "- generation skipped: already created", folders[1]]


class Option(OverwriteTest):
    def test_yes_makes_everything_anew(self):
        self.second = make_raster(self.folder / "grid.tif", NATIONAL_GRID)
        self.assertEqual(self.run_job().code, 0)
        old = [os.stat(path).st_mtime_ns for path in self.job.target.glob("*/*/*/*.png")]
        run = self.run_job("--overwrite", "yes")
        self.assertEqual((run.code, run.errors), (0, []), run)
        self.assert_output(run, self.job.output([], self.log_of_overwriting(self.first, self.second)))
        new = [os.stat(path).st_mtime_ns for path in self.job.target.glob("*/*/*/*.png")]
        self.assertEqual(len(new), len(old))
        self.assertGreater(min(new), max(old))
        for index in (0, 1):
            self.assert_links_resolve(self.job.folder(index))

    def test_yes_tells_that_the_kml_of_another_result_was_kept(self):
        job = Job(self.folder / "one", title="Old")
        run = self.batch("--target", job.target, "--title", "Old", self.first)
        self.assertEqual(run.code, 0, run)
        old = (job.target / "googleearth_loc.kml").read_bytes()
        run = self.batch("--target", job.target, "--title", "New", "--overwrite=yes", self.first)
        folder = windows_path(job.target)
        self.assert_failed(
            run,
            (
                self.first,
                f"{folder}\\googleearth_loc.kml is of an earlier job with another result and "
                f"was kept; the new one is {folder}\\doc.kml",
            ),
        )
        self.assertEqual((job.target / "googleearth_loc.kml").read_bytes(), old)
        self.assertIn(b"<name>New</name>", (job.target / "doc.kml").read_bytes())

    def test_is_not_needed_for_virtual_rasters_of_another_image(self):
        """What an earlier job left beside the orthophoto never passes for the result of this one."""
        for number, left in enumerate((1500000, 1502000)):
            moved = make_raster(self.folder / "moved.tif", (3003, left, 4983000))
            run = self.batch("--target", f"out {number}", moved)
            self.assertEqual((run.code, run.errors), (0, []), run)
            self.assert_position(self.folder / f"out_{number}", moved)

    def test_yes_never_means_an_orthophoto(self):
        """The orthophoto lies in the target folder, under the name of its own picture."""
        folder = self.folder / "harbours"
        folder.mkdir()
        harbour = folder / "harbour.jpg"
        gdal.Translate(str(harbour), str(self.first), format="JPEG")
        before = snapshot(folder)
        run = self.batch("--target", folder, "--title", "harbour", "--overwrite", "yes", harbour)
        self.assertEqual((run.code, run.errors), (0, []), run)
        after = snapshot(folder)
        self.assertEqual({name: after.get(name) for name in before}, before)
        self.assert_picture(folder, "harbour2", harbour)

    def test_is_never_done_to_virtual_rasters_of_the_user(self):
        grid = make_raster(self.folder / "grid.tif", NATIONAL_GRID)
        mine = self.folder / "grid.vrt"
        gdal.BuildVRT(str(mine), [str(grid), str(self.first)]).FlushCache()
        kept = mine.read_bytes()
        for target in ("first", "second"):
            run = self.batch("--target", target, grid)
            self.assertEqual((run.code, run.errors), (0, []), run)
            self.assertEqual(mine.read_bytes(), kept)
            self.assert_position(self.folder / target, grid)
            self.assertEqual(
                {path.name for path in self.folder.glob("*.vrt")}, {"grid.vrt", "grid2.vrt", "grid22.vrt"}
            )

    def test_is_done_to_the_virtual_rasters_of_an_earlier_job(self):
        grid = make_raster(self.folder / "gr\u00fcn & co.tif", NATIONAL_GRID)
        for target in ("first", "second"):
            self.assertEqual(self.batch("--target", target, grid).code, 0)
            self.assertEqual(
                {path.name for path in self.folder.glob("*.vrt")},
                {"gr\u00fcn & co.vrt", "gr\u00fcn & co2.vrt"},
            )

    def test_yes_keeps_what_is_not_overwritten(self):
        self.fill(1)
        run = self.run_job("--overwrite=yes")
        self.assertEqual((run.code, run.errors), (0, []), run)
        log = [f"- {windows_path(self.first)}: OK", *self.log_of_overwriting(self.second)]
        self.assert_output(run, self.job.output([], log))
        self.assertTrue((self.job.folder(1) / "kept.txt").exists())

    def test_no_ends_the_job_at_the_first_folder(self):
        self.fill(0)
        before = snapshot(self.job.target)
        run = self.run_job("--overwrite", "no")
        self.assert_failed(run, *self.skipped())
        self.assert_output(run, self.output_of_none())
        self.assert_untouched(before)

    def test_no_keeps_what_was_done_before(self):
        self.fill(1)
        run = self.run_job("--overwrite", "no")
        self.assert_failed(run, *self.skipped()[1:])
        self.assert_links_resolve(self.job.folder(0))
        self.assertEqual(os.listdir(self.job.folder(1)), ["kept.txt"])

    def test_is_not_needed_for_an_empty_folder(self):
        self.job.folder(0).mkdir(parents=True)
        run = self.run_job("--overwrite", "no")
        self.assertEqual((run.code, run.errors), (0, []), run)

    def test_that_is_absent_means_no_without_a_terminal(self):
        self.fill(0)
        before = snapshot(self.job.target)
        for stdin in (subprocess.DEVNULL, subprocess.PIPE):
            with self.subTest(stdin=stdin):
                run = self.run_job(stdin=stdin)
                self.assert_failed(
                    run,
                    *self.skipped(),
                    before=[
                        "mosaicon-batch: the target folder is not empty; "
                        "--overwrite yes would overwrite it"
                    ],
                )
                self.assert_output(run, self.output_of_none())
                self.assert_untouched(before)


class Question(OverwriteTest):
    """Standard input is a terminal; output and errors go to files, to be read as they are."""

    def run_at_terminal(self, answers, *options):
        """Types the next answer whenever the question is asked once more."""
        terminal, program_side = pty.openpty()
        self.addCleanup(os.close, terminal)
        # Wine sets it so itself, but only when the program reads, which is after the question is seen.
        # The Enter of an answer typed in between would become a line feed, which to Wine is one more
        # character of the line: the program would wait for the rest for ever.
        tty.setraw(program_side)
        with tempfile.TemporaryFile() as output, tempfile.TemporaryFile() as errors:
            started = self.start(
                "--target",
                self.job.target,
                *options,
                self.first,
                self.second,
                stdin=program_side,
                stdout=output,
                stderr=errors,
                start_new_session=True,
                preexec_fn=lambda: fcntl.ioctl(program_side, termios.TIOCSCTTY, 0),
            )
            os.close(program_side)
            self.converse(started, terminal, errors, list(answers))
            output.seek(0)
            errors.seek(0)
            return Run(started.returncode, output.read(), errors.read())

    def converse(self, started, terminal, errors, answers):
        deadline, asked, shown = time.monotonic() + PATIENCE, 0, b""
        while started.poll() is None:
            said = os.pread(errors.fileno(), 1 << 16, 0)
            if time.monotonic() > deadline:
                self.fail(
                    "\n".join(
                        [
                            f"the program does not end; it said {said!r}",
                            f"the terminal, set to {termios.tcgetattr(terminal)[:4]}, shows {shown!r}",
                            f"answers still to be typed: {answers}",
                            *self.waiting_places(),
                        ]
                    )
                )
            if said.count(b"[yes/no/cancel] ") > asked and answers:
                asked += 1
                os.write(terminal, answers.pop(0).encode() + b"\r")
            shown += self.read_from(terminal)
        said = os.pread(errors.fileno(), 1 << 16, 0)
        self.assertEqual(
            answers, [], f"not all questions were asked: exit code {started.returncode}, {said!r}, {shown!r}"
        )

    @staticmethod
    def read_from(terminal):
        """What is shown within a moment; nothing once the other side is closed."""
        if select.select([terminal], [], [], 0.05)[0]:
            try:
                return os.read(terminal, 4096)
            except OSError:
                time.sleep(0.05)
        return b""

    def setUp(self):
        super().setUp()
        self.fill(0)
        self.fill(1)
        self.before = snapshot(self.job.target)

    def assert_asked(self, run, times):
        """And forgets it. What is printed next stands behind the question: the line break that
        ended the answer was the user's."""
        asked = QUESTION[:1] + [QUESTION[1] + QUESTION[0]] * (times - 1)
        self.assertEqual(run.errors[:times], asked, run)
        self.assertTrue(run.errors[times].startswith(QUESTION[1]), run)
        rest = run.errors[times][len(QUESTION[1]) :]
        run.errors[: times + 1] = [rest] if rest else []

    def test_answered_with_yes_is_asked_once_for_all(self):
        for answer in ("y", "yes"):
            with self.subTest(answer=answer):
                run = self.run_at_terminal([answer])
                self.assert_asked(run, 1)
                self.assertEqual((run.code, run.errors), (0, []), run)
                self.assert_output(run, self.job.output([], self.log_of_overwriting(self.first, self.second)))
                self.assert_links_resolve(self.job.folder(1))

    def test_answered_with_no_ends_the_job(self):
        for answer in ("n", "no"):
            with self.subTest(answer=answer):
                run = self.run_at_terminal([answer])
                self.assert_asked(run, 1)
                self.assert_failed(run, *self.skipped())
                self.assert_output(run, self.output_of_none())
                self.assert_untouched(self.before)

    def test_answered_with_cancel_aborts_the_job(self):
        for answer in ("c", "cancel"):
            with self.subTest(answer=answer):
                run = self.run_at_terminal([answer])
                self.assert_asked(run, 1)
                self.assertEqual((run.code, run.errors), (130, []), run)
                self.assert_output(
                    run, ["Target folder: " + windows_path(self.job.target), "Aborted by user"]
                )
                self.assert_untouched(self.before)

    def test_answered_with_nonsense_is_asked_again(self):
        run = self.run_at_terminal(["perhaps", "", "c"])
        self.assert_asked(run, 3)
        self.assertEqual(run.code, 130)
        self.assert_untouched(self.before)

    def test_is_not_asked_when_the_option_answers_it(self):
        run = self.run_at_terminal([], "--overwrite", "no")
        self.assert_failed(run, *self.skipped())
        self.assert_untouched(self.before)


if __name__ == "__main__":
    unittest.main()
