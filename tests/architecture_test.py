#!/usr/bin/env python3
"""Checks the sources against the layers of docs/architecture.md.

Reads every #include of the project's own headers. Reports files that include a header of a folder that
their layer must not use, and files that include each other, directly or indirectly.
Usage: architecture_test.py ROOT
"""

import re
import sys
from pathlib import Path

# The folders whose headers each folder may include, besides its own.
MAY_INCLUDE = {
    "io": [],
    "vrml": ["io"],
    "traverse": ["vrml"],
    "compat/geom": ["io"],
    "convert": ["vrml", "traverse", "compat/geom"],
    "evaluate": ["io", "vrml", "traverse"],
    "render": ["evaluate"],
    "export": ["evaluate", "io", "render"],
    "geom_stream": [],
    "driver": ["io", "vrml", "convert", "compat/geom"],
    "tools/export_output": ["evaluate", "export", "io"],
    "tools/geomtool": ["geom_stream", "evaluate", "export", "tools/export_output"],
    "tools/model_dump": ["evaluate", "vrml"],
    "tools/scene_dump": ["vrml"],
    "tidy": ["io", "vrml"],
    "tools/scene_file": ["io", "tidy"],
    "tools/vrmlexport": ["io", "vrml", "tidy", "evaluate", "export", "render",
                         "tools/export_output", "tools/scene_file"],
    "tools/vrmltidy": ["io", "vrml", "tidy", "tools/scene_dump", "tools/scene_file"],
    "bench": ["vrml", "compat/geom"],
}
EVERYTHING = ("tests", "fuzz")
# The constants of the stream format, for the writer and the readers.
FOR_ALL = "compat/geom/format.h"
INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+)"', re.MULTILINE)


def folder_of(name):
    """The folder of MAY_INCLUDE that a file is in."""
    return next((folder for folder in MAY_INCLUDE if name.startswith(folder + "/")), None)


def cycles(includes):
    """Every cycle of files that include one another, once."""
    found, finished, path = [], set(), []

    def visit(name):
        if name in path:
            found.append(path[path.index(name):] + [name])
        elif name not in finished:
            path.append(name)
            for included in includes.get(name, ()):
                visit(included)
            path.pop()
            finished.add(name)

    for name in includes:
        visit(name)
    return found


def faults(sources):
    """The errors of sources, a dictionary from names to texts."""
    includes = {name: INCLUDE.findall(text) for name, text in sources.items()}
    for name, headers in sorted(includes.items()):
        if name.startswith(EVERYTHING):
            continue
        folder = folder_of(name)
        if folder is None:
            yield f"{name} is in a folder without a layer"
            continue
        for header in headers:
            if header not in sources:
                yield f"{name} includes {header}, which does not exist"
            elif header != FOR_ALL and folder_of(header) not in [folder, *MAY_INCLUDE[folder]]:
                yield f"{name} includes {header} of a layer that it must not use"
    for cycle in cycles(includes):
        yield "files include one another: " + " -> ".join(cycle)


def self_check():
    """Checks that every kind of error is found."""
    sources = {
        "vrml/a.h": '#include "vrml/b.h"\n',
        "vrml/b.h": '  #  include "vrml/a.h"\n#include "convert/c.h"\n',
        "convert/c.h": '#include "traverse/none.h"\n',
        "odd/d.cpp": "",
    }
    assert len(list(faults(sources))) == 4, list(faults(sources))


def main():
    self_check()
    root = Path(sys.argv[1])
    names = [str(path.relative_to(root)) for pattern in ("*.h", "*.cpp")
             for folder in (*MAY_INCLUDE, *EVERYTHING) for path in (root / folder).rglob(pattern)]
    found = sorted(set(faults({name: (root / name).read_text() for name in names})))
    print("\n".join(found) or f"{len(set(names))} files keep to their layers")
    sys.exit(1 if found else 0)


if __name__ == "__main__":
    main()
