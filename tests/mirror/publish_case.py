"""A map, a server, and the program that publishes the one to the other. In the environment:
MOSAICON_PUBLISH, the program, for this system or for Windows; MOSAICON_SERVER, the kind of server (see
tests/servers/ftp_servers.py)."""

import os
import pathlib
import random
import re
import subprocess
import sys
import tempfile
import time
import unittest

TOP = pathlib.Path(__file__).resolve().parents[2]
sys.path[:0] = [str(TOP / "tests" / name) for name in ("servers", "support")]
import ftp_servers  # noqa: E402
from wine_side import WINE, windows_path  # noqa: E402

PROGRAM = os.environ["MOSAICON_PUBLISH"]
KIND = os.environ["MOSAICON_SERVER"]
PATIENCE = 300  # seconds
NAME = "wiesen ä"
REMOTE_NAME = "wiesen_ä"  # as the program publishes it
IS_SSH = KIND == "openssh"
FOR_WINDOWS = PROGRAM.endswith(".exe")


def of_program(path):
    return windows_path(path) if FOR_WINDOWS else str(path)


class PublishCase(unittest.TestCase):
    scheme = "sftp" if IS_SSH else "ftp"
    server_options = {}

    def setUp(self):
        self.folder = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory(prefix="mosaicon publish ")))
        self.map = self.folder / NAME
        self.random = random.Random(7)
        self.make_map()
        self.server = self.enterContext(ftp_servers.start(KIND, **self.server_options))
        self.started = []
        # What nobody knows yet is refused; this is for who has compared it.
        self.options = [f"--host-key={self.fingerprint()}"] if IS_SSH else []

    def make_map(self, tiles=40):
        for number in range(tiles):
            self.write(
                f"18/{number % 7}/{number}.png", self.random.randbytes(self.random.randrange(1, 30000))
            )
        self.write("18/a name ä [1].png", b"x")
        for name in ("leaflet/map.js", "18/1.kml", "doc.kml", "leaflet.html"):
            self.write(name, name.encode())

    def write(self, name, content):
        path = self.map / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(content)
        os.utime(path, (time.time() - 100, time.time() - self.random.randrange(100, 10**6)))

    def fingerprint(self):
        code, text = self.publish()
        self.assertEqual(code, 1, text)
        found = re.search(r"--host-key (SHA256:\S+)", text)
        self.assertTrue(found, text)
        return found[1]

    # The program

    def address(self, scheme=None):
        folder = self.server.told["MOSAICON_SSH_FOLDER"].rstrip("/") if IS_SSH else ""
        server = self.server
        return f"{scheme or self.scheme}://{server.user}@{server.host}:{server.port}{folder}/web/maps"

    def environment(self, **more):
        environment = {
            **os.environ,
            "MOSAICON_PUBLISH_PASSWORD": self.server.password,
            "MOSAICON_PUBLISH_DATA": of_program(self.folder / "data"),
            **more,
        }
        return {name: value for name, value in environment.items() if value is not None}

    def command(self, *options, scheme=None):
        start = [WINE, PROGRAM] if FOR_WINDOWS else [PROGRAM]
        return [*start, "--publish", self.address(scheme), *self.given(), *options, of_program(self.map)]

    def given(self):
        trusted = self.server.told.get("MOSAICON_FTP_CA")
        more = [f"--certificates={of_program(trusted)}"] if trusted and self.trusts else []
        return [*getattr(self, "options", []), *more]

    trusts = True

    def publish(self, *options, scheme=None, **environment):
        """Exit code and everything that was said."""
        done = subprocess.run(
            self.command(*options, scheme=scheme),
            env=self.environment(**environment),
            stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE,
            stderr=subprocess.STDOUT,
            timeout=PATIENCE,
            check=False,
        )
        coding = "cp1252" if FOR_WINDOWS else "utf-8"
        return done.returncode, done.stdout.decode(coding, "replace").replace("\r\n", "\n")

    # What there is

    @property
    def published(self):
        return pathlib.Path(self.server.root) / "web" / "maps" / REMOTE_NAME

    @staticmethod
    def contents(folder):
        return {
            path.relative_to(folder).as_posix(): path.read_bytes()
            for path in folder.rglob("*")
            if path.is_file()
        }

    def check_published(self):
        self.assertEqual(sorted(self.contents(self.published)), sorted(self.contents(self.map)))
        self.assertEqual(self.contents(self.published), self.contents(self.map))

    def publish_well(self, *options, **more):
        code, text = self.publish(*options, **more)
        self.assertEqual(code, 0, text)
        self.check_published()
        found = re.search(r"(\d+) files sent \([\d.]+ MB\), (\d+) were there, (\d+) deleted", text)
        return tuple(map(int, found.groups()))
