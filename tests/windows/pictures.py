#!/usr/bin/env python3
"""Takes the pictures of the real program: its pages, dialogs and boxes, driven by the keyboard alone.

    pictures.py WORK PACKAGE.exe FOLDER [--languages english,german] [--dpi 96] [--kept FOLDER] [--here]

WORK is the folder of wine_machine.py; the pictures come into FOLDER as LANGUAGE-DPI-NAME.png. It
fails if a picture shows nothing or the same as another one of its set, or differs from the kept one
of its name. With --here a person at the present display can look on.
"""

import argparse
import hashlib
import os
import pathlib
import shutil
import subprocess
import sys
import time

import wine_machine

# The number in the value file `Language` from which the wizard comes up in a language.
LANGUAGES = {"english": 0, "german": 1, "french": 3, "spanish": 4}
SIZES = {96: "1024x768", 144: "1280x1024", 192: "1600x1200"}

# To the path of the directory page, in tab order: the browser leads back to it by itself.
TABS_FROM_BROWSER = 0
TABS_FROM_INSTALL = 3

TURKISH = "1"  # by its number: the wizard's list does not have it

# The window of the new group would lie over the form: folders are opened by a program without one.
NO_WINDOW = "C:\\\\windows\\\\system32\\\\rundll32.exe"

# A caret that blinks is another picture at each look, where looks take as long as it does.
NO_BLINKING = "-1"

# So much of a picture may differ from the kept one, and of the browser, which tells the free space of
# the host's disk. A button that is elsewhere is more. Colours may differ where fonts are drawn with
# soft edges.
MOST_DIFFERENT = 0.0005
MOST_DIFFERENT_SPACE = 0.003
SOFT_EDGES = "25%"

FIRST_WAIT = 30.0
RUN_WAIT = 120.0
REST_WAIT = 30.0
BETWEEN_LOOKS = 0.08


class PresentDisplay:
    """The display that a person sits at; Wine's desktop is a window on it."""

    def __init__(self):
        self.name = os.environ["DISPLAY"]

    def close(self):
        pass


def display(options, size):
    """The present display with its window to look at, if it is asked for and lets us in; else one of
    our own."""
    if options.here and os.environ.get("DISPLAY"):
        asked = subprocess.run(["import", "-window", "root", "null:"], capture_output=True,
                               **wine_machine.as_user())
        if asked.returncode == 0:
            return PresentDisplay(), "Default - Wine desktop"
    return wine_machine.Display(size), "root"


