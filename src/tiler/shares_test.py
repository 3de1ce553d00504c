"""Several runs that share the work of one, and a last one that makes the rest: the end is that of a single
run. MOSAICON_TILER is the engine."""

import pathlib
import shutil
import signal
import sys
import time
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent / "testing"))
import engine_cases as cases  # noqa: E402
from engine_runs import ENGINE, JOURNAL, OK, EngineRuns  # noqa: E402

LARGE = (2400, 1800)  # pixels: more units of tiles than shares


class Shares(EngineRuns):
    def share(self, index, count):
        before = self.contents()
        self.assertEqual(self.run_engine(self.output, f"--shard={index}/{count}"), OK)
        return self.check_kept(before)

    def check_kept(self, before):
        """Of what was there nothing was written again. Returns what came in addition."""
        after = self.contents()
        self.assertEqual([name for name in before if after.get(name) != before[name]], [])
        return set(after) - set(before)

    def contents(self):
        """Of the tiles: which file it is, and what it holds."""
        return {
            name: ((self.output / name).stat().st_ino, (self.output / name).read_bytes())
            for name in cases.files_of(self.output)
            if len(name.parts) > 1
        }

    def merge(self):
        before = self.contents()
        self.assertEqual(self.run_engine(self.output, "--merge"), OK)
        self.check_kept(before)

    def check_shares(self, count):
        shutil.rmtree(self.output, ignore_errors=True)
        # The last one first: they do not depend on one another.
        made = [self.share(index, count) for index in reversed(range(count))]
        self.assertEqual(sum(map(len, made)), len(set().union(*made)))
        self.assertFalse((self.output / "doc.kml").exists())
        self.merge()
        self.check_end()
        return made

    def test_make_the_same_as_a_single_run(self):
        for count in (1, 2, 3):
            with self.subTest(count=count):
                self.check_shares(count)

    def test_of_a_large_image_have_all_something_to_do(self):
        self.image = self.folder / "large.tif"
        self.reference = self.folder / "large" / "m"
        cases.gdal.Translate(str(self.image), str(type(self).image), width=LARGE[0], height=LARGE[1])
        self.assertEqual(self.run_engine(self.reference), OK)
        for made in self.check_shares(7):
            self.assertGreater(len(made), 10)

    def test_may_run_at_the_same_time(self):
        runs = [self.start_engine(f"--shard={index}/3", log=f"log {index}") for index in range(3)]
        self.assertEqual([run.wait(cases.PATIENCE) for run in runs], [0, 0, 0])
        self.merge()
        self.check_end()

    def test_refuse_to_do_what_another_run_does(self):
        run = self.start_engine("--threads=1")
        while not self.has_begun():
            self.assertIsNone(run.poll())
            time.sleep(0.01)
        run.send_signal(signal.SIGSTOP)  # so that it is still there however slow this is
        for what in ([], ["--merge"]):
            self.assertEqual(
                self.run_engine(self.output, *what),
                (1, f"RESULT FAILED another run is at work in {self.output}"),
            )
        run.send_signal(signal.SIGCONT)
        self.assertEqual(run.wait(cases.PATIENCE), 0)
        self.check_end()

    def has_begun(self):
        """Whether the journal is that of a run at work: its first line is written once it is locked."""
        journal = self.output / JOURNAL
        return journal.exists() and journal.stat().st_size > 0

    def test_are_missed_by_name(self):
        self.assertEqual(
            self.run_engine(self.output, "--merge"),
            (1, f"RESULT FAILED there are no shares of a map in {self.output}"),
        )
        self.assertFalse(self.output.exists())
        self.share(1, 3)
        before = self.contents()
        self.assertEqual(
            self.run_engine(self.output, "--merge"),
            (1, "RESULT FAILED the shares 0/3 and 2/3 are missing"),
        )
        self.assertEqual(self.contents(), before)
        self.assertFalse((self.output / "doc.kml").exists())

    def test_of_another_map_do_not_count(self):
        self.share(0, 1)
        without = [word for word in self.arguments if word != "-k"]
        self.assertEqual(
            cases.run([ENGINE, "--merge"], without, self.image, self.output, self.folder / "log"),
            (1, "RESULT FAILED the share 0/1 is of another image or of other options"),
        )

    def test_that_failed_are_not_finished(self):
        (self.output / self.some_tile()).mkdir(parents=True)
        code, reason = self.run_engine(self.output, "--shard=0/1")
        self.assertEqual(code, 1)
        self.assertIn("could not write", reason)
        self.assertEqual(
            self.run_engine(self.output, "--merge"), (1, "RESULT FAILED the share 0/1 is not finished")
        )
        (self.output / self.some_tile()).rmdir()
        self.assertEqual(self.run_engine(self.output, "--shard=0/1"), OK)
        self.merge()
        self.check_end()

    def some_tile(self):
        return max(cases.files_of(self.reference), key=lambda name: (len(name.parts), name))

    def test_are_mended_where_a_tile_was_lost(self):
        for index in range(2):
            self.share(index, 2)
        tiles = sorted(self.contents(), key=lambda name: int(name.parts[0]))
        (self.output / tiles[0]).write_bytes(b"x")
        (self.output / tiles[-1]).unlink()
        self.assertEqual(self.run_engine(self.output, "--merge"), OK)
        self.check_end()

    def test_leave_alone_what_others_are_writing(self):
        made = self.share(0, 2)
        theirs = self.output / (str(min(made)) + ".~mos")
        ours = self.output / (str(max(self.share(1, 2))) + ".~mos")
        for partial in (theirs, ours):
            partial.write_bytes(b"half")
        self.assertEqual(self.run_engine(self.output, "--shard=1/2"), OK)
        self.assertTrue(theirs.exists())
        self.assertFalse(ours.exists(), "what an ended run of the same share left")
        self.assertEqual(self.run_engine(self.output, "--merge"), OK)
        self.check_end()

    def test_of_a_map_that_was_there_leave_no_old_document(self):
        shutil.copytree(self.reference, self.output)
        self.assertEqual(self.run_engine(self.output, "--shard=0/2"), OK)
        self.assertFalse((self.output / "doc.kml").exists())
        self.assertEqual(self.run_engine(self.output, "--shard=1/2"), OK)
        self.assertEqual(self.run_engine(self.output, "--merge"), OK)
        self.check_end()


if __name__ == "__main__":
    unittest.main()
