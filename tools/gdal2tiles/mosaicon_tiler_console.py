"""Standard output for progress records alone, and the log file for all else.

The redirection is made at the level of file descriptors, because GDAL's C
library and the tiler's own prints know nothing of sys.stdout replacements.

The log is MOSAICON_TILER_LOG when that is set, else gdal2tiles.log in
  Windows: <LOCALAPPDATA>/Mosaicon/Logs
  others:  ${XDG_STATE_HOME:-~/.local/state}/mosaicon
It is appended to. The one in the standard place is moved to <name>.old when it
has grown past 1 MiB; a log that the caller named is the caller's to keep short.
A log that cannot be opened or written never stops a run; its text is lost then.
"""

import datetime
import io
import os
import platform
import queue
import sys
import threading

from mosaicon_tiler_arguments import without_key

MAXIMUM_LOG_SIZE = 1024 * 1024

# The reader can end a run only when a record arrives, so none may be far off.
HEARTBEAT_SECONDS = 2.0
# The reader looks every five seconds; a pipe that is still full then is not read at all.
LAST_RECORD_SECONDS = 10.0


def log_path():
    given = os.environ.get("MOSAICON_TILER_LOG")
    if given:
        return given
    local = os.environ.get("LOCALAPPDATA")
    if local:
        return os.path.join(local, "Mosaicon", "Logs", "gdal2tiles.log")
    state = os.environ.get("XDG_STATE_HOME") or os.path.expanduser("~/.local/state")
    return os.path.join(state, "mosaicon", "gdal2tiles.log")


def _rotate(path):
    if os.environ.get("MOSAICON_TILER_LOG"):
        return  # the caller reads it from where it was before the run
    try:
        if os.path.getsize(path) > MAXIMUM_LOG_SIZE:
            os.replace(path, path + ".old")
    except OSError:
        pass  # not there yet, or held open by another run: go on appending


def _open_log():
    flags = os.O_WRONLY | os.O_APPEND | os.O_CREAT | getattr(os, "O_BINARY", 0)
    path = log_path()
    try:
        folder = os.path.dirname(path)
        if folder:
            os.makedirs(folder, exist_ok=True)
        return os.open(path, flags, 0o644)
    except OSError:
        return os.open(os.devnull, os.O_WRONLY)


class _LogFile(io.FileIO):
    """What cannot be written, on a full disk for example, is lost without a word."""

    def write(self, data):
        try:
            return super().write(data)
        except OSError:
            return len(data)


def redirect_to_log():
    """Points descriptors 1 and 2, and Python's streams, at the log. For worker processes too."""
    log = _open_log()
    for descriptor in (1, 2):
        if log != descriptor:
            os.dup2(log, descriptor)
    if log > 2:
        os.close(log)
    # Line by line, and any text at all: a log must not raise encoding errors.
    sys.stdout = sys.stderr = io.TextIOWrapper(
        io.BufferedWriter(_LogFile(2, "w", closefd=False)),
        encoding="utf-8",
        errors="backslashreplace",
        line_buffering=True,
    )


def take_over():
    """Keeps the caller's standard output for the records alone; returns the ProgressRecords."""
    try:
        records = os.dup(1)  # not inherited by worker processes
    except OSError:
        records = None  # started without a standard output
    _rotate(log_path())
    redirect_to_log()
    return ProgressRecords(records)


def _gdal_version():
    try:
        from osgeo import gdal

        return "GDAL " + gdal.__version__
    except Exception:  # told as the reason of the failure, a little later
        return "no GDAL"


def log(text):
    print(text, file=sys.stderr, flush=True)


def log_start(argv):
    log(
        "START %s Python %s (%s), %s, %s, arguments %r"
        % (
            datetime.datetime.now().isoformat(" ", "seconds"),
            platform.python_version(),
            sys.executable,
            _gdal_version(),
            platform.platform(),
            without_key(argv),
        )
    )


def log_result(reason):
    """The last line of a run; reason is None for success."""
    log("RESULT OK" if reason is None else "RESULT FAILED " + reason)


class ProgressRecords:
    """Writes "Progress 0.37 done" whenever the whole per cent changes, and never goes back.

    A thread of its own does the writing. It repeats the last record when there
    was none for two seconds, from the very beginning to the end: the tiler is
    silent for long while it opens a large image and between large tiles. And
    it is the only one to wait when nobody empties the pipe: the tiles are
    still wanted.
    """

    def __init__(self, descriptor, heartbeat=HEARTBEAT_SECONDS):
        self._percent = -1
        self._queue = queue.SimpleQueue()
        self._writer = threading.Thread(target=self._write_all, args=(descriptor, heartbeat), daemon=True)
        self._writer.start()

    def start(self):
        self._put(0)

    def report(self, done, total):
        """Tells whether there was a new record. 1.00 is left to finish()."""
        percent = min(99, done * 100 // total) if total > 0 else 0
        if percent <= self._percent:
            return False
        self._put(percent)
        return True

    def finish(self):
        """Call it once, and only when everything succeeded."""
        self._put(100)

    def close(self):
        """Returns when all records are written, or after some seconds when nobody reads them."""
        self._queue.put(None)
        self._writer.join(LAST_RECORD_SECONDS)

    def _put(self, percent):
        self._percent = percent
        self._queue.put(percent)

    def _write_all(self, descriptor, heartbeat):
        percent = 0
        while percent is not None and descriptor is not None:
            try:
                percent = self._queue.get(timeout=heartbeat)
            except queue.Empty:
                pass  # the last one again
            if percent is not None:
                try:
                    os.write(descriptor, b"Progress %.2f done\n" % (percent / 100))
                except OSError:
                    return  # nobody reads any more
