#!/usr/bin/env python3
"""Shows whether time and memory grow in proportion to the scene.

For every kind of generated scene, and for scenes that stress a single part of the program, converts a
scene and one ten times as large alternately. Prints the processor time per byte of each, and the peak
of memory per byte of the larger.

    bench/growth.py [--build DIR] [--runs N] [KIND ...]
"""

import argparse
import statistics
import sys
from pathlib import Path

import run

LETTERS = "abcdefghijklmnopqrstuvwxyz"
HEADER = "#VRML V1.0 ascii\n"


def name(number):
    """A different name for each number, made of letters."""
    text = ""
    while True:
        text += LETTERS[number % 26]
        number //= 26
        if number == 0:
            return "n" + text


def one_list(n):
    yield HEADER + "IndexedFaceSet { coordIndex [\n"
    yield from (f"{i % 1000},\n" for i in range(n))
    yield "] }\n"


def nodes(n):
    yield HEADER + "Separator {\n"
    yield from ("Translation { translation 1 2 3 }\n" for _ in range(n))
    yield "}\n"


def definitions(n):
    yield HEADER + "Separator {\n"
    yield from (f"DEF {name(i)} Info {{ }}\n" for i in range(n))
    yield "}\n"


def unknown_names(n):
    yield HEADER + "Separator {\n"
    yield from (f"{name(i)} {{ fields [ ] }}\n" for i in range(n))
    yield "}\n"


def comment(n):
    yield HEADER + "#"
    yield from ("x" * 1000 for _ in range(n // 1000))
    yield "\nCube { }\n"


def uses(n):
    yield HEADER + "Separator { DEF a Translation { }\n"
    yield from ("USE a\n" for _ in range(n))
    yield "}\n"


def nested(n):
    yield HEADER + "Separator{" * n + "}" * n


# For each, the function that writes a scene and the number of elements in the larger scene.
STRAINS = {
    "one-list": (one_list, 8_000_000),
    "nodes": (nodes, 1_000_000),
    "definitions": (definitions, 1_000_000),
    "unknown-names": (unknown_names, 100_000),
    "comment": (comment, 100_000_000),
    "uses": (uses, 1_000_000),
    "nested": (nested, 10_000),
}


def strain_scene(bench, kind, divisor):
    make, number = STRAINS[kind]
    scene = bench.scenes / f"strain-{kind}-{number // divisor}.wrl"
    if not scene.exists():
        with open(scene, "w", encoding="ascii") as to:
            to.writelines(make(number // divisor))
    return scene


def main():
    kinds = (*run.KINDS, *STRAINS)
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("kinds", nargs="*", metavar="KIND", default=kinds)
    parser.add_argument("--build", type=Path, default=run.DEFAULT_BUILD)
    parser.add_argument("--runs", type=int, default=5)
    options = parser.parse_args()
    if not set(options.kinds) <= set(kinds):
        sys.exit(f"growth.py: the kinds are {', '.join(kinds)}")

    bench = run.Bench(options.build)
    print(f"{'kind':16}{'MB':>8}{'ns/byte':>9}{'MB':>8}{'ns/byte':>9}{'growth':>9}{'peak/byte':>11}")
    for kind in options.kinds:
        if kind in STRAINS:
            scenes = [strain_scene(bench, kind, divisor) for divisor in (10, 1)]
        else:
            scenes = [bench.scene(kind, megabytes) for megabytes in (10, 100)]
        runs = [[bench.run_once(bench.meshcast, scene) for scene in scenes]
                for _ in range(options.runs)]
        sizes = [scene.stat().st_size for scene in scenes]
        costs = [statistics.median(each[i].cpu for each in runs) * 1e9 / sizes[i] for i in (0, 1)]
        peak = max(each[1].peak for each in runs) / sizes[1]
        print(f"{kind:16}{sizes[0] / 1e6:8.2f}{costs[0]:9.2f}{sizes[1] / 1e6:8.2f}{costs[1]:9.2f}"
              f"{costs[1] / costs[0]:9.2f}{peak:11.2f}", flush=True)


if __name__ == "__main__":
    main()
