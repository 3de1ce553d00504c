"""The package that tests look at, made once for each module: MOSAICON_PACKAGE_BUILD is the build that it is
made of."""

import functools
import os
import pathlib
import subprocess
import sys
import tempfile
import unittest
import zipfile

from pe_file import PeFile

TOP = pathlib.Path(__file__).resolve().parents[2]
OURS = {"Mosaicon.exe", "mosaicon-batch.exe", "crashrpt.dll", "crashsender.exe", "mosaicon-tiler.exe"}
BUILD = pathlib.Path(os.environ["MOSAICON_PACKAGE_BUILD"])


def make_package(target, *more, **environment):
    subprocess.run(
        [sys.executable, "-B", TOP / "packaging" / "make_package.py", BUILD, target, *more],
        check=True,
        stdout=subprocess.DEVNULL,
        env={**os.environ, **environment},
    )


@functools.lru_cache
def package_made_for(module, compression):
    """A folder with a package, which the module removes at its end."""
    folder = tempfile.TemporaryDirectory(prefix="mosaicon package ")
    unittest.addModuleCleanup(folder.cleanup)
    path = pathlib.Path(folder.name)
    make_package(path / "package", MOSAICON_PACKAGE_COMPRESSION=compression)
    with zipfile.ZipFile(next((path / "package").glob("*-portable.zip"))) as archive:
        archive.extractall(path)
    return path


class PackageCase(unittest.TestCase):
    compression = "yes"

    @classmethod
    def setUpClass(cls):
        cls.folder = package_made_for(cls.__module__, cls.compression)
        cls.package = cls.folder / "package"
        [portable] = cls.package.glob("*-portable.zip")
        cls.version = portable.name.split("-")[1]
        cls.program = cls.folder / f"Mosaicon-{cls.version}"

    def binaries(self):
        """All programs and DLLs, read, by their paths."""
        found = [path for path in self.program.rglob("*") if path.suffix in (".exe", ".dll")]
        self.assertGreater(len(found), 10)
        return {path: PeFile(path) for path in found}
