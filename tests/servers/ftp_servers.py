"""Real FTP servers, and one for SFTP, for tests: ordinary processes on 127.0.0.1 and free ports, which leave
the system's configuration alone and end with the test, however it ends.

    with start("vsftpd") as server:
        ...  # server.host, server.port, server.user, server.password, server.root

KINDS names those for FTP: vsftpd, proftpd, pure-ftpd, pyftpdlib, and two that do not tell links from what
they point to: proftpd-no-links, and pyftpdlib-dos, which lists as servers on Windows do. For SFTP there is
openssh. Options of start(), as far as the kind knows them (others raise ValueError):

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
    tls         "offered": who asks for it (AUTH TLS) gets it; "required": who does not ask is refused, for
                the login and for data; "implicit", not pure-ftpd: from the connection's start on.
                MOSAICON_FTP_CA in environment() is the authority that has signed the certificate
    certificate "wrong name" or "expired": not for this host, or not for today
    reuse       vsftpd, proftpd, with tls: False: data connections may be TLS sessions of their own; else
                they have to go on with that of the control connection
    connections not openssh: how many there may be at once
    read_only   not pure-ftpd: nothing can be changed
    full        bytes that fit in all until the disk counts as full, for every write beyond it; make_room()
                says so anew while the server runs. What is deleted makes no room

Only for openssh:

    host_keys   a list out of "ed25519", "ecdsa", "rsa", otherwise it has all of them.
                MOSAICON_SSH_KNOWN_HOSTS is a file with them, as ssh has it
    logins      a list out of "password", "key" (these two where it is not given), "keyboard-interactive"
    key, key_format   of what kind the user's key is: "ed25519", "ecdsa", "rsa"; "PEM" for the older form.
                MOSAICON_SSH_KEY is its file, MOSAICON_SSH_LOCKED_KEY the same key with a passphrase,
                MOSAICON_SSH_KEY_PASSPHRASE; the public keys are beside them (.pub)
    chroot      False: the login sees the machine's files as they are, and starts in root. So it is also
                where the test is not root. MOSAICON_SSH_FOLDER is what root is called there, or "/"

The login may read and write everything below root. Where the test is root, the server works as daemon,
whom folders of root's do not obey: call adopt() after putting something there, or create it with a umask
of 0. Everything that the server makes can be read by all.

scripts/set-up.sh installs the servers. All but pyftpdlib and openssh have to be started by root: where the
test is not, sudo is used, which must not ask for a password.
"""

from openssh_kind import Openssh
from proftpd_kind import Proftpd, ProftpdNoLinks
from pure_ftpd_kind import PureFtpd
from pyftpdlib_kind import Pyftpdlib, PyftpdlibDos
from vsftpd_kind import Vsftpd

FTP = (Vsftpd, Proftpd, ProftpdNoLinks, PureFtpd, Pyftpdlib, PyftpdlibDos)
CLASSES = {server.kind: server for server in (*FTP, Openssh)}
KINDS = tuple(server.kind for server in FTP)


def start(kind, **options):
    return CLASSES[kind](**options)
