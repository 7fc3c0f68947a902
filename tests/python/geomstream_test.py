"""Compares the Python reader with `geomtool info`: both must find the same objects, values and errors in
the streams of scenes, in streams of all kinds of objects, and in truncated and damaged streams.
Usage: geomstream_test.py GEOMTOOL MESHCAST FOLDER_OF_PROJECT"""

import io
import json
import os
import pathlib
import random
import struct
import subprocess
import sys
import tempfile
import tracemalloc
import unittest

import numpy as np

import geomstream

GEOMTOOL, MESHCAST = sys.argv[1:3]
PROJECT = pathlib.Path(sys.argv[3])
NAMES = {"vertex_data": "vertex-data", "primitive_data": "primitive-data", "vertex_trans": "vertex-trans"}
ARRAYS = ("normals", "colours", "uvs", "uvws", "vertex_data", "primitive_data", "vertex_trans")


def listed(values):
    """An array as geomtool prints it, with the bits of each float instead of its digits."""
    if values.dtype == np.float32:
        values = np.where(np.isnan(values), np.float32("nan"), values).view(np.uint32)
    return values.tolist()


def bits(value):
    """The values of geomtool, with the bits of floats."""
    if isinstance(value, dict):
        return {key: bits(entry) for key, entry in value.items()}
    if isinstance(value, list):
        return [bits(entry) for entry in value]
    if isinstance(value, float) or value in ("nan", "inf", "-inf"):
        return listed(np.float32(value))
    return value


def arrays(part, vertices="vertices", names=ARRAYS):
    found = {vertices: listed(getattr(part, vertices if hasattr(part, vertices) else "vertices"))}
    for name in names:
        values = getattr(part, name)
        if values is not None and len(values):
            found[NAMES.get(name, name)] = listed(values)
    return found


def values_of(obj):
    """The arrays of an object under the names that geomtool gives them."""
    properties = [{"bytes": list(entry.data)} if entry.data else {} for entry in obj.properties]
    return body_values(obj) | ({"properties": properties} if properties else {})


def body_values(obj):
    if isinstance(obj, geomstream.Polytriangle):
        found = {}
        for name in ("strips", "polylines"):
            if parts := getattr(obj, name):
                found[name] = [arrays(part) for part in parts]
        if obj.segments:
            found["segments"] = arrays(obj.segments)
        return found
    if isinstance(obj, geomstream.Sphere):
        return arrays(obj, "centres", ("radii", *ARRAYS))
    if isinstance(obj, geomstream.Label):
        found = arrays(obj, "positions", ("offsets", "heights", "colours"))
        if obj.data is not None and len(obj.data):
            found["label-data"] = listed(obj.data)
        return found | ({"texts": obj.texts} if obj.texts else {})
    found = arrays(obj)
    if isinstance(obj, geomstream.Polyhedron):
        polygons, place, words = [], 0, obj.polygon_list.tolist()
        while words[place]:
            polygons.append(words[place + 1:place + 1 + words[place]])
            place += 1 + words[place]
        if polygons:
            found["polygons"] = polygons
        if len(polygons) < obj.polygon_count:
            found["polygon-list"] = words
    return found


def summary(obj):
    """An object as geomtool lists it, with the entries that the reader knows."""
    return {"kind": type(obj).__name__.lower(), "version": obj.version, "offset": obj.offset,
            "size": obj.size, "data": int(obj.flags), "name": obj.name, "text": obj.second_text,
            "properties": [{"kind": p.kind, "value": p.value, "length": len(p.data)}
                           for p in obj.properties],
            "hdrsize": obj.header_size, "bytecount": obj.byte_count,
            "extent": None if obj.extent is None else listed(obj.extent.reshape(-1)),
            "values": values_of(obj)}


def read_all(stream):
    objects, error = [], None
    try:
        for obj in geomstream.read(io.BytesIO(stream)):
            objects.append(summary(obj))
    except geomstream.StreamError as problem:
        error = {"offset": problem.offset, "message": problem.reason}
    return objects, error


