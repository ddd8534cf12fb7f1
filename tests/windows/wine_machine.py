#!/usr/bin/env python3
"""Windows machines for tests, made of Wine: a template is made once, each test gets a copy.

    wine_machine.py [--width 32] run WORK PROGRAM.exe [ARGUMENT...]

runs a program on a fresh machine and ends with its exit code. All that is made lies in the folder
WORK, which the machines of many tests can share. A machine has one fixed drive, C:, a display of its
own without a window manager, and an ordinary user: under root everything runs as "nobody", since to
root no file is read-only. It is a Windows of 64 bits, which runs programs of 32 bits too, or one of 32
bits. Wine itself comes from the root that tools/wine-root makes.
"""

import argparse
import fcntl
import os
import pathlib
import pwd
import shutil
import signal
import subprocess
import sys
import tempfile
import time

WINE_ROOT = pathlib.Path(__file__).resolve().parents[2] / "tools" / "wine-root"
LOADER = {64: "/usr/lib/wine/wine64", 32: "/usr/lib/wine/wine"}
WINESERVER = {64: "/usr/lib/wine/wineserver64", 32: "/usr/lib/wine/wineserver32"}

# To be raised when a template made by an older version of this file no longer fits.
EDITION = 3

# A desktop of Wine's own gives title bars without a window manager; a crash shows no box; menus,
# .NET and the browser's engine stay away.
SETTINGS = r"""REGEDIT4

[HKEY_CURRENT_USER\Software\Wine\WineDbg]
"ShowCrashDialog"=dword:00000000

[HKEY_CURRENT_USER\Software\Wine\Explorer]
"Desktop"="Default"

[HKEY_CURRENT_USER\Software\Wine\Explorer\Desktops]
"Default"="1024x768"

[HKEY_CURRENT_USER\Software\Wine\DllOverrides]
"winemenubuilder.exe"=""
"mscoree"=""
"mshtml"=""
"""


def user():
    """The account that machines belong to: the own one, but never root's."""
    own = pwd.getpwuid(os.getuid())
    return pwd.getpwnam("nobody") if own.pw_uid == 0 else own


def as_user():
    """What makes a child process run under that account."""
    account = user()
    if os.getuid() == account.pw_uid:
        return {}
    return {"user": account.pw_uid, "group": account.pw_gid, "extra_groups": []}


def give(path):
    """Hands a file or folder with all that it holds to that account."""
    if os.getuid() != user().pw_uid:
        subprocess.run(["chown", "-R", f"{user().pw_uid}:{user().pw_gid}", str(path)], check=True)


def wine_root():
    """Where the root with Wine is; it is made first if there is none."""
    made = subprocess.run([WINE_ROOT, "make"], stdout=subprocess.PIPE, text=True, check=False)
    if made.returncode != 0:
        raise SystemExit("There is no Wine, and the program for Windows cannot be run")
    return pathlib.Path(made.stdout.strip())


def end(process):
    """Ends a process that was started here."""
    if process is None or process.poll() is not None:
        return
    process.send_signal(signal.SIGTERM)
    try:
        process.wait(10)
    except subprocess.TimeoutExpired:
        process.kill()
        process.wait()


class Display:
    """An X server of its own, with the number that it chose."""

    def __init__(self, size="1024x768"):
        reading, writing = os.pipe()
        self.process = subprocess.Popen(
            ["Xvfb", "-displayfd", str(writing), "-screen", "0", f"{size}x24", "-dpi", "96",
             "-nolisten", "tcp", "-noreset"],
            pass_fds=[writing], stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
            stderr=subprocess.DEVNULL, **as_user())
        os.close(writing)
        with os.fdopen(reading) as numbers:
            number = numbers.readline().strip()
        if not number:
            self.process.wait()
            raise RuntimeError("Xvfb did not start")
        self.name = f":{number}"

    def close(self):
        end(self.process)