class Sitting:
    """One person at one machine with the program started."""

    def __init__(self, options, language, dpi, windows="win7", arguments=()):
        self.language, self.dpi = language, dpi
        self.folder = wine_machine.Template(options.work).copy()
        self.machine = wine_machine.Machine(self.folder)
        self.machine.display, self.window = display(options, SIZES[dpi])
        self.target = pathlib.Path(options.folder)
        self.kept = options.kept
        self.seen = {}
        self.differences = []
        self.frame = None
        try:
            self.prepare(windows)
            self.program = self.machine.put(options.package, "C:\\Downloads\\ZEVSetup.exe")
            self.process = self.machine.start(self.program, *arguments)
            self.rest(FIRST_WAIT)
        except BaseException:
            self.close()
            raise

    def prepare(self, windows):
        width_and_height = SIZES[self.dpi]
        self.machine.import_registry(
            "REGEDIT4\n\n"
            f'[HKEY_CURRENT_USER\\Software\\Wine]\n"Version"="{windows}"\n\n'
            f'[HKEY_CURRENT_USER\\Control Panel\\Desktop]\n"LogPixels"=dword:{self.dpi:08x}\n'
            f'"CursorBlinkRate"="{NO_BLINKING}"\n\n'
            "[HKEY_CURRENT_USER\\Software\\Wine\\Explorer\\Desktops]\n"
            f'"Default"="{width_and_height}"\n\n'
            "[HKEY_CLASSES_ROOT\\Folder\\shell\\open\\command]\n"
            f'@="{NO_WINDOW}"\n\n[-HKEY_CLASSES_ROOT\\Folder\\shell\\open\\ddeexec]\n')
        self.machine.stop()
        user = wine_machine.user().pw_name
        values = f"C:\\users\\{user}\\AppData\\Local\\Tavorns\\ZEV5\\Language"
        path = self.machine.path(values)
        path.write_text(f"{LANGUAGES.get(self.language, 0)}\r\n")
        wine_machine.give(self.machine.drive / "users")

    def close(self):
        self.machine.__exit__()
        shutil.rmtree(self.folder, ignore_errors=True)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()

    def look(self):
        """The screen as it is now, as PNG; nothing before its window stands."""
        return subprocess.run(["import", "-window", self.window, "-silent", "png:-"],
                              env={**os.environ, "DISPLAY": self.machine.display.name},
                              capture_output=True).stdout

    @staticmethod
    def colours(picture):
        count = subprocess.run(["identify", "-format", "%k", "png:-"], input=picture,
                               capture_output=True, check=True).stdout
        return int(count)

    def rest(self, limit=REST_WAIT):
        """Waits until the screen shows something and stays as it is."""
        end = time.monotonic() + limit
        before = self.look()
        while time.monotonic() < end:
            time.sleep(BETWEEN_LOOKS)
            now = self.look()
            if now and before and pixels(now) == pixels(before) and self.colours(now) > 2:
                return now
            before = now
        raise RuntimeError(f"{self.language} {self.dpi}: the screen does not come to rest")

    def keys(self, *names):
        for name in names:
            self.type("key", name)
            time.sleep(0.05)
        return self.rest()

    def await_end_of_run(self):
        """The run lays its last file long before its end: the product's group is what comes last."""
        group = self.machine.drive / "ProgramData/Microsoft/Windows/Start Menu"
        end = time.monotonic() + RUN_WAIT
        while not list(group.glob("*/Uninstall*.lnk")):
            if time.monotonic() > end:
                raise RuntimeError("the run does not come to its end")
            time.sleep(0.2)
        time.sleep(2)

    def finish(self, key):
        """Presses what has the focus behind the run, which is Finish: the program ends."""
        self.type("key", key)
        try:
            status = self.process.wait(REST_WAIT)
        except subprocess.TimeoutExpired:
            raise RuntimeError(f"{self.language} {self.dpi}: {key} does not press Finish") from None
        if status != 0:
            raise RuntimeError(f"{self.language} {self.dpi}: the program ends with {status}")

    def type(self, *what):
        subprocess.run(["xdotool", *what], check=True,
                       env={**os.environ, "DISPLAY": self.machine.display.name})

    def picture(self, name, in_frame=False, most_different=MOST_DIFFERENT):
        """Keeps what is on the screen without the desktop around it, or what the form alone shows:
        it stands where it stood in the first picture."""
        shown = self.rest()
        mark = hashlib.sha256(pixels(shown)).hexdigest()
        if mark in self.seen:
            raise RuntimeError(f"{self.language} {self.dpi}: {name} shows the same as "
                               f"{self.seen[mark]}")
        self.seen[mark] = name
        cut = ["-crop", self.frame] if in_frame else ["-trim"]
        file = self.target / f"{self.language}-{self.dpi}-{name}.png"
        subprocess.run(["convert", "png:-", *cut, "+repage", "-strip", str(file)], input=shown,
                       check=True)
        if self.kept:
            self.differences += difference(file, self.kept / file.name, most_different)
        if self.frame is None:
            self.frame = subprocess.run(["convert", "png:-", "-format", "%@", "info:"], input=shown,
                                        capture_output=True, check=True).stdout.decode()


