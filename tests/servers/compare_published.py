#!/usr/bin/env python3
"""Runs a command that publishes a folder, and compares with the folder what the web server then shows.

    compare_published.py FOLDER COMMAND [ARGUMENT...]

It works beside the servers of with_ftp_server.py --web. The exit code is the command's, or 1 when a file is
missing or differs; what is there beside the files of the folder is not looked at."""

import os
import pathlib
import subprocess
import sys
import urllib.error
import urllib.parse
import urllib.request

PATIENCE = 180  # seconds until the server counts as hung


def fetch(address):
    """None when there is nothing."""
    try:
        with urllib.request.urlopen(address, timeout=PATIENCE) as answer:
            return answer.read()
    except urllib.error.HTTPError:
        return None


def main():
    folder = pathlib.Path(sys.argv[1])
    code = subprocess.run(sys.argv[2:], check=False).returncode
    if code != 0:
        return code
    address = f"{os.environ['MOSAICON_WEB_URL']}/{urllib.parse.quote(folder.name)}"
    files = sorted(path for path in folder.rglob("*") if path.is_file())
    wrong = [
        str(path)
        for path in files
        if fetch(f"{address}/{urllib.parse.quote(path.relative_to(folder).as_posix())}") != path.read_bytes()
    ]
    if wrong or not files:
        print(
            f"compare_published.py: not published as it is in {folder}: {wrong or 'anything'}",
            file=sys.stderr,
        )
        return 1
    print(
        f"== all {len(files)} files were published, byte for byte, into {os.environ['MOSAICON_FTP_ROOT']}/"
        f"{folder.name};\n   while the servers ran they could be seen under {address}/leaflet.html",
        flush=True,
    )
    return 0


if __name__ == "__main__":
    sys.exit(main())
