#!/usr/bin/env python3
"""Times the publication of many small files against lftp with four connections, and on request against the
upload dialog: publish_bench.py PUBLISHER ROUND_TRIP FILES ROUNDS KIND [STAGE DRIVE_WINDOW]

All send the same folder to the same server on this machine, in turns, over a way that takes ROUND_TRIP
seconds there and back; 0: none is added. Beside the first publication a second one is timed, which has
nothing to send. lftp is told to send files and nothing else: no modes, no times. The ratios are taken round
by round and their median is what counts. With the dialog, a complete Wine prefix in WINEPREFIX and a screen
are needed."""

import contextlib
import os
import pathlib
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

TESTS = pathlib.Path(__file__).resolve().parent.parent
sys.path[:0] = [str(TESTS / "servers"), str(TESTS / "support"), str(TESTS / "bench")]
import ftp_servers  # noqa: E402
from slow_relay import SlowRelay  # noqa: E402
from upload_bench import make_files, ours  # noqa: E402

SIZES = (0, 4096)  # bytes
CONNECTIONS = 4


def publish(publisher, folder, server, data):
    start = time.monotonic()
    scheme = "sftp" if server.kind == "openssh" else "ftp"
    run = subprocess.run(
        [
            publisher,
            f"--publish={scheme}://{server.user}@{server.host}:{server.port}/",
            f"--connections={CONNECTIONS}",
            *server.options,
            folder,
        ],
        env={
            **os.environ,
            "MOSAICON_PUBLISH_PASSWORD": server.password,
            "MOSAICON_PUBLISH_DATA": str(data),
        },
        stdout=subprocess.PIPE,
        stderr=subprocess.STDOUT,
        text=True,
        check=False,
    )
    if run.returncode != 0:
        sys.exit(run.stdout)
    return time.monotonic() - start


def lftp(folder, server):
    scheme = "sftp" if server.kind == "openssh" else "ftp"
    settings = (
        *("ftp:ssl-allow no", "ftp:use-site-chmod no", "ftp:use-site-utime no", "ftp:use-site-utime2 no"),
        *("ftp:use-mdtm-overloaded no", "sftp:auto-confirm yes", "cmd:fail-exit yes"),
    )
    commands = "; ".join(
        [
            *(f"set {setting}" for setting in settings),
            f"mirror -R --no-perms --parallel={CONNECTIONS} '{folder}' {folder.name}",
            "quit",
        ]
    )
    start = time.monotonic()
    subprocess.run(
        [
            *("lftp", "--norc", "-u", f"{server.user},{server.password}", "-p", str(server.port)),
            *("-e", commands, f"{scheme}://{server.host}"),
        ],
        check=True,
        stdout=subprocess.DEVNULL,
    )
    return time.monotonic() - start


def take_away(folder, server):
    """What has arrived, once it is known to be all."""
    subprocess.run(["diff", "-r", folder, server.root / folder.name], check=True)
    shutil.rmtree(server.root / folder.name)


def measure(publisher, folder, server, scratch, window):
    """Seconds of each, by name."""
    times = {"lftp": lftp(folder, server)}
    take_away(folder, server)
    data = scratch / "data"
    shutil.rmtree(data, ignore_errors=True)
    times["publish"] = publish(publisher, folder, server, data)
    times["again"] = publish(publisher, folder, server, data)
    take_away(folder, server)
    if window:
        times["dialog"] = ours(*window, folder, server, scratch)[0]
        take_away(folder, server)
    return times


def main(publisher, round_trip, files, rounds, kind, *window):
    rows = []
    with contextlib.ExitStack() as stack:
        scratch = pathlib.Path(stack.enter_context(tempfile.TemporaryDirectory(prefix="mosaicon-bench-")))
        server = stack.enter_context(ftp_servers.start(kind))
        server.options = []
        if round_trip > 0:
            server.reached_by(stack.enter_context(SlowRelay(server.port, round_trip)).port)
        folder = scratch / "small"
        make_files(folder, files, *SIZES)
        for number in range(1, rounds + 1):
            rows.append(measure(publisher, folder, server, scratch, window))
            told = ", ".join(f"{name} {seconds:.1f} s" for name, seconds in rows[-1].items())
            print(f"round {number}: {told}", flush=True)
    for name in [each for each in rows[0] if each not in ("publish", "again")]:
        ratio = statistics.median(row[name] / row["publish"] for row in rows)
        print(f"{files} files to {kind}, {round_trip * 1000:.0f} ms: {name}/publish {ratio:.2f}")
    print(f"with nothing to send: {statistics.median(row['again'] for row in rows):.1f} s")


if __name__ == "__main__":
    main(
        sys.argv[1],
        float(sys.argv[2]),
        int(sys.argv[3]),
        int(sys.argv[4]),
        sys.argv[5],
        *map(pathlib.Path, sys.argv[6:8]),
    )
