#!/usr/bin/env python3
"""Times the FTP client, under Wine, against lftp and curl, with one vsftpd on this machine:

    ftp_bench.py ROUNDS MEGABYTES FILES [DRIVER]

One file of so many megabytes, so many tiles as an orthophoto has them (30 to 150 KB) and so many small
files (up to 4 KB), up and down. The clients take turns, so that a machine whose speed drifts treats them
alike; medians count. A login is part of every time; the start of the program is a part for lftp and curl
only, some 10 ms. The processor time is that of our client and of its wineserver, which does the work of
a kernel. Somebody listens to our client's waits, as the upload dialog does.

DRIVER is the ftp_driver.exe of another build, which takes its turns, too, and is compared with.

Needs MOSAICON_FTP_DRIVER and WINEPREFIX, as tests/servers/ftp_driver.py does. scripts/ftp-bench sees to
all.
"""

import pathlib
import random
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "servers"))
import ftp_servers  # noqa: E402
from ftp_driver import Driver  # noqa: E402

PATIENCE = 1800


BIG = "big"
SIZES = {"tiles": (30_000, 150_000), "small": (1, 4096)}  # bytes of the files of a folder


class Places:
    """What is sent, which is the file BIG and a folder of each of SIZES, and where it comes back to."""

    def __init__(self, folder, server, megabytes, files):
        self.server = server
        self.folder = folder
        self.back = folder / "back"
        with open(folder / BIG, "wb") as file:
            for _ in range(megabytes):
                file.write(random.randbytes(1_000_000))
        self.amounts = {BIG: (megabytes, "MB")}
        sizes = random.Random(1)
        for what, bounds in SIZES.items():
            (folder / what).mkdir()
            for number in range(files):
                (folder / what / f"{number}.png").write_bytes(random.randbytes(sizes.randint(*bounds)))
            self.amounts[what] = (files, what if what == "tiles" else "small files")

    def names(self, what):
        return sorted(path.name for path in (self.folder / what).iterdir())

    def make_room(self, below):
        for path in (self.back, *below):
            shutil.rmtree(path, ignore_errors=True)
            path.mkdir()
        self.server.adopt()


def ours(driver, passive):
    def ask(*words):
        answer = driver.ask(*words, patience=PATIENCE)
        if answer.result != 0:
            sys.exit(f"{words[0]}: {answer}")

    def run(places, what, is_upload):
        server = places.server
        ask("listen", 1)
        ask("passive", int(passive))
        ask("connect", server.host, server.port, server.user, server.password)
        ask("type", 1)
        if what == BIG:
            ask(*(("send", places.folder / BIG, BIG) if is_upload else ("receive", BIG, places.back / BIG)))
        else:
            ask("chdir", what)
            ask(*(("send-folder", places.folder / what) if is_upload else ("receive-folder", places.back)))
        ask("close")

    return run


def lftp(places, what, is_upload):
    server = places.server
    if what == BIG:
        transfer = f"put {places.folder}/{BIG}" if is_upload else f"get {BIG} -o {places.back}/{BIG}"
    else:
        transfer = f"mirror -R {places.folder}/{what} {what}" if is_upload else f"mirror {what} {places.back}"
    subprocess.run(
        [
            "lftp",
            "-p",
            str(server.port),
            "-u",
            f"{server.user},{server.password}",
            "-e",
            f"set ftp:ssl-allow no; {transfer}; bye",
            server.host,
        ],
        check=True,
        stdout=subprocess.DEVNULL,
    )


def curl(places, what, is_upload):
    server = places.server
    base = f"ftp://{server.host}:{server.port}"
    local = places.folder if is_upload else places.back
    if what == BIG:
        pairs = [(local / BIG, f"{base}/{BIG}")]
    else:
        files = local / what if is_upload else local
        pairs = [(files / name, f"{base}/{what}/{name}") for name in places.names(what)]
    option = "upload-file" if is_upload else "output"
    lines = [f'user = "{server.user}:{server.password}"', "silent", "fail"]
    lines += [f'url = "{url}"\n{option} = "{path}"' for path, url in pairs]
    # One after the other all the same: the plain way of this curl sleeps a second now and then between
    # two files.
    subprocess.run(
        ["curl", "-q", "-Z", "--parallel-max", "1", "-K", "-"],
        input="\n".join(lines),
        text=True,
        check=True,
        stderr=subprocess.DEVNULL,
    )


def size_of(path):
    if path.is_dir():
        return sum(entry.stat().st_size for entry in path.iterdir())
    return path.stat().st_size


def measure(places, client, what, is_upload):
    """Seconds. The server's copies stay for the downloads."""
    root = places.server.root
    if is_upload and what == BIG:
        (root / BIG).unlink(missing_ok=True)
    places.make_room([root / what] if is_upload and what != BIG else [])
    start = time.monotonic()
    client(places, what, is_upload)
    seconds = time.monotonic() - start
    source = places.folder / what
    arrived = root / what if is_upload else places.back / BIG if what == BIG else places.back
    if size_of(arrived) != size_of(source):
        sys.exit(f"{what}: {size_of(arrived)} bytes arrived of {size_of(source)}")
    return seconds


def main(rounds, megabytes, files, other=None):
    driver = Driver()
    clients = {"ours": ours(driver, True), "ours, active": ours(driver, False), "lftp": lftp, "curl": curl}
    drivers = [driver]
    if other:
        drivers.append(Driver(other))
        clients |= {"other": ours(drivers[1], True), "other, active": ours(drivers[1], False)}
    times = {}
    processor = {}
    with tempfile.TemporaryDirectory(prefix="mosaicon-ftp-bench-") as folder:
        with ftp_servers.start("vsftpd") as server:
            places = Places(pathlib.Path(folder), server, megabytes, files)
            for number in range(rounds):
                for what in places.amounts:
                    for name, client in clients.items():
                        for is_upload in (True, False):
                            key = (what, is_upload, name)
                            before = driver.processor_seconds()
                            times.setdefault(key, []).append(measure(places, client, what, is_upload))
                            processor.setdefault(key, []).append(driver.processor_seconds() - before)
                            print(
                                f"round {number + 1}: {name}, {what}, {'up' if is_upload else 'down'}: "
                                f"{times[key][-1]:.2f} s",
                                file=sys.stderr,
                                flush=True,
                            )
    for each in drivers:
        each.close()
    print(table(times, processor, places.amounts))


def table(times, processor, amounts):
    medians = {key: statistics.median(values) for key, values in times.items()}
    others = [name for name in ("lftp", "curl", "other") if (BIG, True, name) in medians]
    rows = [
        f"{'':34}{'seconds':>9}{'rate':>20}"
        + "".join(f"{'to ' + name:>10}" for name in others)
        + f"{'processor':>11}"
    ]
    for (what, is_upload, name), seconds in medians.items():
        amount, unit = amounts[what]
        label = f"{amount} {unit} {'up' if is_upload else 'down'}, {name}"
        rate = f"{amount / seconds:.1f} {unit.split()[-1]}/s"
        ratios = "".join(f"{seconds / medians[what, is_upload, other]:>10.2f}" for other in others)
        cpu = statistics.median(processor[what, is_upload, name])
        rows.append(
            f"{label:34}{seconds:>9.2f}{rate:>20}{ratios}"
            + (f"{cpu:>9.2f} s" if name not in ("lftp", "curl") else "")
        )
    return "\n".join(rows)


if __name__ == "__main__":
    main(*map(int, sys.argv[1:4]), *sys.argv[4:5])
