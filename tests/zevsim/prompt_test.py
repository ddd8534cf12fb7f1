"""The prompt as a person has it, on a terminal of 80 columns by 24 lines that the test reads.

Run with the program in ZEVSIM and an installer's file in PACKAGE.
"""

import re
import unittest

from screen import LINES, Screen

PAGES = 4


class Case:
    """What every class has: a screen of its own, and what must be true of whatever is on it."""

    def start(self, *arguments, columns=80):
        screen = Screen(*arguments, columns=columns)
        self.addCleanup(screen.close)
        return screen

    def assert_whole(self, screen):
        """The last drawing is on the screen from its first line to its last, and so is what is below
        it; nothing reaches the last two columns, so that no line was broken."""
        frame = screen.frame()
        self.assertRegex(frame[0], r"^\+- .+ -+\+$|^\+- .+ -\+$", "\n".join(screen.lines()))
        width = len(frame[0])
        self.assertLessEqual(width, screen.columns - 2)
        for line in frame[1:-1]:
            self.assertRegex(line, r"^\| .* \|$")
        self.assertEqual({len(line) for line in frame}, {width}, "\n".join(frame))
        self.assertLessEqual(max(map(len, screen.lines())), screen.columns - 2)

    def assert_shows(self, screen, *pieces):
        text = "\n".join(screen.frame())
        for piece in pieces:
            self.assertIn(piece, text)

    def assert_ran(self, screen):
        """A bar grew to its end, on one line of the screen and never beyond it."""
        self.assertEqual(len({row for row, _ in screen.bars}), 1)
        figures = []
        for _, line in screen.bars:
            match = re.fullmatch(r"\[(#*)\.*\](?: +(\d+)%)?(?: .*)?", line)
            self.assertTrue(match, line)
            self.assertLessEqual(len(line), screen.columns - 2)
            figures.append((len(match[1]), int(match[2] or 0)))
        self.assertEqual(figures, sorted(figures))
        self.assertGreater(len(set(figures)), 50)
        bar = screen.bars[-1][1]
        self.assertTrue(re.match(r"\[#+\] 100%", bar), bar)
        self.assertGreater(len({line.split("%")[-1] for _, line in screen.bars}), 50)


