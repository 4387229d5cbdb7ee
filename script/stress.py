"""Loads and hurts the unit it runs inside of, and says what came of it; see script/stress."""

import argparse
import collections
import contextlib
import glob
import os
import random
import re
import shutil
import signal
import socket
import statistics
import subprocess
import sys
import threading
import time
import xml.etree.ElementTree as ElementTree

CGI = "/var/tevo/website/www/cgi-bin/onu-cgi"
MAIN = "/var/tevo/website/www/xml/tevo_xml_cfg_file.xml"
DRIVER = "/sys/devices/platform/epon"
PORT = 8081

READS = [
    "cmd_id=1&username=admin&password=admin", "cmd_id=2", "cmd_id=3", "cmd_id=4", "cmd_id=5",
    "cmd_id=6", "cmd_id=8", "cmd_id=14", "cmd_id=16", "cmd_id=17", "cmd_id=22", "cmd_id=23",
    "cmd_id=24", "cmd_id=25", "cmd_id=26", "cmd_id=27", "cmd_id=28&voq_dir=0",
    "cmd_id=28&voq_dir=1", "cmd_id=30",
]
WRITES = [
    "cmd_id=5&action=1&loid=l&password=p&sn=s&fec_mode=0&ponSerialNum=n&gpon_loid=g",
    "cmd_id=6&action=1&ip=10.20.30.40&netmask=255.0.0.0", "cmd_id=10&action=0",
    "cmd_id=10&action=1", "cmd_id=11", "cmd_id=14&action=1&port=0&loop_detect=7",
    "cmd_id=16&action=1&ipv4DsMtu=1400&ipv4UsMtu=1400&ipv4pppoeUsMtu=1400",
    "cmd_id=17&action=1&mc_mode=9", "cmd_id=18", "cmd_id=19&pwdold=admin&pwdnew=longer",
    "cmd_id=20&pwdold=user&pwdnew=longer", "cmd_id=21&update_type=0", "cmd_id=21&update_type=1",
    "cmd_id=21&update_type=9",
    "cmd_id=22&action=1&portId=0&mode=2&def_vid=5&vid_sum=0&vid_serial=",
    "cmd_id=23&action=1&port=0&flow_control=1&auto=0&mode=2", "cmd_id=24&action=1&iso=1",
    "cmd_id=25&action=1&age_time=77", "cmd_id=26&action=1&algo_mode=1",
    "cmd_id=27&action=1&que_id=0&usr_pri=9", "cmd_id=28&action=1&voq_dir=0&voq_id=0&voq_thresh=9",
    "cmd_id=30&action=1&bs=1&bs_thresh=99",
]
# What the writer beside the readers does over and over, and the values it stores.
CHANGES = [
    "cmd_id=6&action=1&ip=10.20.30.40&netmask=255.0.0.0", "cmd_id=24&action=1&iso=1",
    "cmd_id=20&pwdold=user&pwdnew=a_longer_password", "cmd_id=17&action=1&mc_mode=9",
    "cmd_id=16&action=1&ipv4DsMtu=1400&ipv4UsMtu=1400&ipv4pppoeUsMtu=1400",
    "cmd_id=6&action=1&ip=192.168.1.1&netmask=255.255.255.0", "cmd_id=24&action=1&iso=0",
    "cmd_id=20&pwdold=a_longer_password&pwdnew=user", "cmd_id=17&action=1&mc_mode=1",
]
# Replies for a file that can be read once and not a second time.
TWO_READS = {"cmd_id=19": "2", "cmd_id=20": "2"}


def page(body):
    return ("HTTP/1.0 200 OK\r\nContent-Type: application/json\r\nConnection: close\r\n\r\n" + body +
            "\n")


def error_page(code, message):
    return (f"HTTP/1.1 {code}{message}\nConnection:close\n<HTML><BODY><p>Error:{code} -- {message}"
            "</p></BODY></HTML>\n")


# The unit.


def settings_files():
    return [MAIN] + sorted(glob.glob("/etc/xml_params/*.xml"))


