"""Starts a virtual unit and serves it until the power switch, Ctrl-C. See script/machine."""

import argparse
import os
import signal
import sys
import time

import flash as chip
from machine import Machine, Parts, Trouble
from web import CGI

GUIDE = """The unit's console is at {top}/, its program at {url}
Its flash is {flash}, kept until a start with --factory
Try:
  curl '{url}?cmd_id=8&action=0'
  curl '{url}?cmd_id=3&action=0'
  curl '{url}?cmd_id=6&action=1&ip=192.168.1.2&netmask=255.255.255.0'
  curl -F 'file=@IMAGE' '{url}?cmd_id=21&update_type=2'
  curl '{url}?cmd_id=11'
Ctrl-C is the power switch."""


def follow(unit):
    """Tells of resets until the unit ends."""
    unit.monitor.ask("query-status")  # which also takes in what has happened
    seen = unit.monitor.resets
    while unit.process.poll() is None:
        time.sleep(0.2)
        unit.monitor.ask("query-status")
        if unit.monitor.resets > seen:
            seen = unit.monitor.resets
            print("The unit starts again.", flush=True)
            print(f"It answers after {unit.wait():.1f} s.", flush=True)


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    Parts.add_options(parser)
    parser.add_argument("--flash", required=True)
    parser.add_argument("--port", type=int, default=8080)
    parser.add_argument("--console", action="store_true")
    parser.add_argument("--factory", action="store_true")
    parser.add_argument("--module", action="append", default=[])
    options = parser.parse_args()
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(0))

    if options.factory or not os.path.exists(options.flash):
        with open(options.flash, "wb") as file:
            file.write(chip.factory())
    print("Starting the unit (a new one starts twice)", flush=True)
    try:
        with Machine(Parts(options), options.flash, port=options.port, modules=options.module,
                     console=options.console) as unit:
            print(f"First answer after {unit.wait():.1f} s", flush=True)
            top = f"http://127.0.0.1:{options.port}"
            print(GUIDE.format(top=top, url=top + CGI, flash=options.flash), flush=True)
            if options.console:
                unit.process.wait()
            else:
                follow(unit)
    except Trouble as trouble:
        sys.exit(str(trouble))
    except KeyboardInterrupt:
        print("\nPower off.")


if __name__ == "__main__":
    main()
