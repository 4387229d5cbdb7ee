"""Sends one list of requests to the simulated unit and to the virtual unit and compares what comes
of it. See script/replay."""

import argparse
import io
import os
import shutil
import subprocess
import sys
import tarfile
import tempfile
import time

import flash as chip
from machine import HERE, Machine, Parts
from web import CGI, fetch, form, free_port

MAIN = "/var/tevo/website/www/xml/tevo_xml_cfg_file.xml"
FOLDERS = ["/etc/xml_params", "/var/tevo/website/www/xml", "/sys/devices/platform/tpm/cfg_traffic",
           "/tmp"]
RECORDS = ["commands", "clish"]

# What may differ, and why: the place it is found in, how it is made equal.
DIFFERENCES = {
    "calls of hardware tools are kept by the simulated unit alone: the virtual one has the tools":
        ("record", lambda records: {name: records.get(name, b"") for name in RECORDS}),
    "an archive of settings bears times of its files and of its making":
        ("files", lambda files: {name: untimed(content) if name.endswith(".tar") else content
                                 for name, content in files.items()}),
}


# Registers of optical modules that are plugged in one after another: temperatures below zero, the
# ends of the scales, powers around 0 dBm, values that single and double precision print otherwise.
MODULES = [
    "register 96 0x80 0 0x80 0xE8 0x17 0x70 0x27 0x10 0 1",
    "register 96 0x7F 255 255 255 255 255 255 255 255 255",
    "register 96 255 0 0 0 0 0 0x27 0x0F 0 0",
    "register 96 0 0 0x80 0xB6 0 65 0x57 0x8D 0x8A 0x1F",
    "register 96 0xFF 0xFF 0x00 0x01 0x00 0x05 0x00 0x02 0xFF 0xFE",
    "",
]


def untimed(archive):
    with tarfile.open(fileobj=io.BytesIO(archive)) as tar:
        return sorted((member.name, tar.extractfile(member).read())
                      for member in tar.getmembers() if member.isfile())


def made_equal(place, value, used):
    for reason, (where, change) in DIFFERENCES.items():
        if where == place:
            changed = change(value)
            used[reason] = used.get(reason, 0) + (changed != value)
            value = changed
    return value


class Simulated:
    """The simulated unit, in a folder of its own behind a web server."""

    def __init__(self, root, folder, registers):
        self.folder, self.port, self.registers = folder, free_port(), registers
        build, unit = os.path.join(root, "build/release"), os.path.join(root, "sim/unit")
        subprocess.run([unit, "assemble", folder, build], check=True)
        environment = {**os.environ, "ONU_NET": "host"}
        enter = [unit, "enter", folder]
        subprocess.run([*enter, "/etc/init.d/S30onu-init", "start"], check=True, env=environment,
                       stdout=subprocess.DEVNULL)
        documents = "/srv/www" if os.path.isdir(folder + "/srv/www") else "/var/tevo/website/www"
        self.server = subprocess.Popen(
            [f"{build}/optical-module", "--registers", registers, "--",
             *enter, "/bin/httpd", "-f", "-p", f"127.0.0.1:{self.port}", "-h", documents],
            env=environment, stderr=subprocess.DEVNULL)
        for _ in range(200):
            try:
                fetch(self.port, "/")
                return
            except OSError:
                time.sleep(0.05)
        raise RuntimeError("the simulated unit does not answer")

    def stop(self):
        self.server.terminate()
        self.server.wait()

    def files(self, folders):
        found = {}
        for top in folders:
            for folder, _, names in os.walk(self.folder + top):
                for name in names:
                    path = os.path.join(folder, name)
                    with open(path, "rb") as file:
                        found[path[len(self.folder):]] = file.read()
        return found

    def record(self):
        return {path[len("/record/"):]: content
                for path, content in self.files(["/record"]).items()}

    def plug(self, number):
        text = "fault absent" if number is None else MODULES[number]
        with open(self.registers, "w", encoding="utf-8") as file:
            file.write(text)

    def partition(self, number):
        return self.files(["/dev"])[f"/dev/mtd{number}"]

    def restart(self, send):
        return send(self)  # the start is over when the request is


class Virtual:
    """The virtual unit, with what was recorded before it went down."""

    def __init__(self, machine):
        self.machine, self.port = machine, machine.port

    def files(self, folders):
        return self.machine.files(*folders)

    def record(self):
        pieces = [*self.machine.records(), self.machine.files("/record")]
        return {name: b"".join(piece.get("/record/" + name, b"") for piece in pieces)
                for name in RECORDS}

    def plug(self, number):
        self.machine.plug(None if number is None else number + 1)

    def partition(self, number):
        return chip.partition(self.machine.copy_flash()[0], number)

    def restart(self, send):
        return self.machine.restart(lambda: send(self))


def settings_archive(root):
    """The factory's settings with another password and without the traffic manager's."""
    archive = io.BytesIO()
    folder = os.path.join(root, "sim/rootfs/var/tevo/xml_default")
    with tarfile.open(fileobj=archive, mode="w") as tar:
        for name in sorted(os.listdir(folder)):
            with open(os.path.join(folder, name), "rb") as file:
                text = file.read().replace(b"<admin>admin<", b"<admin>from_the_archive<")
            if not name.startswith("tpm"):
                member = tarfile.TarInfo("xml_config/" + name)
                member.size = len(text)
                tar.addfile(member, io.BytesIO(text))
    return archive.getvalue()