def reset():
    """Everything a request may change, as it left the factory."""
    for folder in ("/etc/xml_params", os.path.dirname(MAIN), DRIVER):
        shutil.rmtree(folder, ignore_errors=True)
        shutil.copytree("/factory" + folder, folder)
    for folder in ("/tmp", "/record"):
        for name in os.listdir(folder):
            path = os.path.join(folder, name)
            shutil.rmtree(path) if os.path.isdir(path) else os.unlink(path)


class Request:
    def __init__(self, query, body=None, upload=False):
        self.query, self.body, self.upload = query, body or b"", upload
        self.environment = {"PATH": "/bin:/sbin", "ONU_BOOTS": "99", "QUERY_STRING": query,
                            "REQUEST_METHOD": "GET" if body is None else "POST"}
        if body is not None:
            self.environment["CONTENT_LENGTH"] = str(len(body))
        if upload:
            self.environment["CONTENT_TYPE"] = "multipart/form-data; boundary=x"
            self.body = body

    def label(self):
        return self.query + (" (upload)" if self.upload else " (POST)" if self.body else "")

    def run(self, *tracer):
        """Reply and status, None for a hang."""
        child = subprocess.Popen([*tracer, CGI], env=self.environment, stdin=subprocess.PIPE,
                                 stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        try:
            return child.communicate(self.body, timeout=20)[0].decode(), child.returncode
        except subprocess.TimeoutExpired:
            child.kill()
            child.communicate()
            return "", None


def posted(query):
    return Request("", query.encode())


def uploaded(query):
    return Request(query, b'--x\r\nfilename="f"\r\n\r\n' + b"data" * 2000 + b"\r\n--x--\r\n", True)


def fetch(query):
    """The reply through the web server, without the date that an error page of its own bears."""
    with socket.create_connection(("127.0.0.1", PORT), timeout=20) as connection:
        connection.sendall(f"GET /cgi-bin/onu-cgi?{query} HTTP/1.0\r\n\r\n".encode())
        answer = b""
        while block := connection.recv(65536):
            answer += block
    return re.sub(r"Date: .*\r\n", "", answer.decode())


@contextlib.contextmanager
def server():
    process = subprocess.Popen(["/bin/httpd", "-f", "-p", f"127.0.0.1:{PORT}", "-h",
                                "/var/tevo/website/www"], stderr=subprocess.DEVNULL)
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


# What replies may look like.


def pieces(reply):
    """The text around the values, and the values."""
    parts = reply.split('"')
    return "\0".join(parts[0::2]), parts[1::2]


class Allowed:
    """The replies that are right while files may be missing: values come one by one from a reply
    with every file or from one with one of them missing."""

    def __init__(self, values=()):
        self.values = set(values)
        self.shapes = {}

    def add(self, reply):
        shape, values = pieces(reply)
        known = self.shapes.setdefault(shape, [set() for _ in values])
        for position, value in zip(known, values):
            position.add(value)

    def fits(self, reply):
        shape, values = pieces(reply)
        known = self.shapes.get(shape)
        return known is not None and all(
            value in position or value in self.values or value == ""
            for position, value in zip(known, values))


def worlds():
    """Brings the unit into each state in which some files cannot be read."""
    reset()
    files = settings_files() + glob.glob(DRIVER + "/*/*")
    yield
    for path in files:
        for spoil in (os.unlink, lambda path: open(path, "w").close()):
            spoil(path)
            yield
            shutil.copy("/factory" + path, path)


def learn(ask, queries, values=()):
    allowed = {query: Allowed(values) for query in queries}
    for _ in worlds():
        for query in queries:
            allowed[query].add(ask(query))
    return allowed


def document_state(path):
    """What a settings file holds: complete, empty or torn."""
    with open(path, "rb") as file:
        text = file.read()
    try:
        ElementTree.fromstring(text)
        return "complete"
    except ElementTree.ParseError:
        return "torn" if text else "empty"


# Stages. Each returns what it has found wrong.


def read_with_clients(count, right):
    wrong, lock = [], threading.Lock()

    def client(number):
        for i in range(count // 8):
            query = READS[(number * 7 + i * 5) % len(READS)]
            try:
                answer = fetch(query)
            except OSError as error:
                answer = repr(error)
            if not right(query, answer):
                with lock:
                    wrong.append(f"{query}: {answer!r}")

    clients = [threading.Thread(target=client, args=(n,)) for n in range(8)]
    for thread in clients:
        thread.start()
    for thread in clients:
        thread.join()
    return wrong


def stage_readers(options):
    count = 400 if options.quick else 2000
    reset()
    with server():
        expected = {query: Request(query).run()[0] for query in READS}
        start = time.monotonic()
        wrong = read_with_clients(count, lambda query, answer: answer == expected[query] != "")
        took = time.monotonic() - start
    print(f"  {count} requests of 8 clients, {count / took:.0f} a second; wrong or empty: "
          f"{len(wrong)}")
    return wrong


def stage_writer(options):
    count = 400 if options.quick else 2000
    reset()
    with server():
        stored = set(re.findall(r"=([^&]*)", "&".join(CHANGES)))
        allowed = learn(fetch, READS, stored)
        reset_done = threading.Event()
        refused, written = [], 0

        def write():
            nonlocal written
            while not reset_done.is_set() or written % len(CHANGES):
                query = CHANGES[written % len(CHANGES)]
                answer = fetch(query)
                written += 1
                if answer != page("0"):
                    refused.append(f"{query}: {answer!r}")

        expected = {query: fetch(query) for query in READS}
        other = collections.Counter()

        def right(query, answer):
            other["same" if answer == expected[query] else "changed, stale or with gaps"] += 1
            return allowed[query].fits(answer)

        writer = threading.Thread(target=write)
        writer.start()
        wrong = read_with_clients(count, right)
        reset_done.set()
        writer.join()
    broken = [f"{path} ends {document_state(path)}" for path in settings_files()
              if document_state(path) != "complete"]
    print(f"  {count} requests of 8 clients beside {written} changes of one more: {dict(other)}; "
          f"garbled: {len(wrong)}, refused changes: {len(refused)}, files that end incomplete: "
          f"{len(broken)}")
    return wrong + refused + broken


def stage_kill(options):
    count = 100 if options.quick else 1000
    reset()
    passwords = ["user", "another_and_longer_password"]
    reader = Request("cmd_id=20&pwdold=not_this_one&pwdnew=")

    def writer(i):
        return Request(f"cmd_id=20&pwdold={passwords[i % 2]}&pwdnew={passwords[1 - i % 2]}")

    def timed(i):
        pid = os.posix_spawn(CGI, [CGI], writer(i).environment, file_actions=quiet)
        start = time.monotonic()
        os.waitpid(pid, 0)
        return time.monotonic() - start

    null = os.open("/dev/null", os.O_RDWR)
    quiet = [(os.POSIX_SPAWN_DUP2, null, 0), (os.POSIX_SPAWN_DUP2, null, 1)]
    usual = statistics.median(timed(i) for i in range(40))
    states, outcomes, wrong = collections.Counter(), collections.Counter(), []
    timed(0)
    with open(MAIN, encoding="utf-8") as file:
        if f"<user>{passwords[1]}</user>" not in file.read():
            wrong.append("a writer left in peace has changed nothing")
    i = 1
    for _ in range(count):
        pid = os.posix_spawn(CGI, [CGI], writer(i).environment, file_actions=quiet)
        time.sleep(random.uniform(0, usual))
        os.kill(pid, signal.SIGKILL)
        killed = os.WIFSIGNALED(os.waitpid(pid, 0)[1])
        state = document_state(MAIN)
        states[state] += 1
        reply, status = reader.run()
        if reply != page("1") or status != 0:
            wrong.append(f"reads {reply!r} with status {status} from a file left {state}")
        if state == "empty":
            wrong.append("a killed writer leaves an empty file")
        if state != "complete":
            shutil.copy("/factory" + MAIN, MAIN)
            i = 0
            continue
        with open(MAIN, encoding="utf-8") as file:
            stored = re.search("<user>(.*)</user>", file.read()).group(1)
        changed = stored == passwords[1 - i % 2]
        if stored not in passwords or not (killed or changed):
            wrong.append(f"{stored!r} is stored, the writer was {'' if killed else 'not '}killed")
        outcomes["killed " * killed + ("after" if changed else "before") + " the change"] += 1
        i += changed
    os.close(null)
    print(f"  {count} writers killed within {usual * 1000:.2f} ms: {dict(outcomes)}; files left not "
          f"a complete document: {count - states['complete']} (empty {states['empty']}, torn "
          f"{states['torn']})")
    return wrong


def calls_of(request):
    """How often the request's own process makes each of the calls."""
    request.run("/usr/bin/strace", "-qq", "-o", "/tmp/trace", "-e",
                "trace=open,openat,read,write,close,fallocate,ftruncate")
    with open("/tmp/trace", encoding="utf-8", errors="replace") as file:
        return collections.Counter(line.partition("(")[0] for line in file if "(" in line)


def replies_without_a_file(request):
    """What the request may reply while one of its files is missing."""
    allowed = Allowed()
    if request.query in READS:
        for _ in worlds():
            allowed.add(request.run()[0])
    else:
        for path in [None] + settings_files():
            reset()
            if path:
                os.unlink(path)
            allowed.add(request.run()[0])
    number = re.match("cmd_id=[0-9]*", request.query or request.body.decode()).group()
    if number in TWO_READS:
        allowed.add(page(TWO_READS[number]))
    if request.upload:
        allowed.add(error_page(400, "receive file fail"))
    elif request.body:
        allowed.add(error_page(404, "processor is not find"))
    return allowed


def stage_faults(options):
    opening = ["EMFILE", "ENOENT"]
    usual = {"open": opening, "openat": opening, "read": ["EIO"], "write": ["ENOSPC"],
             "close": ["EIO"], "fallocate": ["ENOSPC"], "ftruncate": ["EIO"]}
    everything = ["ENOSPC", "EIO", "EMFILE", "ENOENT"]
    requests = [Request(query) for query in READS + WRITES]
    requests += [posted("cmd_id=8"), posted("cmd_id=24&action=1&iso=1"),
                 uploaded("cmd_id=10&action=1"), uploaded("cmd_id=21&update_type=2")]
    runs, wrong, files = 0, [], collections.Counter()
    for request in requests:
        reset()
        allowed = replies_without_a_file(request)
        reset()
        for call, count in sorted(calls_of(request).items()):
            for error in everything if not options.quick else usual[call]:
                for when in range(1, count + 1):
                    reset()
                    reply, status = request.run(
                        "/usr/bin/strace", "-qq", "-o", "/dev/null", "-e", f"trace={call}", "-e",
                        f"inject={call}:error={error}:when={when}")
                    runs += 1
                    # No reply when it cannot be written, and none from a MAC address too short.
                    short = status == 1 and request.query in ("cmd_id=2", "cmd_id=5")
                    silent = reply == "" and (call == "write" or short)
                    if status not in (0, 1) or not (silent or allowed.fits(reply)):
                        wrong.append(f"{request.label()}, {call} {when} {error}: {reply!r}, "
                                     f"status {status}")
                    for path in settings_files():
                        state = document_state(path)
                        if state != "complete":
                            files[f"{state} by {call}"] += 1
                            if call != "write":
                                wrong.append(f"{request.label()}, {call} {when} {error}: leaves "
                                             f"{path} {state}")
    print(f"  {runs} failing calls in {len(requests)} requests; crashes, hangs and wrong replies: "
          f"{len(wrong)}; files left not a complete document: {dict(files) or 'none'}")
    return wrong


STAGES = {"readers": stage_readers, "writer": stage_writer, "kill": stage_kill,
          "faults": stage_faults}


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--quick", action="store_true")
    parser.add_argument("--seed", type=int, default=int(time.time()))
    parser.add_argument("stages", nargs="*", metavar="STAGE")
    options = parser.parse_args()
    if unknown := set(options.stages) - set(STAGES):
        parser.error(f"no such stage: {', '.join(unknown)}")
    signal.alarm(600)
    random.seed(options.seed)
    print(f"seed {options.seed}")
    wrong = 0
    for name in options.stages or STAGES:
        print(f"{name}:", flush=True)
        found = STAGES[name](options)
        for line in found[:20]:
            print(f"    {line}")
        wrong += len(found)
        sys.stdout.flush()
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
