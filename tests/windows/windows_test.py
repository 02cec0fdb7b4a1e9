"""The previewer for Windows in real windows, under Wine on an X server: windows_test.py TREE BUILD PEER

A program beside it tells what the windows are and what the console says; the screen is seen as it is painted.
"""
import inspect
import pathlib
import re
import subprocess
import sys
import tempfile
import time
import unittest

TREE, BUILD, PEER = (pathlib.Path(word) for word in sys.argv[1:4])
WINE = str(TREE / 'scripts/wine')
WIDTH, HEIGHT = 720, 480


def run(*command, **options):
    return subprocess.run([str(word) for word in command], check=True, capture_output=True, **options).stdout


def wait_for(what, *arguments):
    """What `what` returns once that is something; the test fails when nothing ever comes."""
    for _ in range(600):
        found = what(*arguments)
        if found:
            return found
        time.sleep(0.2)
    raise AssertionError(f'{inspect.getsource(what).strip()} never came')


def window(title):
    found = subprocess.run(['xdotool', 'search', '--onlyvisible', '--name', f'^{title}$'], capture_output=True, text=True)
    return found.stdout.split()[-1] if found.stdout else None


# A click below the text, which leaves the caret at its end, or where a page has nothing; a dialog has the keys anyway.
PLACES = {'KOVA Messages': (700, 580), 'KOVA Screen': (719, 490)}


def focus(title):
    """Does what a window manager would, if there was one, and clicks, which makes the window the active one."""
    number = window(title)
    run('xdotool', 'windowfocus', number)
    if title in PLACES:
        run('xdotool', 'mousemove', '--window', number, *PLACES[title], 'click', '1')
    wait_for(lambda: focused() == number)


def focused():
    return run('xdotool', 'getwindowfocus').decode().strip()


def keys(title, *names):
    focus(title)
    run('xdotool', 'key', '--delay', '60', *names)


def type_text(title, text):
    focus(title)
    run('xdotool', 'type', '--delay', '40', text)


def rows(picture, *options):
    """The pixels of a picture as rows of RGB bytes."""
    size = run('identify', '-format', '%w', picture)
    data = run('convert', picture, '-depth', '8', *options, 'rgb:-')
    stride = int(size) * 3
    return [data[i:i + stride] for i in range(0, len(data), stride)]


class Windows(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.temporary = tempfile.TemporaryDirectory()
        cls.folder = pathlib.Path(cls.temporary.name)
        cls.program = subprocess.Popen([WINE, str(BUILD / 'src/host/win32/vistrel.exe')], cwd=cls.folder)
        wait_for(window, 'KOVA Screen')
        run('xdotool', 'windowmove', wait_for(window, 'KOVA Messages'), 760, 40)  # beside the screen
        cls.load(PEER / 'demo/settings.kpg')

    @classmethod
    def tearDownClass(cls):
        cls.program.kill()
        cls.temporary.cleanup()

    @classmethod
    def load(cls, page):
        """Opens a page by the menu and the dialog."""
        keys('KOVA Screen', 'alt+f', 'l')
        wait_for(window, 'Load File...')
        type_text('Load File...', 'Z:' + str(page).replace('/', '\\'))
        keys('Load File...', 'Return')
        wait_for(lambda: not window('Load File...'))

    def look(self):
        return run(WINE, BUILD / 'tests/windows/lookatwindows.exe').decode('cp1252')

    def console(self):
        return self.look().split('text\r\n', 1)[-1].replace('\r\r\n', '\n')

    def shows(self, page, *actions):
        """Whether the window shows, somewhere below its menu, exactly what kpg shot draws."""
        run(PEER / 'src/kpg/kpg', 'shot', PEER / f'demo/{page}.kpg', *actions, '-o', self.folder / 'expected.png')
        run('import', '-window', window('KOVA Screen'), self.folder / 'seen.png')
        expected, seen = rows(self.folder / 'expected.png'), rows(self.folder / 'seen.png')
        return any(seen[y:y + HEIGHT] == expected for y in range(len(seen) - HEIGHT + 1))

    def test_1_windows_are_what_the_player_has(self):
        seen = self.look()
        self.assertRegex(seen, r'console class "KOVA Messages" style 14cf0000 outer 808x627 client 800x600')
        self.assertRegex(seen, r'screen class "KOVA Screen" style 14cf0000 outer \d+x\d+ client 720x480')
        self.assertRegex(seen, r'edit class "Edit" style 50200124 outer \d+x\d+')

    def test_2_a_page_is_shown_and_answers_keys(self):
        wait_for(self.shows, 'settings')
        keys('KOVA Screen', 'Down')
        wait_for(self.shows, 'settings', '--key', 'Down')
        keys('KOVA Screen', 'm', 'k')
        wait_for(self.shows, 'settings', '--key', 'Down', '--key', 'DownLeft', '--key', 'Select')

    def test_3_a_line_of_the_console_is_a_statement(self):
        type_text('KOVA Messages', 'stdout.Display(6*7);')
        keys('KOVA Messages', 'Return')
        wait_for(lambda: '42' in self.console())

    def test_4_a_message_lands_in_the_middle_of_what_is_typed(self):
        type_text('KOVA Messages', 'abcdef')
        wait_for(lambda: self.console().endswith('abcdef'))
        keys('KOVA Messages', 'Left', 'Left', 'Left')
        self.load('/no/page.kpg')
        wait_for(lambda: re.search(r'abc[^\n]*page\.kpg[^\n]*\ndef$', self.console()))

    def test_5_closing_a_window_ends_the_program(self):
        keys('KOVA Screen', 'alt+f', 'x')
        self.assertEqual(wait_for(lambda: self.program.poll() is not None) and self.program.returncode, 0)


if __name__ == '__main__':
    unittest.main(argv=sys.argv[:1], verbosity=2)
