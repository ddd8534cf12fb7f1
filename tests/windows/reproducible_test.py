#!/usr/bin/env python3
"""Two builds of one source in two folders give the same bytes.

    reproducible_test.py SOURCE IMAGE.exe TOOLCHAIN.cmake WORK

builds the setup program once more, from a copy of SOURCE in a folder of another length and depth, and
holds it against IMAGE.
"""

import hashlib
import pathlib
import shutil
import subprocess
import sys
import tempfile

NEEDED = ["CMakeLists.txt", "cmake", "src"]


def build(source, toolchain, folder):
    copy = folder / "another" / "place" / "of the source"
    for name in NEEDED:
        origin = source / name
        if origin.is_dir():
            shutil.copytree(origin, copy / name)
        else:
            copy.mkdir(parents=True, exist_ok=True)
            shutil.copy(origin, copy / name)
    built = folder / "b"
    quiet = {"stdout": subprocess.DEVNULL, "check": True}
    subprocess.run(["cmake", "-S", str(copy), "-B", str(built), "-G", "Ninja",
                    f"-DCMAKE_TOOLCHAIN_FILE={copy / toolchain.relative_to(source)}",
                    "-DCMAKE_BUILD_TYPE=Release", "-DZEV_TESTS=OFF", "-DZEV_BENCHMARKS=OFF"], **quiet)
    subprocess.run(["cmake", "--build", str(built), "-j", "2", "--target", "ZEVSetup"], **quiet)
    return built / "src" / "programs" / "setup" / "ZEVSetup.exe"


def digest(path):
    return hashlib.sha256(path.read_bytes()).hexdigest()


def main():
    source, image, toolchain, work = (pathlib.Path(each).resolve() for each in sys.argv[1:])
    work.mkdir(parents=True, exist_ok=True)
    with tempfile.TemporaryDirectory(dir=work) as folder:
        other = build(source, toolchain, pathlib.Path(folder))
        print(f"{digest(image)} {image}\n{digest(other)} {other}")
        return 0 if digest(image) == digest(other) else "the two builds differ"


if __name__ == "__main__":
    sys.exit(main())
