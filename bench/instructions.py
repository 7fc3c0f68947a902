#!/usr/bin/env python3
"""Counts the instructions that meshcast executes for small scenes, and compares them with a record.

Unlike seconds, these counts are the same in every run, so they show slow-downs on any machine of the
same kind. Fails if a count is more than 5 % above the recorded one.

    bench/instructions.py            compare with bench/instructions.txt
    bench/instructions.py --record   update that file
"""

import argparse
import re
import subprocess
import sys
from pathlib import Path

HERE = Path(__file__).resolve().parent
RECORD = HERE / "instructions.txt"
KINDS = ("terrain", "parts", "primitives", "coloured")
SCENE_BYTES = "1000000"
SLACK = 0.05


def count(build, kind):
    """Instructions of one conversion, counted by valgrind's callgrind."""
    scene = subprocess.run([build / "bench" / "scene_gen", kind, SCENE_BYTES],
                           stdout=subprocess.PIPE, check=True).stdout
    run = subprocess.run(["valgrind", "--tool=callgrind", "--callgrind-out-file=/dev/null",
                          build / "driver" / "meshcast"],
                         input=scene, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, check=True)
    return int(re.search(rb"Collected : (\d+)", run.stderr).group(1))


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--build", type=Path, default=HERE.parent / "build" / "bench")
    parser.add_argument("--record", action="store_true", help="update bench/instructions.txt")
    options = parser.parse_args()

    counts = {kind: count(options.build, kind) for kind in KINDS}
    if options.record:
        RECORD.write_text("".join(f"{kind} {number}\n" for kind, number in counts.items()))
    recorded = dict(line.split() for line in RECORD.read_text().splitlines())
    too_many = False
    for kind, number in counts.items():
        change = number / int(recorded[kind]) - 1
        too_many |= change > SLACK
        print(f"{kind:12}{number:14,} instructions per MB scene, {change:+.1%} of the record")
    sys.exit(1 if too_many else 0)


if __name__ == "__main__":
    main()
