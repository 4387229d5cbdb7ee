"""What a stage of checks finds: a line for each check, and the exit status."""

import argparse
import contextlib
import os
import random
import tempfile
import time

import flash as chip
from machine import HERE, Machine, Parts, Trouble

REGISTERS = os.path.join(HERE, "../optical_module.registers")


class Findings:
    def __init__(self):
        self.wrong = 0

    def check(self, what, good, seen=""):
        print(f"  {'ok   ' if good else 'WRONG'} {what}{'' if good else f': {str(seen)[:300]}'}",
              flush=True)
        self.wrong += not good

    def equal(self, what, seen, expected):
        self.check(what, seen == expected, f"{seen!r} instead of {expected!r}")


class Stage:
    """A stage: units to try, one after another, each with a flash of its own. `numbers` are options
    of the stage's own and their defaults."""

    def __init__(self, description, **numbers):
        parser = argparse.ArgumentParser(description=description)
        Parts.add_options(parser)
        parser.add_argument("--seed", type=int, default=int(time.time()))
        for name, usual in numbers.items():
            parser.add_argument("--" + name, type=int, default=usual)
        parser.add_argument("cases", nargs="*", metavar="CASE")
        self.options = parser.parse_args()
        random.seed(self.options.seed)
        self.findings = Findings()

    @contextlib.contextmanager
    def unit(self, flash=None, modules=(REGISTERS,)):
        """A unit with these bytes as its flash, a new one's without any; up when it is given."""
        with tempfile.TemporaryDirectory(prefix="onu-stage.") as folder:
            path = os.path.join(folder, "flash")
            with open(path, "wb") as file:
                file.write(flash or chip.factory())
            with Machine(Parts(self.options), path, modules=modules) as unit:
                unit.wait()
                yield unit

    def run(self, cases):
        """Runs those that were named, all without a name; returns the exit status."""
        print(f"seed {self.options.seed}")
        for case in cases:
            if self.options.cases and case.__name__ not in self.options.cases:
                continue
            print(f"{case.__name__}: {case.__doc__}", flush=True)
            try:
                case(self, self.findings)
            except (Trouble, OSError) as trouble:
                self.findings.check(case.__name__, False, trouble)
        print(f"{self.findings.wrong} findings")
        return 1 if self.findings.wrong else 0