def requests(root):
    """The label of each request, and what sends it to a unit."""
    payloads = {"settings": settings_archive(root), "junk": bytes(range(7, 257 - 2)) * 280,
                "empty": b""}

    def make(kind, rest):
        if kind == "get":
            return lambda unit: fetch(unit.port, f"{CGI}?{rest}")
        if kind in ("post", "short"):
            length = len(rest) + 10 if kind == "short" else None
            return lambda unit: fetch(unit.port, CGI, body=rest.encode(), announced=length)
        if kind == "method":
            name, _, query = rest.partition(" ")
            return lambda unit: fetch(unit.port, f"{CGI}?{query}", method=name)
        query, _, payload = rest.partition(" ")
        how = form(payloads[payload or "junk"])
        if kind == "broken":
            how.update(announced=len(how["body"]), body=how["body"][:-30000])
        elif kind != "upload":
            raise ValueError(f"no such request: {kind} {rest}")
        return lambda unit: fetch(unit.port, f"{CGI}?{query}", **how)

    with open(os.path.join(HERE, "requests"), encoding="utf-8") as file:
        lines = [line.strip() for line in file if line.strip() and not line.startswith("#")]
    return [(line, make(*line.partition(" ")[::2])) for line in lines]


class Comparison:
    def __init__(self):
        self.used, self.wrong, self.replies = {}, [], 0

    def equal(self, label, place, one, other):
        one, other = (made_equal(place, value, self.used) for value in (one, other))
        if one == other:
            return
        if isinstance(one, dict):
            for name in sorted({*one, *other}):
                if one.get(name) != other.get(name):
                    parting = first_part(one.get(name), other.get(name))
                    self.wrong.append(f"{label}, {name}: {parting}")
        else:
            self.wrong.append(f"{label}: {first_part(one, other)}")

    def reply(self, label, one, other):
        self.replies += 1
        self.equal(label, "reply", one, other)

    def state(self, label, one, other, folders):
        self.equal(f"after {label}, recorded", "record", one.record(), other.record())
        self.equal(f"after {label}", "files", one.files(folders), other.files(folders))


def first_part(one, other):
    """Where two texts part."""
    if not (isinstance(one, bytes) and isinstance(other, bytes)):
        return f"simulated {str(one)[:300]}, virtual {str(other)[:300]}"
    at = next((i for i, (a, b) in enumerate(zip(one, other)) if a != b), min(len(one), len(other)))
    begin = max(0, at - 60)
    return f"at {at}: simulated {one[begin:at + 100]!r}, virtual {other[begin:at + 100]!r}"


def replay(root, simulated, virtual, comparison):
    for label, send in requests(root):
        comparison.reply(label, send(simulated), send(virtual))
    comparison.state("the requests", simulated, virtual, FOLDERS)
    for number in [*range(len(MODULES)), None]:
        simulated.plug(number)
        virtual.plug(number)
        comparison.reply(f"cmd_id=3, module {number}", *(fetch(unit.port, f"{CGI}?cmd_id=3")
                                                         for unit in (simulated, virtual)))

    # What ends in a restart. The image for the settings' partition is a copy of it as it is: the
    # settings stay what they are.
    kernel, rootfs = os.urandom(100_001), os.urandom(chip.extent(2)[1] - chip.extent(2)[0])
    restarts = [("cmd_id=11", None), ("cmd_id=18&action=1", None),
                ("cmd_id=21&update_type=1", kernel), ("cmd_id=21&update_type=2", rootfs),
                ("cmd_id=21&update_type=3", "as it is"), ("cmd_id=21", files_archive())]
    for query, content in restarts:
        how = form(virtual.partition(3) if content == "as it is" else content) if content else {}
        comparison.reply(query, *(
            unit.restart(lambda unit: fetch(unit.port, f"{CGI}?{query}", **how))
            for unit in (simulated, virtual)))
        comparison.state(query, simulated, virtual, FOLDERS[:2])
    for number, content in ((1, kernel), (2, rootfs)):
        for unit in (simulated, virtual):
            if unit.partition(number)[:len(content)] != content:
                comparison.wrong.append(f"{type(unit).__name__}: partition {number} differs")
    for number in (2, 6):
        query = f"{CGI}?cmd_id={number}&action=0"
        comparison.reply(query, fetch(simulated.port, query), fetch(virtual.port, query))


def files_archive():
    """An upgrade of the writable file system: one more settings file."""
    archive = io.BytesIO()
    with tarfile.open(fileobj=archive, mode="w:gz") as tar:
        member = tarfile.TarInfo("etc/xml_params/added.xml")
        member.size = 8
        tar.addfile(member, io.BytesIO(b"<added/>"))
    return archive.getvalue()


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    Parts.add_options(parser)
    options = parser.parse_args()
    root = os.path.dirname(os.path.dirname(HERE))
    comparison, start = Comparison(), time.monotonic()
    with tempfile.TemporaryDirectory(prefix="onu-replay.") as folder:
        flash = os.path.join(folder, "flash")
        with open(flash, "wb") as file:
            file.write(chip.factory())
        usual = os.path.join(root, "sim/optical_module.registers")
        registers = shutil.copy(usual, folder)
        modules = [usual]
        for number, text in enumerate(MODULES):
            modules.append(os.path.join(folder, f"module{number}"))
            with open(modules[-1], "w", encoding="utf-8") as file:
                file.write(text)
        simulated = Simulated(root, os.path.join(folder, "unit"), registers)
        try:
            with Machine(Parts(options), flash, modules=modules) as machine:
                machine.wait()
                replay(root, simulated, Virtual(machine), comparison)
        finally:
            simulated.stop()
    for line in comparison.wrong[:30]:
        print("  " + line)
    print(f"{comparison.replies} requests to both units in {time.monotonic() - start:.0f} s, "
          f"{len(comparison.wrong)} differences beyond these:")
    for reason, count in comparison.used.items():
        print(f"  {reason} ({count} times)")
    return 1 if comparison.wrong else 0


if __name__ == "__main__":
    sys.exit(main())
