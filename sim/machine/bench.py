"""Counts the instructions, the kernel's included, that requests and the XML tree cost on the ARM
board of a virtual unit, whose clock goes on by a nanosecond with each of them. Prints tables and
judges nothing. See script/bench."""

import argparse
import base64
import itertools
import os
import re
import sys
import tempfile
import time

import flash as chip
from machine import Machine, Parts, Trouble

CGI = "/var/tevo/website/www/cgi-bin/onu-cgi"
MAIN = "/var/tevo/website/www/xml/tevo_xml_cfg_file.xml"
ROUNDS = 31
SIZES = (2.6, 3.2, 23)  # KiB of the main settings
SET_ADDRESS = "cmd_id=6&action=1&ip=10.0.0.1{}&netmask=255.255.255.0"


def request(query):
    return f"REQUEST_METHOD=GET 'QUERY_STRING={query}' {CGI}"


def rows(unit, title, *groups):
    """Starts the programs of each group in turn, and prints what each costs; ratios are to the
    first."""
    print(f"\n{title}\n{'':26}{'instructions':>13}{'ratio':>8}{'least':>13}{'faults':>8}"
          f"{'anon KiB':>10}{'RSS KiB':>9}")
    floor = None
    for programs in groups:
        words = " ".join("-- " + program for program in programs.values())
        output = unit.run(f"/bench/spawn_cost {ROUNDS} {words}", timeout=900).decode().splitlines()
        for name, line in zip(programs, output):
            wall, least, _, resident, anonymous, _, faults = line.split()
            floor = floor or float(wall)
            print(f"{name:26}{float(wall) * 1000:13,.0f}{float(wall) / floor:8.2f}"
                  f"{float(least) * 1000:13,.0f}{faults:>8}{anonymous:>10}{resident:>9}",
                  flush=True)


def enlarged(text, size):
    """The settings with their own values once more in a group that nobody reads."""
    values = itertools.cycle(re.findall(r"\n *<(?:port|eth_port|sn|loid|vendor|model)\b.*", text))
    spare = "<spare>"
    while len(text) + len(spare) < size - 60:
        spare += next(values)
    return text.replace("</tevo>", spare + "\n</spare>\n</tevo>")


def store(unit, path, text):
    """By pieces that the serial line takes."""
    unit.run(f": >{path}")
    for begin in range(0, len(text), 1500):
        piece = base64.b64encode(text[begin:begin + 1500].encode()).decode()
        unit.run(f"echo {piece} | base64 -d >>{path}")


def requests(unit):
    floor = {"static floor": "/bench/static_floor"}
    rows(unit, "One request, from the start of the process to its exit", {
        **floor, "busybox true": "/bin/busybox true", "cmd_id=8": request("cmd_id=8&action=0"),
        "busybox shell and awk": "'QUERY_STRING=cmd_id=8' /bench/counters.sh",
        "cmd_id=2": request("cmd_id=2&action=0"), "cmd_id=6": request("cmd_id=6&action=0"),
        "cmd_id=25, set": request("cmd_id=25&action=1&age_time=600"),
        "busybox sh -c true": "/bin/busybox sh -c true"})


def settings(unit):
    """Reads and writes of the main settings, on flash and in memory; leaves the files in /bench."""
    text = unit.run(f"env -i {request(SET_ADDRESS.format(2))} >/dev/null; cat {MAIN}").decode()
    for size in SIZES:
        store(unit, f"/bench/settings_{size}", enlarged(text, int(size * 1024)))
    reads = {"static floor": "/bench/static_floor", "read a value": request("cmd_id=6&action=0")}
    writes = {"write a change": request(SET_ADDRESS.format(0)),
              "write it back": request(SET_ADDRESS.format(1))}
    for size in SIZES:
        unit.run(f"cp /bench/settings_{size} {MAIN} && sync && sleep 3")
        rows(unit, f"Main settings of {size} KiB on JFFS2", reads, writes)
    unit.run(f"mount -t tmpfs bench {os.path.dirname(MAIN)}")
    for size in SIZES:
        unit.run(f"cp /bench/settings_{size} {MAIN}")
        rows(unit, f"Main settings of {size} KiB in memory", reads, writes)


def memory(unit):
    """For script/size: the anonymous memory at their exits, in bytes, of a request of one small file
    and of one that reads main settings of 23 KiB and the profile."""
    text = unit.run(f"cat {MAIN}").decode()
    store(unit, MAIN, enlarged(text, 23 * 1024))
    for name, query in (("cmd_id=8", "cmd_id=8"), ("cmd_id=2,23KiB", "cmd_id=2")):
        cost = unit.run(f"/bench/spawn_cost 3 -- {request(query)}").decode().split()
        print(f"unit/{name} {int(cost[4]) * 1024}")


def trees(unit):
    files = " ".join(f"main_{size}k /bench/settings_{size}" for size in SIZES)
    print(f"\nThe XML tree, instructions per byte of the document: ours, pugixml's, ratio\n"
          f"{'':16}{'bytes':>7}{'parse':>24}{'write':>24}{'change written back':>24}")
    both = [[line.split() for line in
             unit.run(f"/bench/{program} {files}", timeout=900).decode().splitlines()]
            for program in ("machine_xml", "machine_pugixml")]
    for ours, theirs in zip(*both):
        columns = "".join(f"{a:>9}{b:>8}{float(b) / float(a):7.2f}"
                          for a, b in zip(ours[2:], theirs[2:]))
        print(f"{ours[0]:16}{ours[1]:>7}{columns}")


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    Parts.add_options(parser)
    parser.add_argument("--memory", action="store_true")
    options = parser.parse_args()
    with tempfile.TemporaryDirectory(prefix="onu-bench.") as folder:
        flash = os.path.join(folder, "flash")
        with open(flash, "wb") as file:
            file.write(chip.factory())
        # A new unit starts twice; the second start is the one to measure.
        with Machine(Parts(options), flash, counted=True) as unit:
            deadline = time.monotonic() + 300
            while not (unit.bench.records and unit.bench.ready > 0
                       and "Init Tevo" in unit.console_text().partition("Restarting system")[2]):
                if time.monotonic() > deadline:
                    raise Trouble(f"the unit does not start: {unit.console_text()}")
                time.sleep(0.2)
            for section in (memory,) if options.memory else (requests, settings, trees):
                section(unit)


if __name__ == "__main__":
    sys.exit(main())
