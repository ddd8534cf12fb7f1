#!/usr/bin/env python3
"""What the test machines tell when they cannot do their work: each in a few words, within a limit of
time, and with nothing left behind.

    machine_test.py WORK COMPILER
"""

import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

import wine_machine

HERE = pathlib.Path(__file__).parent


def run_on_a_machine(work, program, *options, **environment):
    """Runs a program as the suites do: exit status and what was told."""
    done = subprocess.run([sys.executable, str(HERE / "wine_machine.py"), *options, "run", str(work),
                           str(program)], env={**os.environ, **environment}, timeout=200,
                          stdin=subprocess.DEVNULL, capture_output=True, text=True)
    return done.returncode, done.stdout + done.stderr


def running_on_machines(work):
    """Processes of machines below a folder."""
    mark = f"WINEPREFIX={pathlib.Path(work).resolve()}/machine-".encode()
    found = []
    for entry in filter(str.isdigit, os.listdir("/proc")):
        try:
            if mark in pathlib.Path(f"/proc/{entry}/environ").read_bytes():
                found.append(int(entry))
        except OSError:
            continue
    return found


class MachineTest(unittest.TestCase):
    work = compiler = None

    def setUp(self):
        """A folder of its own beside the others, with the template that they share."""
        wine_machine.Template(self.work).made()
        self.own = tempfile.TemporaryDirectory(dir=self.work, prefix="machines-")
        self.addCleanup(self.own.cleanup)
        os.chmod(self.own.name, 0o755)
        for name in ("template", "template.stamp"):
            os.symlink(self.work / name, pathlib.Path(self.own.name) / name)

    def compile(self, source):
        program = pathlib.Path(self.own.name) / pathlib.Path(source).with_suffix(".exe")
        subprocess.run([self.compiler, "-mwindows", str(HERE / source), "-o", str(program)], check=True)
        return program

    def test_a_program_that_hangs_is_ended_and_named(self):
        status, told = run_on_a_machine(self.own.name, self.compile("hangs.c"), "--timeout", "5")
        self.assertEqual(status, 1, told)
        self.assertIn("hangs.exe did not end within 5 seconds", told)
        self.assertNotIn("Traceback", told)
        self.assertEqual(running_on_machines(self.own.name), [])
        self.assertEqual(list(pathlib.Path(self.own.name).glob("machine-*")), [])

    def test_a_machine_without_its_system_says_so(self):
        template = pathlib.Path(self.own.name) / "template"
        template.unlink()
        subprocess.run(["cp", "-a", "--reflink=auto", str(self.work / "template"), str(template)],
                       check=True)
        for folder in ("system32", "syswow64"):
            (template / "prefix/drive_c/windows" / folder / "kernel32.dll").unlink()
        status, told = run_on_a_machine(self.own.name, self.compile("careless_program.c"))
        self.assertNotEqual(status, 0)
        self.assertIn("could not load kernel32.dll", told)
        self.assertEqual(running_on_machines(self.own.name), [])

    def test_without_wine_nothing_passes(self):
        status, told = run_on_a_machine(self.own.name, self.compile("careless_program.c"),
                                        ZEV_WINE_ROOT="/dev/null/wine")
        self.assertEqual(status, 1, told)
        self.assertIn("wine-root: no folder can be made at /dev/null", told)
        self.assertIn("There is no Wine, and the program for Windows cannot be run", told)

    def test_a_program_that_is_not_there_is_named(self):
        status, told = run_on_a_machine(self.own.name, "/nowhere/program.exe")
        self.assertEqual(status, 1, told)
        self.assertIn("/nowhere/program.exe: No such file or directory", told)
        self.assertNotIn("Traceback", told)


if __name__ == "__main__":
    MachineTest.work, MachineTest.compiler = pathlib.Path(sys.argv[1]).resolve(), sys.argv[2]
    unittest.main(argv=sys.argv[:1], verbosity=2)
