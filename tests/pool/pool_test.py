"""Whether the pool runs the tests of several builds as they are, and what is told about them. With the real
CTest, on tests that are commands of the system."""

import pathlib
import subprocess
import tempfile
import unittest

from changed import EVERYWHERE, reads, that_fit
from pool import costs, write_pool
from summary import lines_of, results_of

ONE = """
add_test(good sh "-c" "test \\"$TOLD\\" = 'a;b' && test \\"$1\\" = 'x y;$z'" "sh" "x y;$z")
set_tests_properties(good PROPERTIES ENVIRONMENT "TOLD=a\\\\;b;OTHER=c" LABELS "core" TIMEOUT "20")
"""
OTHER = """
add_test(good "false")
set_tests_properties(good PROPERTIES LABELS "ui")
add_test(slow "sleep" "30")
set_tests_properties(slow PROPERTIES TIMEOUT "0.2" LABELS "net")
"""


class Pool(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.builds = {}
        for name, text in (("one", ONE), ("other", OTHER)):
            (self.folder / name).mkdir()
            (self.folder / name / "CTestTestfile.cmake").write_text(text)
            self.builds[name] = self.folder / name
        self.pool = self.folder / "pool"

    def run_pool(self, **selection):
        """Results by name."""
        self.count = write_pool(self.pool, self.builds, **selection)
        results = self.folder / "results.xml"
        subprocess.run(
            ["ctest", "--test-dir", str(self.pool), "-j", "3", "--output-junit", str(results)],
            check=False,
            capture_output=True,
        )
        return {name: status for name, _, status in results_of(results)}

    def test_keeps_commands_and_properties(self):
        self.assertEqual(self.run_pool(), {"one/good": "run", "other/good": "fail", "other/slow": "fail"})
        self.assertEqual(self.count, 3)

    def test_takes_the_given_labels_only(self):
        self.assertEqual(self.run_pool(labels=["core", "net"]), {"one/good": "run", "other/slow": "fail"})

    def test_takes_the_given_names_only(self):
        self.assertEqual(self.run_pool(only={"other/good"}), {"other/good": "fail"})

    def test_has_what_each_took_for_the_next_time(self):
        self.run_pool(only={"one/good"})
        self.assertEqual(list(costs(self.pool)), ["one/good"])


class Summary(unittest.TestCase):
    def test_names_what_failed_and_the_slowest(self):
        results = [(f"t{number}", float(number), "run") for number in range(12)]
        results += [("broken", 0.5, "fail"), ("absent", 0.0, "notrun")]
        lines = lines_of(results, [("7", "building host")])
        self.assertEqual(
            lines[:4],
            [
                "12 tests passed, 2 failed",
                "  failed: absent",
                "  failed: broken",
                "the slowest:",
            ],
        )
        self.assertEqual([line.split()[-1] for line in lines[4:14]], [f"t{11 - i}" for i in range(10)])
        self.assertEqual(lines[14:], ["seconds by stage:", "       7 s  building host"])


class Everywhere(unittest.TestCase):
    def test_a_change_shows_of_what_builds_and_starts_everything(self):
        for path in (
            "CMakePresets.json",
            "src/job/CMakeLists.txt",
            ".clang-tidy",
            "tests/support/rasters.h",
            "test",
        ):
            self.assertRegex(path, EVERYWHERE)

    def test_a_change_does_not_show_of_one_source_or_of_its_looks(self):
        for path in (".clang-format", "src/job/batch_driver.cpp", "tests/e2e/jobs_test.py", "docs/test"):
            self.assertNotRegex(path, EVERYWHERE)


class Reading(unittest.TestCase):
    def test_is_told_by_what_a_test_needs(self):
        test = {"properties": [{"name": "REQUIRED_FILES", "value": ["/top/src", "/top/settings"]}]}
        for path, expected in (
            ("/top/src/room/a.cpp", True),
            ("/top/settings", True),
            ("/top/src2/a.cpp", False),
            ("/top/settings.bak", False),
        ):
            self.assertEqual(reads(test, {pathlib.Path(path)}), expected, path)

    def test_is_not_told_of_a_test_that_needs_nothing(self):
        self.assertFalse(reads({"properties": []}, {pathlib.Path("/top/src/a.cpp")}))


class Fitting(unittest.TestCase):
    def test_takes_the_quick_ones_first_and_tells_the_others(self):
        seconds = {"long": 100.0, "short": 5.0, "middle": 30.0}
        self.assertEqual(
            that_fit(["long", "middle", "short"], seconds, 60, 2), (["short", "middle"], ["long"])
        )

    def test_counts_what_never_ran_as_ten_seconds(self):
        self.assertEqual(that_fit(["new"], {}, 9, 4), ([], ["new"]))
        self.assertEqual(that_fit(["new"], {}, 11, 4), (["new"], []))


if __name__ == "__main__":
    unittest.main()
