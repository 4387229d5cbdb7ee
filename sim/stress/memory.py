"""Requests that cannot get the memory they need."""

import collections
import resource

from unit import MAIN, Request, incomplete, read, reset, settings, write

QUERIES = ["cmd_id=2", "cmd_id=6", "cmd_id=20&pwdold=user&pwdnew=longer",
           "cmd_id=30&action=1&bs=9&bs_thresh=99"]


def stage_memory(options):
    """settings that take more memory than there is: an answer as usual, or none and a line on
    standard error; the file stays whole"""
    del options
    wrong, found = [], collections.Counter()
    reset()
    write(MAIN, read(MAIN).replace("</tevo>", "<x>y</x>\n" * 300000 + "</tevo>"))
    large = settings()
    for query in QUERIES:
        write(MAIN, large[MAIN])
        usual = Request(query).run()
        after = settings()
        for mebibytes in (4, 5, 6, 8, 12, 16, 24, 32, 48, 64, 96, 128, 192, 256):
            size = mebibytes << 20
            write(MAIN, large[MAIN])
            outcome = Request(query).run(
                preexec_fn=lambda size=size: resource.setrlimit(resource.RLIMIT_AS, (size, size)))
            if outcome == usual and settings() == after:
                found["as usual"] += 1
            elif (outcome.status == 1 and outcome.reply == "" and settings() == large and
                  outcome.errors.startswith("onu-cgi: ") and outcome.errors.count("\n") == 1):
                found["ended with a line"] += 1
            else:
                wrong.append(f"{query} with {mebibytes} MiB: {outcome.status} {outcome.reply!r} "
                             f"{outcome.errors!r}")
    print(f"  {dict(found)}; wrong: {len(wrong)}")
    return wrong + incomplete()
