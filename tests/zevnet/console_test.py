"""zevnet on Windows and its console: Ctrl-C and what else ends it, what a person types.

Run by on_wine.py. IN_CONSOLE starts a program in a console of its own and carries out orders that are
written to a file (in_console.c).
"""

import array
import fcntl
import itertools
import os
import pty
import re
import select
import socket
import subprocess
import termios
import time
import unittest
from pathlib import Path

from processes import PATIENCE
from zevnet_test import Case

# Orders of in_console.c.
CTRL_C, CTRL_BREAK, CLOSE = "c", "b", "x"

FOLDER = Path(os.environ["IN_CONSOLE_FOLDER"])
NUMBERS = itertools.count()

# What Wine has a process end with whose handlers leave Ctrl-C to the system.
ENDED_BY_SYSTEM = 0


def waiting(pipe):
    """How many bytes wait in a pipe."""
    count = array.array("i", [0])
    fcntl.ioctl(pipe, termios.FIONREAD, count)
    return count[0]


class Consoles(Case, unittest.TestCase):
    def in_console(self, *arguments, prefix="", **streams):
        """zevnet in a console of its own."""
        name = f"orders-{next(NUMBERS)}"
        running = self.start(os.environ["IN_CONSOLE"], f"{prefix}C:\\Test\\{name}",
                             os.environ["IN_CONSOLE_PROGRAM"], *arguments, **streams)
        running.orders = FOLDER / name
        return running

    def order(self, running, what):
        with open(running.orders, "a", encoding="ascii") as orders:
            orders.write(what)

    def connected(self, *arguments, **streams):
        listener, port = self.listener()
        zevnet = self.in_console("connect", *arguments, "127.0.0.1", port, **streams)
        connection = self.accept(listener)
        zevnet.line("^connected to")
        return zevnet, connection, port

    def ends_with_totals(self, order, status):
        zevnet, connection, port = self.connected()
        connection.sendall(b"abc")
        self.assertEqual(zevnet.read(3), b"abc")
        zevnet.write(b"input")
        self.assertEqual(connection.recv(10), b"input")
        self.order(zevnet, order)
        self.assertEqual(connection.recv(10), b"")
        zevnet.line(rf"^closed 127\.0\.0\.1 {port}: sent 5 bytes, received 3 bytes$")
        self.assertEqual(zevnet.ends(), (status, b""), zevnet.lines)

    def test_ctrl_c_closes_and_tells_the_totals(self):
        self.ends_with_totals(CTRL_C, 130)

    def test_ctrl_break_closes_and_tells_the_totals(self):
        self.ends_with_totals(CTRL_BREAK, 130)

    def test_the_end_of_the_console_closes_and_tells_the_totals(self):
        self.ends_with_totals(CLOSE, 143)

    def test_ctrl_c_ends_a_listener(self):
        zevnet = self.in_console("listen", 0, "--keep")
        zevnet.line("^listening on")
        self.order(zevnet, CTRL_C)
        self.assertEqual(zevnet.ends(), (130, b""), zevnet.lines)

    def test_ctrl_c_ends_datagrams_with_their_totals(self):
        zevnet = self.in_console("listen", 0, "--udp")
        zevnet.line("^listening on")
        self.order(zevnet, CTRL_C)
        zevnet.line("^closed: sent 0 bytes, received 0 bytes$")
        self.assertEqual(zevnet.ends(), (130, b""), zevnet.lines)

    def test_ctrl_c_ends_it_while_nobody_reads_its_output(self):
        zevnet, connection, port = self.connected()
        connection.sendall(b"x" * 200_000)
        zevnet.read(1)  # by now it writes the rest
        self.order(zevnet, CTRL_C)
        zevnet.line(rf"^closed 127\.0\.0\.1 {port}: sent 0 bytes, received \d+ bytes$")
        self.assertEqual(zevnet.ends()[0], 130, zevnet.lines)

    def test_a_second_ctrl_c_ends_it_on_the_spot(self):
        """Its first one is not carried out while nobody takes what it tells."""
        pipe = self.folder / "errors"
        os.mkfifo(pipe)
        reading = os.open(pipe, os.O_RDONLY | os.O_NONBLOCK)
        self.addCleanup(os.close, reading)
        room = fcntl.fcntl(reading, fcntl.F_SETPIPE_SZ, 4096)
        zevnet = self.start("sh", "-c", 'exec "$@" 2>"$0"', pipe, os.environ["IN_CONSOLE"],
                            "C:\\Test\\orders-twice", os.environ["IN_CONSOLE_PROGRAM"], "listen", 0,
                            "--udp", "--trace")
        zevnet.orders = FOLDER / "orders-twice"
        port = self.port_told(reading)
        with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as sender:
            self.wait_until(lambda: sender.sendto(b"x", ("127.0.0.1", port)) and
                            waiting(reading) > room - 256)
        self.order(zevnet, CTRL_C)
        with self.assertRaises(subprocess.TimeoutExpired):
            zevnet.process.wait(3)
        self.order(zevnet, CTRL_C)
        self.assertEqual(zevnet.ends()[0], ENDED_BY_SYSTEM)

    def wait_until(self, holds):
        end = time.monotonic() + PATIENCE
        while not holds():
            self.assertLess(time.monotonic(), end)
            time.sleep(0.01)

    def port_told(self, reading):
        told = b""
        while not (match := re.search(rb"^listening on 127\.0\.0\.1 (\d+)\n", told, re.MULTILINE)):
            self.wait_until(lambda: waiting(reading) > 0)
            told += os.read(reading, 4096)
        return int(match[1])

    def test_ctrl_c_that_somebody_had_ignored_stays_so(self):
        zevnet, connection, _ = self.connected(prefix="!")
        self.order(zevnet, CTRL_C)
        time.sleep(1)
        connection.sendall(b"late")
        self.assertEqual(zevnet.read(4), b"late")
        connection.close()
        self.assertEqual(zevnet.ends(), (0, b""), zevnet.lines)

    def test_streams_that_it_was_started_without(self):
        listener, port = self.listener()
        zevnet = self.start(os.environ["IN_CONSOLE"], "-", os.environ["IN_CONSOLE_PROGRAM"],
                            "connect", "127.0.0.1", port)
        self.accept(listener).sendall(b"x")
        self.assertEqual(zevnet.ends(), (1, b""))

    def typed(self, *arguments):
        """zevnet on a terminal; the terminal and a connection to it."""
        person, terminal = pty.openpty()
        self.addCleanup(os.close, person)
        termios.tcsetwinsize(terminal, (25, 80))
        listener, port = self.listener()
        zevnet = self.start("setsid", "--ctty", os.environ["ZEVNET"], "connect", *arguments,
                            "127.0.0.1", port, stdin=terminal, stdout=terminal)
        os.close(terminal)
        connection = self.accept(listener)
        zevnet.line("^connected to")
        # The console takes the terminal over later; what is typed before is another key to it.
        self.wait_until(lambda: not termios.tcgetattr(person)[3] & termios.ICANON)
        return zevnet, person, connection

    def test_sends_each_line_that_is_typed(self):
        zevnet, person, connection = self.typed()
        for line in (b"one", b"and two"):
            os.write(person, line + b"\r")
            self.assertEqual(connection.recv(100), line + b"\r\n")
        connection.sendall(b"answer")
        screen = b""
        while b"answer" not in screen:
            self.assertTrue(select.select([person], [], [], PATIENCE)[0], screen)
            screen += os.read(person, 4096)
        connection.close()
        zevnet.line("^the input was not read to its end$")
        self.assertEqual(zevnet.process.wait(PATIENCE), 0)

    def test_ctrl_c_that_is_typed_closes_and_tells_the_totals(self):
        zevnet, person, connection = self.typed("--close")
        os.write(person, b"line\r")
        self.assertEqual(connection.recv(100), b"line\r\n")
        os.write(person, b"\x03")
        self.assertEqual(connection.recv(10), b"")
        zevnet.line(r"^closed 127\.0\.0\.1 \d+: sent 6 bytes, received 0 bytes$")
        self.assertEqual(zevnet.process.wait(PATIENCE), 130)


if __name__ == "__main__":
    unittest.main(verbosity=2)
