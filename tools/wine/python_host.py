#!/usr/bin/env python3
"""Linux half of the python.exe that runs scripts of a Windows program under Wine.

Started by python.exe with a loopback port and a token. Calls back, receives a request, runs this
same interpreter with the requested arguments, and returns output and exit code. Test equipment.

Nothing that the script starts outlives the script, the connection or this program. Two processes
see to that. The agent does the work; the keeper, its parent, only waits for it. Both are
"subreapers": orphans below them become their children, even those that changed session and
process group. When the agent dies, the keeper kills what is left; when the keeper dies, the agent
gets a signal and does the same.
"""

import ctypes
import os
import re
import select
import signal
import socket
import struct
import subprocess
import sys
import time

PR_SET_PDEATHSIG = 1
PR_SET_CHILD_SUBREAPER = 36

CONNECT_SECONDS = 20
GRACE_SECONDS = 1.0  # between the polite signal and the other one
GIVE_UP_SECONDS = 10.0  # a process that the kernel cannot end

# Settings of the Windows program's own GDAL, of no use to the host's.
GDAL_PATH_VARIABLES = ("GDAL_DATA", "GDAL_DRIVER_PATH", "GDAL_PATH", "PROJ_LIB", "PROJ_DATA")
# Wine's new names for variables of the Windows side that would hide the host's own.
RENAMED_VARIABLES = ("WINEPATH", "WINEHOME", "WINETEMP", "WINETMP")
HOST_PATH = "/usr/local/bin:/usr/bin:/bin"

HEADER = struct.Struct("<cI")
libc = ctypes.CDLL(None, use_errno=True)


class Stopped(Exception):
    """The other side is gone, or somebody asks this process to end."""


def stop(_number, _frame):
    raise Stopped


def set_process_option(option, value):
    if libc.prctl(option, ctypes.c_ulong(value), 0, 0, 0) != 0:
        raise OSError(ctypes.get_errno(), "prctl")


def tie_to_parent(parent, number):
    """Sends this process a signal when its parent dies, or has died already."""
    set_process_option(PR_SET_PDEATHSIG, number)
    if os.getppid() != parent:
        os.kill(os.getpid(), number)


def parents_of_processes():
    parents = {}
    for name in os.listdir("/proc"):
        if name.isdigit():
            try:
                with open(f"/proc/{name}/stat", "rb") as stat:
                    # The program name, in parentheses, can hold blanks and parentheses.
                    parents[int(name)] = int(stat.read().rpartition(b")")[2].split()[1])
            except OSError:
                pass  # has just ended
    return parents


def descendants():
    parents = parents_of_processes()
    found = {os.getpid()}
    while True:
        more = {pid for pid, parent in parents.items() if parent in found} - found
        if not more:
            return found - {os.getpid()}
        found |= more


def reap(statuses):
    """Collects ended children. False when this process has no child left."""
    try:
        while True:
            pid, status = os.waitpid(-1, os.WNOHANG)
            if pid == 0:
                return True
            statuses[pid] = os.waitstatus_to_exitcode(status)
    except ChildProcessError:
        return False


def end_descendants(grace):
    """Ends every process below this one. Returns the exit codes of children by process id."""
    statuses = {}
    asked = set()
    start = time.monotonic()
    while reap(statuses):
        waited = time.monotonic() - start
        if waited > GIVE_UP_SECONDS:
            break
        for pid in descendants():
            number = signal.SIGTERM if waited < grace else signal.SIGKILL
            if (pid, number) not in asked:
                asked.add((pid, number))
                try:
                    os.kill(pid, number)
                except ProcessLookupError:
                    pass
        time.sleep(0.01)
    return statuses


def receive(channel, size):
    data = b""
    while len(data) < size:
        more = channel.recv(size - len(data))
        if not more:
            raise Stopped
        data += more
    return data


def send(channel, kind, payload):
    channel.sendall(HEADER.pack(kind, len(payload)) + payload)


def without_drive_link(path):
    """C: is a symbolic link in Wine's folder, and ".." behind a link leads astray."""
    link, rest = re.fullmatch(r"(.*/dosdevices/[a-z]:)?(.*)", path, re.DOTALL).groups()
    return os.path.realpath(link).rstrip("/") + rest if link else path


