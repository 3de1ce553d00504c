"""A run that was ended is taken up by the next one, and the end is that of a run which nobody ended.
MOSAICON_TILER is the engine."""

import os
import pathlib
import random
import shutil
import signal
import subprocess
import sys
import time
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent / "testing"))
import engine_cases as cases  # noqa: E402
from engine_runs import ENGINE, JOURNAL, OK, EngineRuns  # noqa: E402

KILLS = int(os.environ.get("MOSAICON_KILLS", "6"))  # each takes seconds in a build with sanitizers


class Resume(EngineRuns):
    def run_for(self, seconds, threads):
        """Whether the run was killed."""
        run = self.start_engine(f"--threads={threads}")
        try:
            self.assertEqual(run.wait(seconds), 0)
            return False
        except subprocess.TimeoutExpired:
            run.kill()
            run.wait()
            return True

    def start_and_fail(self):
        """Leaves an unfinished run whose last tile had a folder in its way. Returns that folder."""
        blocked = self.output / self.top_tile()
        blocked.mkdir(parents=True)
        code, reason = self.run_engine(self.output)
        self.assertEqual(code, 1)
        self.assertIn("could not write", reason)
        self.assertTrue((self.output / JOURNAL).exists())
        return blocked

    def top_tile(self):
        return next(name for name in cases.files_of(self.reference) if name.suffix == ".png")

    def finest_tiles(self):
        tiles = list(self.output.glob("*/*/*.png"))
        finest = max(int(tile.parts[-3]) for tile in tiles)
        return [tile for tile in tiles if int(tile.parts[-3]) == finest]

    def times(self):
        return {tile: tile.stat().st_mtime_ns for tile in self.finest_tiles()}

    def finish(self):
        self.assertEqual(self.run_engine(self.output), OK)
        self.check_end()

    def test_makes_the_same_however_often_it_is_killed(self):
        chance = random.Random(1)
        kills = 0
        while kills < KILLS:
            shutil.rmtree(self.output, ignore_errors=True)
            # A machine that has become slower may need more than a whole run took at first.
            longest = self.duration
            while self.run_for(chance.uniform(0, longest), chance.choice([1, 2, 3])):
                kills += 1
                longest *= 1.2
            self.finish()

    def interrupted(self, by, units):
        """What is done in the middle of a run, when so many units are finished; returns the reason it fails
        for."""
        run = self.start_engine("--threads=1", log="log")
        journal = self.output / JOURNAL
        while not journal.exists() or len(journal.read_text().splitlines()) <= units:
            self.assertIsNone(run.poll(), "it was too quick")
            time.sleep(0.005)
        run.send_signal(signal.SIGSTOP)  # so that it does not get any further
        by()
        run.send_signal(signal.SIGCONT)
        self.assertEqual(run.wait(cases.PATIENCE), 1)
        return (self.folder / "log").read_text().splitlines()[-1]

    def test_goes_on_when_the_folder_is_there_again(self):
        elsewhere = self.output.with_name("elsewhere")
        shutil.rmtree(elsewhere, ignore_errors=True)
        reason = self.interrupted(lambda: self.output.rename(elsewhere), units=2)
        self.assertRegex(reason, "^RESULT FAILED could not write .+: No such file or directory$")
        self.assertFalse(self.output.exists(), "nothing is made in its place")
        elsewhere.rename(self.output)
        before = self.times()
        self.finish()
        self.assertTrue(set(self.times().items()) & set(before.items()))

    def test_goes_on_when_the_image_can_be_read_again(self):
        content, times = self.image.read_bytes(), self.image.stat()
        # Later than that everything has been read.
        reason = self.interrupted(lambda: os.truncate(self.image, len(content) // 2), units=1)
        self.assertRegex(
            reason, f"^RESULT FAILED the image could not be read or tiled: .+ of {self.image} are"
        )
        self.image.write_bytes(content)
        os.utime(self.image, ns=(times.st_atime_ns, times.st_mtime_ns))
        self.finish()

    def test_takes_up_what_is_finished(self):
        self.start_and_fail().rmdir()
        before = self.times()
        self.finish()
        self.assertEqual(self.times(), before)

    def test_makes_a_unit_again_whose_files_have_changed(self):
        for change in (lambda tile: tile.write_bytes(tile.read_bytes() + b"x"), lambda tile: tile.unlink()):
            shutil.rmtree(self.output, ignore_errors=True)
            self.start_and_fail().rmdir()
            change(min(self.finest_tiles()))
            self.finish()

    def test_begins_anew_with_an_image_that_was_touched(self):
        self.start_and_fail().rmdir()
        before = self.times()
        later = self.image.stat().st_mtime_ns + 1
        os.utime(self.image, ns=(later, later))
        self.finish()
        self.assertFalse(set(self.times().items()) & set(before.items()))

    def test_takes_up_a_virtual_raster_that_was_written_again(self):
        virtual = self.folder / "bild.vrt"
        output = self.folder / "virtual" / "m"

        def run():
            virtual.unlink(missing_ok=True)
            cases.gdal.Translate(str(virtual), str(self.image), format="VRT")
            return cases.run([ENGINE], self.arguments, virtual, output, self.folder / "log")

        blocked = output / self.top_tile()
        blocked.mkdir(parents=True)
        self.assertEqual(run()[0], 1)
        blocked.rmdir()
        before = {tile: tile.stat().st_mtime_ns for tile in output.glob("*/*/*.png")}
        self.assertGreater(len(before), 10)
        self.assertEqual(run(), OK)
        self.assertEqual({tile: tile.stat().st_mtime_ns for tile in before}, before)

    def test_begins_anew_without_documents(self):
        self.start_and_fail().rmdir()
        before = self.times()
        without = [word for word in self.arguments if word != "-k"]
        self.assertEqual(cases.run([ENGINE], without, self.image, self.output, self.folder / "log")[0], 0)
        self.assertFalse(set(self.times().items()) & set(before.items()))

    def test_leaves_no_journal_behind(self):
        self.assertFalse((self.reference / JOURNAL).exists())
        self.start_and_fail().rmdir()
        self.finish()
        self.assertFalse((self.output / JOURNAL).exists())


if __name__ == "__main__":
    unittest.main()
