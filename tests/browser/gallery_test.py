#!/usr/bin/env python3
"""Opens galleries of meshcast-batch in a browser and operates their controls.

Usage: gallery_test.py FOLDER_OF_THE_PACKAGE FOLDER_OF_A_PROGRAM...
"""

import os
import subprocess
import sys
import tempfile
import time
import unittest
from pathlib import Path

import browser

browser.skip_without_browser()
sys.path.insert(0, sys.argv.pop(1))

from meshcast_batch import gallery, table  # noqa: E402
from selenium.webdriver.common.keys import Keys  # noqa: E402

CUBE = "#VRML V1.0 ascii\nCube { }\n"
ATTACK = "<img src=x onerror=alert(1)>.wrl"


class Galleries(unittest.TestCase):
    def setUp(self):
        self.temporary = tempfile.TemporaryDirectory()
        self.folder = Path(self.temporary.name)
        self.driver = browser.start(self.folder)

    def tearDown(self):
        self.assertEqual(browser.complaints(self.driver), [])
        self.driver.quit()
        self.temporary.cleanup()

    def cards(self):
        return [card for card in self.driver.find_elements("tag name", "article") if card.is_displayed()]

    def titles(self):
        return [card.find_element("tag name", "h2").text for card in self.cards()]

    def find(self, name):
        return self.driver.find_element("id", name)

    def test_a_gallery_can_be_searched_and_sorted_and_links_to_pages(self):
        scenes = self.folder / "in"
        (scenes / "sub dir").mkdir(parents=True)
        (scenes / "sub dir" / "50%#?.wrl").write_text(CUBE)
        (scenes / "b.wrl").write_text(CUBE.replace("Cube { }", "Group { Cube { } Sphere { } Bogus { } }"))
        (scenes / "bad.wrl").write_text("neither")
        (scenes / ATTACK).write_text(CUBE)
        subprocess.run(["meshcast-batch", "--to", "geom,html,png", scenes, self.folder / "out"], check=False,
                       stderr=subprocess.DEVNULL)
        self.driver.get((self.folder / "out" / "index.html").as_uri())
        self.assertEqual(self.titles(), [ATTACK, "b.wrl", "bad.wrl", "sub dir/50%#?.wrl"])
        first, second, bad, _ = self.cards()
        self.assertIn("1 object, 24 vertices, 6 polygons", first.text)
        self.assertIn("1 repair", second.text)
        self.assertRegex(bad.text, "refused: is not VRML")
        browser.wait_for(lambda: self.driver.execute_script(
            "return [...document.images].length === 3 && [...document.images].every((image) => image.naturalWidth === 640)"))
        self.find("order").send_keys("repairs")
        self.assertEqual(self.titles()[0], "b.wrl")
        self.find("search").send_keys("NOT vrml")
        self.assertEqual(self.titles(), ["bad.wrl"])
        self.find("search").send_keys(Keys.CONTROL, "a", Keys.DELETE)
        self.find("state").send_keys("ok")
        self.assertEqual(len(self.cards()), 3)
        self.find("search").send_keys("sub")
        self.cards()[0].find_element("tag name", "a").send_keys(Keys.ENTER)
        browser.wait_for(lambda: self.driver.execute_script(
            "return document.documentElement.dataset.state") == "shown")
        self.assertEqual(self.driver.title, "50%#?")

    def test_it_stays_quick_with_thousands_of_scenes(self):
        rows = [table.Row(f"folder {i % 50}/scene {i}.wrl", "ok" if i % 9 else "failed", i, i, i, i % 3, "0.1",
                          "" if i % 9 else "why", "png") for i in range(5000)]
        page = gallery.page("many", rows, {row.file: row.file[:-4] for row in rows}, ["png"])
        (self.folder / "index.html").write_text(page)
        started = time.monotonic()
        self.driver.get((self.folder / "index.html").as_uri())
        self.find("search").send_keys("49/scene 4999")
        self.assertEqual(self.find("count").text, "1 of 5,000 scenes")
        print(f"page of 5,000 scenes: {len(page) / 1e6:.2f} MB, {time.monotonic() - started:.1f} s until found")
        # Images are loaded when they come into view. These do not exist, so each leaves a message.
        asked = [line for line in browser.complaints(self.driver) if "ERR_FILE_NOT_FOUND" in line]
        self.assertLess(len(asked), 200)


if __name__ == "__main__":
    os.environ["PATH"] = ":".join([*sys.argv[1:], os.environ["PATH"]])
    unittest.main(argv=sys.argv[:1])
