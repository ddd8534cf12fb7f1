#!/usr/bin/env python3
"""What stands in the image of the setup program: where its libraries come from, how it is protected,
what it tells the system of itself.

    image_test.py IMAGE.exe...

What an image may import stands in tests/data/windows_imports.tsv.
"""

import pathlib
import re
import subprocess
import sys
import unittest

# Functions that the image may ask for, and the Windows that brought each. Their libraries are loaded
# from the system's folder before a program begins, whatever lies beside it.
IMPORTS = pathlib.Path(__file__).resolve().parent.parent / "data" / "windows_imports.tsv"
EARLIEST = {32: (5, 1), 64: (5, 2)}  # Windows XP without a service pack; its edition for 64 bits

LONGEST = 1_000_000  # bytes; a sixth of them is the icon

PROTECTIONS = {"DYNAMIC_BASE", "NX_COMPAT"}
PROTECTIONS_OF_64_BIT = PROTECTIONS | {"HIGH_ENTROPY_VA"}

# Systems that the manifest may name. A later one would change the version that the system tells.
SYSTEMS = {
    "{e2011457-1546-43c5-a5fe-008deee3d3f0}",  # Vista
    "{35138b9a-5d96-4fbd-8e2d-a2440225f93a}",  # 7
    "{4a2f28e3-53b9-4441-ba9c-d69d4a4a6e38}",  # 8
}


class Image:
    def __init__(self, path):
        self.bytes = pathlib.Path(path).read_bytes()
        self.dump = subprocess.run(["objdump", "-p", path], capture_output=True, text=True,
                                   check=True).stdout

    def imports(self):
        """The names of functions by library, as the system will look them up."""
        found = {}
        for part in self.dump.split("DLL Name: ")[1:]:
            library, rest = part.split("\n", 1)
            rows = rest.split("\n\n")[0]
            found[library.upper()] = set(re.findall(r"^\t[0-9a-f]+\t *\d+ +(\S+)", rows, re.M))
        return found

    def protections(self):
        lines = self.dump.split("DllCharacteristics", 1)[1].split("SizeOfStackReserve")[0]
        return set(re.findall(r"\b([A-Z_]{5,})\b", lines))

    def is_64_bit(self):
        return "pei-x86-64" in self.dump

    def manifest(self):
        start = self.bytes.index(b"<assembly ")
        return self.bytes[start:self.bytes.index(b"</assembly>", start)].decode()

    def holds(self, text):
        return text.encode("utf-16-le") in self.bytes


def allowed_imports():
    """The version that brought it, by library and function."""
    allowed = {}
    for line in IMPORTS.read_text().splitlines()[1:]:
        if not line.startswith("#"):
            library, name, version = line.split("\t")
            allowed[library.upper(), name] = tuple(int(part) for part in version.split("."))
    return allowed


class ImageTest(unittest.TestCase):
    paths = []

    def each(self):
        self.assertTrue(self.paths, "no image given")
        for path in self.paths:
            with self.subTest(image=path):
                yield Image(path)

    def test_asks_for_nothing_that_windows_xp_lacks(self):
        allowed = allowed_imports()
        for image in self.each():
            imports = image.imports()
            self.assertIn("CreateFileA", imports.get("KERNEL32.DLL", set()))
            asked = {(library, name) for library, names in imports.items() for name in names}
            self.assertEqual(asked - set(allowed), set(), "not in the list of allowed functions")
            earliest = EARLIEST[64 if image.is_64_bit() else 32]
            self.assertEqual({each for each in asked if allowed[each] > earliest}, set())

    def test_is_small(self):
        for image in self.each():
            self.assertLessEqual(len(image.bytes), LONGEST)

    def test_has_the_protections_of_the_system(self):
        for image in self.each():
            wanted = PROTECTIONS_OF_64_BIT if image.is_64_bit() else PROTECTIONS
            self.assertEqual(wanted - image.protections(), set())

    def test_manifest_names_no_later_system_than_windows_8(self):
        for image in self.each():
            named = set(re.findall(r'supportedOS Id="([^"]*)"', image.manifest()))
            self.assertEqual(named, SYSTEMS)

    def test_manifest_asks_for_what_the_program_needs(self):
        for image in self.each():
            for wanted in ('level="highestAvailable"', "Microsoft.Windows.Common-Controls",
                           "true/PM", "PerMonitorV2"):
                self.assertIn(wanted, image.manifest())

    def test_tells_its_version(self):
        for image in self.each():
            for text in ("ZEV Screen Recorder 6 Setup", "6.1.8", "ZEVSetup.exe"):
                self.assertTrue(image.holds(text), text)

    def test_is_a_window_program_without_traces_of_its_build(self):
        for image in self.each():
            self.assertIn("(Windows GUI)", image.dump)
            self.assertNotIn(b"/src/runtime/", image.bytes)


if __name__ == "__main__":
    ImageTest.paths = sys.argv[1:]
    unittest.main(argv=sys.argv[:1])
