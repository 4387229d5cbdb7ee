"""Requests whose body does not arrive whole."""

import tempfile

from unit import converse, error_page, page, reset, server, settings

BODY = "cmd_id=20&pwdold=user&pwdnew=abc123"


def stage_broken_off(options):
    """a password change through the web server breaks off at every place: none is carried out, each
    is answered with an error page and named in the server's log"""
    del options
    head = ("POST /cgi-bin/onu-cgi HTTP/1.0\r\nContent-Type: application/x-www-form-urlencoded\r\n"
            f"Content-Length: {len(BODY)}\r\n\r\n")
    reset()
    factory = settings()
    wrong, carried_out, unnamed = [], 0, 0
    with tempfile.TemporaryFile(dir="/record") as log, server(log):
        for size in range(len(BODY)):
            log.seek(0)
            log.truncate()
            answer = converse(head + BODY[:size])
            log.seek(0)
            lines = [line for line in log.read().decode().splitlines()
                     if line.startswith("onu-cgi: ")]
            if settings() != factory:
                carried_out += 1
                wrong.append(f"{BODY[:size]!r} changes settings")
                reset()
            if answer != error_page(400, "read request fail"):
                wrong.append(f"{BODY[:size]!r}: {answer!r}")
            if len(lines) != 1:
                unnamed += 1
                wrong.append(f"{BODY[:size]!r} is not named on standard error: {lines}")
        if converse(head + BODY) != page("0") or settings() == factory:
            wrong.append("the whole request is not carried out")
    print(f"  {len(BODY)} bodies that break off: {carried_out} carried out, {unnamed} not named "
          "on standard error")
    return wrong
