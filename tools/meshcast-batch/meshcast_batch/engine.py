"""GNU parallel, which runs the jobs, here or on other machines, and ends them on an interruption."""

import json
import os
import pathlib
import signal
import subprocess
import tempfile

_JOB = pathlib.Path(__file__).with_name("job.py")
_FILTER_VARIABLES = ("KRA_GEOM_WRITE_V2", "KRA_GEOM_VERIFY", "KRA_GEOM_DEBUG")
_PATIENCE = 0.2  # Seconds between looks at the jobs.


def _command(options):
    """The command line of parallel. Rows and nothing else are to come on its standard output,
    whatever the user has configured: --plain."""
    words = ["parallel", "--plain", "--null", "--max-replace-args", "3"]
    if options.jobs:
        words += ["--jobs", options.jobs]
    for hosts in options.sshlogin:
        words += ["--sshlogin", hosts]
    if options.sshlogin:
        words += ["--retries", "2"]  # What a machine did not take another one may.
        for name in ("BATCH_JOB", "BATCH_OPTIONS", *_FILTER_VARIABLES):
            words += ["--env", name]
    # The program travels as a variable, so that other machines need nothing but Python.
    return [*words, 'exec python3 -X utf8 -I -S -c "$BATCH_JOB" {1} {2} {3}']


def run_jobs(options, job_options, names, journal, watch):
    """Has the jobs append their rows to a journal. `names` are the arguments of all jobs, three for
    each; `watch` is called again and again, and returns true when the run is to be broken off."""
    environment = dict(os.environ, LC_ALL="C", PARALLEL_SHELL="/bin/sh", BATCH_JOB=_JOB.read_text("utf-8"),
                       BATCH_OPTIONS=json.dumps(job_options))
    with tempfile.TemporaryFile() as listed, open(journal, "ab") as rows:
        listed.write(b"".join(os.fsencode(name) + b"\0" for name in names))
        listed.seek(0)
        parallel = subprocess.Popen(_command(options), stdin=listed, stdout=rows, env=environment)
        while parallel.poll() is None:
            try:
                parallel.wait(_PATIENCE)
            except subprocess.TimeoutExpired:
                pass
            # The first signal has parallel start no more jobs, the second one ends those that run;
            # one that comes while it starts is lost.
            if watch() and parallel.poll() is None:
                parallel.send_signal(signal.SIGTERM)
