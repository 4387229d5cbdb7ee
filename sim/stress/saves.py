"""Saves of settings where something is in their way."""

import collections
import contextlib
import os
import re

import worlds
from unit import SAVES, Request, names, reset, settings, settings_files

LARGE = [query + "9" * 9000 for query in SAVES if re.match("cmd_id=(6|17|20|28)&", query)]

# Label, world, what the settings are afterwards, queries, options of Popen. "failed" is "before"
# with the reply for a missing file; "whole" is "before" or "after".
WORLDS = [
    ("other modes", worlds.other_modes, "after", SAVES, {}),
    ("files read-only", worlds.read_only_files, "before", SAVES, {}),
    ("folders read-only", worlds.read_only_folders, "after", SAVES, {}),
    ("symbolic links", worlds.linked, "after", SAVES, {}),
    ("dangling links", worlds.dangling, "failed", SAVES, {}),
    ("links in a loop", worlds.loop, "failed", SAVES, {}),
    ("a mount point", worlds.mount_point, "after", SAVES, {}),
    ("full disk", worlds.small_disk(0), "before", SAVES + LARGE, {}),
    ("1 page free", worlds.small_disk(1), "whole", SAVES + LARGE, {}),
    ("2 pages free", worlds.small_disk(2), "whole", SAVES + LARGE, {}),
    ("3 pages free", worlds.small_disk(3), "whole", SAVES + LARGE, {}),
    ("9 pages free", worlds.small_disk(9), "after", SAVES + LARGE, {}),
    ("128 bytes at most", contextlib.nullcontext, "before", SAVES + LARGE, worlds.limited(128)),
    ("8192 at most", contextlib.nullcontext, "whole", SAVES + LARGE, worlds.limited(8192)),
    ("1 MiB at most", contextlib.nullcontext, "after", SAVES + LARGE, worlds.limited(1 << 20)),
]


def file_kinds():
    """What everything is that lies in folders with settings: type and mode, of a link also those of
    the file it leads to."""
    return {path: (os.lstat(path).st_mode, os.path.exists(path) and os.stat(path).st_mode)
            for path in names()}


def in_peace(query):
    """What comes of the query on an undisturbed unit, and without settings files."""
    reset()
    outcome = Request(query).run()
    after = settings()
    reset()
    for path in settings_files():
        os.unlink(path)
    return outcome, after, Request(query).run()


def damage(before, after, old=True, new=True):
    """The settings files that are neither what they were before nor what they should be after, as
    far as either is right."""
    return [path for path, text in settings().items()
            if not (old and text == before[path] or new and text == after[path])]


def stage_saves(options):
    """every command that saves, where files, folders, links, disk or limits are in its way: whole
    files, nothing left behind, the stated reply"""
    del options
    wrong, found, runs = [], collections.Counter(), 0
    for query in SAVES + LARGE:
        peace, after, missing = in_peace(query)
        for label, world, expected, queries, limits in WORLDS:
            if query not in queries:
                continue
            reset()
            runs += 1
            with world():
                kinds = file_kinds()
                before = settings()
                outcome = Request(query).run(**limits)
                faults = []
                if wrongly := damage(before, after, expected != "after",
                                     expected in ("after", "whole")):
                    faults.append(f"text of {wrongly}")
                if file_kinds() != kinds:
                    faults.append(f"files: {set(file_kinds().items()) ^ set(kinds.items())}")
                stated = missing if expected == "failed" else peace
                if (outcome.reply, outcome.status) != (stated.reply, stated.status):
                    faults.append(f"reply: {outcome}")
            wrong += [f"{label}: {query[:80]}: {fault}" for fault in faults]
            found[label] += bool(faults)
    print(f"  {runs} saves in {len(WORLDS)} worlds; wrong: {dict(+found) or 'none'}")
    return wrong
