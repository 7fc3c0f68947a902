#!/usr/bin/env python3
"""Times vrmlexport to GLB against the filter on the same scenes.

Both run alternately, and their outputs are discarded. The filter reads the scene from standard input,
vrmlexport from the file. Prints the medians of processor time, their ratio, and the memory of
vrmlexport. Build the preset bench first.
"""

import argparse
import sys
import tempfile
from pathlib import Path

import run

KINDS = ("terrain", "parts")


def script_for(folder, exporter, scene):
    """A script that exports the scene, since measured_run starts programs without arguments."""
    script = Path(folder) / "export"
    script.write_text(f"#!/bin/sh\nexec '{exporter}' --quiet --format glb '{scene}' -\n")
    script.chmod(0o755)
    return script


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--build", type=Path, default=run.DEFAULT_BUILD,
                        help="the build folder (default: build/bench)")
    parser.add_argument("--size", type=float, default=100, metavar="MB",
                        help="size of the scenes in MB (default: 100)")
    parser.add_argument("--kinds", nargs="+", choices=run.KINDS, default=KINDS,
                        help="kinds of scenes (default: terrain parts)")
    parser.add_argument("--runs", type=int, default=5,
                        help="runs of each program on each scene (default: 5)")
    arguments = parser.parse_args()
    bench = run.Bench(arguments.build.resolve())
    exporter = bench.meshcast.parent.parent / "tools" / "vrmlexport" / "vrmlexport"
    if not exporter.exists():
        sys.exit(f"export.py: {exporter} is missing: build the preset bench first")
    print("kind         in MB  filter s  export s  ratio  peak bytes per byte")
    with tempfile.TemporaryDirectory() as folder:
        for kind in arguments.kinds:
            scene = bench.scene(kind, arguments.size)
            script = script_for(folder, exporter, scene)
            filter_run, export_run = bench.alternate((bench.meshcast, script), scene, arguments.runs)
            size = scene.stat().st_size
            print(f"{kind:<11}{size / run.MEGABYTE:>7.1f}{filter_run.cpu:>10.2f}{export_run.cpu:>10.2f}"
                  f"{export_run.cpu / filter_run.cpu:>7.2f}{export_run.peak / size:>21.2f}", flush=True)


if __name__ == "__main__":
    main()
