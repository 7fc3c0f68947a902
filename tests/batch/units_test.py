#!/usr/bin/env python3
"""Tests the parts of meshcast-batch that run before and after its jobs.

Usage: units_test.py FOLDER_OF_THE_PACKAGE
"""

import json
import os
import re
import sys
import tempfile
import unittest
from pathlib import Path

sys.path.insert(0, sys.argv.pop(1))

from meshcast_batch import command_line, gallery, scenes, table  # noqa: E402
from meshcast_batch.job import printable  # noqa: E402


class Texts(unittest.TestCase):
    def test_control_characters_are_escaped(self):
        self.assertEqual(printable("a\tb\nc\\d\x1b\x7fé\x9b\u2028"),
                         "a\\tb\\nc\\\\d\\x1b\\x7fé\\xc2\\x9b\\xe2\\x80\\xa8")
        self.assertEqual(printable(os.fsdecode(b"\xff\x9b.wrl")), "\\xff\\x9b.wrl")


class Names(unittest.TestCase):
    def names(self, *found, kinds=("geom",), reserved=()):
        return scenes.name_outputs(list(found), list(kinds), set(reserved))

    def test_extensions_are_kept_where_names_would_be_equal(self):
        self.assertEqual(self.names("a.wrl", "b.wrl", "b.WRZ", "c/b.wrl.gz", "d.wrl.wrz", ".wrl", "E.Wrl.Gz"),
                         {"a.wrl": "a", "b.wrl": "b.wrl", "b.WRZ": "b.WRZ", "c/b.wrl.gz": "c/b",
                          "d.wrl.wrz": "d.wrl.wrz", ".wrl": "", "E.Wrl.Gz": "E"})

    def test_names_of_the_table_and_the_gallery_are_reserved(self):
        reserved = ("meshcast-batch.tsv", "index.html")
        self.assertEqual(self.names("meshcast-batch.tsv/a.wrl", "meshcast-batch.tsv_/a.wrl", "index.html/b.wrl",
                                    "index.wrl", "c/index.wrl", kinds=("html",), reserved=reserved),
                         {"meshcast-batch.tsv/a.wrl": "meshcast-batch.tsv__/a",
                          "meshcast-batch.tsv_/a.wrl": "meshcast-batch.tsv_/a",
                          "index.html/b.wrl": "index.html_/b", "index.wrl": "index.wrl",
                          "c/index.wrl": "c/index"})

    def test_long_names_are_truncated(self):
        long = ["x" * 250 + "1.wrl", "x" * 250 + "2.wrl", "é" * 126 + ".wrl"]
        names = self.names(*long, kinds=("geom", "glb"))
        self.assertEqual(len(set(names.values())), 3)
        for name in names.values():
            self.assertLessEqual(len(os.fsencode(name + ".geom")), 255)
            self.assertRegex(name, r"^(x+|é+)-[0-9a-f]{16}$")


class Search(unittest.TestCase):
    def test_links_out_of_the_folder_and_cycles_of_links(self):
        with tempfile.TemporaryDirectory() as name:
            root = Path(name, "in")
            for folder in ("sub", "out", "locked"):
                (root / folder).mkdir(parents=True)
            Path(name, "elsewhere").mkdir()
            for file in ("in/-a.wrl", "in/sub/B.WRL", "in/sub/c.txt", "in/out/old.wrl", "elsewhere/e.wrl"):
                Path(name, file).touch()
            (root / "sub" / "up").symlink_to("..")
            (root / "loop.wrl").symlink_to("loop.wrl")
            (root / "link").symlink_to("../elsewhere")
            (root / "file.wrl").symlink_to("../elsewhere/e.wrl")
            own = os.path.realpath(root / "out")
            found, errors = scenes.find_scenes(root, own, False)
            self.assertEqual((found, errors), (["-a.wrl", "file.wrl", "loop.wrl", "sub/B.WRL"], []))
            found, _ = scenes.find_scenes(root, own, True)
            self.assertEqual(found, ["-a.wrl", "file.wrl", "link/e.wrl", "loop.wrl", "sub/B.WRL"])
            self.assertEqual(len(scenes.find_scenes(root / "missing", own, False)[1]), 1)


