#!/usr/bin/env python3
"""Times a whole job, with the tile engine and with the tiling script, beside plain gdal2tiles:
job_bench.py STAGE STAGE_WITH_SCRIPT SIZE ROUNDS.

All ways take turns, so that a machine whose speed drifts treats them alike; the ratios are taken round by
round and their median is what counts."""

import os
import pathlib
import shutil
import statistics
import subprocess
import sys
import tempfile
import threading
import time
from typing import NamedTuple

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


def job(stage, source, target):
    """Wall seconds, and the share of a core that the waiting thread used while tiles were cut."""

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
            if any(target.glob("[0-9]*")):
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
    return seconds, (samples[-1][1] - samples[0][1]) / (samples[-1][0] - samples[0][0])


def count_tiles(folder):
    return sum(1 for _ in folder.glob("*/*/*.png"))


class Round(NamedTuple):
    """Wall seconds, but for the last."""

    one: float  # gdal2tiles with one process
    all_cores: float  # with one for each processor
    script: float  # a job with the tiling script
    engine: float  # with the tile engine
    waiting: float  # share of a core

    def ratios(self):
        return {
            "a job with the engine, of one with the script": self.engine / self.script,
            "a job with the engine, of plain gdal2tiles with all processes": self.engine / self.all_cores,
            "a job with the script, of plain gdal2tiles with all processes": self.script / self.all_cores,
            "plain gdal2tiles with all processes, of one": self.all_cores / self.one,
        }


def run_round(stage, stage_with_script, source, folder, cores):
    one, target_one = plain(source, folder, 1)
    all_cores, target_all = plain(source, folder, cores)
    script, _ = job(stage_with_script, source, folder / "script")
    engine, waiting = job(stage, source, folder / "engine")
    targets = (target_one, target_all, folder / "script", folder / "engine")
    counts = {count_tiles(target) for target in targets}
    if len(counts) != 1:
        sys.exit(f"the tile counts differ: {counts}")
    for target in targets:
        shutil.rmtree(target)
    return Round(one, all_cores, script, engine, waiting), counts.pop()


def main(stage, stage_with_script, size, rounds):
    cores = len(os.sched_getaffinity(0))
    with tempfile.TemporaryDirectory(prefix="mosaicon-bench-") as name:
        folder = pathlib.Path(name)
        source = folder / "orthophoto.tif"
        make_orthophoto(source, size)
        rows = []
        for number in range(1, rounds + 1):
            row, tiles = run_round(stage, stage_with_script, source, folder, cores)
            rows.append(row)
            print(
                f"round {number}: plain 1 process {row.one:.1f} s, "
                f"plain {cores} processes {row.all_cores:.1f} s, "
                f"job with script {row.script:.1f} s, job with engine {row.engine:.1f} s, "
                f"waiting thread {100 * row.waiting:.1f} % of a core",
                flush=True,
            )
        print(f"{size} x {size} pixels, {tiles} tiles, {cores} cores; medians:")
        for what in rows[0].ratios():
            print(f"  {what}: {statistics.median(row.ratios()[what] for row in rows):.3f}")
        waiting = statistics.median(row.waiting for row in rows)
        print(f"  waiting thread: {100 * waiting:.1f} % of a core")


if __name__ == "__main__":
    main(pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2]), int(sys.argv[3]), int(sys.argv[4]))
