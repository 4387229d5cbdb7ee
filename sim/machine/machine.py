"""A virtual unit that runs: qemu's ARM board with the kernel, device tree and file system that
sim/machine/board and sim/machine/image have made, and a file for its flash."""

import base64
import io
import json
import os
import queue
import shutil
import signal
import socket
import subprocess
import tarfile
import tempfile
import threading
import time

import flash as chip
from web import CGI, fetch, free_port

MODULE = 0x51  # on the I2C bus
# Neither the ciphers' self-tests nor the certificates of modules: they are half of a start.
KERNEL_OPTIONS = ("console=ttymxc1 quiet panic=1 rdinit=/sbin/init cryptomgr.notests=1 "
                  "initcall_blacklist=load_system_certificate_list")
HERE = os.path.dirname(os.path.abspath(__file__))


class Trouble(Exception):
    """The unit does not do what a unit does, whatever the request."""


class Parts:
    """Where the parts of a unit lie, from the command line."""

    @staticmethod
    def add_options(parser):
        parser.add_argument("--board", required=True)
        parser.add_argument("--image", required=True)

    def __init__(self, options):
        self.kernel = os.path.join(options.board, "vmlinuz")
        self.tree = options.image + ".dtb"
        self.image = options.image


def serial_line(path, timeout):
    line = socket.socket(socket.AF_UNIX)
    line.settimeout(timeout)
    deadline = time.monotonic() + timeout
    while True:
        try:
            line.connect(path)
            return line
        except OSError:
            if time.monotonic() > deadline:
                raise
            time.sleep(0.02)


class BenchLine:
    """The unit's first serial line: its words as they come, read at once, for qemu stands still
    when nobody takes a character."""

    def __init__(self, path):
        self.line = serial_line(path, 20)
        self.line.settimeout(None)
        self.outputs = queue.SimpleQueue()
        self.records = []  # archives of /record, one for each time the unit went down
        self.ready = 0  # how often it has begun to take commands
        threading.Thread(target=self._read, daemon=True).start()

    def _read(self):
        with self.line.makefile("rb") as lines:
            for line in lines:
                word, _, rest = line.strip().partition(b" ")
                if word == b"record":
                    self.records.append(base64.b64decode(rest))
                elif word == b"output":
                    self.outputs.put(base64.b64decode(rest))
                elif word == b"ready":
                    self.ready += 1

    def run(self, command, timeout):
        self.line.sendall(base64.b64encode(command.encode()) + b"\n")
        try:
            return self.outputs.get(timeout=timeout)
        except queue.Empty:
            raise Trouble(f"no answer to {command}") from None


class Monitor:
    """qemu's own line: it stops time, pulls the cable and tells of resets."""

    def __init__(self, path):
        self.lines = serial_line(path, 20).makefile("rwb")
        self.resets = 0
        self.events = set()
        self._read()  # the greeting
        self.ask("qmp_capabilities")

    def _read(self):
        message = json.loads(self.lines.readline() or b'{"error": "qemu has ended"}')
        self.events.add(message.get("event"))
        self.resets += message.get("event") == "RESET"
        return message

    def ask(self, command, **arguments):
        self.lines.write(json.dumps({"execute": command, "arguments": arguments}).encode() + b"\n")
        self.lines.flush()
        while True:
            message = self._read()
            if "return" in message:
                return message["return"]
            if "error" in message:
                raise Trouble(f"{command}: {message['error']}")

    def wait_for(self, event, timeout):
        """Until qemu tells of it; whatever it was asked before is answered by then."""
        deadline = time.monotonic() + timeout
        while event not in self.events:
            if time.monotonic() > deadline:
                raise Trouble(f"there is no {event}")
            time.sleep(0.1)
            self.ask("query-status")
        self.events.clear()

    def human(self, line):
        return self.ask("human-monitor-command", **{"command-line": line})


