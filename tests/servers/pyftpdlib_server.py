#!/usr/bin/env python3
"""The FTP server of python3-pyftpdlib, as a program: pyftpdlib_server.py OPTIONS, which are JSON (see
ftp_servers.py). Each session has a process of its own."""

import errno
import io
import json
import logging
import os
import sys
import time

from pyftpdlib.authorizers import DummyAuthorizer
from pyftpdlib.filesystems import AbstractedFS
from pyftpdlib.handlers import FTPHandler
from pyftpdlib.servers import MultiprocessFTPServer


class LimitedFile(io.FileIO):
    limit = None

    def write(self, data):
        if self.limit and self.tell() + len(data) > self.limit:
            raise OSError(errno.ENOSPC, os.strerror(errno.ENOSPC))
        return super().write(data)


class LimitedFiles(AbstractedFS):
    def open(self, filename, mode):
        return LimitedFile(filename, mode)


class DosListing(LimitedFiles):
    """Lists as servers on Windows do."""

    def format_list(self, basedir, listing, ignore_err=True):
        for name in listing:
            path = os.path.join(basedir, name)
            # A link that leads nowhere is there, too.
            status = self.stat(path) if os.path.exists(path) else self.lstat(path)
            date = time.strftime("%m-%d-%y  %I:%M%p", time.localtime(status.st_mtime))
            is_folder = self.isdir(path)
            size = f"{'<DIR>':<20}" if is_folder else f"{status.st_size:>20}"
            yield f"{date} {size} {name}\r\n".encode("utf-8", self.cmd_channel.unicode_errors)


class LimitedServer(MultiprocessFTPServer):
    """Refuses sessions when there are too many. Its base class counts in each session's process alone."""

    connections = None
    refresh_interval = 0.1

    def _accept_new_cons(self):
        if not self.connections:
            return super()._accept_new_cons()
        self._refresh_tasks()
        return len(self._active_tasks) < self.connections


def base_handler(options):
    if not options["tls"]:
        return FTPHandler
    # It is there only where pyftpdlib finds a library for TLS.
    from pyftpdlib.handlers import TLS_DTPHandler, TLS_FTPHandler

    class Data(TLS_DTPHandler):
        def readable(self):
            # Some clients, curl for one, begin with TLS before they send the command, and its own opinion
            # is that they have closed the connection then.
            return self._ssl_accepting or super().readable()

    class Explicit(TLS_FTPHandler):
        dtp_handler = Data
        certfile = options["certificate"]
        tls_control_required = tls_data_required = options["tls"] != "offered"

    return Explicit


def with_implicit_tls(base):
    class Implicit(base):
        def handle(self):
            self.secure_connection(self.ssl_context)

        def handle_ssl_established(self):
            super().handle()

    return Implicit


def main(options):
    logging.basicConfig(level=logging.WARNING)
    if os.geteuid() == 0:
        os.setgroups([])
        os.setgid(options["gid"])
        os.setuid(options["uid"])
    os.umask(0o022)
    authorizer = DummyAuthorizer()
    authorizer.add_user(
        options["user"],
        options["password"],
        options["root"],
        perm="elr" if options["read_only"] else "elradfmwMT",
    )

    LimitedFile.limit = options["file_limit"]

    base = base_handler(options)

    class Handler(base):
        def handle(self):
            *first, _ = options["banner"].splitlines() if options["banner"] else [""]
            for line in first:
                self.push(f"220-{line}\r\n")
            super().handle()

    Handler.authorizer = authorizer
    Handler.abstracted_fs = DosListing if options["dos"] else LimitedFiles
    Handler.timeout = options["idle"] or 300
    if options["banner"]:
        Handler.banner = options["banner"].splitlines()[-1]
    Handler.proto_cmds = {
        name: value for name, value in base.proto_cmds.items() if name not in options["refused"]
    }
    if options["tls"] == "implicit":
        Handler = with_implicit_tls(Handler)
    LimitedServer.connections = options["connections"]
    server = LimitedServer((options["host"], options["port"]), Handler)
    # How often it looks after its sessions.
    server.serve_forever(timeout=LimitedServer.refresh_interval)


if __name__ == "__main__":
    main(json.loads(sys.argv[1]))
