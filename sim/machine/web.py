"""HTTP as the tests need it: answers as they come, lengths that may lie, uploads."""

import socket

CGI = "/cgi-bin/onu-cgi"


def free_port():
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


def fetch(port, path, body=None, headers=None, method=None, announced=None, timeout=60):
    """The whole answer of a web server on this machine: status line, headers and body. `announced`
    is the length to claim for the body where that is not the truth."""
    head = f"{method or ('GET' if body is None else 'POST')} {path} HTTP/1.0\r\n"
    for name, value in (headers or {}).items():
        head += f"{name}: {value}\r\n"
    if body is not None:
        head += f"Content-Length: {len(body) if announced is None else announced}\r\n"
    with socket.create_connection(("127.0.0.1", port), timeout=timeout) as connection:
        connection.sendall(head.encode() + b"\r\n" + (body or b""))
        if announced is not None:
            connection.shutdown(socket.SHUT_WR)
        answer = b""
        while block := connection.recv(65536):
            answer += block
    return answer


def form(content, name="file"):
    """The body and header of an upload."""
    head = f'--x\r\nContent-Disposition: form-data; name="file"; filename="{name}"\r\n\r\n'
    return {"body": head.encode() + content + b"\r\n--x--\r\n",
            "headers": {"Content-Type": "multipart/form-data; boundary=x"}}
