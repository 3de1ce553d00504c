"""OpenSSH's server for SFTP, as a server of ftp_servers.py.

It works as the account from its start, so that it needs neither the machine's rights nor its accounts:
pam_in_folder.c tells it of one account more, with its password, so that PAM is asked only where a dialogue
is wanted. Of root's rights it keeps one, where it can be had, for showing the folder as "/"."""

import os
import pathlib
import secrets
import shutil
import subprocess

from server_base import FtpServer
from server_tools import HOST, INSTALLED, UMASK, hashed, program, with_variables

HOST_KEYS = ("ed25519", "ecdsa", "rsa")
RSA_BITS = "2048"  # half a second less than the default
LOGINS = {
    "password": "PasswordAuthentication",
    "key": "PubkeyAuthentication",
    "keyboard-interactive": "KbdInteractiveAuthentication",
}
CAP_SYS_CHROOT = 18


def may_change_root():
    for line in pathlib.Path("/proc/self/status").read_text().splitlines():
        if line.startswith("CapEff:"):
            return bool(int(line.split()[1], 16) >> CAP_SYS_CHROOT & 1)
    return False


def keygen(*arguments):
    bits = ("-b", RSA_BITS) if "rsa" in arguments else ()
    return subprocess.Popen(
        [*program("usr", "bin", "ssh-keygen"), "-q", "-C", "", *bits, *arguments],
        stdin=subprocess.DEVNULL,
        stdout=subprocess.DEVNULL,
        stderr=subprocess.PIPE,
        text=True,
    )


def wait_for(processes):
    for process in processes:
        _, said = process.communicate()
        if process.returncode != 0:
            raise RuntimeError(f"ssh-keygen: {said}")


class Openssh(FtpServer):
    kind = "openssh"
    needs_root = False
    can_refuse = ()
    own_options = ("chroot", "full", "host_keys", "key", "key_format", "logins", "read_only")

    def command(self):
        if not self.told:
            self._make_keys()
        chroot = self.own.get("chroot", True) and os.geteuid() == 0 and may_change_root()
        self.told["MOSAICON_SSH_FOLDER"] = "/" if chroot else str(self.root)
        self._tell_known_hosts()
        if self._asks_pam():
            self.write_rules("sshd", "auth", "account", session="pam_permit.so")
            self.give(self.folder / "logins.db")
        account = self.account
        sshd = self.own_program(
            MOSAICON_LOGIN=f"{self.user}:{hashed(self.password)}:{account.pw_uid}:{account.pw_gid}::"
            f"{self.root}:/bin/sh",
            **({"MOSAICON_ROOT": self.root} if chroot else {}),
            **({"MOSAICON_PAM_FOLDER": self.pam} if self._asks_pam() else {}),
        )
        rights = ("--inh-caps=+sys_chroot", "--ambient-caps=+sys_chroot") if chroot else ()
        become = ["setpriv", f"--reuid={account.pw_uid}", f"--regid={account.pw_gid}", "--clear-groups"]
        return [
            *([*become, *rights] if os.geteuid() == 0 else []),
            *sshd,
            *("-D", "-e", "-f", str(self.write("sshd_config", "\n".join(self._configuration()) + "\n"))),
        ]

    def own_program(self, **variables):
        """The server in its own folder, with its libraries: the account may not get into the home folder
        that they were unpacked in."""
        place = self.folder / "sshd"
        if not place.exists():
            place.mkdir()
            preloaded = INSTALLED / "pam_in_folder.so"
            libraries = INSTALLED.glob("usr/lib/x86_64-linux-gnu/lib*.so.*")
            for path in (INSTALLED / "usr" / "sbin" / "sshd", preloaded, *libraries):
                shutil.copy(path, place / path.name)
        variables = self.preloaded(**variables)
        if "LD_PRELOAD" in variables:
            variables["LD_PRELOAD"] = place / "pam_in_folder.so"
        return [*with_variables(LD_LIBRARY_PATH=str(place), **variables), str(place / "sshd")]

    def _configuration(self):
        server = f"internal-sftp -u {UMASK}{' -R' if self.own.get('read_only') else ''}"
        yield f"ListenAddress {HOST}:{self.port}"
        yield from (f"HostKey {self._host_key(kind)}" for kind in self._host_keys())
        for login, name in LOGINS.items():
            yield f"{name} {'yes' if login in self._logins() else 'no'}"
        yield f"UsePAM {'yes' if self._asks_pam() else 'no'}"
        yield from (
            "PidFile none",
            f"AllowUsers {self.user}",
            f"AuthorizedKeysFile {self.folder}/user-key.pub",
            # The folder's owner is somebody else.
            "StrictModes no",
            f"Subsystem sftp {server}",
            f"ForceCommand {server}",
            "DisableForwarding yes",
            "PermitTTY no",
            "PrintMotd no",
            "UseDNS no",
            # Connections that come together do not hinder each other.
            "MaxStartups 200",
        )
        if self.idle:
            yield f"ChannelTimeout session:*={self.idle}"
            yield f"UnusedConnectionTimeout {self.idle}"
        if self.banner:
            yield f"Banner {self.write('banner', self.banner)}"

    def _logins(self):
        return self.own.get("logins") or ("password", "key")

    def _asks_pam(self):
        return "keyboard-interactive" in self._logins()

    # Keys

    def _host_keys(self):
        return self.own.get("host_keys") or HOST_KEYS

    def _host_key(self, kind):
        return self.folder / f"host-key-{kind}"

    def _make_keys(self):
        """Keys of the server, and one of its user's: as it is, and the same with a passphrase."""
        key, locked = self.folder / "user-key", self.folder / "locked-key"
        form = ("-m", self.own["key_format"]) if self.own.get("key_format") else ()
        started = [keygen("-t", kind, "-N", "", "-f", self._host_key(kind)) for kind in self._host_keys()]
        started.append(keygen(*form, "-t", self.own.get("key", "ed25519"), "-N", "", "-f", key))
        wait_for(started)
        for end in ("", ".pub"):
            shutil.copy(f"{key}{end}", f"{locked}{end}")
        passphrase = secrets.token_hex(8)
        wait_for([keygen(*form, "-p", "-P", "", "-N", passphrase, "-f", locked)])
        # The server refuses keys of its own that others may read.
        self.give(*map(self._host_key, self._host_keys()))
        self.told.update(
            MOSAICON_SSH_KEY=str(key),
            MOSAICON_SSH_LOCKED_KEY=str(locked),
            MOSAICON_SSH_KEY_PASSPHRASE=passphrase,
        )

    def reached_by(self, port):
        super().reached_by(port)
        self._tell_known_hosts()

    def _tell_known_hosts(self):
        keys = (pathlib.Path(f"{self._host_key(kind)}.pub").read_text() for kind in self._host_keys())
        hosts = self.write("known-hosts", "".join(f"[{HOST}]:{self.port} {key}" for key in keys))
        self.told["MOSAICON_SSH_KNOWN_HOSTS"] = str(hosts)
