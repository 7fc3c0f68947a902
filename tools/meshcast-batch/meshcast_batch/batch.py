"""A run over a folder of scenes."""

import fcntl
import os
import shutil
import signal
import sys

from . import command_line, engine, gallery, scenes, table
from .command_line import WrongUsage
from .job import printable
from .progress import Progress

WORK_NAME = ".meshcast-batch"
TABLE_NAME = "meshcast-batch.tsv"


class Interruption:
    """Remembers a signal that asks the process to end."""

    def __init__(self):
        self.number = None
        for number in (signal.SIGHUP, signal.SIGINT, signal.SIGTERM):
            signal.signal(number, self._take)

    def _take(self, number, _frame):
        self.number = number


class Folders:
    """The folder of scenes, the folder of outputs, and its subfolder for unfinished work.

    Everything unfinished is there, so that a rename puts an output in place and one removal cleans up.
    """

    def __init__(self, options):
        self.scenes = os.path.realpath(options.scenes)
        if not os.path.isdir(self.scenes) or not os.access(self.scenes, os.R_OK | os.X_OK):
            raise WrongUsage(f"cannot enter {options.scenes}")
        try:
            os.makedirs(options.output, exist_ok=True)
            self.output = os.path.realpath(options.output)
            self.work = os.path.join(self.output, WORK_NAME)
            os.makedirs(self.work, exist_ok=True)
            self._lock = open(os.path.join(self.work, "lock"), "w", encoding="utf-8")
        except OSError as error:
            raise WrongUsage(f"cannot use {options.output}: {error.strerror}") from error
        try:
            fcntl.flock(self._lock, fcntl.LOCK_EX | fcntl.LOCK_NB)
        except OSError as error:
            raise WrongUsage(f"another run is writing to {self.output}") from error
        self.table = os.path.join(self.output, TABLE_NAME)
        self.journal = os.path.join(self.work, "journal")
        self.clear()
        os.makedirs(os.path.join(self.work, "part"))

    def clear(self):
        """Removes unfinished outputs."""
        shutil.rmtree(os.path.join(self.work, "part"), ignore_errors=True)

    def finish(self):
        """Removes everything except the journal of an unfinished run."""
        self.clear()
        for name in ("lock", "journal.new"):
            try:
                os.unlink(os.path.join(self.work, name))
            except FileNotFoundError:
                pass
        if not os.listdir(self.work):
            os.rmdir(self.work)


