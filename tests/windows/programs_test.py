"""The programs for Windows, run under Wine: programs_test.py TREE BUILD PEER

PEER is a build for this machine; what kpg makes there and here has the same bytes and the same pixels.
"""
import pathlib
import subprocess
import sys
import tempfile
import unittest

TREE, BUILD, PEER = (pathlib.Path(word) for word in sys.argv[1:4])
WINE = TREE / 'scripts/wine'
KPG = BUILD / 'src/kpg/kpg.exe'
PROGRAMS = [KPG, BUILD / 'src/host/win32/vistrel.exe']
PAGES = ['guide', 'settings', 'tour', 'panel', 'game', 'gallery']

# What every Windows has.
SYSTEM = {'advapi32.dll', 'comdlg32.dll', 'gdi32.dll', 'kernel32.dll', 'msvcrt.dll', 'shell32.dll', 'user32.dll', 'winmm.dll'}


def run(*command, folder=None):
    return subprocess.run([str(word) for word in command], cwd=folder, capture_output=True)


def headers(program):
    return run('x86_64-w64-mingw32-objdump', '-p', program).stdout.decode()


class Programs(unittest.TestCase):
    def setUp(self):
        temporary = tempfile.TemporaryDirectory()
        self.addCleanup(temporary.cleanup)
        self.folder = pathlib.Path(temporary.name)

    def kpg(self, *words, status=0):
        done = run(WINE, KPG, *words, folder=self.folder)
        self.assertEqual(done.returncode, status, (done.stdout + done.stderr).decode(errors='replace'))
        return done

    def assert_same_picture(self, name, page, keys):
        made = self.folder / f'{name}-here.png'
        peer = run(PEER / 'src/kpg/kpg', 'shot', PEER / f'demo/{page}.kpg', *keys, '-o', made)
        self.assertEqual(peer.returncode, 0, peer.stderr.decode())
        same = run(PEER / 'src/kpg/kpg', 'diff', made, self.folder / f'{name}.png')
        self.assertEqual(same.returncode, 0, same.stdout.decode())

    def test_they_need_the_system_alone_and_have_the_stack_that_pages_need(self):
        for program in PROGRAMS:
            lines = [line.split() for line in headers(program).splitlines()]
            libraries = {line[-1].lower() for line in lines if line[:2] == ['DLL', 'Name:']}
            self.assertTrue(libraries, program)
            self.assertLessEqual(libraries, SYSTEM, program)
            stack = [int(line[1], 16) for line in lines if line[:1] == ['SizeOfStackReserve']]
            self.assertEqual(stack, [8 << 20], program)

    def test_the_demo_is_built_to_the_same_bytes(self):
        self.kpg('build', TREE / 'demo', '-o', 'made')
        made = sorted(file for file in (self.folder / 'made').iterdir() if file.suffix in ('.kpg', '.kpx', '.bobo'))
        self.assertGreater(len(made), len(PAGES))
        for file in made:
            self.assertEqual(file.read_bytes(), (PEER / 'demo' / file.name).read_bytes(), file.name)

    def test_pages_show_the_same_pixels(self):
        for page in PAGES:
            keys = ['--key', 'Down', '--wait', '300', '--key', 'Select', '--wait', '300']
            self.kpg('shot', PEER / f'demo/{page}.kpg', *keys, '-o', f'{page}.png')
            self.assert_same_picture(page, page, keys)

    def test_files_have_names_in_any_script_and_are_replaced(self):
        (self.folder / 'Übersicht 概要').mkdir()
        self.kpg('new', 'Übersicht 概要/neu')
        self.kpg('build', 'Übersicht 概要/neu')
        self.kpg('build', 'Übersicht 概要/neu', '--all')
        self.assertTrue(list((self.folder / 'Übersicht 概要/neu').rglob('*.kpg')))
        self.assertFalse(list(self.folder.rglob('*.part')))

    def test_what_is_printed_has_plain_lines(self):
        here = run(PEER / 'src/kpg/kpg', 'dump', PEER / 'demo/settings.kpg').stdout
        self.assertEqual(self.kpg('dump', PEER / 'demo/settings.kpg').stdout, here)

    def test_there_is_no_studio_to_talk_to(self):
        done = self.kpg('remote', 'socket', 'tree', status=1)
        self.assertIn(b'there is no studio on Windows', done.stderr)


if __name__ == '__main__':
    unittest.main(argv=sys.argv[:1], verbosity=2)
