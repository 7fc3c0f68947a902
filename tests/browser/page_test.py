#!/usr/bin/env python3
"""Opens pages of vrmlexport in a browser and operates their controls.

Usage: page_test.py VRMLEXPORT EXAMPLES
"""

import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

import browser

browser.skip_without_browser()

from PIL import Image  # noqa: E402 (only with a browser)
from selenium.webdriver.common.action_chains import ActionChains  # noqa: E402
from selenium.webdriver.common.keys import Keys  # noqa: E402

VRMLEXPORT = EXAMPLES = None
HEADER = "#VRML V1.0 ascii\n"
ATTACK = "</script><img/src=x/onerror=alert(1)>"
SCENES = {
    "glass": """Separator { Material { diffuseColor 1 0 0 } Cube { }
        Separator { Translation { translation 0 0 3 } Material { diffuseColor 0 0 1 transparency 0.5 } Cube { } } }""",
    "textured": """Separator { Texture2 { image 2 2 3 0xff0000 0x00ff00 0x0000ff 0xffff00 wrapS CLAMP wrapT CLAMP }
        Material { specularColor 0 0 0 } Cube { } }""",
    "corners": """Separator { MaterialBinding { value PER_VERTEX } Material { diffuseColor [1 0 0, 0 1 0, 0 0 1]
        transparency [0, 0.5, 0.9] } Coordinate3 { point [0 0 0, 2 0 0, 0 2 0] }
        IndexedFaceSet { coordIndex [0, 1, 2, -1] } }""",
    "shiny": """Separator { PointLight { location 3 3 5 } SpotLight { location 0 4 0 direction 0 -1 0 }
        Material { diffuseColor 0.2 0.4 0.2 specularColor 0.8 0.8 0.8 shininess 0.3 } Sphere { }
        Scale { scaleFactor -1 1 1 } Translation { translation 3 0 0 } Cone { } }""",
    "hostile": f"""Separator {{ Info {{ string "{ATTACK}" }} Bogus {{ }}
        DEF {ATTACK} Separator {{ Cube {{ }} }} DEF __proto__ Sphere {{ }} }}""",
    "nothing": "Separator { }",
}


def export(scene, output, *options):
    subprocess.run([VRMLEXPORT, "--quiet", *options, scene, output], check=True)


