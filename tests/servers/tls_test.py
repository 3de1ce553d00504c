"""The servers' TLS: what is offered, what is refused, and whom the certificates convince."""

import contextlib
import ftplib
import io
import ssl
import sys
import unittest

from clients import Ftp
from ftp_servers import start

KINDS = ("vsftpd", "proftpd", "pure-ftpd", "pyftpdlib")
IMPLICIT = ("vsftpd", "proftpd", "pyftpdlib")
WANT_REUSE = ("vsftpd", "proftpd")
CONTENT = bytes(range(256)) * 1000


class TlsTest(unittest.TestCase):
    def setUp(self):
        self.stack = contextlib.ExitStack()
        self.addCleanup(self.stack.close)

    def start(self, kind, **options):
        return self.stack.enter_context(start(kind, **options))

    def connect(self, server, **how):
        return self.stack.enter_context(Ftp(server, **how))

    def send(self, server, connection):
        """A file there and back, and what lists it."""
        connection.storbinary("STOR file", io.BytesIO(CONTENT))
        self.assertEqual((server.root / "file").read_bytes(), CONTENT)
        self.assertIn("file", connection.nlst())
        back = io.BytesIO()
        connection.retrbinary("RETR file", back.write)
        self.assertEqual(back.getvalue(), CONTENT)

    def test_offered(self):
        for kind in KINDS:
            with self.subTest(kind):
                server = self.start(kind, tls="offered")
                self.send(server, self.connect(server))
                connection = self.connect(server, tls=True)
                self.assertIn(connection.sock.version(), ("TLSv1.2", "TLSv1.3"))
                self.send(server, connection)

    def test_required(self):
        for kind in KINDS:
            with self.subTest(kind):
                server = self.start(kind, tls="required")
                self.send(server, self.connect(server, tls=True, name="localhost"))
                with self.assertRaises(ftplib.Error):
                    self.connect(server)
                connection = self.connect(server, tls=True)
                with self.assertRaises(ftplib.Error):
                    connection.prot_c()
                    connection.nlst()

    def test_implicit(self):
        for kind in IMPLICIT:
            with self.subTest(kind):
                server = self.start(kind, tls="implicit")
                self.send(server, self.connect(server, tls=True))
        with self.assertRaisesRegex(ValueError, "pure-ftpd has no TLS that is implicit"):
            start("pure-ftpd", tls="implicit")

    def test_session_of_data_connections(self):
        for kind in WANT_REUSE:
            for tls in ("offered", "implicit"):
                with self.subTest(kind, tls=tls):
                    server = self.start(kind, tls=tls, reuse=False)
                    self.send(server, self.connect(server, tls=True, reuse=False))
                    server = self.start(kind, tls=tls)
                    with self.assertRaises((ftplib.Error, ssl.SSLError, EOFError, ConnectionError)):
                        self.send(server, self.connect(server, tls=True, reuse=False))

    def test_wrong_certificates(self):
        for kind in KINDS:
            for certificate, reason in (("wrong name", "127.0.0.1"), ("expired", "expired")):
                with self.subTest(kind, certificate=certificate):
                    server = self.start(kind, tls="required", certificate=certificate)
                    with self.assertRaisesRegex(ssl.SSLCertVerificationError, reason):
                        self.connect(server, tls=True)

    def test_nobody_else_trusts_the_authority(self):
        server = self.start("proftpd", tls="required")
        server.told.clear()
        with self.assertRaises(ssl.SSLCertVerificationError):
            self.connect(server, tls=True)


if __name__ == "__main__":
    sys.exit(unittest.main())
