"""What ./run --with-ftp starts the window by: servers beside a command, and a look at what it published."""

import os
import pathlib
import re
import socket
import subprocess
import sys
import tempfile
import unittest

SERVERS = pathlib.Path(__file__).parent.parent / "servers"
BESIDE = [sys.executable, "-B", str(SERVERS / "with_ftp_server.py"), "pyftpdlib", "--web"]
COMPARE = [sys.executable, "-B", str(SERVERS / "compare_published.py")]
# As a client sees it: by the FTP server's own folder the bytes would arrive without any server.
SEND = """
import ftplib, os, pathlib, sys
ftp = ftplib.FTP()
ftp.connect(os.environ["MOSAICON_FTP_HOST"], int(os.environ["MOSAICON_FTP_PORT"]))
ftp.login(os.environ["MOSAICON_FTP_USER"], os.environ["MOSAICON_FTP_PASSWORD"])
ftp.mkd("a map")
for name in sys.argv[2:]:
    with open(pathlib.Path(sys.argv[1], name), "rb") as file:
        ftp.storbinary(f"STOR a map/{name}", file)
"""


class WithServersTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="mosaicon servers ")
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name) / "a map"
        self.folder.mkdir()
        for name in ("leaflet.html", "1 #?.png"):
            (self.folder / name).write_bytes(os.urandom(3000))

    def run_beside(self, *command, options=()):
        return subprocess.run(
            [*BESIDE, *options, "--", *command], capture_output=True, text=True, check=False
        )

    def publish(self, *names):
        return self.run_beside(
            *COMPARE, str(self.folder), sys.executable, "-c", SEND, str(self.folder), *names
        )

    def test_all_files_that_have_come_are_counted(self):
        run = self.publish("leaflet.html", "1 #?.png")
        self.assertEqual((run.returncode, run.stderr), (0, ""))
        self.assertIn("all 2 files were published, byte for byte", run.stdout)
        self.assertRegex(run.stdout, r"http://127\.0\.0\.1:\d+/a%20map/leaflet\.html")

    def test_a_file_that_is_missing_is_told(self):
        run = self.publish("leaflet.html")
        self.assertEqual(run.returncode, 1)
        self.assertIn("1 #?.png", run.stderr)
        self.assertNotIn("were published", run.stdout)

    def test_a_command_that_fails_is_not_looked_after(self):
        run = self.run_beside(*COMPARE, str(self.folder), "sh", "-c", "exit 7")
        self.assertEqual((run.returncode, run.stdout), (7, ""))

    def test_everything_that_somebody_needs_is_told_and_nothing_stays(self):
        run = self.run_beside("sh", "-c", "env | grep ^MOSAICON_; umask", options=("--tell", "--keep-umask"))
        self.assertEqual(run.returncode, 0, run.stderr)
        known = dict(re.findall(r"^(MOSAICON_\w+)=(.*)$", run.stdout, re.MULTILINE))
        host, port = known["MOSAICON_FTP_HOST"], known["MOSAICON_FTP_PORT"]
        for text in (
            f"Host Address  {host}:{port}\n",
            f"Username      {known['MOSAICON_FTP_USER']}\n",
            f"Password      {known['MOSAICON_FTP_PASSWORD']}\n",
            known["MOSAICON_WEB_URL"] + "/\n",
        ):
            self.assertIn(text, run.stdout)
        old = os.umask(0)
        os.umask(old)
        self.assertEqual(int(run.stdout.splitlines()[-1], 8), old)
        self.assertFalse(pathlib.Path(known["MOSAICON_FTP_ROOT"]).exists())
        for number in (port, known["MOSAICON_WEB_URL"].rpartition(":")[2]):
            with self.assertRaises(ConnectionRefusedError):
                socket.create_connection((host, int(number)))


if __name__ == "__main__":
    unittest.main()
