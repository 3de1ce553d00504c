#!/usr/bin/env python3
"""The FTP client, under Wine, with every real server and both kinds of data connections: runs all of
operations.py and prints a table. A cell says "ok" or the code that the client returned; one that is not
as expected fails the test, and so does one that took too long, left the connection out of step or a
socket open.

    servers_test.py [KIND...]

Where MOSAICON_FTP_RESULTS names a folder the cells are kept there, for one table of several runs:

    servers_test.py --show FOLDER
"""

import json
import os
import pathlib
import sys
import tempfile
import time

HERE = pathlib.Path(__file__).resolve().parent
sys.path[:0] = [str(HERE), str(HERE.parent / "support")]
import ftp_servers  # noqa: E402
import quirks  # noqa: E402
from ftp_driver import CLIENT_PATIENCE, Driver  # noqa: E402
from operations import FILE_LIMIT, OPERATIONS, Trial, Wrong  # noqa: E402
from wine_prefix import WinePrefix  # noqa: E402

MODES = ("passive", "active")

# Where a server leaves the beaten track: the cells that are expected instead, and why.
EXCEPTIONS = {}
for exception_mode in MODES:
    EXCEPTIONS["list, folder removed meanwhile", "pure-ftpd", exception_mode] = (
        [50],
        "the server ends the session with 421",
    )
    EXCEPTIONS["server killed between two commands", "vsftpd", exception_mode] = (
        [(38, 38), (10, 38)],
        "of its two processes one may still say that the other has died",
    )
    for exception_kind in ("pyftpdlib", "pyftpdlib-dos"):
        EXCEPTIONS["list, folder removed meanwhile", exception_kind, exception_mode] = (
            [14],
            "the server refuses with 550 before it opens the data connection",
        )
# The command goes out before the connection is made, and a connection that is refused counts as one that
# is not made in time.
CLOSES_PORT = "the server may close its data port with the refusal; then the connection is not made"
for exception_kind in ("proftpd", "proftpd-no-links"):
    EXCEPTIONS["missing file: rename, delete, download", exception_kind, "passive"] = (
        [(65, 10, 48), (65, 10, 5)],
        CLOSES_PORT,
    )
    EXCEPTIONS["upload into a missing folder", exception_kind, "passive"] = ([51, 5], CLOSES_PORT)


def try_operation(trial, function):
    start = time.monotonic()
    try:
        cell = function(trial)
        duration = time.monotonic() - start
        trial.is_in_step()
    except Wrong as wrong:
        return f"FAILED: {wrong}"
    return cell if duration < CLIENT_PATIENCE else f"FAILED: {duration:.0f} s"


def try_server(kind, mode, driver):
    """A cell for every operation."""
    cells = {}
    with tempfile.TemporaryDirectory(prefix="mosaicon-ftp-") as folder:
        with ftp_servers.start(kind, file_limit=FILE_LIMIT) as server:
            trial = Trial(server, driver, mode, pathlib.Path(folder))
            for name, function, _ in OPERATIONS:
                cells[name] = try_operation(trial, function)
                if cells[name].__class__ is str and cells[name].startswith("FAILED"):
                    print(f"{kind}, {mode}, {name}: {cells[name]}", file=sys.stderr)
                    trial.ask("close")
                    trial.log_in()
            trial.ask("close")
    return cells


def table(columns):
    names = [name for name, *_ in OPERATIONS]
    width = max(map(len, names))
    rows = [
        f"{'':{width}}" + "".join(f"  {kind:>13}" for kind, _ in columns),
        f"{'':{width}}" + "".join(f"  {mode:>13}" for _, mode in columns),
    ]
    for name in names:
        rows.append(f"{name:{width}}" + "".join(f"  {show(cells[name]):>13}" for cells in columns.values()))
    return "\n".join(rows)


def show(cell):
    if isinstance(cell, tuple):
        return " ".join(map(str, cell))
    text = str(cell)
    return "FAILED" if text.startswith("FAILED") else text


def unexpected(columns):
    for (kind, mode), cells in columns.items():
        for name, _, usual in OPERATIONS:
            expected, _ = EXCEPTIONS.get((name, kind, mode), ([usual], ""))
            if cells[name] not in expected:
                yield f"{kind}, {mode}, {name}: {cells[name]!r}, expected {expected!r}"


def keep(columns, kinds):
    folder = os.environ.get("MOSAICON_FTP_RESULTS")
    if not folder:
        return
    pathlib.Path(folder).mkdir(parents=True, exist_ok=True)
    shown = [
        [kind, mode, {name: show(cell) for name, cell in cells.items()}]
        for (kind, mode), cells in columns.items()
    ]
    pathlib.Path(folder, "-".join(kinds) + ".json").write_text(json.dumps(shown))


def show_kept(folder):
    kept = [
        column
        for path in sorted(pathlib.Path(folder).glob("*.json"))
        for column in json.loads(path.read_text())
    ]
    print(table({(kind, mode): cells for kind, mode, cells in kept}))


def main(kinds):
    prefix = WinePrefix(pathlib.Path(os.environ["WINEPREFIX"]).resolve(), f"servers-{kinds[0]}")
    try:
        driver = Driver()
        columns = {(kind, mode): try_server(kind, mode, driver) for kind in kinds for mode in MODES}
        print(table(columns))
        keep(columns, kinds)
        for (name, kind, mode), (expected, reason) in EXCEPTIONS.items():
            if kind in kinds:
                print(f"{name}, {kind}, {mode}: {' or '.join(map(show, expected))}, because {reason}")
        failures = list(unexpected(columns))
        failures += quirks.try_all(driver, kinds)
        if not driver.close():
            failures.append("the client does not end")
    finally:
        prefix.close()
    print("\n".join(failures))
    return 1 if failures else 0


if __name__ == "__main__":
    if sys.argv[1:2] == ["--show"]:
        sys.exit(show_kept(sys.argv[2]))
    sys.exit(main(sys.argv[1:] or ftp_servers.KINDS))
