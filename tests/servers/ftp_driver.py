"""ftp_driver.exe under Wine, as an object. What it asks of the client is in ftp_driver.cpp.

Needs in the environment MOSAICON_FTP_DRIVER, the program, and WINEPREFIX, a Wine prefix that nobody
else uses: the sockets of all its processes count as the client's."""

import os
import pathlib
import select
import subprocess
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "support"))
from wine_side import WINE, windows_path  # noqa: E402

LISTENING = "0A"
PATIENCE = 900  # seconds until the client counts as hung
# How long the client itself waits for a server, in seconds. What goes as it is to go never takes as long, on
# however busy a machine; what takes longer has waited for an answer that nobody gave.
CLIENT_PATIENCE = 600


class Answer:
    def __init__(self, line):
        result, milliseconds, *self.details = line.split("\t")
        self.result = int(result) if result.lstrip("-").isdigit() else result
        self.seconds = int(milliseconds) / 1000

    def __repr__(self):
        return f"{self.result} after {self.seconds:.1f} s {self.details}"


class Driver:
    def __init__(self, program=None):
        program = program or os.environ["MOSAICON_FTP_DRIVER"]
        self._process = subprocess.Popen(
            [WINE, program], stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL
        )
        self._unread = b""
        milliseconds = CLIENT_PATIENCE * 1000
        self.ask("timeouts", milliseconds, milliseconds)

    def close(self):
        """False when it does not end by itself."""
        try:
            self._process.communicate(timeout=PATIENCE)
            return self._process.returncode == 0
        except subprocess.TimeoutExpired:
            self._process.kill()
            self._process.communicate()
            return False

    def ask(self, *words, patience=PATIENCE):
        self.begin(*words)
        return self.end(patience)

    def begin(self, *words):
        line = "\t".join(
            windows_path(word) if isinstance(word, pathlib.Path) else str(word) for word in words
        )
        self._process.stdin.write(line.encode("cp1252") + b"\n")
        self._process.stdin.flush()

    def end(self, patience=PATIENCE):
        """The answer to what was begun. TimeoutError: the client hangs, and can be asked no more."""
        while b"\n" not in self._unread:
            if not select.select([self._process.stdout], [], [], patience)[0]:
                raise TimeoutError(f"no answer within {patience} s")
            data = os.read(self._process.stdout.fileno(), 65536)
            if not data:
                raise ConnectionError("the driver has ended")
            self._unread += data
        line, _, self._unread = self._unread.partition(b"\n")
        return Answer(line.decode("cp1252").rstrip("\r"))

    def sockets(self):
        """How many TCP sockets are open in the prefix, and how many of them listen."""
        owned = set()
        for pid in self._processes():
            for entry in _entries(pathlib.Path(f"/proc/{pid}/fd")):
                try:
                    owned.add(os.readlink(entry))
                except OSError:
                    pass
        states = {
            f"socket:[{line.split()[9]}]": line.split()[3]
            for line in pathlib.Path("/proc/net/tcp").read_text().splitlines()[1:]
        }
        found = [states[socket] for socket in owned if socket in states]
        return len(found), found.count(LISTENING)

    def processor_seconds(self):
        """What the client has used, with Wine's server."""
        ticks = 0
        for pid in self._processes():
            fields = pathlib.Path(f"/proc/{pid}/stat").read_text().rpartition(")")[2].split()
            ticks += int(fields[11]) + int(fields[12])
        return ticks / os.sysconf("SC_CLK_TCK")

    @staticmethod
    def _processes():
        mark = f"WINEPREFIX={os.environ['WINEPREFIX']}".encode()
        for name in filter(str.isdigit, os.listdir("/proc")):
            try:
                environment = pathlib.Path(f"/proc/{name}/environ").read_bytes()
                program = pathlib.Path(f"/proc/{name}/comm").read_text()
            except OSError:
                continue
            if mark in environment.split(b"\0") and program.startswith(("wine", "ftp_driver")):
                yield name


def _entries(folder):
    try:
        return list(folder.iterdir())
    except OSError:
        return []
