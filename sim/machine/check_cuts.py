"""Cuts the power of a virtual unit while it writes, and looks at what is left.

The flash is copied at random instants; each copy is what a cut at that instant leaves. While
settings are changed, every file has to be whole, with its old or its new value, and units that are
started with some of the copies have to answer with just what is in them. What cuts leave of an
import, which copies files in place, and of the bootloader environment is counted only."""

import argparse
import collections
import functools
import os
import random
import struct
import sys
import tempfile
import threading
import time
import zlib
from xml.etree import ElementTree

import flash as chip
from jffs2 import Damaged, Image
from machine import Machine, Parts, Trouble
from replay import settings_archive
from web import CGI, form

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
MAIN, TPM = "xml/tevo_xml_cfg_file.xml", "xml_params/tpm_xml_cfg_file.xml"


class Series:
    """Changes of one file, numbered: what to send and what the file then holds."""

    def __init__(self, name, query, value, read):
        self.name, self.query, self.value, self.read = name, query, value, read
        self.sent = self.done = 0
        self.template = None  # the file with the first value

    def change(self, unit):
        self.sent = self.done + 1
        if unit.ask(self.query.format(self.value(self.sent))) != "0\n":
            raise Trouble(f"{self.name}: change {self.sent} is refused")
        self.done = self.sent

    def text(self, number):
        first = f">{self.value(1)}<".encode()
        return self.template.replace(first, f">{self.value(number)}<".encode())


def address(number):
    """Of changing length."""
    return f"10.{number * 7 % 200}.{number // 200 % 250}.{number % 200}"


def series():
    return [
        Series(MAIN, "cmd_id=6&action=1&ip={}&netmask=255.255.0.0", address, "cmd_id=6&action=0"),
        Series(TPM, "cmd_id=16&action=1&ipv4DsMtu={}&ipv4UsMtu=1&ipv4pppoeUsMtu=1",
               lambda number: str(1000 + number * number), "cmd_id=16&action=0")]


def settings(flash):
    return Image(chip.partition(flash, 3), chip.ERASE_BLOCK)


def read(image, name):
    try:
        return image.read("settings/" + name)
    except Damaged as damage:
        return str(damage).encode()


def new_flash(path):
    with open(path, "wb") as file:
        file.write(chip.factory())
    return path


def cut_changes(parts, folder, count):
    """Copies with the texts that are right in each; what is wrong with those that are not."""
    changes, copies, found = series(), [], collections.Counter()
    with Machine(parts, new_flash(os.path.join(folder, "flash"))) as unit:
        unit.wait()
        for one in changes:
            one.change(unit)
            one.template = read(settings(unit.copy_flash()[0]), one.name)
        stop = threading.Event()
        failed = []

        def write():
            try:
                while not stop.is_set():
                    random.choice(changes).change(unit)
            except Exception as error:  # pylint: disable=broad-except
                failed.append(f"the writer ends: {error}")

        writer = threading.Thread(target=write)
        writer.start()
        while len(copies) < count and not failed:
            time.sleep(random.uniform(0, 0.12))
            flash, seen = unit.copy_flash(
                lambda: [(one, {one.text(n) for n in (one.done, one.sent)}) for one in changes])
            image, state = settings(flash), "whole"
            for one, right in seen:
                text = read(image, one.name)
                if text not in right:
                    state = f"damaged: {damage(text)}"
            under_way = image.bad > 0 or any(name.startswith(".onu-save") for name in names(image))
            found[state] += 1
            found["in the middle of a write"] += under_way
            copies.append((flash, state, under_way))
        stop.set()
        writer.join()
    return copies, found, failed, sum(one.done for one in changes)


def names(image):
    top = image.listing().get("settings", 0)
    return {name for inode in image.listing(top).values() for name in image.listing(inode)}


def damage(text):
    if not text:
        return "no text"
    try:
        ElementTree.fromstring(text)
        return "a mixture of texts"
    except ElementTree.ParseError:
        return "no complete document"


