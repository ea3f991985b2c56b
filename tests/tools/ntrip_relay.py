#!/usr/bin/env python3
"""A small, strict NTRIP caster for the loopback tests of our NTRIP server.

RTKLIB's str2str can be a caster for clients but cannot take a server's stream, so
this relay stands between a server (ours, or str2str's own "ntrips://" for checking
the relay itself) and str2str as the client. It accepts:
  SOURCE <password> [/]<mount> with a Source-Agent header (NTRIP 1.0) -> "ICY 200 OK"
  POST /<mount> HTTP/1.1 with Ntrip-Version: Ntrip/2.0, basic authentication and
  chunked transfer (NTRIP 2.0) -> "HTTP/1.1 200 OK", the chunks checked one by one
  GET /<mount> with basic authentication -> "ICY 200 OK" and the stream
and refuses anything else. Every byte a server sends goes to every client as it is.

Usage: ntrip_relay.py PORT MOUNT USER PASSWORD   (prints "ready" once listening)
"""
import base64
import socket
import sys
import threading

port, mount, user, password = int(sys.argv[1]), sys.argv[2], sys.argv[3], sys.argv[4]
auth = "Basic " + base64.b64encode(f"{user}:{password}".encode()).decode()
clients = []
lock = threading.Lock()


def broadcast(data):
    with lock:
        for c in list(clients):
            try:
                c.sendall(data)
            except OSError:
                clients.remove(c)


def read_head(conn):
    buf = b""
    while b"\r\n\r\n" not in buf:
        d = conn.recv(4096)
        if not d or len(buf) > 16384:
            return None, b""
        buf += d
    head, rest = buf.split(b"\r\n\r\n", 1)
    return head.decode("latin-1"), rest


def dechunk(conn, buf):
    def need(n):
        nonlocal buf
        while len(buf) < n:
            d = conn.recv(4096)
            if not d:
                raise EOFError
            buf += d

    while True:
        while b"\r\n" not in buf:
            need(len(buf) + 1)
        line, buf = buf.split(b"\r\n", 1)
        size = int(line.split(b";")[0], 16)
        if size == 0:
            return
        need(size + 2)
        if buf[size:size + 2] != b"\r\n":
            raise ValueError("chunk not ended by CR LF")
        broadcast(buf[:size])
        buf = buf[size + 2:]


def serve(conn):
    try:
        head, rest = read_head(conn)
        if head is None:
            return
        lines = head.split("\r\n")
        words = lines[0].split(" ")
        headers = {}
        for line in lines[1:]:
            if ":" in line:
                k, v = line.split(":", 1)
                headers[k.strip().lower()] = v.strip()
        if words[0] == "SOURCE" and len(words) == 3 and "source-agent" in headers:
            if words[1] != password:
                conn.sendall(b"ERROR - Bad Password\r\n")
            elif words[2].lstrip("/") != mount:
                conn.sendall(b"ERROR - Bad Mountpoint\r\n")
            else:
                conn.sendall(b"ICY 200 OK\r\n")
                if rest:
                    broadcast(rest)
                while True:
                    d = conn.recv(4096)
                    if not d:
                        break
                    broadcast(d)
        elif (words[0] == "POST" and len(words) == 3 and words[2] == "HTTP/1.1"
              and headers.get("ntrip-version") == "Ntrip/2.0"
              and headers.get("transfer-encoding", "").lower() == "chunked"):
            if headers.get("authorization") != auth:
                conn.sendall(b"HTTP/1.1 401 Unauthorized\r\nContent-Length: 0\r\n\r\n")
            elif words[1] != "/" + mount:
                conn.sendall(b"HTTP/1.1 404 Not Found\r\nContent-Length: 0\r\n\r\n")
            else:
                conn.sendall(b"HTTP/1.1 200 OK\r\nConnection: close\r\n\r\n")
                dechunk(conn, rest)
        elif words[0] == "GET" and len(words) == 3:
            if headers.get("authorization") != auth:
                conn.sendall(b"HTTP/1.0 401 Unauthorized\r\n")
            elif words[1] != "/" + mount:
                conn.sendall(b"SOURCETABLE 200 OK\r\n\r\nSTR;" + mount.encode() + b";\r\nENDSOURCETABLE\r\n")
            else:
                conn.sendall(b"ICY 200 OK\r\n")
                with lock:
                    clients.append(conn)
                while conn.recv(4096):
                    pass
    except (OSError, EOFError, ValueError) as e:
        print("relay:", e, file=sys.stderr, flush=True)
    finally:
        with lock:
            if conn in clients:
                clients.remove(conn)
        conn.close()


listener = socket.socket()
listener.setsockopt(socket.SOL_SOCKET, socket.SO_REUSEADDR, 1)
listener.bind(("127.0.0.1", port))
listener.listen(8)
print("ready", flush=True)
while True:
    c, _ = listener.accept()
    c.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
    threading.Thread(target=serve, args=(c,), daemon=True).start()
