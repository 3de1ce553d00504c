"""Standard output for progress records alone, and the log file for all else.

The redirection is made at the level of file descriptors, because GDAL's C
library and the tiler's own prints know nothing of sys.stdout replacements.

The log is MOSAICON_TILER_LOG when that is set, else gdal2tiles.log in
  Windows: <LOCALAPPDATA>/Mosaicon/Logs
  others:  ${XDG_STATE_HOME:-~/.local/state}/mosaicon
It is appended to. The one in the standard place is moved to <name>.old when it
has grown past 1 MiB; a log that the caller named is the caller's to keep short.
A log that cannot be opened never stops a run; its text is lost then.
"""

import datetime
import os
import platform
import sys

from mosaicon_tiler_arguments import without_key

MAXIMUM_LOG_SIZE = 1024 * 1024


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


def redirect_to_log():
    """Points descriptors 1 and 2, and Python's streams, at the log. For worker processes too."""
    log = _open_log()
    for descriptor in (1, 2):
        if log != descriptor:
            os.dup2(log, descriptor)
    if log > 2:
        os.close(log)
    # Line by line, and any text at all: a log must not raise encoding errors.
    sys.stdout = sys.stderr = open(
        2, "w", buffering=1, encoding="utf-8", errors="backslashreplace", closefd=False
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
    """Writes "Progress 0.37 done" whenever the whole per cent changes, and never goes back."""

    def __init__(self, descriptor):
        self._descriptor = descriptor
        self._percent = -1

    def start(self):
        self._write(0)

    def report(self, done, total):
        """Tells whether a record was written. 1.00 is left to finish()."""
        percent = min(99, done * 100 // total) if total > 0 else 0
        if percent <= self._percent:
            return False
        self._write(percent)
        return True

    def finish(self):
        """Call it once, and only when everything succeeded."""
        self._write(100)

    def _write(self, percent):
        self._percent = percent
        if self._descriptor is None:
            return
        try:
            os.write(self._descriptor, b"Progress %.2f done\n" % (percent / 100))
        except OSError:
            self._descriptor = None  # nobody reads any more; the tiles are still wanted
