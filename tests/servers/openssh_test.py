"""The SFTP server: who may log in how, whose host keys it has, where it starts, and what it refuses."""

import contextlib
import pathlib
import sys
import unittest

from clients import put, sftp
from ftp_servers import start

CONTENT = bytes(range(256)) * 1000


class OpensshTest(unittest.TestCase):
    def setUp(self):
        self.stack = contextlib.ExitStack()
        self.addCleanup(self.stack.close)

    def start(self, **options):
        return self.stack.enter_context(start("openssh", **options))

    def assert_serves(self, server, **login):
        self.assertEqual(put(server, "file", CONTENT, **login), "")
        self.assertEqual((server.root / "file").read_bytes(), CONTENT)

    def test_password(self):
        server = self.start()
        self.assert_serves(server, login="password", secret=server.password)
        self.assertIn("Permission denied", put(server, "file", b"", login="password", secret="wrong"))

    def test_keyboard_interactive(self):
        server = self.start(logins=["keyboard-interactive"])
        self.assert_serves(server, login="keyboard-interactive", secret=server.password)
        for login in ("keyboard-interactive", "password", "key"):
            self.assertIn("Permission denied", put(server, "file", b"", login=login, secret="wrong"))

    def test_keys(self):
        for kind in ("ed25519", "ecdsa", "rsa"):
            for form, first in ((None, "OPENSSH"), *([("PEM", "")] if kind != "ed25519" else [])):
                with self.subTest(kind, form=form):
                    server = self.start(key=kind, key_format=form, host_keys=["ed25519"])
                    told = server.environment()
                    self.assert_serves(server)
                    key = pathlib.Path(told["MOSAICON_SSH_KEY"])
                    self.assertRegex(key.read_text(), f"^-----BEGIN {first or '(EC|RSA)'} PRIVATE KEY")
                    locked = {"key": told["MOSAICON_SSH_LOCKED_KEY"]}
                    self.assert_serves(server, **locked, secret=told["MOSAICON_SSH_KEY_PASSPHRASE"])
                    self.assertIn("Permission denied", put(server, "file", b"", **locked, secret="wrong"))

    def test_only_keys_or_only_passwords(self):
        server = self.start(logins=["key"])
        self.assert_serves(server)
        self.assertIn(
            "Permission denied (publickey)",
            put(server, "file", b"", login="password", secret=server.password),
        )
        server = self.start(logins=["password"])
        self.assert_serves(server, login="password", secret=server.password)
        self.assertIn("Permission denied (password)", put(server, "file", b""))

    def test_host_keys(self):
        known = {}
        for kinds in (["ed25519"], ["ecdsa"], ["rsa"], None):
            with self.subTest(kinds):
                server = self.start(host_keys=kinds)
                self.assert_serves(server)
                hosts = pathlib.Path(server.environment()["MOSAICON_SSH_KNOWN_HOSTS"])
                lines = hosts.read_text().splitlines()
                self.assertEqual(len(lines), len(kinds or "123"))
                for line in lines:
                    self.assertTrue(line.startswith(f"[127.0.0.1]:{server.port} "), line)
                known[str(kinds)] = " ".join(lines[0].split()[1:])
        # Another server's key, and none.
        hosts.write_text(f"[127.0.0.1]:{server.port} {known['[' + repr('ed25519') + ']']}\n")
        self.assertIn("IDENTIFICATION HAS CHANGED", put(server, "file", b"", known_hosts=hosts))
        self.assertIn("verification failed", put(server, "file", b"", known_hosts="/dev/null"))

    def test_folder(self):
        for chroot in (True, False):
            with self.subTest(chroot=chroot):
                server = self.start(chroot=chroot)
                folder = server.environment()["MOSAICON_SSH_FOLDER"]
                if not chroot:
                    self.assertEqual(folder, str(server.root))
                run = sftp(server, f"pwd\nmkdir one\nmkdir {folder}/two\nls -1 {folder}\n")
                self.assertEqual(run.returncode, 0, run.stderr)
                self.assertIn(f"Remote working directory: {folder}\n", run.stdout)
                self.assertEqual({path.name for path in server.root.iterdir()}, {"one", "two"})
                outside = sftp(server, "ls /usr\n")
                self.assertEqual(outside.returncode == 0, folder != "/", outside.stderr)

    def test_read_only(self):
        server = self.start(read_only=True)
        (server.root / "there").write_text("content")
        server.adopt()
        self.assertIn("Permission denied", put(server, "file", b"x"))
        for refused in ("mkdir folder", "rm there", "rename there elsewhere"):
            self.assertNotEqual(sftp(server, refused + "\n").returncode, 0)
        self.assertIn("there", sftp(server, "ls -1\n").stdout)

    def test_disk_that_gets_full(self):
        server = self.start(full=1_000_000)
        for name in "abc":
            self.assertEqual(put(server, name, bytes(300_000)), "")
        self.assertIn("Failure", put(server, "d", bytes(300_000)))
        server.make_room(300_000)
        self.assertEqual(put(server, "e", bytes(300_000)), "")

    def test_ends_idle_sessions(self):
        server = self.start(idle=1)
        run = sftp(server, "mkdir before\n!sleep 4\nmkdir after\n")
        self.assertNotEqual(run.returncode, 0)
        self.assertEqual([path.name for path in server.root.iterdir()], ["before"])

    def test_sessions_end_with_the_server(self):
        server = self.start()
        self.assertEqual(sftp(server, "pwd\n").returncode, 0)
        server.wait_for_sessions(0)


if __name__ == "__main__":
    sys.exit(unittest.main())
