"""A headless Chromium that a test works over its debugging pipe. It reaches 127.0.0.1 and nothing else:
every other host is unknown to it, whatever network the machine has."""

import base64
import fcntl
import fnmatch
import json
import os
import select
import shutil
import signal
import subprocess
import tempfile
import time

from browser_tab import Tab

PROGRAMS = ("chromium-headless-shell", "chromium")
PATIENCE = 300  # seconds until a test calls the browser hung
QUIET = 0.5  # seconds without any event after which a page counts as settled


class Chromium:
    """Used in a with statement; one page after the other."""

    def __init__(self):
        self.profile = tempfile.TemporaryDirectory(prefix="mosaicon chromium ", ignore_cleanup_errors=True)
        self.process = None
        self.events = []
        self.stand_ins = {}
        self.unread = b""
        self.last_id = 0

    def __enter__(self):
        program = next(filter(None, map(shutil.which, PROGRAMS)), None)
        if not program:
            raise FileNotFoundError("there is no Chromium; scripts/set-up.sh has its package")
        to_browser, self.commands = pipe_far_from_standard_streams()
        self.answers, from_browser = pipe_far_from_standard_streams()
        # The browser reads commands from descriptor 3 and answers on 4.
        shell = f'exec "$0" "$@" 3<&{to_browser} 4>&{from_browser}'
        self.process = subprocess.Popen(
            ["bash", "-c", shell, program, *self.options()],
            pass_fds=(to_browser, from_browser),
            stdin=subprocess.DEVNULL,
            stdout=subprocess.DEVNULL,
            stderr=subprocess.DEVNULL,
            start_new_session=True,
        )
        os.close(to_browser)
        os.close(from_browser)
        return self

    def options(self):
        # Chromium refuses its sandbox to root, which continuous integration is.
        sandbox = ["--no-sandbox"] if os.geteuid() == 0 else []
        return [
            "--headless",
            "--remote-debugging-pipe",
            f"--user-data-dir={self.profile.name}",
            "--host-resolver-rules=MAP * ~NOTFOUND, EXCLUDE 127.0.0.1",
            "--no-proxy-server",
            "--disable-background-networking",
            "--disable-component-update",
            "--disable-gpu",
            "--disable-dev-shm-usage",
            "--no-first-run",
            *sandbox,
            "about:blank",
        ]

    def __exit__(self, *_):
        os.close(self.commands)
        os.close(self.answers)
        try:
            # It ends when its pipe does.
            self.process.wait(timeout=60)
        except subprocess.TimeoutExpired:
            pass
        # Its session is its own, so that helpers which outlive it are ended with it.
        try:
            os.killpg(self.process.pid, signal.SIGKILL)
        except ProcessLookupError:
            pass
        self.process.wait()
        self.profile.cleanup()

    def open_page(self, url, expression="null", stand_ins=None):
        """Loads a page in a tab of its own, waits until it has settled, and returns the events as
        (method, parameters) pairs, and what the JavaScript expression, or its promise, then yields in it.
        stand_ins are what the page gets from addresses that cannot be reached:
        {address: (content type, bytes)}; an address may be a pattern with "*"."""
        with self.tab(stand_ins=stand_ins) as tab:
            tab.go(url)
            value = tab.evaluate(expression)
            return tab.events(), value

    def tab(self, **options):
        """A tab to work in, one at a time; the options are those of Tab."""
        return Tab(self, **options)

    def wait_until_settled(self, session):
        """Until the page is loaded and nothing that it asked for is still under way."""
        deadline = time.monotonic() + PATIENCE
        while True:
            event = self.receive(QUIET)
            if event:
                self.take(event)
            elif is_settled([each for each in self.events if each.get("sessionId") == session]):
                return
            if time.monotonic() > deadline:
                raise TimeoutError("the page does not settle")

    def take(self, event):
        """Keeps an event. A request that waits for its stand-in gets it."""
        if "method" not in event:
            return
        self.events.append(event)
        if event["method"] == "Fetch.requestPaused":
            content_type, content = self.stand_in_for(event["params"]["request"]["url"])
            self.send(
                "Fetch.fulfillRequest",
                event["sessionId"],
                requestId=event["params"]["requestId"],
                responseCode=200,
                responseHeaders=[{"name": "Content-Type", "value": content_type}],
                body=base64.b64encode(content).decode(),
            )

    def stand_in_for(self, url):
        """One of that very address, or else of a pattern that it fits."""
        if url in self.stand_ins:
            return self.stand_ins[url]
        return next(each for pattern, each in self.stand_ins.items() if fnmatch.fnmatchcase(url, pattern))

    def send(self, method, session=None, **parameters):
        self.last_id += 1
        message = {"id": self.last_id, "method": method, "params": parameters}
        if session:
            message["sessionId"] = session
        data = json.dumps(message).encode() + b"\0"
        while data:
            data = data[os.write(self.commands, data) :]
        return self.last_id

    def call(self, method, session=None, **parameters):
        number = self.send(method, session, **parameters)
        deadline = time.monotonic() + PATIENCE
        while time.monotonic() < deadline:
            answer = self.receive(1)
            if answer and answer.get("id") == number:
                if "error" in answer:
                    raise RuntimeError(f"{method}: {answer['error']}")
                return answer["result"]
            if answer:
                self.take(answer)
        raise TimeoutError(f"{method} is not answered")

    def receive(self, seconds):
        """The next message, or None when none comes in time."""
        while b"\0" not in self.unread:
            if not select.select([self.answers], [], [], seconds)[0]:
                return None
            read = os.read(self.answers, 1 << 16)
            if not read:
                raise ConnectionError("Chromium has ended")
            self.unread += read
        message, self.unread = self.unread.split(b"\0", 1)
        return json.loads(message)


def pipe_far_from_standard_streams():
    """A pipe whose ends are not the descriptors that the browser's own will be."""
    ends = os.pipe()
    far = tuple(fcntl.fcntl(end, fcntl.F_DUPFD_CLOEXEC, 10) for end in ends)
    for end in ends:
        os.close(end)
    return far


def is_settled(events):
    methods = {event["method"] for event in events}
    under_way = set()
    for event in events:
        if event["method"] == "Network.requestWillBeSent":
            under_way.add(event["params"]["requestId"])
        elif event["method"] in ("Network.loadingFinished", "Network.loadingFailed"):
            under_way.discard(event["params"]["requestId"])
    return "Page.loadEventFired" in methods and not under_way
