#!/usr/bin/env python3
"""Measures maps of each kind of tiles, and what the qualities of JPEG and WebP are worth:
tile_sizes.py ENGINE SAMPLE SIZE ROUNDS

The orthophoto has a real texture, and a margin that shows nothing. Tiles are compared with the exact ones, in
decibels of all that is to be seen."""

import os
import pathlib
import statistics
import subprocess
import sys
import tempfile
import time

import numpy
from osgeo import gdal

import engine_bench

sys.path.insert(0, str(engine_bench.TOP / "src" / "tiler" / "testing"))
import engine_cases as cases  # noqa: E402
import exact_average  # noqa: E402

FORMATS = ("png", "auto", "webp")
QUALITIES = (70, 75, 80, 85, 90, 95)
TILES = 150  # that the qualities are tried on


def similarity(one, other):
    """The structural similarity of two images of one band, in windows of eight by eight pixels."""

    def blocks(image):
        return image.reshape(32, 8, 32, 8).transpose(0, 2, 1, 3).reshape(-1, 64).astype(float)

    a, b = blocks(one), blocks(other)
    c1, c2 = (0.01 * 255) ** 2, (0.03 * 255) ** 2
    mean_a, mean_b = a.mean(axis=1), b.mean(axis=1)
    both = ((a - mean_a[:, None]) * (b - mean_b[:, None])).mean(axis=1)
    upper = (2 * mean_a * mean_b + c1) * (2 * both + c2)
    return float((upper / ((mean_a**2 + mean_b**2 + c1) * (a.var(axis=1) + b.var(axis=1) + c2))).mean())


def grey(pixels):
    return 0.299 * pixels[0] + 0.587 * pixels[1] + 0.114 * pixels[2]


def tiles_of(folder):
    return {
        path.relative_to(folder).with_suffix(""): path
        for path in folder.glob("*/*/*")
        if path.suffix in (".png", ".jpg", ".webp")
    }


def compare_maps(engine, image, rounds, folder):
    """Prints a line for each kind. Returns the folder of the exact one."""
    seconds = {kind: [] for kind in FORMATS}
    for _ in range(rounds):
        for kind in FORMATS:
            target = folder / kind / "m"
            subprocess.run(["rm", "-rf", str(target)], check=True)
            command = [engine, f"--tiles={kind}", "--threads=1", "-k", "-s", "EPSG:32632"]
            seconds[kind].append(engine_bench.run(command, image, target).processor)
    exact = tiles_of(folder / "png" / "m")
    whole = sum(path.stat().st_size for path in exact.values())
    for kind in FORMATS:
        tiles = tiles_of(folder / kind / "m")
        size = sum(path.stat().st_size for path in tiles.values())
        errors = []
        for name in sorted(tiles)[:: max(1, len(tiles) // TILES)]:
            right = cases.decoded(exact[name])
            errors.append((cases.decoded(tiles[name])[:3].astype(int) - right[:3])[:, right[3] > 0].ravel())
        noise = exact_average.decibels(numpy.concatenate(errors), 0)
        print(
            f"{kind}: {len(tiles)} tiles, {size / 1e6:.1f} MB, {whole / size:.2f} times smaller, "
            f"{noise:.1f} dB, {statistics.median(seconds[kind]):.2f} s",
            flush=True,
        )
    return exact


def compare_qualities(exact):
    opaque = [path for path in exact.values() if gdal.Open(str(path)).RasterCount == 3]
    chosen = sorted(opaque)[:: max(1, len(opaque) // TILES)]
    for driver in ("JPEG", "WEBP"):
        for quality in QUALITIES:
            size, start, errors, alike = 0, time.monotonic(), [], []
            for path in chosen:
                source = gdal.Open(str(path))
                gdal.GetDriverByName(driver).CreateCopy(
                    "/vsimem/tile", source, options=[f"QUALITY={quality}"]
                )
                size += gdal.VSIStatL("/vsimem/tile").size
                right, pixels = source.ReadAsArray(), gdal.Open("/vsimem/tile").ReadAsArray()
                errors.append((pixels.astype(int) - right).ravel())
                alike.append(similarity(grey(pixels), grey(right)))
            noise = exact_average.decibels(numpy.concatenate(errors), 0)
            print(
                f"{driver} {quality}: {size / len(chosen):.0f} bytes a tile, "
                f"{sum(path.stat().st_size for path in chosen) / size:.2f} times smaller than PNG, "
                f"{noise:.1f} dB, similarity {statistics.mean(alike):.4f}, "
                f"{1000 * (time.monotonic() - start) / len(chosen):.1f} ms with reading",
                flush=True,
            )


def main(engine, sample, size, rounds):
    gdal.UseExceptions()
    with tempfile.TemporaryDirectory(prefix="mosaicon-sizes-") as name:
        folder = pathlib.Path(name)
        os.environ["MOSAICON_TILER_LOG"] = str(folder / "log")
        image = folder / "large.tif"
        engine_bench.make_orthophoto(sample, image, int(size), ["TILED=YES"])
        exact = compare_maps(engine, image, int(rounds), folder)
        compare_qualities(exact)


if __name__ == "__main__":
    main(*sys.argv[1:])
