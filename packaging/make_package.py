#!/usr/bin/env python3
"""Makes what is given to users of a build for Windows:
make_package.py BUILD TARGET [CERTIFICATE]

TARGET gets Mosaicon-<version>-portable.zip, -setup.exe and -symbols.zip, and SHA256SUMS. The same sources
give the same bytes: all times are that of the last commit. CERTIFICATE: a PKCS #12 file, whose password is in
MOSAICON_CERTIFICATE_PASSWORD; programs, our DLL, the setup and its uninstaller are signed with it. For tests,
MOSAICON_PACKAGE_COMPRESSION=no saves most of the time."""

import hashlib
import os
import pathlib
import re
import shlex
import shutil
import subprocess
import sys
import time
import zipfile

import licences
import signing

HERE = pathlib.Path(__file__).resolve().parent
TOP = HERE.parent
TRIPLET = "x86_64-w64-mingw32"
OURS = [
    "Mosaicon.exe",
    "mosaicon-batch.exe",
    "crashrpt.dll",
    "crashsender.exe",
    "gdal2tiles/mosaicon-tiler.exe",
]
IS_COMPRESSED = os.environ.get("MOSAICON_PACKAGE_COMPRESSION") != "no"


def run(*command, **options):
    subprocess.run([str(each) for each in command], check=True, stdout=subprocess.DEVNULL, **options)


def cached(build, name):
    """A variable of CMake."""
    found = re.search(rf"^{name}:\w+=(.*)$", (build / "CMakeCache.txt").read_text(), re.MULTILINE)
    return found[1]


def constant(name):
    """Of the maker."""
    return re.search(rf'{name}\[\] = "(.*)";', (TOP / "src" / "maker.h").read_text())[1]


def commit_time():
    """Seconds; of two tries in the same tree the same."""
    # The tree may be somebody else's.
    command = ["git", "-c", "safe.directory=*", "-C", str(TOP), "log", "-1", "--format=%ct"]
    return int(subprocess.run(command, check=True, capture_output=True, text=True).stdout)


def lay_out(build, stage):
    """The program's folder, without what is only for other systems or for scripts."""
    run("cmake", "--install", build, "--prefix", stage, "--component", "Unspecified")


def separate_symbols(stage, symbols, seconds):
    """Moves the debug information of our programs into files of its own. seconds: the time that is written
    into the heads of programs."""
    environment = {**os.environ, "SOURCE_DATE_EPOCH": str(seconds)}
    for name in OURS:
        program = stage / name
        debug = symbols / (pathlib.Path(name).name + ".debug")
        debug.parent.mkdir(parents=True, exist_ok=True)
        run(f"{TRIPLET}-objcopy", "--only-keep-debug", program, debug, env=environment)
    for path in stage.rglob("*"):
        if path.suffix in (".exe", ".dll"):
            run(f"{TRIPLET}-strip", "--strip-all", path, env=environment)


def write_texts(build, stage, version):
    readme = (TOP / "packaging" / "README.txt").read_text().replace("@VERSION@", version)
    (stage / "README.txt").write_text(readme)
    shutil.copyfile(TOP / "CHANGELOG.md", stage / "CHANGELOG.txt")
    shutil.copyfile(TOP / "LICENSE", stage / "LICENSE.txt")
    libraries = pathlib.Path(cached(build, "MOSAICON_GDAL_ROOT_FOUND")) / "share" / "licences"
    licences.write_licences(libraries, stage / "licences")
    # Editors of old Windows show one long line otherwise.
    for path in [*stage.glob("*.txt"), *stage.glob("licences/*.txt"), *stage.glob("gdal2tiles/*.txt")]:
        path.write_bytes(path.read_bytes().replace(b"\r\n", b"\n").replace(b"\n", b"\r\n"))


