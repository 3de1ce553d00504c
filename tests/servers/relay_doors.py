"""The ports of the relay of slow_relay.py."""

import asyncio
import re
import socket

from server_tools import HOST

PASSIVE = re.compile(rb"(227 .*\D\d+,\d+,\d+,\d+,)(\d+),(\d+)(\D.*)", re.DOTALL)
EXTENDED = re.compile(rb"(229 .*\(\|\|\|)(\d+)(\|\).*)", re.DOTALL)


def bound(port=0):
    """A socket that nobody can connect to yet. There may be several for one port."""
    made = socket.socket()
    made.setsockopt(socket.SOL_SOCKET, socket.SO_REUSEPORT, 1)
    made.bind((HOST, port))
    made.setblocking(False)
    return made


class Door:
    """A port to connect to, in front of one of the server's."""

    def __init__(self, server_port, admit):
        self.server_port = server_port
        self._admit = admit
        self._socket = bound()
        self.port = self._socket.getsockname()[1]

    def open(self):
        self._socket.listen(1000)
        asyncio.get_running_loop().add_reader(self._socket, self._accept)

    def shut(self):
        """The port remains ours."""
        next_socket = bound(self.port)
        self.close()
        self._socket = next_socket

    def close(self):
        asyncio.get_running_loop().remove_reader(self._socket)
        self._socket.close()

    def _accept(self):
        try:
            accepted, _ = self._socket.accept()
        except OSError:
            return
        accepted.setblocking(False)
        self._admit(self, accepted)


class Control:
    """Reads along what an FTP server says, and gives data ports of its own."""

    def __init__(self, relay):
        self.doors = []
        self._relay = relay
        self._unread = b""
        self._is_ftp = None

    def read(self, data):
        if self._is_ftp is None:
            self._is_ftp = data.startswith(b"220")
        if not self._is_ftp:
            return data
        *lines, self._unread = (self._unread + data).split(b"\n")
        return b"".join(self._replaced(line) + b"\n" for line in lines)

    def _replaced(self, line):
        # From now on nobody can read along.
        if line.startswith(b"234"):
            self._is_ftp = False
        if match := PASSIVE.fullmatch(line):
            before, high, low, after = match.groups()
            port = self._door(int(high) * 256 + int(low))
            return before + b"%d,%d" % divmod(port, 256) + after
        if match := EXTENDED.fullmatch(line):
            before, port, after = match.groups()
            return before + b"%d" % self._door(int(port)) + after
        return line

    def _door(self, server_port):
        self.doors.append(self._relay.open_data_door(server_port))
        return self.doors[-1].port