def receive_request(channel):
    directory, arguments, variables = "/", [], {}
    while True:
        kind, size = HEADER.unpack(receive(channel, HEADER.size))
        text = os.fsdecode(receive(channel, size))
        if kind == b"D":
            directory = without_drive_link(text)
        elif kind == b"A":
            arguments.append(text)
        elif kind == b"P":
            arguments.append(without_drive_link(text))
        elif kind == b"V":
            name, _, value = text.partition("=")
            variables[name] = without_drive_link(value)
        elif kind == b"G":
            return directory, arguments, variables
        else:
            raise Stopped


def looks_like_windows(value):
    return re.search(r"\\|(^|;)[A-Za-z]:/", value) is not None


def script_environment(variables):
    environment = {**os.environ, **variables, "PYTHONUNBUFFERED": "1"}
    for name in GDAL_PATH_VARIABLES:
        if looks_like_windows(environment.get(name, "")):
            del environment[name]
    for name in RENAMED_VARIABLES:
        environment.pop(name, None)
    for name, value in variables.items():
        if not value:
            del environment[name]
    if looks_like_windows(environment.get("PATH", "\\")):
        environment["PATH"] = HOST_PATH
    # Temporary files of both worlds in one place.
    if os.path.isdir(variables.get("TEMP", "")):
        environment["TMPDIR"] = variables["TEMP"]
    return environment


def start_script(directory, arguments, variables):
    agent = os.getpid()
    return subprocess.Popen(
        [sys.executable, *arguments],
        cwd=directory,
        env=script_environment(variables),
        bufsize=0,
        stdin=subprocess.DEVNULL,
        stdout=subprocess.PIPE,
        stderr=subprocess.STDOUT,
        start_new_session=True,
        preexec_fn=lambda: tie_to_parent(agent, signal.SIGKILL),
    )


def forward_output(channel, script):
    """Returns when the script has ended. Its children may still hold the pipe open then."""
    ended = os.pidfd_open(script.pid)
    watched = [channel, script.stdout, ended]
    while True:
        ready = select.select(watched, [], [])[0]
        if channel in ready:
            raise Stopped  # python.exe has nothing more to say: this is the end of its life
        if script.stdout in ready:
            data = script.stdout.read(65536)
            if data:
                send(channel, b"O", data)
            else:
                watched.remove(script.stdout)
        elif ended in ready:
            os.close(ended)
            return


def send_rest_of_output(channel, script):
    """What came between the look at the pipe and the look at the script's end."""
    os.set_blocking(script.stdout.fileno(), False)
    while data := script.stdout.read(65536):
        send(channel, b"O", data)


def run(channel):
    request = receive_request(channel)
    try:
        script = start_script(*request)
    except (OSError, ValueError, subprocess.SubprocessError) as reason:
        send(channel, b"F", f"cannot start the host's Python: {reason}".encode())
        return
    forward_output(channel, script)
    code = end_descendants(GRACE_SECONDS).get(script.pid, 1)
    script.returncode = code
    send_rest_of_output(channel, script)
    send(channel, b"X", b"%d" % (code if code >= 0 else 128 - code))


def be_agent(keeper, port, token):
    for number in (signal.SIGTERM, signal.SIGINT, signal.SIGHUP):
        signal.signal(number, stop)
    try:
        tie_to_parent(keeper, signal.SIGTERM)
        set_process_option(PR_SET_CHILD_SUBREAPER, 1)
        with socket.create_connection(("127.0.0.1", port), CONNECT_SECONDS) as channel:
            channel.settimeout(None)
            channel.sendall(token.encode())
            run(channel)
    except (OSError, Stopped):
        pass  # nobody is left to tell
    finally:
        for number in (signal.SIGTERM, signal.SIGINT, signal.SIGHUP):
            signal.signal(number, signal.SIG_IGN)
        end_descendants(GRACE_SECONDS)


def leave_wine():
    """Lets go of what the Windows program's process has handed down, its output above all."""
    nothing = os.open(os.devnull, os.O_RDWR)
    for descriptor in (0, 1, 2):
        os.dup2(nothing, descriptor)
    os.closerange(3, os.sysconf("SC_OPEN_MAX"))
    signal.pthread_sigmask(signal.SIG_SETMASK, [])
    try:
        os.setsid()  # out of reach of the terminal's keys
    except PermissionError:
        pass  # leads a session already


def main():
    leave_wine()
    set_process_option(PR_SET_CHILD_SUBREAPER, 1)
    keeper = os.getpid()
    agent = os.fork()
    if agent == 0:
        try:
            be_agent(keeper, int(sys.argv[1]), sys.argv[2])
        finally:
            os._exit(0)
    os.waitpid(agent, 0)
    end_descendants(0)


if __name__ == "__main__":
    main()
