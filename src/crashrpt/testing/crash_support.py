"""Fixture of the tests that let a program crash and read what is left.

Needs in the environment CRASHRPT_PROGRAMS, the folder with the test programs; under Linux also a Wine
prefix in WINEPREFIX.
"""

import email.parser
import email.policy
import os
import pathlib
import re
import shutil
import socket
import struct
import subprocess
import sys
import tempfile
import threading
import unittest
import xml.etree.ElementTree
import zlib

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[3] / "tests" / "support"))
import wine_side  # noqa: E402
from web_server import Quiet, WebServer  # noqa: E402
from wine_side import UNDER_WINE, WINE, windows_path  # noqa: E402

PROGRAMS = pathlib.Path(
    os.environ.get("CRASHRPT_PROGRAMS") or sys.exit("CRASHRPT_PROGRAMS is not set")
).resolve()
PATIENCE = 600  # seconds until a test calls something hung
REPORTED, UNREPORTED = 201, 202
REPORT_NAME = re.compile(r"\d{8}T\d{6}Z-[0-9a-f]{8}(-[0-9a-f]{4}){3}-[0-9a-f]{12}")
MADE_UP_CODE = 0xE0435200


def local_data_folder():
    """The user's folder for data of this computer."""
    if not UNDER_WINE:
        return pathlib.Path(os.environ["LOCALAPPDATA"])
    [folder] = pathlib.Path(os.environ["WINEPREFIX"]).glob("drive_c/users/*/AppData/Local")
    return folder


def keep_wine_running():
    wine_side.keep_wine_running(PATIENCE)


def wait_until(condition):
    return wine_side.wait_until(condition, PATIENCE)


def command(program, *arguments, starter=()):
    return [
        *([WINE] if UNDER_WINE else []),
        *starter,
        windows_path(PROGRAMS / program),
        *map(str, arguments),
    ]


class Dump:
    """What a minidump says about the crash."""

    def __init__(self, data):
        signature, version, count, directory = struct.unpack_from("<4sIII", data)
        assert signature == b"MDMP" and version & 0xFFFF == 0xA793, (signature, hex(version))
        streams = {}
        for i in range(count):
            kind, size, place = struct.unpack_from("<III", data, directory + 12 * i)
            streams[kind] = data[place : place + size]
        (thread_count,) = struct.unpack_from("<I", streams[3])
        self.threads = [struct.unpack_from("<I", streams[3], 4 + 48 * i)[0] for i in range(thread_count)]
        self.thread, _, self.code, _, _, self.address = struct.unpack_from("<IIIIQQ", streams[6])


class Report:
    """A complete report, taken apart strictly."""

    def __init__(self, folder):
        self.folder = folder
        self.files = {path.name: path.read_bytes() for path in folder.iterdir()}
        root = xml.etree.ElementTree.fromstring(self.files["report.xml"])
        assert root.tag == "report" and root.attrib == {"format": "1"}, root
        self.texts = {
            name: self._only(root, name).text or ""
            for name in ("guid", "application", "version", "time", "email", "subject", "text")
        }
        self.crash = self._only(root, "crash").attrib
        self.listed = [element.attrib["name"] for element in root.findall("file")]
        self.missing = {
            element.attrib["what"]: element.attrib["reason"] for element in root.findall("missing")
        }
        self.properties = [
            (element.attrib["name"], element.attrib["value"]) for element in root.findall("property")
        ]

    @staticmethod
    def _only(root, name):
        found = root.findall(name)
        assert len(found) == 1, (name, found)
        return found[0]

    def dump(self):
        return Dump(self.files["crashdump.dmp"])


def png_size_and_rows(data):
    """Width, height and the unpacked rows; fails when a checksum is wrong."""
    assert data[:8] == b"\x89PNG\r\n\x1a\n"
    place, chunks = 8, []
    while place < len(data):
        (size,) = struct.unpack_from(">I", data, place)
        body = data[place + 4 : place + 8 + size]
        assert zlib.crc32(body) == struct.unpack_from(">I", data, place + 8 + size)[0]
        chunks.append((body[:4], body[4:]))
        place += 12 + size
    assert chunks[0][0] == b"IHDR" and chunks[-1] == (b"IEND", b"")
    width, height = struct.unpack_from(">II", chunks[0][1])
    return width, height, zlib.decompress(b"".join(body for name, body in chunks if name == b"IDAT"))


