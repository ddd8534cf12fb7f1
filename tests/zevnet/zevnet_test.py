"""zevnet on a network of its own: against curl, nginx, ncat, socat and plain sockets.

Run by tests/network/alone.sh, with the programs in ZEVNET, HTTP_SERVER, DOCUMENT_SERVER and
DOCUMENT_CLIENT.
"""

import hashlib
import os
import signal
import socket
import struct
import subprocess
import tempfile
import time
import unittest
from pathlib import Path

from processes import PATIENCE, Running, free_port, tool, wait_for_port

ZEVNET = os.environ["ZEVNET"]
# Where zevnet is the one of Windows, under Wine (on_wine.py), what is the system's own differs.
WINDOWS = os.environ.get("ZEVNET_SYSTEM") == "windows"
ROUNDS = 3 if WINDOWS else 20  # of what is tried again and again; a start takes long there
LARGE = 100 * 1024 * 1024
MEDIUM = 8 * 1024 * 1024


def not_on_windows(why):
    return unittest.skipIf(WINDOWS, why)


def digest(data):
    return hashlib.sha256(data).hexdigest()


def processor_time(running):
    """Hundredths of a second."""
    fields = Path(f"/proc/{running.process.pid}/stat").read_text().rsplit(")", 1)[1].split()
    return int(fields[11]) + int(fields[12])


class Case:
    """What every class has: a folder, and processes that end with the case."""

    def setUp(self):
        holder = tempfile.TemporaryDirectory()
        self.addCleanup(holder.cleanup)
        self.folder = Path(holder.name)

    def start(self, *command, **streams):
        running = Running(*command, **streams)
        self.addCleanup(running.stop)
        return running

    def zevnet(self, *arguments, **streams):
        return self.start(ZEVNET, *arguments, **streams)

    def listening(self, *arguments, **streams):
        """zevnet listening on a port of the system's choice, and the port."""
        running = self.zevnet("listen", 0, *arguments, **streams)
        return running, int(running.line(r"^listening on 127\.0\.0\.1 (\d+)$")[1])

    def random_file(self, size):
        path = self.folder / f"random-{size}"
        path.write_bytes(os.urandom(size))
        return path

    def open(self, path):
        file = open(path, "rb")
        self.addCleanup(file.close)
        return file

    def listener(self):
        """A plain listening socket, and its port."""
        plain = socket.create_server(("127.0.0.1", 0))
        plain.settimeout(PATIENCE)
        self.addCleanup(plain.close)
        return plain, plain.getsockname()[1]

    def accept(self, listener):
        connection, _ = listener.accept()
        connection.settimeout(PATIENCE)
        self.addCleanup(connection.close)
        return connection

    def assert_sent(self, data, received):
        self.assertEqual((len(received), digest(received)), (len(data), digest(data)))


class Http(Case, unittest.TestCase):
    NGINX = """
daemon off; master_process off; pid {folder}/pid; error_log stderr;
events {{ worker_connections 16; }}
http {{
  access_log off; client_body_temp_path {folder}/body; proxy_temp_path {folder}/proxy;
  fastcgi_temp_path {folder}/fastcgi; uwsgi_temp_path {folder}/uwsgi; scgi_temp_path {folder}/scgi;
  server {{ listen 127.0.0.1:{port}; root {folder}/www; }}
}}
"""

    def test_fetches_a_large_file_from_nginx(self):
        data = os.urandom(LARGE)
        (self.folder / "www").mkdir()
        (self.folder / "www" / "file").write_bytes(data)
        port = free_port()
        settings = self.folder / "nginx.conf"
        settings.write_text(self.NGINX.format(folder=self.folder, port=port))
        self.start(tool("nginx"), "-e", "stderr", "-p", self.folder, "-c", settings)
        wait_for_port(port)
        client = self.zevnet("connect", "127.0.0.1", port)
        client.write(b"GET /file HTTP/1.0\r\nHost: localhost\r\n\r\n")
        status, answer = client.ends()
        head, _, body = answer.partition(b"\r\n\r\n")
        self.assertEqual(status, 0, client.lines)
        self.assertTrue(head.startswith(b"HTTP/1.1 200 OK"), head)
        self.assert_sent(data, body)

    def fetch(self, port, name):
        target = self.folder / name
        fetching = self.start(tool("curl"), "--silent", "--show-error", "--fail", "--max-time",
                              PATIENCE, "--output", target, f"http://127.0.0.1:{port}/file")
        return fetching, target

    def serve(self, path):
        server = self.start(os.environ["HTTP_SERVER"], path)
        return int(server.process.stdout.readline())

    @not_on_windows("its server is another program")
    def test_serves_a_large_file_to_curl(self):
        path = self.random_file(LARGE)
        fetching, target = self.fetch(self.serve(path), "fetched")
        self.assertEqual(fetching.ends()[0], 0, fetching.lines)
        self.assert_sent(path.read_bytes(), target.read_bytes())

    @not_on_windows("its server is another program")
    def test_serves_several_at_once(self):
        path = self.random_file(MEDIUM)
        port = self.serve(path)
        for fetching, target in [self.fetch(port, f"fetched-{i}") for i in range(5)]:
            self.assertEqual(fetching.ends()[0], 0, fetching.lines)
            self.assert_sent(path.read_bytes(), target.read_bytes())


