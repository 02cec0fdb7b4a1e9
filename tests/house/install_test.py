#!/usr/bin/env python3
"""Installs a build into a folder of its own and looks at it as somebody does who has installed it.

    install_test.py CMAKE BUILD VERSION

Programs run from where they are installed, every command and option is in the manual and in each shell's completion, and
what the desktop reads is sound. Checks that need a program which is missing here are left out, and named.
"""
import gzip
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import xml.etree.ElementTree

CMAKE, BUILD, VERSION = sys.argv[1:]
faults = []


def expect(true, what):
    if not true:
        faults.append(what)


def run(*command, **options):
    return subprocess.run([str(word) for word in command], capture_output=True, text=True, **options)


def expect_quiet(*command, **options):
    if not shutil.which(command[0]):
        print(f'left out, since {command[0]} is missing: {command}')
        return
    result = run(*command, **options)
    expect(result.returncode == 0 and not result.stderr, f'{command}: {result.stdout}{result.stderr}')


def check_programs(root):
    kpg = root / 'bin/kpg'
    expect(run(kpg, '--version').stdout == f'kpg {VERSION}\n', 'kpg --version')
    shot = run(kpg, 'shot', root / 'share/vistrel/demo/guide.kpg', '-o', root / 'guide.png', '--log', '-')
    expect(shot.returncode == 0 and 'not found' not in shot.stdout, f'the demo: {shot.stdout}{shot.stderr}')
    expect((root / 'share/vistrel/docs/authoring.md').is_file(), 'the guide')
    expect((root / 'share/vistrel/editors/vim/after/syntax/yaml.vim').is_file(), 'the files of Vim')
    expect((root / 'share/vistrel/editors/emacs/bob-mode.el').is_file(), 'the mode of Emacs')


def words_of(kpg):
    """{command: its options}, read from the help."""
    commands = re.findall(r'^  ([a-z]+) ', run(kpg, '--help').stdout.partition('Subcommands:')[2], re.M)
    return {c: set(re.findall(r'^  (?:(-\w),)?(--?[\w-]+)', run(kpg, c, '--help').stdout, re.M)) for c in commands}


def check_words(root):
    commands = words_of(root / 'bin/kpg')
    expect(len(commands) > 10, f'commands: {commands}')
    manual = gzip.decompress((root / 'share/man/man1/kpg.1.gz').read_bytes()).decode()
    texts = {
        'bash': (root / 'share/bash-completion/completions/kpg').read_text(),
        'zsh': (root / 'share/zsh/vendor-completions/_kpg').read_text(),
        'fish': (root / 'share/fish/vendor_completions.d/kpg.fish').read_text(),
    }
    for command, options in commands.items():
        expect(re.search(rf'^\.It Nm Cm {command}\b', manual, re.M), f'the manual lacks {command}')
        for text in texts.values():
            expect(re.search(rf'\b{command}\b', text), f'a completion lacks {command}')
        for name in {name for pair in options for name in pair if name}:
            if name not in ('-h', '--help'):
                expect(f'Fl {name[1:]} ' in manual or f'Fl {name[1:]}\n' in manual, f'the manual lacks {command} {name}')
            expect(name in texts['bash'] and name + '[' in texts['zsh'], f'bash or zsh lacks {command} {name}')
            fish = f'-l {name[2:]} ' if name.startswith('--') else f'-s {name[1:]} '
            expect(fish in texts['fish'], f'fish lacks {command} {name}')


def complete(root, *words):
    script = 'source "$1"; shift; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _kpg; echo "${COMPREPLY[*]}"'
    path = root / 'share/bash-completion/completions/kpg'
    return run('bash', '-c', script, 'bash', path, 'kpg', *words, cwd=root).stdout.split()


def check_bash(root):
    expect(complete(root, 'bu') == ['build'], 'kpg bu<Tab>')
    expect(complete(root, 'shot', 'x.kpg', '--r') == ['--read-only'], 'kpg shot x.kpg --r<Tab>')
    expect(complete(root, 'dump', 'sh') == ['share'], 'kpg dump sh<Tab>')
    expect(complete(root, 'shot', 'x.kpg', '--key', 'Back') == ['Backspace'], 'kpg shot x.kpg --key Back<Tab>')
    expect(complete(root, 'completion', 'z') == ['zsh'], 'kpg completion z<Tab>')


def check_desktop(root):
    for manual in (root / 'share/man/man1').iterdir():
        expect_quiet('man', '--warnings', '-E', 'UTF-8', '-l', '-Tutf8', '-Z', manual)
        plain = root / manual.stem
        plain.write_bytes(gzip.decompress(manual.read_bytes()))
        expect_quiet('mandoc', '-T', 'lint', '-W', 'warning', plain)
    for entry in (root / 'share').glob('applications/*.desktop'):
        expect_quiet('desktop-file-validate', entry)
        program = re.search(r'^Exec=(\S+)', entry.read_text(), re.M)[1]
        expect((root / 'bin' / program).is_file(), f'{entry.name} starts {program}')
    xml.etree.ElementTree.parse(root / 'share/icons/hicolor/scalable/apps/vistrel.svg')
    expect_quiet('update-mime-database', root / 'share/mime', env={**os.environ, 'XDG_DATA_DIRS': str(root / 'share')})
    if (root / 'share/mime/magic').is_file():
        expect(b'KPGF' in (root / 'share/mime/magic').read_bytes(), 'the first bytes of a page')
    for shell, script in (('zsh', 'zsh/vendor-completions/_kpg'), ('fish', 'fish/vendor_completions.d/kpg.fish')):
        expect_quiet(shell, '-n', root / 'share' / script)


def main():
    with tempfile.TemporaryDirectory() as folder:
        root = pathlib.Path(folder)
        expect_quiet(CMAKE, '--install', BUILD, '--prefix', root)
        for check in (check_programs, check_words, check_bash, check_desktop):
            check(root)
    print('\n'.join(faults))
    sys.exit(1 if faults else 0)


main()
