"""What is tried with each server and each kind of data connection. An operation is a function of a Trial
and returns what its cell of the table is to say: "ok" when all of it went as the client promises, or the
error code where one is due. It leaves the session logged in, in the folder "/"."""

import datetime
import itertools
import os
import random
import shutil
import time

BIG = 10_000_000
FILE_LIMIT = 11_000_000  # of the server: more does not fit "on its disk"
HUGE = 1_000_000_000  # does not end before something happens to it
SMALL_FILES = 1000

# In the order of the table: name, function, the cell that is expected.
OPERATIONS = []


def operation(name, expected="ok"):
    def register(function):
        OPERATIONS.append((name, function, expected))
        return function

    return register


class Wrong(Exception):
    """The text for the cell."""


class Trial:
    """One server, one kind of data connection, one client."""

    def __init__(self, server, driver, mode, local):
        self.server = server
        self.driver = driver
        self.mode = mode
        self.local = local
        self.root = server.root

    def ask(self, *words):
        return self.driver.ask(*words)

    def must(self, *words):
        answer = self.ask(*words)
        if answer.result != 0:
            raise Wrong(f"{answer.result} at {words[0]}")
        return answer

    def log_in(self, password=None):
        server = self.server
        self.ask("passive", int(self.mode == "passive"))
        return self.ask("connect", server.host, server.port, server.user, password or server.password)

    def is_in_step(self):
        """The next command gets its own answer, and only the control connection is open."""
        answer = self.ask("pwd")
        sockets = self.driver.sockets()
        if (answer.result, answer.details, sockets) != (0, ["/"], (1, 0)):
            raise Wrong(f"out of step: {answer.result} {answer.details} {sockets}")

    def there(self, name, content=None):
        """A file, or a folder, that the server finds."""
        path = self.root / name
        if content is None:
            path.mkdir()
        else:
            path.write_bytes(content)
        self.server.adopt()
        return path

    def here(self, name, content):
        path = self.local / name
        path.write_bytes(content)
        return path

    def remove(self, name):
        path = self.root / name
        shutil.rmtree(path) if path.is_dir() else path.unlink()


def same(name, left, right):
    if left != right:
        raise Wrong(f"{name} differs")


def random_bytes(count):
    return random.Random(count).randbytes(count)


def sparse(path, size):
    with open(path, "wb") as file:
        file.truncate(size)
    return path


def wait_for(condition, what):
    deadline = time.monotonic() + 20
    while not condition():
        if time.monotonic() > deadline:
            raise Wrong(f"no {what}")
        time.sleep(0.01)


@operation("login, wrong password", 63)
def wrong_password(trial):
    code = trial.log_in("wrong").result
    trial.must("close")
    same("number of sockets", trial.driver.sockets(), (0, 0))
    trial.log_in()
    return code


@operation("login")
def login(trial):
    trial.must("close")
    same("number of sockets", trial.driver.sockets(), (0, 0))
    return trial.log_in().result or "ok"


@operation("folders")
def folders(trial):
    trial.must("mkdir", "new folder")
    trial.must("chdir", "new folder")
    same("path", trial.must("pwd").details, ["/new folder"])
    trial.must("mkdir", "below")
    same("folder", (trial.root / "new folder" / "below").is_dir(), True)
    trial.must("rmdir", "below")
    trial.must("cdup")
    same("path", trial.must("pwd").details, ["/"])
    trial.must("rmdir", "new folder")
    same("folder", list(trial.root.iterdir()), [])
    return "ok"


@operation("missing folder: change, remove", (10, 10))
def missing_folder(trial):
    return trial.ask("chdir", "none").result, trial.ask("rmdir", "none").result


@operation("path with quotation marks", "/say ")
def quoted_path(trial):
    trial.must("mkdir", 'say "hi"')
    same("folder", (trial.root / 'say "hi"').is_dir(), True)
    trial.must("chdir", 'say "hi"')
    path = trial.must("pwd").details[0]
    trial.must("cdup")
    trial.must("rmdir", 'say "hi"')
    return path


