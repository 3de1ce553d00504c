"""What the servers can be told to refuse: too many connections, any change, more than the disk holds."""

import contextlib
import ftplib
import io
import sys
import unittest

from clients import Ftp
from ftp_servers import start

KINDS = ("vsftpd", "proftpd", "pure-ftpd", "pyftpdlib")
# Refused, or closed.
FAILURES = (ftplib.Error, EOFError, OSError)


class OptionsTest(unittest.TestCase):
    def setUp(self):
        self.stack = contextlib.ExitStack()
        self.addCleanup(self.stack.close)

    def start(self, kind, **options):
        return self.stack.enter_context(start(kind, **options))

    def connect(self, server, **how):
        return self.stack.enter_context(Ftp(server, **how))

    def test_connections(self):
        for kind in KINDS:
            for limit in (1, 3):
                with self.subTest(kind, limit=limit):
                    server = self.start(kind, connections=limit)
                    connections = [self.connect(server) for _ in range(limit)]
                    processes = server.session_processes()
                    self.assertEqual(processes % limit, 0)
                    for _ in range(2):
                        with self.assertRaisesRegex(ftplib.Error, "^(421|530) .*[Tt]oo many|maximum number"):
                            self.connect(server)
                    self.assertEqual([connection.pwd() for connection in connections], ["/"] * limit)
                    connections[0].quit()
                    server.wait_for_sessions(processes // limit * (limit - 1))
                    self.connect(server)

    def test_connections_with_tls(self):
        for kind in KINDS:
            with self.subTest(kind):
                server = self.start(kind, connections=1, tls="required")
                self.connect(server, tls=True)
                with self.assertRaises(FAILURES):
                    self.connect(server, tls=True)

    def test_read_only(self):
        for kind in ("vsftpd", "proftpd", "pyftpdlib"):
            with self.subTest(kind):
                server = self.start(kind, read_only=True)
                (server.root / "there").write_text("content")
                server.adopt()
                connection = self.connect(server)
                for refused in (
                    lambda: connection.storbinary("STOR file", io.BytesIO(b"x")),
                    lambda: connection.mkd("folder"),
                    lambda: connection.delete("there"),
                    lambda: connection.rename("there", "elsewhere"),
                ):
                    with self.assertRaisesRegex(ftplib.error_perm, "^550"):
                        refused()
                self.assertEqual([path.name for path in server.root.iterdir()], ["there"])
                self.assertIn("there", connection.nlst())

    def test_disk_that_gets_full(self):
        for kind in KINDS:
            for tls in (None, "required"):
                with self.subTest(kind, tls=tls):
                    server = self.start(kind, full=1_000_000, tls=tls)
                    connection = self.connect(server, tls=tls)
                    for name in "abc":
                        connection.storbinary(f"STOR {name}", io.BytesIO(bytes(300_000)))
                    with self.assertRaises(FAILURES):
                        connection.storbinary("STOR d", io.BytesIO(bytes(300_000)))
                    server.make_room(300_000)
                    connection = self.connect(server, tls=tls)
                    connection.storbinary("STOR e", io.BytesIO(bytes(300_000)))
                    self.assertEqual((server.root / "e").stat().st_size, 300_000)

    def test_what_a_kind_does_not_know(self):
        for kind, option in (("pure-ftpd", "read_only"), ("pyftpdlib", "reuse"), ("openssh", "connections")):
            with self.assertRaisesRegex(ValueError, f"{kind} has no option {option}"):
                start(kind, **{option: True})
        with self.assertRaisesRegex(ValueError, "no TLS that is openly"):
            start("vsftpd", tls="openly")


if __name__ == "__main__":
    sys.exit(unittest.main())
