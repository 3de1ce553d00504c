"""Worker processes that are watched.

multiprocessing.Pool replaces a worker that dies and waits for its result for
ever; concurrent.futures notices, but can block on the queue that the dead
worker no longer empties. Here every worker has a pipe of its own and gets work
only while it waits for it, so a dead worker is simply the end of its pipe, and
no send can block. Single-threaded; only the part of multiprocessing.Pool's
interface that the tiler uses.

Always the spawn method, also where fork exists: the one way that works on
Windows is then the one that is used and tested everywhere, and no worker
inherits open datasets.
"""

import collections
import contextlib
import multiprocessing
import os
import signal
import sys
import traceback
from multiprocessing.connection import wait

from mosaicon_tiler_errors import TilerError, reason_of

# Windows waits for at most 63 objects at once.
MAXIMUM_PROCESSES = 60 if os.name == "nt" else 1024
# Neighbouring tiles share blocks of the image, so a worker gets some in a row;
# not more, or the last workers of a level have nothing to do.
MAXIMUM_CHUNK = 32
# How long a worker may take to end by itself, and a silent one goes unchecked.
PATIENCE_SECONDS = 2.0


def _serve(connection, prepare):
    """A worker's life: one ("done", None) or ("failed", reason) for every item of every chunk."""
    signal.signal(signal.SIGINT, signal.SIG_IGN)  # the parent decides
    prepare()
    while True:
        try:
            function, items = connection.recv()
        except (EOFError, OSError):
            return  # no more work, or no parent
        for item in items:
            try:
                function(item)
                answer = ("done", None)
            except BaseException as error:
                traceback.print_exc()
                sys.stderr.flush()
                answer = ("failed", reason_of(error))
            try:
                connection.send(answer)
            except OSError:
                return  # the parent was killed


class _Worker:
    def __init__(self, context, prepare):
        self.connection, theirs = context.Pipe()
        self.process = context.Process(target=_serve, args=(theirs, prepare), daemon=True)
        self.process.start()
        theirs.close()  # or its end would never be seen
        self.outstanding = 0

    def give(self, function, chunk):
        try:
            self.connection.send((function, chunk))
        except OSError:
            raise self.lost() from None
        self.outstanding = len(chunk)

    def take(self):
        """Receives the answer for one item."""
        try:
            kind, reason = self.connection.recv()
        except (EOFError, OSError):
            raise self.lost() from None
        if kind == "failed":
            raise TilerError(reason)
        self.outstanding -= 1

    def lost(self):
        self.process.join(PATIENCE_SECONDS)
        return TilerError(
            "a worker process ended unexpectedly (exit code %s); the computer may be"
            " short of memory" % self.process.exitcode
        )

    def stop(self, at_once):
        self.connection.close()  # an idle worker ends at that
        if at_once:
            self.process.terminate()

    def wait_for_end(self):
        self.process.join(PATIENCE_SECONDS)
        if self.process.is_alive():
            self.process.kill()
            self.process.join()


class WorkerPool:
    """prepare() runs first in every worker; it must be a function that can be pickled."""

    def __init__(self, processes, prepare):
        context = multiprocessing.get_context("spawn")
        self._workers = []
        try:
            for _ in range(max(1, min(processes, MAXIMUM_PROCESSES))):
                self._workers.append(_Worker(context, prepare))
        except BaseException:
            self.terminate()
            raise

    def imap_unordered(self, function, iterable, chunksize=1):
        """Yields None for every finished item. Raises TilerError when an item or a worker fails."""
        size = max(1, min(chunksize, MAXIMUM_CHUNK))
        items = list(iterable)
        chunks = collections.deque(items[i : i + size] for i in range(0, len(items), size))
        while True:
            for worker in self._workers:
                if chunks and not worker.outstanding:
                    worker.give(function, chunks.popleft())
            busy = {w.connection: w for w in self._workers if w.outstanding}
            if not busy:
                return
            for worker in self._ready(busy):
                worker.take()
                yield None

    @staticmethod
    def _ready(busy):
        while True:
            ready = wait(list(busy), PATIENCE_SECONDS)
            if ready:
                return [busy[connection] for connection in ready]
            # On Windows a worker that died while it started leaves its pipe open.
            for worker in busy.values():
                if not worker.process.is_alive() and not worker.connection.poll():
                    raise worker.lost()

    def _end(self, at_once):
        workers, self._workers = self._workers, []
        for worker in workers:
            with contextlib.suppress(OSError):
                worker.stop(at_once)
        for worker in workers:
            worker.wait_for_end()

    def close(self):
        self._end(at_once=False)

    def terminate(self):
        self._end(at_once=True)

    def join(self):
        """Nothing is left to wait for after close() or terminate()."""

    def __enter__(self):
        return self

    def __exit__(self, kind, *_):
        self._end(at_once=kind is not None)
