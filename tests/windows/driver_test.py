#!/usr/bin/env python3
"""What zevdrive says of scenarios and command lines that it cannot play, beside what zevsim says.

    driver_test.py WORK PACKAGE.exe ZEVDRIVE.exe ZEVSIM

WORK is the folder of wine_machine.py. A mistake of a script is one on either stage: the same exit
status, with the same words.
"""

import json
import pathlib
import shutil
import subprocess
import sys
import unittest

import wine_machine
from bad_machines_test import PROGRAM, TOOLS
from compare_scenarios import BobMachine, BobTemplate

# What a script does last, and the words in which that is refused.
MISTAKES = [
    ({"click": "Command99"}, "Form1 has no control Command99"),
    ({"type": ["Combo1", "x"]}, "Combo1 is no text box"),
    ({"select": ["Combo1", "Klingon"]}, 'Combo1 has no entry "Klingon"'),
    ({"drive": "c:"}, "the active form has no such list"),
    ({"folder": "C:\\None"}, "the machine has no folder C:\\None"),
    ({"close": "Form9"}, "the program has no form Form9"),
    ({"expect": {"Form1.Command99.Caption": ""}}, "Form1 has no control Command99"),
    ({"expect": {"Form9.Label1.Caption": ""}}, "the program has no form Form9"),
    ({"expect": {"Form1.Command2.Colour": 1}}, "Command2 has no property Colour"),
]

UNUSABLE, BROKEN, REFUSED = 2, 3, 4


class DriverTest(unittest.TestCase):
    work = package = driver = simulator = None

    @classmethod
    def setUpClass(cls):
        cls.folder = BobTemplate(cls.work / "usual").copy()
        cls.addClassCleanup(shutil.rmtree, cls.folder, ignore_errors=True)
        cls.machine = BobMachine(cls.folder)
        cls.machine.put(cls.driver, f"{TOOLS}\\zevdrive.exe")
        cls.machine.put(cls.package, PROGRAM)
        cls.script = cls.machine.path(f"{TOOLS}\\script.json")
        cls.machine.__enter__()
        cls.addClassCleanup(cls.machine.__exit__, None, None, None)

    def write(self, steps):
        self.script.write_text(json.dumps({"script": steps}))
        wine_machine.give(self.machine.drive / "Users")
        wine_machine.give(self.script.parent)

    def drive(self, *arguments):
        """The exit status of zevdrive, and what it says."""
        told = self.folder / "told.txt"
        with open(told, "wb") as file:
            status = self.machine.run(f"{TOOLS}\\zevdrive.exe", *arguments, timeout=240,
                                      stdout=subprocess.DEVNULL, stderr=file)
        return status, told.read_text("utf-8", "replace")

    def play(self, steps):
        """Plays steps. On a busy machine the program can be too slow to be driven: then once more."""
        self.write(steps)
        for _ in range(3):
            status, told = self.drive(f"{TOOLS}\\script.json", "--program", PROGRAM,
                                      "--timeout", "90")
            if status != BROKEN:
                break
        return status, told

    def test_a_mistake_of_a_script_is_one_on_either_stage(self):
        for step, words in MISTAKES:
            with self.subTest(step=step):
                status, told = self.play([step])
                self.assertEqual(status, UNUSABLE, told)
                self.assertIn(f": {words}", told)
                done = subprocess.run([self.simulator, self.script], capture_output=True, text=True,
                                      check=False)
                self.assertEqual(done.returncode, UNUSABLE, done.stderr)
                self.assertIn(f": {words}", done.stderr)

    def test_what_only_the_inside_offers_is_refused(self):
        status, told = self.play([{"set": {"global.gLanguage": 1}}])
        self.assertEqual(status, REFUSED, told)
        self.assertIn("not played: globals or properties", told)

    def test_a_command_line_that_makes_no_sense(self):
        self.write([])
        for arguments, words in [
                ([], "SCENARIO is required"),
                (["none.json"], "--program, --prepare or --check is required"),
                ([f"{TOOLS}\\script.json", "--check", "--timeout", "0"], "--timeout"),
                ([f"{TOOLS}\\script.json", "--check", "--colour"], "--colour"),
                (["none.json", "--check"], "none.json: $: cannot be read")]:
            with self.subTest(arguments=arguments):
                status, told = self.drive(*arguments)
                self.assertEqual(status, UNUSABLE, told)
                self.assertIn(words, told)
        self.assertEqual(self.drive(f"{TOOLS}\\script.json", "--check")[0], 0)


if __name__ == "__main__":
    DriverTest.work, DriverTest.package, DriverTest.driver, DriverTest.simulator = map(
        pathlib.Path, sys.argv[1:5])
    unittest.main(argv=sys.argv[:1], verbosity=2)
