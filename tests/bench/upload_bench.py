#!/usr/bin/env python3
"""Times the upload dialog against lftp: upload_bench.py STAGE DRIVE_WINDOW [FILES [ROUNDS [KIND]]].

Both send the same folders to the same server on this machine, in turns, so that a machine whose speed
drifts treats them alike: one of FILES small files, and one of a tenth as many tiles as an orthophoto has
them. Only what a user waits for is counted: from the press on Upload to the report, and the whole run of
"lftp mirror -R". lftp is told to send files and nothing else, as the dialog does: no modes, no times. The
ratios are taken round by round and their median is what counts.

Where the dialog's time goes is told as processor seconds of those who work on it meanwhile. Needs a complete
Wine prefix in WINEPREFIX, and a screen."""

import os
import pathlib
import shutil
import statistics
import subprocess
import sys
import tempfile
import threading
import time
import uuid

TESTS = pathlib.Path(__file__).resolve().parent.parent
sys.path[:0] = [str(TESTS / "servers"), str(TESTS / "support")]
import ftp_servers  # noqa: E402
import keeper  # noqa: E402
from wine_side import windows_path  # noqa: E402

MARK = "MOSAICON_BENCH_RUN"
IN_ONE_FOLDER = 100
SIZES = {"small": (0, 4096), "tiles": (30_000, 150_000)}  # bytes
INTERVAL = 0.2  # seconds


def make_files(folder, count, smallest, largest):
    for i in range(count):
        path = folder / "17" / str(i // IN_ONE_FOLDER) / f"{i}.png"
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(os.urandom(smallest + i * 37 % (largest - smallest)))


def processor_seconds(pid):
    try:
        fields = pathlib.Path(f"/proc/{pid}/stat").read_text().rpartition(")")[2].split()
    except OSError:
        return None
    return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")


class Watch:
    """Processor seconds, from the moment when the upload begins, of the program, of Wine's server, of the
    FTP server, of the screen and of whoever drives the window."""

    def __init__(self, mark, server, remote):
        self.mark, self.server, self.remote = mark, server, remote
        self.first, self.last, self.kinds = {}, {}, {}
        self.ended = threading.Event()
        self.thread = threading.Thread(target=self.run)
        self.thread.start()

    def run(self):
        while not self.ended.wait(INTERVAL):
            if not self.remote.exists():
                continue
            for pid, kind in self.processes():
                seconds = processor_seconds(pid)
                if seconds is not None:
                    self.kinds[pid] = kind
                    self.first.setdefault(pid, seconds)
                    self.last[pid] = seconds

    def processes(self):
        yield from ((pid, "FTP server") for pid in keeper.descendants(self.server._keeper.pid))
        for name in filter(str.isdigit, os.listdir("/proc")):
            try:
                environment = pathlib.Path(f"/proc/{name}/environ").read_bytes()
                line = pathlib.Path(f"/proc/{name}/cmdline").read_bytes().decode(errors="replace")
            except OSError:
                continue
            if f"{MARK}={self.mark}".encode() in environment and line:
                yield int(name), self.kind_of(line)

    @staticmethod
    def kind_of(line):
        for part, kind in (("wineserver", "wineserver"), ("Mosaicon.exe", "program")):
            if part in line.partition("\0")[0]:
                return kind
        return "others of Wine"

    def end(self):
        self.ended.set()
        self.thread.join()
        totals = {}
        for pid, kind in self.kinds.items():
            totals[kind] = totals.get(kind, 0) + self.last[pid] - self.first[pid]
        return totals


def ours(stage, drive, folder, server, scratch):
    """Seconds, and the processor seconds of each party."""
    mark = uuid.uuid4().hex
    watch = Watch(mark, server, server.root / folder.name)
    try:
        run = subprocess.run(
            [
                sys.executable,
                "-B",
                str(TESTS / "support" / "in_own_prefix.py"),
                str(drive),
                windows_path(stage / "Mosaicon.exe"),
                "",
                windows_path(folder),
                windows_path(scratch / "report.txt"),
                windows_path(scratch),
            ],
            env={**os.environ, **server.environment(), MARK: mark},
            stdout=subprocess.PIPE,
            text=True,
            check=True,
        )
    finally:
        totals = watch.end()
    words = run.stdout.split()
    return float(words[words.index("seconds") - 1]), totals


def lftp(folder, server):
    commands = "; ".join(
        (
            "set ftp:ssl-allow no",
            "set ftp:use-site-chmod no",
            "set ftp:use-site-utime no",
            "set ftp:use-site-utime2 no",
            "set ftp:use-mdtm-overloaded no",
            "set ftp:use-feat no",
            "set cmd:fail-exit yes",
            f"mirror -R --no-perms '{folder}' {folder.name}",
            "quit",
        )
    )
    start = time.monotonic()
    subprocess.run(
        [
            "lftp",
            "--norc",
            "-u",
            f"{server.user},{server.password}",
            "-p",
            str(server.port),
            "-e",
            commands,
            server.host,
        ],
        check=True,
        stdout=subprocess.DEVNULL,
    )
    return time.monotonic() - start


def take_away(folder, server):
    """What has arrived, once it is known to be all."""
    subprocess.run(["diff", "-r", folder, server.root / folder.name], check=True)
    shutil.rmtree(server.root / folder.name)


def main(stage, drive, files=10000, rounds=3, kind="vsftpd"):
    counts = {"small": files, "tiles": max(files // 10, 1)}
    rows = {what: [] for what in SIZES}
    with tempfile.TemporaryDirectory(prefix="mosaicon-bench-") as name, ftp_servers.start(kind) as server:
        scratch = pathlib.Path(name)
        for what, sizes in SIZES.items():
            make_files(scratch / what, counts[what], *sizes)
        for number in range(1, rounds + 1):
            for what in SIZES:
                folder = scratch / what
                theirs = lftp(folder, server)
                take_away(folder, server)
                seconds, parties = ours(stage, drive, folder, server, scratch)
                take_away(folder, server)
                rows[what].append((theirs, seconds, seconds / theirs))
                print(
                    f"round {number}, {what}: lftp {theirs:.1f} s, dialog {seconds:.1f} s, "
                    f"dialog/lftp {seconds / theirs:.2f}; processor seconds: "
                    + ", ".join(f"{who} {spent:.1f}" for who, spent in sorted(parties.items())),
                    flush=True,
                )
    for what in SIZES:
        medians = [statistics.median(column) for column in zip(*rows[what])]
        print(
            f"{counts[what]} {what} files to {kind}, {len(os.sched_getaffinity(0))} cores; medians: "
            f"lftp {medians[0]:.1f} s, dialog {medians[1]:.1f} s, dialog/lftp {medians[2]:.2f}"
        )


if __name__ == "__main__":
    main(*map(pathlib.Path, sys.argv[1:3]), *map(int, sys.argv[3:5]), *sys.argv[5:6])
