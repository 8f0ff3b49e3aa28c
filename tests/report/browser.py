"""A headless Chromium that opens reports from disk, and what the tests ask of it."""

import pathlib
import shutil
import tempfile

CHROMIUM = shutil.which("chromium")
DRIVER = shutil.which("chromedriver")

try:
    from selenium import webdriver
    from selenium.webdriver.chrome.options import Options
    from selenium.webdriver.chrome.service import Service
except ImportError:
    webdriver = None


def missing():
    """What the tests lack to drive a browser; empty if nothing."""
    if CHROMIUM is None:
        return "there is no chromium"
    if DRIVER is None:
        return "there is no chromedriver"
    return "this Python has no selenium" if webdriver is None else ""


class Browser:
    """One browser with a profile of its own, gone with `close`."""

    def __init__(self, width=1400, height=900):
        self.profile = tempfile.mkdtemp(prefix="brindle-browser-")
        options = Options()
        options.binary_location = CHROMIUM
        for argument in ["--headless=new", "--no-sandbox", "--disable-gpu", "--disable-quic",
                         "--disable-dev-shm-usage", "--no-first-run",
                         "--disable-background-networking", "--disable-component-update",
                         "--disable-sync", "--hide-scrollbars",
                         f"--user-data-dir={self.profile}"]:
            options.add_argument(argument)
        options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
        self.driver = webdriver.Chrome(service=Service(DRIVER), options=options)
        self.driver.set_script_timeout(60)
        self.driver.execute_cdp_cmd("Performance.enable", {"timeDomain": "threadTicks"})
        self.resize(width, height)

    def close(self):
        self.driver.quit()
        shutil.rmtree(self.profile, ignore_errors=True)

    def resize(self, width, height, is_dark=False, media=""):
        self.driver.execute_cdp_cmd("Emulation.setDeviceMetricsOverride", {
            "width": width, "height": height, "deviceScaleFactor": 1, "mobile": False})
        scheme = "dark" if is_dark else "light"
        self.driver.execute_cdp_cmd("Emulation.setEmulatedMedia", {
            "media": media, "features": [{"name": "prefers-color-scheme", "value": scheme}]})

    def open(self, report, fragment=""):
        self.driver.get("about:blank")
        self.driver.get(pathlib.Path(report).as_uri() + fragment)
        self.settle()

    def go(self, fragment):
        self.run("location.hash = arguments[0]", fragment)
        self.settle()

    def settle(self):
        """Waits until the page has drawn what it was asked for."""
        self.wait_for("requestAnimationFrame(() => requestAnimationFrame(() => "
                      "setTimeout(done, 30)))")

    def run(self, script, *arguments):
        return self.driver.execute_script(script, *arguments)

    def wait_for(self, script, *arguments):
        """Runs a script that calls `done`, and gives what it calls it with."""
        return self.driver.execute_async_script(
            "const done = arguments[arguments.length - 1];" + script, *arguments)

    def texts(self, selector):
        return self.run("return [...document.querySelectorAll(arguments[0])]"
                        ".filter((each) => each.offsetParent !== null)"
                        ".map((each) => each.textContent)", selector)

    def press(self, *keys):
        """Types into whatever has the focus."""
        self.driver.switch_to.active_element.send_keys(*keys)
        self.settle()

    def busy_seconds(self):
        """Time of the processor that the page has taken so far."""
        metrics = self.driver.execute_cdp_cmd("Performance.getMetrics", {})["metrics"]
        return next(each["value"] for each in metrics if each["name"] == "TaskDuration")

    def console(self):
        """What the page wrote to its console since the last question."""
        return [entry["message"] for entry in self.driver.get_log("browser")]

    def picture(self, file):
        self.driver.save_screenshot(str(file))
