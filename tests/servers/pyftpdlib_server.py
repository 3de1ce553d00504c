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


def main(options):
    logging.basicConfig(level=logging.WARNING)
    if os.geteuid() == 0:
        os.setgroups([])
        os.setgid(options["gid"])
        os.setuid(options["uid"])
    os.umask(0o022)
    authorizer = DummyAuthorizer()
    authorizer.add_user(options["user"], options["password"], options["root"], perm="elradfmwMT")

    LimitedFile.limit = options["file_limit"]

    class Handler(FTPHandler):
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
        name: value for name, value in FTPHandler.proto_cmds.items() if name not in options["refused"]
    }
    MultiprocessFTPServer((options["host"], options["port"]), Handler).serve_forever()


if __name__ == "__main__":
    main(json.loads(sys.argv[1]))
