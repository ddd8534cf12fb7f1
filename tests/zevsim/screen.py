"""A terminal of so many columns by 24 lines with zevsim's prompt in it, and what is to be read there."""

import os
import re

import pexpect
import pyte

ZEVSIM = os.environ["ZEVSIM"]
PACKAGE = os.environ["PACKAGE"]
LINES = 24
PATIENCE = 60

PROMPT = re.compile(r"(?:^|\n)((?:answer|text|more)?> )$")
CLEARED = "\x1b[K"  # behind each drawing of a bar


class Screen:
    """A person in front of the terminal. Each line that is typed waits for the next prompt."""

    def __init__(self, *arguments, columns=80):
        self.columns = columns
        self.screen = pyte.Screen(columns, LINES)
        self.stream = pyte.Stream(self.screen)
        self.bars = []
        command = ["--interactive", "--package", PACKAGE, *arguments]
        self.child = pexpect.spawn(ZEVSIM, command, dimensions=(LINES, columns), timeout=PATIENCE,
                                   encoding="utf-8")
        self.wait()

    def wait(self):
        self.child.expect(PROMPT)
        self.show(self.child.before + self.child.after)

    def show(self, text):
        for piece in re.split(f"(?<={re.escape(CLEARED)})", text.lstrip("\x00")):
            self.stream.feed(piece)
            if piece.endswith(CLEARED):
                self.bars.append((self.screen.cursor.y, self.lines()[self.screen.cursor.y]))

    def type(self, line=""):
        self.child.sendline(line)
        self.wait()

    def leave(self, line="quit"):
        """Types what ends the program; its exit status."""
        self.child.sendline(line)
        return self.ended()

    def end_input(self):
        self.child.sendeof()
        return self.ended()

    def ended(self):
        self.child.expect(pexpect.EOF)
        self.show(self.child.before)
        self.child.close()
        return self.child.exitstatus

    def close(self):
        self.child.close(force=True)

    # -- reading

    def lines(self):
        return [line.rstrip() for line in self.screen.display]

    def prompt(self):
        return self.lines()[self.screen.cursor.y]

    def told(self):
        """The lines between the last line that was typed, or the last drawing, and the prompt."""
        lines = []
        for line in reversed(self.lines()[:self.screen.cursor.y]):
            if re.match(r"(answer|text|more)?> |[|+]|use: |disabled: | {11}", line):
                break
            lines.insert(0, line)
        return lines

    def frame(self):
        """The lines of the last drawing, a form or a box, as far as they are on the screen."""
        lines = self.lines()
        bottom = max((at for at, line in enumerate(lines) if re.fullmatch(r"\+-+\+", line)),
                     default=None)
        if bottom is None:
            return []
        top = bottom - 1
        while top >= 0 and lines[top].startswith("|"):
            top -= 1
        return lines[max(top, 0):bottom + 1]

    def controls(self):
        """What is listed below the form: usable and disabled, each a text."""
        below = self.lines()[:self.screen.cursor.y]
        start = max(at for at, line in enumerate(below) if line.startswith("use: "))
        listed = {"use": "", "disabled": ""}
        for line in below[start:]:
            match = re.match(r"(use|disabled|)[: ] +(.*)$", line)
            if not match:
                break
            heading = match[1] or heading
            listed[heading] += match[2] + "  "
        return listed