class Machine:
    """As a context manager: switched on at its beginning, off (by the power switch) at its end.

    `flash` is a file, which the unit changes; `modules` are register files of optical modules, of
    which the first is plugged in, none for a unit without one; `counted` makes its clock count
    instructions, a nanosecond each; `console` gives it this process's terminal."""

    def __init__(self, parts, flash, port=None, modules=(), counted=False, console=False):
        self.parts, self.flash, self.port = parts, flash, port or free_port()
        self.modules, self.counted, self.console = modules, counted, console
        self.folder = tempfile.mkdtemp(prefix="onu-machine.")
        self.process = self.bench = None

    def __enter__(self):
        try:
            self.start()
        except BaseException:
            self.stop()
            raise
        return self

    def __exit__(self, *_):
        self.stop()

    def _path(self, name):
        return os.path.join(self.folder, name)

    def start(self):
        terminal = "stdio,signal=on" if self.console else "null"
        arguments = [
            "setpriv", "--pdeathsig", "KILL", "qemu-system-arm", "-M", "sabrelite", "-m", "256",
            "-smp", "1", "-display", "none", "-nodefaults",
            "-kernel", self.parts.kernel, "-dtb", self.parts.tree, "-initrd", self.parts.image,
            "-append", KERNEL_OPTIONS,
            "-chardev", f"socket,id=bench,path={self._path('bench')},server=on,wait=off",
            "-chardev", f"{terminal},id=console,logfile={self._path('console')}",
            "-serial", "chardev:bench", "-serial", "chardev:console",
            "-qmp", f"unix:{self._path('monitor')},server=on,wait=off",
            "-drive", f"file={self.flash},if=mtd,format=raw",
            "-nic", f"user,id=net,hostfwd=tcp:127.0.0.1:{self.port}-10.0.2.15:80"]
        for number, path in enumerate(self.modules):
            # This EEPROM takes two bytes of address, of which a module's reader sends the second.
            image = self._path(f"module{number}")
            with open(image, "wb") as file:
                file.write(chip.module_registers(path) * 256)
            arguments += ["-drive", f"file={image},if=none,id=eeprom{number},format=raw", "-device",
                          f"at24c-eeprom,id=module{number},bus=i2c-bus.0,rom-size=65536,"
                          f"address={MODULE + number},drive=eeprom{number}"]
        if self.counted:
            arguments += ["-icount", "shift=0,sleep=off"]
        with open(self._path("qemu"), "wb") as log:
            self.process = subprocess.Popen(
                arguments, stdin=None if self.console else subprocess.DEVNULL, stderr=log)
        try:
            self.monitor = Monitor(self._path("monitor"))
            self.bench = BenchLine(self._path("bench"))
        except OSError as error:
            with open(self._path("qemu"), encoding="utf-8") as log:
                raise Trouble(f"qemu does not start: {log.read()}") from error

    def stop(self):
        """Cuts the power."""
        if self.process:
            # Only a friendly word makes qemu give the terminal back.
            self.process.send_signal(signal.SIGTERM if self.console else signal.SIGKILL)
            self.process.wait()
        shutil.rmtree(self.folder, ignore_errors=True)

    def console_text(self):
        with open(self._path("console"), encoding="utf-8", errors="replace") as file:
            return file.read()

    # Time.

    def pause(self):
        self.monitor.ask("stop")

    def resume(self):
        self.monitor.ask("cont")

    def copy_flash(self, look=lambda: None):
        """What a power cut would leave now (qemu has nothing on its way to the file after `stop`),
        and what `look` gives at that instant."""
        self.pause()
        seen = look()
        with open(self.flash, "rb") as file:
            content = file.read()
        self.resume()
        return content, seen

    def plug(self, plugged):
        """Plugs in the module of this number in place of another, None for none: at any other
        address than its own it is not there. That takes devices that qemu has let go of, which
        answer nevertheless."""
        for number in range(len(self.modules)):
            address = MODULE if number == plugged else MODULE + 16 + number
            for name, value in (("realized", False), ("address", address)):
                self.monitor.ask("qom-set", path=f"/machine/peripheral/module{number}",
                                 property=name, value=value)

    # Through the network.

    def fetch(self, path, **how):
        return fetch(self.port, path, **how)

    def ask(self, query):
        """The body of the reply to a request."""
        return self.fetch(f"{CGI}?{query}").partition(b"\r\n\r\n")[2].decode()

    def wait(self, timeout=120):
        """Until the unit answers; for how long that took, in seconds. A new unit starts twice."""
        begin = time.monotonic()
        while True:
            try:
                if self.fetch(f"{CGI}?cmd_id=8", timeout=5).startswith(b"HTTP/1.0 200 OK"):
                    return time.monotonic() - begin
            except OSError:
                pass
            if self.process.poll() is not None or time.monotonic() - begin > timeout:
                with open(self._path("qemu"), encoding="utf-8") as file:
                    raise Trouble(f"the unit does not answer: {file.read()}{self.console_text()}")
            time.sleep(0.05)

    def restart(self, send, timeout=120):
        """Sends what makes the unit restart, waits until it answers anew; what `send` gives."""
        self.monitor.ask("query-status")  # which also takes in what has happened
        before = self.monitor.resets
        answer = send()
        deadline = time.monotonic() + timeout
        while self.monitor.resets == before:
            if time.monotonic() > deadline:
                raise Trouble(f"the unit does not restart: {self.console_text()}")
            time.sleep(0.1)
            self.monitor.ask("query-status")
        self.wait(timeout)
        return answer

    # Through the bench's line.

    def run(self, command, good=True, timeout=300):
        """What a shell on the unit prints for the command, both outputs, as bytes."""
        answer = self.bench.run(f"({command}\n)\necho =$?", timeout)
        output, _, status = answer.rpartition(b"=")
        if good and int(status) != 0:
            raise Trouble(f"{command}: status {int(status)}: {output.decode()}")
        return output

    def records(self):
        """The files below /record as they were each time the unit went down."""
        return [unpack(archive) for archive in self.bench.records]

    def files(self, *paths):
        """The files below these folders of the unit: their names and contents."""
        return unpack(base64.b64decode(self.run(
            f"tar -czf - -C / {' '.join(path.lstrip('/') for path in paths)} | base64 -w 0")))


def unpack(archive):
    with tarfile.open(fileobj=io.BytesIO(archive)) as tar:
        return {"/" + member.name: tar.extractfile(member).read()
                for member in tar.getmembers() if member.isfile()}