class Encoder:
    """Writes records of random objects with any arrays of the format."""

    def __init__(self, seed):
        self.random = random.Random(seed)

    def pack(self, code, *values):
        return struct.pack(self.order + code, *values)

    def floats(self, count):
        special = (0.0, -0.0, 1.5, -3e38, 1e-45, float("inf"), 0.1)
        return self.pack(f"{count}f", *(self.random.choice(special) for _ in range(count)))

    def ints(self, count):
        return self.pack(f"{count}i", *(self.random.randint(-2**31, 2**31 - 1) for _ in range(count)))

    def run(self, data):
        return data + bytes(-len(data) % 4 if self.order == ">" else 0)

    def vertex_arrays(self, allowed, count, primitives):
        count = max(count, 0)
        parts = []
        for bit, data in ((1, lambda: self.floats(3 * count)), (2, lambda: self.floats(3 * count)),
                          (4, lambda: self.floats(2 * count)), (8, lambda: self.floats(3 * count)),
                          (0x80, lambda: self.ints(count)), (0x40, lambda: self.ints(max(primitives, 0))),
                          (0x100, lambda: self.floats(count))):
            if self.flags & allowed & bit:
                parts.append(data())
        return b"".join(parts)

    def body(self, kind):
        few = lambda: self.random.choice((0, 1, 2, 3, 5))
        count = lambda *values: self.pack(f"{len(values)}q", *values)
        surface, line = 0x1CF, 0xC2
        if kind == 1:
            u, v = few(), few()
            return (count(u, v) + self.floats(3 * u * v)
                    + self.vertex_arrays(surface, u * v, (u - 1) * (v - 1) if u * v else 0))
        if kind == 2:
            polygons = [[self.random.randint(-1, 6) for _ in range(self.random.randint(1, 4))]
                        for _ in range(few())]
            words = [word for polygon in polygons for word in (len(polygon), *polygon)] + [0]
            corners = sum(map(len, polygons))
            if polygons and self.random.random() < 0.2:
                words[len(polygons[0]) + 1] = 0  # the list ends early
            vertices = few()
            return (count(len(polygons), corners, vertices) + count(*words) + self.floats(3 * vertices)
                    + self.vertex_arrays(surface, vertices, len(polygons)))
        if kind == 3:
            strips, polylines, segments = few(), few(), self.random.choice((0, 1, 4, 5))
            data = count(strips, polylines, int(segments > 0))
            for allowed, number, less in ((surface, strips, 2), (line, polylines, 1)):
                for _ in range(number):
                    size = few()
                    data += count(size) + self.floats(3 * size)
                    data += self.vertex_arrays(allowed, size, size - less)
            if segments:
                data += count(segments) + self.floats(3 * segments)
                data += self.vertex_arrays(line, segments, segments // 2)
            return data
        size = few()
        if kind == 4:
            radii = b"" if self.flags & 0x20 else self.floats(size)
            return count(size) + self.floats(3 * size) + radii + self.vertex_arrays(0x183, size, 0)
        texts = [self.random.choice((b"", b"door", "Tür".encode())) + b"\0" for _ in range(size)]
        data = count(size) + self.ints(1)
        for text in texts:
            data += self.pack("i", len(text)) + self.run(text)
        return (data + self.floats(7 * size) + (self.floats(3 * size) if self.flags & 2 else b"")
                + (self.ints(size) if self.flags & 0x10 else b""))

    def record(self):
        self.order = self.random.choice("<>")
        self.flags = self.random.choice((0, 1, 0x1FF, self.random.randrange(0x200)))
        kind = self.random.randint(1, 5)
        names = self.random.choice(((b"", b""), (b"house", b"a note")))
        properties = [(6, b"", 2), (1, b"abc", 0)][:self.random.choice((0, 0, 1, 2))]
        size = sum(12 + len(data) for _, data, _ in properties)
        if self.order == "<":
            texts = b"".join(name + b"\0" for name in names)
            size += len(texts)
        else:
            texts = b"".join(self.pack("i", len(name)) + self.run(name) for name in names)
        header = self.pack("iiII", 0x474D3634, size, self.flags, kind) + self.floats(6)
        header += self.pack("iqi", self.random.randint(0, 1), self.random.getrandbits(62), len(properties))
        for number, data, value in properties:
            header += self.pack("iii", number, len(data), value) + self.run(data)
        return header + texts + self.body(kind)

    def stream(self):
        return b"".join(self.record() for _ in range(self.random.randint(0, 3)))

    def damaged(self):
        """A stream with some bytes or words overwritten or inserted."""
        data = bytearray(self.stream() or self.record())
        for _ in range(self.random.randint(1, 3)):
            place = self.random.randrange(len(data) + 1)
            if self.random.random() < 0.5:
                place -= place % 4
            word = self.random.choice((b"\0", b"\xff", bytes(8), b"\xff" * 8, bytes(7) + b"\x03",
                                       b"\x7f" + b"\xff" * 7, b"\x10" + bytes(7)))
            data[place:place + self.random.choice((0, len(word)))] = word
        return bytes(data)


class Reader(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(cls.folder.cleanup)

    def agrees(self, stream, what):
        """Compares the results of both readers; returns whether the stream is valid."""
        path = pathlib.Path(self.folder.name, "stream")
        path.write_bytes(stream)
        said = subprocess.run([GEOMTOOL, "info", "--json", "--values", path], capture_output=True)
        expected = json.loads(said.stdout)
        objects, error = read_all(stream)
        self.assertEqual(error, expected["error"], what)
        self.assertEqual(len(objects), len(expected["objects"]), what)
        for obj, entry in zip(objects, expected["objects"]):
            self.assertEqual(obj, {key: bits(entry[key]) for key in obj}, what)
        return error is None

    def test_streams_of_scenes(self):
        scenes = [*(PROJECT / "examples").glob("*.wrl"), *(PROJECT / "tests/scenes").glob("*.wrl")]
        self.assertGreater(len(scenes), 50)
        for scene in scenes:
            for variables in ({}, {"KRA_GEOM_WRITE_V2": "1"}):
                with open(scene, "rb") as text:
                    stream = subprocess.run([MESHCAST], stdin=text, capture_output=True,
                                            env=os.environ | variables).stdout
                self.assertTrue(self.agrees(stream, f"{scene.name} {variables}"))

    def test_objects_of_all_kinds(self):
        for seed in range(200):
            self.assertTrue(self.agrees(Encoder(seed).stream(), f"seed {seed}"))

    def test_cut_streams(self):
        for seed in range(5):
            stream = Encoder(1000 + seed).record()[:400]
            for length in range(len(stream)):
                self.agrees(stream[:length], f"seed {seed}, {length} bytes")

    def test_damaged_streams(self):
        refused = sum(not self.agrees(Encoder(seed).damaged(), f"seed {seed}") for seed in range(2000, 2600))
        self.assertGreater(refused, 200)

    def test_a_large_count_needs_no_memory(self):
        header = struct.pack(">iiII", 0x474D3634, 0, 1, 2) + bytes(24) + struct.pack(">iqiii", 0, 0, 0, 0, 0)
        for counts in ((0, 0, 2**60), (2**60, 0, 0)):
            tracemalloc.start()
            with self.assertRaises(geomstream.StreamError):
                list(geomstream.read(io.BytesIO(header + struct.pack(">3q", *counts) + bytes(1000))))
            _, peak = tracemalloc.get_traced_memory()
            tracemalloc.stop()
            self.assertLess(peak, 2**20)

    def test_faces_and_lines(self):
        vertices = np.zeros((6, 3), np.float32)
        solid = geomstream.Polyhedron(vertices=vertices, polygon_count=3, index_count=9,
                                      polygon_list=np.array([3, 1, 2, 3, 3, 4, 5, 9, 3, 4, 5, 6, 0]))
        self.assertEqual([list(face) for face in solid.faces()], [[0, 1, 2], [3, 4, 5]])
        grid = geomstream.Mesh(vertices=vertices, u=3, v=2)
        self.assertEqual([list(face) for face in grid.faces()], [[0, 1, 4, 3], [1, 2, 5, 4]])
        part = geomstream.VertexArrays(vertices[:4])
        both = geomstream.Polytriangle(strips=[part], polylines=[part], segments=part)
        self.assertEqual([list(face) for face in both.faces()], [[0, 1, 2], [2, 1, 3]])
        self.assertEqual([list(line) for line in both.lines()], [[4, 5, 6, 7], [8, 9], [10, 11]])
        self.assertEqual(len(both.vertices), 12)

    def test_the_example_writes_what_the_stream_holds(self):
        with open(PROJECT / "examples/house.wrl", "rb") as text:
            stream = subprocess.run([MESHCAST], stdin=text, capture_output=True).stdout
        text = subprocess.run([sys.executable, "-B", PROJECT / "python/examples/stream_to_obj.py"],
                              input=stream, capture_output=True, check=True).stdout.decode()
        objects = list(geomstream.read(io.BytesIO(stream)))
        letters = [line[0] for line in text.splitlines()]
        self.assertEqual(letters.count("o"), len(objects))
        self.assertEqual(letters.count("v"), sum(len(obj.vertices) for obj in objects))
        self.assertEqual(letters.count("f"), sum(len(obj.faces()) for obj in objects))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
