"""A line on a terminal that shows the progress of a run."""

import shutil
import sys
import time


class Progress:
    """Shows nothing unless standard error is a terminal."""

    def __init__(self, total):
        self._total = total
        self._started = time.monotonic()
        self._is_shown = total > 0 and sys.stderr.isatty()

    def show(self, done, failed):
        if not self._is_shown:
            return
        line = self._text(done, failed)
        space = shutil.get_terminal_size().columns - len(line) - 4
        if space >= 10:
            filled = space * done // self._total
            line = "[" + "#" * filled + "." * (space - filled) + "] " + line
        sys.stderr.write("\r\x1b[K" + line)
        sys.stderr.flush()

    def clear(self):
        if self._is_shown:
            sys.stderr.write("\r\x1b[K")
            sys.stderr.flush()

    def _text(self, done, failed):
        text = f"{done} of {self._total} scenes"
        if failed:
            text += f", {failed} failed"
        if 0 < done < self._total:
            left = (time.monotonic() - self._started) / done * (self._total - done)
            text += f", {int(left) // 60}:{int(left) % 60:02} left"
        return text
