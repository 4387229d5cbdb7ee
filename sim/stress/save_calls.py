"""Saves of which one call fails, that are killed, or that find their new file's name taken."""

import collections
import os
import re
import tarfile

from calls import failing
from saves import damage, in_peace
from unit import SAVES, Request, incomplete, names, read, reset, settings, write

EXPORT = "/var/tevo/website/www/xml/xml_config.tar"


def calls_of_a_save(query):
    """The calls from the first opening of a settings file for writing on: name, number among those
    of its name, whether a new file was begun before. Those that get memory or write the reply are
    left out, and so is a close, as in calls.USUAL."""
    trace = "/record/trace"
    Request(query).run("/usr/bin/strace", "-qq", "-o", trace)
    counts, calls, opened, saving = collections.Counter(), [], False, False
    for line in read(trace).splitlines():
        call = line.partition("(")[0]
        counts[call] += 1
        opened = opened or re.search(r'\.xml", O_(WR|RDWR)', line)
        other = r"mmap|munmap|brk|close|exit|wait|clone|v?fork|rt_|---|\+\+\+|write\(1,"
        if opened and not re.match(other, line):
            calls.append((call, counts[call], saving))
        saving = saving or opened and "O_CREAT" in line
    return calls


def leftovers(query):
    """The new files that are there while the query saves, by killing it before they get their
    name."""
    before = names()
    failing(Request(query), "/^rename", "SIGKILL", 1)
    return names() - before


def put_file(path):
    write(path, "left by another" * 2000)


def put_unreadable(path):
    put_file(path)
    os.chmod(path, 0)


def put_link(path):
    write("/elsewhere/victim", "untouched")
    os.symlink("/elsewhere/victim", path)


def stage_save_calls(options):
    """each call of every save fails in turn, in five ways, or is the last one of a killed process;
    something lies where the new file should: whole files, nothing left behind"""
    wrong, found, runs = [], collections.Counter(), 0
    for query in SAVES[::3] if options.quick else SAVES:
        peace, after, _ = in_peace(query)
        reset()
        before = settings()
        whole = names()

        stated = peace.reply, peace.status
        # Commands 5 and 23 save more than once: some of it may be done, and the reply another.
        several = re.match("cmd_id=(5|23)&", query)

        def check(label, outcome, old, left=None):
            nonlocal runs
            runs += 1
            faults = incomplete() if several else damage(before, after, old)
            if names() != (left or whole):
                faults.append(f"left behind: {names() ^ (left or whole)}")
            if outcome and not several and (outcome.reply, outcome.status) != stated:
                faults.append(f"{outcome}")
            wrong.extend(f"{query}: {label}: {fault}" for fault in faults)
            found[label.partition(" ")[0]] += bool(faults)

        for call, when, saving in calls_of_a_save(query):
            for error in ("ENOSYS", "EPERM", "EIO", "EINTR", "ENOSPC"):
                reset()
                outcome = failing(Request(query), call, error, when)
                # The text stays when it cannot be read to be changed, or the file be opened for
                # that; and when there is no room for another, or the medium fails.
                old = not saving or call == "write" or error in ("ENOSPC", "EIO")
                check(f"{error} of {call} {when}", outcome if saving else None, old)
            reset()
            failing(Request(query), call, "SIGKILL", when)
            check(f"SIGKILL at {call} {when}", None, True, names())
            Request(query).run()
            check("save after it", None, True)
        reset()
        new_files = leftovers(query)
        if not new_files:
            wrong.append(f"{query}: no new file is made")
            found["no new file"] += 1
        Request("cmd_id=10").run()
        with tarfile.open(EXPORT) as archive:
            if hidden := [name for name in archive.getnames() if "/." in name]:
                wrong.append(f"{query}: {hidden} is exported")
        changed = [path for path in after if after[path] != before[path]]
        for put in (put_file, put_unreadable, os.mkdir, put_link):
            for path in new_files:
                reset()
                put(path)
                inode = os.stat(changed[0]).st_ino
                outcome = Request(query).run()
                if put is not os.mkdir and os.stat(changed[0]).st_ino == inode:
                    wrong.append(f"{query}: {put.__name__} has it write into the file itself")
                check(f"{put.__name__} in the place of {path}", outcome, False,
                      names() if put in (os.mkdir, put_link) else None)
                if put is put_link and read("/elsewhere/victim") != "untouched":
                    wrong.append(f"{query}: writes through a link in the place of {path}")
    print(f"  {runs} saves; wrong: {dict(+found) or 'none'}")
    return wrong
