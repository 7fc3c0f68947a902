#!/usr/bin/env python3
"""Feeds meshcast unusual scenes, one kind after the other. Prints for each the seconds, the nanoseconds
and bytes of memory per byte of input, and the first message.

    scripts/torture.py PROGRAM [--megabytes 100] [--only WORD]

Ends with status 1 if the result of a scene is not the one in the table, or if a scene takes more memory
per byte than MOST. Each scene is generated while it is read, and not stored.
"""
import argparse
import os
import re
import subprocess
import sys
import threading

HEADER = b"#VRML V1.0 ascii\n"
MOST = 64  # bytes of memory per byte of input
FEW_BYTES = 1 << 25  # memory that is not counted, since even a small scene may fill a list

FIELD = r'Couldn\'t read value for field "image"'


class Scene:
    """A head, a unit that is repeated up to the given size (with a number in place of %x), and a tail."""

    def __init__(self, name, head, unit, tail=b"", says="", header=HEADER, limit=None):
        self.name, self.head, self.unit, self.tail = name, header + head, unit, tail
        self.says, self.limit = says, limit

    def pieces(self, size):
        yield self.head
        size = min(size, self.limit or size)
        number = made = 0
        while made < size:
            if b"%x" in self.unit:
                piece = b"".join(self.unit % i for i in range(number, number + 5000))
                number += 5000
            else:
                piece = self.unit * max(1, min(1 << 20, size - made) // len(self.unit))
            made += len(piece)
            yield piece
        yield self.tail


def doubled(leaf, levels):
    """Nodes that use a leaf 2 to the power of `levels` times."""
    text = b"Group { Switch { DEF a0 " + leaf
    for level in range(levels):
        text += b" DEF a%d Group { USE a%d USE a%d }" % (level + 1, level, level)
    return text + b" } USE a%d }" % levels


FACES = b"Group { Coordinate3 { point [ 0 0 0, 1 0 0, 0 1 0 ] } "
SCENES = [
    # Bytes and tokens
    Scene("NUL bytes", b"", b"\0", says=r"Extra characters"),
    Scene("NUL bytes in a group", b"Group {", b"\0", says=r"Expected '}'; got"),
    Scene("bytes 255", b"", b"\xff", says=r"Extra characters"),
    Scene("bytes 255 in a body", b"Group { Cube {", b"\xff", says=r"Expected '}'; got"),
    Scene("carriage returns", b"Cube {", b"\r", b"}"),
    Scene("newlines", b"Cube {", b"\n", b"}"),
    Scene("first line", b"#", b"x", header=b"", says="File does not have a valid header"),
    Scene("comment", b"# ", b"x", b"\nCube{}"),
    Scene("comments", b"", b"#\n", b"\nCube{}"),
    Scene("comment without end", b"# ", b"x", says="EOF reached before end of comment"),
    Scene("name of a class", b"", b"x", b"{}", says="Unknown class"),
    Scene("name after DEF", b"DEF ", b"x", b" Cube{}"),
    Scene("illegal name after DEF", b'DEF "', b"+", b'" Cube{}'),
    Scene("name after USE", b"USE ", b"x", says="Unknown reference"),
    Scene("quoted string", b'Info { string "', b"x", b'" }'),
    Scene("string of quotes", b'Info { string "', b'\\"', b'" }'),
    Scene("string without end", b'Info { string "', b"x\n", says="Expected '}'; got EOF"),
    Scene("integer", b"Switch { whichChild ", b"9", b"}"),
    Scene("octal integer", b"Switch { whichChild 0", b"1", b"}"),
    Scene("hexadecimal integer", b"Switch { whichChild 0x", b"f", b"}"),
    Scene("real", b"Sphere { radius ", b"9", b"}"),
    Scene("fraction", b"Sphere { radius 0.", b"01", b"}"),
    Scene("exponent", b"Sphere { radius 1e", b"9", b"}"),
    Scene("exponents", b"LOD { range [ ", b"1e999,-1e999,1e-999,", b"] }"),
    Scene("opening braces", b"", b"{", says="Extra characters"),
    Scene("skipped braces", b"Cube { bad", b"{", says="Unknown field"),
    Scene("nesting", b"", b"Separator {", says="Nesting deeper than 10000 levels"),
    Scene("nesting of unknown nodes", b"", b"X{fields [] ",
          says="Nesting deeper than 10000 levels"),
    # Lists
    Scene("integers", b"IndexedFaceSet { coordIndex [", b"0,", b"] }"),
    Scene("reals", b"LOD { range [", b"0,", b"] }"),
    Scene("points", b"Coordinate3 { point [", b"0 0 0,", b"] }"),
    Scene("list without end", b"LOD { range [", b"0,", says="Couldn't read value"),
    Scene("empty lists", b"LOD {", b"range[]", b"}"),
    Scene("fields read again", b"Cube {", b"width 1 ", b"}"),
    Scene("mask", b"Cone { parts (", b"ALL|", b") }"),
    Scene("pixels", b"Texture2 { image 32767 32767 1 ", b"1 ", says=FIELD),
    Scene("pixels of 4 bytes", b"Texture2 { image 32767 32767 4 ", b"1 ", says=FIELD),
    Scene("pixels of 4096 bytes", b"Texture2 { image 2049 2048 4096 ", b"1 ", b"}",
          says=FIELD, limit=8 << 20),
    Scene("pixels of 2 GiB", b"Texture2 { image 32767 32767 2147483647 ", b"1 ", says=FIELD),
    Scene("images", b"Texture2 {", b"image 32767 32767 4 1", says=FIELD),
    Scene("declared fields", b"X { fields [", b"SFLong f%x,", b"] }"),
    Scene("declared fields of one name", b"X { fields [", b"MFLong f,", b"] f 1 }"),
    # Nodes
    Scene("cubes", b"Group { Switch {", b"Cube{}", b"} }"),
    Scene("levels of detail", b"Group { Switch {", b"LOD{}", b"} }"),
    Scene("materials", b"Group { Switch {", b"Material{}", b"} }"),
    Scene("cameras", b"Group { Switch {", b"PerspectiveCamera{}", b"} }"),
    Scene("unknown nodes", b"Group { Switch {", b"X{fields []}", b"} }"),
    Scene("names", b"Group { Switch {", b"DEF n%x LOD{}", b"} }"),
    Scene("one name", b"Group { Switch {", b"DEF a LOD{}", b"} }"),
    Scene("references", b"Group { DEF a Switch{}", b"USE a ", b" }"),
    Scene("words", b"Info { string ", b"w%x string ", b"x }"),
    # State of the walk
    Scene("transforms in force", b"Group { DEF a Scale{}", b"USE a ", b" }"),
    Scene("materials in force", b"Group { DEF a Material{}", b"USE a ", b" }"),
    Scene("transform separators", b"Group { DEF a TransformSeparator{}", b"USE a ", b" }"),
    # Shapes
    Scene("one face", FACES + b"IndexedFaceSet { coordIndex [", b"0,", b"] } }"),
    Scene("faces of no corner", FACES + b"IndexedFaceSet { coordIndex [", b"-1,", b"] } }"),
    Scene("faces of one corner", FACES + b"IndexedFaceSet { coordIndex [", b"0,-1,", b"] } }"),
    Scene("triangles", FACES + b"IndexedFaceSet { coordIndex [", b"0,1,2,-1,", b"] } }"),
    Scene("bad indices of faces", FACES + b"IndexedFaceSet { coordIndex [", b"9,", b"] } }",
          says="Out of Index: 9"),
    Scene("one line", FACES + b"IndexedLineSet { coordIndex [", b"0,", b"] } }"),
    Scene("lines of one point", FACES + b"IndexedLineSet { coordIndex [", b"0,-1,", b"] } }"),
    Scene("coloured lines of one point",
          FACES + b"MaterialBinding { value PER_VERTEX } "
          b"Material { diffuseColor [ 1 1 1, 0 0 0, 1 0 0 ] } IndexedLineSet { coordIndex [",
          b"0,-1,", b"] } }"),
    Scene("lines of two points", FACES + b"IndexedLineSet { coordIndex [", b"0,1,-1,", b"] } }"),
    Scene("bad indices of lines", FACES + b"IndexedLineSet { coordIndex [", b"9,", b"] } }",
          says="Out of Index: 9"),
    Scene("points with normals", b"Group { Coordinate3 { point [", b"0 0 0,",
          b"] } NormalBinding { value NONE } IndexedFaceSet { coordIndex [ 0, 1, 2 ] } }"),
    Scene("points with colours", b"Group { MaterialBinding { value PER_VERTEX } "
          b"Material { diffuseColor [ 1 1 1, 0 0 0 ] } Coordinate3 { point [", b"0 0 0,",
          b"] } IndexedFaceSet { coordIndex [ 0, 1, 2 ] } }"),
    Scene("points as spheres", b"Group { Coordinate3 { point [", b"0 0 0,",
          b"] } PointSet { numPoints 2147483647 } }", says="PointSet: Out of Index"),
    # A few bytes that describe a million nodes
    Scene("a million cubes", doubled(b"Cube { }", 20), b" ", limit=1),
    Scene("a million materials", doubled(b"Material { }", 20), b" ", limit=1),
    Scene("a million transforms", doubled(b"TransformSeparator { Scale { } }", 20), b" ", limit=1),
    Scene("a million empty faces", doubled(b"IndexedFaceSet { }", 20), b" ", limit=1),
]


def feed(pipe, pieces):
    try:
        for piece in pieces:
            pipe.write(piece)
        pipe.close()
    except BrokenPipeError:
        pass  # The program has stopped reading.


def run(program, scene, size):
    """The status, the peak of memory in bytes, the seconds used, the size of the input, the message."""
    counted = [0]

    def counting():
        for piece in scene.pieces(size):
            counted[0] += len(piece)
            yield piece

    process = subprocess.Popen([program], stdin=subprocess.PIPE, stdout=subprocess.DEVNULL,
                               stderr=subprocess.PIPE, bufsize=0)
    said = [b""]

    def listen():
        while piece := process.stderr.read(1 << 16):
            if len(said[0]) < 1 << 16:
                said[0] += piece

    threads = [threading.Thread(target=feed, args=(process.stdin, counting())),
               threading.Thread(target=listen)]
    for thread in threads:
        thread.start()
    for thread in threads[1:]:
        thread.join()
    _, status, usage = os.wait4(process.pid, 0)
    process.returncode = os.waitstatus_to_exitcode(status)
    threads[0].join()
    return (process.returncode, usage.ru_maxrss * 1024, usage.ru_utime + usage.ru_stime, counted[0],
            said[0].decode("latin-1"))


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("program")
    parser.add_argument("--megabytes", type=float, default=100)
    parser.add_argument("--only", default="", help="only scenes whose name contains this word")
    arguments = parser.parse_args()
    size = int(arguments.megabytes * 1e6)
    empty = run(arguments.program, Scene("", b"", b" "), 1)[1]
    failed = False
    print(f"{'scene':34}{'MB':>6}{'s':>8}{'ns/B':>7}{'B/B':>7}  message")
    for scene in SCENES:
        if arguments.only not in scene.name:
            continue
        status, memory, seconds, read, said = run(arguments.program, scene, size)
        per_byte = max(memory - empty, 0) / read
        good = (status == 0 and memory - empty <= max(MOST * read, FEW_BYTES) and
                (re.search(scene.says, said) if scene.says else said == ""))
        failed |= not good
        first = said.split("\n")[0][:40]
        print(f"{scene.name:34}{read / 1e6:6.0f}{seconds:8.2f}"
              + (f"{seconds * 1e9 / read:7.1f}{per_byte:7.1f}" if read > 1e6 else
                 f"{'':7}{(memory - empty) / 1e6:5.1f}MB")
              + f"  {first}" + ("" if good else f"  UNEXPECTED, status {status}"), flush=True)
    return int(failed)


if __name__ == "__main__":
    sys.exit(main())
