"""The window of the sender, used as a user does. Needs a DISPLAY under Linux."""

import contextlib
import os
import pathlib
import signal
import sys
import unittest

from testing.crash_support import (
    REPORTED,
    UNDER_WINE,
    CrashTest,
    Report,
    Server,
    keep_wine_running,
    parts_of,
    png_size_and_rows,
    refusing_url,
    wait_until,
    windows_path,
)

TITLE = "Test \u00fc crash report"
(WHAT, CONTENTS, PATH, OPEN, PRIVACY, RESULT, SEND, DO_NOT_SEND, WITH_PICTURE, SHOW_PICTURE, SHOW_REPORT) = (
    str(number) for number in range(101, 112)
)
KEPT = " The report is kept, and sending it is tried again when Test \u00fc starts the next time."


def setUpModule():
    if UNDER_WINE and not os.environ.get("DISPLAY"):
        sys.exit("DISPLAY is not set: these tests need a screen")
    keep_wine_running()


class Window(CrashTest):
    quiet = "0"
    short_dumps = True

    def crash_with_window(self, *options):
        """Crashes; returns the name of the report."""
        crasher = self.start_crasher("7", "--name=Test \u00fc", "--version=2.5", *options)
        self.assertEqual(self.end_of(crasher)[0], REPORTED)
        self.await_report()
        (name,) = self.report_names()
        return name

    def use(self, *steps):
        """Takes the steps and returns what was printed: a list of {number: (enabled, visible, text)}, with
        the title, the numbers of the focus and of the default button, and those of ticked boxes."""
        code, lines = self.end_of(self.start("crashrpt_dialog_user.exe", TITLE, *steps))
        self.assertEqual(code, 0, lines)
        printed = []
        for line in lines:
            key, *fields = line.split("\t")
            if key == "title":
                printed.append({"title": fields[0], "ticked": []})
            elif len(fields) == 1:
                printed[-1][key] = fields[0]
            else:
                printed[-1][key] = (fields[0] == "1", fields[1] == "1", fields[2])
                printed[-1]["ticked"] += [key] if fields[3] == "1" else []
        return printed

    def check_kept(self, name):
        self.assertEqual(
            (self.names(), self.report_names("pending"), self.report_names("sent")), ([name], [], [])
        )
        Report(self.reports / name)

    def test_agreed_report_is_sent_whole(self):
        server = Server(self)
        name = self.crash_with_window(
            "--url=" + server.url,
            "--privacy=http://127.0.0.1/privacy",
            "--picture",
            "--email=a@b.example",
            "--text=line",
            "--subject=S",
        )
        files = Report(self.reports / name).files
        asked, done = self.use(
            "print",
            "click:" + WITH_PICTURE,
            "click:" + SEND,
            "await-result",
            "print",
            "click:" + DO_NOT_SEND,
            "await-gone",
        )
        self.assertEqual(asked["title"], TITLE)
        self.assertTrue(asked[WHAT][2].startswith("Test \u00fc had a problem and was closed."), asked[WHAT])
        self.assertEqual(asked[PATH], (True, True, windows_path(self.reports / name)))
        self.assertTrue(asked[PRIVACY][1], "the link")
        self.assertEqual(
            (asked[SEND], asked[DO_NOT_SEND], asked[RESULT][2]),
            ((True, True, "&Send report"), (True, True, "&Don't send"), ""),
        )
        self.assertEqual(
            (done[SEND][:2], done[DO_NOT_SEND], done[RESULT][2]),
            ((False, False), (True, True, "&Close"), "The report was sent. Thank you."),
        )
        self.assertEqual(
            (self.report_names(), self.report_names("pending"), self.report_names("sent")), ([], [], [name])
        )
        [(path, headers, body)] = server.requests
        self.assertEqual(path, "/crash?from=test")
        self.assertEqual(
            parts_of(headers, body),
            {
                "application": (None, "text/plain", "Test \u00fc".encode()),
                "version": (None, "text/plain", b"2.5"),
                "guid": (None, "text/plain", name.partition("-")[2].encode()),
                "email": (None, "text/plain", b"a@b.example"),
                "subject": (None, "text/plain", b"S"),
                "text": (None, "text/plain", b"line"),
                "report": ("report.xml", "application/xml", files["report.xml"]),
                "dump": ("crashdump.dmp", "application/octet-stream", files["crashdump.dmp"]),
                "picture": ("desktop.png", "image/png", files["desktop.png"]),
            },
        )

    def test_everything_that_is_sent_is_named_first(self):
        self.crash_with_window("--picture", "--url=https://a.example")
        [asked] = self.use("print", "escape", "await-gone")
        lines = asked[CONTENTS][2].split("||")
        self.assertEqual(
            lines[:3],
            ["What happened, where in the program, when, and in which version", "image: second", "a<\"&'>: "],
        )
        self.assertTrue(lines[3].startswith("bytes: ") and lines[3].endswith("..."), lines[3])
        self.assertTrue(lines[4].startswith("Part of the program's memory at that moment"), lines[4])
        self.assertEqual(lines[5:], [""])
        self.assertEqual(
            asked[WITH_PICTURE],
            (True, True, "Send a &picture of your whole screen as well, with all open windows"),
        )

    def test_picture_is_sent_only_when_its_box_was_ticked(self):
        server = Server(self)
        name = self.crash_with_window("--url=" + server.url, "--picture")
        asked, _ = self.use(
            "print", "click:" + SEND, "await-result", "print", "click:" + DO_NOT_SEND, "await-gone"
        )
        self.assertEqual(asked["ticked"], [])
        [(_, headers, body)] = server.requests
        parts = parts_of(headers, body)
        self.assertNotIn("picture", parts)
        self.assertNotIn(b"\x89PNG", body)
        report = Report(self.reports / "sent" / name)
        self.assertEqual(
            (report.listed, report.missing),
            (["crashdump.dmp"], {"desktop.png": "The user did not agree to send it."}),
        )
        self.assertEqual(sorted(report.files), ["crashdump.dmp", "report.xml"])
        self.assertEqual(parts["report"][2], report.files["report.xml"])

    def test_picture_without_consent_is_not_sent_later_either(self):
        server = Server(self, status=500)
        name = self.crash_with_window("--url=" + server.url, "--picture")
        self.use("click:" + SEND, "await-result", "click:" + DO_NOT_SEND, "await-gone")
        server.status = 200
        self.assertEqual(self.end_of(self.start_crasher("start", "--url=" + server.url))[0], 0)
        self.assertTrue(wait_until(lambda: self.report_names("sent") == [name]))
        self.assertEqual([b"\x89PNG" in body for _, _, body in server.requests], [False, False])

    def test_return_sends_nothing_wherever_the_focus_is(self):
        server = Server(self)
        for number in (DO_NOT_SEND, CONTENTS, WITH_PICTURE):
            with self.subTest(focus=number):
                self.reports = self.folder / number
                name = self.crash_with_window("--url=" + server.url, "--picture")
                [asked] = self.use("print", "return:" + number, "await-gone")
                self.assertEqual((asked["focus"], asked["default"]), (DO_NOT_SEND, DO_NOT_SEND))
                self.check_kept(name)
        self.assertEqual(server.requests, [])

    @unittest.skipUnless(UNDER_WINE, "on Windows the user's own programs would open")
    def test_report_can_be_looked_at_first(self):
        """There is no program for its kind of file, so that the editor shows it."""
        name = self.crash_with_window("--url=https://a.example")
        self.use("return:" + SHOW_REPORT)
        self.assertTrue(wait_until(lambda: self.editors_of(name)))
        for process in self.editors_of(name):
            os.kill(process, signal.SIGKILL)
        self.use("escape", "await-gone")

    def editors_of(self, name):
        found = []
        for place in pathlib.Path("/proc").glob("[0-9]*/cmdline"):
            with contextlib.suppress(OSError):
                command = place.read_bytes()
                if b"notepad.exe" in command and f"{name}\\report.xml".encode() in command:
                    found.append(int(place.parent.name))
        return found

    @unittest.skipUnless(UNDER_WINE, "on Windows the user's own programs would open")
    def test_privacy_policy_can_be_read(self):
        opened = self.record_what_is_opened()
        self.crash_with_window("--privacy=https://a.example/privacy", "--url=https://a.example")
        self.use("return:" + PRIVACY)
        self.assertTrue(wait_until(opened))
        self.assertEqual(opened(), ["https://a.example/privacy"])
        self.use("escape", "await-gone")

    def record_what_is_opened(self):
        """Puts a program before the one that Wine opens web pages with; returns what asks for its
        arguments."""
        record = self.folder / "opened"
        programs = self.folder / "programs"
        programs.mkdir()
        (programs / "xdg-open").write_text(f"#!/bin/sh\nprintf '%s\\n' \"$1\" >> '{record}'\n")
        (programs / "xdg-open").chmod(0o755)
        self.environment["PATH"] = f"{programs}:{os.environ['PATH']}"
        return lambda: record.read_text().splitlines() if record.exists() else []

    def test_report_is_not_sent_to_where_others_can_read_along(self):
        name = self.crash_with_window("--url=http://localhost:1/")
        [shown] = self.use("print", "click:" + DO_NOT_SEND, "await-gone")
        self.assertEqual(
            (shown[SEND][1], shown[RESULT][2]),
            (False, "The report can not be sent from here, but it is kept."),
        )
        self.check_kept(name)

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
        sending, done = self.use(
            "click:" + SEND,
            "await-sending",
            "print",
            "await-result",
            "print",
            "click:" + DO_NOT_SEND,
            "await-gone",
        )
        self.assertEqual(done[RESULT][2], message + KEPT)
        self.assertEqual((done[SEND][1], done[DO_NOT_SEND]), (False, (True, True, "&Close")))
        self.assertEqual(
            (self.report_names(), self.report_names("pending"), self.report_names("sent")), ([], [name], [])
        )
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
        self.assertEqual(
            (sending[SEND][0], sending[DO_NOT_SEND][0], sending[RESULT][2]),
            (False, False, "Sending the report..."),
        )


if __name__ == "__main__":
    unittest.main()
