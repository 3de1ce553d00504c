"""A connection that goes through the relay of slow_relay.py: two sockets, and what is on its way between
them. All of it belongs to the thread of the relay's loop."""

import asyncio
import collections
import socket
import struct

from server_tools import HOST

MOST_UNDER_WAY = 64 << 20  # bytes, beyond which a sender has to wait
WRITE_BUFFER = 1 << 20
END, BREAK = "end", "break"


class Way:
    """One direction. What is put in comes out a fixed time later."""

    def __init__(self, connection, delay):
        self._connection = connection
        self._delay = delay
        self.starts = 0  # on the loop's clock: what was put in earlier has only gone then
        self.source = None
        self.target = None
        self.held = False
        self.ended = False
        self._loop = asyncio.get_running_loop()
        self._queue = collections.deque()
        self._size = 0
        self._timer = None

    def put(self, what):
        self._queue.append((max(self._loop.time(), self.starts) + self._delay, what))
        self._size += len(what)
        if self._size > MOST_UNDER_WAY:
            self.source.pause_reading()
        if self._timer is None:
            self.deliver()

    def deliver(self):
        """Passes on what is due, and comes again for what is not."""
        if self._timer is not None:
            self._timer.cancel()
            self._timer = None
        if self.target is None or self.target.is_closing():
            return
        while self._queue and not self.held:
            due, what = self._queue[0]
            if due > self._loop.time():
                self._timer = self._loop.call_at(due, self.deliver)
                break
            self._queue.popleft()
            self._size -= len(what)
            self._pass_on(what)
        if self._size < MOST_UNDER_WAY and self.source is not None:
            self.source.resume_reading()

    def _pass_on(self, what):
        if what is BREAK:
            reset(self.target)
        elif what is END:
            self.ended = True
            self.target.write_eof()
            self._connection.check_end()
        else:
            self.target.write(what)


class Side(asyncio.Protocol):
    """One of the two sockets."""

    def __init__(self, connection, way_in, way_out, read=lambda data: data):
        self.transport = None  # while it is connected
        self._connection = connection
        self._in = way_in
        self._out = way_out
        self._read = read

    def connection_made(self, transport):
        self.transport = self._in.source = self._out.target = transport
        transport.set_write_buffer_limits(high=WRITE_BUFFER)
        if self._connection.broken:
            reset(transport)
        self._out.deliver()

    def data_received(self, data):
        data = self._read(data)
        if data:
            self._in.put(data)

    def eof_received(self):
        self._in.put(END)
        return True  # the other direction goes on

    def pause_writing(self):
        self._out.held = True

    def resume_writing(self):
        self._out.held = False
        self._out.deliver()

    def connection_lost(self, exc):
        self.transport = None
        if exc is not None:
            self._in.put(BREAK)
        self._connection.check_end()


class RelayConnection:
    def __init__(self, accepted, port, round_trip, read, at_end):
        """Reads by way of read what the server says; calls at_end when all is over."""
        self.broken = False
        self._round_trip = round_trip
        self._up, self._down = (Way(self, round_trip / 2) for _ in range(2))
        self._up.starts = asyncio.get_running_loop().time() + round_trip
        self._client = Side(self, self._up, self._down)
        self._server = Side(self, self._down, self._up, read)
        self._at_end = at_end
        self._setting_up = True
        self._task = asyncio.create_task(self._set_up(accepted, port))

    async def _set_up(self, accepted, port):
        loop = asyncio.get_running_loop()
        try:
            await loop.connect_accepted_socket(lambda: self._client, accepted)
            # There and back, and the third packet of the handshake: now the server knows.
            await asyncio.sleep(self._up.starts + self._round_trip / 2 - loop.time())
            if not self.broken:
                await loop.create_connection(lambda: self._server, HOST, port)
        except OSError:
            await asyncio.sleep(self._round_trip / 2)
            self.break_off()
        finally:
            self._setting_up = False
            self.check_end()

    def break_off(self):
        self.broken = True
        for side in (self._client, self._server):
            if side.transport is not None:
                reset(side.transport)

    def check_end(self):
        transports = [side.transport for side in (self._client, self._server) if side.transport is not None]
        if self._up.ended and self._down.ended:
            for transport in transports:
                transport.close()
        if not self._setting_up and not transports:
            self._at_end(self)


def reset(transport):
    """Ends a connection at once, as when a cable breaks and the other end finds out."""
    transport.get_extra_info("socket").setsockopt(
        socket.SOL_SOCKET, socket.SO_LINGER, struct.pack("ii", 1, 0)
    )
    transport.abort()
