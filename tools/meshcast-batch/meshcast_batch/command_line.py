"""The command line of meshcast-batch."""

import argparse
import re

KINDS = ("geom", "glb", "html", "png", "ply", "stl", "3mf")


class WrongUsage(Exception):
    """What is wrong with the usage or the folders, as a sentence."""


class _Parser(argparse.ArgumentParser):
    def error(self, message):
        raise WrongUsage(f"{message}; see --help")

    def format_help(self):
        # The layout of the other programs' help.
        return super().format_help().replace("usage: ", "Usage: ", 1).replace(
            "positional arguments:", "Positionals:").replace("options:", "Options:")


def _jobs(text):
    if not re.fullmatch(r"[1-9]\d*%?", text, re.ASCII):
        raise argparse.ArgumentTypeError("takes a number or a percentage")
    return text


def _seconds(text):
    if not re.fullmatch(r"\d+(\.\d+)?", text, re.ASCII):
        raise argparse.ArgumentTypeError("takes a number of seconds")
    return float(text)


def _size(text):
    match = re.fullmatch(r"(\d+)([KMGT]?)", text, re.ASCII)
    if not match or int(match[1]) == 0 or len(match[1]) > 12:
        raise argparse.ArgumentTypeError("takes a number of bytes, perhaps with K, M, G or T")
    return int(match[1]) << 10 * " KMGT".index(match[2] or " ")


def _picture_size(text):
    if not re.fullmatch(r"[1-9]\d{0,3}x[1-9]\d{0,3}", text, re.ASCII):
        raise argparse.ArgumentTypeError("takes WIDTHxHEIGHT in pixels")
    return text


def _kinds(text):
    kinds = list(dict.fromkeys(text.split(",")))
    for kind in kinds:
        if kind not in KINDS:
            raise argparse.ArgumentTypeError(f"does not know \"{kind}\"; it takes {', '.join(KINDS)}")
    return kinds


def parse(arguments, version):
    """The options. Raises WrongUsage."""
    parser = _Parser(
        prog="meshcast-batch", add_help=False, allow_abbrev=False,
        usage="meshcast-batch [OPTIONS] SCENES OUTPUT",
        description="Converts every VRML 1.0 scene below a folder.",
        epilog="Exit status: 0 all converted, 1 some failed or are unfinished, 2 wrong usage.",
        formatter_class=lambda prog: argparse.HelpFormatter(prog, max_help_position=24, width=100))
    parser.add_argument("scenes", metavar="SCENES", help="The folder to search for *.wrl, *.wrl.gz and *.wrz")
    parser.add_argument("output", metavar="OUTPUT", help="The folder for outputs and the table meshcast-batch.tsv")
    add = parser.add_argument
    add("-h", "--help", action="help", help="Print this help message and exit")
    add("--version", action="version", version=f"meshcast-batch {version}",
        help="Display program version information and exit")
    add("--follow", action="store_true", help="Follow symbolic links, also those that lead out of SCENES")
    add("--inline", action="store_true", help="Replace WWWInline nodes by their scenes in streams")
    add("--jobs", metavar="N", type=_jobs,
        help="Convert N scenes at a time, or N%% of the number of processors; 100%% by default")
    add("--max-output", metavar="SIZE", type=_size, default="4G",
        help="Fail scenes with a larger output, in bytes or with K, M, G or T; 4G by default")
    add("--resume", action="store_true", help="Continue an interrupted run")
    add("--resume-failed", action="store_true", help="Continue, and convert failed scenes again")
    add("--size", metavar="WIDTHxHEIGHT", type=_picture_size, default="640x480",
        help="The size of pictures in pixels; 640x480 by default")
    add("--sshlogin", metavar="HOSTS", action="append", default=[],
        help="Distribute the work over these machines, in the syntax of parallel")
    add("--strict", action="store_true", help="Fail scenes that need repairs")
    add("--timeout", metavar="SECONDS", type=_seconds, default="600",
        help="Fail scenes that take longer; 600 by default, 0 for no limit")
    add("--to", metavar="KINDS", type=_kinds, default="geom",
        help=f"Formats to write, separated by commas: {', '.join(KINDS)}; geom by default. With html or png, a page "
             "index.html shows all scenes")
    return parser.parse_args(arguments)
