"""What the package says of the licences of all that is in it."""

import pathlib
import subprocess

DOCUMENTS = pathlib.Path("/usr/share/doc")

# Name, what of it is shipped, and where its licence is: of the libraries that are built from source packages,
# the text that was kept then; of the rest, that of an installed package.
PARTS = [
    ("gdal", "libgdal-32.dll, gdal_translate.exe, gdalwarp.exe, gdal-data", None),
    ("proj", "in libgdal-32.dll; share\\proj", None),
    ("sqlite3", "in libgdal-32.dll", None),
    ("libdeflate", "in libgdal-32.dll and mosaicon-tiler.exe", None),
    ("zlib", "in libgdal-32.dll", None),
    ("libzstd", "in libgdal-32.dll", None),
    ("libwebp", "in libgdal-32.dll", None),
    ("openjpeg2", "in libgdal-32.dll", None),
    ("libjpeg-turbo", "in libgdal-32.dll", None),
    ("leaflet", "in mosaicon-tiler.exe and Mosaicon.exe; beside each map page", "libjs-leaflet"),
    ("gcc", "libgcc_s_seh-1.dll, libstdc++-6.dll", "gcc-mingw-w64-base"),
    ("mingw-w64", "libwinpthread-1.dll; in all programs", "mingw-w64-common"),
    ("nsis", "the setup program and uninstall.exe", "nsis"),
]


def version_of(package):
    command = ["dpkg-query", "-W", "-f", "${Version}", package]
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def write_licences(libraries, target):
    """libraries: where those that were built keep theirs."""
    target.mkdir()
    lines = [
        "What is in this folder beside Mosaicon itself, and under which licence. Each has a file here.",
        "",
    ]
    for name, where, package in PARTS:
        if package is None:
            text = (libraries / f"{name}.txt").read_bytes()
            version = (libraries / f"{name}.version").read_text().strip()
        else:
            text, version = (DOCUMENTS / package / "copyright").read_bytes(), version_of(package)
        (target / f"{name}.txt").write_bytes(text)
        lines.append(f"{name} {version}: {where}")
    (target / "LIST.txt").write_text("\n".join(lines) + "\n")
