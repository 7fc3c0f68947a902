"""The table of a run: a line for each scene, with tabs between its columns."""

import os
from typing import NamedTuple

from .job import COLUMNS, sync

STATES = ("ok", "empty", "unreadable", "refused", "failed", "broken", "timeout")
HEADER = "\t".join(COLUMNS)


class Row(NamedTuple):
    """The result of a scene. Texts are printable."""

    file: str
    status: str  # One of STATES.
    objects: int
    vertices: int
    polygons: int
    repairs: int
    seconds: str
    message: str
    outputs: str  # The formats that were written, separated by commas.

    @property
    def is_converted(self):
        return self.status in ("ok", "empty")

    def line(self):
        return "\t".join(map(str, self))


def parse_row(line):
    """The row of a line; None if the line is not valid."""
    columns = line.split("\t")
    if len(columns) == len(COLUMNS) - 1:  # Older tables, which had streams only.
        columns.append("geom" if columns[1] in ("ok", "empty") else "")
    if len(columns) != len(COLUMNS) or columns[1] not in STATES or not columns[0]:
        return None
    if not all(column.isascii() and column.isdigit() for column in columns[2:6]):
        return None
    return Row(*columns[:2], *map(int, columns[2:6]), *columns[6:])


def read_rows(path):
    """The last row of each scene in a table or journal, as a dictionary; empty if the file does not
    exist. A last line without a newline is incomplete and ignored."""
    rows = {}
    try:
        with open(path, encoding="utf-8", errors="replace", newline="\n") as file:
            for line in file:
                row = parse_row(line[:-1]) if line.endswith("\n") else None
                if row:
                    rows[row.file] = row
    except (FileNotFoundError, IsADirectoryError):
        pass
    return rows


def write_rows(path, rows):
    """Replaces a table or journal."""
    replace(path, "".join(line + "\n" for line in [HEADER, *(row.line() for row in rows)]))


def replace(path, text):
    """Replaces a file atomically, even if the power fails."""
    with open(path + ".new", "w", encoding="utf-8", newline="\n") as file:
        file.write(text)
        file.flush()
        os.fsync(file.fileno())
    os.rename(path + ".new", path)
    sync(os.path.dirname(path), os.O_RDONLY | os.O_DIRECTORY)
