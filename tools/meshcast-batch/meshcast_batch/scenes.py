"""The scenes below a folder, and the names of their outputs."""

import hashlib
import os
import re
from collections import Counter

_SCENE = re.compile(r"(.*)\.(?:wrl|wrl\.gz|wrz)", re.IGNORECASE | re.DOTALL)
_LONGEST_NAME = 255  # Bytes of a file's name, on every file system in use.


def find_scenes(folder, skipped, follow):
    """All *.wrl, *.wrl.gz and *.wrz below a folder, relative to it, in the order of their bytes; and
    the errors of folders that cannot be searched.

    `skipped` is a folder that is not searched. Links to folders are searched with `follow` only, and
    none twice on one path.
    """
    found, errors = [], []
    pending = [("", (os.path.realpath(folder),))]
    while pending:
        below, path = pending.pop()
        try:
            entries = list(os.scandir(os.path.join(folder, below)))
        except OSError as error:
            errors.append(error)
            continue
        for entry in entries:
            name = os.path.join(below, entry.name)
            if _is_folder(entry):
                real = os.path.realpath(entry.path)
                if real != skipped and real not in path and (follow or not entry.is_symlink()):
                    pending.append((name, (*path, real)))
            elif _SCENE.fullmatch(entry.name):
                found.append(name)
    return sorted(found, key=os.fsencode), errors


def _is_folder(entry):
    try:
        return entry.is_dir()
    except OSError:  # A link to itself.
        return False


def name_outputs(scenes, kinds, reserved):
    """The names of the outputs of each scene, without extension, as a dictionary.

    X.wrl becomes X. Scenes that differ only in their extensions keep them; so does a scene with two such
    extensions, since X could be the name of another. Names in `reserved` are not used in the output
    folder. A name that would be too long is truncated and ends with a part of its SHA-256.
    """
    stems = {scene: _SCENE.fullmatch(scene).group(1) for scene in scenes}
    users = Counter(stems.values())
    folders = {scene.split("/")[0] for scene in scenes if "/" in scene}
    names = {}
    for scene, stem in stems.items():
        name = scene if users[stem] > 1 or _SCENE.fullmatch(stem) else stem
        if any(f"{name}.{kind}" in reserved for kind in kinds):
            name = scene
        names[scene] = _shortened(_beside(name, reserved, folders), max(map(len, kinds)) + 1)
    return names


def _beside(name, reserved, folders):
    """The name, with its first folder renamed if that is reserved."""
    first, slash, rest = name.partition("/")
    while slash and (first in reserved or (first != name.split("/")[0] and first in folders)):
        first += "_"
    return first + slash + rest


def _shortened(name, ending):
    folder, file = os.path.split(name)
    full = os.fsencode(file)
    if len(full) + ending <= _LONGEST_NAME:
        return name
    digest = hashlib.sha256(full).hexdigest()[:16]
    kept = full[:_LONGEST_NAME - ending - 17].decode("utf-8", "ignore")
    return os.path.join(folder, f"{kept}-{digest}")
