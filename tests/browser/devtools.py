"""A page in a browser without a window, looked at and used as its own tools do: over a pipe, without a network."""

import json
import os
import subprocess

from browser import SECONDS, program

END = b"\0"


class Page:
    """An open page. `width` and `height` are those of its window, `media` is "screen" or "print".

        with Page(file, home, width=360, height=740) as page:
            page.value("document.title")
    """

    def __init__(self, file, home, width, height, media="screen", dark=False):
        self.made = 0
        theirs_in, self.to_browser = os.pipe()
        self.from_browser, theirs_out = os.pipe()
        # The browser reads from its descriptor 3 and writes to 4.
        self.process = subprocess.Popen(
            ["sh", "-c", f"exec \"$@\" 3<&{theirs_in} 4>&{theirs_out}", "sh", program(), "--headless", "--no-sandbox",
             "--disable-gpu", "--disable-dev-shm-usage", "--no-first-run", "--hide-scrollbars",
             "--host-resolver-rules=MAP * ~NOTFOUND", f"--user-data-dir={home}", "--remote-debugging-pipe",
             "about:blank"],
            pass_fds=(theirs_in, theirs_out), stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
            stderr=subprocess.DEVNULL, env={**os.environ, "HOME": str(home)})
        os.close(theirs_in)
        os.close(theirs_out)
        self.answers = os.fdopen(self.from_browser, "rb")
        self.rest = b""
        target = self.ask("Target.createTarget", url="about:blank")["targetId"]
        self.session = self.ask("Target.attachToTarget", targetId=target, flatten=True)["sessionId"]
        self.ask("Page.enable")
        self.ask("Emulation.setDeviceMetricsOverride", width=width, height=height, deviceScaleFactor=1, mobile=True)
        self.ask("Emulation.setEmulatedMedia", media=media,
                 features=[{"name": "prefers-color-scheme", "value": "dark" if dark else "light"}])
        self.ask("Page.navigate", url=file.as_uri())
        self.wait_for("Page.loadEventFired")

    session = None

    def __enter__(self):
        return self

    def __exit__(self, *_):
        os.close(self.to_browser)
        self.answers.close()
        try:
            self.process.wait(SECONDS)
        except subprocess.TimeoutExpired:
            self.process.kill()
            raise

    def value(self, expression):
        """What a script's expression comes to, which runs beside the page whatever the page forbids."""
        answer = self.ask("Runtime.evaluate", expression=expression, returnByValue=True)
        if "exceptionDetails" in answer:
            raise AssertionError(answer["exceptionDetails"])
        return answer["result"].get("value")

    def click(self, selector):
        """Presses the mouse in the middle of the first element, which is brought into the window."""
        x, y = self.value(f"(() => {{ const one = document.querySelector({json.dumps(selector)}); one.scrollIntoView(); "
                          "const box = one.getClientRects()[0]; "
                          "return [box.left + Math.min(box.width / 2, 40), box.top + box.height / 2]; })()")
        for kind in ("mousePressed", "mouseReleased"):
            self.ask("Input.dispatchMouseEvent", type=kind, x=x, y=y, button="left", clickCount=1)

    def told(self):
        """What screen readers are told: (role, name) of each thing on the page, in its order."""
        nodes = self.ask("Accessibility.getFullAXTree")["nodes"]
        return [(node["role"]["value"], node.get("name", {}).get("value", "")) for node in nodes
                if not node.get("ignored")]

    def ask(self, method, **parameters):
        self.made += 1
        number = self.made
        message = {"id": number, "method": method, "params": parameters}
        if self.session:
            message["sessionId"] = self.session
        os.write(self.to_browser, json.dumps(message).encode() + END)
        answer = self.wait_for(lambda message: message.get("id") == number)
        if "error" in answer:
            raise AssertionError(f"{method}: {answer['error']}")
        return answer["result"]

    def wait_for(self, wanted):
        """The next message of that kind; the name of an event, or what says whether a message is meant."""
        while True:
            message = self.next_message()
            if message.get("method") == wanted if isinstance(wanted, str) else wanted(message):
                return message

    def next_message(self):
        while END not in self.rest:
            more = os.read(self.from_browser, 1 << 20)
            if not more:
                raise AssertionError("the browser has ended")
            self.rest += more
        message, self.rest = self.rest.split(END, 1)
        return json.loads(message)
