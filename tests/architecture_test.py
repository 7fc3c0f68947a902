#!/usr/bin/env python3
"""Holds the sources to the layers of docs/architecture.md.

Reads every #include of the project's own headers and reports a file that includes one of a folder it
must not know, and files that include each other, directly or by way of others.
Usage: architecture_test.py ROOT
"""

import re
import sys
from pathlib import Path

# For each folder the folders whose headers it may include, besides its own.
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
# The numbers of the stream, for those who write it and those who read it.
FOR_ALL = "compat/geom/format.h"
INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+)"', re.MULTILINE)


def folder_of(name):
    """The folder of MAY_INCLUDE that a file lies in."""
    return next((folder for folder in MAY_INCLUDE if name.startswith(folder + "/")), None)


def circles(includes):
    """Each circle of files that include one another, once."""
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
    """What is wrong with sources, a dictionary from names to texts."""
    includes = {name: INCLUDE.findall(text) for name, text in sources.items()}
    for name, headers in sorted(includes.items()):
        if name.startswith(EVERYTHING):
            continue
        folder = folder_of(name)
        if folder is None:
            yield f"{name} lies in no folder that has a layer"
            continue
        for header in headers:
            if header not in sources:
                yield f"{name} includes {header}, which does not exist"
            elif header != FOR_ALL and folder_of(header) not in [folder, *MAY_INCLUDE[folder]]:
                yield f"{name} includes {header}, of a layer that it must not know"
    for circle in circles(includes):
        yield "files include one another: " + " -> ".join(circle)


def self_check():
    """The check finds what it is for."""
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
