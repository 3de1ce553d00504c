"""Publishing to a real server: what people see when all goes well, and when it does not. See
publish_case.py."""

import os
import pathlib
import signal
import subprocess
import sys
import time
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent))
from publish_case import FOR_WINDOWS, IS_SSH, KIND, PATIENCE, PublishCase, of_program  # noqa: E402
from web_server import FileHandler, WebServer, files_in  # noqa: E402


class Server(PublishCase):
    def test_gets_what_is_new(self):
        files = len(self.contents(self.map))
        self.assertEqual(self.publish_well(), (files, 0, 0))
        self.assertEqual(self.publish_well(), (0, files, 0), "there is nothing to do")
        for number in range(10):
            self.write(f"18/{number % 7}/{number}.png", b"another")
        self.assertEqual(self.publish_well(), (10, files - 10, 0))

    def test_is_mended_and_tidied(self):
        self.publish_well()
        os.truncate(self.published / "18" / "3" / "3.png", 1)
        (self.published / "leaflet.html").unlink()
        (self.map / "18" / "4" / "4.png").unlink()
        code, text = self.publish("--dry-run")
        self.assertEqual(code, 0, text)
        for line in ("to send: 18/3/3.png", "to send: leaflet.html", "only on the server: 18/4/4.png"):
            self.assertIn(line + "\n", text)
        self.assertFalse((self.published / "leaflet.html").exists())
        self.assertEqual(self.publish_well("--delete")[::2], (2, 1))

    def test_refuses_a_wrong_password(self):
        code, text = self.publish(MOSAICON_PUBLISH_PASSWORD="wrong")
        self.assertEqual(code, 1)
        self.assertIn("the server refuses the login", text)
        self.assertFalse(self.published.exists())

    def test_may_break_in_the_middle(self):
        if KIND.startswith("pyftpdlib"):
            self.skipTest("its sessions are no processes")
        self.make_map(400)
        with subprocess.Popen(
            self.command("--limit-rate=3M"),
            env=self.environment(),
            stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE,
            stderr=subprocess.STDOUT,
        ) as program:
            for sent in (20, 150):
                while program.poll() is None and len(self.sent_so_far()) < sent:
                    time.sleep(0.02)
                if program.poll() is None:
                    self.server.end_sessions()
            text = program.communicate(timeout=PATIENCE)[0].decode("utf-8", "replace")
        self.assertEqual(program.returncode, 0, text)
        self.check_published()

    def test_goes_on_after_a_kill(self):
        self.make_map(400)
        kept = {}
        for moment in range(6):
            self.kill_after(0.15 + 0.1 * moment)
            kept |= self.sent_so_far()
        self.publish_well()
        again = [name for name, state in kept.items() if self.state_of(name) != state]
        self.assertEqual(again, [], "sent twice")

    def kill_after(self, seconds):
        with subprocess.Popen(
            self.command("--limit-rate=2M", "--quiet"),
            env=self.environment(),
            stdin=subprocess.DEVNULL,
            stdout=subprocess.DEVNULL,
            stderr=subprocess.DEVNULL,
            start_new_session=True,
        ) as program:
            time.sleep(seconds)
            os.killpg(program.pid, signal.SIGKILL)

    def sent_so_far(self):
        """What the program has noted as sent, and what it is on the server."""
        sent = {}
        for manifest in (self.folder / "data").glob("*.manifest"):
            # The last line may not be whole yet.
            for line in manifest.read_text().split("\n")[1:-1]:
                if line.startswith("placed "):
                    name = line.split(" ", 4)[4]
                    sent[name] = self.state_of(name)
        return sent

    def state_of(self, name):
        state = (self.published / name).stat()
        return state.st_ino, state.st_mtime_ns, state.st_size

    def test_goes_on_after_an_abort(self):
        self.make_map(400)
        with subprocess.Popen(
            self.command("--limit-rate=1M"),
            env=self.environment(),
            stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE,
            stderr=subprocess.STDOUT,
        ) as program:
            time.sleep(1)
            program.send_signal(signal.SIGINT)
            start = time.monotonic()
            text = program.communicate(timeout=PATIENCE)[0].decode("utf-8", "replace")
            self.assertLess(time.monotonic() - start, 2)
        self.assertEqual(program.returncode, 130, text)
        self.assertIn("aborted; the same command goes on with it", text)
        self.assertFalse((self.published / "leaflet.html").exists())
        self.publish_well()


class PlainTypes(FileHandler):
    """As a server that has not been told of KML."""

    extensions_map = {**FileHandler.extensions_map, ".kml": "text/plain"}


class Visitors(PublishCase):
    def test_see_what_was_published(self):
        with WebServer(files_in(self.server.root)) as web:
            code, text = self.publish(f"--verify={web.url}/web/maps")
        self.assertEqual(code, 0, text)
        self.assertIn(f"Published and checked: {web.url}/web/maps/wiesen_%C3%A4\n", text)

    def test_may_see_something_else(self):
        with WebServer(files_in(self.server.root, PlainTypes)) as web:
            code, text = self.publish(f"--verify={web.url}/web/maps")
            self.assertEqual(code, 1, text)
            self.assertIn("AddType application/vnd.google-earth.kml+xml .kml", text)
            code, text = self.publish(f"--verify={web.url}/web/other")
            self.assertEqual(code, 1, text)
            self.assertIn("leaflet.html: it is not found (404); capital and small letters count", text)
        code, text = self.publish(f"--verify={web.url}/web/maps")
        self.assertEqual(code, 1, "nobody is there")


