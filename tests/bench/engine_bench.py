#!/usr/bin/env python3
"""Times the tile engine and the installed gdal2tiles on the same orthophotos, in turns:
engine_bench.py ENGINE ENGINE_FOR_WINDOWS SAMPLE ROUNDS SIZE...

Medians of the rounds are printed, and their ratios to gdal2tiles with one process. The tiles of all ways are
compared pixel for pixel with those of gdal2tiles. Where ENGINE_FOR_WINDOWS is empty, the native engine is
compared with itself alone, for sizes at which gdal2tiles takes hours."""

import os
import pathlib
import re
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

TOP = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(TOP / "src" / "tiler" / "testing"))
import engine_cases as cases  # noqa: E402

gdal.UseExceptions()
KINDS = {"tiled": ["TILED=YES"], "striped": [], "striped, compressed": ["COMPRESS=DEFLATE", "ZLEVEL=1"]}


class Cost(NamedTuple):
    wall: float  # seconds
    processor: float  # seconds, of all processes that were waited for
    memory: float  # MiB, of the process itself


def make_orthophoto(sample, path, size, options):
    """A real texture, mirrored so that it goes on without edges."""
    pixels = gdal.Open(str(sample)).ReadAsArray()[:3]
    across = numpy.concatenate([pixels, pixels[:, :, ::-1]], axis=2)
    square = numpy.concatenate([across, across[:, ::-1]], axis=1)
    width = square.shape[2]
    image = gdal.GetDriverByName("GTiff").Create(
        str(path), size, size, 3, options=["BIGTIFF=IF_SAFER", *options]
    )
    reference = osr.SpatialReference()
    reference.ImportFromEPSG(32632)
    image.SetProjection(reference.ExportToWkt())
    image.SetGeoTransform((500000, 0.2, 0, 5200000, 0, -0.2))
    columns = numpy.arange(size) % width
    step = 512
    for top in range(0, size, step):
        rows = numpy.arange(top, min(size, top + step)) % square.shape[1]
        image.WriteArray(square[:, rows][:, :, columns], 0, top)


def ways(engine, windows_engine):
    """Commands by what they are called; the image and the folder come behind them. The first is what the
    others are compared with."""
    options = ["-s", "EPSG:32632", "-p", "mercator", "-k", "-u", "../", "-t", "bench"]
    found = {}
    for count, threads, processes in ((1, "1 thread", "1 process"), (2, "2 threads", "2 processes")):
        own = [f"--threads={count}", "--sampling=gdal2tiles", *options]
        if not windows_engine:
            found["engine, " + threads] = [engine, *own]
            continue
        found["gdal2tiles, " + processes] = [
            sys.executable,
            "-m",
            "osgeo_utils.gdal2tiles",
            "-q",
            f"--processes={count}",
            *options,
        ]
        found["engine, " + threads] = [engine, *own]
        found["engine under Wine, " + threads] = ["wine", windows_engine, *own]
    return found


class MemoryWatch(threading.Thread):
    """The most memory that a process ever had, as long as it can be asked. What wait4() tells begins with
    that of the process that started it."""

    def __init__(self, pid):
        super().__init__(daemon=True)
        self._status = pathlib.Path(f"/proc/{pid}/status")
        self.most = 0  # MiB
        self.start()

    def run(self):
        try:
            while found := re.search(r"VmHWM:\s+(\d+)", self._status.read_text()):
                self.most = int(found[1]) / 1024
                time.sleep(0.02)
        except OSError:
            pass  # it has ended


def run(command, image, target):
    data = pathlib.Path(command[1]).parent / "gdal-data" if command[0] == "wine" else None
    environment = {**os.environ, **({"GDAL_DATA": f"Z:{data}"} if data else {})}
    start = time.monotonic()
    process = subprocess.Popen(
        [*map(str, command), str(image), str(target)], env=environment, stdout=subprocess.DEVNULL
    )
    memory = MemoryWatch(process.pid)
    _, status, used = os.wait4(process.pid, 0)
    wall = time.monotonic() - start
    process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode != 0:
        sys.exit(f"{command} ended with {process.returncode}")
    return Cost(wall, used.ru_utime + used.ru_stime, memory.most)


def tiles_below(folder):
    return {path.relative_to(folder) for path in folder.glob("*/*/*.png")}


def compare(target, reference):
    """Ends the program when the tiles differ."""
    if tiles_below(target) != tiles_below(reference):
        sys.exit("the tiles are not the same files")
    for tile in tiles_below(target):
        if (cases.decoded(target / tile) != cases.decoded(reference / tile)).any():
            sys.exit(f"{tile} differs")
    return len(tiles_below(target))


def measure(commands, image, folder, rounds):
    costs = {name: [] for name in commands}
    for number in range(rounds):
        for name, command in commands.items():
            costs[name].append(run(command, image, folder / name / "m"))
        if number == 0:
            for name in commands:
                tiles = compare(folder / name / "m", folder / next(iter(commands)) / "m")
        for name in commands:
            shutil.rmtree(folder / name)
    return tiles, {name: Cost(*map(statistics.median, zip(*all_of))) for name, all_of in costs.items()}


def show(title, tiles, costs):
    print(f"{title}: {tiles} tiles, all pixels equal")
    base = next(iter(costs.values()))
    for name, cost in costs.items():
        print(
            f"  {name:28} {cost.wall:8.2f} s {cost.processor:8.2f} s {cost.memory:6.0f} MiB"
            f"   1/{base.wall / cost.wall:.1f} of the time,"
            f" 1/{base.processor / cost.processor:.1f} of the processor's"
        )
    for name in ("engine", "engine under Wine"):
        if f"{name}, 1 thread" not in costs:
            continue
        gain = costs[f"{name}, 1 thread"].wall / costs[f"{name}, 2 threads"].wall
        print(f"  {name}: two threads are {gain:.2f} times as fast as one")
    print(flush=True)


def main(engine, windows_engine, sample, rounds, *sizes):
    commands = ways(engine, windows_engine)
    per_pixel = {}
    with tempfile.TemporaryDirectory(prefix="mosaicon-bench-") as name:
        folder = pathlib.Path(name)
        os.environ["MOSAICON_TILER_LOG"] = str(folder / "log")
        for size in map(int, sizes):
            for kind, options in KINDS.items():
                image = folder / "orthophoto.tif"
                make_orthophoto(sample, image, size, options)
                tiles, costs = measure(commands, image, folder, int(rounds))
                show(f"{size} x {size}, {kind}", tiles, costs)
                per_pixel[size, kind] = costs["engine, 1 thread"].processor / size**2 * 1e6
    for (size, kind), seconds in per_pixel.items():
        print(f"engine, {size} x {size}, {kind}: {1000 * seconds:.0f} ms for a megapixel")


if __name__ == "__main__":
    main(*sys.argv[1:])
