#!/usr/bin/env python3
"""Runs meshcast-batch over folders of valid, repairable, invalid, huge and unreadable scenes with difficult
names; interrupts runs, and resumes them.

Usage: runs_test.py FOLDER_OF_A_PROGRAM...
"""

import gzip
import os
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest
from pathlib import Path

HEADER = "#VRML V1.0 ascii\n"
CUBE = HEADER + "Cube { }\n"
AWKWARD = "in side/a 'b\" $(touch pwned) {1} `touch pwned`.wrl"


def huge():
    points = "".join(f"{i} 0.25 -1.5," for i in range(1000))
    faces = "".join(f"{i}, 0, 1, -1," for i in range(2, 1000))
    mesh = f"Separator {{ Coordinate3 {{ point [ {points} ] }} IndexedFaceSet {{ coordIndex [ {faces} ] }} }}\n"
    return HEADER + "Group {\n" + mesh * 200 + "}\n"


def endless():
    """A scene of a kilobyte with nested USE: 2 to the power of 40 cubes."""
    levels = "".join(f"DEF L{i} Group {{ USE L{i - 1} USE L{i - 1} }}\n" for i in range(1, 41))
    return f"{HEADER}Separator {{ Switch {{ DEF L0 Cube {{ }} {levels} }} USE L40 }}\n"


