"""Certificates for the servers of ftp_servers.py: an authority of each server's own, which nobody else
trusts, and what it has signed."""

import datetime
import pathlib
import subprocess
import typing

# What is wrong with a certificate. The names in it are those that a client may call the server by.
KINDS = (None, "wrong name", "expired")
NAMES = "IP:127.0.0.1, DNS:localhost"
OTHER_NAMES = "DNS:other.example.org"
CONFIGURATION = """
[req]
distinguished_name = name
prompt = no
[name]
CN = Mosaicon authority
[ca]
default_ca = authority
[authority]
dir = {folder}
database = $dir/signed
new_certs_dir = $dir
certificate = $dir/authority.pem
private_key = $dir/authority.key
rand_serial = yes
default_md = sha256
policy = policy
[policy]
commonName = supplied
[for_authority]
basicConstraints = critical, CA:TRUE
keyUsage = critical, keyCertSign
subjectKeyIdentifier = hash
[for_server]
basicConstraints = critical, CA:FALSE
keyUsage = critical, digitalSignature
extendedKeyUsage = serverAuth
subjectAltName = {names}
subjectKeyIdentifier = hash
authorityKeyIdentifier = keyid
"""
# RSA keys would take a second.
NEW_KEY = ("-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1", "-noenc")


class Certificates(typing.NamedTuple):
    authority: pathlib.Path
    certificate: pathlib.Path
    key: pathlib.Path
    both: pathlib.Path  # certificate and key, for servers that want one file


def make(folder, kind=None):
    """Certificates in a folder that is made for them."""
    if kind not in KINDS:
        raise ValueError(f"there is no certificate {kind!r}")
    folder.mkdir()
    made = Certificates(
        *(folder / name for name in ("authority.pem", "server.pem", "server.key", "both.pem"))
    )
    configuration = folder / "openssl.cnf"
    configuration.write_text(
        CONFIGURATION.format(folder=folder, names=OTHER_NAMES if kind == "wrong name" else NAMES)
    )
    (folder / "signed").touch()

    def openssl(command, *arguments):
        run = subprocess.run(
            ["openssl", command, "-config", configuration, *arguments],
            cwd=folder,
            check=False,
            capture_output=True,
            text=True,
        )
        if run.returncode != 0:
            raise RuntimeError(f"openssl {command}: {run.stderr}")

    openssl("req", "-x509", "-extensions", "for_authority", *NEW_KEY, "-days", "2",
            "-keyout", "authority.key", "-out", made.authority)  # fmt: skip
    openssl("req", *NEW_KEY, "-subj", "/CN=Mosaicon server", "-keyout", made.key, "-out", "request.pem")
    today = datetime.datetime.now(datetime.timezone.utc)
    days = -1 if kind == "expired" else 2
    first, last = (
        (today + datetime.timedelta(days=days)).strftime("%Y%m%d%H%M%SZ") for days in (days - 3, days)
    )
    openssl("ca", "-batch", "-notext", "-extensions", "for_server", "-startdate", first,
            "-enddate", last, "-in", "request.pem", "-out", made.certificate)  # fmt: skip
    made.both.write_text(made.key.read_text() + made.certificate.read_text())
    made.both.chmod(0o600)
    return made
