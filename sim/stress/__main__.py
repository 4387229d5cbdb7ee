"""Loads and hurts the unit it runs inside of, and says what came of it; see script/stress."""

import argparse
import random
import signal
import sys
import time

import broken_off
import calls
import clients
import kill
import memory
import owners
import pairs
import save_calls
import saves

STAGES = {
    function.__name__[len("stage_"):]: function
    for function in (clients.stage_readers, clients.stage_writer, kill.stage_kill,
                     pairs.stage_two_writers, pairs.stage_pairs, pairs.stage_lock,
                     broken_off.stage_broken_off, saves.stage_saves, save_calls.stage_save_calls,
                     memory.stage_memory, calls.stage_faults)
}


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--quick", action="store_true")
    parser.add_argument("--seed", type=int, default=int(time.time()))
    parser.add_argument("stages", nargs="*", metavar="STAGE")
    options = parser.parse_args()
    stages = STAGES if options.stages != ["owners"] else {"owners": owners.stage_owners}
    if unknown := set(options.stages) - set(stages):
        parser.error(f"no such stage: {', '.join(unknown)}")
    signal.alarm(3600)
    random.seed(options.seed)
    print(f"seed {options.seed}")
    wrong = 0
    for name in options.stages or stages:
        print(f"{name}:", flush=True)
        begin = time.monotonic()
        found = stages[name](options)
        for line in found[:20]:
            print(f"    {line[:400]}")
        print(f"  {len(found)} wrong, {time.monotonic() - begin:.0f} s", flush=True)
        wrong += len(found)
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
