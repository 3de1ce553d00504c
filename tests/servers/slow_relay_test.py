"""The relay that makes the way to a server long: what takes how long through it, and what breaks."""

import contextlib
import io
import socket
import sys
import threading
import time
import unittest

from clients import Ftp, sftp
from ftp_servers import start
from slow_relay import SlowRelay

ROUND_TRIP = 0.05
PATIENCE = 60
CONTENT = bytes(range(256)) * 10_000


class Echo(threading.Thread):
    """A server that says back what it hears."""

    def __init__(self):
        super().__init__(daemon=True)
        self.socket = socket.create_server(("127.0.0.1", 0))
        self.port = self.socket.getsockname()[1]
        self.start()

    def run(self):
        with contextlib.suppress(OSError):
            while True:
                threading.Thread(target=self.serve, args=self.socket.accept()[:1], daemon=True).start()

    @staticmethod
    def serve(connection):
        with connection, contextlib.suppress(OSError):
            while data := connection.recv(1 << 20):
                connection.sendall(data)

    def close(self):
        self.socket.shutdown(socket.SHUT_RD)
        self.socket.close()


class SlowRelayTest(unittest.TestCase):
    def setUp(self):
        self.stack = contextlib.ExitStack()
        self.addCleanup(self.stack.close)

    def relay_to(self, port, round_trip=ROUND_TRIP):
        return self.stack.enter_context(SlowRelay(port, round_trip))

    def relay_to_echo(self, round_trip=ROUND_TRIP):
        return self.relay_to(self.stack.enter_context(contextlib.closing(Echo())).port, round_trip)

    def connect(self, relay):
        address = ("127.0.0.1", relay.port)
        return self.stack.enter_context(socket.create_connection(address, timeout=PATIENCE))

    def takes(self, round_trips, function):
        """At least; how busy the machine is decides on the rest."""
        begin = time.monotonic()
        result = function()
        taken = time.monotonic() - begin
        print(f"{self.id()}: {taken / ROUND_TRIP:.2f} round trips, expected {round_trips}")
        self.assertGreaterEqual(taken, round_trips * ROUND_TRIP)
        return result

    def test_a_connection_costs_a_round_trip_more(self):
        connection = self.connect(self.relay_to_echo())

        def ask():
            connection.sendall(b"x")
            self.assertEqual(connection.recv(1), b"x")

        self.takes(2, ask)
        self.takes(1, ask)

    def test_a_long_way_is_no_narrow_way(self):
        size, round_trip = 40_000_000, 1
        connection = self.connect(self.relay_to_echo(round_trip))
        begin = time.monotonic()
        threading.Thread(target=connection.sendall, args=(bytes(size),), daemon=True).start()
        while size > 0:
            size -= len(connection.recv(1 << 20))
        taken = time.monotonic() - begin
        print(f"40 MB there and back in {taken:.1f} s")
        # With the 64 kB that a simple window holds it would be ten minutes.
        self.assertLess(taken, PATIENCE)

    def test_the_end_comes_after_the_data(self):
        connection = self.connect(self.relay_to_echo())
        connection.sendall(CONTENT)
        connection.shutdown(socket.SHUT_WR)
        received = b"".join(iter(lambda: connection.recv(1 << 20), b""))
        self.assertEqual(received, CONTENT)

    def test_broken(self):
        relay = self.relay_to_echo()
        connections = [self.connect(relay) for _ in range(3)]
        for connection in connections[:2]:
            connection.sendall(b"x")
            connection.recv(1)
        self.assertEqual(relay.break_all(), 3)
        for connection in connections:
            with self.assertRaises(ConnectionResetError):
                connection.recv(1)
        self.assertEqual(relay.break_all(), 0)
        self.test_a_connection_costs_a_round_trip_more()

    def test_refused(self):
        relay = self.relay_to_echo()
        before = self.connect(relay)
        before.sendall(b"x")
        self.assertEqual(before.recv(1), b"x")
        relay.refuse()
        for _ in range(2):
            with self.assertRaises(ConnectionRefusedError):
                self.connect(relay)
        before.sendall(b"y")
        self.assertEqual(before.recv(1), b"y")
        relay.accept()
        after = self.connect(relay)
        after.sendall(b"z")
        self.assertEqual(after.recv(1), b"z")

    def test_no_server(self):
        with socket.create_server(("127.0.0.1", 0)) as nobody:
            port = nobody.getsockname()[1]
        with self.assertRaises(ConnectionResetError):
            self.connect(self.relay_to(port)).recv(1)

    def test_ftp(self):
        for kind in ("vsftpd", "proftpd", "pure-ftpd", "pyftpdlib"):
            for af in (socket.AF_INET, socket.AF_INET6):
                with self.subTest(kind, command="PASV" if af == socket.AF_INET else "EPSV"):
                    server = self.stack.enter_context(start(kind))
                    self.try_ftp(server, self.relay_to(server.port), af)

    def try_ftp(self, server, relay, af):
        server.reached_by(relay.port)
        # Greeting, USER, PASS
        connection = self.takes(4, lambda: self.stack.enter_context(Ftp(server)))
        connection.af = af
        self.takes(1, connection.pwd)
        # TYPE; EPSV or PASV; the data connection and the command at once; the end of the data
        self.takes(4, lambda: connection.storbinary("STOR file", io.BytesIO(CONTENT)))
        self.assertEqual((server.root / "file").read_bytes(), CONTENT)
        back = io.BytesIO()
        self.takes(4, lambda: connection.retrbinary("RETR file", back.write))
        self.assertEqual(back.getvalue(), CONTENT)
        relay.refuse()
        with self.assertRaises(ConnectionRefusedError):
            connection.nlst()
        relay.accept()
        relay.break_all()
        with self.assertRaises((ConnectionError, EOFError)):
            connection.pwd()

    def test_ftp_that_gets_encrypted(self):
        server = self.stack.enter_context(start("proftpd", tls="required"))
        server.reached_by(self.relay_to(server.port).port)
        connection = self.takes(5, lambda: self.stack.enter_context(Ftp(server, tls=True)))
        self.assertEqual(connection.nlst(), [])

    def test_sftp(self):
        server = self.stack.enter_context(start("openssh"))
        server.reached_by(self.relay_to(server.port).port)
        run = self.takes(6, lambda: sftp(server, "mkdir folder\n"))
        self.assertEqual((run.returncode, run.stderr), (0, ""))
        self.assertTrue((server.root / "folder").is_dir())


if __name__ == "__main__":
    sys.exit(unittest.main())
