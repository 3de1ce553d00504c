#!/usr/bin/env python3
"""Cuts one orthophoto into a tile pyramid for Google Earth and web maps.

    gdal2tiles.py -a COLOUR -s EPSG:n -p mercator [-t TITLE] -k -u URL [-g KEY] INPUT OUTPUT

COLOUR is the transparent colour as one decimal number, R + 256*G + 65536*B.
URL is the folder that doc.kml finds its own folder in ("../", "../../maps").

Standard output carries progress records only ("Progress 0.37 done"), standard
error nothing at all: the program that reads them takes few bytes at a time
and would hold up a script that talks. Everything else goes to a log file
(see mosaicon_tiler_console), whose last line is "RESULT OK" or
"RESULT FAILED <reason>". The exit code is 0 only after "RESULT OK".

The modules named mosaicon_tiler_* beside this file belong to it.
"""

import os
import signal
import sys
import traceback

# The tool folder stays as it was installed; here, so that workers do the same.
sys.dont_write_bytecode = True

# Isolated interpreters (-I, PYTHONSAFEPATH) leave the script's folder out.
_FOLDER = os.path.dirname(os.path.abspath(__file__))
if _FOLDER not in sys.path:
    sys.path.insert(0, _FOLDER)

import mosaicon_tiler_arguments as arguments  # noqa: E402
import mosaicon_tiler_console as console  # noqa: E402
import mosaicon_tiler_files as files  # noqa: E402
from mosaicon_tiler_errors import Stopped, reason_of  # noqa: E402

EXIT_FAILED = 1
EXIT_STOPPED = 128 + 15


def _stop(_signal, _frame):
    """Turns SIGTERM into an exception, so that every clean-up runs; the second one is ignored."""
    signal.signal(signal.SIGTERM, signal.SIG_IGN)
    raise Stopped()


def _processes():
    """The number of processor cores; MOSAICON_TILER_PROCESSES overrides it."""
    wanted = os.environ.get("MOSAICON_TILER_PROCESSES", "")
    if wanted.isdigit() and int(wanted) > 0:
        return int(wanted)
    if hasattr(os, "sched_getaffinity"):
        return len(os.sched_getaffinity(0))
    return os.cpu_count() or 1


def _tile(argv, records):
    request = arguments.parse(argv)
    files.remove_partial_files(request.output)
    files.remove_old_document(request.output)

    # Only now: a missing GDAL package must be able to reach the log.
    import mosaicon_tiler_engine as engine

    engine.load()
    import mosaicon_tiler_image as image

    files.remove_stale_run_folders()
    with files.RunFolder() as folder:
        job = image.prepare(request, folder.path)

        def on_progress(done, total):
            if records.report(done, total):
                folder.keep()

        records.start()
        try:
            engine.run(job, _processes(), on_progress)
        except BaseException:
            # Killed workers leave the file they were writing.
            files.remove_partial_files(request.output)
            raise
    records.finish()


def main(argv):
    records = console.take_over()
    signal.signal(signal.SIGTERM, _stop)
    code, reason = 0, None
    try:
        console.log_start(argv)
        _tile(argv, records)
    except BaseException as error:  # whatever happens, the log must say so
        code = EXIT_STOPPED if isinstance(error, Stopped) else EXIT_FAILED
        reason = reason_of(error)
        traceback.print_exc()
    signal.signal(signal.SIGTERM, signal.SIG_IGN)  # too late to stop anything
    console.log_result(reason)
    records.close()
    return code


if __name__ == "__main__":
    # os._exit: nothing that runs at interpreter exit may follow the result line.
    os._exit(main(sys.argv[1:]))
