"""Real FTP servers for tests: ordinary processes on 127.0.0.1 and free ports, which leave the system's
configuration alone and end with the test, however it ends.

    with start("vsftpd") as server:
        ...  # server.host, server.port, server.user, server.password, server.root

KINDS names them: vsftpd, proftpd, pure-ftpd, pyftpdlib, and two that do not tell links from what they
point to: proftpd-no-links, and pyftpdlib-dos, which lists as servers on Windows do. Options of start(), as
far as the kind knows them (others raise ValueError):

    root        the folder that the login sees as "/"; otherwise a fresh one that goes with the server
    user, password
    idle        seconds without a command until a session ends; pure-ftpd counts in whole minutes
    file_limit  bytes beyond which no file grows: the server is told so as it is told of a full disk;
                it needs some 100 kB for itself
    passive, active   False: PASV or PORT is refused
    banner      text of the greeting, may have several lines
    anonymous   vsftpd: the login is "ftp", without a password, and may only read
    broken      vsftpd: every session fails at once, with "500 OOPS"
    login_text  proftpd: what it says after the login, may have several lines

The login may read and write everything below root. Where the test is root, the server works as daemon,
whom folders of root's do not obey: call adopt() after putting something there, or create it with a umask
of 0. Everything that the server makes can be read by all.

scripts/set-up.sh installs the servers. All but pyftpdlib have to be started by root: where the test is
not, sudo is used, which must not ask for a password.
"""

import getpass
import json
import os
import pathlib
import pwd
import secrets
import shutil
import socket
import subprocess
import tempfile
import time

HERE = pathlib.Path(__file__).resolve().parent
CACHE = pathlib.Path(os.environ.get("XDG_CACHE_HOME") or pathlib.Path.home() / ".cache") / "mosaicon"
INSTALLED = CACHE / "ftp-servers"
HOST = "127.0.0.1"
PATIENCE = 180  # seconds until a server counts as hung
# Some disks need ten seconds and more to remove ten thousand files.
REMOVAL_PATIENCE = 600
TRIES = 5  # another program may take the port that was free
UMASK = "022"
PYTHON = "/usr/bin/python3"  # has what is installed as packages


def as_root(command):
    return command if os.geteuid() == 0 else ["sudo", "-n", *command]


def free_port():
    with socket.socket() as probe:
        probe.bind((HOST, 0))
        return probe.getsockname()[1]


def hashed(password):
    run = subprocess.run(
        ["openssl", "passwd", "-6", "-stdin"], input=password, text=True, check=True, capture_output=True
    )
    return run.stdout.strip()


