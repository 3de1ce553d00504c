"""Clients for the tests of the servers: Python's for FTP, also with TLS, and OpenSSH's for SFTP."""

import ftplib
import os
import pathlib
import ssl
import subprocess

from server_tools import INSTALLED, program

PATIENCE = 120


class Ftp(ftplib.FTP_TLS):
    """A connection to a server of ftp_servers.py, with TLS if that is wanted. Data connections go on with
    the session of the first one, as some servers want it, unless there is to be no reuse."""

    _sock = None

    def __init__(self, server, tls=False, reuse=True, name=None):
        self.trust = ssl.create_default_context(cafile=server.environment().get("MOSAICON_FTP_CA"))
        self.implicit = server.tls == "implicit"
        self.reuse = reuse
        super().__init__(context=self.trust, timeout=PATIENCE)
        try:
            self.connect(name or server.host, server.port)
            if tls and not self.implicit:
                self.auth()
            self.login(server.user, server.password, secure=False)
            if tls:
                self.prot_p()
        except BaseException:
            self.close()
            raise

    def __exit__(self, *_):
        # After a failure nobody knows what the server will say.
        self.close()

    @property
    def sock(self):
        return self._sock

    @sock.setter
    def sock(self, sock):
        # Where connect() puts it, before it reads the greeting.
        if self.implicit and sock is not None and not isinstance(sock, ssl.SSLSocket):
            sock = self.trust.wrap_socket(sock, server_hostname=self.host)
        self._sock = sock

    def ntransfercmd(self, cmd, rest=None):
        connection, size = ftplib.FTP.ntransfercmd(self, cmd, rest)
        if self._prot_p:
            session = self.sock.session if self.reuse else None
            connection = self.trust.wrap_socket(connection, server_hostname=self.host, session=session)
        return connection, size


def sftp(server, commands, login="key", secret="", key=None, known_hosts=None):
    """OpenSSH's client, which gives up with the first command that fails."""
    told = server.environment()
    answer = server.folder / "answer"
    answer.write_text(f"#!/bin/sh\necho '{secret}'\n")
    answer.chmod(0o700)
    options = {
        "UserKnownHostsFile": known_hosts or told["MOSAICON_SSH_KNOWN_HOSTS"],
        "GlobalKnownHostsFile": "none",
        "StrictHostKeyChecking": "yes",
        "PreferredAuthentications": "publickey" if login == "key" else login,
        "IdentitiesOnly": "yes",
        "IdentityFile": key or told["MOSAICON_SSH_KEY"],
        "IdentityAgent": "none",
        "NumberOfPasswordPrompts": "1",
        "BatchMode": "no",
        "LogLevel": "ERROR",
    }
    return subprocess.run(
        [
            *program("usr", "bin", "sftp"),
            *("-F", "none", "-S", str(INSTALLED / "usr/bin/ssh"), "-P", str(server.port)),
            *(f"-o{name}={value}" for name, value in options.items()),
            *("-b", "-", f"{server.user}@{server.host}"),
        ],
        input=commands,
        env={**os.environ, "SSH_ASKPASS": str(answer), "SSH_ASKPASS_REQUIRE": "force"},
        text=True,
        capture_output=True,
        timeout=PATIENCE,
        check=False,
    )


def put(server, path, content, **login):
    """Sends a file by SFTP; returns what went wrong."""
    source = pathlib.Path(server.folder, "source")
    source.write_bytes(content)
    run = sftp(server, f"put {source} {path}\n", **login)
    return run.stderr if run.returncode else ""
