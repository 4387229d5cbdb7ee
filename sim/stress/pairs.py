"""Requests that change settings at the same time."""

import collections
import contextlib
import fcntl
import os
import random
import re
import signal
import time

from unit import (MAIN, OTHER_WORK, READS, SAVES, document_state, incomplete, names, page, posted,
                  read, reset, write, Request)


def together(*queries):
    """Runs the requests at the same time: each waits for its body, and they all get it at once."""
    requests = [posted(query) for query in queries]
    children = [request.start() for request in requests]
    time.sleep(random.uniform(0.001, 0.002))
    for child, request in zip(children, requests):
        os.write(child.stdin.fileno(), request.body)
    outcomes = []
    for child in children:
        reply, errors = child.communicate(timeout=30)
        outcomes.append((reply.decode(), errors.decode(), child.returncode))
    return outcomes


@contextlib.contextmanager
def no_lock():
    """Nobody can open the folder that requests lock."""
    os.chmod("/tmp", 0)
    yield
    os.chmod("/tmp", 0o755)


def stage_two_writers(options):
    """two writers of one settings file start together: the file ends as one whole text with both
    values, or at least one of them where they cannot wait for each other"""
    count = 250 if options.quick else 5000
    reset()

    def address(value):
        return f"cmd_id=6&action=1&ip={value}&netmask=255.0.0.0"

    def threshold(value):
        return f"cmd_id=30&action=1&bs=9&bs_thresh={value}"

    for query in (address("@address@"), threshold("@threshold@")):
        Request(query).run()
    template = read(MAIN)
    whole = names()
    wrong, kinds = [], collections.Counter()
    for waiting in (contextlib.nullcontext, no_lock):
        with waiting():
            for _ in range(count):
                new = f"10.1.1.{random.randrange(1000)}", "7" * random.randrange(1, 6000)
                texts = {(a, t): template.replace("@address@", a).replace("@threshold@", t)
                         for a in ("10.0.0.1", new[0]) for t in ("5" * 2000, new[1])}
                write(MAIN, texts["10.0.0.1", "5" * 2000])
                outcomes = together(address(new[0]), threshold(new[1]))
                text = read(MAIN)
                if any(reply != page("0") or status != 0 for reply, _, status in outcomes):
                    kinds["refused"] += 1
                    wrong.append(repr(outcomes))
                if text not in texts.values():
                    kinds["damaged"] += 1
                    wrong.append(f"{document_state(MAIN)}, ends {text[-60:]!r}")
                elif text == texts["10.0.0.1", "5" * 2000]:
                    kinds["both values lost"] += 1
                    wrong.append("both values lost")
                elif text != texts[new]:
                    kinds["one value lost " + ("without" if waiting is no_lock else "with")] += 1
                    if waiting is not no_lock:
                        wrong.append("a value lost")
                if names() != whole:
                    kinds["stale file"] += 1
                    wrong.append(f"left behind: {names() - whole}")
    print(f"  {count} pairs with the lock and as many without: {dict(kinds) or 'nothing lost'}")
    return wrong


def stage_pairs(options):
    """pairs of setters at once: no script of the command shell and no value is lost"""
    count = 60 if options.quick else 300
    reset()
    kinds = collections.Counter()
    for _ in range(count):
        write("/record/clish", "")
        vids = [str(random.randrange(1, 4095)) for _ in range(2)]
        together(*(f"cmd_id=22&action=1&portId={port}&mode=2&def_vid={vid}&vid_sum=0&vid_serial="
                   for port, vid in enumerate(vids)))
        scripts = read("/record/clish").split("\0")
        stored = re.findall('default_vid="([^"]*)"', read(MAIN))[:2]
        for port, vid in enumerate(vids):
            if f"eoam\nport vlan tag {port}  {vid}\n\nquit\n" not in scripts:
                kinds["script"] += 1
        kinds["value of command 22"] += sum(a != b for a, b in zip(stored, vids))
        if document_state(MAIN) != "complete":
            kinds["file"] += 1
            reset()
    for _ in range(count):
        ip, password = f"10.1.1.{random.randrange(1000)}", str(random.randrange(10 ** 9))
        old = re.search("<user>(.*)</user>", read(MAIN)).group(1)
        together(f"cmd_id=6&action=1&ip={ip}&netmask=255.0.0.0",
                 f"cmd_id=20&pwdold={old}&pwdnew={password}")
        text = read(MAIN)
        kinds["value of one file"] += (ip not in text) + (f"<user>{password}<" not in text)
        if document_state(MAIN) != "complete":
            kinds["file"] += 1
            reset()
    lost = {kind: number for kind, number in kinds.items() if number}
    print(f"  {count} pairs of command 22, {count} of two values of one file; lost: "
          f"{lost or 'none'}")
    return [f"{number} times lost: {kind}" for kind, number in lost.items()] + incomplete()


def stage_lock(options):
    """while another process keeps the lock: what reads goes on, what changes anything waits, for 10
    s, and says so then; no tool that a request starts keeps the lock"""
    del options
    reset()
    clish = read("/bin/clish")
    write("/bin/clish", "#!/bin/busybox sh\nsleep 300 <&- >&- 2>&- &\n")
    begin = time.monotonic()
    Request(SAVES[0]).run()
    Request("cmd_id=24&action=1&iso=1").run()
    wrong = ["a tool keeps the lock"] if time.monotonic() - begin > 5 else []
    folder = os.open("/tmp", os.O_RDONLY)
    fcntl.flock(folder, fcntl.LOCK_EX)
    for query in READS:
        begin = time.monotonic()
        Request(query).run()
        if time.monotonic() - begin > 5:
            wrong.append(f"{query} waits")
    begin = time.monotonic()
    requests = [Request(query) for query in SAVES + OTHER_WORK]
    # A web server may leave the alarm blocked that ends the wait.
    children = [request.start(preexec_fn=lambda: signal.pthread_sigmask(
        signal.SIG_BLOCK, {signal.SIGALRM})) for request in requests]
    time.sleep(2)
    for request, child in zip(requests, children):
        if child.poll() is not None:
            wrong.append(f"{request.query} does not wait")
    times = []
    for request, child in zip(requests, children):
        outcome = request.finish(child)
        took = time.monotonic() - begin
        times.append(took)
        if outcome.status != 0 or not outcome.errors.startswith("onu-cgi: ") or not 9 < took < 15:
            wrong.append(f"{request.query} after {took:.1f} s: {outcome}")
    os.close(folder)
    write("/bin/clish", clish)
    if not 9.9 < times[0] < 10.9:
        wrong.append(f"the first one waits {times[0]:.1f} s")
    print(f"  {len(READS)} commands that read, {len(children)} that change something, done after "
          f"{times[0]:.1f} to {times[-1]:.1f} s: {len(wrong)} wrong")
    return wrong + incomplete()
