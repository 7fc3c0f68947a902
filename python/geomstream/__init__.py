"""Reader of GEOM streams, the sequences of geometry objects that meshcast writes.

    for obj in geomstream.read("house.geom"):
        for face in obj.faces():
            print(obj.vertices[face])

Objects are read one at a time, so memory depends on the largest record, not on the length of the stream.
Arrays are numpy arrays in the byte order of the machine.
"""

from ._items import StreamError
from ._objects import (Flag, Label, Mesh, Object, Polyhedron, Polytriangle, Property, Sphere,
                       VertexArrays)
from ._records import read

__all__ = ["read", "StreamError", "Object", "Mesh", "Polyhedron", "Polytriangle", "Sphere", "Label",
           "VertexArrays", "Property", "Flag"]
__version__ = "1.0.0"