class Streams(Case, unittest.TestCase):
    """Whole files in each direction, with either side listening. No peer closes its own direction
    before it has what it waits for, since that ends both of zevnet's."""

    def peer(self, name, role, port):
        """The command of a peer: it listens or connects, and sends or receives."""
        commands = {
            "ncat listens receives": f"ncat -l --no-shutdown 127.0.0.1 {port}",
            "ncat listens sends": f"ncat -l --send-only 127.0.0.1 {port}",
            "ncat connects receives": f"ncat --recv-only 127.0.0.1 {port}",
            "ncat connects sends": f"ncat --send-only 127.0.0.1 {port}",
            "socat listens receives": f"socat -u TCP-LISTEN:{port},bind=127.0.0.1 STDOUT",
            "socat listens sends": f"socat -u STDIN TCP-LISTEN:{port},bind=127.0.0.1",
            "socat connects receives": f"socat -u TCP:127.0.0.1:{port} STDOUT",
            "socat connects sends": f"socat -u STDIN TCP:127.0.0.1:{port}",
        }
        program, *arguments = commands[f"{name} {role}"].split()
        return [tool(program), *arguments]

    def check(self, zevnet, receiver, path):
        """The receiver gets the file; zevnet ends well."""
        status, received = receiver.ends()
        self.assertEqual(status, 0, receiver.lines)
        if receiver is not zevnet:
            self.assertEqual(zevnet.ends()[0], 0, zevnet.lines)
        self.assert_sent(path.read_bytes(), received)

    def to_listening_peer(self, name):
        path, port = self.random_file(MEDIUM), free_port()
        peer = self.start(*self.peer(name, "listens receives", port))
        wait_for_port(port)
        zevnet = self.zevnet("connect", "--close", "127.0.0.1", port, stdin=self.open(path))
        self.check(zevnet, peer, path)
        self.assertIn(f"closed 127.0.0.1 {port}: sent {MEDIUM} bytes, received 0 bytes",
                      zevnet.lines)

    def from_listening_peer(self, name):
        path, port = self.random_file(MEDIUM), free_port()
        self.start(*self.peer(name, "listens sends", port), stdin=self.open(path))
        wait_for_port(port)
        zevnet = self.zevnet("connect", "127.0.0.1", port, stdin=subprocess.DEVNULL)
        self.check(zevnet, zevnet, path)
        self.assertIn(f"closed 127.0.0.1 {port}: sent 0 bytes, received {MEDIUM} bytes",
                      zevnet.lines)

    def to_connecting_peer(self, name):
        path = self.random_file(MEDIUM)
        zevnet, port = self.listening("--close", stdin=self.open(path))
        peer = self.start(*self.peer(name, "connects receives", port), stdin=subprocess.DEVNULL)
        self.check(zevnet, peer, path)

    def from_connecting_peer(self, name):
        path = self.random_file(MEDIUM)
        zevnet, port = self.listening(stdin=subprocess.DEVNULL)
        self.start(*self.peer(name, "connects sends", port), stdin=self.open(path))
        self.check(zevnet, zevnet, path)

    def test_to_a_listening_ncat(self):
        self.to_listening_peer("ncat")

    def test_to_a_listening_socat(self):
        self.to_listening_peer("socat")

    def test_from_a_listening_ncat(self):
        self.from_listening_peer("ncat")

    def test_from_a_listening_socat(self):
        self.from_listening_peer("socat")

    def test_to_a_connecting_ncat(self):
        self.to_connecting_peer("ncat")

    def test_to_a_connecting_socat(self):
        self.to_connecting_peer("socat")

    def test_from_a_connecting_ncat(self):
        self.from_connecting_peer("ncat")

    def test_from_a_connecting_socat(self):
        self.from_connecting_peer("socat")

    def test_both_ways_at_once(self):
        path, port = self.random_file(MEDIUM), free_port()
        # Pieces that a pipe takes whole once it takes anything: socat must not wait for itself.
        peer = self.start(tool("socat"), "-b", 4096, f"TCP-LISTEN:{port},bind=127.0.0.1", "PIPE",
                          stdin=subprocess.DEVNULL)
        wait_for_port(port)
        zevnet = self.zevnet("connect", "localhost", port, stdin=self.open(path))
        self.assert_sent(path.read_bytes(), zevnet.read(MEDIUM))
        peer.stop()
        self.assertEqual(zevnet.ends(), (0, b""), zevnet.lines)


