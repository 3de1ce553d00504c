"""proftpd, as servers of ftp_servers.py: one that lists links, and one that does not."""

import subprocess

from server_base import FtpServer
from server_tools import HOST, INSTALLED, UMASK, as_root, hashed


class Proftpd(FtpServer):
    kind = "proftpd"
    own_options = ("login_text", "certificate", "connections", "full", "read_only", "reuse", "tls")
    tls_ways = ("offered", "required", "implicit")
    shows_links = True

    def command(self):
        account = self.account
        self.write(
            "users",
            f"{self.user}:{hashed(self.password)}:{account.pw_uid}:{account.pw_gid}::"
            f"{self.root}:/bin/sh\n",
            0o600,
        )
        self.write("groups", f"publishers:x:{account.pw_gid}:\n", 0o600)
        # Only root may be the owner of these.
        subprocess.run(as_root(["chown", "0:0", self.folder / "users", self.folder / "groups"]), check=True)
        lines = [
            "ServerName Mosaicon",
            "ServerType standalone",
            f"DefaultAddress {HOST}",
            "SocketBindTight on",
            f"Port {self.port}",
            "UseIPv6 off",
            f"User {account.pw_name}",
            "Group nogroup",
            "AuthOrder mod_auth_file.c",
            f'AuthUserFile "{self.folder}/users"',
            f'AuthGroupFile "{self.folder}/groups"',
            "RequireValidShell off",
            "UseFtpUsers off",
            "DefaultRoot ~",
            f"Umask {UMASK}",
            "AllowOverwrite on",
            "AllowStoreRestart on",
            "AllowRetrieveRestart on",
            f'PidFile "{self.folder}/pid"',
            f'ScoreboardFile "{self.folder}/scoreboard"',
            "DelayEngine off",
            "TransferLog none",
            "WtmpLog off",
            "UseReverseDNS off",
            f'SystemLog "{self.folder}/system-log"',
            "MaxInstances none",
        ]
        if not self.shows_links:
            lines.append("ShowSymlinks off")
        if self.idle:
            lines += [f"TimeoutIdle {self.idle}", f"TimeoutNoTransfer {self.idle}"]
        if self.banner:
            lines.append(f'DisplayConnect "{self.write("banner", self.banner)}"')
        if self.own.get("login_text"):
            lines.append("DisplayLogin /login-text")
            (self.root / "login-text").write_text(self.own["login_text"])
        if self.own.get("connections"):
            lines.append(f"MaxClientsPerUser {self.own['connections']}")
        if self.own.get("read_only"):
            lines += ["<Limit WRITE>", "DenyAll", "</Limit>"]
        if self.tls:
            lines += self._for_tls()
        refused = self.refused_commands()
        if refused:
            lines += [f"<Limit {' '.join(refused)}>", "DenyAll", "</Limit>"]
        configuration = self.write("proftpd.conf", "\n".join(lines) + "\n")
        return [*self.program("usr", "sbin", "proftpd"), "-n", "-q", "-c", str(configuration)]

    def _for_tls(self):
        made = self.tls_files()
        options = [
            *([] if self.own.get("reuse", True) else ["NoSessionReuseRequired"]),
            *(["UseImplicitSSL"] if self.tls == "implicit" else []),
        ]
        return [
            f'ModulePath "{INSTALLED}/usr/lib/proftpd"',
            "LoadModule mod_tls.c",
            "TLSEngine on",
            f"TLSRequired {'off' if self.tls == 'offered' else 'on'}",
            f'TLSECCertificateFile "{made.certificate}"',
            f'TLSECCertificateKeyFile "{made.key}"',
            f'TLSLog "{self.folder}/tls-log"',
            *(["TLSOptions " + " ".join(options)] if options else []),
        ]


class ProftpdNoLinks(Proftpd):
    kind = "proftpd-no-links"
    shows_links = False
