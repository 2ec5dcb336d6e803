#!/usr/bin/env python3
"""A foreign peer for the socket tests: connects to 127.0.0.1:<port> and
plays one scenario against the library's server.

usage: net_peer.py <scenario> <port>
"""
import socket
import sys
import time


def recv_until(conn, marker):
    data = b""
    while not data.endswith(marker):
        piece = conn.recv(65536)
        if not piece:
            break
        data += piece
    return data


def split(conn):
    # One zero-terminated message in three pieces, then echo the answer's length.
    for piece in (b"hel", b"lo wor", b"ld\0"):
        conn.sendall(piece)
        time.sleep(0.05)
    answer = recv_until(conn, b"\0")
    conn.sendall(b"%d\0" % len(answer))


def oversized(conn):
    # Streams without a terminator until the library closes the connection.
    block = b"x" * 65536
    try:
        for _ in range(4096):
            conn.sendall(block)
    except OSError:
        pass


def xmlsplit(conn):
    conn.sendall(b"<?xml version='1.0'?><Reply><Value>4")
    time.sleep(0.05)
    conn.sendall(b"2</Value></Re")
    time.sleep(0.05)
    conn.sendall(b"ply>\r\n")
    recv_until(conn, b"</Request>")


SCENARIOS = {f.__name__: f for f in (split, oversized, xmlsplit)}


def main():
    scenario, port = SCENARIOS[sys.argv[1]], int(sys.argv[2])
    with socket.create_connection(("127.0.0.1", port), timeout=10) as conn:
        scenario(conn)


if __name__ == "__main__":
    main()
