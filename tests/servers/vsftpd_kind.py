"""vsftpd, as a server of ftp_servers.py."""

import os

from server_base import FtpServer
from server_tools import HOST, UMASK


class Vsftpd(FtpServer):
    kind = "vsftpd"
    own_options = (
        "anonymous",
        "broken",
        "certificate",
        "connections",
        "full",
        "read_only",
        "reuse",
        "tls",
    )
    tls_ways = ("offered", "required", "implicit")

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
            "write_enable": "NO" if anonymous or self.own.get("read_only") else "YES",
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
        if self.own.get("connections"):
            settings["max_per_ip"] = self.own["connections"]
        if self.tls:
            settings.update(self._for_tls())
        if self.banner:
            settings["banner_file"] = self.write("banner", self.banner.rstrip("\n") + "\n")
        configuration = self.write("vsftpd.conf", "".join(f"{k}={v}\n" for k, v in settings.items()))
        rules = {} if anonymous else {"MOSAICON_PAM_FOLDER": self.pam}
        return [*self.program("usr", "sbin", "vsftpd", **rules), str(configuration)]

    def _for_tls(self):
        made = self.tls_files()
        forced = "NO" if self.tls == "offered" else "YES"
        return {
            "ssl_enable": "YES",
            "implicit_ssl": "YES" if self.tls == "implicit" else "NO",
            "force_local_logins_ssl": forced,
            "force_local_data_ssl": forced,
            "allow_anon_ssl": "YES",
            "force_anon_logins_ssl": forced,
            "force_anon_data_ssl": forced,
            "require_ssl_reuse": "YES" if self.own.get("reuse", True) else "NO",
            # Takes a key of any kind, but its own choice of ciphers is for RSA.
            "rsa_cert_file": made.certificate,
            "rsa_private_key_file": made.key,
            "ssl_ciphers": "HIGH",
        }

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
        self.write_rules("vsftpd", "auth", "account")
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
