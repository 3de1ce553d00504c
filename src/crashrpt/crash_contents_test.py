"""What a report holds, where it goes, and when there is none."""

import datetime
import shutil
import unittest
import uuid

from testing.crash_support import (
    REPORTED,
    UNDER_WINE,
    UNREPORTED,
    CrashTest,
    Report,
    expected_code,
    keep_wine_running,
    local_data_folder,
    wait_until,
    windows_path,
)


def setUpModule():
    keep_wine_running()


class Contents(CrashTest):
    def test_report_tells_what_it_was_given(self):
        before = datetime.datetime.now(datetime.timezone.utc).replace(microsecond=0)
        report, _ = self.crash(
            "7",
            "--name=A & <B> \u00fc\u20ac",
            "--version=1.2",
            "--email=a@b.example",
            '--subject="so"',
            "--text=it's",
        )
        after = datetime.datetime.now(datetime.timezone.utc)
        name = report.folder.name
        self.assertEqual(
            report.texts,
            {
                "guid": name.partition("-")[2],
                "application": "A & <B> \u00fc\u20ac",
                "version": "1.2",
                "time": report.texts["time"],
                "email": "a@b.example",
                "subject": '"so"',
                "text": "it's",
            },
        )
        time = datetime.datetime.strptime(report.texts["time"], "%Y-%m-%dT%H:%M:%S%z")
        self.assertTrue(before <= time <= after, (before, time, after))
        self.assertEqual(name.partition("-")[0], time.strftime("%Y%m%dT%H%M%SZ"))
        self.assertEqual((report.listed, report.missing), (["crashdump.dmp"], {}))
        self.assertEqual(sorted(report.files), ["crashdump.dmp", "report.xml"])
        self.check_properties(report)

    def check_properties(self, report):
        # As Windows-1252 has it: what no character is assigned to is a control character.
        allowed = [byte for byte in range(1, 256) if byte >= 32 or byte in (9, 10, 13)]
        every_byte = "".join(
            bytes([byte]).decode("cp1252") if byte not in (0x81, 0x8D, 0x8F, 0x90, 0x9D) else chr(byte)
            for byte in allowed
        )
        self.assertEqual(report.properties, [("image", "second"), ("a<\"&'>", ""), ("bytes", every_byte)])

    def test_dll_for_dumps_that_is_not_there(self):
        report, _ = self.crash("7", "--debug-help=" + windows_path(self.reports / "none.dll"))
        self.assertEqual(report.listed, ["crashdump.dmp"], "the system's own DLL stands in")
        report.dump()

    def test_report_without_a_dump_tells_that_it_is_missing(self):
        """A DLL that is there, but writes no dumps."""
        report, _ = self.crash("7", "--debug-help=version.dll")
        self.assertEqual(
            (report.listed, report.missing), ([], {"crashdump.dmp": "There is no DLL that writes dumps."})
        )
        self.assertEqual(sorted(report.files), ["report.xml"])

    @unittest.skipUnless(UNDER_WINE, "Windows always has a screen")
    def test_report_without_a_picture_tells_that_it_is_missing(self):
        self.environment.pop("DISPLAY", None)
        report, _ = self.crash("7", "--picture")
        self.assertEqual(report.listed, ["crashdump.dmp"])
        self.assertEqual(report.missing, {"desktop.png": "The screen could not be copied."})
        self.assertEqual(sorted(report.files), ["crashdump.dmp", "report.xml"])

    def test_other_types_of_dump_hold_more(self):
        small, _ = self.crash("7")
        large_reports = self.folder / "large"
        self.reports = large_reports
        large, _ = self.crash("7", "--dump-type=2")  # MiniDumpWithFullMemory
        self.assertGreater(len(large.files["crashdump.dmp"]), 4 * len(small.files["crashdump.dmp"]))


class Places(CrashTest):
    def test_default_folder_is_found_without_its_variable(self):
        name = f"crashrpt test {uuid.uuid4()}"
        folder = local_data_folder() / name
        self.addCleanup(shutil.rmtree, folder, ignore_errors=True)
        crasher = self.start("crashrpt_crasher.exe", "7", "--no-local-data", "--name=" + name)
        self.assertEqual(self.end_of(crasher)[0], REPORTED, self.lines_of(crasher))
        self.reports = folder / "CrashReports"
        self.assertEqual(self.only_report().texts["application"], name)

    def test_twenty_reports_are_kept(self):
        old = [f"202001{day:02}T000000Z-6f9619ff-8b86-d011-b42d-00c04fc964ff" for day in range(1, 26)]
        for name in old:
            (self.reports / name).mkdir(parents=True)
            (self.reports / name / "report.xml").write_text("<report/>")
        crasher = self.start_crasher("7")
        self.assertEqual(self.end_of(crasher)[0], REPORTED)
        self.assertTrue(wait_until(lambda: len(self.names()) == 20), self.names())
        *kept, new = self.names()
        self.assertEqual(kept, old[-19:])
        Report(self.reports / new)


class Refusals(CrashTest):
    def check_no_report(self, how, *options):
        code, lines = self.end_of(self.start_crasher(how, *options))
        self.assertEqual((code, len(lines)), (UNREPORTED, 1), lines)
        self.assertEqual(self.names(), [])

    def test_callback_may_refuse(self):
        self.check_no_report("0", "--callback=refuse")

    def test_callback_may_agree(self):
        self.crash("0", "--callback=agree")

    def test_crash_in_the_callback_ends_the_program(self):
        self.check_no_report("0", "--callback=crash")

    def test_sender_that_does_not_work_ends_the_program(self):
        self.check_no_report("0", "--sender=" + windows_path(self.no_sender()))

    def no_sender(self):
        program = self.folder / "sender.exe"
        program.write_bytes(b"not a program")
        return program

    def test_handlers_are_chosen_one_by_one(self):
        """Only SIGTERM: an abort is Windows' own business then."""
        code, _ = self.end_of(self.start_crasher("7", "--flags=1000"))
        self.assertNotIn(code, (REPORTED, UNREPORTED))
        self.assertEqual(self.names(), [])
        report, told = self.crash("12", "--flags=1000")
        self.check_crash(report, 12, "SIGTERM", expected_code(12), *told[-1])

    def test_folder_that_cannot_be_written_to(self):
        self.reports.write_text("a file")
        # The sender ends the program here. Of such a program Wine does not always tell this side the exit
        # code, but those who run there.
        code, _ = self.end_of(self.start_crasher("7", starter=["cmd", "/c"]))
        self.assertEqual(code, UNREPORTED)
        self.assertEqual(self.reports.read_text(), "a file")


if __name__ == "__main__":
    unittest.main()
