"""The objects of a stream. Values are as in the stream; only `faces` and `lines` count vertices from 0."""

from __future__ import annotations

import enum
from dataclasses import dataclass, field

import numpy as np


class Flag(enum.IntFlag):
    """Which optional arrays a record holds."""

    NORMALS = 0x1
    COLOURS = 0x2
    UVS = 0x4
    UVWS = 0x8
    LABEL_DATA = 0x10
    NO_RADII = 0x20
    PRIMITIVE_DATA = 0x40
    VERTEX_DATA = 0x80
    VERTEX_TRANS = 0x100


@dataclass(eq=False)
class Property:
    """One property record of a header."""

    kind: int
    value: int
    data: bytes


@dataclass(eq=False)
class VertexArrays:
    """A set of vertices. Arrays that the record does not hold are None."""

    vertices: np.ndarray  # (n, 3) float32
    normals: np.ndarray | None = None  # (n, 3) float32
    colours: np.ndarray | None = None  # (n, 3) float32: red, green, blue
    uvs: np.ndarray | None = None  # (n, 2) float32
    uvws: np.ndarray | None = None  # (n, 3) float32
    vertex_data: np.ndarray | None = None  # (n,) int32
    primitive_data: np.ndarray | None = None  # (polygons, cells, triangles or segments,) int32
    vertex_trans: np.ndarray | None = None  # (n,) float32


@dataclass(eq=False, kw_only=True)
class Header:
    """The header of a record."""

    offset: int = 0  # of the record in the stream, bytes
    size: int = 0  # of the record, bytes
    version: int = 0  # 10 (big-endian) or 7 (little-endian)
    header_size: int = 0  # the `hdrsize` word
    flags: Flag = Flag(0)
    extent: np.ndarray | None = None  # (2, 3) float32: minimum, maximum; not checked
    byte_count: int = 0  # the `bytecount` word; not checked
    properties: list[Property] = field(default_factory=list)
    name: str = ""  # bytes that are not UTF-8 are surrogates, as in names of files
    second_text: str = ""


class Object(Header):
    """An object of a stream, of one of the classes below."""

    vertices: np.ndarray  # (n, 3) float32

    def faces(self) -> list[np.ndarray]:
        """The polygons, as arrays of row numbers of `vertices`. Polygons with invalid vertex numbers,
        which scenes with bad indices have, are left out."""
        return []

    def lines(self) -> list[np.ndarray]:
        """The lines, as arrays of row numbers of `vertices`."""
        return []


@dataclass(eq=False, kw_only=True)
class Mesh(VertexArrays, Object):
    """A grid of u times v vertices, where vertex (i, j) is row j * u + i."""

    u: int
    v: int

    def faces(self) -> list[np.ndarray]:
        if self.u < 2 or self.v < 2:
            return []
        first = (np.arange(self.v - 1)[:, None] * self.u + np.arange(self.u - 1)).reshape(-1, 1)
        return list(first + np.array([0, 1, self.u + 1, self.u]))


@dataclass(eq=False, kw_only=True)
class Polyhedron(VertexArrays, Object):
    """Polygons with shared vertices."""

    polygon_count: int  # as the stream states it; there are fewer if a 0 ends the list early
    index_count: int
    polygon_list: np.ndarray  # (polygon_count + index_count + 1,) int64, as in the stream

    def faces(self) -> list[np.ndarray]:
        numbers = self.polygon_list - 1
        missing = (numbers < 0) | (numbers >= len(self.vertices))
        missing_before = np.concatenate(([0], np.cumsum(missing)))
        words = memoryview(self.polygon_list)
        faces = []
        place = 0
        while corners := words[place]:
            end = place + 1 + corners
            if missing_before[end] == missing_before[place + 1]:
                faces.append(numbers[place + 1:end])
            place = end
        return faces


@dataclass(eq=False, kw_only=True)
class Polytriangle(Object):
    """Triangle strips, polylines and separate segments, each with its own vertices. `vertices` has
    those of all, in this order."""

    strips: list[VertexArrays]
    polylines: list[VertexArrays]
    segments: VertexArrays | None  # vertices 0 and 1 form a segment, 2 and 3 the next, and so on

    def __post_init__(self) -> None:
        parts = [*self.strips, *self.polylines, *([self.segments] if self.segments else [])]
        self.vertices = np.concatenate([np.empty((0, 3), np.float32), *(part.vertices for part in parts)])

    def faces(self) -> list[np.ndarray]:
        """The triangles of the strips, with the same winding."""
        faces = []
        first = 0
        for strip in self.strips:
            for i in range(first, first + len(strip.vertices) - 2):
                odd = (i - first) % 2
                faces.append(np.array([i + odd, i + 1 - odd, i + 2]))
            first += len(strip.vertices)
        return faces

    def lines(self) -> list[np.ndarray]:
        lines = []
        first = sum(len(strip.vertices) for strip in self.strips)
        for polyline in self.polylines:
            lines.append(np.arange(first, first + len(polyline.vertices)))
            first += len(polyline.vertices)
        count = len(self.segments.vertices) // 2 if self.segments else 0
        return lines + list(first + np.arange(2 * count).reshape(-1, 2))


@dataclass(eq=False, kw_only=True)
class Sphere(VertexArrays, Object):
    """Spheres, whose centres are the vertices."""

    radii: np.ndarray | None  # (n,) float32; None if the record has no radii


@dataclass(eq=False, kw_only=True)
class Label(Object):
    """Texts at positions. `vertices` and `positions` are the same array."""

    label_flags: int
    texts: list[str]
    positions: np.ndarray  # (n, 3) float32
    offsets: np.ndarray  # (n, 3) float32
    heights: np.ndarray  # (n,) float32
    colours: np.ndarray | None  # (n, 3) float32
    data: np.ndarray | None  # (n,) int32

    def __post_init__(self) -> None:
        self.vertices = self.positions
