#!/usr/bin/env python3
"""Signs a program or DLL: signing.py CERTIFICATE WEB_ADDRESS FILE

CERTIFICATE: a PKCS #12 file, whose password is in MOSAICON_CERTIFICATE_PASSWORD. MOSAICON_TIMESTAMP_URL: a
server that says when it was signed, if any."""

import os
import pathlib
import subprocess
import sys
import tempfile


def sign(path, certificate, web_address):
    """Replaces the file by a signed one."""
    signed = path.with_name(path.name + ".signed")
    # Who looks at running programs sees their arguments.
    with tempfile.NamedTemporaryFile("w") as password:
        password.write(os.environ.get("MOSAICON_CERTIFICATE_PASSWORD", ""))
        password.flush()
        command = ["osslsigncode", "sign", "-pkcs12", certificate, "-readpass", password.name, "-h", "sha256"]
        timestamp = os.environ.get("MOSAICON_TIMESTAMP_URL")
        command += ["-ts", timestamp] if timestamp else []
        command += ["-n", "Mosaicon", "-i", web_address, "-in", path, "-out", signed]
        subprocess.run([str(each) for each in command], check=True, stdout=subprocess.DEVNULL)
    signed.replace(path)


if __name__ == "__main__":
    sign(pathlib.Path(sys.argv[3]), sys.argv[1], sys.argv[2])
