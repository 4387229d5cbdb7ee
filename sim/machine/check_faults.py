"""What can go wrong around a virtual unit: it starts, answers, and loses nothing that was whole."""

import io
import os
import random
import re
import socket
import sys
import tarfile
import threading
import time

import flash as chip
from check_upgrade import ADDRESS, address
from findings import Stage
from jffs2 import Image
from machine import HERE
from web import CGI, form

DEFAULTS = os.path.join(HERE, "../rootfs/var/tevo/xml_default")
MAIN = "/var/tevo/website/www/xml/tevo_xml_cfg_file.xml"
NO_READINGS = ('{bias:"0.00 mA",rx_opt_power:"-inf dBm",temp:"0.00 \u2103",'
               'tx_opt_power:"-inf dBm",voltage:"0.00 V"}\n')


def begin_upload(unit, query, how, first):
    """An upload of which only the first bytes are sent."""
    connection = socket.create_connection(("127.0.0.1", unit.port), timeout=120)
    head = f"POST {CGI}?{query} HTTP/1.0\r\nContent-Length: {len(how['body'])}\r\n"
    head += "".join(f"{name}: {value}\r\n" for name, value in how["headers"].items())
    connection.sendall(head.encode() + b"\r\n" + how["body"][:first])
    return connection


def finish(connection, rest):
    connection.sendall(rest)
    answer = b""
    while block := connection.recv(65536):
        answer += block
    connection.close()
    return answer.partition(b"\r\n\r\n")[2]


def archive_with(mark):
    """Settings of 300 KB that bear the mark at both ends: as multicast mode and as a password."""
    archive = io.BytesIO()
    with tarfile.open(fileobj=archive, mode="w") as tar:
        for name, old in (("eoam", "switch>0<"), ("padding", None), ("tevo", "admin>admin<")):
            text = bytes(300_000)
            if old:
                with open(f"{DEFAULTS}/{name}_xml_cfg_file.xml", "rb") as file:
                    new = old.partition(">")[0] + f">{mark}<"
                    text = file.read().replace(old.encode(), new.encode())
            member = tarfile.TarInfo(f"xml_config/{name}_xml_cfg_file.xml")
            member.size = len(text)
            tar.addfile(member, io.BytesIO(text))
    return archive.getvalue()


def is_marked(unit, mark):
    return (unit.ask("cmd_id=17&action=0") == f'{{mc_mode:"{mark}"}}\n'
            and unit.ask(f"cmd_id=1&username=admin&password={mark}") == "0\n")


def cable(stage, findings):
    """the network cable is pulled during an upload"""
    with stage.unit() as unit:
        unit.ask(ADDRESS.format("10.1.1.1"))
        how = form(archive_with("came_back"))
        half = len(how["body"]) // 2
        connection = begin_upload(unit, "cmd_id=10&action=1", how, half)
        time.sleep(1)
        unit.monitor.ask("set_link", name="net", up=False)
        time.sleep(5)
        unit.monitor.ask("set_link", name="net", up=True)
        findings.equal("out for 5 s: reply", finish(connection, how["body"][half:]), b" 0\n")
        findings.check("out for 5 s: the settings came whole", is_marked(unit, "came_back"))

        unit.ask(ADDRESS.format("10.1.1.1"))
        how = form(archive_with("never_whole"))
        connection = begin_upload(unit, "cmd_id=10&action=1", how, half)
        time.sleep(1)
        unit.monitor.ask("set_link", name="net", up=False)
        connection.close()
        time.sleep(2)
        unit.monitor.ask("set_link", name="net", up=True)
        start = time.monotonic()
        findings.equal("the client is gone: a change", unit.ask(ADDRESS.format("10.1.1.2")), "0\n")
        findings.check("the client is gone: the change waits 60 s at most",
                       time.monotonic() - start < 60, time.monotonic() - start)
        time.sleep(2)
        findings.equal("the client is gone: settings", address(unit), "10.1.1.2")
        findings.equal("the client is gone: nothing stays behind",
                       unit.run("ls -A /tmp"), b"")


def two_uploads(stage, findings):
    """two archives are sent at once, a few times"""
    with stage.unit() as unit:
        for turn in range(3):
            names = [f"one{turn}", f"two{turn}"]
            replies = {}

            def send(name):
                how = form(archive_with(name))
                half = len(how["body"]) // 2
                connection = begin_upload(unit, "cmd_id=10&action=1", how, half)
                time.sleep(1)  # both have begun by then
                replies[name] = finish(connection, how["body"][half:])

            clients = [threading.Thread(target=send, args=(name,)) for name in names]
            for client in clients:
                client.start()
            for client in clients:
                client.join()
            findings.equal(f"turn {turn}: replies", [*replies.values()], [b" 0\n"] * 2)
            findings.equal(f"turn {turn}: one of both is there",
                           sorted(is_marked(unit, name) for name in names), [False, True])


