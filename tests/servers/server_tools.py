"""What server_base.py and the kinds of servers need beside a server: places, ports, programs."""

import contextlib
import os
import pathlib
import socket
import ssl
import subprocess

HERE = pathlib.Path(__file__).resolve().parent
CACHE = pathlib.Path(os.environ.get("XDG_CACHE_HOME") or pathlib.Path.home() / ".cache") / "mosaicon"
INSTALLED = CACHE / "ftp-servers"
HOST = "127.0.0.1"
PATIENCE = 180  # seconds until a server counts as hung
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


def program(*parts, **variables):
    """The start of a command line: an unpacked program with the libraries that came with it."""
    path = INSTALLED.joinpath(*parts)
    if not path.exists():
        raise RuntimeError(f"{path} is missing: scripts/set-up.sh installs it")
    libraries = ":".join(str(INSTALLED / name / "x86_64-linux-gnu") for name in ("usr/lib", "lib"))
    return [*with_variables(LD_LIBRARY_PATH=libraries, **variables), str(path)]


def with_variables(**variables):
    return ["env", *(f"{name}={value}" for name, value in variables.items())]


def greets(port, encrypted, leave=False):
    """Whether a server says something to who connects; leaves it politely where its end is to be seen."""
    try:
        with contextlib.ExitStack() as stack:
            connection = stack.enter_context(socket.create_connection((HOST, port), timeout=PATIENCE))
            if encrypted:
                connection = stack.enter_context(any_certificate().wrap_socket(connection))
            greeted = connection.recv(1) != b""
            if leave:
                connection.sendall(b"QUIT\r\n")
                while connection.recv(1000):
                    pass
            return greeted
    except OSError:
        return False


def any_certificate():
    context = ssl.SSLContext(ssl.PROTOCOL_TLS_CLIENT)
    context.check_hostname = False
    context.verify_mode = ssl.CERT_NONE
    return context
