"""Headless Chromium for tests of pages, with screenshots and comparisons of images."""

import io
import shutil
import sys
import time

SKIPPED = 77  # ctest shows tests with this status as skipped.

try:
    from PIL import Image
    from selenium import webdriver
    from selenium.webdriver.chrome.options import Options
    from selenium.webdriver.chrome.service import Service
    MISSING = None if shutil.which("chromium") else "chromium is not installed"
except ImportError as error:
    MISSING = str(error)


def skip_without_browser():
    """Ends the test program as skipped if no browser is installed."""
    if MISSING:
        print("skipped:", MISSING, file=sys.stderr)
        sys.exit(SKIPPED)


def start(downloads, *more):
    """Starts a browser with a folder for downloads. It draws with its own software renderer."""
    options = Options()
    options.binary_location = shutil.which("chromium")
    for argument in ("--headless=new", "--use-angle=swiftshader", "--enable-unsafe-swiftshader",
                     "--no-sandbox", "--disable-dev-shm-usage", "--hide-scrollbars",
                     "--force-device-scale-factor=1", "--window-size=1100,700", *more):
        options.add_argument(argument)
    options.add_experimental_option("prefs", {"download.default_directory": str(downloads)})
    options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
    return webdriver.Chrome(options=options, service=Service(shutil.which("chromedriver")))


def wait_for(condition, seconds=30):
    """Calls a function until it returns a true value, and returns that value."""
    end = time.monotonic() + seconds
    while not (value := condition()):
        if time.monotonic() > end:
            raise AssertionError(f"the browser did not finish within {seconds} seconds")
        time.sleep(0.05)
    return value


def complaints(driver):
    """The messages in the browser's console since the last call."""
    return [entry["message"] for entry in driver.get_log("browser")]


def settled(driver):
    """Waits until the page has drawn all changes."""
    driver.execute_async_script(
        "const done = arguments[0];"
        "requestAnimationFrame(() => requestAnimationFrame(() => requestAnimationFrame(done)));")


def canvas_picture(driver):
    """A screenshot of the canvas, as an RGB image."""
    settled(driver)
    png = driver.find_element("id", "canvas").screenshot_as_png
    return Image.open(io.BytesIO(png)).convert("RGB")


def coverage(image, background=(255, 255, 255)):
    """The share of pixels that are not the background."""
    pixels = list(image.getdata())
    return sum(pixel != background for pixel in pixels) / len(pixels)


def difference(one, other):
    """The share of pixels that differ clearly between two images of the same size."""
    pairs = list(zip(one.getdata(), other.getdata(), strict=True))
    return sum(max(abs(a - b) for a, b in zip(*pair)) > 24 for pair in pairs) / len(pairs)
