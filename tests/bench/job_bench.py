#!/usr/bin/env python3
"""Times a whole job against plain gdal2tiles: job_bench.py STAGE SIZE ROUNDS.

The three ways take turns, so that a machine whose speed drifts treats them
alike; the ratios are taken round by round and their median is what counts.
"""

import os
import pathlib
import resource
import shutil
import statistics
import subprocess
import sys
import tempfile
import threading
import time

import numpy
from osgeo import gdal, osr

gdal.UseExceptions()


def make_orthophoto(path, size):
    """RGB in a UTM zone, smooth with some grain, so that its tiles compress like photographs."""
    reference = osr.SpatialReference()
    reference.ImportFromEPSG(32632)
    image = gdal.GetDriverByName("GTiff").Create(str(path), size, size, 3, options=["TILED=YES"])
    image.SetProjection(reference.ExportToWkt())
    image.SetGeoTransform((500000, 0.2, 0, 5000000, 0, -0.2))
    grain = numpy.random.default_rng(1)
    x = numpy.arange(size)
    for top in range(0, size, 500):
        y = numpy.arange(top, min(top + 500, size))[:, None]
        for band in range(3):
            wave = 110 + 70 * numpy.sin(x / (40 + 9 * band)) * numpy.cos(y / (55 + 7 * band))
            block = wave + grain.integers(0, 24, wave.shape)
            image.GetRasterBand(band + 1).WriteArray(block.astype(numpy.uint8), 0, top)


def plain(source, folder, processes):
    target = folder / f"plain{processes}"
    start = time.monotonic()
    subprocess.run(
        [
            sys.executable,
            "-m",
            "osgeo_utils.gdal2tiles",
            "-q",
            "-a",
            "0,0,0",
            "-s",
            "EPSG:32632",
            "-p",
            "mercator",
            "-k",
            "-u",
            "../",
            f"--processes={processes}",
            source,
            target,
        ],
        check=True,
    )
    return time.monotonic() - start, target


def thread_seconds(pid):
    """Processor seconds of the thread that waits: the first one of the process."""
    text = pathlib.Path(f"/proc/{pid}/task/{pid}/stat").read_text()
    fields = text.rpartition(")")[2].split()
    return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")


def job(stage, source, folder):
    """Wall seconds, target, and the share of a core that the waiting thread used while tiles were cut."""
    target = folder / "job"

    def windows(path):
        return "Z:" + str(path).replace("/", "\\")

    start = time.monotonic()
    process = subprocess.Popen(
        ["wine", stage / "mosaicon-batch.exe", "--quiet", "--target", windows(target), windows(source)]
    )
    samples = []
    finished = threading.Event()

    def watch():
        while not finished.wait(0.25):
            if (target / "doc.kml").exists():
                try:
                    samples.append((time.monotonic(), thread_seconds(process.pid)))
                except OSError:
                    return

    watcher = threading.Thread(target=watch)
    watcher.start()
    code = process.wait()
    seconds = time.monotonic() - start
    finished.set()
    watcher.join()
    if code != 0:
        sys.exit(f"the job ended with code {code}")
    if len(samples) < 2:
        sys.exit("the job was too short to measure the waiting thread: take a larger size")
    share = (samples[-1][1] - samples[0][1]) / (samples[-1][0] - samples[0][0])
    return seconds, target, share


def count_tiles(folder):
    return sum(1 for _ in folder.glob("*/*/*.png"))


def main(stage, size, rounds):
    cores = len(os.sched_getaffinity(0))
    with tempfile.TemporaryDirectory(prefix="mosaicon-bench-") as name:
        folder = pathlib.Path(name)
        source = folder / "orthophoto.tif"
        make_orthophoto(source, size)
        rows = []
        for number in range(1, rounds + 1):
            one, target_one = plain(source, folder, 1)
            all_cores, target_all = plain(source, folder, cores)
            ours, target, share = job(stage, source, folder)
            counts = {count_tiles(target_one), count_tiles(target_all), count_tiles(target)}
            if len(counts) != 1:
                sys.exit(f"the tile counts differ: {counts}")
            rows.append((one, all_cores, ours, ours / all_cores, share))
            print(
                f"round {number}: plain 1 process {one:.1f} s, plain {cores} processes {all_cores:.1f} s, "
                f"job {ours:.1f} s, job/plain {ours / all_cores:.3f}, "
                f"waiting thread {100 * share:.1f} % of a core",
                flush=True,
            )
            for done in (target_one, target_all, target):
                shutil.rmtree(done)
        print(
            f"{size} x {size} pixels, {counts.pop()} tiles, {cores} cores; medians: "
            f"job/plain {statistics.median(row[3] for row in rows):.3f}, "
            f"plain 1/plain {cores} {statistics.median(row[0] / row[1] for row in rows):.2f}, "
            f"waiting thread {100 * statistics.median(row[4] for row in rows):.1f} %"
        )
        print(f"largest process {resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss // 1024} MiB")


if __name__ == "__main__":
    main(pathlib.Path(sys.argv[1]), int(sys.argv[2]), int(sys.argv[3]))