@operation("list")
def listing(trial):
    day = datetime.date.today() - datetime.timedelta(days=40)
    noon = datetime.datetime.combine(day, datetime.time(12)).timestamp()
    folder = trial.there("f")
    trial.there("f/a sub folder")
    for name, size in (("plain.txt", 11), ("two  words.txt", 70_000), ("empty", 0)):
        trial.there(f"f/{name}", bytes(size))
    for path in folder.iterdir():
        os.utime(path, (noon, noon))
    trial.must("chdir", "f")
    found = set()
    for entry in trial.must("list").details:
        is_folder, size, date, name = entry.split(" ", 3)
        found.add((name, int(is_folder), 0 if int(is_folder) else int(size), date))
    trial.must("cdup")
    shutil.rmtree(folder)
    # Unix listings have no year where they have a time; the client takes the current one.
    year = day.year if trial.server.kind == "pyftpdlib-dos" else datetime.date.today().year
    date = f"{year}-{day.month}-{day.day}"
    same(
        "listing",
        found,
        {
            ("a sub folder", 1, 0, date),
            ("plain.txt", 0, 11, date),
            ("two  words.txt", 0, 70_000, date),
            ("empty", 0, 0, date),
        },
    )
    return "ok"


@operation("list, empty folder")
def empty_listing(trial):
    return trial.must("list").details or "ok"


@operation("list, folder removed meanwhile")
def missing_listing(trial):
    trial.must("mkdir", "gone")
    trial.must("chdir", "gone")
    # A server may still have work in the folder when it has answered, but not when the next answer comes.
    trial.must("pwd")
    trial.remove("gone")
    answer = trial.ask("list")
    if trial.ask("chdir", "/").result != 0:
        trial.log_in()
    return answer.result or answer.details or "ok"


@operation("0 bytes")
def no_bytes(trial):
    return round_trip(trial, b"")


@operation("1 byte")
def one_byte(trial):
    return round_trip(trial, b"\n")


@operation("10 MB")
def ten_megabytes(trial):
    return round_trip(trial, random_bytes(BIG))


def round_trip(trial, content):
    trial.must("type", 1)
    path = trial.here("sent", content)
    trial.must("send", path, "a file")
    same("upload", (trial.root / "a file").read_bytes(), content)
    trial.must("receive", "a file", trial.local / "received")
    same("download", (trial.local / "received").read_bytes(), content)
    trial.remove("a file")
    return "ok"


@operation("1,000 small files")
def small_files(trial):
    trial.must("type", 1)
    for name in ("out", "in"):
        (trial.local / name).mkdir()
    for number in range(SMALL_FILES):
        trial.here(f"out/tile {number}.png", random_bytes(number))
    trial.must("mkdir", "tiles")
    trial.must("chdir", "tiles")
    trial.must("send-folder", trial.local / "out")
    trial.must("receive-folder", trial.local / "in")
    trial.must("cdup")
    sent, received, stored = (
        {path.name: path.read_bytes() for path in folder.iterdir()}
        for folder in (trial.local / "out", trial.local / "in", trial.root / "tiles")
    )
    same("number of files", len(sent), SMALL_FILES)
    same("upload", stored, sent)
    same("download", received, sent)
    trial.remove("tiles")
    return "ok"


@operation("ASCII")
def text(trial):
    content = b"one\r\ntwo\r\n\r\nlast"
    path = trial.here("text", content)
    trial.must("type", 0)
    trial.must("send", path, "text")
    same("upload", (trial.root / "text").read_bytes(), content.replace(b"\r\n", b"\n"))
    trial.must("receive", "text", trial.local / "received")
    same("download", (trial.local / "received").read_bytes(), content)
    trial.remove("text")
    return "ok"


@operation("resume a cut download")
def resume(trial):
    content = random_bytes(1_000_000)
    trial.must("type", 1)
    trial.there("whole", content)
    for done in (0, 1, 400_001, len(content)):
        part = trial.here("part", content[:done])
        trial.must("resume", "whole", part)
        same(f"download from {done}", part.read_bytes(), content)
    trial.remove("whole")
    return "ok"


