"""Decoding of records, one function for each production of docs/stream-format.md, in its order."""

from __future__ import annotations

import contextlib
import os
from collections.abc import Iterator
from typing import Any, BinaryIO

import numpy as np

from ._items import ItemReader, StreamError
from ._objects import (Flag, Label, Mesh, Object, Polyhedron, Polytriangle, Property, Sphere,
                       VertexArrays)

_HDRSIZE_PLACE = 4
_PROPERTY_WORDS_SIZE = 12
_LONGEST_STRING = 9_999_999
_MOST = 2**63 - 1
_ALL_FLAGS = 0x1FF
# Bits are tested as plain integers, since operations on enumerations are much slower.
_NO_RADII, _COLOURS, _LABEL_DATA = int(Flag.NO_RADII), int(Flag.COLOURS), int(Flag.LABEL_DATA)
_SURFACE_FLAGS = _ALL_FLAGS & ~(_LABEL_DATA | _NO_RADII)
_LINE_FLAGS = int(Flag.COLOURS | Flag.VERTEX_DATA | Flag.PRIMITIVE_DATA)
_SPHERE_FLAGS = int(Flag.NORMALS | Flag.COLOURS | Flag.VERTEX_DATA | Flag.VERTEX_TRANS)
# The optional arrays, in the order that all kinds share: bit, field, kind and number of the values of
# an element, and its name in errors.
_ATTRIBUTES = (
    (int(Flag.NORMALS), "normals", "f4", 3, "normals"),
    (int(Flag.COLOURS), "colours", "f4", 3, "colours"),
    (int(Flag.UVS), "uvs", "f4", 2, "uvs"),
    (int(Flag.UVWS), "uvws", "f4", 3, "uvws"),
    (int(Flag.VERTEX_DATA), "vertex_data", "i4", 1, "vertex data ints"),
    (int(Flag.PRIMITIVE_DATA), "primitive_data", "i4", 1, "primitive data ints"),
    (int(Flag.VERTEX_TRANS), "vertex_trans", "f4", 1, "vertex trans values"),
)


def read(source: str | os.PathLike[str] | BinaryIO) -> Iterator[Object]:
    """Yields the objects of a stream one at a time. `source` is a path or an open binary file, which is not
    closed. If the stream is invalid, raises StreamError after the objects before the error."""
    with contextlib.ExitStack() as opened:
        if isinstance(source, (str, os.PathLike)):
            source = opened.enter_context(open(source, "rb"))
        items = ItemReader(source)
        while magic := items.at_end_or_magic():
            yield _record(items, bytes(magic))


def _record(items: ItemReader, magic: bytes) -> Object:
    start = items.offset - len(magic)
    if magic not in (b"GM64", b"46MG"):
        raise StreamError(start, 'expected magic "GM64" or "46MG"')
    items.set_big_endian(magic == b"GM64")
    header, decode = _header(items, start)
    header["version"] = 10 if items.big_endian else 7
    obj = decode(items, header, int(header["flags"]))
    obj.size = items.offset - start
    return obj


def _header(items: ItemReader, start: int) -> tuple[dict[str, Any], Any]:
    """The header as arguments for the class of the record, and the function that decodes the body."""
    header: dict[str, Any] = {"offset": start, "header_size": items.word("hdrsize")}
    place = items.offset
    flags = items.word("data")
    # An unknown bit may stand for an array of unknown length, so the rest cannot be decoded.
    if flags & ~_ALL_FLAGS:
        raise StreamError(place, f"expected data with bits 0x1 to 0x100 only, found {flags}")
    header["flags"] = Flag(flags)
    place = items.offset
    kind = items.word("type")
    if not 1 <= kind <= 5:
        raise StreamError(place, f"expected type 1 to 5, found {kind}")
    extent = items.floats(6, "extent")
    if items.truth("has_extent", wide=False):
        header["extent"] = np.array(extent, np.float32).reshape(2, 3)
    header["byte_count"] = items.int64("bytecount")
    header["properties"] = _properties(items)
    header["name"], header["second_text"] = _names(items, header)
    return header, (_mesh, _polyhedron, _polytriangle, _sphere, _label)[kind - 1]


def _properties(items: ItemReader) -> list[Property]:
    properties = []
    for _ in range(items.count("property count", wide=False)):
        kind = items.word("property kind")
        length = items.word("property length")
        value = items.word("property value")
        properties.append(Property(kind, value, items.run(length, "property bytes")))
    return properties


def _names(items: ItemReader, header: dict[str, Any]) -> tuple[str, str]:
    size = header["header_size"]
    counted = sum(_PROPERTY_WORDS_SIZE + len(entry.data) for entry in header["properties"])
    texts = []
    for what in ("name", "second text"):
        if items.big_endian:
            texts.append(_string(items, what))
        else:
            texts.append(_terminated(items, max(size - counted, 0), what))
            counted += len(texts[-1]) + 1
    if size != counted:
        raise StreamError(header["offset"] + _HDRSIZE_PLACE, f"expected hdrsize {counted}, found {size}")
    return _decoded(texts[0]), _decoded(texts[1])


def _decoded(text: bytes) -> str:
    return text.decode("utf-8", "surrogateescape")


def _string(items: ItemReader, what: str) -> bytes:
    start = items.offset
    length = items.word(what)
    if length > _LONGEST_STRING:
        raise StreamError(start, f"expected {what} of at most {_LONGEST_STRING} bytes, "
                                 f"found length {length}")
    return items.run(length, what)


