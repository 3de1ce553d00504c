"""What is in the package, and what its programs and DLLs are like."""

import hashlib
import os
import re
import subprocess
import unittest
import zipfile

import pe_file
from package_case import OURS, TOP, PackageCase, make_package

NEEDED = [
    *("Mosaicon.exe", "mosaicon-batch.exe", "crashrpt.dll", "crashsender.exe"),
    *("gdal2tiles/mosaicon-tiler.exe", "gdal2tiles/gdalwarp.exe", "gdal2tiles/gdal_translate.exe"),
    *("gdal2tiles/gdal-data/gdalvrt.xsd", "gdal2tiles/tutorial.html", "share/proj/proj.db"),
    *("tutorial/MOS_InputOutput.pdf", "README.txt", "CHANGELOG.txt", "LICENSE.txt"),
]
LARGEST = 60e6  # bytes of what somebody downloads


class Files(PackageCase):
    def test_are_all_there_and_none_is_too_much(self):
        for name in NEEDED:
            self.assertTrue((self.program / name).is_file(), name)
        for path in self.program.rglob("*"):
            self.assertNotIn(path.suffix, (".py", ".debug", ".a", ".pdb"), path)
            self.assertNotIn("python", path.name.lower())

    def test_are_not_too_large(self):
        for kind in ("portable.zip", "setup.exe"):
            self.assertLess(next(self.package.glob(f"*-{kind}")).stat().st_size, LARGEST, kind)

    def test_have_the_sums_that_are_told(self):
        lines = (self.package / "SHA256SUMS").read_text().splitlines()
        self.assertEqual(len(lines), 3)
        for line in lines:
            told, name = line.split("  ")
            self.assertEqual(told, hashlib.sha256((self.package / name).read_bytes()).hexdigest())

    def test_are_the_same_when_they_are_made_again(self):
        make_package(self.folder / "again")
        for path in self.package.iterdir():
            is_same = (self.folder / "again" / path.name).read_bytes() == path.read_bytes()
            self.assertTrue(is_same, path.name)

    def test_tell_of_one_version(self):
        changes = (TOP / "CHANGELOG.md").read_text()
        self.assertEqual(re.search(r"^## (\S+)", changes, re.MULTILINE)[1], self.version)
        self.assertIn(f"Mosaicon {self.version}", (self.program / "README.txt").read_text())
        numbers = (*map(int, self.version.split(".")), 0)
        for path, file in self.binaries().items():
            if path.name in OURS:
                self.assertEqual(file.version(), numbers, path)

    def test_name_no_folder_of_the_machine_that_built_them(self):
        homes = {os.path.expanduser("~") + "/", str(TOP) + "/", "/root/", "/home/"}
        for path in self.program.rglob("*"):
            content = path.read_bytes() if path.is_file() else b""
            for home in homes:
                self.assertFalse(home.encode() in content, f"{path} names {home}")

    def test_name_the_licences_of_all_libraries(self):
        listed = (self.program / "licences" / "LIST.txt").read_text()
        for path in self.program.rglob("*.dll"):
            if path.name not in OURS:
                self.assertIn(path.name, listed)
        for line in listed.splitlines()[2:]:
            name, version = re.match(r"(\S+) (\S+): ", line).groups()
            self.assertRegex(version, r"\d")
            self.assertGreater(len((self.program / "licences" / f"{name}.txt").read_text()), 500, name)

    def test_read_well_in_old_editors(self):
        for path in [*self.program.glob("*.txt"), *self.program.glob("gdal2tiles/*.txt")]:
            content = path.read_bytes()
            self.assertEqual(content.count(b"\n"), content.count(b"\r\n"), path)


class Binaries(PackageCase):
    def test_are_hardened(self):
        for path, file in self.binaries().items():
            for flag in (pe_file.HIGH_ENTROPY, pe_file.DYNAMIC_BASE, pe_file.NX_COMPATIBLE):
                self.assertTrue(file.flags & flag, f"{path.name} lacks {flag:#x}")
            self.assertTrue(file.can_be_moved(), path.name)
            for section in file.sections:
                both = pe_file.EXECUTABLE | pe_file.WRITABLE
                self.assertNotEqual(section.flags & both, both, f"{path.name} {section.name}")

    def test_hold_no_debug_information(self):
        for path, file in self.binaries().items():
            names = [section.name for section in file.sections]
            # Long names are kept as "/" and a number.
            self.assertEqual([each for each in names if each.startswith(("/", ".debug"))], [], path.name)

    def test_find_all_that_they_need(self):
        lines = (TOP / "tests" / "package" / "windows_dlls.txt").read_text().splitlines()
        of_windows = {line for line in lines if not line.startswith("#")}
        for path, file in self.binaries().items():
            imported = file.imports()
            self.assertIn("kernel32.dll", imported, path.name)
            for name in imported:
                beside = name in {each.name.lower() for each in path.parent.iterdir()}
                self.assertTrue(beside or name in of_windows, f"{path.name} needs {name}")

    def test_of_ours_say_what_they_are(self):
        for path, file in self.binaries().items():
            if path.name in OURS:
                self.assertIn(pe_file.VERSION, file.resources(), path.name)
            if path.name in OURS and path.suffix == ".exe":
                self.assertIn(pe_file.MANIFEST, file.resources(), path.name)
                self.assertTrue(b"asInvoker" in file.content, path.name)

    def test_have_their_symbols_in_an_archive(self):
        with zipfile.ZipFile(next(self.package.glob("*-symbols.zip"))) as archive:
            archive.extractall(self.folder / "symbols")
        [debug] = (self.folder / "symbols").rglob("Mosaicon.exe.debug")
        names = subprocess.run(
            ["x86_64-w64-mingw32-nm", "-C", debug], check=True, capture_output=True, text=True
        ).stdout
        [address] = re.findall(r"^(\w+) T CMosaiconDlg::StartJob\(\)$", names, re.MULTILINE)
        line = subprocess.run(
            ["x86_64-w64-mingw32-addr2line", "-e", debug, address], check=True, capture_output=True, text=True
        ).stdout
        self.assertIn("mosaicon_dlg.cpp:", line)


if __name__ == "__main__":
    unittest.main()
