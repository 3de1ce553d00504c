"""Every kind of crash leaves one report that tells the truth, and ends the program."""

import unittest

from testing.crash_support import (
    KIND_NAMES,
    MADE_UP_CODE,
    CrashTest,
    expected_code,
    keep_wine_running,
)


def setUpModule():
    keep_wine_running()


class Kinds(CrashTest):
    short_dumps = True

    def check(self, how, kind, code, *options):
        report, told = self.crash(how, *options)
        process, thread = told[-1]
        self.check_crash(report, kind, KIND_NAMES[kind], code, process, thread)
        return report

    def test_structured_exception(self):
        self.check("0", 0, 0xC0000005)

    def test_terminate(self):
        self.check("1", 1, expected_code(1))

    def test_unexpected(self):
        self.check("2", 2, expected_code(2))

    def test_pure_virtual_call(self):
        self.check("3", 3, expected_code(3))

    def test_new_operator_fault(self):
        self.check("4", 4, expected_code(4))

    def test_buffer_overrun(self):
        self.check("5", 5, 0xC0000409)

    def test_invalid_parameter(self):
        self.check("6", 6, expected_code(6))

    def test_sigabrt(self):
        self.check("7", 7, expected_code(7))

    def test_sigfpe(self):
        self.check("8", 8, expected_code(8))

    def test_sigill(self):
        self.check("9", 9, expected_code(9))

    def test_sigint(self):
        self.check("10", 10, expected_code(10))

    def test_sigsegv(self):
        self.check("11", 11, expected_code(11))

    def test_sigterm(self):
        self.check("12", 12, expected_code(12))

    def test_stack_overflow(self):
        self.check("overflow", 0, 0xC00000FD)

    def test_exception_that_nobody_catches(self):
        self.check("throw", 1, expected_code(1))

    def test_exception_that_looks_like_a_signal(self):
        """The start-up code of the program turns it into SIGFPE."""
        self.check("divide", 0, 0xC0000094)

    def test_raised_exception(self):
        self.check("raise-exception", 0, 0xC0000005)


class Threads(CrashTest):
    def test_crash_in_another_thread(self):
        report, told = self.crash("thread")
        self.check_crash(report, 0, KIND_NAMES[0], 0xC0000005, *told[-1])

    def test_two_at_once_make_one_report(self):
        report, told = self.crash("two-threads")
        self.assertEqual(len(set(told)), 2)
        crashed = (report.crash["process"], report.crash["thread"])
        self.assertIn(crashed, told)
        self.check_crash(report, 0, KIND_NAMES[0], 0xC0000005, *crashed)

    def check_in_unnamed_thread(self, how, kind, code):
        report, [(process, thread)] = self.crash(how)
        self.assertNotEqual(report.crash["thread"], thread, "not the main thread")
        self.check_crash(report, kind, KIND_NAMES[kind], code, process, report.crash["thread"])

    def test_stack_overflow_in_another_thread(self):
        self.check_in_unnamed_thread("overflow-in-thread", 0, 0xC00000FD)

    def test_signal_in_another_thread(self):
        self.check_in_unnamed_thread("signal-in-thread", 11, MADE_UP_CODE + 11)

    def test_exception_that_nobody_catches_in_another_thread(self):
        self.check_in_unnamed_thread("throw-in-thread", 1, MADE_UP_CODE + 1)


if __name__ == "__main__":
    unittest.main()
