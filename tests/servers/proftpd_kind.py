"""proftpd, as servers of ftp_servers.py: one that lists links, and one that does not."""

import subprocess

from server_base import HOST, UMASK, FtpServer, as_root, hashed


class Proftpd(FtpServer):
    kind = "proftpd"
    own_options = ("login_text",)
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
        refused = self.refused_commands()
        if refused:
            lines += [f"<Limit {' '.join(refused)}>", "DenyAll", "</Limit>"]
        configuration = self.write("proftpd.conf", "\n".join(lines) + "\n")
        return [*self.program("usr", "sbin", "proftpd"), "-n", "-q", "-c", str(configuration)]


class ProftpdNoLinks(Proftpd):
    kind = "proftpd-no-links"
    shows_links = False