class Tables(unittest.TestCase):
    def test_only_valid_rows_are_kept(self):
        good = "a.wrl\tok\t1\t2\t3\t0\t0.1\t\tgeom,glb"
        lines = [table.HEADER, good, "b.wrl\tdone\t1\t2\t3\t0\t0.1\t\tgeom", "c.wrl\tok\tx\t2\t3\t0\t0.1\t\tgeom",
                 "\tok\t1\t2\t3\t0\t0.1\t\tgeom", "d.wrl\tok", "old.wrl\tok\t1\t2\t3\t0\t0.1\tsaid",
                 "bad.wrl\tfailed\t0\t0\t0\t0\t0.1\twhy", "cut.wrl\tok\t1\t2\t3\t0\t0.1\t\tgeom"]
        with tempfile.TemporaryDirectory() as name:
            path = Path(name, "table")
            path.write_text("\n".join(lines))
            rows = table.read_rows(path)
            self.assertEqual(list(rows), ["a.wrl", "old.wrl", "bad.wrl"])
            self.assertEqual((rows["a.wrl"].line(), rows["old.wrl"].outputs, rows["bad.wrl"].outputs),
                             (good, "geom", ""))
            table.write_rows(str(path), rows.values())
            self.assertEqual(table.read_rows(path), rows)
            self.assertEqual(os.listdir(name), ["table"])
            self.assertEqual(table.read_rows(Path(name)), {})


class CommandLines(unittest.TestCase):
    def test_values(self):
        parsed = command_line.parse(["--max-output", "3K", "--to", "png,geom,png", "--timeout=0", "--", "-", "-x"], "1")
        self.assertEqual((parsed.max_output, parsed.to, parsed.timeout, parsed.scenes, parsed.output),
                         (3072, ["png", "geom"], 0, "-", "-x"))
        parsed = command_line.parse(["a", "b"], "1")
        self.assertEqual((parsed.max_output, parsed.timeout, parsed.to), (4 << 30, 600, ["geom"]))

    def test_wrong_usage(self):
        for words in ([], ["a"], ["a", "b", "c"], ["--jobs", "0", "a", "b"], ["--jobs", "-1", "a", "b"],
                      ["--max-output", "4X", "a", "b"], ["--max-output", "0", "a", "b"], ["--to", "obj", "a", "b"],
                      ["--to", "", "a", "b"], ["--timeout", "1e9", "a", "b"], ["--size", "0x1", "a", "b"],
                      ["--time", "3", "a", "b"], ["-x", "a", "b"]):
            with self.subTest(words), self.assertRaises(command_line.WrongUsage):
                command_line.parse(words, "1")


class Galleries(unittest.TestCase):
    def test_names_and_messages_are_escaped(self):
        name = "</script><b>&.wrl"
        row = table.Row(name, "ok", 1, 2, 3, 0, "0.1", "<i>", "png")
        bad = table.Row("javascript:x.wrl", "failed", 0, 0, 0, 0, "0.1", "why", "")
        page = gallery.page("<t>&", [row, bad], {name: "java:</\udcff#?%", bad.file: "x"}, ["png"])
        self.assertEqual(page.count("</script>"), 2)
        self.assertIn("<title>&lt;t&gt;&amp;</title>", page)
        data = json.loads(re.search(r'id="data">(.*?)</script>', page)[1])
        self.assertEqual(data["rows"], [
            [name, "ok", 1, 2, 3, 0, "<i>", "./java%3A%3C/%FF%23%3F%25"],
            ["javascript:x.wrl", "failed", 0, 0, 0, 0, "why", None]])


if __name__ == "__main__":
    unittest.main()
