"""Programs that carry a signature, as they were installed under Wine. See setup_case.py."""

import shutil
import subprocess
import unittest

from package_case import OURS, make_package
from setup_case import DONE, SetupCase, on_drive
from setup_case import set_up_prefix as setUpModule  # noqa: F401

PASSWORD = "geheim"
SUBJECT = ["-subj", "/CN=Mosaicon test/O=Nobody", "-addext", "extendedKeyUsage=codeSigning"]


class Signing(SetupCase):
    def make_certificate(self):
        """The certificate, and the file that it is signed with."""
        key, certificate, both = (self.folder / name for name in ("key.pem", "certificate.pem", "both.pfx"))
        for command in (
            ["req", "-x509", "-newkey", "rsa:2048", "-nodes", "-keyout", key, "-out", certificate, *SUBJECT],
            ["pkcs12", "-export", "-in", certificate, "-inkey", key, "-out", both]
            + ["-passout", f"pass:{PASSWORD}"],
        ):
            subprocess.run(["openssl", *map(str, command)], check=True, capture_output=True)
        return certificate, both

    def test_can_be_verified(self):
        certificate, both = self.make_certificate()
        make_package(
            self.folder / "signed",
            both,
            MOSAICON_CERTIFICATE_PASSWORD=PASSWORD,
            MOSAICON_PACKAGE_COMPRESSION="no",
        )
        [setup] = (self.folder / "signed").glob("*-setup.exe")
        shutil.copyfile(setup, on_drive(r"C:\signed.exe"))
        self.assertEqual(self.install(setup=r"C:\signed.exe"), DONE)
        signed = [path for path in self.installed.rglob("*") if path.name in OURS | {"uninstall.exe"}]
        self.assertEqual(len(signed), len(OURS) + 1)
        for path in [*signed, setup]:
            self.assertEqual(self.verify(path, certificate), 0, path.name)
        self.assertNotEqual(self.verify(self.program / "Mosaicon.exe", certificate), 0, "it is not signed")

    def verify(self, path, certificate):
        command = ["osslsigncode", "verify", "-CAfile", certificate, "-in", path]
        return subprocess.run([str(each) for each in command], capture_output=True, check=False).returncode


if __name__ == "__main__":
    unittest.main()
