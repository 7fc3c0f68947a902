"""A page that shows all scenes of a run."""

import base64
import hashlib
import html
import json
import os
import pathlib
import urllib.parse

NAME = "index.html"
_PARTS = pathlib.Path(__file__).parent


def page(title, rows, names, kinds):
    """The page for rows of the table, as HTML. `names` has the names of their outputs, relative to the
    page. Names and messages are data, which the script of the page shows as text."""
    data = json.dumps({"kinds": kinds, "rows": [_entry(row, names[row.file]) for row in rows]},
                      ensure_ascii=False, separators=(",", ":")).replace("<", "\\u003c")
    style, script = ((_PARTS / name).read_text("utf-8") for name in ("gallery.css", "gallery.js"))
    policy = f"default-src 'none'; img-src * data:; style-src {_hash(style)}; script-src {_hash(script)}"
    shown = html.escape(os.fsencode(title).decode("utf-8", "replace"))
    return (_PARTS / "gallery.html").read_text("utf-8").format(
        title=shown, policy=policy, style=style, data=data, script=script)


def _entry(row, name):
    # With "./" before it, a name such as javascript:x is a path and not a URL scheme.
    link = "./" + urllib.parse.quote(os.fsencode(name)) if row.is_converted else None
    return [row.file, row.status, row.objects, row.vertices, row.polygons, row.repairs, row.message, link]


def _hash(text):
    """The source expression for a script or a style in a content security policy."""
    return "'sha256-" + base64.b64encode(hashlib.sha256(text.encode("utf-8")).digest()).decode("ascii") + "'"
