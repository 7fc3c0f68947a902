"""Writes the faces and lines of a stream on standard input as a Wavefront OBJ file."""

import sys

import geomstream

first = 1
for number, obj in enumerate(geomstream.read(sys.stdin.buffer), 1):
    print(f"o object{number}")
    for x, y, z in obj.vertices:
        print(f"v {x} {y} {z}")
    for letter, numbers in (("f", obj.faces()), ("l", obj.lines())):
        for corners in numbers:
            print(letter, *(corners + first))
    first += len(obj.vertices)