class FtpServer:
    """One server; a context manager. kind and the options that are not for all are of the subclasses."""

    kind = ""
    needs_root = True
    can_refuse = ("passive", "active")
    own_options = ()

    def __init__(
        self,
        root=None,
        user="publisher",
        password=None,
        idle=None,
        file_limit=None,
        passive=True,
        active=True,
        banner=None,
        **own,
    ):
        for name, allowed in (("passive", passive), ("active", active)):
            if not allowed and name not in self.can_refuse:
                raise ValueError(f"{self.kind} cannot refuse {name} transfers")
        for name in own:
            if name not in self.own_options:
                raise ValueError(f"{self.kind} has no option {name}")
        self.host = HOST
        self.port = 0
        self.user = user
        self.password = password or secrets.token_hex(8)
        self.idle = idle
        self.file_limit = file_limit
        self.passive = passive
        self.active = active
        self.banner = banner
        self.own = own
        self.root = pathlib.Path(root).resolve() if root else None
        # vsftpd wants an account whose home exists.
        self.account = pwd.getpwnam("daemon" if os.geteuid() == 0 else getpass.getuser())
        self.folder = None  # what the server needs, and its log
        self._keeper = None

    def __enter__(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="mosaicon-ftp-")).resolve()
        try:
            self.folder.chmod(0o755)
            if self.root is None:
                self.root = self.folder / "root"
                self.root.mkdir()
            self.adopt()
            self._start()
        except BaseException:
            self.close()
            raise
        return self

    def __exit__(self, *_):
        self.close()

    def close(self):
        """The server ends, with all its sessions, and what was temporary goes."""
        if self._keeper is not None:
            self._keeper.communicate(timeout=REMOVAL_PATIENCE)
            self._keeper = None
        if self.folder is not None and self.folder.exists():
            subprocess.run(as_root(["rm", "-rf", str(self.folder)]), check=True)
        self.folder = None

    def adopt(self):
        """What lies below root becomes the server's, to change and to remove."""
        if os.geteuid() == 0:
            shutil.chown(self.root, self.account.pw_uid, self.account.pw_gid)
            for folder, folders, files in os.walk(self.root):
                for name in folders + files:
                    os.lchown(os.path.join(folder, name), self.account.pw_uid, self.account.pw_gid)

    def end_sessions(self):
        """Kills the processes of all sessions, so that their connections break. Returns how many."""
        self._keeper.stdin.write("end sessions\n")
        self._keeper.stdin.flush()
        return int(self._keeper.stdout.readline())

    def environment(self):
        return {
            "MOSAICON_FTP_HOST": self.host,
            "MOSAICON_FTP_PORT": str(self.port),
            "MOSAICON_FTP_USER": self.user,
            "MOSAICON_FTP_PASSWORD": self.password,
            "MOSAICON_FTP_ROOT": str(self.root),
        }

    def log(self):
        path = self.folder / "log"
        return path.read_text(errors="replace") if path.exists() else ""

    # Starting

    def _start(self):
        for _ in range(TRIES):
            self.port = free_port()
            if self._start_on_port():
                return
        raise RuntimeError(f"{self.kind} does not start: {self.log()}")

    def _start_on_port(self):
        limit = [] if self.file_limit is None else ["prlimit", f"--fsize={self.file_limit}"]
        command = [PYTHON, "-B", str(HERE / "keeper.py"), str(self.folder), *limit, *self.command()]
        with open(self.folder / "log", "a", encoding="utf-8") as log:
            self._keeper = subprocess.Popen(
                as_root(command) if self.needs_root else command,
                text=True,
                stdin=subprocess.PIPE,
                stdout=subprocess.PIPE,
                stderr=log,
                start_new_session=True,
            )
        deadline = time.monotonic() + PATIENCE
        while self._keeper.poll() is None:
            if self._answers():
                return True
            if time.monotonic() > deadline:
                raise RuntimeError(f"{self.kind} does not answer: {self.log()}")
            time.sleep(0.02)
        self._keeper.communicate(timeout=PATIENCE)
        self._keeper = None
        return False

    def _answers(self):
        try:
            with socket.create_connection((HOST, self.port), timeout=PATIENCE) as connection:
                return connection.recv(1) != b""
        except OSError:
            return False

    def command(self):
        raise NotImplementedError

    def write(self, name, text, mode=0o644):
        path = self.folder / name
        path.write_text(text)
        path.chmod(mode)
        return path

    def program(self, *parts):
        """The start of a command line: an unpacked program with the libraries that came with it."""
        path = INSTALLED.joinpath(*parts)
        if not path.exists():
            raise RuntimeError(f"{path} is missing: scripts/set-up.sh installs it")
        libraries = ":".join(str(INSTALLED / name / "x86_64-linux-gnu") for name in ("usr/lib", "lib"))
        return ["env", f"LD_LIBRARY_PATH={libraries}", str(path)]


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
        refused = [] if self.passive else ["PASV", "EPSV"]
        refused += [] if self.active else ["PORT", "EPRT"]
        if refused:
            lines += [f"<Limit {' '.join(refused)}>", "DenyAll", "</Limit>"]
        configuration = self.write("proftpd.conf", "\n".join(lines) + "\n")
        return [*self.program("usr", "sbin", "proftpd"), "-n", "-q", "-c", str(configuration)]


class ProftpdNoLinks(Proftpd):
    kind = "proftpd-no-links"
    shows_links = False


class PureFtpd(FtpServer):
    kind = "pure-ftpd"
    can_refuse = ("passive",)

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
            [*self.program("usr", "bin", "pure-pw"), "mkdb", str(database), "-f", str(users)], check=True
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
            "50",
            "-c",
            "50",
            "-g",
            f"{self.folder}/pid",
        ]
        if self.idle:
            options += ["-I", str((self.idle + 59) // 60)]
        if not self.passive:
            options.append("-N")
        return [*self.program("usr", "sbin", "pure-ftpd"), *options]


class Pyftpdlib(FtpServer):
    kind = "pyftpdlib"
    needs_root = False
    dos = False

    def command(self):
        refused = [] if self.passive else ["PASV", "EPSV"]
        refused += [] if self.active else ["PORT", "EPRT"]
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
            "refused": refused,
            "uid": self.account.pw_uid,
            "gid": self.account.pw_gid,
        }
        return [PYTHON, "-B", str(HERE / "pyftpdlib_server.py"), json.dumps(options)]


class PyftpdlibDos(Pyftpdlib):
    kind = "pyftpdlib-dos"
    dos = True


CLASSES = {
    server.kind: server for server in (Vsftpd, Proftpd, ProftpdNoLinks, PureFtpd, Pyftpdlib, PyftpdlibDos)
}
KINDS = tuple(CLASSES)


def start(kind, **options):
    return CLASSES[kind](**options)
