"""Web servers on 127.0.0.1 and free ports. They write nothing, and end with whoever has started them.

    with WebServer(files_in(folder)) as web:
        ...  # web.url, without a slash at its end
"""

import functools
import http.server
import os
import sys
import threading
import urllib.parse


class WebServer:
    """handler is what http.server calls for each request: a subclass of Quiet, or a partial one. Each request
    is answered in a thread of its own; one that waits for ever does not keep the server from ending."""

    def __init__(self, handler):
        self._server = Server(("127.0.0.1", 0), handler)
        self._thread = threading.Thread(target=self._server.serve_forever)
        self.url = f"http://127.0.0.1:{self._server.server_port}"

    def __enter__(self):
        self._thread.start()
        return self

    def __exit__(self, *_):
        self._server.shutdown()
        self._server.server_close()
        self._thread.join()


class Server(http.server.ThreadingHTTPServer):
    def handle_error(self, request, client_address):
        # A browser that leaves a page does not wait for what it has asked for.
        if not isinstance(sys.exc_info()[1], ConnectionError):
            super().handle_error(request, client_address)


class Quiet(http.server.BaseHTTPRequestHandler):
    def log_message(self, *_):
        pass


class FileHandler(Quiet, http.server.SimpleHTTPRequestHandler):
    extensions_map = {
        **http.server.SimpleHTTPRequestHandler.extensions_map,
        ".kml": "application/vnd.google-earth.kml+xml",
    }

    def translate_path(self, path):
        # Names are bytes, as on most web servers; Python's own would want UTF-8.
        names = urllib.parse.unquote_to_bytes(path.partition("?")[0]).split(b"/")
        if b".." in names:
            return os.path.join(self.directory, "there is no such file")
        return os.path.join(self.directory, *map(os.fsdecode, names[1:]))


def files_in(folder, handler=FileHandler, **options):
    """A handler for what lies in a folder; options are for a subclass of the class."""
    return functools.partial(handler, directory=str(folder), **options)
