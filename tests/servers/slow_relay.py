"""A network with a long way to the server, on loopback: what arrives does so half a round trip later, in
both directions, but as much at once as the server can send.

    with SlowRelay(server.port, 0.05) as relay:
        ...  # relay.port stands for server.port

A connection's first bytes come one round trip later still, because setting it up costs that; connect()
itself returns at once on loopback. For FTP the ports that the server names for passive data connections are
replaced by ones of the relay's. It finds them by reading along, so that FTP must not be encrypted, and it
knows FTP by its greeting; anything else, like SFTP, goes through as it is. Data connections that the server
makes (PORT) do not come by here.
"""

import asyncio
import threading

from relay_connection import RelayConnection
from relay_doors import Control, Door


class SlowRelay:
    def __init__(self, port, round_trip_seconds):
        self.accepted = 0  # connections until now, without those for data
        self._round_trip = round_trip_seconds
        self._door = Door(port, self._admit)
        self.port = self._door.port
        self._connections = set()
        self._data_doors = set()
        self._refusing = False
        self._mistakes = []
        self._loop = asyncio.new_event_loop()
        self._loop.set_exception_handler(lambda _, what: self._mistakes.append(what))
        self._thread = threading.Thread(target=self._loop.run_forever, daemon=True)

    def __enter__(self):
        self._thread.start()
        self._do(self._set_refusing, False)
        return self

    def __exit__(self, *_):
        asyncio.run_coroutine_threadsafe(self._close(), self._loop).result()
        self._loop.call_soon_threadsafe(self._loop.stop)
        self._thread.join()
        self._loop.close()
        if self._mistakes:
            raise RuntimeError(f"the relay has not worked: {self._mistakes}")

    def break_all(self):
        """Resets all connections that there are, at once. Returns how many there were."""
        return self._do(self._break_all)

    def refuse(self):
        """From now on nobody gets a connection, not for data either; those that there are go on."""
        self._do(self._set_refusing, True)

    def accept(self):
        """The end of refuse()."""
        self._do(self._set_refusing, False)

    def _do(self, function, *arguments):
        async def call():
            return function(*arguments)

        return asyncio.run_coroutine_threadsafe(call(), self._loop).result()

    # In the loop's thread

    def _set_refusing(self, refusing):
        self._refusing = refusing
        for door in (self._door, *self._data_doors):
            if refusing:
                door.shut()
            else:
                door.open()

    def _break_all(self):
        count = len(self._connections)
        for connection in list(self._connections):
            connection.break_off()
        return count

    async def _close(self):
        for door in (self._door, *self._data_doors):
            door.close()
        self._break_all()
        tasks = asyncio.all_tasks() - {asyncio.current_task()}
        for task in tasks:
            task.cancel()
        await asyncio.gather(*tasks, return_exceptions=True)

    def _admit(self, door, accepted):
        self.accepted += 1
        control = Control(self)

        def at_end(connection):
            self._connections.discard(connection)
            for data_door in control.doors:
                self._close_data_door(data_door)

        self._connect(door, accepted, control.read, at_end)

    def open_data_door(self, server_port):
        door = Door(server_port, self._admit_data)
        self._data_doors.add(door)
        if not self._refusing:
            door.open()
        return door

    def _admit_data(self, door, accepted):
        # Each is for one connection.
        self._close_data_door(door)
        self._connect(door, accepted, lambda data: data, self._connections.discard)

    def _close_data_door(self, door):
        if door in self._data_doors:
            self._data_doors.remove(door)
            door.close()

    def _connect(self, door, accepted, read, at_end):
        self._connections.add(RelayConnection(accepted, door.server_port, self._round_trip, read, at_end))
