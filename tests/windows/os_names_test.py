#!/usr/bin/env python3
"""The class and the name of each Windows that Wine can answer as, of 32 bits and of 64.

    os_names_test.py WORK OS_NAME.exe

WORK is the folder of wine_machine.py; OS_NAME prints what the program makes of the system.
"""

import pathlib
import shutil
import subprocess
import sys
import unittest

import wine_machine

# Wine's word for a system; class, whether it is NT 6.2, and name without the width, which Windows
# Vista was the first to have in it, and its service pack.
SYSTEMS = {
    "win98": (1, 0, "Win98SE", " A "),
    "nt40": (2, 0, "WinNT4", "Service Pack 6a"),
    "win2k": (3, 0, "Win2000Prof", "Service Pack 4"),
    "winxp": (3, 0, "WinXPProf", "Service Pack 3"),
    "vista": (4, 0, "WinVista{}", "Service Pack 2"),
    "win7": (4, 0, "WinServer2008SE{}", "Service Pack 1"),  # Wine's one says that it is a server
    "win8": (4, 1, "Win8{}", ""),
    "win81": (4, 1, "Win8{}", ""),  # it says so to a program that does not know it
    "win10": (4, 1, "Win8{}", ""),
}


class OsNamesTest(unittest.TestCase):
    work = program = None

    def names_on(self, width):
        """What the program prints on each of them."""
        folder = wine_machine.Template(self.work, width).copy()
        self.addCleanup(shutil.rmtree, folder, ignore_errors=True)
        told = {}
        with wine_machine.Machine(folder, width=width) as machine:
            for system in SYSTEMS:
                name = machine.put(self.program, f"C:\\Test\\{system}.exe")
                machine.import_registry("REGEDIT4\n\n[HKEY_CURRENT_USER\\Software\\Wine\\AppDefaults\\"
                                        f'{system}.exe]\n"Version"="{system}"\n')
                process = machine.start(name, stdout=subprocess.PIPE)
                told[system] = process.communicate(timeout=60)[0].decode().rstrip("\r\n")
        return told

    def expect_names(self, width):
        wanted = {system: f"{number} {nt62} {name.format(width)}{pack}"
                  for system, (number, nt62, name, pack) in SYSTEMS.items()}
        self.assertEqual(self.names_on(width), wanted)

    def test_on_windows_of_32_bits(self):
        self.expect_names(32)

    def test_on_windows_of_64_bits(self):
        self.expect_names(64)


if __name__ == "__main__":
    OsNamesTest.work, OsNamesTest.program = map(pathlib.Path, sys.argv[1:])
    unittest.main(argv=sys.argv[:1], verbosity=2)
