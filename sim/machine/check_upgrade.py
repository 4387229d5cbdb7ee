"""Firmware, settings and restarts of a virtual unit, from an upload to what the flash holds when
the board resets and what the unit answers when it has come up again."""

import io
import os
import subprocess
import sys
import tarfile
import tempfile

import flash as chip
from findings import Stage
from replay import files_archive
from web import CGI

ADDRESS = "cmd_id=6&action=1&ip={}&netmask=255.255.255.0"


def address(unit):
    return unit.ask("cmd_id=6&action=0").partition('cur_ip:"')[2].partition('"')[0]


def upload(unit, query, content):
    """By curl, as a browser would do it."""
    with tempfile.NamedTemporaryFile() as file:
        file.write(content)
        file.flush()
        return subprocess.run(
            ["curl", "-s", "--max-time", "120", "-F", f"file=@{file.name};filename=image.bin",
             f"http://127.0.0.1:{unit.port}{CGI}?{query}"],
            check=True, capture_output=True).stdout.decode()


def flash_at_reset(unit, send):
    """The flash when the unit asks for its reset, which is granted afterwards."""
    unit.monitor.ask("set-action", reboot="shutdown", shutdown="pause")
    answer = send()
    unit.monitor.wait_for("SHUTDOWN", 120)
    with open(unit.flash, "rb") as file:
        content = file.read()
    unit.monitor.ask("set-action", reboot="reset", shutdown="poweroff")
    unit.monitor.ask("system_reset")
    unit.resume()
    unit.wait()
    return answer, content


def images(stage, findings):
    """update_type 1 to 3: the partition holds the image byte for byte when the board resets"""
    with stage.unit() as unit:
        unit.ask(ADDRESS.format("10.1.1.1"))
        settings = chip.partition(unit.copy_flash()[0], 3)
        unit.ask(ADDRESS.format("10.2.2.2"))
        whole = chip.PARTITIONS[2][1]
        for number, image in ((1, os.urandom(100_001)), (2, os.urandom(whole)), (3, settings),
                              (1, os.urandom(4096)), (2, b"")):
            before = unit.copy_flash()[0]
            query = f"cmd_id=21&update_type={number}"
            answer, after = flash_at_reset(unit, lambda: upload(unit, query, image))
            label = f"type {number}, {len(image)} bytes"
            findings.equal(f"{label}: reply", answer, "0\n")
            size = chip.PARTITIONS[number][1]
            findings.check(f"{label}: the partition",
                           chip.partition(after, number) == image.ljust(size, chip.ERASED))
            changed = [n for n in range(5) if chip.partition(after, n) != chip.partition(before, n)]
            findings.check(f"{label}: the other partitions", {*changed} <= {number, 3}, changed)
            findings.equal(f"{label}: address afterwards", address(unit),
                           "10.1.1.1" if number == 3 else "10.2.2.2")
            if number == 3:
                unit.ask(ADDRESS.format("10.2.2.2"))


def too_large(stage, findings):
    """an image larger than its partition: what fits is there, and the unit comes up"""
    with stage.unit() as unit:
        size = chip.PARTITIONS[1][1]
        image = os.urandom(size + 5000)
        before = unit.copy_flash()[0]
        _, after = flash_at_reset(unit, lambda: upload(unit, "cmd_id=21&update_type=1", image))
        findings.check("the partition", chip.partition(after, 1) == image[:size])
        findings.check("the next one", chip.partition(after, 2) == chip.partition(before, 2))


def archive(stage, findings):
    """update_type 0: the files are there after the restart"""
    with stage.unit() as unit:
        answer = unit.restart(lambda: upload(unit, "cmd_id=21&update_type=0", files_archive()))
        findings.equal("reply", answer, "0\n")
        findings.equal("the file", unit.run("cat /etc/xml_params/added.xml"), b"<added/>")


def restarts(stage, findings):
    """reboot, factory defaults, export"""
    with stage.unit() as unit:
        unit.ask(ADDRESS.format("10.3.3.3"))
        findings.equal("reboot: reply", unit.restart(lambda: unit.ask("cmd_id=11")), "0\n")
        findings.equal("reboot: settings", address(unit), "10.3.3.3")
        interface = unit.run("ifconfig eth0").decode()
        findings.check("reboot: the interface has the address", "inet addr:10.3.3.3 " in interface,
                       interface)
        findings.equal("export: reply", unit.ask("cmd_id=10&action=0"), " 0\n")
        exported = unit.fetch("/xml/xml_config.tar").partition(b"\r\n\r\n")[2]
        with tarfile.open(fileobj=io.BytesIO(exported)) as tar:
            names = {member.name: tar.extractfile(member).read()
                     for member in tar if member.isfile()}
        files = unit.files("/etc/xml_params", "/var/tevo/website/www/xml")
        findings.equal("export: the files", names,
                       {"xml_config/" + os.path.basename(name): text
                        for name, text in files.items() if name.endswith(".xml")})
        unit.restart(lambda: unit.ask("cmd_id=18"))
        findings.equal("factory defaults", address(unit), "192.168.1.1")
        findings.equal("import: reply", upload(unit, "cmd_id=10&action=1", exported), " 0\n")
        findings.equal("import", address(unit), "10.3.3.3")


if __name__ == "__main__":
    sys.exit(Stage(__doc__).run([images, too_large, archive, restarts]))
