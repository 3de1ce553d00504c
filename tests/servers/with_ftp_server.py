#!/usr/bin/env python3
"""Runs a command beside an FTP server of its own, which ends with it. The exit code is the command's.

    with_ftp_server.py KIND [OPTION...] -- COMMAND [ARGUMENT...]

KIND and the options are those of ftp_servers.py; a list has commas, as in --host-keys ed25519,rsa. The
command finds the server by MOSAICON_FTP_HOST, MOSAICON_FTP_PORT, MOSAICON_FTP_USER, MOSAICON_FTP_PASSWORD
and MOSAICON_FTP_ROOT, the folder that the login sees as "/", and by the variables that ftp_servers.py names
with the options. The command has a umask of 0, so that the server may change what it puts there, unless
there is --keep-umask.

With --round-trip SECONDS, the way to the server is that long: a SlowRelay of slow_relay.py is in between.
With --web, a web server shows the same folder under MOSAICON_WEB_URL. With --tell, all that somebody needs
who works by hand is printed.
"""

import argparse
import contextlib
import os
import pathlib
import subprocess
import sys

from ftp_servers import CLASSES
from slow_relay import SlowRelay

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "support"))
from web_server import WebServer, files_in  # noqa: E402


def words(text):
    return text.split(",")


def options_from(arguments):
    parser = argparse.ArgumentParser(usage=__doc__)
    parser.add_argument("kind", choices=CLASSES)
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
    parser.add_argument("--tls")
    parser.add_argument("--certificate")
    parser.add_argument("--no-reuse", dest="reuse", action="store_false", default=None)
    parser.add_argument("--connections", type=int)
    parser.add_argument("--read-only", action="store_true", default=None)
    parser.add_argument("--full", type=int)
    parser.add_argument("--host-keys", type=words)
    parser.add_argument("--logins", type=words)
    parser.add_argument("--key")
    parser.add_argument("--key-format")
    parser.add_argument("--no-chroot", dest="chroot", action="store_false", default=None)
    parser.add_argument("--round-trip", type=float)
    parser.add_argument("--web", action="store_true", default=None)
    parser.add_argument("--tell", action="store_true", default=None)
    parser.add_argument("--keep-umask", action="store_true", default=None)
    given = vars(parser.parse_args(arguments))
    return {name: value for name, value in given.items() if value is not None}


def tell(server, web):
    print(
        f"== an FTP server is running until the program ends:\n"
        f"     Host Address  {server.host}:{server.port}\n"
        f"     Username      {server.user}\n"
        f"     Password      {server.password}\n"
        f"     (it keeps its files in {server.root})",
        flush=True,
    )
    if web:
        print(f"== what is published there can be seen under {web}/", flush=True)


def main():
    if "--" not in sys.argv:
        sys.exit(__doc__)
    end = sys.argv.index("--")
    options = options_from(sys.argv[1:end])
    wants_web, wants_to_know, keeps_umask, round_trip = (
        options.pop(name, False) for name in ("web", "tell", "keep_umask", "round_trip")
    )
    with contextlib.ExitStack() as stack:
        server = stack.enter_context(CLASSES[options.pop("kind")](**options))
        if round_trip:
            server.reached_by(stack.enter_context(SlowRelay(server.port, round_trip)).port)
        environment = {**os.environ, **server.environment()}
        web = stack.enter_context(WebServer(files_in(server.root))).url if wants_web else ""
        if web:
            environment["MOSAICON_WEB_URL"] = web
        if wants_to_know:
            tell(server, web)
        if not keeps_umask:
            os.umask(0)
        command = subprocess.run(sys.argv[end + 1 :], env=environment, check=False)
    return command.returncode


if __name__ == "__main__":
    sys.exit(main())
