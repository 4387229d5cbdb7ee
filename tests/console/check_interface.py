#!/usr/bin/env python3
"""Compares docs/interface.json with the command table, docs/interface.md and what the unit answers.

    check_interface.py BUILD

The table has to have the same numbers and actions; the page the same commands, parameters, keys and
failures; and the executables of BUILD, run in a simulated unit, have to send the keys in order, to
store what is said to be stored, to fail in every way that is described and in no other.
"""

import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parents[2]
CGI = "/var/tevo/website/www/cgi-bin/onu-cgi"
FOLDERS = ("etc/xml_params", "var/tevo/website/www/xml")
PASSWORDS = {19: "admin", 20: "user"}  # as they leave the factory
faults = []


def expect(truth, *what):
    if not truth:
        faults.append(" ".join(str(word) for word in what))


def keys_of(command):
    return list(command.get("reply", {}).get("keys", {}))


def parameters_of(command):
    return [parameter["name"] for parameter in command.get("parameters", [])]


def check_table(commands):
    text = (ROOT / "commands/command_table.cc").read_text()
    rows = text[text.index("kRows") : text.index("};", text.index("kRows"))]
    table = {}
    for wrappers, number, functions in re.findall(
        r"^\s*((?:\w+\(|Command|\{)*)(\d+),([\w\s,]+)[)}]", rows, re.MULTILINE
    ):
        changing, always = "changing(" in wrappers, "always(" in wrappers
        kinds = ["act", "act"] if changing else ["read", "store", "refuse"]
        named = ["any"] if always else ["0", "1", "other"]
        table[int(number)] = dict(zip(named, kinds[: len(functions.split(","))]))
    expect(list(table) == [c["number"] for c in commands], "numbers in the table:", list(table))
    # The table does not tell a store from other work, nor a check from a reading.
    alike = {"store": "act", "check": "read"}
    for command in commands:
        number, row, actions = command["number"], table.get(command["number"]), command["actions"]
        if row and "any" in row:
            actions = {action: alike.get(kind, kind) for action, kind in actions.items()}
        expect(row == actions, number, "in the table:", row, "described:", actions)


def check_page(description):
    page = (ROOT / "docs/interface.md").read_text()
    plain = page.replace("`", "")
    for failure in description["pages"]:
        expect(failure in plain, "the page lacks", failure)
    sections = {}
    for title, text in re.findall(r"^## ([\d, ]+): .*\n((?:(?!^## ).*\n?)*)", page, re.MULTILINE):
        for number in title.split(","):
            sections[int(number)] = text
    commands = description["commands"]
    expect(sorted(sections) == [c["number"] for c in commands], "sections:", sorted(sections))
    for command in commands:
        number, text = command["number"], sections.get(command["number"], "")
        words = set(re.findall(r"`([^`\n]+)`", text))
        for first, last in re.findall(r"`(\w+)` to `(\w+)`", text):
            words |= {first[:-1] + str(i) for i in range(int(first[-1]), int(last[-1]) + 1)}
        shown = set(re.findall(r'(\w+):"', text))
        known = set(parameters_of(command)) | set(keys_of(command))
        for word in known - words - shown:
            expect(False, number, "the page does not name", word)
        table_keys = set()
        for table in re.findall(r"^\| key .*\n(?:\|.*\n)*", text, re.MULTILINE):
            for row in table.splitlines()[2:]:
                table_keys |= set(re.findall(r"`(\w+)`", row.split("|")[1]))
        sent = set(re.findall(r"&(\w+)=", text)) - {"action"}
        for word in (shown | table_keys) - set(keys_of(command)):
            expect(False, number, "the page has a key", word)
        for word in sent - set(parameters_of(command)):
            expect(False, number, "the page has a parameter", word)
        failures = set(command.get("failures", {}))
        pages = {failure for failure in failures if failure.startswith("405")}
        flat = " ".join(text.replace("`", "").split())
        expect(set(re.findall(r"405 [a-z ]+? fail", flat)) == pages, number, "pages 405:", pages)
        like = re.match(r"\s*As (\d+),", text)
        text += sections[int(like[1])] if like else ""
        for failure in failures - pages - {""}:
            expect(f"`{failure}`" in text, number, "the page lacks the failure", repr(failure))


