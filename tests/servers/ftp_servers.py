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

from proftpd_kind import Proftpd, ProftpdNoLinks
from pure_ftpd_kind import PureFtpd
from pyftpdlib_kind import Pyftpdlib, PyftpdlibDos
from vsftpd_kind import Vsftpd

CLASSES = {
    server.kind: server for server in (Vsftpd, Proftpd, ProftpdNoLinks, PureFtpd, Pyftpdlib, PyftpdlibDos)
}
KINDS = tuple(CLASSES)


def start(kind, **options):
    return CLASSES[kind](**options)
