"""The sockets as a library, taken by somebody else's project of three files.

Run by tests/network/alone.sh, with the project's folder in PROJECT and that of Wine's machines in
WINE_MACHINES. Compilers other than the usual one are named by CMake's own variables.
"""

import os
import re
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

PROJECT = Path(os.environ["PROJECT"])
CONSUMER = PROJECT / "tests" / "library" / "consumer"
LIBRARY = PROJECT / "event_socket"
PATIENCE = 600  # seconds for any one step


class Case:
    def setUp(self):
        holder = tempfile.TemporaryDirectory()
        self.addCleanup(holder.cleanup)
        self.folder = Path(holder.name)

    def run_command(self, *command):
        """Status and output of a command."""
        done = subprocess.run([str(part) for part in command], stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, stdin=subprocess.DEVNULL, text=True,
                              timeout=PATIENCE, check=False)
        return done.returncode, done.stdout

    def do(self, *command):
        """The output of a command that succeeds."""
        status, output = self.run_command(*command)
        self.assertEqual(status, 0, output)
        return output

    def configure(self, source, build, *settings):
        return self.run_command("cmake", "-G", "Ninja", "-S", source, "-B", build,
                                "-DCMAKE_CXX_FLAGS=-O0 -Wall -Wextra -Wpedantic -Werror",
                                "-DCMAKE_UNITY_BUILD=ON", *settings)

    def configured(self, source, build, *settings):
        status, output = self.configure(source, build, *settings)
        self.assertEqual(status, 0, output)
        return build

    def build(self, build, *targets):
        self.do("cmake", "--build", build, "-j2", *targets)

    def take(self, how, folder=LIBRARY, *settings):
        """The consumer, configured to take the library from a folder."""
        return self.configured(CONSUMER, self.folder / f"{how}-{folder.name}",
                               f"-DHOW={how}", f"-DFOLDER={folder}", *settings)

    def installed(self, *settings):
        """A prefix that the library is installed under."""
        build, prefix = self.folder / "library", self.folder / "prefix"
        self.configured(LIBRARY, build, "-DCMAKE_INSTALL_LIBDIR=lib", *settings)
        self.build(build)
        self.do("cmake", "--install", build, "--prefix", prefix)
        return build, prefix

    def assert_talks(self, build):
        self.assertEqual(self.do(build / "consumer"), "Hello\n")


class Configured(Case, unittest.TestCase):
    """What a project gets, before anything is compiled."""

    def assert_only_the_sockets(self, build):
        cache = (build / "CMakeCache.txt").read_text()
        for other in ("nlohmann", "GTest", "benchmark", "CLI11", "nettle"):
            self.assertNotIn(other, cache)
        archives = {Path(line.split(":")[0]).name
                    for line in self.do("ninja", "-C", build, "-t", "targets", "all").splitlines()
                    if ".a:" in line or line.startswith("consumer:")}
        self.assertEqual(archives, {"libevent_socket.a", "libruntime.a", "consumer"})

    def test_every_way_brings_the_sockets_and_nothing_else(self):
        for how, folder in (("subdirectory", LIBRARY), ("fetched", PROJECT)):
            with self.subTest(how):
                self.assert_only_the_sockets(self.take(how, folder))

    def test_only_the_top_of_a_build_has_tests(self):
        build = self.configured(LIBRARY, self.folder / "with")
        self.assertIn("Total Tests: 1", self.do("ctest", "--test-dir", build, "-N"))
        build = self.configured(LIBRARY, self.folder / "without", "-DBUILD_TESTING=OFF")
        self.assertIn("Total Tests: 0", self.do("ctest", "--test-dir", build, "-N"))
        build = self.take("subdirectory", LIBRARY, "-DBUILD_TESTING=ON")
        self.assertNotIn("event_socket_example",
                         self.do("ninja", "-C", build, "-t", "targets", "all"))

    def refuses(self, sentence, *settings):
        status, output = self.configure(CONSUMER, self.folder / "refused", *settings)
        self.assertNotEqual(status, 0)
        self.assertIn(sentence, " ".join(output.split()))

    def test_a_system_that_it_does_not_know_is_named(self):
        self.refuses("EventSocket runs on Linux and Windows, and not on FreeBSD.",
                     "-DHOW=subdirectory", f"-DFOLDER={LIBRARY}", "-DCMAKE_SYSTEM_NAME=FreeBSD")

    def test_a_compiler_without_the_library_of_cpp20_is_told(self):
        compiler = self.folder / "old++"
        compiler.write_text('#!/bin/sh\ncase "$*" in *-std=*20*|*-std=*2a*) '
                            'exec g++ "$@" -D__cpp_lib_span=0 -include /dev/null -std=gnu++17;; esac\n'
                            'exec g++ "$@"\n')
        compiler.chmod(0o755)
        self.refuses("EventSocket needs concepts, std::span and std::bit_cast of C++20;",
                     "-DHOW=subdirectory", f"-DFOLDER={LIBRARY}",
                     f"-DCMAKE_CXX_COMPILER={compiler}")

    def says_in_a_sentence(self, name):
        source = CONSUMER / "main.cpp"
        status, output = self.run_command(
            "g++", "-std=c++20", "-fsyntax-only", f"-D{name}", f"-I{LIBRARY}", f"-I{PROJECT}/src",
            source)
        self.assertEqual(status, 1, output)
        errors = [line for line in output.splitlines() if "error:" in line]
        self.assertEqual(len(errors), 1, output)
        self.assertIn("texts are UTF-16: write u", errors[0])
        self.assertLess(len(output.splitlines()), 12, output)

    def test_a_host_name_of_other_letters_is_told_in_a_sentence(self):
        self.says_in_a_sentence("NARROW_NAME")
        self.says_in_a_sentence("WIDE_NAME")