class Datagrams(Case, unittest.TestCase):
    """Pieces of several sizes there and back, each one when the one before has arrived."""

    SIZES = [1, 2, 100, 1400, 4096, 8000]

    def exchange(self, first, second):
        there, back, sent = b"", b"", b""
        for size in self.SIZES * 5:
            piece = os.urandom(size)
            sent += piece
            first.write(piece)
            there += second.read(size)
            second.write(piece)
            back += first.read(size)
        self.assert_sent(sent, there)
        self.assert_sent(sent, back)
        return sent

    def with_listening_peer(self, *command, port):
        peer = self.start(*command)
        wait_for_port(port, "udp")
        zevnet = self.zevnet("connect", "--udp", "localhost", port)
        zevnet.line(rf"^sending to localhost {port} from 127\.0\.0\.1 \d+$")
        self.exchange(zevnet, peer)

    def with_connecting_peer(self, *command):
        zevnet, port = self.listening("--udp", "--close")
        peer = self.start(*[str(part).format(port=port) for part in command])
        sent = self.exchange(peer, zevnet)
        self.assertEqual(zevnet.ends()[0], 0, zevnet.lines)
        self.assertIn(f"closed: sent {len(sent)} bytes, received {len(sent)} bytes", zevnet.lines)

    def plain(self):
        """A plain socket for datagrams."""
        plain = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
        self.addCleanup(plain.close)
        plain.settimeout(PATIENCE)
        plain.bind(("127.0.0.1", 0))
        return plain

    def test_sends_to_its_receiver_whoever_has_written(self):
        receiver, stranger = self.plain(), self.plain()
        zevnet = self.zevnet("connect", "--udp", "127.0.0.1", receiver.getsockname()[1])
        zevnet.write(b"one")
        piece, sender = receiver.recvfrom(100)
        self.assertEqual(piece, b"one")
        stranger.sendto(b"strange", sender)
        self.assertEqual(zevnet.read(7), b"strange")
        zevnet.write(b"two")
        self.assertEqual(receiver.recvfrom(100)[0], b"two")

    def test_with_a_listening_ncat(self):
        port = free_port(socket.SOCK_DGRAM)
        self.with_listening_peer(tool("ncat"), "-u", "-l", "127.0.0.1", port, port=port)

    def test_with_a_listening_socat(self):
        port = free_port(socket.SOCK_DGRAM)
        self.with_listening_peer(tool("socat"), "-", f"UDP-LISTEN:{port},bind=127.0.0.1",
                                 port=port)

    def test_with_a_connecting_ncat(self):
        self.with_connecting_peer(tool("ncat"), "-u", "127.0.0.1", "{port}")

    def test_with_a_connecting_socat(self):
        self.with_connecting_peer(tool("socat"), "-", "UDP:127.0.0.1:{port}")

    def test_answers_whoever_sent_last(self):
        zevnet, port = self.listening("--udp")
        senders = [self.start(tool("socat"), "-", f"UDP:127.0.0.1:{port}") for _ in range(2)]
        for sender in senders + senders:
            sender.write(b"question")
            self.assertEqual(zevnet.read(8), b"question")
            zevnet.write(b"answer")
            self.assertEqual(sender.read(6), b"answer")

    def test_ends_when_nothing_comes(self):
        zevnet, _ = self.listening("--udp", "--idle", 0.3, stdin=subprocess.DEVNULL)
        self.assertEqual(zevnet.ends(), (0, b""), zevnet.lines)

    def test_takes_what_came_in_one_burst(self):
        zevnet, port = self.listening("--udp")
        with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as sender:
            # Nothing is dispatched while the process is stopped.
            os.kill(zevnet.process.pid, 19)
            for i in range(50):
                sender.sendto(b"%03d" % i, ("127.0.0.1", port))
            os.kill(zevnet.process.pid, 18)
        self.assertEqual(zevnet.read(150), b"".join(b"%03d" % i for i in range(50)))


class Failures(Case, unittest.TestCase):
    def assert_fails(self, running, line, on_windows=None):
        """Ends with 1 and tells the line; the numbers of streams are the system's own."""
        status, _ = running.ends()
        self.assertEqual(status, 1, running.lines)
        if WINDOWS and on_windows:
            self.assertRegex("\n".join(running.lines), f"(?m){on_windows}")
        else:
            self.assertIn(line, running.lines)

    def test_a_refused_port(self):
        self.assert_fails(self.zevnet("connect", "127.0.0.1", free_port()),
                          "10061: Connection refused. (CEventSocket.PostSocket)")

    def test_an_unknown_host(self):
        self.assert_fails(self.zevnet("connect", "nobody.invalid", 80),
                          "11001: Host not found. (CEventSocket.ConnectToIP)")

    def test_an_unknown_host_of_datagrams(self):
        zevnet = self.zevnet("connect", "--udp", "nobody.invalid", 80)
        zevnet.write(b"x")
        self.assert_fails(zevnet, "40014: Invalid argument (CEventSocket.SendBufferedDataUDP)")

    @not_on_windows("Wine takes that address for the machine's own")
    def test_an_address_that_is_none_for_connecting(self):
        self.assert_fails(
            self.zevnet("connect", "0.0.0.0", 80),
            "10049: Cannot assign requested address. (CEventSocket.ConnectToIP)")

    def test_a_port_in_use(self):
        _, port = self.listener()
        self.assert_fails(self.zevnet("listen", port),
                          "10048: Address already in use. (CEventSocket.BindInternal)")

    def test_a_port_of_datagrams_in_use(self):
        _, port = self.listening("--udp")
        self.assert_fails(self.zevnet("listen", "--udp", port),
                          "10048: Address already in use. (CEventSocket.BindInternal)")

    def test_an_address_of_another_machine(self):
        self.assert_fails(self.zevnet("listen", 0, "--bind", "192.0.2.1"),
                          "10049: Cannot assign requested address. (CEventSocket.BindInternal)")

    @not_on_windows("Wine tells of a reset as of an end")
    def test_a_peer_that_resets(self):
        listener, port = self.listener()
        zevnet = self.zevnet("connect", "127.0.0.1", port)
        connection = self.accept(listener)
        zevnet.line("^connected to")
        connection.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, struct.pack("ii", 1, 0))
        connection.close()
        self.assert_fails(zevnet, "10054: Connection reset by peer. (CEventSocket.PostSocket)")

    def test_a_peer_that_closes_before_it_has_read_everything(self):
        listener, port = self.listener()
        zevnet = self.zevnet("connect", "127.0.0.1", port, stdin=self.open("/dev/zero"))
        connection = self.accept(listener)
        time.sleep(1)  # until both sides of the system are full
        connection.shutdown(socket.SHUT_WR)
        self.assertEqual(zevnet.ends()[0], 1, zevnet.lines)
        self.assertRegex("\n".join(zevnet.lines), r"(?m)^10053: \d+ bytes were not sent\. \(zevnet\)$")

    def test_a_peer_that_closes_before_the_end_of_the_input_is_told(self):
        listener, port = self.listener()
        zevnet = self.zevnet("connect", "127.0.0.1", port)
        connection = self.accept(listener)
        zevnet.line("^connected to")
        connection.close()
        zevnet.line("^the input was not read to its end$")
        self.assertEqual(zevnet.ends(), (0, b""))

    def test_a_closed_standard_output(self):
        listener, port = self.listener()
        reading, writing = os.pipe()
        zevnet = self.zevnet("connect", "127.0.0.1", port, stdout=writing)
        os.close(writing)
        os.close(reading)
        self.accept(listener).sendall(b"x")
        self.assert_fails(zevnet, "32: Broken pipe (standard output)",
                          r"^(109|232|233): .* \(standard output\)$")

    def test_a_standard_input_that_cannot_be_read(self):
        listener, port = self.listener()
        folder = os.open("/", os.O_RDONLY)
        self.addCleanup(os.close, folder)
        zevnet = self.zevnet("connect", "127.0.0.1", port, stdin=folder)
        self.accept(listener)
        self.assert_fails(zevnet, "21: Is a directory (standard input)",
                          r"^\d+: .* \(standard input\)$")

    @not_on_windows("Wine itself needs more files")
    def test_too_few_files(self):
        # A sanitizer looks at memory through a pipe, and takes an object for none if it gets none.
        with tempfile.NamedTemporaryFile("w", suffix=".supp") as rules:
            rules.write("vptr:*\n")
            rules.flush()
            zevnet = self.start("sh", "-c", 'ulimit -n 4 && exec env "$1" "$0" listen 0', ZEVNET,
                                f"UBSAN_OPTIONS=suppressions={rules.name}")
            zevnet.process.wait(10)
        self.assert_fails(zevnet, "zevnet: eventfd: Too many open files")

    @not_on_windows("Wine opens them")
    def test_streams_that_were_never_open(self):
        listener, port = self.listener()
        zevnet = self.start("sh", "-c", 'exec "$0" connect 127.0.0.1 "$1" <&- >&-', ZEVNET, port)
        self.accept(listener).sendall(b"x")
        self.assert_fails(zevnet, "9: Bad file descriptor (standard output)")

    def test_wrong_use(self):
        for arguments in ([], ["connect"], ["connect", "localhost"], ["listen"],
                          ["connect", "localhost", "0"], ["connect", "localhost", "65536"],
                          ["connect", "localhost", "http"], ["listen", "-1"], ["listen", "65536"],
                          ["connect", "localhost", "80", "--keep"], ["listen", "0", "--idle", "x"],
                          ["listen", "0", "--nothing"], ["speak"]):
            with self.subTest(arguments):
                zevnet = self.zevnet(*arguments)
                self.assertEqual(zevnet.ends(), (2, b""), zevnet.lines)
                self.assertTrue(zevnet.lines)

    def test_a_word_that_is_no_command_is_named(self):
        zevnet = self.zevnet("speak", "localhost", "80")
        self.assertEqual(zevnet.ends(), (2, b""))
        self.assertIn("speak", " ".join(zevnet.lines))

    def test_what_cannot_be_written_is_a_failure(self):
        listener, port = self.listener()
        zevnet = self.start("sh", "-c", 'exec "$0" connect 127.0.0.1 "$1" >/dev/full', ZEVNET, port)
        self.accept(listener).sendall(b"x")
        self.assert_fails(zevnet, "28: No space left on device (standard output)",
                          r"^112: .* \(standard output\)$")
        for arguments in (["--help"], ["connect", "--help"]):
            zevnet = self.start("sh", "-c", 'exec "$0" "$@" >/dev/full', ZEVNET, *arguments)
            self.assert_fails(zevnet, "zevnet: cannot write to standard output")

    def test_help_is_no_failure(self):
        status, text = self.zevnet("connect", "--help").ends()
        self.assertEqual(status, 0)
        self.assertIn(b"--close", text)


