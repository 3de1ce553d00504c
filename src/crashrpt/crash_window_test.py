"""The window of the sender, used as a user does. Needs a DISPLAY under Linux."""

import os
import re
import sys
import unittest

from crash_test_support import (REPORTED, UNDER_WINE, CrashTest, Report, Server, keep_wine_running, parts_of,
                                png_size_and_rows, refusing_url, wait_until, windows_path)

TITLE = "Test \u00fc crash report"
WHAT, CONTENTS, PATH, OPEN, PRIVACY, RESULT, SEND, DO_NOT_SEND = (str(number) for number in range(101, 109))
KEPT = " The report is kept, and sending it is tried again when Test \u00fc starts the next time."


def setUpModule():
    if UNDER_WINE and not os.environ.get("DISPLAY"):
        sys.exit("DISPLAY is not set: these tests need a screen")
    keep_wine_running()


class Window(CrashTest):
    quiet = "0"

    def crash_with_window(self, *options):
        """Crashes; returns the name of the report."""
        crasher = self.start_crasher("7", "--name=Test \u00fc", "--version=2.5", *options)
        self.assertEqual(self.end_of(crasher)[0], REPORTED)
        self.await_report()
        name, = self.report_names()
        return name

    def use(self, *steps):
        """Takes the steps and returns what was printed: a list of {number: (enabled, visible, text)}."""
        code, lines = self.end_of(self.start("crashrpt_dialog_user.exe", TITLE, *steps))
        self.assertEqual(code, 0, lines)
        printed = []
        for line in lines:
            key, *fields = line.split("\t")
            if key == "title":
                printed.append({"title": fields[0]})
            else:
                printed[-1][key] = (fields[0] == "1", fields[1] == "1", fields[2])
        return printed

    def check_kept(self, name):
        self.assertEqual((self.names(), self.report_names("pending"), self.report_names("sent")),
                         ([name], [], []))
        Report(self.reports / name)

    def test_agreed_report_is_sent_whole(self):
        server = Server(self)
        name = self.crash_with_window("--url=" + server.url, "--privacy=http://127.0.0.1/privacy", "--picture",
                                      "--email=a@b.example", "--text=line", "--subject=S")
        files = Report(self.reports / name).files
        asked, done = self.use("print", "click:" + SEND, "await-result", "print", "click:" + DO_NOT_SEND,
                               "await-gone")
        self.assertEqual(asked["title"], TITLE)
        self.assertTrue(asked[WHAT][2].startswith("Test \u00fc had a problem and was closed."), asked[WHAT])
        self.assertEqual(re.findall(r"\((.*?)\)", asked[CONTENTS][2]),
                         ["crashdump.dmp", "desktop.png", "report.xml"])
        self.assertEqual(asked[PATH], (True, True, windows_path(self.reports / name)))
        self.assertTrue(asked[PRIVACY][1], "the link")
        self.assertEqual((asked[SEND], asked[DO_NOT_SEND], asked[RESULT][2]),
                         ((True, True, "&Send report"), (True, True, "&Don't send"), ""))
        self.assertEqual((done[SEND][:2], done[DO_NOT_SEND], done[RESULT][2]),
                         ((False, False), (True, True, "&Close"), "The report was sent. Thank you."))
        self.assertEqual((self.report_names(), self.report_names("pending"), self.report_names("sent")),
                         ([], [], [name]))
        [(path, headers, body)] = server.requests
        self.assertEqual(path, "/crash?from=test")
        self.assertEqual(parts_of(headers, body), {
            "application": (None, "text/plain", "Test \u00fc".encode()), "version": (None, "text/plain", b"2.5"),
            "guid": (None, "text/plain", name.partition("-")[2].encode()),
            "email": (None, "text/plain", b"a@b.example"), "subject": (None, "text/plain", b"S"),
            "text": (None, "text/plain", b"line"),
            "report": ("report.xml", "application/xml", files["report.xml"]),
            "dump": ("crashdump.dmp", "application/octet-stream", files["crashdump.dmp"]),
            "picture": ("desktop.png", "image/png", files["desktop.png"])})

    def test_picture_is_of_the_whole_screen(self):
        name = self.crash_with_window("--picture")
        report = Report(self.reports / name)
        self.assertEqual((report.listed, report.missing), (["crashdump.dmp", "desktop.png"], {}))
        width, height, rows = png_size_and_rows(report.files["desktop.png"])
        self.assertEqual((width, height), self.screen_size())
        self.assertGreaterEqual(len(rows), height * (1 + 3 * width))
        self.use("close", "await-gone")

    def screen_size(self):
        code, [line] = self.end_of(self.start("crashrpt_dialog_user.exe", "screen"))
        self.assertEqual(code, 0, line)
        return tuple(map(int, line.split()))

    def test_declined_report_is_kept(self):
        server = Server(self)
        for way in ("click:" + DO_NOT_SEND, "escape", "close"):
            with self.subTest(way=way):
                self.reports = self.folder / way.replace(":", "")
                name = self.crash_with_window("--url=" + server.url)
                [asked] = self.use("print", way, "await-gone")
                self.assertFalse(asked[PRIVACY][1], "there is no policy to read")
                self.check_kept(name)
        self.assertEqual(server.requests, [])

    def test_report_that_cannot_be_sent_is_only_shown(self):
        name = self.crash_with_window()
        [shown] = self.use("print", "click:" + DO_NOT_SEND, "await-gone")
        self.assertEqual((shown[SEND][1], shown[DO_NOT_SEND]), (False, (True, True, "&Close")))
        self.assertEqual(shown[RESULT][2], "The report can not be sent from here, but it is kept.")
        self.check_kept(name)

    def check_failure(self, url, message):
        name = self.crash_with_window("--url=" + url)
        sending, done = self.use("click:" + SEND, "print", "await-result", "print", "click:" + DO_NOT_SEND,
                                 "await-gone")
        self.assertEqual(done[RESULT][2], message + KEPT)
        self.assertEqual((done[SEND][1], done[DO_NOT_SEND]), (False, (True, True, "&Close")))
        self.assertEqual((self.report_names(), self.report_names("pending"), self.report_names("sent")),
                         ([], [name], []))
        Report(self.reports / "pending" / name)
        return name, sending

    def test_refused_report_stays_pending_and_is_sent_later(self):
        server = Server(self, status=500)
        name, _ = self.check_failure(server.url, "The server did not accept the report (HTTP 500).")
        server.status = 204
        self.assertEqual(self.end_of(self.start_crasher("start", "--url=" + server.url))[0], 0)
        self.assertTrue(wait_until(lambda: self.report_names("sent") == [name]))
        first, second = (parts_of(headers, body) for _, headers, body in server.requests)
        self.assertEqual(first, second)

    def test_unreachable_server(self):
        self.check_failure(refusing_url(self), "The server cannot be reached.")

    def test_silent_server(self):
        _, sending = self.check_failure(Server(self, status=None).url, "The server did not answer in time.")
        self.assertEqual((sending[SEND][0], sending[DO_NOT_SEND][0], sending[RESULT][2]),
                         (False, False, "Sending the report..."))


if __name__ == "__main__":
    unittest.main()
