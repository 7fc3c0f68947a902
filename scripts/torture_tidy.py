#!/usr/bin/env python3
"""Feeds vrmltidy scenes that are meant to slow it down, one kind after the other, at two sizes.

    scripts/torture_tidy.py PROGRAM [--megabytes 16] [--only WORD]

Prints for each kind the nanoseconds and the bytes of memory per byte of input. Ends with status 1 if the
time per byte at the full size is more than twice that at a sixteenth of it, if memory exceeds MOST bytes
per byte, if the program crashes, or if a run takes longer than SECONDS.
"""
import argparse
import gzip
import os
import struct
import subprocess
import sys
import tempfile

from torture import FEW_BYTES, HEADER, SCENES, Scene

MOST = 100  # bytes of memory per byte of input: a scene may need an edit for each byte
SECONDS = 60
NOTHING = 0.05  # seconds: shorter runs do not show growth


def colliding_names():
    """Names with the same std::hash on 64-bit machines, found by inverting MurmurHash64A."""
    mask, multiplier = (1 << 64) - 1, 0xC6A4A7935BD1E995
    inverse = pow(multiplier, -1, 1 << 64)
    number = 0
    while True:
        number += 1
        first = 0x6161616161616161 + (number // 200 << 8) + number % 200 % 20 + (number % 200 // 20 << 16)
        mixed = first * multiplier & mask
        mixed = (mixed ^ mixed >> 47) * multiplier & mask
        half = ((0xC70F6907 ^ 16 * multiplier & mask) ^ mixed) * multiplier & mask
        second = half ^ 1
        second = second * inverse & mask
        second = (second ^ second >> 47) * inverse & mask
        name = struct.pack("<QQ", first, second)
        if not any(byte <= 32 or byte in b'"{}#[](),;\x7f\xff' for byte in name):
            yield name


class Names(Scene):
    """Definitions with names whose hashes collide."""

    def pieces(self, size):
        yield self.head
        made, names = 0, colliding_names()
        while made < size:
            piece = b"".join(b"DEF %s Cube{} " % next(names) for _ in range(1000))
            made += len(piece)
            yield piece
        yield self.tail


class Packed(Scene):
    """A compressed scene. It is measured by its decompressed size."""

    def pieces(self, size):
        yield gzip.compress(b"".join(super().pieces(size)), 1, mtime=0)


GROUP = b"Group {"
FAMILIES = [
    Scene("braces in words", GROUP, b"Info{string}", b"{"),
    Scene("braces in words that match", GROUP, b"Info{string}", b"}"),
    Scene("dropped after blanks", GROUP + b" " * 30000, b"x; "),
    Scene("dropped lines", GROUP, b"  ;\n"),
    Scene("dropped nodes", GROUP, b"X{}"),
    Scene("escaped quotes on lines", GROUP + b'Info { string "{', b'\n\\"'),
    Scene("escaped quotes", GROUP, b'\\"'),
    Scene("quotes", GROUP, b'"'),
    Scene("doubled quotes", GROUP, b'WWWAnchor { name ""x '),
    Scene("strings that run over", GROUP, b'Info { string "a\n{ '),
    Scene("strings", b"AsciiText { string [", b'"a" ', b"] }"),
    Scene("DEF without blanks", GROUP, b"DEF,"),
    Scene("USE without blanks", GROUP + b"DEF a Cube{}", b"USE,"),
    Scene("USE of long words", GROUP + b"DEF a Cube{}", b"USE a,"),
    Scene("DEF with a brace", GROUP, b"DEF a%x{}"),
    Scene("DEF and words", GROUP, b"DEF a b c d "),
    Scene("USE of the unknown", GROUP, b"USE a%x "),
    Scene("USE of the dropped", b"Group { X { DEF a Group { " + b"Cube{} " * 100 + b"} }", b"USE a "),
    Scene("chain of the dropped", GROUP + b"X { DEF a0 Cube{} ",
          b"DEF b%x Group { Y { DEF c Cube{} } USE c } "),
    Scene("open lists", GROUP, b"LOD { range [ 1 "),
    Scene("open lists with words", GROUP, b"LOD { range [ a "),
    Scene("commas", b"LOD { range [ 1 ", b",", b"] }"),
    Scene("missing commas", b"Coordinate3 { point [", b"0 0 0 ", b"] }"),
    Scene("words for numbers", b"Coordinate3 { point [", b"x, ", b"] }"),
    Scene("decimal commas", GROUP, b"Cube{width 1,5}"),
    Scene("numbers after a number", b"Cube { width ", b"1 ", b"}"),
    Scene("brackets", b"LOD { range [", b"[", b"] }"),
    Scene("mask", b"Cone { parts ", b"SIDES|", b"}"),
    Scene("words of a mask", GROUP, b"FontStyle{style bold | }"),
    Scene("image with commas", b"Texture2 { image 32767 32767 1 ", b"1,", b"}"),
    Scene("unknown fields", GROUP + b"Cube {", b"a%x 1 "),
    Scene("unknown fields of a group", GROUP, b"a [ 1 ] "),
    Scene("unknown nodes, nested", GROUP, b"X{"),
    Scene("declared nodes, nested", GROUP, b"X{fields[]y 1 ", limit=100000),
    Scene("declared fields", b"X { fields [", b"SFLong f%x,", b"] Y 1 }"),
    Scene("isA", GROUP, b'X{isA["Material"]}'),
    Scene("isA of nothing", GROUP, b'X{a 1 isA["x"]}'),
    Scene("isA far in", GROUP + b"X{", b"a 1 ", b'isA "Cube" }'),
    Scene("rotations", GROUP, b"RotationXYZ{angle 1}"),
    Scene("points left open", GROUP + b"Coordinate3{}", b"PointSet{}"),
    Scene("points for others", GROUP + b"DEF p PointSet{}Coordinate3{}",
          b"USE p Coordinate3{point[0 0 0,0 0 0]}USE p Coordinate3{}"),
    Scene("late fields", b"Switch { Cube{} ", b"whichChild 1 "),
    Scene("NULL", GROUP, b"NULL "),
    Scene("roots", b"", b"Cube{}"),
    Scene("closed leaves", GROUP, b"Cube{Cube{}"),
    Scene("closing braces", GROUP, b"}"),
    Scene("comments", GROUP, b"#\n;"),
    Scene("CR", b"Cube {", b"\r"),
    Scene("CRLF", b"Cube {", b"\r\n"),
    Scene("bytes 255", GROUP, b"\xff"),
    Scene("lines before the header", b"", b"\n", HEADER + b"Cube{}", header=b""),
    Scene("comments before the header", b"", b"#VRML V1\n", HEADER, header=b""),
    Names("names that collide", GROUP, b"", b"}"),
    Packed("compressed", GROUP, b"Cube{}", b"}"),
]


def measured(command, pieces=(), folder=None):
    """The status, the seconds used and the peak of memory in bytes."""
    with tempfile.TemporaryFile() as scene:
        for piece in pieces:
            scene.write(piece)
        length = scene.tell()
        scene.seek(0)
        process = subprocess.Popen(command, stdin=scene, stdout=subprocess.DEVNULL,
                                   stderr=subprocess.DEVNULL, cwd=folder,
                                   preexec_fn=lambda: os.setpriority(os.PRIO_PROCESS, 0, 5))
        try:
            _, status, usage = os.wait4(process.pid, 0)
        except KeyboardInterrupt:
            process.kill()
            raise
    process.returncode = os.waitstatus_to_exitcode(status)
    return process.returncode, usage.ru_utime + usage.ru_stime, usage.ru_maxrss * 1024, length


def check(program, scene, size):
    command = ["timeout", str(SECONDS), program, "--quiet"]
    small = min(measured(command, scene.pieces(size // 16)) for _ in range(2))
    large = min(measured(command, scene.pieces(size)) for _ in range(2))
    status, seconds, memory, length = large
    lengths = (size // 16, size) if isinstance(scene, Packed) else (small[3], length)
    per_byte = [run[1] / length for run, length in zip((small, large), lengths)]
    memory_per_byte = max(0, memory - FEW_BYTES) / lengths[1]
    good = (status in (0, 1) and memory_per_byte <= MOST and
            (seconds < NOTHING or small[1] == 0 or per_byte[1] <= 2 * max(per_byte[0], 1e-9)))
    print(f"{scene.name:36}{per_byte[0] * 1e9:9.1f}{per_byte[1] * 1e9:9.1f} ns/B"
          f"{memory_per_byte:7.1f} B/B" + ("" if good else f"  TOO MUCH, status {status}"), flush=True)
    return good


def check_inlines(program):
    """Makes a folder of scenes that inline one another, and scenes that inline these without end."""
    with tempfile.TemporaryDirectory() as folder:
        def write(name, data):
            with open(os.path.join(folder, name), "wb") as file:
                file.write(HEADER + data)

        inline = b'WWWInline{name "%s"}'
        write("self.wrl", GROUP + inline % b"self.wrl" * 1000)
        write("a.wrl", GROUP + inline % b"b.wrl" * 200)
        write("b.wrl", GROUP + inline % b"a.wrl" * 200)
        write("large.wrl", GROUP + b"Cube{}" * 800000 + b"}")
        for level in range(80):
            write(f"deep{level}.wrl", GROUP + inline % (b"deep%d.wrl" % (level + 1)) * 2)
        with open(os.path.join(folder, "bomb.wrl"), "wb") as file:
            file.write(gzip.compress(bytes(1 << 27)))
        with open(os.path.join(folder, "no.wrl"), "wb") as file:
            file.write(b"<html>")
        good = True
        for name in (b"none.wrl", b"self.wrl", b"a.wrl", b"large.wrl", b"deep0.wrl", b"bomb.wrl", b"no.wrl"):
            write("scene.wrl", GROUP + inline % name * 30000)
            command = ["timeout", str(SECONDS), program, "--quiet", "--inline", "scene.wrl"]
            status, seconds, memory, _ = measured(command, folder=folder)
            passed = status == 0 and seconds < SECONDS / 2
            good &= passed
            print(f"{'inlines of ' + name.decode():36}{seconds:9.2f} s{memory / 1e6:14.0f} MB"
                  + ("" if passed else f"  TOO MUCH, status {status}"), flush=True)
        return good


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("program", type=os.path.abspath)
    parser.add_argument("--megabytes", type=float, default=16)
    parser.add_argument("--only", default="", help="only scenes whose name contains this word")
    arguments = parser.parse_args()
    size = int(arguments.megabytes * (1 << 20))
    good = [check(arguments.program, scene, size) for scene in FAMILIES + SCENES
            if arguments.only in scene.name]
    if arguments.only in "inlines":
        good.append(check_inlines(arguments.program))
    return int(not all(good))


if __name__ == "__main__":
    sys.exit(main())