class Listening(Case, unittest.TestCase):
    def call(self, port):
        connection = socket.create_connection(("127.0.0.1", port), timeout=PATIENCE)
        self.addCleanup(connection.close)
        return connection

    def test_takes_one_connection_and_ends_with_it(self):
        zevnet, port = self.listening()
        connection = self.call(port)
        zevnet.line(r"^connected from 127\.0\.0\.1 \d+$")
        with self.assertRaises(ConnectionRefusedError):
            self.call(port)
        connection.sendall(b"all")
        connection.close()
        zevnet.line(r"^closed 127\.0\.0\.1 \d+: sent 0 bytes, received 3 bytes$")
        self.assertEqual(zevnet.ends(), (0, b"all"), zevnet.lines)

    def test_keeps_on_one_after_the_other(self):
        zevnet, port = self.listening("--keep")
        for i in range(3):
            connection = self.call(port)
            connection.sendall(b"call %d" % i)
            connection.close()
            self.assertEqual(zevnet.read(6), b"call %d" % i)
            zevnet.line(r"^closed 127\.0\.0\.1 \d+: sent 0 bytes, received 6 bytes$")
        self.assertIsNone(zevnet.process.poll())

    def test_keeps_several_at_once(self):
        zevnet, port = self.listening("--keep")
        connections = [self.call(port) for _ in range(3)]
        for _ in connections:
            zevnet.line("^connected from")
        zevnet.write(b"to all")
        for connection in connections:
            self.assertEqual(connection.recv(100), b"to all")
        for i, connection in reversed(list(enumerate(connections))):
            connection.sendall(b"%d" % i)
            self.assertEqual(zevnet.read(1), b"%d" % i)

    @not_on_windows("Wine tells of a reset as of an end")
    def test_keeps_on_behind_a_failed_connection(self):
        zevnet, port = self.listening("--keep", "--idle", 5)
        connection = self.call(port)
        zevnet.line("^connected from")
        connection.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, struct.pack("ii", 1, 0))
        connection.close()
        zevnet.line("^10054: ")
        self.call(port).sendall(b"next")
        self.assertEqual(zevnet.read(4), b"next")
        self.assertEqual(zevnet.ends()[0], 1, "an error was told")

    def test_leaves_the_input_to_the_first_connection(self):
        zevnet, port = self.listening("--close")
        zevnet.write(b"early")
        zevnet.process.stdin.close()
        connection = self.call(port)
        self.assertEqual(connection.recv(100), b"early")
        self.assertEqual(connection.recv(100), b"")

    def test_closes_all_connections_behind_the_input(self):
        zevnet, port = self.listening("--keep", "--close")
        connections = [self.call(port) for _ in range(3)]
        for _ in connections:
            zevnet.line("^connected from")
        zevnet.write(b"last")
        zevnet.process.stdin.close()
        for connection in connections:
            self.assertEqual(connection.recv(100), b"last")
            self.assertEqual(connection.recv(100), b"")

    def test_goes_on_reading_behind_the_end_of_the_input(self):
        zevnet, port = self.listening(stdin=subprocess.DEVNULL)
        connection = self.call(port)
        zevnet.line("^connected from")
        for _ in range(3):
            time.sleep(0.1)
            connection.sendall(b"late")
            self.assertEqual(zevnet.read(4), b"late")
        connection.close()
        self.assertEqual(zevnet.ends()[0], 0)

    def test_refuses_a_port_that_it_listens_on(self):
        _, port = self.listening("--keep")
        second = self.zevnet("listen", port)
        self.assertEqual(second.ends()[0], 1)
        self.assertIn("10048: Address already in use. (CEventSocket.BindInternal)", second.lines)


