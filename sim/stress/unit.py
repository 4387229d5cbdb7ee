"""The unit: its files, the requests to it, and what comes of them."""

import contextlib
import dataclasses
import glob
import os
import re
import shutil
import signal
import socket
import subprocess
import time
import xml.etree.ElementTree as ElementTree

CGI = "/var/tevo/website/www/cgi-bin/onu-cgi"
MAIN = "/var/tevo/website/www/xml/tevo_xml_cfg_file.xml"
SETTINGS_FOLDERS = ("/etc/xml_params", os.path.dirname(MAIN))
# Where tests put settings files: a plain folder, a small file system, a file that is a mount point.
OTHER_FOLDERS = ("/elsewhere", "/small", "/mounted")
DRIVER = "/sys/devices/platform/epon"
PORT = 8081
ENVIRONMENT = {"PATH": "/bin:/sbin", "ONU_BOOTS": "99"}  # a reboot is not followed by a start-up

READS = [
    "cmd_id=1&username=admin&password=admin", "cmd_id=2", "cmd_id=3", "cmd_id=4", "cmd_id=5",
    "cmd_id=6", "cmd_id=8", "cmd_id=14", "cmd_id=16", "cmd_id=17", "cmd_id=22", "cmd_id=23",
    "cmd_id=24", "cmd_id=25", "cmd_id=26", "cmd_id=27", "cmd_id=28&voq_dir=0",
    "cmd_id=28&voq_dir=1", "cmd_id=30",
]
# Commands that rewrite a settings file, each with a value that is not the factory's.
SAVES = [
    "cmd_id=5&action=1&loid=l&password=p&sn=s&fec_mode=0&ponSerialNum=n&gpon_loid=g",
    "cmd_id=6&action=1&ip=10.20.30.40&netmask=255.0.0.0",
    "cmd_id=14&action=1&port=0&loop_detect=0",
    "cmd_id=16&action=1&ipv4DsMtu=1400&ipv4UsMtu=1400&ipv4pppoeUsMtu=1400",
    "cmd_id=17&action=1&mc_mode=9", "cmd_id=19&pwdold=admin&pwdnew=longer",
    "cmd_id=20&pwdold=user&pwdnew=longer",
    "cmd_id=22&action=1&portId=0&mode=2&def_vid=5&vid_sum=0&vid_serial=",
    "cmd_id=23&action=1&port=0&flow_control=1&auto=0&mode=2", "cmd_id=24&action=1&iso=1",
    "cmd_id=25&action=1&age_time=77", "cmd_id=26&action=1&algo_mode=1",
    "cmd_id=27&action=1&que_id=0&usr_pri=9", "cmd_id=28&action=1&voq_dir=0&voq_id=0&voq_thresh=9",
    "cmd_id=30&action=1&bs=1&bs_thresh=99",
]
OTHER_WORK = [
    "cmd_id=10&action=0", "cmd_id=10&action=1", "cmd_id=11", "cmd_id=18",
    "cmd_id=21&update_type=0", "cmd_id=21&update_type=1", "cmd_id=21&update_type=9",
]


def page(body):
    return ("HTTP/1.0 200 OK\r\nContent-Type: application/json\r\nConnection: close\r\n\r\n"
            f"{body}\n")


def error_page(code, message):
    return (f"HTTP/1.1 {code}{message}\nConnection:close\n<HTML><BODY><p>Error:{code} -- {message}"
            "</p></BODY></HTML>\n")


# Files.


def read(path):
    with open(path, encoding="utf-8", errors="surrogateescape") as file:
        return file.read()


def write(path, text):
    with open(path, "w", encoding="utf-8", errors="surrogateescape") as file:
        file.write(text)


def settings_files():
    return [MAIN] + sorted(glob.glob("/etc/xml_params/*.xml"))


def settings():
    """The settings files by path; None for what cannot be read."""
    return {path: read(path) if os.path.exists(path) else None for path in settings_files()}