class Machine:
    """One machine: a prefix of Wine, a home of its own beside it, and a display."""

    def __init__(self, folder, locale="C.UTF-8", width=64):
        self.width = width
        self.folder = pathlib.Path(folder)
        self.prefix = self.folder / "prefix"
        self.home = self.folder / "home"
        self.drive = self.prefix / "drive_c"
        self.locale = locale
        self.display = None

    def __enter__(self):
        self.display = Display()
        return self

    def __exit__(self, *_):
        try:
            self.stop()
        finally:
            self.display.close()

    def environment(self):
        account = user()
        return {
            "PATH": "/usr/sbin:/usr/bin:/sbin:/bin",
            "ZEV_WINE_USER": f"{account.pw_uid}:{account.pw_gid}",
            **({"ZEV_WINE_ROOT": os.environ["ZEV_WINE_ROOT"]} if "ZEV_WINE_ROOT" in os.environ else {}),
            "HOME": str(self.home),
            "WINEPREFIX": str(self.prefix),
            "WINEARCH": f"win{self.width}",
            "WINESERVER": WINESERVER[self.width],
            "WINEDEBUG": os.environ.get("ZEV_WINEDEBUG", "-all"),
            "DISPLAY": self.display.name,
            "LC_ALL": self.locale,
        }

    def start(self, *command, **options):
        """Starts a program by its Windows path or Wine's own name for it."""
        where = self.drive if self.drive.is_dir() else self.folder
        return subprocess.Popen([WINE_ROOT, "run", LOADER[self.width], *command],
                                env=self.environment(), cwd=where,
                                **{"stdin": subprocess.DEVNULL, **options})

    def run(self, *command, timeout=120, **options):
        """Runs a program to its end; its exit code."""
        process = self.start(*command, **options)
        try:
            return process.wait(timeout)
        except subprocess.TimeoutExpired:
            end(process)
            raise

    def stop(self):
        """Ends all programs of the machine and waits until its registry is written."""
        for order in ("-k", "-w"):
            subprocess.run([WINE_ROOT, "run", WINESERVER[self.width], order],
                           env=self.environment(), cwd=self.folder,
                           stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                           stderr=subprocess.DEVNULL, timeout=60)

    def path(self, windows_path):
        """The host's path of a Windows path on drive C:, its folders made."""
        assert windows_path[:3].upper() == "C:\\", windows_path
        path = self.drive.joinpath(*windows_path[3:].split("\\"))
        path.parent.mkdir(parents=True, exist_ok=True)
        return path

    def put(self, source, windows_path):
        """Copies a file onto the machine."""
        path = self.path(windows_path)
        shutil.copyfile(source, path)
        give(path.parent)
        return windows_path

    def import_registry(self, text):
        """Writes what an exported registry says."""
        file = self.path("C:\\import.reg")
        file.write_text(text)
        give(file)
        if self.run("regedit", "/S", "C:\\import.reg", stdout=subprocess.DEVNULL) != 0:
            raise RuntimeError("the registry could not be imported")
        file.unlink()


