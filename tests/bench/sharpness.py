#!/usr/bin/env python3
"""Measures how true tiles are, and how long they take, in the engine's two ways to make them:
sharpness.py ENGINE SAMPLE SETS ROUNDS SIZE

The truth is the average over the area of each pixel, computed from the orthophoto in double precision. A
set is an orthophoto of a real texture somewhere on the globe, in its coordinate system, some turned. Of each
the fullest tile is looked at. Then both ways are timed in turns on an orthophoto of this size."""

import os
import pathlib
import random
import statistics
import subprocess
import sys
import tempfile

import numpy
from osgeo import gdal

import engine_bench

sys.path.insert(0, str(engine_bench.TOP / "src" / "tiler" / "testing"))
import engine_cases as cases  # noqa: E402
import exact_average as exact  # noqa: E402

WAYS = ("sharp", "gdal2tiles")
ROWS, COLUMNS = 1050, 1200
# EPSG codes, and degrees west, south, east, north of where they are used.
SYSTEMS = [
    (32633, (12, 1, 18, 60)),
    (32733, (12, -60, 18, -1)),
    (31983, (-48, -40, -42, -1)),
    (2154, (-4, 42, 8, 51)),
    (3035, (0, 40, 20, 60)),
    (31467, (7.5, 48, 10.5, 55)),
    (27700, (-6, 50, 1, 58)),
    (2056, (6, 46, 10, 47.5)),
    (5070, (-110, 30, -80, 45)),
    (2193, (167, -47, 178, -35)),
    (4326, (-179, -60, 179, 60)),
    (3857, (-179, -60, 179, 60)),
]
METRES_PER_DEGREE = 111_320.0


def make_set(seed, path, texture):
    """Returns the code of its system and a pixel's side in metres."""
    chance = random.Random(seed)
    code, (west, south, east, north) = SYSTEMS[seed % len(SYSTEMS)]
    change = exact.osr.CoordinateTransformation(exact.srs_of("EPSG:4326"), exact.srs_of(f"EPSG:{code}"))
    x, y, _ = change.TransformPoint(chance.uniform(west, east), chance.uniform(south, north))
    metres = chance.choice([0.05, 0.1, 0.5, 2, 10]) * chance.uniform(0.8, 1.25)
    pixel = metres / METRES_PER_DEGREE if code == 4326 else metres
    turn = 0.0
    if code != 3857 and seed % 5 == 4:
        turn = chance.uniform(-0.05, 0.05)
    if code != 3857 and seed % 7 == 6:
        turn = 0.6
    across, down = pixel * numpy.cos(turn), pixel * numpy.sin(turn)
    image = gdal.GetDriverByName("GTiff").Create(str(path), COLUMNS, ROWS, 3)
    image.SetGeoTransform((x, across, down, y, down, -across))
    image.SetProjection(exact.srs_of(f"EPSG:{code}").ExportToWkt())
    image.WriteArray(exact.texture(ROWS, COLUMNS, seed, texture))
    return code, metres, turn


def cut(engine, way, code, image, target):
    command = [engine, f"--sampling={way}", "-s", f"EPSG:{code}", str(image), str(target)]
    subprocess.run(command, check=True, stdout=subprocess.DEVNULL)


def fullest(target):
    """(level, column, row) of the tile of the finest level that shows most."""
    finest = max(int(path.name) for path in target.iterdir() if path.name.isdigit())
    tiles = list((target / str(finest)).glob("*/*.png"))
    shown = {path: numpy.count_nonzero(cases.decoded(path)[3] == 255) for path in tiles}
    path = max(shown, key=shown.get)
    return finest, int(path.parent.name), int(path.stem)


def measure_set(engine, seed, folder, texture):
    """Prints a line; returns decibels by way."""
    image = folder / "image.tif"
    code, metres, turn = make_set(seed, image, texture)
    for way in WAYS:
        cut(engine, way, code, image, folder / way)
    number = fullest(folder / "sharp")
    truth, covered = exact.Source(image).tile(*number)
    found, words = {}, []
    for way in WAYS:
        pixels = cases.decoded(folder / way / f"{number[0]}/{number[1]}/{number[2]}.png").astype(float)
        whole = (pixels[3] == 255) & (covered == 1)
        found[way] = exact.decibels(pixels[:3][:, whole], truth[:, whole])
        moved = exact.shift(pixels[:3], truth) if whole.all() else (numpy.nan, numpy.nan)
        words.append(f"{way} {found[way]:.1f} dB, {moved[0]:+.3f} {moved[1]:+.3f} px")
    print(f"EPSG:{code}, {metres:.2f} m, turned by {turn:+.2f}: " + "; ".join(words), flush=True)
    return found


def time_ways(engine, sample, size, rounds, folder):
    image = folder / "large.tif"
    engine_bench.make_orthophoto(sample, image, size, ["TILED=YES"])
    costs = {way: [] for way in WAYS}
    for _ in range(rounds):
        for way in WAYS:
            command = [engine, f"--sampling={way}", "--threads=1", "-k", "-s", "EPSG:32632"]
            costs[way].append(engine_bench.run(command, image, folder / "timed" / "m").processor)
            subprocess.run(["rm", "-rf", str(folder / "timed")], check=True)
    sharp, plain = (statistics.median(costs[way]) for way in WAYS)
    print(f"{size} x {size}, processor time of one thread: sharp {sharp:.2f} s, gdal2tiles {plain:.2f} s,")
    print(f"{sharp / plain:.2f} times as much")


def main(engine, sample, sets, rounds, size):
    texture = gdal.Open(sample).ReadAsArray()[:3]
    measured = []
    with tempfile.TemporaryDirectory(prefix="mosaicon-sharpness-") as name:
        os.environ["MOSAICON_TILER_LOG"] = str(pathlib.Path(name) / "log")
        for seed in range(int(sets)):
            folder = pathlib.Path(name) / str(seed)
            folder.mkdir()
            measured.append(measure_set(engine, seed, folder, texture))
        for way in WAYS:
            values = [found[way] for found in measured]
            print(f"{way}: {min(values):.1f} to {max(values):.1f} dB")
        time_ways(engine, sample, int(size), int(rounds), pathlib.Path(name))


if __name__ == "__main__":
    main(*sys.argv[1:])
