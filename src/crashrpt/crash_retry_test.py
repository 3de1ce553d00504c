"""Reports that the user agreed to send are delivered silently when the program starts again."""

import time
import unittest

from testing.crash_support import CrashTest, Server, keep_wine_running, parts_of, refusing_url, wait_until


def setUpModule():
    keep_wine_running()


class Retry(CrashTest):
    NAMES = [
        "20260101T000000Z-6f9619ff-8b86-d011-b42d-00c04fc964ff",
        "20260102T000000Z-0f9619ff-8b86-d011-b42d-00c04fc964ff",
    ]

    def write_report(self, name, below="pending"):
        folder = self.reports / below / name
        folder.mkdir(parents=True)
        guid = name.partition("-")[2]
        (folder / "report.xml").write_text(
            f"<report><guid>{guid}</guid><application>A &amp; B</application><version>1</version>"
            '<email></email><subject>s</subject><text></text><file name="crashdump.dmp"/></report>'
        )
        (folder / "crashdump.dmp").write_bytes(bytes(range(256)) * 1000 + b"\r\n--report-")

    def start_program(self, url, *options):
        """Starts it and sees it end: neither must wait for anything."""
        code, (milliseconds, _) = self.end_of(self.start_crasher("start", "--url=" + url, *options))
        self.assertEqual(code, 0)
        self.assertLess(int(milliseconds), 10000, "the silent server is given more")

    def test_pending_reports_are_sent_oldest_first(self):
        server = Server(self)
        for name in reversed(self.NAMES):
            self.write_report(name)
        files = {
            path.name: path.read_bytes() for path in (self.reports / "pending" / self.NAMES[0]).iterdir()
        }
        self.start_program(server.url)
        self.assertTrue(wait_until(lambda: self.report_names("sent") == self.NAMES))
        self.assertEqual(self.report_names("pending"), [])
        (path, headers, body), second = server.requests
        self.assertEqual(path, "/crash?from=test")
        self.assertEqual(
            parts_of(headers, body),
            {
                "application": (None, "text/plain", b"A & B"),
                "version": (None, "text/plain", b"1"),
                "guid": (None, "text/plain", self.NAMES[0].partition("-")[2].encode()),
                "email": (None, "text/plain", b""),
                "subject": (None, "text/plain", b"s"),
                "text": (None, "text/plain", b""),
                "report": ("report.xml", "application/xml", files["report.xml"]),
                "dump": ("crashdump.dmp", "application/octet-stream", files["crashdump.dmp"]),
            },
        )
        self.assertEqual(parts_of(*second[1:])["guid"][2], self.NAMES[1].partition("-")[2].encode())

    def test_what_the_user_did_not_agree_to_is_never_sent(self):
        server = Server(self)
        self.write_report(self.NAMES[0], "")
        self.write_report(self.NAMES[1])
        self.start_program(server.url)
        self.assertTrue(wait_until(lambda: self.report_names("sent")))
        self.assertEqual(len(server.requests), 1)
        self.assertEqual(self.report_names(), self.NAMES[:1])

    def check_that_it_stays(self, server_or_url):
        self.write_report(self.NAMES[0])
        self.start_program(getattr(server_or_url, "url", server_or_url))
        self.wait_for_senders()
        self.assertEqual((self.report_names("pending"), self.report_names("sent")), (self.NAMES[:1], []))

    def wait_for_senders(self):
        """The lock of the report is gone when its sender is."""
        time.sleep(1)
        self.assertTrue(wait_until(lambda: self.names("pending") == self.NAMES[:1]), self.names("pending"))

    def test_refused_reports_stay_pending(self):
        server = Server(self, status=500)
        self.check_that_it_stays(server)
        self.assertEqual(len(server.requests), 1)

    def test_redirected_reports_stay_pending(self):
        """A redirection would lose the body, and the second answer would look like success."""
        server = Server(self, status=302)
        self.check_that_it_stays(server)
        self.assertEqual([path for path, _, _ in server.requests], ["/crash?from=test"])

    def test_unreachable_servers_leave_reports_pending(self):
        self.check_that_it_stays(refusing_url(self))

    def test_silent_server_does_not_hold_up_the_program_nor_the_sender(self):
        server = Server(self, status=None)
        self.write_report(self.NAMES[0])
        self.start_program(server.url)
        self.assertTrue(wait_until(lambda: server.requests))
        self.assertEqual(self.names("pending"), [self.NAMES[0], self.NAMES[0] + ".lock"])
        begin = time.monotonic()
        self.wait_for_senders()
        self.assertLess(time.monotonic() - begin, 40)
        self.assertEqual((self.report_names("pending"), self.report_names("sent")), (self.NAMES[:1], []))

    def test_two_programs_do_not_send_a_report_twice(self):
        server = Server(self)
        for name in self.NAMES:
            self.write_report(name)
        programs = [self.start_crasher("start", "--url=" + server.url) for _ in range(4)]
        for program in programs:
            self.assertEqual(self.end_of(program)[0], 0)
        self.assertTrue(wait_until(lambda: self.report_names("sent") == self.NAMES))
        time.sleep(2)
        guids = sorted(parts_of(headers, body)["guid"][2].decode() for _, headers, body in server.requests)
        self.assertEqual(guids, sorted(name.partition("-")[2] for name in self.NAMES))

    def test_nothing_is_sent_when_http_must_not_be_used(self):
        server = Server(self)
        self.write_report(self.NAMES[0])
        self.start_program(server.url, "--smtp=1")
        time.sleep(3)
        self.assertEqual((server.requests, self.report_names("pending")), ([], self.NAMES[:1]))


if __name__ == "__main__":
    unittest.main()
