"""What a server of ftp_servers.py puts together its command line and its folder from."""

import os
import struct
import subprocess

import certificates
from server_tools import INSTALLED, program


class Parts:
    """Of server_base.FtpServer, which says what it has."""

    _certificates = None

    def refused_commands(self):
        return [
            *([] if self.passive else ["PASV", "EPSV"]),
            *([] if self.active else ["PORT", "EPRT"]),
        ]

    def write(self, name, text, mode=0o644):
        path = self.folder / name
        path.write_text(text)
        path.chmod(mode)
        return path

    def program(self, *parts, **variables):
        """The start of a command line, see server_tools."""
        return program(*parts, **self.preloaded(**variables))

    def preloaded(self, **variables):
        """The variables for pam_in_folder.c, and what brings it in where there are any."""
        if self.own.get("full") is not None:
            room = self.folder / "room"
            room.write_bytes(struct.pack("=q", self.own["full"]))
            self.give(room)
            variables["MOSAICON_ROOM"] = room
        return {"LD_PRELOAD": INSTALLED / "pam_in_folder.so", **variables} if variables else {}

    def tls_files(self):
        """Once made, also told to who uses the server."""
        if self._certificates is None:
            made = certificates.make(self.folder / "certificates", self.own.get("certificate"))
            self.give(made.key, made.both)
            self.told["MOSAICON_FTP_CA"] = str(made.authority)
            self._certificates = made
        return self._certificates

    @property
    def pam(self):
        return self.folder / "pam"

    def write_rules(self, service, *stacks, **others):
        """Rules for logins by PAM, with the user's name and password, for MOSAICON_PAM_FOLDER."""
        # A database, because the servers take away the exit codes of programs that would be asked.
        subprocess.run(
            [
                "/usr/bin/perl",
                "-MDB_File",
                "-e",
                "tie(%h, 'DB_File', $ARGV[0], O_CREAT|O_RDWR, 0600, $DB_HASH);" "$h{$ARGV[1]} = $ARGV[2]",
                str(self.folder / "logins.db"),
                self.user,
                self.password,
            ],
            check=True,
        )
        self.pam.mkdir(exist_ok=True)
        rules = [f"{stack} required pam_userdb.so db={self.folder}/logins\n" for stack in stacks]
        rules += [f"{stack} required {module}\n" for stack, module in others.items()]
        self.write(f"pam/{service}", "".join(rules))

    def give(self, *paths):
        """Makes files the account's."""
        for path in paths if os.geteuid() == 0 else ():
            os.chown(path, self.account.pw_uid, self.account.pw_gid)

    def make_room(self, size):
        """The disk that option "full" speaks of is full after this many more bytes."""
        with open(self.folder / "room", "r+b") as room:
            room.write(struct.pack("=q", size))
