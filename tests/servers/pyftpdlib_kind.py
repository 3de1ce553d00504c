"""pyftpdlib, as servers of ftp_servers.py: that list as Unix does, or as Windows does."""

import json

from server_base import HERE, HOST, PYTHON, FtpServer


class Pyftpdlib(FtpServer):
    kind = "pyftpdlib"
    needs_root = False
    dos = False

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
        }
        return [PYTHON, "-B", str(HERE / "pyftpdlib_server.py"), json.dumps(options)]


class PyftpdlibDos(Pyftpdlib):
    kind = "pyftpdlib-dos"
    dos = True
