#!/usr/bin/env python3
"""Works through the tutorial as a reader does, and holds what comes out against what it shows.

    tutorial_test.py ROOT BUILD FONTS [PICTURES]

Writes each file where the tutorial says so, runs each command and compares its answer. What lies there at the end must be
the finished project in docs/tutorial, and each picture NAME.png must be docs/pictures/tutorial-NAME.png, pixel for pixel.
With PICTURES the pictures are saved in that folder instead.
"""
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

from guide_test import pixels


def comparable(answer):
    """The answer without the size of an archive, which differs between versions of the compressor."""
    return re.sub(r'\d+(?=  as )', 'N', answer)


class Reader:
    """Follows the tutorial in a folder, and keeps what comes out otherwise in `faults`."""

    def __init__(self, folder, environment):
        self.folder, self.environment, self.faults, self.commands = folder, environment, [], 0

    def write(self, order, text):
        """Writes the file that the paragraph before an example names, or adds to it."""
        named = re.search(r'(Write|Add to the end of)\s+`([\w.]+)`', order)
        if not named:
            self.faults.append(f'nothing says where this belongs: {text[:60]!r}')
            return
        file = self.folder / named[2]
        file.write_text(text if named[1] == 'Write' else file.read_text() + '\n' + text)

    def type(self, shown):
        """Runs the lines that begin with $; the lines between them are what the commands answer."""
        for command, answer in re.findall(r'^\$ (.*)\n((?:(?!\$ ).*\n)*)', shown, re.M):
            self.commands += 1
            if command.startswith('cd '):
                self.folder /= command[3:]
                continue
            done = subprocess.run(command, shell=True, cwd=self.folder, env=self.environment, text=True,
                                  stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
            if comparable(done.stdout) != comparable(answer) or (done.returncode and not answer):
                self.faults.append(f'$ {command}\n{done.stdout}')

    def follow(self, tutorial):
        for before, language, text in re.findall(r'(.*?)^```(\w+)\n(.*?)^```\n', tutorial, re.S | re.M):
            if language == 'console':
                self.type(text)
            else:
                self.write(before.strip().split('\n\n')[-1], text)


def environmentWith(build, fonts, home):
    """The built kpg on the PATH, and a home with a font that it finds by name."""
    (home / 'fonts').mkdir(parents=True)
    shutil.copy(fonts / 'DejaVuSans.ttf', home / 'fonts')
    return dict(os.environ, PATH=f'{build}/src/kpg:{os.environ["PATH"]}', XDG_DATA_HOME=str(home))


def main():
    root, build, fonts = (pathlib.Path(a).resolve() for a in sys.argv[1:4])
    tutorial = (root / 'docs/tutorial.md').read_text()
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        reader = Reader(folder, environmentWith(build, fonts, folder / 'home'))
        reader.follow(tutorial)
        faults = reader.faults
        if reader.commands < 15:
            faults.append(f'only {reader.commands} commands found')
        for finished in sorted((root / 'docs/tutorial').iterdir()):
            written = reader.folder / finished.name
            if not written.is_file() or written.read_bytes() != finished.read_bytes():
                faults.append(f'another {finished.name} than docs/tutorial/{finished.name}')
        for picture in sorted(set(re.findall(r'\(pictures/tutorial-(\w+)\.png\)', tutorial))):
            made, kept = reader.folder / f'{picture}.png', root / f'docs/pictures/tutorial-{picture}.png'
            if sys.argv[4:]:
                shutil.copy(made, pathlib.Path(sys.argv[4]) / kept.name)
            elif not kept.is_file() or not made.is_file() or pixels(made) != pixels(kept):
                faults.append(f'docs/pictures/{kept.name}: comes out otherwise')
    print('\n'.join(f'docs/tutorial.md: {fault}' for fault in faults))
    sys.exit(1 if faults else 0)


main()