class CrashTest(unittest.TestCase):
    maxDiff = None
    quiet = "1"
    short_dumps = False  # the system's own take Wine seconds

    def setUp(self):
        # The blank is part of every test.
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="crash reports ")).resolve()
        self.addCleanup(shutil.rmtree, self.folder)
        self.reports = self.folder / "reports"
        # What Wine has to say is shown when a program ends as it should not.
        self.environment = {**os.environ, "CRASHREPORT_QUIET": self.quiet, "WINEDEBUG": "err+all,fixme-all"}
        self.started = []
        self.addCleanup(self.end_all)

    def end_all(self):
        for process in self.started:
            if process.poll() is None:
                process.kill()
            process.wait()

    # Running

    def start(self, program, *arguments, starter=()):
        """Its output goes into files: a sender that outlives it would hold a pipe open."""
        output = self.folder / f"output-{len(self.started)}"
        errors = self.folder / f"errors-{len(self.started)}"
        with open(output, "wb") as output_file, open(errors, "wb") as errors_file:
            process = subprocess.Popen(
                command(program, *arguments, starter=starter),
                stdin=subprocess.DEVNULL,
                stdout=output_file,
                stderr=errors_file,
                env=self.environment,
            )
        process.output, process.errors = output, errors
        self.started.append(process)
        return process

    def start_crasher(self, crash, *options, starter=()):
        if self.short_dumps:
            options = ("--debug-help=" + windows_path(PROGRAMS / "crashrpt_short_dump.dll"), *options)
        folder = "--folder=" + windows_path(self.reports)
        return self.start("crashrpt_crasher.exe", crash, folder, *options, starter=starter)

    def lines_of(self, process):
        return process.output.read_text("cp1252").splitlines()

    def end_of(self, process):
        """Exit code and lines of output."""
        code = process.wait(timeout=PATIENCE)
        return code, self.lines_of(process)

    def crash(self, how, *options):
        """Crashes, and returns the one report with (process, thread), as the program told them last."""
        crasher = self.start_crasher(how, *options)
        code, lines = self.end_of(crasher)
        self.assertEqual(code, REPORTED, (lines, crasher.errors.read_text(errors="replace")))
        return self.only_report(), [tuple(line.split()) for line in lines]

    # Reading

    def names(self, below=""):
        folder = self.reports / below
        return sorted(path.name for path in folder.iterdir()) if folder.exists() else []

    def report_names(self, below=""):
        return [name for name in self.names(below) if REPORT_NAME.fullmatch(name)]

    def await_report(self, below=""):
        self.assertTrue(wait_until(lambda: self.report_names(below)), f"no report in {self.names(below)}")

    def only_report(self, below=""):
        self.await_report(below)
        names = self.report_names(below)
        self.assertEqual(len(names), 1)
        if not below:
            self.assertEqual(self.names(), names, "nothing else is left")
        return Report(self.reports / below / names[0])

    def check_crash(self, report, kind, name, code, process, thread):
        """The report and its dump name the same crash."""
        address = report.crash["address"]
        self.assertRegex(address, "^0x[0-9A-F]{16}$")
        self.assertEqual(
            report.crash,
            {
                "type": str(kind),
                "name": name,
                "code": f"0x{code:08X}",
                "address": address,
                "process": process,
                "thread": thread,
            },
        )
        dump = report.dump()
        self.assertEqual((dump.code, dump.thread, dump.address), (code, int(thread), int(address, 16)))
        self.assertIn(int(thread), dump.threads)


KIND_NAMES = [
    "structured exception",
    "terminate call",
    "unexpected call",
    "pure virtual function call",
    "new operator fault",
    "buffer overrun",
    "invalid parameter",
    "SIGABRT",
    "SIGFPE",
    "SIGILL",
    "SIGINT",
    "SIGSEGV",
    "SIGTERM",
]


def expected_code(kind):
    return {0: 0xC0000005, 5: 0xC0000409}.get(kind, MADE_UP_CODE + kind)


class Server:
    """An HTTP server that keeps what it gets. status: what it answers; None: nothing, ever."""

    def __init__(self, test, status=200):
        self.status = status
        self.requests = []  # (path, headers, body)
        self.closed = threading.Event()
        outer = self

        class Handler(Quiet):
            def do_POST(self):
                body = self.rfile.read(int(self.headers["Content-Length"]))
                outer.requests.append((self.path, self.headers, body))
                if outer.status is None:
                    outer.closed.wait(PATIENCE)
                    return
                self.send_response(outer.status)
                if outer.status == 302:
                    self.send_header("Location", "/elsewhere")
                self.send_header("Content-Length", "0")
                self.end_headers()

            def do_GET(self):
                outer.requests.append((self.path, self.headers, None))
                self.send_error(200)

        web = test.enterContext(WebServer(Handler))
        self.url = f"{web.url}/crash?from=test"
        test.addCleanup(self.closed.set)


def refusing_url(test):
    """An address where nobody listens, and nobody else will."""
    holder = socket.socket()
    holder.bind(("127.0.0.1", 0))
    test.addCleanup(holder.close)
    return f"http://127.0.0.1:{holder.getsockname()[1]}/"


def parts_of(headers, body):
    """The parts of a multipart body as {name: (file name, content type, bytes)}."""
    document = b"Content-Type: " + headers["Content-Type"].encode() + b"\r\nMIME-Version: 1.0\r\n\r\n" + body
    message = email.parser.BytesParser(policy=email.policy.HTTP).parsebytes(document)
    assert message.get_content_type() == "multipart/form-data" and not message.defects, message.defects
    parts = {}
    for part in message.iter_parts():
        assert part.get_content_disposition() == "form-data"
        name = part.get_param("name", header="Content-Disposition")
        assert name not in parts, name
        parts[name] = (part.get_filename(), part.get_content_type(), part.get_payload(decode=True))
    return parts
