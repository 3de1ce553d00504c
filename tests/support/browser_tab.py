"""A tab of a browser, as a visitor has it: with a window of some size, a mouse, a keyboard, and perhaps no
network. It is made by Chromium.tab and closed at the end of its with statement.

    with browser.tab(view=PHONE, offline=True) as tab:
        tab.go("file:///tmp/page.html")
        tab.click("button")
        tab.wait_for("document.title == 'done'")
"""

import base64
import dataclasses
import json
import time

PATIENCE = 120  # seconds until a test calls it failed that something does not come about
KEYS = {"Tab": 9, "Enter": 13, " ": 32, "Home": 36, "ArrowLeft": 37, "ArrowRight": 39, "+": 187}


@dataclasses.dataclass(frozen=True)
class View:
    width: int
    height: int
    phone: bool = False


class Tab:
    """view is the window; scripts run in each page before its own; stand_ins are what the page gets from
    addresses that cannot be reached: {address: (content type, bytes)}."""

    def __init__(self, browser, view=None, offline=False, stand_ins=None, scripts=()):
        self.browser = browser
        self.target = browser.call("Target.createTarget", url="about:blank")["targetId"]
        self.session = browser.call("Target.attachToTarget", targetId=self.target, flatten=True)["sessionId"]
        for domain in ("Page", "Network", "Runtime", "Log"):
            self.call(f"{domain}.enable")
        self.call("Network.setCacheDisabled", cacheDisabled=True)
        browser.stand_ins = stand_ins or {}
        if browser.stand_ins:
            self.call("Fetch.enable", patterns=[{"urlPattern": each} for each in browser.stand_ins])
        if view:
            self.show(view)
        if offline:
            self.set_offline(True)
        for script in scripts:
            self.call("Page.addScriptToEvaluateOnNewDocument", source=script)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.browser.call("Target.closeTarget", targetId=self.target)

    def call(self, method, **parameters):
        return self.browser.call(method, self.session, **parameters)

    def events(self):
        """What has happened since the page was asked for, as (method, parameters) pairs."""
        return [
            (each["method"], each["params"])
            for each in self.browser.events
            if each.get("sessionId") == self.session
        ]

    def go(self, url):
        """Loads a page and waits until it has settled."""
        self.browser.events.clear()
        error = self.call("Page.navigate", url=url).get("errorText")
        if error:
            raise ConnectionError(f"{url}: {error}")
        self.settle()

    def settle(self):
        self.browser.wait_until_settled(self.session)

    def show(self, view):
        self.call(
            "Emulation.setDeviceMetricsOverride",
            width=view.width,
            height=view.height,
            deviceScaleFactor=1,
            mobile=view.phone,
        )
        self.call("Emulation.setTouchEmulationEnabled", enabled=view.phone)

    def set_offline(self, offline):
        self.call(
            "Network.emulateNetworkConditions",
            offline=offline,
            latency=0,
            downloadThroughput=-1,
            uploadThroughput=-1,
        )

    def evaluate(self, expression):
        """What a JavaScript expression, or its promise, yields."""
        answer = self.call("Runtime.evaluate", expression=expression, returnByValue=True, awaitPromise=True)
        if "exceptionDetails" in answer:
            raise ValueError(f"{expression}: {answer['exceptionDetails']}")
        return answer["result"].get("value")

    def wait_for(self, expression):
        """Until an expression yields something true, which is returned."""
        deadline = time.monotonic() + PATIENCE
        while time.monotonic() < deadline:
            value = self.evaluate(expression)
            if value:
                return value
            time.sleep(0.02)
        raise TimeoutError(f"this does not come about: {expression}")

    def click(self, selector):
        """A click of the mouse on the middle of what the selector finds first."""
        x, y = self.evaluate(
            f"""(function () {{
                var node = document.querySelector({json.dumps(selector)});
                node.scrollIntoView({{block: "nearest"}});
                var box = node.getBoundingClientRect();
                return [box.left + box.width / 2, box.top + box.height / 2];
            }})()"""
        )
        self.move_mouse(x, y)
        for kind in ("mousePressed", "mouseReleased"):
            self.call("Input.dispatchMouseEvent", type=kind, x=x, y=y, button="left", clickCount=1)

    def move_mouse(self, x, y):
        self.call("Input.dispatchMouseEvent", type="mouseMoved", x=x, y=y)

    def press(self, key):
        text = {"Enter": "\r"}.get(key, key if len(key) == 1 else "")
        code = {"key": key, "windowsVirtualKeyCode": KEYS.get(key, 0)}
        self.call("Input.dispatchKeyEvent", type="keyDown", text=text, **code)
        self.call("Input.dispatchKeyEvent", type="keyUp", **code)

    def screenshot(self):
        """The window as PNG."""
        return base64.b64decode(self.call("Page.captureScreenshot", format="png")["data"])

    def print_to_pdf(self):
        """What the browser would print, as PDF."""
        answer = self.call("Page.printToPDF", printBackground=False, preferCSSPageSize=True)
        return base64.b64decode(answer["data"])
