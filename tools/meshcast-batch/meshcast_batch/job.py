"""Converts scenes and prints their rows. It needs no other file, since it may run on another machine.

Usage: job.py {SCENE NAME EARLIER}...
SCENE and NAME are relative to the folders in the variable BATCH_OPTIONS. NAME is what the scene's
outputs are called without their endings, EARLIER the kinds that an earlier run has written, with
commas between them.
"""

import errno
import json
import os
import re
import resource
import select
import shutil
import signal
import stat
import subprocess
import sys
import tempfile
import threading
import time

# The columns of the table, in order; see table.py.
COLUMNS = ("file", "status", "objects", "vertices", "polygons", "repairs", "seconds", "message", "outputs")

ARGUMENTS_PER_SCENE = 3

_SAID_SIZE = 4096  # The number of bytes kept of the beginning and the end of a program's messages.
_DISTURBING = re.compile("[\\\\\0-\x1f\x7f-\x9f\u2028\u2029\ud800-\udfff]")
_SHORT = {"\\": "\\\\", "\t": "\\t", "\n": "\\n", "\r": "\\r"}


def printable(text):
    """The text with a backslash form for control characters, C1 ones too, and for bytes that are not
    UTF-8. Different texts have different forms."""
    def escaped(match):
        code = match.group().encode("utf-8", "surrogateescape")
        return _SHORT.get(match.group()) or "".join(f"\\x{byte:02x}" for byte in code)
    return _DISTURBING.sub(escaped, text)


class Failure(Exception):
    """Why a scene is not converted: the status and the message of its row."""

    def __init__(self, status, message):
        super().__init__(message)
        self.status, self.message = status, message


class Said:
    """Keeps the beginning and the end of a program's messages, of any length."""

    def __init__(self, pipe):
        self._head = self._tail = b""
        self._pipe = pipe
        self._thread = threading.Thread(target=self._read, daemon=True)
        self._thread.start()

    def _read(self):
        while chunk := self._pipe.read1(65536):
            self._head += chunk[:_SAID_SIZE - len(self._head)]
            self._tail = (self._tail + chunk)[-_SAID_SIZE:]

    def finish(self):
        self._thread.join()
        self._pipe.close()

    def beginning(self):
        return self._head.decode("utf-8", "surrogateescape")

    def first_line(self):
        return self.beginning().split("\n")[0]

    def last_line(self):
        return self._tail.decode("utf-8", "surrogateescape").rstrip("\n").split("\n")[-1]


class Clock:
    """The time that the scene has left."""

    def __init__(self, seconds):
        self._started = time.monotonic()
        self._limit = seconds

    def elapsed(self):
        return time.monotonic() - self._started

    def left(self):
        """None without a limit."""
        if not self._limit:
            return None
        if self.elapsed() >= self._limit:
            raise Failure("timeout", f"took longer than {self._limit:g} s")
        return self._limit - self.elapsed()

    def wait(self, process):
        """The result of a process."""
        while True:
            try:
                return process.wait(self.left())
            except subprocess.TimeoutExpired:
                pass


def ended(program, code, said):
    """Describes how a program ended unexpectedly."""
    how = f"was ended by signal {-code}" if code < 0 else f"ended with status {code}"
    return Failure("failed", f"{program} {how}" + (f": {said}" if said else ""))


def sync(path, flags=os.O_RDONLY):
    """Flushes a file or folder to disk."""
    descriptor = os.open(path, flags)
    try:
        os.fsync(descriptor)
    finally:
        os.close(descriptor)