def document_state(path):
    """What a settings file holds: complete, empty or torn."""
    text = read(path)
    try:
        ElementTree.fromstring(text)
        return "complete"
    except ElementTree.ParseError:
        return "torn" if text else "empty"


def incomplete():
    return [f"{path} ends {document_state(path)}" for path in settings_files()
            if document_state(path) != "complete"]


def names():
    """All that lies in folders that can hold settings."""
    return {os.path.join(folder, name) for folder in SETTINGS_FOLDERS + OTHER_FOLDERS
            for name in os.listdir(folder)}


def reset():
    """Everything a request may change, as it left the factory."""
    for folder in SETTINGS_FOLDERS + (DRIVER,):
        shutil.rmtree(folder, ignore_errors=True)
        shutil.copytree("/factory" + folder, folder)
    for folder in ("/tmp", "/record", "/elsewhere", "/small"):
        os.makedirs(folder, exist_ok=True)
        for name in os.listdir(folder):
            path = os.path.join(folder, name)
            is_folder = os.path.isdir(path) and not os.path.islink(path)
            shutil.rmtree(path) if is_folder else os.unlink(path)


# Requests.


@dataclasses.dataclass
class Outcome:
    reply: str
    errors: str  # what came on standard error
    status: int  # None for a hang


class Request:
    def __init__(self, query, body=None, upload=False):
        self.query, self.body, self.upload = query, body or b"", upload
        self.environment = {**ENVIRONMENT, "QUERY_STRING": query,
                            "REQUEST_METHOD": "GET" if body is None else "POST"}
        if body is not None:
            self.environment["CONTENT_LENGTH"] = str(len(body))
        if upload:
            self.environment["CONTENT_TYPE"] = "multipart/form-data; boundary=x"

    def label(self):
        text = self.query or self.body.decode()
        return text + (" (upload)" if self.upload else " (POST)" if self.body else "")

    def start(self, *tracer, **options):
        return subprocess.Popen([*tracer, CGI], env=self.environment, stdin=subprocess.PIPE,
                                stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                                start_new_session=True, **options)

    def finish(self, child):
        try:
            reply, errors = child.communicate(self.body, timeout=20)
            return Outcome(reply.decode(), errors.decode(), child.returncode)
        except subprocess.TimeoutExpired:
            os.killpg(child.pid, signal.SIGKILL)  # a tracer does not take with it what it traces
            child.communicate()
            return Outcome("", "", None)

    def run(self, *tracer, **options):
        return self.finish(self.start(*tracer, **options))


def posted(query):
    return Request("", query.encode())


def uploaded(query):
    return Request(query, b'--x\r\nfilename="f"\r\n\r\n' + b"data" * 2000 + b"\r\n--x--\r\n", True)


# The web server.


def converse(sent):
    """What the web server answers to `sent`, which is all that it gets. Without the date that an
    error page of its own bears."""
    with socket.create_connection(("127.0.0.1", PORT), timeout=20) as connection:
        connection.sendall(sent.encode())
        connection.shutdown(socket.SHUT_WR)
        answer = b""
        while block := connection.recv(65536):
            answer += block
    return re.sub(r"Date: .*\r\n", "", answer.decode())


def fetch(query):
    return converse(f"GET /cgi-bin/onu-cgi?{query} HTTP/1.0\r\n\r\n")


@contextlib.contextmanager
def server(errors=subprocess.DEVNULL):
    process = subprocess.Popen(["/bin/httpd", "-f", "-p", f"127.0.0.1:{PORT}", "-h",
                                "/var/tevo/website/www"], stderr=errors)
    try:
        for _ in range(500):
            with socket.socket() as connection:
                if connection.connect_ex(("127.0.0.1", PORT)) == 0:
                    break
            time.sleep(0.01)
        else:
            raise RuntimeError("the web server does not listen")
        yield
    finally:
        process.kill()
        process.wait()