def flash_full(stage, findings):
    """the settings partition has no room"""
    with stage.unit() as unit:
        unit.ask(ADDRESS.format("10.1.1.1"))
        unit.run("for i in $(seq 20); do head -c 700 /dev/urandom >/mnt/flash/filler$i; done")
        unit.run("dd if=/dev/urandom of=/mnt/flash/filler bs=512", good=False)
        before = unit.run(f"cat {MAIN}")
        stored, torn = 0, []
        for number in range(20):
            changed = re.sub(rb"10\.1[0-9.]*<", b"10.1.2.%d<" % (100 + number), before)
            unit.ask(ADDRESS.format(f"10.1.2.{100 + number}"))
            after = unit.run(f"cat {MAIN}")
            stored += after == changed
            if after not in (before, changed):
                torn.append(after)
            unit.run(f"rm /mnt/flash/filler{number + 1}")  # a little more room each time
            before = after
        findings.equal(f"the settings stay whole ({stored} of 20 changes found room)", torn, [])
        free = unit.run("df /mnt/flash | awk 'NR == 2 { print $4 }'")
        kept = address(unit)
        unit.restart(lambda: unit.ask("cmd_id=11"))
        findings.equal(f"after a restart ({int(free)} KiB were free)", address(unit), kept)
        unit.run("rm -f /mnt/flash/filler*")
        unit.ask(ADDRESS.format("10.1.1.9"))
        findings.equal("with room again", address(unit), "10.1.1.9")


def module(stage, findings):
    """the optical module is absent, or goes and comes while the unit runs"""
    with stage.unit(modules=()) as unit:
        findings.equal("absent", unit.ask("cmd_id=3"), NO_READINGS)
    with stage.unit() as unit:
        readings = unit.ask("cmd_id=3")
        findings.check("plugged in", 'temp:"36.50' in readings, readings)
        unit.plug(None)
        findings.equal("unplugged", unit.ask("cmd_id=3"), NO_READINGS)
        unit.plug(0)
        findings.equal("plugged in again", unit.ask("cmd_id=3"), readings)
        unit.run("echo 21a0000.i2c >/sys/bus/platform/drivers/imx-i2c/unbind")
        findings.equal("without its bus", unit.ask("cmd_id=3"), NO_READINGS)


def environment(stage, findings):
    """the bootloader environment has a wrong sum"""
    with stage.unit() as unit:
        unit.ask(ADDRESS.format("10.1.1.1"))
        good = unit.copy_flash()[0]
    begin, end = chip.extent(4)
    flipped, erased = bytes([good[begin + 100] ^ 1]), chip.ERASED * chip.ENV_SIZE
    for what, spoilt in (("a bit", flipped), ("erased", erased)):
        at = begin + (100 if what == "a bit" else 0)
        flash = good[:at] + spoilt + good[at + len(spoilt):]
        with stage.unit(flash) as unit:
            findings.equal(f"{what}: settings", address(unit), "10.1.1.1")
            findings.check(f"{what}: information", "00:0C:E7:41:9A:2F" in unit.ask("cmd_id=2"))
            findings.check(f"{what}: the environment is left alone",
                           unit.copy_flash()[0][begin:end] == flash[begin:end])
            findings.equal(f"{what}: no restart without end", unit.monitor.resets, 0)


def settings_partition(stage, findings):
    """the settings partition does not mount, or holds nodes that are none"""
    with stage.unit() as unit:
        unit.ask(ADDRESS.format("10.1.1.1"))
        good = unit.copy_flash()[0]
    begin, end = chip.extent(3)
    for what, content in (("noise", random.randbytes(end - begin)), ("zeros", bytes(end - begin))):
        flash = good[:begin] + content + good[end:]
        with stage.unit(flash) as unit:
            findings.equal(f"{what}: factory settings", address(unit), "192.168.1.1")
            unit.ask(ADDRESS.format("10.1.1.7"))
            findings.equal(f"{what}: a change holds until the restart", address(unit), "10.1.1.7")
            findings.check(f"{what}: the partition is left alone",
                           chip.partition(unit.copy_flash()[0], 3) == content)
    # Noise where nothing is written yet takes nothing away from what is there.
    used = max(at for at in range(begin, end) if good[at] != 0xFF)
    free = used // chip.ERASE_BLOCK * chip.ERASE_BLOCK + chip.ERASE_BLOCK
    flash = good[:free] + random.randbytes(end - free) + good[end:]
    with stage.unit(flash) as unit:
        findings.equal("noise in the free blocks: settings", address(unit), "10.1.1.1")
        unit.ask(ADDRESS.format("10.1.1.8"))
        image = Image(chip.partition(unit.copy_flash()[0], 3), chip.ERASE_BLOCK)
        findings.check("noise in the free blocks: a change is stored",
                       b"10.1.1.8<" in image.read("settings/xml/" + os.path.basename(MAIN)))


if __name__ == "__main__":
    sys.exit(Stage(__doc__).run([cable, two_uploads, flash_full, module, environment,
                                 settings_partition]))
