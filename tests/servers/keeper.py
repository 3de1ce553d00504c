#!/usr/bin/env python3
"""Runs a command and whatever it starts, and ends all of it with its own input: a server must neither
outlive the test that started it, nor leave processes behind that have lost their parent.

    keeper.py FOLDER COMMAND [ARGUMENT...]

The folder, with what the server needs, goes with the server. It is a program of its own because servers
may need to be root, and only root can end them. On its input it takes the line "end sessions", which kills
what the command has started but not the command itself, and answers with the number of processes
killed, and "count sessions", which only counts them, with those that have ended unnoticed."""

import ctypes
import os
import pathlib
import select
import shutil
import signal
import subprocess
import sys

PR_SET_CHILD_SUBREAPER = 36


def parents(with_ended=False):
    found = {}
    for name in filter(str.isdigit, os.listdir("/proc")):
        try:
            fields = pathlib.Path(f"/proc/{name}/stat").read_text().rpartition(")")[2].split()
        except OSError:
            continue
        if fields[0] != "Z" or with_ended:
            found[int(name)] = int(fields[1])
    return found


def descendants(pid, with_ended=False):
    parent = parents(with_ended)
    found = {pid}
    while grown := {child for child, of in parent.items() if of in found} - found:
        found |= grown
    return found - {pid}


def kill_all(find):
    killed = set()
    while targets := find():
        for pid in targets:
            try:
                os.kill(pid, signal.SIGKILL)
                killed.add(pid)
            except ProcessLookupError:
                pass
        reap()
    return len(killed)


def reap():
    try:
        while os.waitpid(-1, os.WNOHANG)[0]:
            pass
    except ChildProcessError:
        pass


def wait_for_all():
    try:
        while True:
            os.wait()
    except ChildProcessError:
        pass


def main():
    # Who loses its parent comes to us.
    if ctypes.CDLL(None, use_errno=True).prctl(PR_SET_CHILD_SUBREAPER, 1, 0, 0, 0) != 0:
        sys.exit("this process cannot become a reaper")
    for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
        signal.signal(number, lambda *_: sys.exit(1))
    try:
        # Signals stay as Python has them: one that ignores SIGXFSZ is told that a file is full.
        command = subprocess.Popen(
            sys.argv[2:], stdin=subprocess.DEVNULL, stdout=sys.stderr, restore_signals=False
        )
        while True:
            ready, _, _ = select.select([sys.stdin], [], [], 0.2)
            if ready:
                line = sys.stdin.readline()
                if not line:
                    break
                if line == "end sessions\n":
                    print(kill_all(lambda: descendants(command.pid)), flush=True)
                if line == "count sessions\n":
                    print(len(descendants(command.pid, with_ended=True)), flush=True)
            # Ended by itself: the status has to be taken before anybody else takes it.
            if command.poll() is not None:
                sys.exit(f"the command ended with code {command.returncode}")
    finally:
        kill_all(lambda: descendants(os.getpid()))
        wait_for_all()
    # Only the input's end leads here: a server that did not start may be started once more.
    shutil.rmtree(sys.argv[1], ignore_errors=True)


if __name__ == "__main__":
    main()
