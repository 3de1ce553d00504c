"""Looks at published files as a visitor does: a real web server on 127.0.0.1 shows a folder, and a real
browser opens its pages. What the server was asked for and what the browser's console says is kept.

    with WebCheck(folder) as web:
        visit = web.open_page("index.html")
        self.assertEqual(visit.faults(), [])
        self.assertEqual(web.broken_kml_links("tile_0/doc.kml", "http://www.maps.example/ortho"), [])

A page may use scripts and pictures of other hosts. None of them can be reached, and that must not
make an error in the page itself."""

import dataclasses
import urllib.error
import urllib.parse
import urllib.request
from xml.etree import ElementTree

from chromium import Chromium
from web_server import FileHandler, WebServer, files_in

PATIENCE = 180  # seconds until the server counts as hung


@dataclasses.dataclass(frozen=True)
class Request:
    method: str
    path: str  # as it was sent
    status: int


@dataclasses.dataclass(frozen=True)
class ConsoleMessage:
    level: str  # "error", "warning", "info", ...
    text: str
    source: str  # address of what it is about, or of the script that wrote it; may be empty


@dataclasses.dataclass(frozen=True)
class PageVisit:
    origin: str
    requests: list  # those that reached the server
    console: list
    failed: list  # (address, reason) of what was asked for and never answered, here or elsewhere
    value: object  # what the expression yielded

    def faults(self):
        """What is wrong with the page, in sentences: no request to the server but with 200, no error on
        the console but about another host."""
        faults = [f"{each.method} {each.path}: {each.status}" for each in self.requests if each.status != 200]
        faults += [f"{address}: {reason}" for address, reason in self.failed if not self.is_outside(address)]
        faults += [
            f"{each.source}: {each.text}"
            for each in self.console
            if each.level == "error" and not self.is_outside(each.source)
        ]
        return faults

    def is_outside(self, address):
        """On the web, but not on our server. What comes from nowhere counts as our own."""
        return address.startswith(("http:", "https:")) and not address.startswith(self.origin + "/")


class NotingHandler(FileHandler):
    def __init__(self, *arguments, requests, **options):
        self.requests = requests
        super().__init__(*arguments, **options)

    def send_response(self, code, message=None):
        super().send_response(code, message)
        self.requests.append(Request(self.command, self.path, int(code)))


class WebCheck:
    def __init__(self, root):
        self.requests = []
        self.server = WebServer(files_in(root, NotingHandler, requests=self.requests))
        self.origin = self.server.url
        self.browser = None

    def __enter__(self):
        self.server.__enter__()
        return self

    def __exit__(self, *_):
        if self.browser:
            self.browser.__exit__()
        self.server.__exit__()

    def open_page(self, path, expression="null", stand_ins=None):
        """Visits a page of the folder; path is relative to it, as in an address. The JavaScript expression
        may ask for more, once the page is there. stand_ins are what other hosts would send, as
        {address: (content type, bytes)}."""
        if not self.browser:
            self.browser = Chromium().__enter__()
        self.requests.clear()
        events, value = self.browser.open_page(f"{self.origin}/{path}", expression, stand_ins)
        return PageVisit(
            self.origin, list(self.requests), console_messages(events), failed_requests(events), value
        )

    def broken_kml_links(self, path, published=None):
        """Follows the links of a KML file of the folder, and those of every KML file that it leads to,
        over HTTP; returns what is wrong, in sentences. Links may be relative, or begin with the address
        under which the folder will be published. One that leads to any other place is wrong."""
        published = (published or self.origin).rstrip("/") + "/"
        broken, seen, waiting = [], set(), [(f"{published}{path}", "the check")]
        while waiting:
            address, document = waiting.pop()
            address = without_dots(address)
            if address in seen:
                continue
            seen.add(address)
            if not address.startswith(published):
                broken.append(f"{address} in {document} leads elsewhere")
                continue
            status, content = self.fetch(address[len(published) :])
            if status != 200:
                broken.append(f"{address} in {document}: {status}")
            elif urllib.parse.urlsplit(address).path.endswith(".kml"):
                try:
                    links = kml_links(content)
                except ElementTree.ParseError as error:
                    broken.append(f"{address}: {error}")
                    continue
                broken += [f"an empty link in {address}"] * links.count("")
                waiting += [(urllib.parse.urljoin(address, link), address) for link in links if link]
        return broken

    def fetch(self, path):
        """(status, content) of a file; folders that only list what they hold are not found."""
        address = f"{self.origin}/{urllib.parse.quote(path, safe='%/?&=')}"
        if path.endswith("/") or not path:
            return 404, b""
        try:
            with urllib.request.urlopen(address, timeout=PATIENCE) as answer:
                return (404, b"") if answer.url != address else (answer.status, answer.read())
        except urllib.error.HTTPError as error:
            return error.code, b""


def without_dots(address):
    """As clients do before they ask. urljoin does not, where the link has a host of its own."""
    parts = urllib.parse.urlsplit(address)
    if parts.scheme not in ("http", "https"):
        return address
    names = []
    for name in parts.path.split("/")[1:]:
        if name == "..":
            names = names[:-1]
        elif name != ".":
            names.append(name)
    return urllib.parse.urlunsplit(parts._replace(path="/" + "/".join(names)))


def kml_links(content):
    return [
        (node.text or "").strip()
        for node in ElementTree.fromstring(content).iter()
        if node.tag.rpartition("}")[2] == "href"
    ]


def console_messages(events):
    messages = []
    for method, parameters in events:
        if method == "Log.entryAdded":
            entry = parameters["entry"]
            messages.append(ConsoleMessage(entry["level"], entry["text"], entry.get("url", "")))
        elif method == "Runtime.consoleAPICalled":
            text = " ".join(str(each.get("value", each.get("description"))) for each in parameters["args"])
            messages.append(ConsoleMessage(parameters["type"], text, script_of(parameters)))
        elif method == "Runtime.exceptionThrown":
            details = parameters["exceptionDetails"]
            text = details.get("exception", {}).get("description", details["text"])
            messages.append(ConsoleMessage("error", text, details.get("url") or script_of(details)))
    return messages


def script_of(parameters):
    frames = parameters.get("stackTrace", {}).get("callFrames", [])
    return frames[0]["url"] if frames else ""


def failed_requests(events):
    addresses = {
        parameters["requestId"]: parameters["request"]["url"]
        for method, parameters in events
        if method == "Network.requestWillBeSent"
    }
    return [
        (addresses.get(parameters["requestId"], ""), parameters["errorText"] or "blocked")
        for method, parameters in events
        if method == "Network.loadingFailed" and not parameters.get("canceled")
    ]
