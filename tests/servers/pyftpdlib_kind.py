"""pyftpdlib, as servers of ftp_servers.py: that list as Unix does, or as Windows does."""

import json

from server_base import FtpServer
from server_tools import HERE, HOST, INSTALLED, PYTHON, with_variables


class Pyftpdlib(FtpServer):
    kind = "pyftpdlib"
    needs_root = False
    dos = False
    own_options = ("certificate", "connections", "full", "read_only", "tls")
    tls_ways = ("offered", "required", "implicit")

    def command(self):
        options = {
            "host": HOST,
            "port": self.port,
            "user": self.user,
            "password": self.password,
            "root": str(self.root),
            "idle": self.idle,
            "file_limit": self.file_limit,
            "banner": self.banner,
            "dos": self.dos,
            "refused": self.refused_commands(),
            "uid": self.account.pw_uid,
            "gid": self.account.pw_gid,
            "connections": self.own.get("connections"),
            "read_only": self.own.get("read_only", False),
            "tls": self.tls,
            "certificate": str(self.tls_files().both) if self.tls else None,
        }
        # It comes with no library for TLS.
        variables = with_variables(PYTHONPATH=INSTALLED / "usr/lib/python3/dist-packages", **self.preloaded())
        return [*variables, PYTHON, "-B", str(HERE / "pyftpdlib_server.py"), json.dumps(options)]


class PyftpdlibDos(Pyftpdlib):
    kind = "pyftpdlib-dos"
    dos = True