class Run:
    """One call of the program, after its command line has been read."""

    def __init__(self, options, folders, interruption):
        self._options, self._folders, self._interruption = options, folders, interruption
        self._has_gallery = bool({"html", "png"} & set(options.to))
        reserved = {WORK_NAME, TABLE_NAME, TABLE_NAME + ".new"} | (
            {gallery.NAME, gallery.NAME + ".new"} if self._has_gallery else set())
        self._scenes, self._errors = scenes.find_scenes(folders.scenes, folders.work, options.follow)
        self._names = scenes.name_outputs(self._scenes, options.to, reserved)
        # The rows of earlier runs. The journal of an unfinished run has all of them.
        self._earlier = table.read_rows(folders.journal) or table.read_rows(folders.table)

    def convert(self):
        """Converts the scenes that are left. Returns the exit status."""
        for error in self._errors:
            say(f"cannot search {printable(error.filename)}: {error.strerror}")
        done = [self._earlier[printable(scene)] for scene in self._scenes if self._is_done(scene)]
        # A table means that a run has finished, so the old one is removed once the new journal is on disk.
        table.write_rows(self._folders.journal, done)
        if os.path.isfile(self._folders.table):
            os.unlink(self._folders.table)
        finished = {row.file for row in done}
        pending = [scene for scene in self._scenes if printable(scene) not in finished]
        if pending and self._interruption.number is None:
            self._run_jobs(pending)
        return self._finish()

    def _is_done(self, scene):
        """Whether the scene has failed or has all its outputs."""
        row = self._earlier.get(printable(scene))
        if row is None or not (self._options.resume or self._options.resume_failed):
            return False
        if not row.is_converted:
            return not self._options.resume_failed
        return all(os.path.isfile(os.path.join(self._folders.output, f"{self._names[scene]}.{kind}"))
                   for kind in self._options.to)

    def _run_jobs(self, pending):
        options, folders = self._options, self._folders
        job_options = {
            "scenes": folders.scenes, "output": folders.output, "work": folders.work,
            "programs": programs_folder(), "kinds": options.to, "timeout": options.timeout,
            "max_output": options.max_output, "size": options.size, "follow": options.follow,
            "tidy": (["--inline", "--root", "."] if options.inline else []) + ["--strict"] * options.strict,
            "export": ["--strict"] * options.strict,
        }
        names = []
        for scene in pending:
            row = self._earlier.get(printable(scene))
            names += [scene, self._names[scene], row.outputs if row else ""]
        progress = Progress(len(self._scenes))
        tail = JournalTail(folders.journal)

        def watch():
            tail.read()
            progress.show(tail.done, tail.failed)
            return self._interruption.number is not None

        engine.run_jobs(options, job_options, names, folders.journal, watch)
        progress.clear()

    def _finish(self):
        rows = table.read_rows(self._folders.journal)
        ended = [rows[printable(scene)] for scene in self._scenes if printable(scene) in rows]
        if len(ended) < len(self._scenes):
            reason = "unfinished" if self._interruption.number is None else "interrupted"
            say(f"{reason}: {len(ended)} of {len(self._scenes)} scenes are done, --resume goes on")
            return 1 if self._interruption.number is None else 128 + self._interruption.number
        table.write_rows(self._folders.table, ended)
        if self._has_gallery:
            links = {printable(scene): name for scene, name in self._names.items()}
            table.replace(os.path.join(self._folders.output, gallery.NAME),
                          gallery.page(os.path.basename(self._folders.scenes), ended, links, self._options.to))
        os.unlink(self._folders.journal)
        summary = "".join(f", {state}: {count}" for state in table.STATES
                          if (count := sum(row.status == state for row in ended)))
        shown = os.path.join(self._folders.output, gallery.NAME) if self._has_gallery else self._folders.table
        say(f"scenes: {len(ended)}{summary}; see {printable(shown)}")
        return 0 if all(row.is_converted for row in ended) and not self._errors else 1


class JournalTail:
    """Counts the rows that are added to a journal."""

    def __init__(self, path):
        self._file = open(path, "rb")
        self._rest = b""
        self.done = self.failed = 0

    def read(self):
        *lines, self._rest = (self._rest + self._file.read()).split(b"\n")
        for line in lines:
            row = table.parse_row(line.decode("utf-8", "replace"))
            if row:
                self.done += 1
                self.failed += not row.is_converted


def say(text):
    sys.stderr.write(f"meshcast-batch: {text}\n")


def programs_folder():
    """The folders of the other programs, if they are not on PATH."""
    return os.path.dirname(os.path.realpath(sys.argv[0]))


def main(version):
    """Runs the program, and returns its exit status."""
    interruption = Interruption()
    # Other programs must print their messages in English, as in the manual.
    os.environ["LC_ALL"] = "C"
    try:
        options = command_line.parse(sys.argv[1:], version)
        os.environ["PATH"] = programs_folder() + ":" + os.environ.get("PATH", os.defpath)
        needed = {"parallel"} | ({"vrmltidy", "meshcast", "geomtool"} if "geom" in options.to else set()) | (
            {"vrmlexport"} if set(options.to) - {"geom"} else set())
        for program in sorted(needed):
            if shutil.which(program) is None:
                raise WrongUsage(f"cannot find the program {program}")
        folders = Folders(options)
    except WrongUsage as problem:
        say(printable(str(problem)))
        return 2
    try:
        return Run(options, folders, interruption).convert()
    except OSError as error:
        say(printable(f"{error.filename or folders.output}: {error.strerror}"))
        return 2
    finally:
        folders.finish()
