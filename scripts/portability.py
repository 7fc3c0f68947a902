#!/usr/bin/env python3
"""Checks that meshcast gives the same bytes, messages and statuses with every compiler and machine.

Builds it with GCC and Clang, without and with optimisation, and for two machines that QEMU emulates:
s390x (big-endian, 64 bits) and i386 (32 bits). Each build converts every scene of examples/, tests/scenes/
and the given folders to version 10 and to version 7, with and without verification. It also repairs these
scenes and those of tests/scenes/tidy/, and exports them to GLB if the build has the exporter. The results
are compared with those of the first build. Prints one line for each build, with the first scenes that
differ; ends with status 1 if any differ.
"""

import argparse
import os
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor
from itertools import product
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
BUILDS = ROOT / "build" / "portability"
RELEASE = "-DCMAKE_BUILD_TYPE=Release"
DEBUG = "-DCMAKE_BUILD_TYPE=Debug"
GCC = "-DCMAKE_CXX_COMPILER=g++"
CLANG = "-DCMAKE_CXX_COMPILER=clang++"

# The CMake arguments of each build.
NATIVE = {
    "gcc -O3": [GCC, RELEASE],
    "gcc -O0": [GCC, DEBUG],
    "clang -O3": [CLANG, RELEASE],
    "clang -O0": [CLANG, DEBUG],
}
FOREIGN = {
    machine: [f"-DCMAKE_TOOLCHAIN_FILE={ROOT}/cmake/{machine}.cmake", RELEASE]
    for machine in ("s390x", "i386")
}
# The emulator for each machine, with the folder of that machine's C library.
EMULATORS = {
    "s390x": ["qemu-s390x", "-L", "/usr/s390x-linux-gnu"],
    "i386": ["qemu-i386", "-L", "/usr/i686-linux-gnu"],
}
WAYS = list(product(({}, {"KRA_GEOM_WRITE_V2": ""}), ({}, {"KRA_GEOM_VERIFY": ""})))
FILTER, TIDIER = "driver/meshcast", "tools/vrmltidy/vrmltidy"
EXPORTER = "tools/vrmlexport/vrmlexport"  # Not built for other machines.
ARGUMENTS = {FILTER: [], TIDIER: [], EXPORTER: ["--quiet", "--format", "glb", "-", "-"]}
MOST_SHOWN = 5
SECONDS_PER_SCENE = 300

# All but the last two start programs, which does not work for programs of another machine. Prefixes takes
# too long under emulation, since it converts each scene once for each of its bytes. ExhaustedMemory expects
# the sizes of records with 64-bit pointers.
TESTS_LEFT_OUT = ("Scenes|Filter|Readme|Geomtool|VrmlTidy|ManPages|MeshcastBatch|"
                  "Prefixes|ExhaustedMemory")


def quietly(*command):
    """Runs a command. Prints its output only if it fails."""
    run = subprocess.run(command, cwd=ROOT, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    if run.returncode != 0:
        sys.stderr.buffer.write(run.stdout)
        sys.exit(f"{' '.join(map(str, command))} failed with status {run.returncode}")


def build(name, arguments, tests):
    """Builds meshcast, and the tests if wanted; returns the build's directory."""
    directory = BUILDS / name.replace(" ", "")
    wanted = "ON" if tests else "OFF"
    # Warnings are not errors here: GCC 12 for s390x has false warnings about its own library.
    quietly("cmake", "-S", ROOT, "-B", directory, "-G", "Ninja", "-DMESHCAST_WERROR=OFF",
            f"-DBUILD_TESTING={wanted}", "-DMESHCAST_BUILD_TOOLS=ON", *arguments)
    quietly("cmake", "--build", directory, "--parallel", str(os.cpu_count()))
    return directory


def convert(command, scene, way):
    """Standard output, standard error and exit status of one conversion."""
    environment = {name: value for name, value in os.environ.items() if not name.startswith("KRA_")}
    for part in way:
        environment.update(part)
    with open(scene, "rb") as source:
        run = subprocess.run(command, stdin=source, capture_output=True, env=environment,
                             timeout=SECONDS_PER_SCENE)
    return run.stdout, run.stderr, run.returncode


def described(program, scene, way):
    if program != FILTER:
        return f"{scene} ({'repaired' if program == TIDIER else 'exported'})"
    version = "version 7" if way[0] else "version 10"
    return f"{scene} ({version}{', verified' if way[1] else ''})"


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("folders", nargs="*", type=Path, help="folders of further scenes (*.wrl)")
    parser.add_argument("--tests", action="store_true",
                        help="run the unit tests of the other machines' builds too")
    options = parser.parse_args()

    quietly("scripts/setup.sh", "--portability")
    folders = [ROOT / "examples", ROOT / "tests" / "scenes", *options.folders]
    scenes = [s for folder in folders for s in sorted(folder.glob("*.wrl"))]
    dirty = sorted((ROOT / "tests" / "scenes" / "tidy").glob("*.wrl"))
    runs = [(FILTER, *run) for run in product(scenes, WAYS)]
    runs += [(program, scene, ({}, {})) for program in (TIDIER, EXPORTER) for scene in scenes + dirty]

    expected = {}
    failed = False
    for name, arguments in {**NATIVE, **FOREIGN}.items():
        if name in FOREIGN:
            quietly("scripts/sysroot.sh", name)
        tests = options.tests and name in FOREIGN
        directory = build(name, arguments, tests)
        emulator = EMULATORS.get(name, [])
        possible = [n for n, run in enumerate(runs) if run[0] != EXPORTER or name in NATIVE]
        with ThreadPoolExecutor(os.cpu_count()) as pool:
            results = dict(zip(possible, pool.map(
                lambda n: convert([*emulator, directory / runs[n][0], *ARGUMENTS[runs[n][0]]],
                                  *runs[n][1:]), possible)))
        expected = expected or results
        differing = [runs[n] for n in possible if results[n] != expected[n]]
        failed |= bool(differing)
        print(f"{name:10} {len(possible)} runs, {len(differing)} differ", flush=True)
        for run in differing[:MOST_SHOWN]:
            print(f"{'':10} {described(*run)}", flush=True)
        if tests:
            failed |= subprocess.run(["ctest", "--test-dir", directory, "--output-on-failure",
                                      "--exclude-regex", TESTS_LEFT_OUT,
                                      "--timeout", str(SECONDS_PER_SCENE),
                                      "--parallel", str(os.cpu_count())]).returncode != 0
    sys.exit(1 if failed else 0)


if __name__ == "__main__":
    main()
