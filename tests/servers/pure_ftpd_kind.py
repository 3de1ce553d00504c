"""pure-ftpd, as a server of ftp_servers.py."""

import subprocess

from server_base import FtpServer
from server_tools import HOST, UMASK, hashed, program


class PureFtpd(FtpServer):
    kind = "pure-ftpd"
    can_refuse = ("passive",)
    own_options = ("certificate", "connections", "full", "tls")
    tls_ways = ("offered", "required")

    def command(self):
        if self.banner:
            raise ValueError("the greeting of pure-ftpd is its own")
        users = self.write(
            "users",
            f"{self.user}:{hashed(self.password)}:{self.account.pw_uid}:"
            f"{self.account.pw_gid}::{self.root}/./::::::::::::\n",
            0o600,
        )
        database = self.folder / "users.pdb"
        subprocess.run(
            [*program("usr", "bin", "pure-pw"), "mkdb", str(database), "-f", str(users)], check=True
        )
        options = [
            "-S",
            f"{HOST},{self.port}",
            "-l",
            f"puredb:{database}",
            "-E",
            "-A",
            "-H",
            "-z",
            "-u",
            "1",
            "-U",
            f"133:{UMASK}",
            "-C",
            str(self.own.get("connections") or 50),
            "-c",
            "50",
            "-g",
            f"{self.folder}/pid",
        ]
        if self.idle:
            options += ["-I", str((self.idle + 59) // 60)]
        if self.tls:
            # 3: for data, too.
            options += ["-Y", "1" if self.tls == "offered" else "3", "-2", str(self.tls_files().both)]
        if not self.passive:
            options.append("-N")
        return [*self.program("usr", "sbin", "pure-ftpd"), *options]