class Template:
    """The machine that all others are copies of."""

    def __init__(self, work, width=64):
        self.work = pathlib.Path(work).resolve()
        self.width = width
        self.name = "template" if width == 64 else f"template-{width}"
        self.folder = self.work / self.name
        self.root = None

    def stamp(self):
        edition = (self.root / "edition").read_text().strip()
        return f"{self.root} {edition} {EDITION} {user().pw_name}\n"

    def made(self):
        """The template's folder; it is made first if there is none that fits."""
        self.root = wine_root()
        self.work.mkdir(parents=True, exist_ok=True)
        with open(self.work / f"{self.name}.lock", "w") as lock:
            fcntl.flock(lock, fcntl.LOCK_EX)
            stamp = self.work / f"{self.name}.stamp"
            if not stamp.exists() or stamp.read_text() != self.stamp():
                stamp.unlink(missing_ok=True)
                self.make_twice_at_most()
                stamp.write_text(self.stamp())
        return self.folder

    def make_twice_at_most(self):
        """On a busy machine Wine's first start can fail; that is told."""
        try:
            self.make()
        except RuntimeError as error:
            print(f"{error}; once more", file=sys.stderr)
            self.make()

    def make(self):
        shutil.rmtree(self.folder, ignore_errors=True)
        for folder in ("prefix", "home"):
            (self.folder / folder).mkdir(parents=True)
        give(self.folder)
        with self.machine() as machine:
            if machine.run("wineboot", "-i", timeout=300, stdout=subprocess.DEVNULL,
                           stderr=subprocess.DEVNULL) != 0:
                raise RuntimeError("Wine could not make a machine")
            machine.import_registry(self.settings())
        self.add_fonts(machine)
        self.keep_to_itself(machine)

    def machine(self):
        return Machine(self.folder, width=self.width)

    def settings(self):
        return SETTINGS

    def add_fonts(self, machine):
        """Wine's own fonts, MS Sans Serif among them, come in a package of their own."""
        fonts = machine.drive / "windows" / "Fonts"
        for font in (self.root / "usr" / "share" / "wine" / "fonts").iterdir():
            shutil.copyfile(font, fonts / font.name)
        give(fonts)

    @staticmethod
    def keep_to_itself(machine):
        """Only C: is left, the user's folders are real ones instead of links into the home, and
        nothing tells a copy of the server that the template had."""
        (machine.prefix / "wineserver").unlink(missing_ok=True)
        for link in (machine.prefix / "dosdevices").iterdir():
            if link.name != "c:":
                link.unlink()
        for folder in (machine.drive / "users").glob("*/*"):
            if folder.is_symlink():
                folder.unlink()
                folder.mkdir()
        give(machine.drive / "users")

    def copy(self):
        """A new machine in a folder of its own, which is the caller's to remove."""
        template = self.made()
        folder = pathlib.Path(tempfile.mkdtemp(prefix="machine-", dir=self.work))
        subprocess.run(["cp", "-a", "--reflink=auto", f"{template}/.", str(folder)], check=True)
        return folder


def run(work, program, arguments, timeout, width=64):
    """Runs a program on a fresh machine; its exit code."""
    folder = Template(work, width).copy()
    try:
        with Machine(folder, width=width) as machine:
            name = machine.put(program, f"C:\\Test\\{pathlib.Path(program).name}")
            return machine.run(name, *arguments, timeout=timeout)
    finally:
        shutil.rmtree(folder, ignore_errors=True)


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("--width", type=int, choices=(32, 64), default=64, help="bits of Windows")
    parser.add_argument("--timeout", type=float, default=300, help="seconds that a run may take")
    commands = parser.add_subparsers(dest="command", required=True)
    making = commands.add_parser("template", help="make the template, if there is none that fits")
    making.add_argument("work")
    running = commands.add_parser("run", help="run a program on a fresh machine")
    running.add_argument("work")
    running.add_argument("program")
    running.add_argument("arguments", nargs=argparse.REMAINDER)
    options = parser.parse_args()
    signal.signal(signal.SIGTERM, lambda *_: sys.exit("ended from outside"))
    if options.command == "template":
        begin = time.monotonic()
        print(f"{Template(options.work, options.width).made()} ({time.monotonic() - begin:.1f} s)")
        return 0
    try:
        return run(options.work, options.program, options.arguments, options.timeout, options.width)
    except subprocess.TimeoutExpired:
        return failed(f"{options.program} did not end within {options.timeout:g} seconds; it was "
                      "ended, with its machine")
    except OSError as error:
        return failed(f"{error.filename}: {error.strerror}")


def failed(why):
    print(f"wine_machine: {why}", file=sys.stderr)
    return 1


if __name__ == "__main__":
    sys.exit(main())
