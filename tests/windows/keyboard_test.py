#!/usr/bin/env python3
"""The real program by the keyboard alone, key by key as the system delivers them: whole installs, from
the welcome to Finish.

    keyboard_test.py WORK PACKAGE.exe

WORK is the folder of wine_machine.py. Keys go to whatever has the focus, so that what the machine has
at the end shows where it was.
"""

import argparse
import sys
import time
import unittest

from pictures import RUN_WAIT, Sitting

INSTALL = "C:\\Program Files\\ZEV Screen Recorder 6"


class KeyboardTest(unittest.TestCase):
    def sit_down(self, windows):
        options = argparse.Namespace(work=self.work, package=self.package, folder=self.work,
                                     kept=None, here=False)
        sitting = Sitting(options, "english", 96, windows=windows)
        self.addCleanup(sitting.close)
        return sitting

    def await_end_of_run(self, sitting, directory):
        """Behind its last file the run empties the temporary folder, and soon shows its end."""
        last = sitting.machine.drive.joinpath(*directory[3:].split("\\"), "UserF.dat")
        users = sitting.machine.drive / "users"
        end = time.monotonic() + RUN_WAIT
        while not last.exists() or any(users.rglob("ZEVTMP")):
            self.assertLess(time.monotonic(), end, f"no run in {directory}")
            time.sleep(0.2)
        time.sleep(2)
        sitting.rest()

    def to_the_directory(self, sitting, tabs_to_next=2):
        """By the agreement, from whose button it is so far to Next."""
        sitting.keys("Return")
        sitting.keys("Tab", "Tab", "space", *["Tab"] * tabs_to_next, "Return")

    def test_the_path_can_be_typed_behind_the_browser(self):
        """It has the focus behind Cancel and behind Ok: from there it is one step back to Change Dir,
        and what is typed is the directory."""
        sitting = self.sit_down("win7")
        self.to_the_directory(sitting)
        sitting.keys("Tab", "Tab", "space")
        sitting.keys("Escape")
        sitting.keys("shift+Tab", "space")
        sitting.keys("alt+o")
        sitting.keys("Home", "shift+End", "Delete")
        sitting.type("type", "--delay", "30", "C:\\Typed")
        sitting.keys("Tab", "Tab")
        sitting.type("key", "Return")
        self.await_end_of_run(sitting, "C:\\Typed")
        sitting.finish("Return")

    def test_finish_is_pressed_without_shortcuts(self):
        """No window of a group of shortcuts comes between."""
        sitting = self.sit_down("win8")
        sitting.keys("shift+Tab", "space")
        sitting.keys("Tab", "space", "Tab", "space", "shift+Tab", "shift+Tab", "space")
        self.to_the_directory(sitting, tabs_to_next=3)
        sitting.type("key", "Return")
        self.await_end_of_run(sitting, INSTALL)
        self.assertEqual(list(sitting.machine.drive.rglob("Uninstall*.lnk")), [])
        sitting.finish("space")


if __name__ == "__main__":
    KeyboardTest.work, KeyboardTest.package = sys.argv[1:]
    unittest.main(argv=sys.argv[:1], verbosity=2)
