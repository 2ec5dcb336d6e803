#!/usr/bin/env python3
"""Runs the example echo service the way systemd runs a Type=notify unit.

The test listens on a NOTIFY_SOCKET datagram socket, starts the program,
waits for READY=1, asks a question with `utilkit send`, sends SIGTERM and
expects exit status 0 with STATUS=STOPPED as the last state reported.

Usage: echo_service_test.py <echo_service program> <utilkit tool>
"""
import os
import re
import signal
import socket
import subprocess
import sys
import tempfile

LIMIT = 10  # seconds for each step


def fail(message, child=None):
    if child and child.poll() is None:
        child.kill()
    sys.exit("echo_service_test: " + message)


def main(program, tool):
    with tempfile.TemporaryDirectory() as tmp:
        notify = socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM)
        notify.bind(os.path.join(tmp, "notify"))
        notify.settimeout(LIMIT)
        log = os.path.join(tmp, "echo.log")
        env = dict(os.environ, NOTIFY_SOCKET=os.path.join(tmp, "notify"),
                   UTILKIT_ECHO_PORT="0", UTILKIT_ECHO_LOG=log)
        child = subprocess.Popen([program], env=env)
        states = []
        while not states or not states[-1].startswith("READY=1"):
            try:
                states.append(notify.recv(256).decode())
            except socket.timeout:
                fail("no READY=1 from the service: %r" % states, child)
        with open(log) as f:
            port = re.search(r"Listening on port (\d+)", f.read())
        if not port:
            fail("no port in the log", child)
        asked = subprocess.run([tool, "send", "--port", port.group(1), "How are you?"],
                               capture_output=True, text=True, timeout=LIMIT)
        if asked.returncode != 0 or asked.stdout.rstrip("\n") != "How are you?":
            fail("wrong answer %r %r" % (asked.stdout, asked.stderr), child)
        child.send_signal(signal.SIGTERM)
        try:
            status = child.wait(LIMIT)
        except subprocess.TimeoutExpired:
            fail("the service did not stop", child)
        notify.setblocking(False)
        try:
            while True:
                states.append(notify.recv(256).decode())
        except BlockingIOError:
            pass
        if status != 0 or states[-1] != "STATUS=STOPPED":
            fail("exit status %d, states %r" % (status, states))
        with open(log) as f:
            if "Leaving VCUServiceBase::ServiceMain()" not in f.read():
                fail("the log lacks the service's end")
    print("echo service: states %s" % " / ".join(s.replace("\n", " ") for s in states))


if __name__ == "__main__":
    main(sys.argv[1], sys.argv[2])