class WholeInput(Case, unittest.TestCase):
    """All that was to go out has gone out, or it is an error that says how much has not."""

    DATA = os.urandom(300_000)

    def file(self):
        path = self.folder / "input"
        path.write_bytes(self.DATA)
        return self.open(path)

    def loses(self, zevnet, number):
        status, _ = zevnet.ends()
        self.assertEqual(status, 1, zevnet.lines)
        self.assertIn(f"10053: {number} bytes were not sent. (zevnet)", zevnet.lines)

    def half_closed(self, *arguments, **streams):
        """zevnet connected to a receiver that has closed its own direction, before any input."""
        listener, port = self.listener()
        zevnet = self.zevnet("connect", *arguments, "127.0.0.1", port, **streams)
        connection = self.accept(listener)
        zevnet.line("^connected to")
        return zevnet, connection

    def test_a_receiver_that_half_closes_before_a_piped_input(self):
        for arguments in (["--close"], []):
            with self.subTest(arguments):
                zevnet, connection = self.half_closed(*arguments)
                os.kill(zevnet.process.pid, 19)
                connection.shutdown(socket.SHUT_WR)
                zevnet.write(b"x" * 5000)
                zevnet.process.stdin.close()  # before it can look whether the input has ended
                os.kill(zevnet.process.pid, 18)
                status, _ = zevnet.ends()
                received = b""
                while piece := connection.recv(65536):
                    received += piece
                told = [line for line in zevnet.lines if line.endswith("were not sent. (zevnet)")]
                lost = int(told[0].split()[1]) if told else 0
                self.assertEqual((status, len(received) + lost), (1 if lost else 0, 5000),
                                 zevnet.lines)

    def test_a_receiver_that_half_closes_at_once(self):
        """Whatever has reached it and what is told to be lost are the whole."""
        for _ in range(ROUNDS):
            listener, port = self.listener()
            zevnet = self.zevnet("connect", "--close", "127.0.0.1", port, stdin=self.file())
            connection = self.accept(listener)
            connection.shutdown(socket.SHUT_WR)
            received = 0
            while piece := connection.recv(65536):
                received += len(piece)
            if received == len(self.DATA):
                self.assertEqual(zevnet.ends()[0], 0, zevnet.lines)
            else:
                self.loses(zevnet, len(self.DATA) - received)

    def test_a_receiver_that_half_closes_while_the_rest_of_a_file_waits(self):
        path = self.random_file(MEDIUM)
        zevnet, connection = self.half_closed("--close", stdin=self.open(path))
        time.sleep(0.5)  # until both sides of the system are full
        connection.shutdown(socket.SHUT_WR)
        received = 0
        while piece := connection.recv(65536):
            received += len(piece)
        self.assertLess(received, MEDIUM)
        self.loses(zevnet, MEDIUM - received)

    def test_an_input_that_goes_on(self):
        zevnet, connection = self.half_closed("--close")
        connection.shutdown(socket.SHUT_WR)
        zevnet.line(r"^10053: The input was not read to its end\. \(zevnet\)$")
        self.assertEqual(zevnet.ends()[0], 1)

    def received(self, connection):
        """Everything until the end."""
        whole = b""
        while piece := connection.recv(65536):
            whole += piece
        return whole

    def answering(self, *arguments):
        """zevnet that has sent its whole answer to a caller, and the caller."""
        zevnet, port = self.listening("--close", "--trace", *arguments, stdin=self.file())
        caller = socket.create_connection(("127.0.0.1", port), timeout=PATIENCE)
        self.addCleanup(caller.close)
        sent = 0
        while sent < len(self.DATA):
            sent += int(zevnet.line(r"^OK Bytes sent: (\d+)$")[1])
        time.sleep(0.05)
        return zevnet, caller

    def test_an_answer_to_who_asks_when_it_is_sent(self):
        """What comes late costs the caller nothing of the answer, and is printed."""
        for _ in range(ROUNDS):
            zevnet, caller = self.answering()
            caller.sendall(b"late request")
            time.sleep(0.05)
            caller.shutdown(socket.SHUT_WR)
            self.assert_sent(self.DATA, self.received(caller))
            self.assertEqual(zevnet.ends(), (0, b"late request"), zevnet.lines)

    def test_an_answer_to_who_half_closes_when_it_is_sent(self):
        zevnet, caller = self.answering()
        caller.shutdown(socket.SHUT_WR)
        self.assert_sent(self.DATA, self.received(caller))
        self.assertEqual(zevnet.ends(), (0, b""), zevnet.lines)

    def test_an_answer_to_who_says_more_behind_it(self):
        zevnet, caller = self.answering()
        self.assert_sent(self.DATA, self.received(caller))
        for _ in range(3):
            caller.sendall(b"more")
            self.assertEqual(zevnet.read(4), b"more")
        caller.close()
        self.assertEqual(zevnet.ends(), (0, b""), zevnet.lines)

    def test_a_peer_that_does_not_close_behind_the_input(self):
        zevnet, caller = self.answering("--timeout", 1)
        self.assert_sent(self.DATA, self.received(caller))
        self.assertEqual(zevnet.ends()[0], 1)
        self.assertIn("10060: Connection timed out. (zevnet)", zevnet.lines)

    def test_an_answer_to_who_half_closes_behind_its_request(self):
        """The request is there before the answer begins."""
        for _ in range(ROUNDS):
            zevnet, port = self.listening("--close", stdin=self.file())
            zevnet.process.send_signal(signal.SIGSTOP)
            with socket.create_connection(("127.0.0.1", port), timeout=PATIENCE) as caller:
                answer = b""
                caller.sendall(b"request")
                caller.shutdown(socket.SHUT_WR)
                zevnet.process.send_signal(signal.SIGCONT)
                try:
                    while piece := caller.recv(65536):
                        answer += piece
                except ConnectionResetError:
                    pass
            status, _ = zevnet.ends()
            if status == 0:
                self.assert_sent(self.DATA, answer)
            else:
                self.assertRegex("\n".join(zevnet.lines), r"(?m)^10053: \d+ bytes were not sent\.")


