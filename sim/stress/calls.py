"""Requests of which one call to the kernel fails."""

import collections
import os
import re

from replies import Allowed, worlds
from unit import (OTHER_WORK, READS, SAVES, Request, document_state, error_page, page, posted,
                  reset, settings_files, uploaded)

# Replies for a file that can be read once and not a second time.
TWO_READS = {"cmd_id=19": "2", "cmd_id=20": "2"}
# No close: one that fails has closed all the same on Linux, but what strace lets fail does not take
# place, and who waits for the end of that pipe waits for ever.
OPENING = ["EMFILE", "ENOENT"]
USUAL = {"open": OPENING, "openat": OPENING, "read": ["EIO"], "write": ["ENOSPC"],
         "fsync": ["EIO"], "rename": ["EIO"], "flock": ["EIO"]}
EVERYTHING = ["ENOSPC", "EIO", "EMFILE", "ENOENT"]


def calls_of(request):
    """How often the request's own process makes each of the calls."""
    request.run("/usr/bin/strace", "-qq", "-o", "/record/trace", "-e", "trace=" + ",".join(USUAL))
    with open("/record/trace", encoding="utf-8", errors="replace") as file:
        return collections.Counter(line.partition("(")[0] for line in file if "(" in line)


def failing(request, call, error, when):
    """What comes of the request when one of its calls fails; `error` may be a signal, too."""
    kind = "signal" if error.startswith("SIG") else "error"
    return request.run("/usr/bin/strace", "-qq", "-o", "/dev/null", "-e", f"trace={call}", "-e",
                       f"inject={call}:{kind}={error}:when={when}")


def replies_without_a_file(request):
    """What the request may reply while one of its files is missing."""
    allowed = Allowed([""])
    if request.query in READS:
        for _ in worlds():
            allowed.add(request.run().reply)
    else:
        for path in [None] + settings_files():
            reset()
            if path:
                os.unlink(path)
            allowed.add(request.run().reply)
    number = re.match("cmd_id=[0-9]*", request.query or request.body.decode()).group()
    if number in TWO_READS:
        allowed.add(page(TWO_READS[number]))
    if request.upload:
        allowed.add(error_page(400, "receive file fail"))
    elif request.body:
        allowed.add(error_page(400, "read request fail"))
    return allowed


def stage_faults(options):
    """each call of every command that handles a file fails in turn, in four ways: no crash, no
    hang, whole files, and a reply that the command also gives when a file is missing"""
    requests = [Request(query) for query in READS + SAVES + OTHER_WORK]
    requests += [posted("cmd_id=8"), posted("cmd_id=24&action=1&iso=1"),
                 uploaded("cmd_id=10&action=1"), uploaded("cmd_id=21&update_type=2")]
    runs, wrong, files = 0, [], collections.Counter()
    for request in requests:
        reset()
        allowed = replies_without_a_file(request)
        reset()
        for call, count in sorted(calls_of(request).items()):
            for error in USUAL[call] if options.quick else EVERYTHING:
                for when in range(1, count + 1):
                    reset()
                    outcome = failing(request, call, error, when)
                    runs += 1
                    # No reply when it cannot be written, and none from a MAC address too short.
                    short = outcome.status == 1 and request.query in ("cmd_id=2", "cmd_id=5")
                    silent = outcome.reply == "" and (call == "write" or short)
                    if outcome.status not in (0, 1) or not (silent or allowed.fits(outcome.reply)):
                        wrong.append(f"{request.label()}, {call} {when} {error}: {outcome}")
                    for path in settings_files():
                        state = document_state(path)
                        if state != "complete":
                            files[f"{state} by {call}"] += 1
                            wrong.append(f"{request.label()}, {call} {when} {error}: leaves {path} "
                                         f"{state}")
    print(f"  {runs} failing calls in {len(requests)} requests: {len(wrong)} wrong; files left not "
          f"a complete document: {dict(files) or 'none'}")
    return wrong
