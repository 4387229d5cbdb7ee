"""Many clients of the web server at once."""

import collections
import os
import re
import threading
import time

from replies import Allowed
from unit import MAIN, READS, Request, fetch, incomplete, page, read, reset, server

# What the writer beside the readers does over and over.
CHANGES = [
    "cmd_id=6&action=1&ip=10.20.30.40&netmask=255.0.0.0", "cmd_id=24&action=1&iso=1",
    "cmd_id=20&pwdold=user&pwdnew=a_longer_password", "cmd_id=17&action=1&mc_mode=9",
    "cmd_id=16&action=1&ipv4DsMtu=1400&ipv4UsMtu=1400&ipv4pppoeUsMtu=1400",
    "cmd_id=6&action=1&ip=192.168.1.1&netmask=255.255.255.0", "cmd_id=24&action=1&iso=0",
    "cmd_id=20&pwdold=a_longer_password&pwdnew=user", "cmd_id=17&action=1&mc_mode=1",
]


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
    """8 clients read: every reply must be the one of a quiet unit"""
    count = 400 if options.quick else 2000
    reset()
    with server():
        expected = {query: Request(query).run().reply for query in READS}
        start = time.monotonic()
        wrong = read_with_clients(count, lambda query, answer: answer == expected[query] != "")
        took = time.monotonic() - start
    print(f"  {count} requests of 8 clients, {count / took:.0f} a second; wrong or empty: "
          f"{len(wrong)}")
    return wrong


def watch(stop):
    """Reads the main settings as a program that knows nothing of the writer, in a process of its
    own: how often, and how many texts were half ones."""
    inlet, outlet = os.pipe()
    pid = os.fork()
    if pid == 0:
        looks = halves = 0
        while not os.path.exists(stop):
            text = read(MAIN)
            looks += 1
            halves += not (text.startswith("<") and text.rstrip().endswith("</tevo>") and
                           text.count("</tevo>") == 1)
        os.write(outlet, f"{looks} {halves}".encode())
        os._exit(0)
    os.close(outlet)

    def counts():
        with open(stop, "w", encoding="utf-8"), os.fdopen(inlet) as answer:
            looks, halves = map(int, answer.read().split())
        os.waitpid(pid, 0)
        return looks, halves

    return counts


def stage_writer(options):
    """the same beside one client that changes settings: each reply is one from whole files, older
    or newer; and whoever reads the main settings meanwhile finds a whole text"""
    count = 400 if options.quick else 2000
    reset()
    with server():
        stored = set(re.findall(r"=([^&]*)", "&".join(CHANGES)))
        allowed = {query: Allowed(stored) for query in READS}
        for query in READS:
            allowed[query].add(fetch(query))
        expected = {query: fetch(query) for query in READS}
        done = threading.Event()
        refused, written = [], 0

        def change():
            nonlocal written
            while not done.is_set() or written % len(CHANGES):
                query = CHANGES[written % len(CHANGES)]
                answer = fetch(query)
                written += 1
                if answer != page("0"):
                    refused.append(f"{query}: {answer!r}")

        kinds = collections.Counter()

        def right(query, answer):
            kinds["as before" if answer == expected[query] else "other"] += 1
            return allowed[query].fits(answer)

        counts = watch("/tmp/stop_watching")
        writer = threading.Thread(target=change)
        writer.start()
        wrong = read_with_clients(count, right)
        done.set()
        writer.join()
        looks, halves = counts()
    if halves:
        refused.append(f"{halves} half texts")
    broken = incomplete()
    print(f"  {count} requests of 8 clients beside {written} changes of one more: {dict(kinds)}, "
          f"not of whole files: {len(wrong)}; half texts in {looks} looks at the file: {halves}; "
          f"files that end incomplete: {len(broken)}")
    return wrong + refused + broken
