#!/usr/bin/env python3
"""Times the FTP client, under Wine, against lftp and curl, with one vsftpd on this machine:

    ftp_bench.py ROUNDS MEGABYTES FILES

One file of so many megabytes, and so many files of 1 to 60 KB, up and down. The clients take turns, so
that a machine whose speed drifts treats them alike; medians count. A login is part of every time; the
start of the program is a part for lftp and curl only, some 10 ms. The processor time is that of our
client and of its wineserver, which does the work of a kernel.

Needs MOSAICON_FTP_DRIVER and WINEPREFIX, as tests/servers/ftp_driver.py does. scripts/ftp-bench sees to
all.
"""

import os
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


class Places:
    def __init__(self, folder, server, megabytes, files):
        self.server = server
        self.big = folder / "big"
        self.small = folder / "small"
        self.back = folder / "back"
        self.small.mkdir()
        with open(self.big, "wb") as file:
            for _ in range(megabytes):
                file.write(random.randbytes(1_000_000))
        sizes = random.Random(1)
        for number in range(files):
            (self.small / f"{number}.png").write_bytes(random.randbytes(sizes.randint(1000, 60000)))
        self.names = sorted(path.name for path in self.small.iterdir())

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
        ask("passive", int(passive))
        ask("connect", server.host, server.port, server.user, server.password)
        ask("type", 1)
        if what == "big":
            words = ("send", places.big, "big") if is_upload else ("receive", "big", places.back / "big")
            ask(*words)
        else:
            ask("chdir", "small")
            ask(*(("send-folder", places.small) if is_upload else ("receive-folder", places.back)))
        ask("close")
    return run


def lftp(places, what, is_upload):
    server = places.server
    transfer = {("big", True): f"put {places.big}",
                ("big", False): f"get big -o {places.back}/big",
                ("small", True): f"mirror -R {places.small} small",
                ("small", False): f"mirror small {places.back}"}[what, is_upload]
    subprocess.run(["lftp", "-p", str(server.port), "-u", f"{server.user},{server.password}", "-e",
                    f"set ftp:ssl-allow no; {transfer}; bye", server.host],
                   check=True, stdout=subprocess.DEVNULL)


def curl(places, what, is_upload):
    server = places.server
    base = f"ftp://{server.host}:{server.port}"
    if what == "big":
        pairs = [(places.big if is_upload else places.back / "big", f"{base}/big")]
    elif is_upload:
        pairs = [(places.small / name, f"{base}/small/{name}") for name in places.names]
    else:
        pairs = [(places.back / name, f"{base}/small/{name}") for name in places.names]
    option = "upload-file" if is_upload else "output"
    lines = [f'user = "{server.user}:{server.password}"', "silent", "fail"]
    lines += [f'url = "{url}"\n{option} = "{path}"' for path, url in pairs]
    # One after the other all the same: the plain way of this curl sleeps a second now and then between
    # two files.
    subprocess.run(["curl", "-q", "-Z", "--parallel-max", "1", "-K", "-"], input="\n".join(lines), text=True,
                   check=True, stderr=subprocess.DEVNULL)


def size_of(path):
    if path.is_dir():
        return sum(entry.stat().st_size for entry in path.iterdir())
    return path.stat().st_size


def measure(places, client, what, is_upload):
    """Seconds. The server's copies stay for the downloads."""
    root = places.server.root
    if is_upload:
        (root / "big").unlink(missing_ok=True)
        places.make_room([root / "small"])
    else:
        places.make_room([])
    start = time.monotonic()
    client(places, what, is_upload)
    seconds = time.monotonic() - start
    source = places.big if what == "big" else places.small
    arrived = root / what if is_upload else places.back / "big" if what == "big" else places.back
    if size_of(arrived) != size_of(source):
        sys.exit(f"{what}: {size_of(arrived)} bytes arrived of {size_of(source)}")
    return seconds


def main(rounds, megabytes, files):
    driver = Driver()
    clients = {"ours": ours(driver, True), "ours, active": ours(driver, False), "lftp": lftp, "curl": curl}
    times = {}
    processor = {}
    with tempfile.TemporaryDirectory(prefix="mosaicon-ftp-bench-") as folder:
        with ftp_servers.start("vsftpd") as server:
            places = Places(pathlib.Path(folder), server, megabytes, files)
            for number in range(rounds):
                for what in ("big", "small"):
                    for name, client in clients.items():
                        for is_upload in (True, False):
                            key = (what, is_upload, name)
                            before = driver.processor_seconds()
                            times.setdefault(key, []).append(measure(places, client, what, is_upload))
                            processor.setdefault(key, []).append(driver.processor_seconds() - before)
                            print(f"round {number + 1}: {name}, {what}, {'up' if is_upload else 'down'}: "
                                  f"{times[key][-1]:.2f} s", file=sys.stderr, flush=True)
    driver.close()
    print(table(times, processor, {"big": (megabytes, "MB/s"), "small": (files, "files/s")}))


def table(times, processor, amounts):
    medians = {key: statistics.median(values) for key, values in times.items()}
    rows = [f"{'':28}{'seconds':>9}{'rate':>16}{'to lftp':>9}{'to curl':>9}{'processor':>11}"]
    for (what, is_upload, name), seconds in medians.items():
        amount, unit = amounts[what]
        label = f"{amount} {'MB' if what == 'big' else 'files'} {'up' if is_upload else 'down'}, {name}"
        rate = f"{amount / seconds:.1f} {unit}"
        ratios = "".join(f"{seconds / medians[what, is_upload, other]:>9.2f}" for other in ("lftp", "curl"))
        cpu = statistics.median(processor[what, is_upload, name])
        rows.append(f"{label:28}{seconds:>9.2f}{rate:>16}{ratios}"
                    + (f"{cpu:>9.2f} s" if name.startswith("ours") else ""))
    return "\n".join(rows)


if __name__ == "__main__":
    main(*map(int, sys.argv[1:4]))