def difference(file, kept, most):
    """How a picture differs from the kept one, if it does."""
    if not kept.exists():
        return [f"{file.name}: there is no kept picture {kept}"]
    size, before = (subprocess.run(["identify", "-format", "%w %h", str(each)], capture_output=True,
                                   check=True, text=True).stdout for each in (file, kept))
    if size != before:
        return [f"{file.name}: {size} pixels, the kept one {before}"]
    width, height = map(int, size.split())
    compared = subprocess.run(["compare", "-metric", "AE", "-fuzz", SOFT_EDGES, str(file), str(kept),
                               str(file.with_suffix(".difference.png"))],
                              capture_output=True, text=True)
    different = float(compared.stderr)
    if different <= most * width * height:
        file.with_suffix(".difference.png").unlink()
        return []
    return [f"{file.name}: {different:.0f} pixels differ from {kept}, see "
            f"{file.with_suffix('.difference.png')}"]


def pixels(picture):
    return subprocess.run(["convert", "png:-", "rgb:-"], input=picture, capture_output=True,
                          check=True).stdout


def walk(options, language, dpi):
    """From the welcome to Finish, with a look at each page, the browser and three boxes."""
    with Sitting(options, language, dpi) as sitting:
        sitting.picture("1-welcome")
        sitting.keys("Escape")
        sitting.picture("box-cancel")
        sitting.keys("Return")  # No, the default
        sitting.keys("Return")
        sitting.picture("2-agreement")
        sitting.keys("Tab", "Tab", "space", "Tab", "Tab", "Return")
        sitting.picture("3-directory")
        sitting.keys("Tab", "Tab", "space")
        sitting.picture("browser", most_different=MOST_DIFFERENT_SPACE)
        sitting.keys("Escape")
        typed(sitting, TABS_FROM_BROWSER, "")
        sitting.keys("Return")
        sitting.picture("box-empty-directory")
        sitting.keys("Return")
        typed(sitting, TABS_FROM_INSTALL, "C:\\a>b")
        sitting.keys("Return")
        sitting.picture("box-forbidden-characters")
        sitting.keys("Return")
        typed(sitting, TABS_FROM_INSTALL, "C:\\ZEV Screen Recorder 6")
        sitting.type("key", "Return")  # the run moves on for longer than a screen may take to rest
        sitting.await_end_of_run()
        sitting.picture("4-finished", in_frame=True)
        sitting.finish("Return")
        hold(sitting)


def typed(sitting, tabs, directory):
    """Replaces the directory, so many tabs away, and goes on to Install."""
    sitting.keys(*["Tab"] * tabs, "Home", "shift+End", "Delete")
    if directory:
        sitting.type("type", "--delay", "30", directory)
    sitting.keys("Tab", "Tab")


def hold(sitting):
    """Fails if any picture of a sitting differs from the kept one."""
    if sitting.differences:
        raise RuntimeError("\n".join(sitting.differences))


def look_at_options(options, language, dpi):
    """The dialog of the one system that has it."""
    with Sitting(options, language, dpi, windows="win8") as sitting:
        sitting.keys("shift+Tab", "space")
        sitting.picture("options")
        hold(sitting)


def look_at_gallery(options):
    """A page in the language that the wizard does not offer: the program is another one."""
    with Sitting(options, "turkish", options.dpi, arguments=[TURKISH]) as sitting:
        sitting.picture("1-welcome")
        hold(sitting)


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("work")
    parser.add_argument("package")
    parser.add_argument("folder")
    parser.add_argument("--languages", default=",".join(LANGUAGES))
    parser.add_argument("--gallery", action="store_true",
                        help="the program shows a page alone: form_gallery.exe")
    parser.add_argument("--kept", type=pathlib.Path, help="pictures to hold these against")
    parser.add_argument("--here", action="store_true", help="use the present display")
    parser.add_argument("--dpi", type=int, default=96, choices=list(SIZES))
    options = parser.parse_args()
    pathlib.Path(options.folder).mkdir(parents=True, exist_ok=True)
    if options.gallery:
        return look_at_gallery(options)
    for language in options.languages.split(","):
        walk(options, language, options.dpi)
        look_at_options(options, language, options.dpi)
        print(f"{language} {options.dpi}: all pictures taken, they are in {options.folder}",
              flush=True)


if __name__ == "__main__":
    main()
