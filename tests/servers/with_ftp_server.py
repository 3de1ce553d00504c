#!/usr/bin/env python3
"""Runs a command beside an FTP server of its own, which ends with it. The exit code is the command's.

    with_ftp_server.py KIND [OPTION...] -- COMMAND [ARGUMENT...]

KIND and the options are those of ftp_servers.py. The command finds the server by MOSAICON_FTP_HOST,
MOSAICON_FTP_PORT, MOSAICON_FTP_USER, MOSAICON_FTP_PASSWORD and MOSAICON_FTP_ROOT, the folder that the
login sees as "/". The command has a umask of 0, so that the server may change what it puts there.
"""

import argparse
import os
import subprocess
import sys

from ftp_servers import CLASSES, KINDS


def options_from(arguments):
    parser = argparse.ArgumentParser(usage=__doc__)
    parser.add_argument("kind", choices=KINDS)
    parser.add_argument("--root")
    parser.add_argument("--user")
    parser.add_argument("--password")
    parser.add_argument("--idle", type=int)
    parser.add_argument("--file-limit", type=int)
    parser.add_argument("--banner")
    parser.add_argument("--no-passive", dest="passive", action="store_false", default=None)
    parser.add_argument("--no-active", dest="active", action="store_false", default=None)
    parser.add_argument("--anonymous", action="store_true", default=None)
    parser.add_argument("--broken", action="store_true", default=None)
    given = vars(parser.parse_args(arguments))
    return {name: value for name, value in given.items() if value is not None}


def main():
    if "--" not in sys.argv:
        sys.exit(__doc__)
    end = sys.argv.index("--")
    options = options_from(sys.argv[1:end])
    with CLASSES[options.pop("kind")](**options) as server:
        os.umask(0)
        command = subprocess.run(sys.argv[end + 1:], env={**os.environ, **server.environment()}, check=False)
    return command.returncode


if __name__ == "__main__":
    sys.exit(main())
