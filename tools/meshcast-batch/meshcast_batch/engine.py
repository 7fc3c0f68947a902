"""GNU parallel, which runs the jobs, here or on other machines, and ends them on an interruption."""

import json
import os
import pathlib
import shlex
import signal
import subprocess
import sys
import tempfile

from .job import ARGUMENTS_PER_SCENE

_JOB = pathlib.Path(__file__).with_name("job.py")
_FILTER_VARIABLES = ("KRA_GEOM_WRITE_V2", "KRA_GEOM_VERIFY", "KRA_GEOM_DEBUG")
_MOST_PER_JOB, _FEWEST_JOBS = 16, 64
_PATIENCE = 0.2  # Seconds between checks of the jobs.


def _jobs_here(wanted):
    """The number of jobs that run at a time on this machine. Left to parallel, other programs would be
    started to count the processors, and processors that this process may not use would be counted."""
    processors = len(os.sched_getaffinity(0))
    if wanted and not wanted.endswith("%"):
        return wanted
    return str(max(1, processors * int((wanted or "100%")[:-1]) // 100))


def _command(options, scenes):
    """The command line of parallel for this number of scenes. With --plain, the user's configuration
    cannot add anything to the rows on standard output."""
    # Starting Python takes longer than converting a small scene, so with many scenes a job converts
    # several. With --line-buffer, each row is printed at once.
    per_job = max(1, min(_MOST_PER_JOB, scenes // _FEWEST_JOBS))
    words = ["parallel", "--plain", "--null", "--line-buffer",
             "--max-replace-args", str(ARGUMENTS_PER_SCENE * per_job)]
    if options.jobs or not options.sshlogin:
        words += ["--jobs", options.jobs if options.sshlogin else _jobs_here(options.jobs)]
    for hosts in options.sshlogin:
        words += ["--sshlogin", hosts]
    if options.sshlogin:
        words += ["--retries", "2"]  # Another machine may run what one could not.
        for name in ("BATCH_JOB", "BATCH_OPTIONS", *_FILTER_VARIABLES):
            words += ["--env", name]
    # The job's text is passed in a variable, so that other machines need only Python. This machine uses
    # the running interpreter, since python3 on PATH may be a slow wrapper script.
    python = "python3" if options.sshlogin else shlex.quote(sys.executable)
    return [*words, f'exec {python} -X utf8 -I -S -c "$BATCH_JOB" {{}}']


def run_jobs(options, job_options, names, journal, watch):
    """Has the jobs append their rows to a journal. `names` are the arguments of all jobs,
    ARGUMENTS_PER_SCENE for each; `watch` is called repeatedly, and returns true to interrupt the run."""
    environment = dict(os.environ, LC_ALL="C", PARALLEL_SHELL="/bin/sh", BATCH_JOB=_JOB.read_text("utf-8"),
                       BATCH_OPTIONS=json.dumps(job_options))
    with tempfile.TemporaryFile() as listed, open(journal, "ab") as rows:
        listed.write(b"".join(os.fsencode(name) + b"\0" for name in names))
        listed.seek(0)
        parallel = subprocess.Popen(_command(options, len(names) // ARGUMENTS_PER_SCENE),
                                    stdin=listed, stdout=rows, env=environment)
        while parallel.poll() is None:
            try:
                parallel.wait(_PATIENCE)
            except subprocess.TimeoutExpired:
                pass
            # After the first signal, parallel starts no more jobs; the second one ends the running jobs. A
            # signal that arrives while parallel starts is lost.
            if watch() and parallel.poll() is None:
                parallel.send_signal(signal.SIGTERM)