class EnglishWalk(Case, unittest.TestCase):
    def test_the_whole_wizard(self):
        screen = self.start()
        self.welcome(screen)
        self.agreement(screen)
        self.directory(screen)
        self.run_through(screen)
        self.assertEqual(screen.leave(), 0)

    def welcome(self, screen):
        self.assert_whole(screen)
        self.assert_shows(screen, "ZEV Screen Recorder - Install", "Language :", "[English", "v]",
                          ":", "<< Back", "Next >> ]")
        self.assertEqual(screen.told(), ["help tells what to type, quit leaves."])
        self.assertIn('>Command2 "Next >>"', screen.controls()["use"])
        self.assertEqual(screen.controls()["disabled"].strip(), 'Command1 "<< Back"')
        screen.type("help")
        self.assertEqual(screen.lines()[-21].split()[:2], ["click", "NAME"])
        self.assertTrue(screen.lines()[-2].startswith("help, quit"))
        screen.type("list Combo1")
        self.assertEqual(screen.told(), ["* English", "  Deutsch", "  Français", "  Espanol"])
        screen.type("click Back")
        self.assertEqual(screen.told(), ['Command1 "<< Back" is disabled'])
        screen.type("click Option1")
        self.assertEqual(screen.told(), ['Option1 "Yes I Agree." is hidden'])
        screen.type("next")
        self.assertEqual(screen.told(), ['no verb "next"; is it "click next"?'])
        screen.type("click Next")

    def agreement(self, screen):
        self.assert_whole(screen)
        self.assert_shows(screen, "Please read before you continue :", "(read shows all of it)",
                          "( ) Yes I Agree.", "( ) No I Do Not Agree.", ": Next >> :")
        screen.type("click next")
        self.assertEqual(screen.told(), ['Command2 "Next >>" is disabled'])
        self.read(screen)
        screen.type("click agree")
        self.assertEqual(screen.told(), ['"agree" may be Option1 "Yes I Agree." or '
                                         'Option2 "No I Do Not Agree."'])
        screen.type("click yes")
        self.assert_shows(screen, "(*) Yes I Agree.", "[ Next >> ]")
        screen.type("click next")

    def read(self, screen):
        screen.type("read")
        whole = int(re.match(r"-- 22 of (\d+) lines", screen.lines()[-2])[1])
        text = screen.lines()[:22]
        self.assertTrue(text[0].startswith("Please read the following terms carefully"))
        screen.type("back")
        self.assertEqual(screen.lines()[:22], text)
        screen.type("nonsense")
        self.assertEqual(screen.lines()[-2], 'no "nonsense"; there are Enter, back, done')
        screen.type("help")
        self.assertEqual(screen.lines()[-2], "quit leaves.")
        while screen.prompt() == "more>":
            screen.type()
            if screen.prompt() != "more>":
                break
            end = int(re.match(r"-- (\d+) of", screen.lines()[-2])[1])
            page = screen.lines()[:-2]
            text += page[len(page) - (end - len(text)):]
        self.assertEqual(len(text), whole)
        self.assertGreater(whole, 60)
        self.assertLessEqual(max(map(len, text)), 78)
        self.assert_whole(screen)
        self.assert_shows(screen, "( ) Yes I Agree.")

    def directory(self, screen):
        self.assert_whole(screen)
        self.assert_shows(screen, r"[C:\Program Files\ZEV Screen Recorder 6", "[    Change Dir    ]",
                          "[ Install ]")
        screen.type("click Change Dir")
        self.assert_whole(screen)
        self.assert_shows(screen, "[c: ", "|C:\\ ", "|  Program Files ", "65,536 MB", "New Folder")
        screen.type("list Drive1")
        self.assertEqual(screen.told(), ["* c:"])
        screen.type("folder ..")
        self.assert_shows(screen, "|  Users")
        screen.type("folder prog")
        self.assertEqual(screen.told(), ['"prog" may be Program Files, ProgramData'])
        screen.type("folder program f")
        screen.type("click New Folder")
        self.assertEqual(screen.prompt(), "text>")
        self.assert_whole(screen)
        self.assert_shows(screen, "Enter a name for new folder :", "C:\\Program Files\\ ")
        screen.type("help")
        self.assertTrue(screen.told()[0].startswith("What is typed is the text"))
        screen.type("Apps")
        self.assert_shows(screen, "|    Apps ")
        screen.type("click Ok")
        self.assert_whole(screen)
        self.assert_shows(screen, r"[C:\Program Files\Apps\ZEV Screen Recorder 6")

    def run_through(self, screen):
        self.assertEqual(screen.bars, [])
        screen.type("click install")
        self.assert_ran(screen)
        self.assert_whole(screen)
        self.assert_shows(screen, "successfully", "[ Finish  ]")
        screen.type("click finish")
        self.assertEqual(screen.lines()[-3:], ['The program has ended: "unload"',
                                               "restart starts it anew, quit leaves.", ">"])
        screen.type(r"show file:C:\Program Files\Apps\ZEV Screen Recorder 6\none")
        self.assertEqual(screen.told(), ["null"])


class FrenchWalk(Case, unittest.TestCase):
    def test_the_whole_wizard(self):
        screen = self.start()
        screen.type("select Combo1 FRANC")
        self.assert_whole(screen)
        self.assert_shows(screen, "[Français", "Suivant >>")
        screen.type("click suiv")
        self.assert_shows(screen, "Veuillez lire avant de continuer :", "( ) Oui, j'accepte.")
        screen.type("read Text1")
        self.assertTrue(screen.lines()[0].startswith("Veuillez lire attentivement"))
        screen.type("done")
        self.assert_whole(screen)
        screen.type("click oui")
        screen.type("click suivant")
        self.assert_shows(screen, "Cliquez sur le bouton 'Installer'")
        screen.type("click repertoire")
        self.assert_whole(screen)
        self.assert_shows(screen, "Nouveau Répertoire", "Espace Libre")
        screen.type("click nouv")
        screen.type("Été")
        screen.type("folder ..")
        screen.type("folder ete")
        self.assert_shows(screen, "|    Été ")
        screen.type("click ok")
        self.assert_shows(screen, r"[C:\Program Files\Été\ZEV Screen Recorder 6")
        screen.type("click retour")
        self.assert_shows(screen, "( ) Oui, j'accepte.")
        screen.type("click oui")
        screen.type("click suivant")
        screen.type("click installer")
        self.assert_ran(screen)
        self.assert_whole(screen)
        self.assert_shows(screen, "est terminée", "Fin")
        screen.type("click fin")
        self.assertIn('The program has ended: "unload"', screen.lines())
        self.assertEqual(screen.leave("exit"), 0)


