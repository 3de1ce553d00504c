"""What the servers of ftp_servers.py have in common: a folder, a port, a login, a start and an end."""

import getpass
import os
import pathlib
import pwd
import secrets
import shutil
import subprocess
import tempfile
import time

from server_parts import Parts
from server_tools import HERE, HOST, PATIENCE, PYTHON, as_root, free_port, greets

# Some disks need ten seconds and more to remove ten thousand files.
REMOVAL_PATIENCE = 600
TRIES = 5  # another program may take the port that was free


class FtpServer(Parts):
    """One server; a context manager. kind and the options that are not for all are of the subclasses."""

    kind = ""
    needs_root = True
    can_refuse = ("passive", "active")
    own_options = ()
    tls_ways = ()

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
        self.tls = own.get("tls")
        if self.tls not in (None, *self.tls_ways):
            raise ValueError(f"{self.kind} has no TLS that is {self.tls}")
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
        self.told = {}  # what the environment tells beside what it always does
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
        return self._ask_keeper("end sessions")

    def session_processes(self):
        """How many processes there are for sessions: none when nobody is connected, one or more for each."""
        return self._ask_keeper("count sessions")

    def wait_for_sessions(self, processes):
        """Until there are no more of their processes. A session may outlast its connection by a moment."""
        deadline = time.monotonic() + PATIENCE
        while self.session_processes() > processes:
            if time.monotonic() > deadline:
                raise TimeoutError(f"{self.kind} does not end its sessions: {self.log()}")
            time.sleep(0.005)

    def _ask_keeper(self, question):
        self._keeper.stdin.write(question + "\n")
        self._keeper.stdin.flush()
        return int(self._keeper.stdout.readline())

    def reached_by(self, port):
        """Clients come by another port from now on, a relay's."""
        self.port = port

    def environment(self):
        return {
            "MOSAICON_FTP_HOST": self.host,
            "MOSAICON_FTP_PORT": str(self.port),
            "MOSAICON_FTP_USER": self.user,
            "MOSAICON_FTP_PASSWORD": self.password,
            "MOSAICON_FTP_ROOT": str(self.root),
            **self.told,
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
            if greets(self.port, self.tls == "implicit", leave="connections" in self.own):
                # Our own look at the server must not count among its connections.
                if "connections" in self.own:
                    self.wait_for_sessions(0)
                return True
            if time.monotonic() > deadline:
                raise RuntimeError(f"{self.kind} does not answer: {self.log()}")
            time.sleep(0.02)
        self._keeper.communicate(timeout=PATIENCE)
        self._keeper = None
        return False

    def command(self):
        raise NotImplementedError