class Runs(unittest.TestCase):
    def setUp(self):
        self.temporary = tempfile.TemporaryDirectory()
        self.root = Path(self.temporary.name)
        self.environment = dict(os.environ, HOME=str(self.root))
        (self.root / "in").mkdir()

    def tearDown(self):
        self.temporary.cleanup()

    def put(self, name, text=CUBE):
        path = self.root / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(text if isinstance(text, bytes) else text.encode())
        return path

    def run_batch(self, status, *arguments, **environment):
        """Runs the program, which must end with this status; returns its messages."""
        ended = subprocess.run(["meshcast-batch", *arguments], cwd=self.root, capture_output=True, check=False,
                               env=dict(self.environment, **environment))
        self.assertEqual((ended.returncode, ended.stdout), (status, b""), ended.stderr)
        return ended.stderr.decode()

    def rows(self, folder="out"):
        """The table as a dictionary of lists: status, objects, vertices, polygons, repairs, message, outputs."""
        lines = (self.root / folder / "meshcast-batch.tsv").read_text().split("\n")
        self.assertEqual(lines[0], "file\tstatus\tobjects\tvertices\tpolygons\trepairs\tseconds\tmessage\toutputs")
        rows = [line.split("\t") for line in lines[1:-1]]
        for row in rows:
            self.assertRegex(row.pop(6), r"^\d+\.\d{3}$")
        return {row[0]: row[1:] for row in rows}

    def files(self, folder="out"):
        base = self.root / folder
        return sorted(str(path.relative_to(base)) for path in base.rglob("*") if path.is_file())

    def fill(self):
        packed = gzip.compress(CUBE.encode())
        for name in ("-dash.wrl", "new\nline\t\\.WRL", "two.wrl", "two.wrl.gz.wrl", AWKWARD):
            self.put("in/" + name)
        self.put("in/two.wrl.gz", packed)
        self.put("in/packed.wrz", packed)
        self.put("in/dirty.wrl", "#VRML V1.0 ascii\r\nCube { }\r\n")
        self.put("in/empty.wrl", HEADER + "Separator { }\n")
        self.put("in/bad.wrl", "neither\n")
        self.put("in/huge.wrl", huge())
        self.put("in/folder.wrl/readme.txt", "")
        (self.root / "in/dangling.wrl").symlink_to("nowhere")
        os.mkfifo(self.root / "in/pipe.wrl")

    def test_every_scene_gets_its_row_and_stream(self):
        self.fill()
        said = self.run_batch(1, "in", "out")
        self.assertRegex(said, r"^meshcast-batch: scenes: 13, ok: 9, empty: 1, unreadable: 2, refused: 1; see .*\.tsv\n$")
        cube = ["ok", "1", "24", "6", "0", "", "geom"]
        mended = ["ok", "1", "24", "6", "1", "", "geom"]
        unread = ["unreadable", "0", "0", "0", "0", "not a file that can be read", ""]
        rows = self.rows()
        self.assertRegex(rows.pop("bad.wrl")[5], "^is not VRML")
        self.assertEqual(list(rows.items()), [
            ("-dash.wrl", cube), ("dangling.wrl", unread), ("dirty.wrl", mended),
            ("empty.wrl", ["empty", "0", "0", "0", "0", "", "geom"]),
            ("huge.wrl", ["ok", "200", "200000", "199600", "0", "", "geom"]), (AWKWARD, cube),
            ("new\\nline\\t\\\\.WRL", cube), ("packed.wrz", mended), ("pipe.wrl", unread), ("two.wrl", cube),
            ("two.wrl.gz", mended), ("two.wrl.gz.wrl", cube)])
        expected = subprocess.run(["meshcast"], input=CUBE.encode(), capture_output=True, check=True).stdout
        streams = ["-dash", "dirty", AWKWARD[:-4], "new\nline\t\\", "packed", "two.wrl", "two.wrl.gz", "two.wrl.gz.wrl"]
        self.assertEqual(self.files(), sorted(["empty.geom", "huge.geom", "meshcast-batch.tsv",
                                               *(name + ".geom" for name in streams)]))
        for name in streams:
            self.assertEqual((self.root / "out" / (name + ".geom")).read_bytes(), expected)
        self.assertFalse(list(self.root.rglob("pwned")))

    def test_an_interrupted_run_is_resumed(self):
        self.fill()
        self.run_batch(1, "in", "whole")
        # A tidier that hangs in the middle of the huge scene as long as the file `blocked` exists.
        blocked = self.put("blocked", "")
        tidier = self.put("slow/vrmltidy", f"""#!/bin/bash
            if [[ ${{!#}} == */huge.wrl && -e {blocked} ]]; then
                head -c 1000000 huge.wrl
                echo >>{blocked}
                exec sleep 60
            fi
            exec {shutil.which("vrmltidy")} "$@"\n""")
        tidier.chmod(0o755)
        self.environment["PATH"] = f"{tidier.parent}:{os.environ['PATH']}"
        self.put("parts/meshcast-batch.tsv", "")
        run = subprocess.Popen(["meshcast-batch", "--jobs", "1", "in", "parts"], cwd=self.root,
                               env=self.environment, stderr=subprocess.PIPE)
        while not blocked.stat().st_size:
            time.sleep(0.05)
        self.assertIn("another run", self.run_batch(2, "--resume", "in", "parts"))
        run.send_signal(signal.SIGTERM)
        self.assertRegex(run.communicate()[1].decode(), r"interrupted: \d+ of 13 scenes are done")
        self.assertEqual(run.returncode, 143)
        self.assertNotIn("huge.geom", self.files("parts"))
        self.assertEqual([name for name in self.files("parts") if "geom" not in name], [".meshcast-batch/journal"])
        first = (self.root / "parts/-dash.geom").stat().st_ino
        blocked.unlink()
        with open(self.root / "parts/.meshcast-batch/journal", "a", encoding="ascii") as journal:
            journal.write("pipe.wrl\tfail")  # An incomplete row.
        self.run_batch(1, "--resume", "in", "parts")
        self.assertEqual((self.root / "parts/-dash.geom").stat().st_ino, first)
        self.assertEqual(self.rows("parts"), self.rows("whole"))
        self.assertEqual(self.files("parts"), self.files("whole"))

        # Failed scenes are tried again only with --resume-failed; a missing stream is written again.
        self.put("in/bad.wrl")
        (self.root / "parts/dirty.geom").unlink()
        self.run_batch(1, "--resume", "in", "parts")
        self.assertIn("dirty.geom", self.files("parts"))
        self.assertEqual(self.rows("parts")["bad.wrl"][0], "refused")
        self.run_batch(1, "--resume-failed", "in", "parts")
        self.assertEqual(self.rows("parts")["bad.wrl"][0], "ok")

    def test_old_outputs_are_removed_and_foreign_files_kept(self):
        self.put("in/a.wrl")
        self.put("in/b.wrl")
        self.put("in/c.wrl", HEADER + "Group { Cube { } Bogus { } }")
        self.put("out/c.geom", "somebody's own")
        self.run_batch(1, "--strict", "in", "out")
        self.assertEqual(self.rows()["c.wrl"][0], "refused")
        self.assertEqual((self.root / "out/c.geom").read_text(), "somebody's own")
        # A trace among the records damages a stream; the valid one of the earlier run is removed.
        self.run_batch(1, "in", "out", KRA_GEOM_DEBUG="1")
        self.assertEqual(self.rows()["a.wrl"][0], "broken")
        self.assertRegex(self.rows()["a.wrl"][5], r"^offset \d+: ")
        self.assertEqual(self.files(), ["c.geom", "meshcast-batch.tsv"])

    def test_scenes_that_exceed_a_limit_are_stopped(self):
        self.put("in/endless.wrl", endless())
        self.put("in/good.wrl")
        self.assertLess((self.root / "in/endless.wrl").stat().st_size, 1500)
        self.run_batch(1, "--max-output", "2M", "in", "out")
        self.assertEqual(self.rows()["endless.wrl"][5], "an output grew larger than 2097152 bytes")
        self.run_batch(1, "--timeout", "0.5", "--resume-failed", "in", "out")
        self.assertEqual(self.rows()["endless.wrl"][0::5], ["timeout", "took longer than 0.5 s"])
        points = ", ".join(f"{i} {i % 7} 0" for i in range(20000))
        self.put("in/big.wrl", f"{HEADER}Separator {{ Coordinate3 {{ point [ {points} ] }} PointSet {{ }} }}")
        self.run_batch(1, "--max-output", "100K", "--to", "glb", "--resume", "in", "out")
        self.assertEqual(self.rows()["big.wrl"][5], "an output grew larger than 102400 bytes")
        self.assertEqual(self.rows()["good.wrl"], ["ok", "1", "24", "12", "0", "", "glb"])

    def test_folders_may_have_any_name(self):
        self.put("-/a.wrl")
        self.put("-/meshcast-batch.tsv/a.wrl")
        self.put("-/" + "n" * 251 + ".wrl")
        self.put("-/c1\u009b.wrl")
        for _ in range(2):
            self.run_batch(0, "--", "-", "-out\n")
            self.assertEqual(list(self.rows("-out\n")), ["a.wrl", "c1\\xc2\\x9b.wrl", "meshcast-batch.tsv/a.wrl",
                                                       "n" * 251 + ".wrl"])
        self.assertIn("meshcast-batch.tsv_/a.geom", self.files("-out\n"))
        self.assertEqual(sorted(set(os.listdir(self.root)) - {".parallel"}), ["-", "-out\n", "in"])

    def test_links_out_of_the_folder_need_an_option(self):
        self.put("elsewhere/e.wrl")
        (self.root / "in/link.wrl").symlink_to("../elsewhere/e.wrl")
        (self.root / "in/deep").symlink_to("../elsewhere")
        (self.root / "in/up").symlink_to(".")
        (self.root / "in/loop.wrl").symlink_to("loop.wrl")
        self.run_batch(1, "in", "out")
        self.assertEqual({name: row[0] for name, row in self.rows().items()},
                         {"link.wrl": "unreadable", "loop.wrl": "unreadable"})
        self.run_batch(1, "--follow", "in", "out")
        self.assertEqual({name: row[0] for name, row in self.rows().items()},
                         {"deep/e.wrl": "ok", "link.wrl": "ok", "loop.wrl": "unreadable"})

    def test_inlined_scenes_come_from_anywhere_below_the_folder(self):
        self.put("in/two.wrl")
        self.put("in/in side/inline.wrl", HEADER + 'WWWInline { name "../two.wrl" }\n')
        self.run_batch(0, "--inline", "in", "out")
        self.assertEqual((self.root / "out/in side/inline.geom").read_bytes(),
                         (self.root / "out/two.geom").read_bytes())

    def test_several_kinds_and_the_gallery(self):
        self.put("in/sub/a.wrl")
        self.put("in/index.wrl")
        self.put("in/bad.wrl", "neither")
        self.assertIn("index.html", self.run_batch(1, "--to", "png,geom,glb,html", "--size", "32x24", "in", "out"))
        rows = self.rows()
        self.assertEqual(rows["sub/a.wrl"], ["ok", "1", "24", "6", "0", "", "png,geom,glb,html"])
        self.assertEqual(rows["bad.wrl"][0], "refused")
        self.assertEqual(self.files(), sorted(
            ["index.html", "meshcast-batch.tsv"] +
            [f"{name}.{kind}" for name in ("sub/a", "index.wrl") for kind in ("png", "geom", "glb", "html")]))
        subprocess.run(["vrmlexport", "in/sub/a.wrl", "a.glb"], cwd=self.root, check=True)
        self.assertEqual((self.root / "out/sub/a.glb").read_bytes(), (self.root / "a.glb").read_bytes())
        self.put("in/sub/a.wrl", "now bad")
        self.run_batch(1, "--to", "png,geom,glb,html", "in", "out")
        self.assertFalse([name for name in self.files() if name.startswith("sub/")])
        self.run_batch(1, "--to", "png,glb", "in", "out")
        self.assertEqual(self.rows()["bad.wrl"][0::5], rows["bad.wrl"][0::5], "vrmlexport refuses the same scenes as the tidier")

    def test_other_machines_may_have_other_shells_and_locales(self):
        self.put("in/a.wrl")
        self.put("in/two.wrl.gz", gzip.compress(CUBE.encode()))
        far = self.put("far/ssh", """#!/bin/sh
            [ "$1" = near ] || exit 255
            shift
            [ "$1" != -- ] || shift
            cd / && exec env -i HOME="$HOME" PATH="$FAR_PATH" SHELL=/bin/sh LC_ALL=de_DE.UTF-8 /bin/sh -c "$*"\n""")
        far.chmod(0o755)
        self.run_batch(0, "--sshlogin", f"{far} near,{far} lost", "in", "far\n", FAR_PATH=os.environ["PATH"],
                       KRA_GEOM_WRITE_V2="1")
        self.assertEqual((self.root / "far\n/a.geom").read_bytes()[:4], b"46MG")
        self.run_batch(0, "in", "near")
        self.assertEqual(self.rows("far\n"), self.rows("near"))


if __name__ == "__main__":
    os.environ["PATH"] = ":".join([*sys.argv[1:], os.environ["PATH"]])
    unittest.main(argv=sys.argv[:1])
