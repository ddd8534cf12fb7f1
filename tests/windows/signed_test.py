#!/usr/bin/env python3
"""A signed package on the real program: a whole install lays what the package holds.

    signed_test.py WORK PACKAGE.exe ZEVDRIVE.exe ZEVPACK

WORK is the folder of wine_machine.py. The package is signed with a certificate made for the test, and
its signature verified. The driver plays the install; what was laid is held against the digests of the
package as it was before it was signed.
"""

import json
import pathlib
import shutil
import subprocess
import sys
import unittest

import wine_machine
from bad_machines_test import INSTALL, PROGRAM, SYSTEM_FOLDER, TOOLS, finishes, install
from compare_scenarios import BobMachine, BobTemplate

SIGN = pathlib.Path(__file__).parents[1] / "support" / "sign_package.sh"
PROJECTS = "C:\\Users\\bob\\Documents\\ZEV Projects"


class SignedTest(unittest.TestCase):
    work = package = driver = zevpack = None

    def setUp(self):
        self.folder = BobTemplate(self.work / "usual").copy()
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)
        self.machine = BobMachine(self.folder)
        self.machine.put(self.driver, f"{TOOLS}\\zevdrive.exe")

    def sign(self):
        """The package with a signature, which holds; the table of it stands behind the members."""
        path = self.folder / "signed.exe"
        subprocess.run([SIGN, self.package, path], check=True, stdout=subprocess.DEVNULL)
        self.assertGreater(path.stat().st_size, self.package.stat().st_size + 1000)
        return path

    def play(self, steps):
        script = self.machine.path(f"{TOOLS}\\script.json")
        script.write_text(json.dumps({"script": steps}))
        wine_machine.give(self.machine.drive / "Users")
        wine_machine.give(script.parent)
        told = self.folder / "told.txt"
        with open(told, "wb") as file:
            status = self.machine.run(
                f"{TOOLS}\\zevdrive.exe", f"{TOOLS}\\script.json", "--program", PROGRAM,
                "--timeout", "90", timeout=240, stdout=subprocess.DEVNULL, stderr=file)
        words = told.read_text("utf-8", "replace")
        self.assertEqual(status, 0, words)
        self.assertNotIn("not seen", words)

    def host(self, path):
        return self.machine.drive.joinpath(*path[3:].split("\\"))

    def zevpack_says(self, *arguments):
        done = subprocess.run([self.zevpack, *arguments], capture_output=True, text=True, check=False)
        self.assertEqual(done.returncode, 0, done.stdout + done.stderr)
        return done.stdout

    def held_against(self, digests):
        return self.zevpack_says(
            "verify", "--against", digests, "--installed", self.host(INSTALL),
            "--system", self.host(SYSTEM_FOLDER), "--projects", self.host(PROJECTS))

    def test_a_whole_install_from_a_signed_package(self):
        self.machine.put(self.sign(), PROGRAM)
        digests = self.folder / "digests"
        digests.write_text(self.zevpack_says("list", "--digests", self.package))
        with self.machine:
            self.play([*install(), *finishes([])])
            told = self.held_against(digests)
        # All but ZEVUser.exe, for another class of systems, and the redistributable, which was run.
        self.assertIn("53 of 56 files are right, 1 patched, 2 absent, 0 not looked at, 0 wrong", told)
        self.assertIn(f"the path of its video is {INSTALL}\\SampleAVI.avi", told)


if __name__ == "__main__":
    SignedTest.work, SignedTest.package, SignedTest.driver, SignedTest.zevpack = map(
        pathlib.Path, sys.argv[1:5])
    unittest.main(argv=sys.argv[:1], verbosity=2)