class Unit:
    """A simulated unit in a folder of its own."""

    def __init__(self, build):
        self.folder = tempfile.TemporaryDirectory()
        self.sim = str(ROOT / "sim/unit")
        subprocess.run([self.sim, "assemble", self.folder.name, build], check=True)

    def ask(self, number, action, parameters=()):
        """The body of a reply, CODE MESSAGE of an error page, empty without a reply."""
        query = "&".join(
            f"{name}={value}"
            for name, value in [("cmd_id", number), ("action", action), *parameters]
        )
        # ONU_BOOTS: a reboot is recorded and starts nothing.
        environment = ["env", "ONU_BOOTS=3", "REQUEST_METHOD=GET", f"QUERY_STRING={query}"]
        run = subprocess.run(
            [self.sim, "enter", self.folder.name, *environment, CGI],
            stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, check=False, timeout=60,
        )
        text = run.stdout.decode()
        page = re.match(r"HTTP/1\.1 (\d{3})(.*)\n", text)
        if page:
            return f"{page[1]} {page[2]}"
        return text.partition("\r\n\r\n")[2][:-1]

    def settings(self):
        files = [p for f in FOLDERS for p in pathlib.Path(self.folder.name, f).iterdir()]
        return {path.name: path.read_bytes() for path in files}

    def forget_settings(self):
        for folder in FOLDERS:
            for path in pathlib.Path(self.folder.name, folder).iterdir():
                path.unlink()


def rows_of(body):
    """The objects of a reply whose values hold neither quotes nor braces."""
    return [
        dict(re.findall(r'(\w+):"([^"]*)"', row)) for row in re.findall(r"\{([^{}]*)\}", body)
    ]


def check_reading(unit, command, action, body):
    number, reply = command["number"], command["reply"]
    before = unit.settings()
    expect(body.startswith("[" if reply["shape"] == "array" else "{"), number, "sends", body)
    rows = rows_of(body)
    expect(rows and all(list(row) == keys_of(command) for row in rows), number, action, body)
    unit.ask(number, action)
    expect(unit.settings() == before, number, action, "is said to read and writes")


def sample(command, parameter, now, lists):
    """A value for the parameter that is not the present one, `now`."""
    values = parameter.get("values")
    values = lists[values] if isinstance(values, str) else values
    if parameter["name"] == "pwdold":
        return PASSWORDS[command["number"]]
    if values and "reads" not in parameter:
        return list(values)[0]
    if values:
        return next(value for value in values if value != now)
    return {"number": "77", "ipv4": "10.11.12.13"}.get(parameter.get("form"), "changed")


def check_storing(unit, command, action, lists):
    """Stores other values than there are; the keys of `reads` have to show them afterwards."""
    number, parameters = command["number"], command["parameters"]
    can_read = "reply" in command
    sent = {}

    def shown():
        reading = [(p["name"], sent[p["name"]]) for p in parameters if p.get("reading")]
        row = command["reply"].get("row")
        for found in rows_of(unit.ask(number, 0, reading)):
            if not row or found[row["key"]] == sent[row["parameter"]]:
                return found
        return {}

    for parameter in sorted(parameters, key=lambda p: bool(p.get("reads"))):
        key = (parameter.get("reads") or "").format(**sent)
        now = shown().get(key) if key else None
        expect(not key or now is not None, number, "has no key", key)
        sent[parameter["name"]] = sample(command, parameter, now, lists)
    query = [(p["name"], sent[p["name"]]) for p in parameters]
    before = unit.settings()
    body = unit.ask(number, action, query)
    expect(body == command["done"], number, "stored, and answered", repr(body))
    expect(unit.settings() != before, number, "is said to store and does not write")
    for parameter in parameters if can_read else []:
        key = (parameter.get("reads") or "").format(**sent)
        if key:
            value = shown().get(key)
            expect(value == sent[parameter["name"]], number, key, "shows", value, "after", query)
    return query


def check_unit(description, build):
    commands = description["commands"]
    unit, empty = Unit(build), Unit(build)
    empty.forget_settings()
    for command in commands:
        number, done = command["number"], command.get("done")
        seen, query = set(), []
        kinds = command["actions"]
        silent = {} if {"any", "other"} & set(kinds) else {"other": "none"}
        for named, kind in {**kinds, **silent}.items():
            for action in {"any": [0, 1, 7], "other": [2, -1]}.get(named, [named]):
                body = unit.ask(number, action)
                if kind == "read":
                    check_reading(unit, command, action, body)
                elif kind == "none":
                    expect(body == "", number, action, "is said to have no reply:", body)
                elif kind == "refuse":
                    expect(body not in ("", done), number, action, "answers", body)
                    seen.add(body)
            if kind == "store":
                action = 1 if named == "any" else named
                query = check_storing(unit, command, action, description["values"])
        # In every way that fails: no settings, no values, values that there are not.
        wrong = [(name, "-1") for name in parameters_of(command)]
        for action in (0, 1):
            for where, values in [(empty, query), (empty, []), (empty, wrong), (unit, wrong)]:
                body = where.ask(number, action, values)
                if body != done and not body.startswith(("{", "[")):
                    seen.add(body)
            empty.forget_settings()
        expect(seen == set(command.get("failures", {})), number, "fails with", sorted(seen))


def main():
    build = os.path.abspath(sys.argv[1])
    description = json.loads((ROOT / "docs/interface.json").read_text())
    check_table(description["commands"])
    check_page(description)
    check_unit(description, build)
    for fault in faults:
        print("docs/interface.json:", fault)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
