"""What replies may look like while files are missing."""

import glob
import os
import shutil

from unit import DRIVER, reset, settings_files


def pieces(reply):
    """The text around the values, and the values."""
    parts = reply.split('"')
    return "\0".join(parts[0::2]), parts[1::2]


class Allowed:
    """The shapes of replies that are right, and the values at each place of a shape."""

    def __init__(self, values=()):
        self.values = set(values)  # right everywhere
        self.shapes = {}

    def add(self, reply):
        shape, values = pieces(reply)
        known = self.shapes.setdefault(shape, [set() for _ in values])
        for position, value in zip(known, values):
            position.add(value)

    def fits(self, reply):
        shape, values = pieces(reply)
        known = self.shapes.get(shape)
        return known is not None and all(
            value in position or value in self.values for position, value in zip(known, values))


def worlds():
    """Brings the unit into each state in which some files cannot be read."""
    reset()
    files = settings_files() + glob.glob(DRIVER + "/*/*")
    yield
    for path in files:
        for spoil in (os.unlink, lambda path: open(path, "w").close()):
            spoil(path)
            yield
            shutil.copy("/factory" + path, path)