class Job:
    """The conversion of a scene to each kind of output."""

    def __init__(self, options, scene, name):
        self._options, self._scene, self._name = options, scene, name
        self._clock = Clock(options["timeout"])
        self.row = {"file": scene, "status": "failed", "objects": 0, "vertices": 0, "polygons": 0,
                    "repairs": 0, "message": "", "outputs": ""}

    def run(self, earlier):
        """Converts the scene and completes its row."""
        try:
            os.chdir(self._options["scenes"])
            self._check_scene()
            self._convert()
        except (Failure, OSError) as problem:
            self.row.update(objects=0, vertices=0, polygons=0)
            if isinstance(problem, Failure):
                self.row.update(status=problem.status, message=problem.message)
            else:
                self.row["message"] = f"{problem.filename or 'the output folder'}: {problem.strerror}"
            # An output of an earlier run could be mistaken for one of this run. Other files stay.
            for kind in filter(None, earlier.split(",")):
                try:
                    os.unlink(self._target(kind))
                except OSError:
                    pass
        self.row["seconds"] = f"{self._clock.elapsed():.3f}"

    def _target(self, kind):
        return os.path.join(self._options["output"], f"{self._name}.{kind}")

    def _check_scene(self):
        """Checks that the scene is a file below the folder, or anywhere with --follow."""
        try:
            real = os.path.realpath(self._scene, strict=True)
            is_file = stat.S_ISREG(os.stat(real).st_mode) and os.access(real, os.R_OK)
        except OSError:
            is_file = False
        if not is_file:
            raise Failure("unreadable", "not a file that can be read")
        here = os.getcwd()
        if not self._options["follow"] and os.path.commonpath([real, here]) != here:
            raise Failure("unreadable", "a link that leads out of the folder; --follow reads it")

    def _convert(self):
        kinds = self._options["kinds"]
        part = tempfile.mkdtemp(dir=os.path.join(self._options["work"], "part"))
        try:
            made = {}
            for kind in kinds:
                folder = os.path.join(part, kind)
                os.mkdir(folder)
                made[kind] = os.path.join(folder, os.path.basename(self._target(kind)))
                (self._make_stream if kind == "geom" else self._make_model)(made[kind])
            for kind in kinds:
                self._put_in_place(made[kind], self._target(kind))
        finally:
            shutil.rmtree(part, ignore_errors=True)
        self.row["status"] = "ok" if self.row["objects"] else "empty"
        self.row["outputs"] = ",".join(kinds)

    @staticmethod
    def _put_in_place(path, target):
        """Renames an output to its final name. After a power failure it is complete or absent."""
        folder = os.path.dirname(target)
        os.makedirs(folder, exist_ok=True)
        sync(path)
        os.rename(path, target)
        sync(folder, os.O_RDONLY | os.O_DIRECTORY)

    def _too_large(self):
        return Failure("failed", f"an output grew larger than {self._options['max_output']} bytes")

    def _make_stream(self, path):
        """Runs the scene through tidier and filter, and checks the stream."""
        said, (tidied, converted) = self._write_stream(path)
        last, first = said[0].last_line(), said[1].first_line()
        repairs = re.search(r": (\d+) repairs?$", last)
        self.row.update(repairs=int(repairs.group(1)) if repairs else 0, message=first)
        if tidied == 1:
            raise Failure("refused", last.removeprefix(f"vrmltidy: ./{self._scene}: "))
        # SIGPIPE means that the next program ended early; that program has the reason.
        if tidied not in (0, -signal.SIGPIPE):
            raise ended("vrmltidy", tidied, last)
        if converted != 0:
            raise ended("meshcast", converted, first)
        if first.startswith("VRML read error:"):
            raise Failure("failed", first)
        with open(path, "rb") as stream:
            self._count(stream)

    def _write_stream(self, path):
        """Returns the messages and results of the tidier and the filter."""
        tidier = subprocess.Popen(["vrmltidy", *self._options["tidy"], "./" + self._scene],
                                  stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        converter = subprocess.Popen(["meshcast"], stdin=tidier.stdout, stdout=subprocess.PIPE,
                                     stderr=subprocess.PIPE)
        tidier.stdout.close()
        programs = (tidier, converter)
        said = [Said(program.stderr) for program in programs]
        try:
            with open(path, "wb", buffering=0) as stream:
                self._copy(converter.stdout.fileno(), stream)
            return said, [self._clock.wait(program) for program in programs]
        finally:
            converter.stdout.close()
            for program, text in zip(programs, said):
                program.kill()
                program.wait()
                text.finish()

    def _copy(self, pipe, file):
        """Copies a pipe into a file, within the limits of time and size."""
        size = 0
        while True:
            if not select.select([pipe], [], [], self._clock.left())[0]:
                continue
            chunk = os.read(pipe, 1 << 20)
            if not chunk:
                return
            size += len(chunk)
            if size > self._options["max_output"]:
                raise self._too_large()
            while chunk:
                chunk = chunk[file.write(chunk):]

    def _count(self, stream):
        program = subprocess.Popen(["geomtool", "info", "--totals"], stdin=stream, stdout=subprocess.PIPE,
                                   stderr=subprocess.PIPE)
        said, counts = Said(program.stderr), Said(program.stdout)
        try:
            code = self._clock.wait(program)
        finally:
            program.kill()
            program.wait()
            said.finish()
            counts.finish()
        if code == 1:
            raise Failure("broken", said.first_line().removeprefix("geomtool: standard input: "))
        if code != 0:
            raise ended("geomtool", code, said.first_line())
        for name, count in re.findall(r"^(objects|vertices|polygons)\s+(\d+)", counts.beginning(), re.MULTILINE):
            self.row[name] = int(count)

    def _make_model(self, path):
        """Writes a format with vrmlexport, and takes the counts from its report."""
        folder = os.path.dirname(path)
        report = os.path.join(os.path.dirname(folder), "report.json")
        size = ["--size", self._options["size"]] if path.endswith(".png") else []
        with open(report, "wb") as file:
            program = subprocess.Popen(
                ["vrmlexport", "--quiet", "--root", ".", "--report", report, *self._options["export"], *size,
                 "--", "./" + self._scene, path],
                stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE,
                preexec_fn=self._limit_files)
        said = Said(program.stderr)
        try:
            code = self._clock.wait(program)
        finally:
            program.kill()
            program.wait()
            said.finish()
        with open(report, encoding="utf-8") as file:
            told = json.load(file) if code in (0, 1) and os.stat(report).st_size else {}
        failure = told.get("failure", "")
        # At the limit, the program ends by a signal, or a write fails.
        if code == -signal.SIGXFSZ or failure.endswith(os.strerror(errno.EFBIG)):
            raise self._too_large()
        if code == 1 and failure:
            raise self._refusal(failure)
        if code != 0 or not told:
            raise ended("vrmlexport", code, said.last_line())
        if "geom" not in self._options["kinds"]:
            self._take_report(told)

    @staticmethod
    def _refusal(failure):
        """Failures begin with the file that they are about, the scene or an output."""
        file, _, message = failure.partition(": ")
        return Failure("refused" if file.startswith("./") else "failed", message)

    def _limit_files(self):
        resource.setrlimit(resource.RLIMIT_FSIZE, (self._options["max_output"],) * 2)
        resource.setrlimit(resource.RLIMIT_CORE, (0, 0))

    def _take_report(self, told):
        """Without a stream, the row has the counts of the exported scene."""
        counts = told["counts"]
        texts = [*told["messages"], *(note["text"] for note in told["notes"])]
        self.row.update(objects=counts["instances"], vertices=counts["vertices"],
                        polygons=counts["triangles"], repairs=len(told["repairs"]),
                        message=texts[0] if texts else "")


def main():
    options = json.loads(os.environ["BATCH_OPTIONS"])
    os.environ["LC_ALL"] = "C"
    os.environ["PATH"] = options["programs"] + ":" + os.environ["PATH"]
    words = iter(sys.argv[1:])
    for scene, name, earlier in zip(words, words, words):
        job = Job(options, scene, name)
        job.run(earlier)
        print("\t".join(printable(str(job.row[column])) for column in COLUMNS), flush=True)


if __name__ == "__main__":
    main()