def start_copies(parts, folder, copies, count):
    """Starts units with some of the copies: the damaged, then those amid a write."""
    wrong = []
    chosen = sorted(copies, key=lambda copy: (copy[1] == "whole", not copy[2]))[:count]
    for number, (flash, state, _) in enumerate(chosen):
        path = os.path.join(folder, "cut")
        with open(path, "wb") as file:
            file.write(flash)
        with Machine(parts, path) as unit:
            unit.wait()
            kept = unit.files("/etc/xml_params", "/var/tevo/website/www/xml")
            for one in series():
                name = ("/etc/" if one.name == TPM else "/var/tevo/website/www/") + one.name
                if kept.get(name) != read(settings(flash), one.name):
                    wrong.append(f"start {number}, {state}: the unit reads another {one.name}")
                answer = unit.ask(one.read)
                if state == "whole" and not answer.startswith("{"):
                    wrong.append(f"start {number}: {one.read} gives {answer!r}")
    return wrong


def cut_while(unit, count, task, pause):
    """Copies at random instants, while the task runs in a thread."""
    copies = []
    thread = threading.Thread(target=task)
    thread.start()
    while len(copies) < count and thread.is_alive():
        copies.append(unit.copy_flash()[0])
        time.sleep(random.uniform(0, pause))
    thread.join()
    return copies


def cut_import(parts, folder, count):
    """Counts what cuts leave of the main settings while an archive is taken over."""
    found, archive = collections.Counter(), form(settings_archive(ROOT))
    with Machine(parts, new_flash(os.path.join(folder, "flash"))) as unit:
        unit.wait()
        whole = set()
        while found.total() < count:
            unit.ask(f"cmd_id=19&pwdold=from_the_archive&pwdnew={found.total()}")
            whole.add(read(settings(unit.copy_flash()[0]), MAIN))
            take_over = functools.partial(unit.fetch, f"{CGI}?cmd_id=10&action=1", **archive)
            for flash in cut_while(unit, count - found.total(), take_over, 0.05):
                text = read(settings(flash), MAIN)
                # The new text is a whole one that has not been seen before.
                found["whole" if text in whole or damage(text) == "a mixture of texts"
                      else damage(text)] += 1
    return found


def environment_state(flash):
    begin, _ = chip.extent(4)
    block = flash[begin:begin + chip.ENV_SIZE]
    if struct.unpack("<I", block[:4])[0] != zlib.crc32(block[4:]):
        return "sum wrong"
    return "old" if b"mv_pon_addr=00:50:43" in block else "new"


def cut_initialiser(parts, folder, count):
    """Counts what cuts leave of the bootloader environment and the settings in a new unit's first
    start, which stores the settings' MAC address in the environment."""
    found, wrong = collections.Counter(), []
    while found.total() < count:
        with Machine(parts, new_flash(os.path.join(folder, "flash"))) as unit:
            deadline = time.monotonic() + 120
            while "Init Tevo" not in unit.console_text() and time.monotonic() < deadline:
                time.sleep(0.02)
            before = None
            while unit.monitor.resets == 0 and found.total() < count:
                flash, _ = unit.copy_flash()
                state = environment_state(flash)
                found[state] += 1
                text = read(settings(flash), MAIN)
                before = before or text
                if text != before or not text:
                    wrong.append(f"settings in a first start: {damage(text)}")
                time.sleep(random.uniform(0, 0.03 if state != "new" else 1))
    return found, wrong


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    Parts.add_options(parser)
    parser.add_argument("--cuts", type=int, default=500)
    parser.add_argument("--starts", type=int, default=10)
    parser.add_argument("--others", type=int, default=60,
                        help="cuts of an import, of a first start")
    parser.add_argument("--seed", type=int, default=int(time.time()))
    options = parser.parse_args()
    random.seed(options.seed)
    print(f"seed {options.seed}")
    parts = Parts(options)
    with tempfile.TemporaryDirectory(prefix="onu-cuts.") as folder:
        copies, found, wrong, written = cut_changes(parts, folder, options.cuts)
        print(f"{len(copies)} cuts during {written} changes of settings: {dict(found)}", flush=True)
        if found["whole"] < len(copies):
            wrong.append(f"{len(copies) - found['whole']} of {len(copies)} cuts damage a file")
        if found["in the middle of a write"] == 0:
            wrong.append("no cut has met a write")
        wrong += start_copies(parts, folder, copies, options.starts)
        print(f"{options.starts} units started with such copies", flush=True)
        if options.others:
            left = cut_import(parts, folder, options.others)
            print(f"import, main settings afterwards: {dict(left)}", flush=True)
            left, broken = cut_initialiser(parts, folder, options.others)
            print(f"first start, bootloader environment afterwards: {dict(left)}", flush=True)
            wrong += broken
    for line in wrong[:20]:
        print("  " + line)
    print("the settings survive every cut" if not wrong else f"{len(wrong)} findings")
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