class Ends(Case, unittest.TestCase):
    """Time limits and signals."""

    def test_a_connection_that_never_comes_about(self):
        begin = time.monotonic()
        zevnet = self.zevnet("connect", "--timeout", 0.5, "1.0.0.0", 80)
        self.assertEqual(zevnet.ends(), (1, b""))
        self.assertIn("10060: Connection timed out. (zevnet)", zevnet.lines)
        self.assertLess(time.monotonic() - begin, PATIENCE if WINDOWS else 10)

    def test_the_limit_is_of_the_connecting_alone(self):
        limit = 5 if WINDOWS else 1
        listener, port = self.listener()
        zevnet = self.zevnet("connect", "--timeout", limit, "127.0.0.1", port)
        connection = self.accept(listener)
        zevnet.line("^connected to")
        time.sleep(limit + 0.5)
        connection.sendall(b"late")
        self.assertEqual(zevnet.read(4), b"late")
        connection.close()
        self.assertEqual(zevnet.ends()[0], 0)

    def test_the_usual_limit_is_told(self):
        self.assertRegex(self.zevnet("connect", "--help").ends()[1], rb"--timeout .*=30")

    @not_on_windows("there a console has them: console_test.py")
    def test_a_signal_closes_and_tells_the_totals(self):
        for signal, status in ((2, 130), (15, 143)):
            with self.subTest(signal):
                listener, port = self.listener()
                zevnet = self.zevnet("connect", "127.0.0.1", port)
                connection = self.accept(listener)
                zevnet.line("^connected to")
                connection.sendall(b"abc")
                self.assertEqual(zevnet.read(3), b"abc")
                zevnet.process.send_signal(signal)
                self.assertEqual(connection.recv(10), b"")
                zevnet.line(rf"^closed 127\.0\.0\.1 {port}: sent 0 bytes, received 3 bytes$")
                self.assertEqual(zevnet.ends()[0], status)

    @not_on_windows("there a console has them: console_test.py")
    def test_a_signal_ends_a_listener(self):
        zevnet, _ = self.listening("--keep")
        zevnet.process.send_signal(15)
        self.assertEqual(zevnet.ends()[0], 143)

    @not_on_windows("there a console has them: console_test.py")
    def test_a_signal_ends_datagrams_with_their_totals(self):
        zevnet, _ = self.listening("--udp")
        zevnet.process.send_signal(2)
        zevnet.line("^closed: sent 0 bytes, received 0 bytes$")
        self.assertEqual(zevnet.ends()[0], 130)

    @not_on_windows("there a console has them: console_test.py")
    def test_a_signal_ends_it_while_nobody_reads_its_output(self):
        zevnet, port = self.listening()
        with socket.create_connection(("127.0.0.1", port), timeout=PATIENCE) as connection:
            connection.sendall(b"x" * 200_000)
            time.sleep(0.3)
            zevnet.process.send_signal(15)
            zevnet.line(r"^closed 127\.0\.0\.1 \d+: sent 0 bytes, received \d+ bytes$")
        self.assertEqual(zevnet.ends()[0], 143)

    @not_on_windows("there a console has them: console_test.py")
    def test_a_signal_that_somebody_had_ignored_stays_so(self):
        zevnet = self.start("sh", "-c", 'trap "" INT; exec "$0" listen 0 --idle 1', ZEVNET)
        zevnet.line("^listening on")
        zevnet.process.send_signal(2)
        self.assertEqual(zevnet.ends()[0], 0)


class FewFiles(Case, unittest.TestCase):
    """More callers than the process may have files."""

    def test_a_listener_rests_and_then_takes_all_who_wait(self):
        zevnet = self.start("sh", "-c", 'ulimit -n 64 && exec "$0" listen 0 --keep --trace', ZEVNET)
        port = int(zevnet.line(r"^listening on 127\.0\.0\.1 (\d+)$")[1])
        callers = []
        for _ in range(80):
            callers.append(socket.create_connection(("127.0.0.1", port), timeout=PATIENCE))
            self.addCleanup(callers[-1].close)
        zevnet.line("^ERROR trying to accept: Too many open files\\.$")
        before = processor_time(zevnet)
        time.sleep(1)
        self.assertLess(processor_time(zevnet) - before, 3)
        for caller in callers[:40]:
            caller.close()
        for number, caller in enumerate(callers[40:]):
            caller.sendall(b"%02d" % number)
        received = b"".join(sorted(zevnet.read(2) for _ in range(40)))
        self.assertEqual(received, b"".join(b"%02d" % number for number in range(40)))
        zevnet.stop()
        while line := zevnet._queue.get(timeout=PATIENCE):
            zevnet.lines.append(line)
        # Once for the rest, and once for each caller that another one's end has let in.
        told = sum(line.startswith("ERROR trying to accept: ") for line in zevnet.lines)
        self.assertLessEqual(told, 41)


