"""vsftpd, as a server of ftp_servers.py."""

import os
import subprocess

from server_base import HOST, INSTALLED, UMASK, FtpServer


class Vsftpd(FtpServer):
    kind = "vsftpd"
    own_options = ("anonymous", "broken")

    def command(self):
        anonymous = self.own.get("anonymous", False)
        if anonymous:
            self.user, self.password = "ftp", ""
        # Its own process for each step of a session goes there.
        empty = self.folder / "empty"
        if not self.own.get("broken"):
            empty.mkdir(exist_ok=True)
        settings = {
            "listen": "YES",
            "background": "NO",
            "listen_address": HOST,
            "listen_port": self.port,
            "secure_chroot_dir": empty,
            "nopriv_user": "nobody",
            "seccomp_sandbox": "NO",
            "write_enable": "NO" if anonymous else "YES",
            "connect_from_port_20": "NO",
            "ascii_upload_enable": "YES",
            "ascii_download_enable": "YES",
            "xferlog_enable": "NO",
            "pasv_enable": "YES" if self.passive else "NO",
            "port_enable": "YES" if self.active else "NO",
            **(self._for_anybody() if anonymous else self._for_login()),
        }
        if self.idle:
            settings["idle_session_timeout"] = self.idle
        if self.banner:
            settings["banner_file"] = self.write("banner", self.banner.rstrip("\n") + "\n")
        configuration = self.write("vsftpd.conf", "".join(f"{k}={v}\n" for k, v in settings.items()))
        start = self.program("usr", "sbin", "vsftpd")
        if not anonymous:
            start[1:1] = [
                f"LD_PRELOAD={INSTALLED / 'pam_in_folder.so'}",
                f"MOSAICON_PAM_FOLDER={self.folder / 'pam'}",
            ]
        return [*start, str(configuration)]

    def _for_anybody(self):
        # It refuses to show a folder that such a login may write into.
        if os.geteuid() == 0:
            os.chown(self.root, 0, 0)
        self.root.chmod(0o555)
        return {
            "anonymous_enable": "YES",
            "no_anon_password": "YES",
            "ftp_username": self.account.pw_name,
            "anon_root": self.root,
            "anon_world_readable_only": "NO",
        }

    def _for_login(self):
        # A database, because the server takes away the exit codes of programs that would be asked.
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
        (self.folder / "pam").mkdir(exist_ok=True)
        self.write(
            "pam/vsftpd",
            "".join(
                f"{what} required pam_userdb.so db={self.folder}/logins\n" for what in ("auth", "account")
            ),
        )
        return {
            "anonymous_enable": "NO",
            "local_enable": "YES",
            "guest_enable": "YES",
            "guest_username": self.account.pw_name,
            "virtual_use_local_privs": "YES",
            "local_root": self.root,
            "local_umask": UMASK,
            "chroot_local_user": "YES",
            "allow_writeable_chroot": "YES",
            "pam_service_name": "vsftpd",
        }
