#!/usr/bin/env python3
"""Times whole runs of meshcast against the floor program on generated scenes.

For every kind and size of scene, the outputs of the two are compared first; they must be equal. Then
the two run alternately, so that other load on the machine affects both. The scene is their standard
input, and the output is discarded. Medians are printed.
"""

import argparse
import hashlib
import json
import statistics
import subprocess
import sys
from pathlib import Path
from typing import NamedTuple

KINDS = ("terrain", "parts", "primitives", "coloured")
DEFAULT_BUILD = Path(__file__).resolve().parent.parent / "build" / "bench"
MEGABYTE = 1_000_000


class Run(NamedTuple):
    wall: float  # seconds
    cpu: float  # seconds, user and system
    peak: int  # peak of resident memory, bytes


class Bench:
    """The programs of a build folder."""

    def __init__(self, build):
        self.meshcast = build / "driver" / "meshcast"
        self.floor = build / "bench" / "floor_convert"
        self.generator = build / "bench" / "scene_gen"
        self.empty = build / "bench" / "empty_program"
        self.measured_run = build / "bench" / "measured_run"
        self.scenes = build / "bench" / "scenes"
        for program in (self.meshcast, self.floor, self.generator, self.empty, self.measured_run):
            if not program.exists():
                sys.exit(f"run.py: {program} is missing: build the preset bench first")
        self.scenes.mkdir(exist_ok=True)

    def scene(self, kind, megabytes):
        """The path of a scene, which is generated unless it exists and is newer than the generator."""
        scene = self.scenes / f"{kind}-{megabytes:g}MB.wrl"
        if not scene.exists() or scene.stat().st_mtime < self.generator.stat().st_mtime:
            unfinished = scene.with_suffix(".part")
            with open(unfinished, "wb") as to:
                bytes_wanted = str(int(megabytes * MEGABYTE))
                subprocess.run([self.generator, kind, bytes_wanted], stdout=to, check=True)
            unfinished.rename(scene)
        return scene

    def run_once(self, program, scene):
        with open(scene, "rb") as source:
            printed = subprocess.run([self.measured_run, program], stdin=source,
                                     stdout=subprocess.PIPE, check=True).stdout
        wall, cpu, peak, status = printed.split()
        if int(status) != 0:
            sys.exit(f"run.py: {program} ended with status {int(status)}")
        return Run(float(wall), float(cpu), int(peak))

    def alternate(self, programs, scene, count):
        """The median run of each program; the programs run alternately."""
        runs = {program: [] for program in programs}
        for _ in range(count):
            for program in programs:
                runs[program].append(self.run_once(program, scene))
        return [median(runs[program]) for program in programs]


def median(runs):
    return Run(*(statistics.median(values) for values in zip(*runs)))


def output_digest(program, scene):
    """The digest and the size of the output of a program for a scene."""
    digest = hashlib.sha256()
    size = 0
    with open(scene, "rb") as source:
        with subprocess.Popen([program], stdin=source, stdout=subprocess.PIPE) as process:
            while piece := process.stdout.read(1 << 20):
                digest.update(piece)
                size += len(piece)
    if process.returncode != 0:
        sys.exit(f"run.py: {program} ended with status {process.returncode}")
    return digest.hexdigest(), size


def measure(bench, kind, megabytes, count):
    scene = bench.scene(kind, megabytes)
    digest, written = output_digest(bench.meshcast, scene)
    if output_digest(bench.floor, scene) != (digest, written):
        sys.exit(f"run.py: the outputs for {scene} differ")
    size = scene.stat().st_size
    meshcast, floor = bench.alternate((bench.meshcast, bench.floor), scene, count)
    return {
        "kind": kind,
        "input_bytes": size,
        "output_bytes": written,
        "output_sha256": digest,
        "meshcast": meshcast._asdict(),
        "floor": floor._asdict(),
        "meshcast_mb_per_s": size / MEGABYTE / meshcast.cpu,
        "floor_mb_per_s": size / MEGABYTE / floor.cpu,
        "ratio": meshcast.cpu / floor.cpu,
        "wall_ratio": meshcast.wall / floor.wall,
        "meshcast_peak_per_byte": meshcast.peak / size,
        "floor_peak_per_byte": floor.peak / size,
    }


def measure_start_up(bench, count):
    """The time of a run without a scene. It is short, so it is measured more often."""
    header_only = bench.scenes / "header-only.wrl"
    header_only.write_text("#VRML V1.0 ascii\n")
    return bench.alternate((bench.meshcast, bench.empty), header_only, 20 * count)


HEADINGS = """\
                            MB/s of processor time           peak bytes per byte
kind         in MB  out MB  meshcast     floor  ratio  wall   meshcast     floor"""


def table_row(row):
    return (
        f"{row['kind']:<11}{row['input_bytes'] / MEGABYTE:>7.1f}"
        f"{row['output_bytes'] / MEGABYTE:>8.1f}"
        f"{row['meshcast_mb_per_s']:>10.1f}{row['floor_mb_per_s']:>10.1f}"
        f"{row['ratio']:>7.2f}{row['wall_ratio']:>6.2f}"
        f"{row['meshcast_peak_per_byte']:>11.2f}{row['floor_peak_per_byte']:>10.2f}"
    )


def parse_arguments():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--build", type=Path, default=DEFAULT_BUILD,
                        help="the build folder (default: build/bench)")
    parser.add_argument("--sizes", type=float, nargs="+", default=[1, 10, 100], metavar="MB",
                        help="sizes of the scenes in MB (default: 1 10 100)")
    parser.add_argument("--kinds", nargs="+", choices=KINDS, default=KINDS,
                        help="kinds of scenes (default: all)")
    parser.add_argument("--runs", type=int, default=5,
                        help="runs of each program on each scene (default: 5)")
    parser.add_argument("--json", action="store_true", help="print JSON instead of a table")
    arguments = parser.parse_args()
    if arguments.runs < 1:
        parser.error("--runs must be at least 1")
    return arguments


def main():
    arguments = parse_arguments()
    bench = Bench(arguments.build.resolve())
    if not arguments.json:
        print(HEADINGS)
    rows = []
    for kind in arguments.kinds:
        for megabytes in arguments.sizes:
            rows.append(measure(bench, kind, megabytes, arguments.runs))
            if not arguments.json:
                print(table_row(rows[-1]), flush=True)
    meshcast, empty = measure_start_up(bench, arguments.runs)
    if arguments.json:
        start_up = {"meshcast": meshcast._asdict(), "empty_program": empty._asdict()}
        json.dump({"scenes": rows, "start_up": start_up}, sys.stdout, indent=2)
        print()
    else:
        print(f"\nstart-up: meshcast {1000 * meshcast.wall:.2f} ms, "
              f"an empty program {1000 * empty.wall:.2f} ms")


if __name__ == "__main__":
    main()