class Tracing(Case, unittest.TestCase):
    def test_tells_the_steps_in_their_order(self):
        listener, port = self.listener()
        zevnet = self.zevnet("connect", "--trace", "--close", "localhost", port)
        zevnet.write(b"12345")
        zevnet.process.stdin.close()
        connection = self.accept(listener)
        self.assertEqual(connection.recv(100), b"12345")
        self.assertEqual(connection.recv(100), b"")
        connection.close()
        self.assertEqual(zevnet.ends()[0], 0, zevnet.lines)
        steps = iter(zevnet.lines)
        for step in (f"connecting to localhost {port}", "OK Created socket: ",
                     "STATE: sckResolvingHost", "Resolving host localhost with handle ",
                     "STATE: sckHostResolved", "OK Bind HOST: 127.0.0.1 PORT: 0",
                     "OK Connecting to: localhost", "STATE: sckConnecting", "FD_CONNECT ",
                     "STATE: sckConnected", f"connected to 127.0.0.1 {port}",
                     "OK Bytes sent: 5", "OK Finished SENDING", "STATE: sckClosing",
                     "OK Destroyed socket ", "STATE: sckClosed",
                     f"closed 127.0.0.1 {port}: sent 5 bytes, received 0 bytes"):
            self.assertTrue(any(line.startswith(step) for line in steps),
                            f"{step!r} is not there, or too early: {zevnet.lines}")

    def test_is_silent_without_being_asked(self):
        listener, port = self.listener()
        zevnet = self.zevnet("connect", "--close", "localhost", port, stdin=subprocess.DEVNULL)
        connection = self.accept(listener)
        self.assertEqual(connection.recv(100), b"")
        connection.close()
        self.assertEqual(zevnet.ends()[0], 0)
        self.assertEqual(zevnet.lines, [
            f"connecting to localhost {port}", f"connected to 127.0.0.1 {port}",
            f"closed 127.0.0.1 {port}: sent 0 bytes, received 0 bytes"])


class Pressure(Case, unittest.TestCase):
    """Nobody holds more than the system's own buffers while the other side is slow."""

    MOST = 48 * 1024 * 1024  # far above the buffers of the system, far below what is offered

    def fill(self, write):
        """Writes until no more is taken for a second; how much that was."""
        taken, since = 0, time.monotonic()
        while taken < LARGE and time.monotonic() - since < 1:
            try:
                taken += write(b"\xa5" * 65536)
                since = time.monotonic()
            except BlockingIOError:
                time.sleep(0.01)
        return taken

    def test_leaves_the_input_unread_while_the_peer_does_not_read(self):
        listener, port = self.listener()
        zevnet = self.zevnet("connect", "--close", "127.0.0.1", port)
        connection = self.accept(listener)
        zevnet.line("^connected to")
        pipe = zevnet.process.stdin.fileno()
        os.set_blocking(pipe, False)
        taken = self.fill(lambda piece: os.write(pipe, piece))
        self.assertLess(taken, self.MOST)
        self.assertGreater(taken, 0)
        zevnet.process.stdin.close()
        received = 0
        while piece := connection.recv(1 << 20):
            self.assertEqual(piece.count(b"\xa5"), len(piece))
            received += len(piece)
        self.assertEqual(received, taken)
        connection.close()
        self.assertEqual(zevnet.ends()[0], 0)

    def test_takes_no_more_while_the_output_is_not_read(self):
        zevnet, port = self.listening(stdin=subprocess.DEVNULL)
        with socket.create_connection(("127.0.0.1", port), timeout=PATIENCE) as connection:
            connection.setblocking(False)
            taken = self.fill(connection.send)
            self.assertLess(taken, self.MOST)
            connection.setblocking(True)
        status, output = zevnet.ends()
        self.assertEqual((status, len(output)), (0, taken))

    def test_does_not_spin_while_it_waits(self):
        listener, port = self.listener()
        zevnet = self.zevnet("connect", "127.0.0.1", port, stdin=subprocess.DEVNULL)
        self.accept(listener)
        zevnet.line("^connected to")
        time.sleep(0.5)
        before = processor_time(zevnet)
        time.sleep(1)
        self.assertLess(processor_time(zevnet) - before, 20)