def write_zip(archive, folder, prefix, seconds):
    """All files of a folder, in the order of their names."""
    date = time.gmtime(max(seconds, 315532800))[:6]  # the format begins in 1980
    with zipfile.ZipFile(archive, "w", zipfile.ZIP_DEFLATED, compresslevel=9) as target:
        for path in sorted(folder.rglob("*")):
            name = f"{prefix}{path.relative_to(folder).as_posix()}"
            entry = zipfile.ZipInfo(name + "/" * path.is_dir(), date)
            entry.create_system = 0
            entry.compress_type = zipfile.ZIP_DEFLATED if IS_COMPRESSED else zipfile.ZIP_STORED
            target.writestr(entry, b"" if path.is_dir() else path.read_bytes(), compresslevel=9)


def write_includes(stage, removals, checks):
    """For the setup: the removal of the files of this version, and then of folders where they are empty; and
    whether one of them is there."""
    inside = sorted(stage.rglob("*"), reverse=True)
    names = ["$INSTDIR\\" + str(each.relative_to(stage)).replace("/", "\\") for each in inside]
    lines = [f'Delete "{name}"' for name, each in zip(names, inside) if each.is_file()]
    lines += ["IfErrors 0 +2", "StrCpy $R1 1"]
    lines += [f'RMDir "{name}"' for name, each in zip(names, inside) if each.is_dir()]
    removals.write_text("\n".join(lines) + "\n")
    lines = [f'IfFileExists "{name}" Taken' for name, each in zip(names, inside) if each.is_file()]
    checks.write_text("\n".join(lines) + "\n")


def make_setup(stage, setup, work, version, seconds, certificate=None):
    write_includes(stage, work / "removals.nsh", work / "checks.nsh")
    for path in [*stage.rglob("*"), stage]:
        os.utime(path, (seconds, seconds))
    size = sum(path.stat().st_size for path in stage.rglob("*") if path.is_file())
    definitions = {
        "VERSION": version,
        "VERSION4": version + ".0",
        "SIZE": size // 1024,
        "MAKER": constant("kMakerName"),
        "WEB": constant("kMakerWebAddress"),
        "STAGE": stage,
        "FILES": work / "removals.nsh",
        "CHECKS": work / "checks.nsh",
        "ICON": TOP / "resources" / "mosaicon.ico",
        "OUTPUT": setup,
    }
    if certificate:
        # Of the uninstaller, which is made on the way.
        signer = [sys.executable, "-B", HERE / "signing.py", certificate, constant("kMakerWebAddress")]
        definitions["SIGNER"] = shlex.join(map(str, signer))
    words = [f"-D{name}={value}" for name, value in definitions.items()]
    words += [] if IS_COMPRESSED else ["-DUNCOMPRESSED"]
    environment = {**os.environ, "SOURCE_DATE_EPOCH": str(seconds)}
    run("makensis", "-V2", "-WX", *words, TOP / "packaging" / "setup.nsi", env=environment)


def main(build, target, certificate=None):
    build, target = pathlib.Path(build), pathlib.Path(target)
    version, seconds = cached(build, "CMAKE_PROJECT_VERSION"), commit_time()
    name = f"Mosaicon-{version}"
    shutil.rmtree(target, ignore_errors=True)
    work = target / "work"
    stage = work / name
    stage.mkdir(parents=True)
    lay_out(build, stage)
    separate_symbols(stage, work / "symbols", seconds)
    write_texts(build, stage, version)
    if certificate:
        for each in OURS:
            signing.sign(stage / each, certificate, constant("kMakerWebAddress"))
    made = [target / f"{name}-{kind}" for kind in ("portable.zip", "setup.exe", "symbols.zip")]
    write_zip(made[0], stage, f"{name}/", seconds)
    make_setup(stage, made[1], work, version, seconds, certificate)
    if certificate:
        signing.sign(made[1], certificate, constant("kMakerWebAddress"))
    write_zip(made[2], work / "symbols", f"{name}-symbols/", seconds)
    sums = [f"{hashlib.sha256(path.read_bytes()).hexdigest()}  {path.name}\n" for path in made]
    (target / "SHA256SUMS").write_text("".join(sums))
    shutil.rmtree(work)
    for path in made:
        print(f"{path.stat().st_size / 1e6:.1f} MB {path}")


if __name__ == "__main__":
    main(*sys.argv[1:])