@operation("rename")
def rename(trial):
    path = trial.there("old", b"old")
    trial.must("rename", "old", "a new name")
    same("names", os.listdir(trial.root), ["a new name"])
    same("content", path.with_name("a new name").read_bytes(), b"old")
    trial.remove("a new name")
    return "ok"


@operation("delete")
def delete(trial):
    trial.there("file", b"x")
    trial.must("delete", "file")
    same("names", os.listdir(trial.root), [])
    return "ok"


@operation("missing file: rename, delete, download", (65, 10, 48))
def missing_file(trial):
    trial.must("type", 1)
    return (
        trial.ask("rename", "none", "other").result,
        trial.ask("delete", "none").result,
        trial.ask("receive", "none", trial.local / "received").result,
    )


@operation("upload into a missing folder", 51)
def refused_upload(trial):
    return trial.ask("send", trial.here("sent", b"x"), "none/file").result


@operation("upload to a full disk")
def full_disk(trial):
    trial.must("type", 1)
    code = trial.ask("send", sparse(trial.local / "sent", FILE_LIMIT + 1_000_000), "full").result
    (trial.root / "full").unlink(missing_ok=True)
    # The server gives up before it has taken all, and the last of it may still have been on its way.
    return "ok" if code in (4, 22) else code


@operation("abort of a download, by the hook", 98)
def aborted_download(trial):
    return abort(trial, "hook", "receive")


@operation("abort of a download, by the flag", 98)
def flagged_download(trial):
    return abort(trial, "flag", "receive")


@operation("abort of an upload, by the hook", 98)
def aborted_upload(trial):
    return abort(trial, "hook", "send")


@operation("abort of an upload, by the flag", 98)
def flagged_upload(trial):
    return abort(trial, "flag", "send")


def abort(trial, how, what):
    trial.must("type", 1)
    trial.must(f"abort-{how}", 300_000)
    if what == "receive":
        sparse(trial.there("file", b""), BIG)
        code = trial.ask("receive", "file", trial.local / "received").result
        done = (trial.local / "received").stat().st_size
    else:
        code = trial.ask("send", sparse(trial.local / "sent", BIG), "file").result
        done = (trial.root / "file").stat().st_size
    trial.must(f"abort-{how}", 0)
    trial.remove("file")
    if done > 310_000:
        raise Wrong(f"{done} bytes all the same")
    return code


@operation("server killed during a download")
def killed_download(trial):
    sparse(trial.there("file", b""), HUGE)
    return kill(trial, trial.local / "received", "receive", "file", trial.local / "received")


@operation("server killed during an upload")
def killed_upload(trial):
    # The file is as large as the server takes it, and would be there before anything happens to it.
    trial.must("pace", 1)
    try:
        return kill(trial, trial.root / "file", "send", sparse(trial.local / "sent", FILE_LIMIT - 1), "file")
    finally:
        trial.must("pace", 0)


def kill(trial, growing, *words):
    """The broken data connection may look like an error (21, 22), or like the end of the file; then the
    final reply is what is missing (38), unless a part of the server lives long enough to complain (4)."""
    trial.must("type", 1)
    growing.unlink(missing_ok=True)
    trial.driver.begin(*words)
    wait_for(lambda: growing.exists() and growing.stat().st_size > 100_000, "transfer")
    if trial.driver.sockets()[0] < 2:
        raise Wrong("no data connection to be seen")
    if trial.server.end_sessions() < 1:
        raise Wrong("nothing killed")
    codes = [trial.driver.end().result]
    codes.append(trial.ask("noop").result)
    codes.append(trial.log_in().result)
    trial.remove("file")
    allowed = itertools.product((4, 21, 38) if words[0] == "receive" else (22, 38), (38,), (0,))
    return "ok" if tuple(codes) in allowed else codes


@operation("server killed between two commands", (38, 38))
def killed_at_rest(trial):
    trial.server.end_sessions()
    codes = trial.ask("noop").result, trial.ask("list").result
    trial.must("close")
    trial.log_in()
    return codes