def _terminated(items: ItemReader, limit: int, what: str) -> bytes:
    """Text up to its first NUL, of at most `limit` bytes including the NUL."""
    text = bytearray()
    for _ in range(limit):
        byte = items.take(1, what)
        if byte == b"\0":
            return bytes(text)
        text += byte
    raise StreamError(items.offset, f"expected the NUL of {what} within hdrsize")


def _attributes(items: ItemReader, flags: int, count: int, primitives: int) -> dict[str, Any]:
    return {name: items.array(primitives if name == "primitive_data" else count, kind, columns, what)
            for bit, name, kind, columns, what in _ATTRIBUTES if flags & bit}


def _arrays(items: ItemReader, flags: int, count: int, primitives: int) -> dict[str, Any]:
    vertices = items.array(count, "f4", 3, "vertices")
    return {"vertices": vertices, **_attributes(items, flags, count, primitives)}


def _mesh(items: ItemReader, header: dict[str, Any], flags: int) -> Mesh:
    u = items.count("mesh dimension u")
    v = items.count("mesh dimension v")
    start = items.offset
    if u * v > _MOST:
        raise StreamError(start, f"expected {u} x {v} vertices, {items.bytes_left(start)} bytes left")
    cells = (u - 1) * (v - 1) if u * v else 0
    return Mesh(**header, u=u, v=v, **_arrays(items, flags & _SURFACE_FLAGS, u * v, cells))


def _polyhedron(items: ItemReader, header: dict[str, Any], flags: int) -> Polyhedron:
    polygons = items.count("polygon count")
    indices = items.count("index count")
    vertices = items.count("vertex count")
    words = _polygon_list(items, polygons, indices)
    arrays = _arrays(items, flags & _SURFACE_FLAGS, vertices, polygons)
    return Polyhedron(**header, polygon_count=polygons, index_count=indices, polygon_list=words, **arrays)


def _polygon_list(items: ItemReader, polygons: int, indices: int) -> np.ndarray:
    start = items.offset
    length = polygons + indices + 1
    words = items.words_or_none(length)
    if words is None:
        # The message shows the sum only if each count is possible by itself.
        possible = max(polygons, indices) <= items.bytes_left(start) // 8
        raise items.incomplete(start, length if possible else _MOST, "polygon list words", 8)
    _check_polygon_list(memoryview(words), polygons, indices, start)
    return words


def _check_polygon_list(words: memoryview, polygons: int, indices: int, start: int) -> None:
    """Reports the first word that contradicts the counts of polygons and indices."""
    last = len(words) - 1
    place = 0
    found = 0
    while place < last and (corners := words[place]):
        if corners < 0 or corners >= last - place:
            raise StreamError(start + 8 * place, "expected a corner count that fits the polygon list, "
                                                 f"found {corners}")
        place += corners + 1
        found += 1
    if words[last]:
        raise StreamError(start + 8 * last,
                          f"expected the 0 that ends the polygon list, found {words[last]}")
    # A list may end early and have fewer polygons and indices than the counts, but not more.
    agrees = found == polygons if place == last else found <= polygons and place - found <= indices
    if not agrees:
        raise StreamError(start + 8 * place,
                          f"expected {polygons} polygons with {indices} indices before the end of the "
                          f"list, found {found} with {place - found}")


def _polytriangle(items: ItemReader, header: dict[str, Any], flags: int) -> Polytriangle:
    strips, polylines, segments = [], [], None
    strip_count = items.count("strip count")
    polyline_count = items.count("polyline count")
    has_segments = items.truth("segments marker", wide=True)
    for _ in range(strip_count):
        count = items.count("strip vertex count")
        strips.append(VertexArrays(**_arrays(items, flags & _SURFACE_FLAGS, count, count - 2)))
    for _ in range(polyline_count):
        count = items.count("polyline vertex count")
        polylines.append(VertexArrays(**_arrays(items, flags & _LINE_FLAGS, count, count - 1)))
    if has_segments:
        count = items.count("segment vertex count", least=1)
        segments = VertexArrays(**_arrays(items, flags & _LINE_FLAGS, count, count // 2))
    return Polytriangle(**header, strips=strips, polylines=polylines, segments=segments)


def _sphere(items: ItemReader, header: dict[str, Any], flags: int) -> Sphere:
    count = items.count("sphere count")
    centres = items.array(count, "f4", 3, "centres")
    radii = None if flags & _NO_RADII else items.array(count, "f4", 1, "radii")
    return Sphere(**header, vertices=centres, radii=radii,
                  **_attributes(items, flags & _SPHERE_FLAGS, count, 0))


def _label(items: ItemReader, header: dict[str, Any], flags: int) -> Label:
    count = items.count("label count")
    label_flags = items.word("label flags")
    texts = [_decoded(_label_text(items)) for _ in range(count)]
    return Label(**header, label_flags=label_flags, texts=texts,
                 positions=items.array(count, "f4", 3, "positions"),
                 offsets=items.array(count, "f4", 3, "offsets"),
                 heights=items.array(count, "f4", 1, "heights"),
                 colours=items.array(count, "f4", 3, "colours") if flags & _COLOURS else None,
                 data=items.array(count, "i4", 1, "label data ints") if flags & _LABEL_DATA else None)


def _label_text(items: ItemReader) -> bytes:
    length = items.count("label length", least=1, wide=False)
    start = items.offset
    text = items.run(length, "label text")
    if text.find(b"\0") != length - 1:
        raise StreamError(start, "expected a label text whose only NUL is its last byte")
    return text[:-1]
