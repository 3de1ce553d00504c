"""What only some servers do, or only when they are set up for it."""

import time

import ftp_servers
from ftp_driver import CLIENT_PATIENCE

QUIRKS = []


def quirk(kind, expected, **options):
    def register(function):
        QUIRKS.append((kind, expected, options, function))
        return function

    return register


def connect(server, driver, passive=True):
    driver.ask("passive", int(passive))
    return driver.ask("connect", server.host, server.port, server.user, server.password)


def try_all(driver, kinds):
    """Prints what happened; returns what was not as expected."""
    failures = []
    for kind, expected, options, function in QUIRKS:
        if kind not in kinds:
            continue
        with ftp_servers.start(kind, **options) as server:
            start = time.monotonic()
            found = function(server, driver)
            seconds = time.monotonic() - start
            driver.ask("close")
            if driver.sockets() != (0, 0):
                found = f"{found}, and sockets left"
        print(f"{kind}: {function.__doc__}: {found}")
        if found != expected or seconds > CLIENT_PATIENCE:
            failures.append(
                f"{kind}: {function.__doc__}: {found!r} after {seconds:.1f} s, " f"expected {expected!r}"
            )
    return failures


@quirk("vsftpd", (0, "230 Login successful.", ["/"]), anonymous=True)
def login_without_password(server, driver):
    """230 straight after USER"""
    code = connect(server, driver).result
    login = [line for line in driver.ask("replies").details if line.startswith(("3", "23"))]
    return code, *login, driver.ask("pwd").details


@quirk("vsftpd", (0, ["220-welcome", "220-to all", "220 "], ["/"]), banner="welcome\nto all")
def greeting_with_empty_end(server, driver):
    """a greeting of several lines, the last of them empty"""
    code = connect(server, driver).result
    return code, driver.ask("replies").details[:3], driver.ask("pwd").details


@quirk("vsftpd", 2, broken=True)
def failing_start(server, driver):
    """500 OOPS instead of a greeting"""
    return connect(server, driver).result


@quirk("vsftpd", (0, 10, 38, 0), idle=1)
def idle_session(server, driver):
    """ends an idle session with a 421 that nobody asked for"""
    code = connect(server, driver).result
    time.sleep(2.5)
    return code, driver.ask("noop").result, driver.ask("noop").result, connect(server, driver).result


@quirk("proftpd", (0, ["/"]), login_text="Welcome.\n230 is a nice number\n230-and this\n")
def reply_within_reply(server, driver):
    """an indented line of a 230 block that looks like a reply"""
    return connect(server, driver).result, driver.ask("pwd").details


@quirk("pure-ftpd", (0, 6, ["/"]))
def six_lines(server, driver):
    """a greeting of six lines"""
    code = connect(server, driver).result
    greeting = [line for line in driver.ask("replies").details if line.startswith("220")]
    return code, len(greeting), driver.ask("pwd").details


def refused(server, driver, passive):
    code = connect(server, driver, passive).result
    return code, driver.ask("list").result, driver.ask("pwd").details


@quirk("vsftpd", (0, 49, ["/"]), passive=False)
@quirk("proftpd", (0, 49, ["/"]), passive=False)
@quirk("pure-ftpd", (0, 49, ["/"]), passive=False)
@quirk("pyftpdlib", (0, 49, ["/"]), passive=False)
def passive_refused(server, driver):
    """PASV refused"""
    return refused(server, driver, True)


@quirk("vsftpd", (0, 49, ["/"]), active=False)
@quirk("proftpd", (0, 49, ["/"]), active=False)
@quirk("pyftpdlib", (0, 49, ["/"]), active=False)
def active_refused(server, driver):
    """PORT refused"""
    return refused(server, driver, False)