class FullServer(PublishCase):
    server_options = {"full": 300_000}

    def test_says_so_and_leaves_the_old_map(self):
        code, text = self.publish()
        self.assertEqual(code, 1, text)
        self.assertFalse((self.published / "leaflet.html").exists())
        self.assertIn("FAILED", text)
        self.server.make_room(100_000_000)
        self.publish_well()


class ReadOnlyServer(PublishCase):
    server_options = {"read_only": True}

    def test_says_so(self):
        code, text = self.publish()
        self.assertEqual(code, 1, text)
        self.assertIn("FAILED", text)
        self.assertFalse(self.published.exists())


class FewConnections(PublishCase):
    server_options = {"connections": 2}

    def test_are_enough(self):
        self.make_map(100)
        self.publish_well("--connections=6")


class EncryptedServer(PublishCase):
    server_options = {"tls": "required"}

    def test_is_spoken_to_in_cipher(self):
        for scheme in ("ftp", "ftpes"):
            code, text = self.publish(scheme=scheme)
            self.assertEqual(code, 0, text)
            self.assertNotIn("not encrypted", text)
            self.check_published()
            self.make_map(20)


class ServerThatOffersCipher(PublishCase):
    server_options = {"tls": "offered"}

    def test_is_taken_at_its_word(self):
        code, text = self.publish()
        self.assertEqual(code, 0, text)
        self.assertNotIn("not encrypted", text)
        self.check_published()


class ImplicitServer(PublishCase):
    server_options = {"tls": "implicit"}
    scheme = "ftps"

    def test_is_spoken_to_in_cipher(self):
        code, text = self.publish()
        self.assertEqual(code, 0, text)
        self.assertNotIn("not encrypted", text)
        self.check_published()


class PlainServer(PublishCase):
    def test_is_refused_who_asks_for_cipher(self):
        code, text = self.publish(scheme="ftpes")
        self.assertEqual(code, 1, text)
        self.assertIn("the server refuses an encrypted connection", text)
        self.assertFalse(self.published.exists())

    def test_is_told_of(self):
        self.assertIn("the connection is not encrypted", self.publish()[1])


class WrongCertificate(PublishCase):
    server_options = {"tls": "required", "certificate": "wrong name"}

    def test_is_refused(self):
        code, text = self.publish()
        self.assertEqual(code, 1, text)
        self.assertIn("the server cannot prove that it is the right one", text)
        self.assertFalse(self.published.exists())


class ExpiredCertificate(WrongCertificate):
    server_options = {"tls": "required", "certificate": "expired"}


class UnknownCertificate(WrongCertificate):
    """Of an authority that nobody knows."""

    server_options = {"tls": "required"}
    trusts = False


class HostKey(PublishCase):
    def test_is_remembered(self):
        self.publish_well()
        self.options = []
        self.publish_well()

    def test_that_is_not_known_is_refused(self):
        self.options = []
        code, text = self.publish()
        self.assertEqual(code, 1, text)
        self.assertIn("the key of the host is not known yet: SHA256:", text)
        self.assertFalse(self.published.exists())

    def test_that_has_changed_is_refused(self):
        self.publish_well()
        known = self.folder / "data" / "known_hosts"
        lines = known.read_text().split(" ")
        other = lines[2][:-10] + "AAAAAAAA=\n"
        known.write_text(" ".join([*lines[:2], other]))
        code, text = self.publish()
        self.assertEqual(code, 1, text)
        self.assertIn("the key of the host is not the one that is known", text)


class KeyOfTheUser(PublishCase):
    server_options = {"key": "ecdsa"}

    def test_opens_the_door(self):
        key = self.server.told["MOSAICON_SSH_KEY"]
        self.publish_well(f"--key={of_program(key)}", MOSAICON_PUBLISH_PASSWORD=None)

    def test_may_have_a_passphrase(self):
        key = self.server.told["MOSAICON_SSH_LOCKED_KEY"]
        passphrase = self.server.told["MOSAICON_SSH_KEY_PASSPHRASE"]
        self.publish_well(
            f"--key={of_program(key)}", MOSAICON_PUBLISH_PASSWORD=None, MOSAICON_PUBLISH_PASSPHRASE=passphrase
        )
        code, text = self.publish(
            f"--key={of_program(key)}", MOSAICON_PUBLISH_PASSWORD=None, MOSAICON_PUBLISH_PASSPHRASE="wrong"
        )
        self.assertEqual(code, 1, text)
        self.assertIn("the server refuses the login", text)


if KIND == "pure-ftpd":
    del ReadOnlyServer, ImplicitServer
if IS_SSH:
    del FewConnections, EncryptedServer, ServerThatOffersCipher, ImplicitServer, PlainServer
    del WrongCertificate, ExpiredCertificate, UnknownCertificate
else:
    del HostKey, KeyOfTheUser
if FOR_WINDOWS:
    # Wine has no signal for Ctrl+C, and what a kill leaves is the same.
    del Server.test_goes_on_after_an_abort, Server.test_goes_on_after_a_kill


if __name__ == "__main__":
    unittest.main()