class AllPages(Case, unittest.TestCase):
    """Each page of the wizard, and the folder browser, in each language."""

    LANGUAGES = {"engl": ("next", "yes", "change", "cancel"),
                 "deu": ("weiter", "ja", "andern", "abbrechen"),
                 "fran": ("suivant", "oui", "changer", "annuler"),
                 "esp": ("siguiente", "si", "cambiar", "cancelar")}

    def test_fit_in_every_language(self):
        for columns in (80, 62, 42):
            for language in self.LANGUAGES:
                with self.subTest(language=language, columns=columns):
                    self.walk(language, columns)

    def walk(self, language, columns):
        following, agreed, change, cancel = self.LANGUAGES[language]
        screen = self.start("--width", str(columns - 2), columns=columns)
        for line in (f"select {language}", f"click {following}", f"click {agreed}",
                     f"click {following}", f"click {change}", f"click {cancel}", f"click {cancel}"):
            before = screen.frame()
            screen.type(line)
            self.assert_whole(screen)
            if line != "select engl":
                self.assertNotEqual(screen.frame(), before, f"{line} did nothing")
        self.assertEqual(screen.prompt(), "answer>")
        self.assertEqual(screen.leave(), 0)


class Boxes(Case, unittest.TestCase):
    def test_a_wrong_word_is_told_what_there_is(self):
        screen = self.start()
        screen.type("click cancel")
        self.assert_whole(screen)
        self.assert_shows(screen, "Do you want to cancel the installation?", "[ yes ]  [ no * ]")
        self.assertEqual(screen.prompt(), "answer>")
        screen.type("maybe")
        self.assertEqual(screen.told(), ['no button "maybe"; there are yes, no'])
        screen.type("help")
        self.assertEqual(screen.told(), ["A button or its beginning: yes, no.",
                                         "An empty line takes the one with the star. quit leaves."])
        screen.type("n")
        self.assert_shows(screen, "Language :")
        screen.type("click cancel")
        screen.type()
        self.assertEqual(screen.prompt(), ">")
        screen.type("click cancel")
        screen.type("y")
        self.assertIn('The program has ended: "unload"', screen.lines())
        screen.type("click next")
        self.assertEqual(screen.told(),
                         ["the program has ended; only expect, change and restart can follow"])
        screen.type("restart")
        self.assert_whole(screen)
        self.assertEqual(screen.leave(), 0)

    def test_a_long_text_fits(self):
        screen = self.start()
        for line in ("click next", "click yes", "click next", "type Text2 C:\\a?b", "click install"):
            screen.type(line)
        self.assert_whole(screen)
        self.assert_shows(screen, "Folder name cannot contain any of the", "C:\\a?b", "[ ok * ]")
        screen.type("ok")
        self.assert_shows(screen, "C:\\a?b")

    def test_quit_leaves_everywhere(self):
        for lines in ([], ["click cancel"], ["click next", "read"],
                      ["click next", "click yes", "click next", "click change", "click new"]):
            with self.subTest(lines=lines):
                screen = self.start()
                for line in lines:
                    screen.type(line)
                self.assertEqual(screen.leave(), 0)

    def test_the_end_of_the_input_leaves_everywhere(self):
        for lines in ([], ["click cancel"]):
            with self.subTest(lines=lines):
                screen = self.start()
                for line in lines:
                    screen.type(line)
                self.assertEqual(screen.end_input(), 0)


class Narrow(Case, unittest.TestCase):
    def test_the_whole_wizard_in_forty_columns(self):
        screen = self.start("--width", "40", columns=42)
        for line in ("click next", "read", "done", "click yes", "click next", "click install"):
            screen.type(line)
            if screen.prompt() != "more>":
                self.assert_whole(screen)
        self.assert_ran(screen)
        screen.type("click finish")
        self.assertEqual(screen.leave(), 0)

    def test_the_width_changes_at_the_prompt(self):
        screen = self.start()
        screen.type("width 50")
        self.assertEqual(len(screen.frame()[0]), 50)
        screen.type("width 30")
        self.assertEqual(screen.told(), ["a width is a number of columns, 40 at least"])
        screen.type("help")
        self.assertLessEqual(max(map(len, screen.lines())), 50)


if __name__ == "__main__":
    unittest.main()
