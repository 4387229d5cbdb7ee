"""Writers of settings that are killed."""

import collections
import os
import random
import re
import shutil
import signal
import statistics
import time

from unit import CGI, MAIN, Request, document_state, names, page, read, reset

PASSWORDS = ["user", "another_and_longer_password"]


def writer(i):
    return Request(f"cmd_id=20&pwdold={PASSWORDS[i % 2]}&pwdnew={PASSWORDS[1 - i % 2]}")


def stored_password():
    return re.search("<user>(.*)</user>", read(MAIN)).group(1)


def stage_kill(options):
    """writers of settings are killed at random moments: the file is the old text or the new one,
    and the next save takes away what they leave beside it"""
    count = 100 if options.quick else 1000
    reset()
    reader = Request("cmd_id=20&pwdold=not_this_one&pwdnew=")
    null = os.open("/dev/null", os.O_RDWR)
    quiet = [(os.POSIX_SPAWN_DUP2, null, stream) for stream in (0, 1)]

    def start(i):
        return os.posix_spawn(CGI, [CGI], writer(i).environment, file_actions=quiet)

    def timed(i):
        pid = start(i)
        begin = time.monotonic()
        os.waitpid(pid, 0)
        return time.monotonic() - begin

    usual = statistics.median(timed(i) for i in range(40))
    states, outcomes, wrong = collections.Counter(), collections.Counter(), []
    timed(0)
    if stored_password() != PASSWORDS[1]:
        wrong.append("a writer left in peace has changed nothing")
    whole = names()
    most = 0
    i = 1
    for _ in range(count):
        pid = start(i)
        time.sleep(random.uniform(0, 1.5 * usual))
        os.kill(pid, signal.SIGKILL)
        killed = os.WIFSIGNALED(os.waitpid(pid, 0)[1])
        state = document_state(MAIN)
        states[state] += 1
        most = max(most, len(names() - whole))
        outcome = reader.run()
        if outcome.reply != page("1") or outcome.status != 0:
            wrong.append(f"{outcome} from a file left {state}")
        if state != "complete":
            wrong.append(f"a killed writer leaves a file that is {state}")
            shutil.copy("/factory" + MAIN, MAIN)
            i = 0
            continue
        changed = stored_password() == PASSWORDS[1 - i % 2]
        if stored_password() not in PASSWORDS or not (killed or changed):
            wrong.append(f"{stored_password()!r} is stored, the writer was "
                         f"{'' if killed else 'not '}killed")
        outcomes["killed " * killed + ("after" if changed else "before") + " the change"] += 1
        i += changed
    os.close(null)
    writer(i).run()
    stale = names() ^ whole
    if stale or most > 1:
        wrong.append(f"stale after one more save: {stale}, at most {most} meanwhile")
    print(f"  {count} writers killed within {1.5 * usual * 1000:.2f} ms: {dict(outcomes)}; torn "
          f"{states['torn']}, empty {states['empty']}, stale files: {most} at most, {len(stale)} "
          "after one more save")
    return wrong
