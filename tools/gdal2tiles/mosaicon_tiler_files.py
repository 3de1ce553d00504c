"""Files that are complete or absent, and the folder for a run's temporary files."""

import contextlib
import errno
import glob
import io
import os
import shutil
import tempfile
import time

from mosaicon_tiler_errors import TilerError

# Short, because of the path length that Windows allows. The name of a partial
# file depends on nothing but the final name, so a later run into the same
# folder takes up what a killed one left.
PARTIAL_SUFFIX = ".~mos"

RUN_FOLDER_PREFIX = "mosaicon-tiler-"
STALE_AFTER_SECONDS = 2 * 24 * 3600

_DISK_FULL = (errno.ENOSPC, getattr(errno, "EDQUOT", errno.ENOSPC))


def _replace(source, target):
    """os.replace, with patience for virus scanners that hold a new file for a moment."""
    for delay in (0.05, 0.2, 0.5):
        try:
            os.replace(source, target)
            return
        except PermissionError:
            time.sleep(delay)
    os.replace(source, target)


def write_file(path, data):
    """Writes bytes under a partial name, then renames. Raises TilerError and cleans up."""
    partial = path + PARTIAL_SUFFIX
    try:
        with open(partial, "wb") as stream:
            stream.write(data)
        _replace(partial, path)
    except BaseException as error:
        with contextlib.suppress(OSError):
            os.remove(partial)
        if not isinstance(error, OSError):
            raise
        why = "the disk is full" if error.errno in _DISK_FULL else error.strerror
        raise TilerError("could not write %s: %s" % (path, why)) from error


@contextlib.contextmanager
def _whole_file(path, mode):
    content = io.BytesIO() if "b" in mode else io.StringIO()
    yield content
    data = content.getvalue()
    write_file(path, data if isinstance(data, bytes) else data.encode("utf-8"))


def open_whole(path, mode="r", *args, **kwargs):
    """Like open(); what is opened for writing appears complete or not at all (use with `with`)."""
    if mode.startswith("w"):
        return _whole_file(path, mode)
    return open(path, mode, *args, **kwargs)


def remove_partial_files(folder):
    """Removes what killed runs left in an output folder; looks only where the tiler writes."""
    for pattern in ("", os.path.join("[0-9]*", "[0-9]*")):
        path = os.path.join(glob.escape(folder), pattern, "*" + PARTIAL_SUFFIX)
        for partial in glob.iglob(path):
            with contextlib.suppress(OSError):
                os.remove(partial)


def remove_old_document(folder):
    """Removes the doc.kml of an earlier run: whoever finds one takes it for this run's."""
    try:
        os.remove(os.path.join(folder, "doc.kml"))
    except (FileNotFoundError, NotADirectoryError):
        pass


def remove_stale_run_folders():
    """Removes what killed runs left; folders of runs that still work are younger (see keep)."""
    parent = tempfile.gettempdir()
    with contextlib.suppress(OSError):
        for entry in list(os.scandir(parent)):
            with contextlib.suppress(OSError):
                age = time.time() - entry.stat(follow_symlinks=False).st_mtime
                if (
                    entry.name.startswith(RUN_FOLDER_PREFIX)
                    and entry.is_dir(follow_symlinks=False)
                    and age > STALE_AFTER_SECONDS
                ):
                    shutil.rmtree(entry.path, ignore_errors=True)


class RunFolder:
    """A temporary folder that is gone after the run; all of tempfile works inside it meanwhile."""

    def __enter__(self):
        self.path = tempfile.mkdtemp(prefix=RUN_FOLDER_PREFIX)
        self._parent = tempfile.tempdir
        tempfile.tempdir = self.path
        return self

    def keep(self):
        """Marks the folder as in use, for runs that take days."""
        with contextlib.suppress(OSError):
            os.utime(self.path)

    def __exit__(self, *_):
        tempfile.tempdir = self._parent
        shutil.rmtree(self.path, ignore_errors=True)
