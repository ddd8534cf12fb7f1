#!/usr/bin/env python3
"""What a hostile program or user tries while the real program installs: links in its way, files
swapped under its hands.

    attacks_test.py WORK PACKAGE.exe ZEVDRIVE.exe COMPILER

WORK is the folder of wine_machine.py, COMPILER the C compiler for the program's system. Links are the
host's own: Wine takes those to folders for what they are, and makes none itself.
"""

import pathlib
import sys
import unittest

HERE = pathlib.Path(__file__).parent
sys.path.insert(0, str(HERE.parent / "windows"))

import bad_machines_test as bad_machines  # noqa: E402
from bad_machines_test import (  # noqa: E402
    CANCEL_QUESTION, INSTALL, SYSTEM_FOLDER, TEMPORARY, TOOLS, BadMachineTest, finishes, install,
    members, trap)

DOCUMENTS = "C:\\Users\\bob\\Documents"
FOREIGN = b"foreign bytes, of no package"


class AttackTest(BadMachineTest):
    def link(self, path, target):
        """A link of the host to a folder of the machine."""
        link = self.machine.path(path)
        self.host(target).mkdir(parents=True, exist_ok=True)
        link.symlink_to(self.host(target), target_is_directory=True)
        bad_machines.wine_machine.give(link.parent)
        return link

    # ---- links

    def test_cancel_with_a_linked_temporary_folder(self):
        letter = self.make_file(f"{DOCUMENTS}\\letter.txt", "dear")
        link = self.link(TEMPORARY, DOCUMENTS)
        self.switch_on()
        self.play({"answer": ["yes"]}, {"click": "Command3"},
                  {"expect": {"boxes": [CANCEL_QUESTION], "ended": "unload"}})
        self.assertEqual(letter.read_text(), "dear")
        self.assertTrue(link.is_symlink())

    def test_run_with_a_linked_temporary_folder(self):
        letter = self.make_file(f"{DOCUMENTS}\\letter.txt", "dear")
        link = self.link(TEMPORARY, DOCUMENTS)
        self.switch_on()
        self.play(*install(), {"expect": {"boxes": [trap("2-75", "Path/File access error")],
                                          "Form1.Command2.Enabled": False}},
                  {"answer": ["yes"]}, {"click": "Command3"},
                  {"expect": {"boxes": [CANCEL_QUESTION], "ended": "unload"}})
        self.assertEqual(letter.read_text(), "dear")
        self.assertTrue(link.is_symlink())
        self.assertEqual(self.names(DOCUMENTS), {"letter.txt"})

    def test_linked_folders_of_another_profile(self):
        local = "C:\\Users\\alice\\AppData\\Local"
        target = "C:\\Test\\target"
        self.link(f"{local}\\Tavorns", target)
        self.machine.path("C:\\Users\\carol\\AppData\\Local\\kept.txt").write_text("")
        bad_machines.wine_machine.give(self.machine.drive / "Users")
        self.switch_on()
        self.play(*install(), *finishes([]))
        self.assertEqual(self.names(target), set())
        self.assertIn("Version", self.names("C:\\Users\\carol\\AppData\\Local\\Tavorns\\ZEV5"))

    # ---- swaps

    def test_swapped_files(self):
        """Whatever the attacker hits, nothing of it gets into the system's folder or is started. The
        run may refuse what it hit, which its boxes tell."""
        foreign = self.machine.path(f"{TOOLS}\\foreign.bin")
        program = self.tool(HERE / "foreign_program.c", "-mwindows")
        swapper = self.tool(HERE / "swaps_files.c")
        foreign.write_bytes(FOREIGN)
        bad_machines.wine_machine.give(foreign.parent)
        libraries = [each for each in members() if each.target == "system"]
        self.switch_on()
        for source, paths in ((f"{TOOLS}\\foreign.bin",
                               [f"{TEMPORARY}\\{each.packed}" for each in libraries]),
                              (program, [f"{TEMPORARY}\\vcredist_x86.ex_",
                                         f"{INSTALL}\\vcredist_x86.exe"])):
            process = self.start_tool(swapper, source, *paths)
            self.assertEqual(process.stdout.readline().strip(), "ready")
        self.play(*install())
        self.assertFalse(self.host(f"{TOOLS}\\started.txt").exists())
        for each in libraries:
            laid = self.host(f"{SYSTEM_FOLDER}\\{each.installed}")
            if laid.exists() and laid.stat().st_size != 0:
                self.assertEqual(laid.read_bytes()[:2], b"MZ", each.installed)


def load_tests(loader, _tests, _pattern):
    """The cases of this file alone, not those of the class that they stand on."""
    own = [name for name in loader.getTestCaseNames(AttackTest) if name in vars(AttackTest)]
    return unittest.TestSuite(map(AttackTest, own))


if __name__ == "__main__":
    AttackTest.work, AttackTest.package, AttackTest.driver = map(pathlib.Path, sys.argv[1:4])
    AttackTest.compiler, = sys.argv[4:]
    unittest.main(argv=sys.argv[:1], verbosity=2)