class Taken(Case, unittest.TestCase):
    """The consumer built in every way, and run."""

    def test_as_a_folder_of_the_build(self):
        build = self.take("subdirectory")
        self.build(build)
        self.assert_talks(build)

    def test_fetched_as_the_whole_project(self):
        build = self.take("fetched", PROJECT)
        self.build(build)
        self.assert_talks(build)

    def test_installed(self):
        library, prefix = self.installed()
        self.do("ctest", "--test-dir", library, "--output-on-failure")
        self.assertEqual({path.name for path in (prefix / "include").iterdir()}, {"event_socket"})
        self.assertTrue(list(prefix.glob("share/doc/*/README.md")))
        # Nothing of the place where it was built is needed, or written down.
        for path in prefix.rglob("*.cmake"):
            self.assertNotIn(str(PROJECT), path.read_text(), path)
        shutil.rmtree(library)
        build = self.take("package", LIBRARY, f"-DCMAKE_PREFIX_PATH={prefix}")
        self.build(build)
        self.assert_talks(build)
        self.refuse_what_is_not_there(prefix)

    def test_as_the_page_says(self):
        """The blocks of docs/sockets.md in a folder of their own, and its commands."""
        page = (PROJECT / "docs" / "sockets.md").read_text()
        for name, code in re.findall(r"```cpp (\S+)\n(.*?)```", page, re.DOTALL):
            (self.folder / name).write_text(code)
        commands = next(block for block in re.findall(r"```sh\n(.*?)```", page, re.DOTALL)
                        if "$zev" in block)
        # As few as possible are compiled one by one.
        commands = commands.replace("cmake -S", "cmake -DCMAKE_UNITY_BUILD=ON -S")
        output = self.do("bash", "-ec", f"cd {self.folder}; zev={PROJECT}; {commands}")
        self.assertIn("You said: Hello\n", output)
        self.assertIn((self.folder / "frame.h").read_text(), output)

    def refuse_what_is_not_there(self, prefix):
        for setting, sentence in (
                ("-DCOMPONENTS=http", "EventSocket has no component http: its one target is "
                                      "event_socket::event_socket."),):
            status, output = self.configure(CONSUMER, self.folder / "refused", "-DHOW=package",
                                            f"-DCMAKE_PREFIX_PATH={prefix}", setting)
            self.assertNotEqual(status, 0)
            self.assertIn(sentence, " ".join(output.split()))


class ForWindows(Case, unittest.TestCase):
    """The same with mingw-w64 for both widths, run under Wine."""

    def talks_under_wine(self, build):
        machine = PROJECT / "tests" / "windows" / "wine_machine.py"
        output = self.do("python3", machine, "--width", "64", "run", os.environ["WINE_MACHINES"],
                         build / "consumer.exe")
        self.assertIn("Hello", output.split())

    def taken(self, width):
        toolchain = f"-DCMAKE_TOOLCHAIN_FILE={PROJECT}/cmake/windows-{width}.cmake"
        _, prefix = self.installed(toolchain, "-DBUILD_TESTING=OFF")
        build = self.take("package", LIBRARY, toolchain, f"-DEventSocket_DIR={prefix}"
                          "/lib/cmake/EventSocket")
        self.build(build)
        self.talks_under_wine(build)

    def test_of_32_bits(self):
        self.taken("x86")

    def test_of_64_bits(self):
        self.taken("x64")


if __name__ == "__main__":
    unittest.main(verbosity=2)
