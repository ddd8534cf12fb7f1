#!/usr/bin/env python3
"""Two builds of one source in two folders give the same bytes.

    reproducible_test.py SOURCE IMAGE.exe PRESET WORK

builds the setup program once more with that preset, from a copy of SOURCE in a folder of another length
and depth, and holds it against IMAGE.
"""

import hashlib
import pathlib
import shutil
import subprocess
import sys
import tempfile

NEEDED = ["CMakeLists.txt", "CMakePresets.json", "cmake", "src"]


def build(source, preset, folder):
    copy = folder / "another" / "place" / "of the source"
    for name in NEEDED:
        origin = source / name
        if origin.is_dir():
            shutil.copytree(origin, copy / name)
        else:
            copy.mkdir(parents=True, exist_ok=True)
            shutil.copy(origin, copy / name)
    quiet = {"stdout": subprocess.DEVNULL, "check": True, "cwd": copy}
    subprocess.run(["cmake", "--preset", preset, "-DZEV_TESTS=OFF"], **quiet)
    built = copy / "build" / preset
    subprocess.run(["cmake", "--build", str(built), "-j", "2", "--target", "ZEVSetup"], **quiet)
    return built / "src" / "programs" / "setup" / "ZEVSetup.exe"


def digest(path):
    return hashlib.sha256(path.read_bytes()).hexdigest()


def main():
    source, image, work = (pathlib.Path(sys.argv[each]).resolve() for each in (1, 2, 4))
    work.mkdir(parents=True, exist_ok=True)
    with tempfile.TemporaryDirectory(dir=work) as folder:
        other = build(source, sys.argv[3], pathlib.Path(folder))
        print(f"{digest(image)} {image}\n{digest(other)} {other}")
        return 0 if digest(image) == digest(other) else "the two builds differ"


if __name__ == "__main__":
    sys.exit(main())
