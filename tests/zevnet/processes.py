"""Programs that a test starts. Each wait is bounded; each process is ended by its id."""

import os
import queue
import re
import select
import shutil
import signal
import socket
import subprocess
import threading
import time

PATIENCE = 60  # seconds for any one step

# Whoever starts the tests in the background may have them ignore the interrupt, which the programs
# that they start would inherit.
signal.signal(signal.SIGINT, signal.default_int_handler)


def tool(name):
    """The path of a program of others; a test that needs it fails without it."""
    found = shutil.which(name, path=os.environ.get("PATH", "") + ":/usr/sbin")
    assert found, f"{name} is not installed"
    return found


class Running:
    """A process with pipes. What it writes to standard error is kept, line by line."""

    def __init__(self, *command, stdin=subprocess.PIPE, stdout=subprocess.PIPE, environment=None):
        self.process = subprocess.Popen(
            [str(part) for part in command], stdin=stdin, stdout=stdout, stderr=subprocess.PIPE,
            env={**os.environ, **(environment or {})})
        self.lines = []
        self._queue = queue.Queue()
        self._reader = threading.Thread(target=self._read_errors, daemon=True)
        self._reader.start()

    def _read_errors(self):
        for line in self.process.stderr:
            self._queue.put(line.decode(errors="replace").rstrip("\r\n"))
        self._queue.put(None)

    def line(self, pattern):
        """The first line on standard error that matches, as a match; waits for it."""
        end = time.monotonic() + PATIENCE
        while True:
            try:
                line = self._queue.get(timeout=max(0.0, end - time.monotonic()))
            except queue.Empty:
                raise AssertionError(f"no line {pattern!r} in time, only {self.lines}") from None
            if line is None:
                raise AssertionError(f"ended without a line {pattern!r}: {self.lines}")
            self.lines.append(line)
            match = re.search(pattern, line)
            if match:
                return match

    def write(self, data):
        self.process.stdin.write(data)
        self.process.stdin.flush()

    def read(self, count):
        """Exactly that many bytes of standard output, or fewer at its end."""
        output = bytearray()
        while len(output) < count and (piece := self._piece(count - len(output))):
            output += piece
        return bytes(output)

    def _piece(self, most=1 << 20):
        """What comes next on standard output, nothing at its end. However much comes in all, it is
        each piece that is waited for: what takes long goes on."""
        descriptor = self.process.stdout.fileno()
        if not select.select([descriptor], [], [], PATIENCE)[0]:
            raise AssertionError(f"no output in time, only {self.lines} on standard error")
        return os.read(descriptor, min(most, 1 << 20))

    def ends(self):
        """Waits for its end. Exit status, the rest of standard output; `lines` has all errors."""
        output = self._drain()
        status = self.process.wait(timeout=PATIENCE)
        self._reader.join(timeout=PATIENCE)
        while (line := self._queue.get(timeout=PATIENCE)) is not None:
            self.lines.append(line)
        self._queue.put(None)
        return status, output

    def _drain(self):
        if self.process.stdin:
            try:
                self.process.stdin.close()
            except BrokenPipeError:
                pass
        output = bytearray()
        while self.process.stdout and (piece := self._piece()):
            output += piece
        return bytes(output)

    def stop(self):
        if self.process.poll() is None:
            self.process.kill()
        self.process.wait(timeout=PATIENCE)
        self._reader.join(timeout=PATIENCE)
        for stream in (self.process.stdin, self.process.stdout, self.process.stderr):
            try:
                if stream:
                    stream.close()
            except BrokenPipeError:
                pass


def free_port(kind=socket.SOCK_STREAM):
    with socket.socket(socket.AF_INET, kind) as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


def wait_for_port(port, protocol="tcp"):
    """Waits until somebody listens there, without connecting."""
    wanted = {"tcp": "0A", "udp": "07"}[protocol]
    end = time.monotonic() + PATIENCE
    while time.monotonic() < end:
        with open(f"/proc/net/{protocol}", encoding="ascii") as table:
            for row in list(table)[1:]:
                _, local, _, state = row.split()[:4]
                if int(local.rsplit(":", 1)[1], 16) == port and state == wanted:
                    return
        time.sleep(0.02)
    raise AssertionError(f"nobody listens on {protocol} {port}")