class Pages(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.temporary = tempfile.TemporaryDirectory()
        cls.folder = Path(cls.temporary.name)
        (cls.folder / "downloads").mkdir()
        cls.driver = browser.start(cls.folder / "downloads")
        for name, text in SCENES.items():
            (cls.folder / f"{name}.wrl").write_text(HEADER + text)

    @classmethod
    def tearDownClass(cls):
        cls.driver.quit()
        cls.temporary.cleanup()

    def tearDown(self):
        self.assertEqual(browser.complaints(self.driver), [])

    def find(self, name):
        return self.driver.find_element("id", name)

    def scene(self, name):
        own = self.folder / f"{name}.wrl"
        return own if own.exists() else EXAMPLES / f"{name}.wrl"

    def open(self, page, state="shown"):
        self.driver.get(page.as_uri())
        browser.wait_for(lambda: self.driver.execute_script(
            "return document.documentElement.dataset.state") == state)

    def show(self, name):
        page = self.folder / f"{name}.html"
        export(self.scene(name), page)
        self.open(page)

    def choose(self, select, text):
        for option in self.find(select).find_elements("tag name", "option"):
            if option.text == text:
                option.click()
                return
        self.fail(f"{select} has no {text}")

    def facts(self):
        """The facts about the selection, as a dictionary."""
        terms = self.find("selected").find_elements("css selector", "dt, dd")
        return dict(zip([term.text for term in terms[::2]], [term.text for term in terms[1::2]]))

    def picture(self, name, view):
        """The picture that vrmlexport draws for the view of the canvas."""
        size = self.find("canvas").size
        export(self.scene(name), self.folder / "picture.png", "--view", view,
               "--size", f"{size['width']}x{size['height']}")
        return Image.open(self.folder / "picture.png").convert("RGB")

    def test_pages_agree_with_pictures(self):
        names = sorted(path.stem for path in EXAMPLES.glob("*.wrl"))
        self.assertGreaterEqual(len(names), 8)
        for name in [*names, "glass", "textured", "corners", "shiny"]:
            with self.subTest(name):
                self.show(name)
                shown, expected = browser.canvas_picture(self.driver), self.picture(name, "fit")
                self.assertGreater(browser.coverage(expected), 0.015)
                self.assertAlmostEqual(browser.coverage(shown), browser.coverage(expected), delta=0.01)
                self.assertLess(browser.difference(shown, expected), 0.01)
                self.assertEqual(browser.complaints(self.driver), [])

    def test_viewpoints_agree_with_pictures(self):
        for name in ("house", "primitives", "terrain"):
            self.show(name)
            options = self.find("viewpoint").find_elements("tag name", "option")
            cameras = [option.text for option in options[4:]]
            self.assertGreater(len(cameras), 0, name)
            views = [("front", "front"), ("top", "top"), ("left", "left"),
                     *((text, str(number + 1)) for number, text in enumerate(cameras))]
            for text, view in views:
                with self.subTest(f"{name} {view}"):
                    self.choose("viewpoint", text)
                    shown = browser.canvas_picture(self.driver)
                    self.assertLess(browser.difference(shown, self.picture(name, view)), 0.015)

    def test_keys_move_the_camera_and_home_resets_it(self):
        self.show("house")
        first = browser.canvas_picture(self.driver)
        canvas = self.find("canvas")
        self.driver.execute_script("arguments[0].focus({focusVisible: false})", canvas)
        for keys in ([Keys.ARROW_LEFT], [Keys.ARROW_UP], [Keys.SHIFT, Keys.ARROW_RIGHT], ["+"], ["-"]):
            canvas.send_keys(*keys)
            moved = browser.canvas_picture(self.driver)
            self.assertGreater(browser.difference(first, moved), 0.01, keys)
            canvas.send_keys(Keys.HOME)
            self.assertLess(browser.difference(first, browser.canvas_picture(self.driver)), 0.001, keys)
        ActionChains(self.driver).drag_and_drop_by_offset(canvas, 80, 30).perform()
        self.assertGreater(browser.difference(first, browser.canvas_picture(self.driver)), 0.01)
        self.assertEqual(self.facts(), {}, "turning with the mouse selects nothing")

    def test_objects_are_selected_by_click_key_and_list(self):
        self.show("glass")
        self.choose("viewpoint", "front")
        browser.settled(self.driver)
        self.find("canvas").click()  # In the middle.
        clicked = self.facts()
        self.assertEqual(clicked["Triangles"], "12")
        self.assertEqual(clicked["Vertices"], "24")
        self.assertEqual((clicked["Colour"], clicked["Transparency"]), ("#0000ff", "50 %"))
        self.find("deselect").click()
        self.assertEqual(self.facts(), {})
        self.find("canvas").send_keys(Keys.ENTER)
        self.assertEqual(self.facts(), clicked)

        self.show("house")
        tree = self.find("tree")
        tree.find_element("css selector", "button.open").send_keys(Keys.ENTER)
        names = [button.text for button in tree.find_elements("css selector", "button.name")]
        self.assertIn("Homestead", names)
        self.assertGreater(len(names), 3)
        tree.find_element("css selector", "button.name").send_keys(Keys.ENTER)
        self.assertEqual(self.facts()["Name"], "Homestead")
        self.find("deselect").click()
        tree.find_element("css selector", "input").send_keys(Keys.SPACE)
        self.assertEqual(browser.coverage(browser.canvas_picture(self.driver)), 0)

    def test_surfaces_can_be_shown_in_other_ways(self):
        self.show("house")
        plain = browser.canvas_picture(self.driver)
        canvas = self.find("canvas")
        canvas.send_keys("w")
        wires = browser.canvas_picture(self.driver)
        self.assertLess(browser.coverage(wires), browser.coverage(plain) * 0.9)
        self.find("wireframe").click()
        canvas.send_keys("n")
        self.assertGreater(browser.difference(plain, browser.canvas_picture(self.driver)), 0.001)
        self.find("normals").click()
        self.choose("background", "black")
        self.assertEqual(browser.canvas_picture(self.driver).getpixel((3, 3)), (0, 0, 0))
        self.show("shiny")
        lit = browser.canvas_picture(self.driver)
        self.choose("light", "headlight")
        self.assertGreater(browser.difference(lit, browser.canvas_picture(self.driver)), 0.05)

    def test_texts_of_the_scene_are_not_run(self):
        name = "a<b>&amp;'\"</title><script>alert(2)"
        export(self.scene("hostile"), self.folder / f"{name}.html".replace("/", "_"))
        self.open(self.folder / f"{name}.html".replace("/", "_"))
        self.assertEqual(self.find("title").text, name.replace("/", "_"))
        self.assertEqual(self.driver.title, name.replace("/", "_"))
        self.assertEqual(self.driver.find_elements("tag name", "img"), [])
        shown = [button.text for button in self.driver.find_elements("css selector", "#tree .name")]
        while unopened := self.driver.find_elements("css selector", "#tree .open:enabled[aria-expanded=false]"):
            unopened[0].click()
            shown = [button.text for button in self.driver.find_elements("css selector", "#tree .name")]
        self.assertLessEqual({"_<", "script><img", "__proto__"}, set(shown))
        self.assertEqual(self.find("report").get_attribute("open"), "true")
        self.assertIn("Bogus", self.find("reportText").text)

    def test_the_download_is_the_file_that_vrmlexport_writes(self):
        self.show("house")
        export(self.scene("house"), self.folder / "house.glb")
        self.find("download").click()
        loaded = self.folder / "downloads" / "house.glb"
        expected = (self.folder / "house.glb").read_bytes()
        browser.wait_for(lambda: loaded.exists() and loaded.stat().st_size == len(expected))
        self.assertEqual(loaded.read_bytes(), expected)

    def test_dimensions_and_empty_scenes(self):
        self.show("glass")
        self.assertEqual(self.find("dimensions").text.split("\n")[:6],
                         ["Width", "2 m", "Height", "2 m", "Depth", "5 m"])
        self.show("nothing")
        self.assertIn("no objects", self.find("tree").text)
        self.assertEqual(browser.coverage(browser.canvas_picture(self.driver)), 0)

    def test_it_fits_a_phone_and_follows_the_dark_theme(self):
        self.show("house")
        self.driver.execute_cdp_cmd("Emulation.setDeviceMetricsOverride",
                                    {"width": 360, "height": 740, "deviceScaleFactor": 1, "mobile": True})
        self.driver.execute_cdp_cmd("Emulation.setEmulatedMedia", {
            "features": [{"name": "prefers-color-scheme", "value": "dark"}]})
        try:
            self.assertEqual(self.driver.execute_script("return document.documentElement.scrollWidth"), 360)
            shown = browser.canvas_picture(self.driver)
            corner = shown.getpixel((3, 3))
            self.assertLess(max(corner), 60)
            self.assertGreater(browser.coverage(shown, corner), 0.1)
        finally:
            self.driver.execute_cdp_cmd("Emulation.clearDeviceMetricsOverride", {})
            self.driver.execute_cdp_cmd("Emulation.setEmulatedMedia", {"features": []})

    def test_errors_are_shown_on_the_page(self):
        export(self.scene("glass"), self.folder / "glass.html")
        text = (self.folder / "glass.html").read_text()
        for what, broken in {"data": text.replace('class="glb">Z2xURg', 'class="glb">AAAAAA'),
                             "base64": text.replace('class="glb">', 'class="glb">!')}.items():
            with self.subTest(what):
                self.assertNotEqual(broken, text)
                (self.folder / "broken.html").write_text(broken)
                self.open(self.folder / "broken.html", "failed")
                self.assertIn("cannot be shown", self.find("trouble").text)
                browser.complaints(self.driver)
        without = browser.start(self.folder, "--disable-3d-apis")
        try:
            without.get((self.folder / "glass.html").as_uri())
            trouble = without.find_element("id", "trouble")
            browser.wait_for(trouble.is_displayed)
            self.assertIn("WebGL", trouble.text)
        finally:
            without.quit()


if __name__ == "__main__":
    VRMLEXPORT, EXAMPLES = sys.argv[1], Path(sys.argv[2])
    unittest.main(argv=sys.argv[:1])
