"""Many clients of the web server at once, of this unit's or of another's."""

import collections
import os
import threading
import time

from unit import MAIN, READS, Request, fetch, incomplete, page, read, reset, server

# What the writer beside the readers does over and over. Each reply tells of one of these values,
# MTUs excepted, which are stored together.
CHANGES = [
    "cmd_id=6&action=1&ip=10.20.30.40&netmask=255.0.0.0", "cmd_id=24&action=1&iso=1",
    "cmd_id=20&pwdold=user&pwdnew=a_longer_password", "cmd_id=17&action=1&mc_mode=9",
    "cmd_id=16&action=1&ipv4DsMtu=1400&ipv4UsMtu=1400&ipv4pppoeUsMtu=1400",
    "cmd_id=6&action=1&ip=192.168.1.1&netmask=255.255.255.0", "cmd_id=24&action=1&iso=0",
    "cmd_id=20&pwdold=a_longer_password&pwdnew=user", "cmd_id=17&action=1&mc_mode=1",
    "cmd_id=16&action=1&ipv4DsMtu=1500&ipv4UsMtu=1500&ipv4pppoeUsMtu=1500",
]


def read_with_clients(count, fetch, right):
    """What is wrong with the answers to `count` requests of 8 clients, and how many a second."""
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

    start = time.monotonic()
    clients = [threading.Thread(target=client, args=(n,)) for n in range(8)]
    for thread in clients:
        thread.start()
    for thread in clients:
        thread.join()
    return wrong, count / (time.monotonic() - start)


def read_beside_a_writer(count, fetch):
    """The same beside one client that changes settings all the while: each answer has to be one
    that a quiet unit gives between two of the changes. What was wrong, and what happened."""
    expected = {query: fetch(query) for query in READS}
    allowed = {query: {answer} for query, answer in expected.items()}
    done, refused, written = threading.Event(), [], 0
    kinds = collections.Counter()

    def change():
        nonlocal written
        query = CHANGES[written % len(CHANGES)]
        try:
            answer = fetch(query)
        except OSError as error:
            answer = repr(error)
        written += 1
        if answer != page("0"):
            refused.append(f"{query}: {answer!r}")

    def change_on():
        while not done.is_set() or written % len(CHANGES):
            change()

    def right(query, answer):
        kinds["as before" if answer == expected[query] else
              "changed" if answer in allowed[query] else
              "empty" if not answer else "other"] += 1
        return answer in allowed[query]

    for _ in CHANGES:
        change()
        for query in READS:
            allowed[query].add(fetch(query))
    writer = threading.Thread(target=change_on)
    writer.start()
    wrong, rate = read_with_clients(count, fetch, right)
    done.set()
    writer.join()
    return wrong + refused, (f"{count} requests of 8 clients, {rate:.0f} a second, beside "
                             f"{written} changes of one more: {dict(kinds)}")


def stage_readers(options):
    """8 clients read: every reply must be the one of a quiet unit"""
    count = 400 if options.quick else 2000
    reset()
    with server():
        expected = {query: Request(query).run().reply for query in READS}
        wrong, rate = read_with_clients(
            count, fetch, lambda query, answer: answer == expected[query] != "")
    print(f"  {count} requests of 8 clients, {rate:.0f} a second; wrong or empty: {len(wrong)}")
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
    reset()
    with server():
        counts = watch("/tmp/stop_watching")
        wrong, happened = read_beside_a_writer(400 if options.quick else 2000, fetch)
        looks, halves = counts()
    broken = incomplete()
    print(f"  {happened}; half texts in {looks} looks at the file: {halves}; files that end "
          f"incomplete: {len(broken)}")
    return wrong + [f"{halves} half texts"] * bool(halves) + broken
