#!/usr/bin/env python3
"""Libraries planted beside the setup program are not loaded.

    planted_test.py WORK IMAGE.exe COMPILER

WORK is the folder of wine_machine.py, COMPILER the C compiler for the image's system.
"""

import pathlib
import shutil
import subprocess
import sys
import tempfile
import time
import unittest

import wine_machine

HERE = pathlib.Path(__file__).parent

# Libraries that programs with windows are known to load.
PLANTED = ["comctl32", "uxtheme", "version", "lz32", "dwmapi", "cryptbase", "cryptsp", "profapi",
           "userenv", "winmm", "wsock32", "iphlpapi", "netapi32", "propsys", "ntmarta", "secur32",
           "apphelp", "msimg32", "oleacc"]

# What Wine's own window library links and finds beside any program with windows: there it is none of
# the system's known libraries, which it is on Windows.
LOADED_BY_WINE = {"version"}

SECONDS_TO_COME_UP = 4


class PlantedMachine(wine_machine.Machine):
    """A machine that, like Windows, takes a program's own libraries before those of Wine."""

    def environment(self):
        return super().environment() | {"WINEDLLOVERRIDES": ",".join(PLANTED) + "=n,b"}


class PlantedTest(unittest.TestCase):
    work = image = compiler = None

    def setUp(self):
        self.folder = wine_machine.Template(self.work).copy()
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)
        self.made = pathlib.Path(tempfile.mkdtemp(dir=self.work))
        self.addCleanup(shutil.rmtree, self.made, ignore_errors=True)

    def compile(self, source, output, *options):
        subprocess.run([self.compiler, "-O1", *options, str(HERE / source), "-o",
                        str(self.made / output)], check=True)
        return self.made / output

    def loaded(self, program, *arguments):
        """Names of the planted libraries that ran beside a program."""
        library = self.compile("planted_library.c", "planted.dll", "-shared")
        with PlantedMachine(self.folder) as machine:
            for name in PLANTED:
                machine.put(library, f"C:\\Downloads\\{name}.dll")
            process = machine.start(machine.put(program, "C:\\Downloads\\Program.exe"), *arguments)
            time.sleep(SECONDS_TO_COME_UP)
            lives = process.poll() is None
            ran = machine.path("C:\\Downloads\\x").parent.glob("*.ran")
            return lives, {file.name.removesuffix(".dll.ran").lower() for file in ran}

    def test_the_setup_program_loads_none(self):
        lives, ran = self.loaded(self.image)
        self.assertEqual(ran - LOADED_BY_WINE, set())
        self.assertTrue(lives, "the wizard did not come up")

    def test_a_careless_program_loads_them(self):
        careless = self.compile("careless_program.c", "careless.exe", "-mwindows")
        _, ran = self.loaded(careless, *(f"{name}.dll" for name in PLANTED))
        self.assertGreater(len(ran), len(PLANTED) // 2)


if __name__ == "__main__":
    PlantedTest.work, PlantedTest.image, PlantedTest.compiler = sys.argv[1:]
    unittest.main(argv=sys.argv[:1])
