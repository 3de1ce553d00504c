"""A crash of each kind can be provoked in another process that did not ask for it."""

import unittest

from testing.crash_support import (
    KIND_NAMES,
    REPORTED,
    CrashTest,
    expected_code,
    keep_wine_running,
    wait_until,
)


def setUpModule():
    keep_wine_running()


class Provoked(CrashTest):
    short_dumps = True

    def provoke(self, kind):
        victim = self.start_crasher("wait")
        self.assertTrue(wait_until(lambda: self.lines_of(victim)))
        process = self.lines_of(victim)[0].split()[0]
        code, [line] = self.end_of(self.start("crashrpt_provoker.exe", process, kind))
        self.assertEqual(code, 0, line)
        self.assertEqual(self.end_of(victim)[0], REPORTED)
        self.check_crash(
            self.only_report(), kind, KIND_NAMES[kind], expected_code(kind), process, line.split()[0]
        )


def add_test(kind):
    def test(self):
        self.provoke(kind)

    setattr(Provoked, f"test_{kind:02}_{KIND_NAMES[kind].replace(' ', '_')}", test)


for number in range(len(KIND_NAMES)):
    add_test(number)

if __name__ == "__main__":
    unittest.main()