class Documented(Case):
    """The programs of docs/sockets.md, as they stand there."""

    PORT = 5000

    def serve(self):
        server = self.start(os.environ["DOCUMENT_SERVER"], environment={
            "ASAN_OPTIONS": "quarantine_size_mb=0:thread_local_quarantine_size_kb=0"})
        wait_for_port(self.PORT)
        return server

    def call(self, number=0, resets=False):
        """A caller: one of many addresses, so that the ports of none run out."""
        caller = socket.socket()
        if resets:
            caller.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, struct.pack("ii", 1, 0))
        caller.settimeout(PATIENCE)
        caller.bind((f"127.0.1.{1 + number % 200}", 0))
        caller.connect(("127.0.0.1", self.PORT))
        return caller

    def speak(self, caller):
        caller.sendall(b"Hello")
        self.assertEqual(caller.recv(100), b"You said: Hello")

    def closes_at_once(self, number):
        self.call(number).close()

    def resets_at_once(self, number):
        self.call(number, resets=True).close()

    def closes(self, number):
        with self.call(number) as caller:
            self.speak(caller)

    def half_closes(self, number):
        with self.call(number) as caller:
            self.speak(caller)
            caller.shutdown(socket.SHUT_WR)
            self.assertEqual(caller.recv(100), b"")

    def resets(self, number):
        with self.call(number, resets=True) as caller:
            self.speak(caller)

    def resets_with_answers_unread(self, number):
        with self.call(number, resets=True) as caller:
            caller.sendall(b"Hello")

    KINDS = [closes_at_once, resets_at_once, closes, half_closes, resets,
             resets_with_answers_unread]

    def descriptors(self, running):
        return len(os.listdir(f"/proc/{running.process.pid}/fd"))

    def memory(self, running):
        """Kilobytes that the process holds."""
        status = Path(f"/proc/{running.process.pid}/status").read_text()
        return int(status.split("VmRSS:")[1].split()[0])

    def comes_back_to(self, running, descriptors):
        end = time.monotonic() + PATIENCE
        while self.descriptors(running) != descriptors and time.monotonic() < end:
            time.sleep(0.01)
        self.assertEqual(self.descriptors(running), descriptors)

    def stays_as_it_was(self, callers):
        """Descriptors and memory of the server behind so many callers of all kinds."""
        server = self.serve()
        descriptors = self.descriptors(server)
        memory = None
        for number in range(callers):
            if number == callers // 10:
                self.comes_back_to(server, descriptors)
                memory = self.memory(server)
            self.KINDS[number % len(self.KINDS)](self, number)
        self.comes_back_to(server, descriptors)
        # What the system hands out comes in larger pieces than a caller needs.
        self.assertLess(self.memory(server) - memory, 300)
        with self.call() as caller:
            self.speak(caller)


class Document(Documented, unittest.TestCase):
    def test_its_programs_talk_with_each_other(self):
        self.serve()
        for _ in range(2):
            client = self.start(os.environ["DOCUMENT_CLIENT"])
            self.assertEqual(client.ends(), (0, b"You said: Hello\n"), client.lines)

    def test_its_client_tells_why_it_cannot_connect(self):
        client = self.start(os.environ["DOCUMENT_CLIENT"])
        self.assertEqual(client.ends(), (0, b"Connection refused.\n"), client.lines)

    def test_its_server_lets_go_of_each_caller(self):
        self.stays_as_it_was(3000)

    def test_its_server_holds_a_megabyte_at_most_for_a_caller_that_does_not_read(self):
        server = self.serve()
        memory, sent = self.memory(server), 0
        with self.call() as caller, self.assertRaises(ConnectionError):
            while sent < 3 * LARGE:
                sent += caller.send(b"x" * 65536)
        self.assertLess(sent, LARGE)
        self.assertLess(self.memory(server) - memory, 8 * 1024)
        self.closes(0)


class DocumentExamples(Documented, unittest.TestCase):
    """The other programs of docs/sockets.md."""

    def start_in(self, program, folder):
        before = os.getcwd()
        os.chdir(folder)
        try:
            return self.start(os.environ[program])
        finally:
            os.chdir(before)

    def curl(self, path, *arguments):
        fetching = self.start(tool("curl"), "--silent", "--show-error", "--http1.0", "--path-as-is",
                              "--max-time", PATIENCE, *arguments, f"http://127.0.0.1:8000{path}")
        return fetching.ends()

    def test_its_file_server_serves_files_to_curl(self):
        served = self.folder / "served"
        served.mkdir()
        data = os.urandom(MEDIUM)
        (served / "large").write_bytes(data)
        (served / "empty").write_bytes(b"")
        (served / ".hidden").write_bytes(b"secret")
        (self.folder / "outside").write_bytes(b"secret")
        server = self.start_in("DOCUMENT_FILE_SERVER", served)
        wait_for_port(8000)
        descriptors = self.descriptors(server)
        status, body = self.curl("/large")
        self.assertEqual(status, 0)
        self.assert_sent(data, body)
        self.assertEqual(self.curl("/empty", "--fail"), (0, b""))
        for path in ("/", "/nothing", "/../outside", "/.hidden", "/..", f"/{served}/large"):
            with self.subTest(path):
                status, body = self.curl(path, "--write-out", "%{http_code}")
                self.assertEqual((status, body), (0, b"404"))
        several = [self.start(tool("curl"), "--silent", "http://127.0.0.1:8000/large")
                   for _ in range(5)]
        for each in several:
            self.assert_sent(data, each.ends()[1])
        with socket.create_connection(("127.0.0.1", 8000), timeout=PATIENCE) as caller:
            caller.sendall(b"GET /" + b"x" * 9000)
            self.assertEqual(caller.recv(10), b"")
        self.comes_back_to(server, descriptors)

    def test_its_answers_to_datagrams_reach_whoever_has_sent_them(self):
        program = self.start(os.environ["DOCUMENT_DATAGRAMS"])
        wait_for_port(5001, "udp")
        senders = [socket.socket(socket.AF_INET, socket.SOCK_DGRAM) for _ in range(3)]
        for number, sender in enumerate(senders):
            self.addCleanup(sender.close)
            sender.settimeout(PATIENCE)
            sender.connect(("127.0.0.1", 5001))
        for number, sender in enumerate(senders):
            sender.send(b"from %d" % number)
        for number, sender in enumerate(senders):
            self.assertEqual(sender.recv(100), b"You said: from %d" % number)
        with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as gone:
            gone.sendto(b"nobody will hear the answer", ("127.0.0.1", 5001))
        for _ in range(3):
            senders[0].send(b"still there?")
            self.assertEqual(senders[0].recv(100), b"You said: still there?")
        self.assertIsNone(program.process.poll())


class LongRun(Documented, unittest.TestCase):
    def test_its_server_after_a_hundred_thousand_callers(self):
        self.stays_as_it_was(100_000)


if __name__ == "__main__":
    unittest.main(verbosity=2)
