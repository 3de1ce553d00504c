"""The sender that waits beside a program: it is there when it is needed, and not in the way."""

import time
import unittest

from testing.crash_support import REPORTED, UNREPORTED, CrashTest, keep_wine_running, wait_until

REPLACEMENTS = 3


def setUpModule():
    keep_wine_running()


class Sender(CrashTest):
    def start_waiting(self):
        """A program that waits; returns it with its process id."""
        program = self.start_crasher("wait")
        self.assertTrue(wait_until(lambda: self.lines_of(program)))
        return program, self.lines_of(program)[0].split()[0]

    def senders(self, process, *end):
        code, lines = self.end_of(self.start("crashrpt_senders.exe", process, *end))
        self.assertEqual(code, 0)
        return lines

    def provoke(self, process):
        self.assertEqual(self.end_of(self.start("crashrpt_provoker.exe", process, 0))[0], 0)

    def test_one_waits_as_soon_as_reporting_is_installed(self):
        _, process = self.start_waiting()
        self.assertEqual(len(self.senders(process)), 1)

    def test_ends_with_a_program_that_ends_well(self):
        program = self.start_crasher("start")
        self.assertEqual(self.end_of(program)[0], 0)
        process = self.lines_of(program)[1].split()[0]
        self.assertTrue(wait_until(lambda: not self.senders(process)))
        self.assertEqual(self.names(), [])

    def test_ends_with_a_program_that_is_killed(self):
        program, process = self.start_waiting()
        program.kill()
        program.wait()
        self.assertTrue(wait_until(lambda: not self.senders(process)))
        self.assertEqual(self.names(), [])

    def test_is_replaced_when_it_is_killed(self):
        program, process = self.start_waiting()
        killed = self.senders(process, "end")
        self.assertEqual(len(killed), 1)
        self.assertTrue(wait_until(lambda: self.senders(process)))
        self.assertNotEqual(self.senders(process), killed)
        self.provoke(process)
        self.assertEqual(self.end_of(program)[0], REPORTED)
        self.only_report()

    def test_program_ends_at_once_when_all_were_killed(self):
        program, process = self.start_waiting()
        for _ in range(1 + REPLACEMENTS):
            self.assertTrue(wait_until(lambda: self.senders(process, "end")))
        self.assertEqual(self.senders(process), [])
        begin = time.monotonic()
        self.provoke(process)
        self.assertEqual(self.end_of(program)[0], UNREPORTED)
        self.assertLess(time.monotonic() - begin, 50, "nothing is waited for")
        self.assertEqual(self.names(), [])


class Locks(CrashTest):
    """What the crashed thread holds does not keep a report from being written."""

    def check(self, how, code):
        report, told = self.crash(how)
        self.check_crash(report, 0, "structured exception", code, *told[-1])

    def test_lock_of_the_heap(self):
        self.check("holding-heap", 0xC0000005)

    def test_lock_of_the_loader(self):
        self.check("holding-loader", 0xC0000005)

    def test_heap_corruption_that_the_system_finds(self):
        self.check("damaged-heap", 0xC0000374)


if __name__ == "__main__":
    unittest.main()
