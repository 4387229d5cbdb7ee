"""Many clients of a virtual unit at once: 8 that read, one that changes settings all the while."""

import os
import sys
import time
from xml.etree import ElementTree

from check_upgrade import ADDRESS, address
from findings import Stage
from machine import HERE
from web import CGI

sys.path.append(os.path.join(HERE, "../stress"))
from clients import read_beside_a_writer  # pylint: disable=wrong-import-position

SETTINGS = ("/etc/xml_params", "/var/tevo/website/www/xml")


def names(unit):
    """All that lies where the programs may leave something."""
    return set(unit.run("find /tmp /var /etc /run /mnt/flash").decode().splitlines())


def load(unit):
    """Free memory in KiB and the number of processes that are not the kernel's."""
    return tuple(int(unit.run(command)) for command in (
        "awk '/^MemAvailable/ { print $2 }' /proc/meminfo",
        "cat /proc/[0-9]*/status 2>/dev/null | awk '/^PPid/ && $2 != 2 { n++ } END { print n }'"))


def is_whole(text):
    try:
        ElementTree.fromstring(text)
        return True
    except ElementTree.ParseError:
        return False


def clients(stage, findings):
    """8 clients read, one more writes; then a restart"""
    slowest = {True: 0.0, False: 0.0}  # in seconds, of the changes and of the rest

    def fetch(query):
        start, is_change = time.monotonic(), "action=1" in query or "pwdnew" in query
        # Longer than a busy computer keeps qemu waiting: what takes this long hangs.
        answer = unit.fetch(f"{CGI}?{query}", timeout=300).decode(errors="replace")
        slowest[is_change] = max(slowest[is_change], time.monotonic() - start)
        return answer

    with stage.unit() as unit:
        unit.ask(ADDRESS.format("192.168.1.1"))  # the first change has made what every change needs
        before, (memory, processes) = names(unit), load(unit)
        wrong, happened = read_beside_a_writer(stage.options.requests, fetch)
        print(f"  {happened}; slowest read {slowest[False]:.1f} s, slowest change "
              f"{slowest[True]:.1f} s", flush=True)
        findings.equal("answers that are none of whole files, changes refused", wrong, [])
        after, (memory_then, processes_then) = names(unit), load(unit)
        print(f"  free memory {memory} KiB, then {memory_then}; {processes} processes, then "
              f"{processes_then}")
        findings.equal("nothing stays behind", after, before)
        findings.equal("no process stays behind", processes_then, processes)

        unit.ask(ADDRESS.format("10.77.77.77"))
        files = unit.files(*SETTINGS)
        findings.equal("settings that are not whole",
                       [name for name, text in files.items() if not is_whole(text)], [])
        unit.restart(lambda: unit.ask("cmd_id=11"))
        findings.equal("the last value, after a restart", address(unit), "10.77.77.77")
        findings.check("the settings, after a restart", unit.files(*SETTINGS) == files)


if __name__ == "__main__":
    sys.exit(Stage(__doc__, requests=10_000).run([clients]))
