#!/usr/bin/env python3
"""Holds what the other documents quote and tell to type against the programs and the code.

    documents_test.py ROOT BUILD
"""
import pathlib
import re
import subprocess
import sys
import tempfile

from guide_test import blocks


def block(root, document, beginning):
    """The indented example of the document that begins like this."""
    found = [text for language, text in blocks((root / document).read_text())
             if not language and text.startswith(beginning)]
    if len(found) != 1:
        sys.exit(f'{document}: {len(found)} examples begin with "{beginning}"')
    return found[0]


def run(command, folder):
    done = subprocess.run(['sh', '-e', '-c', command], cwd=folder, capture_output=True, text=True)
    return done.returncode, done.stdout, done.stderr


def readme(root, folder):
    """The first page of the README is made by what it tells to type."""
    status, _, errors = run(block(root, 'README.md', 'cat > hello.yaml'), folder)
    if status or not (folder / 'hello.png').is_file():
        yield f'README.md: the first page fails: {errors.strip()}'


def contributing(root, folder):
    """The tests that it runs are there, and so is the corpus that it begins with."""
    text = (root / 'CONTRIBUTING.md').read_text()
    filtered = re.findall(r"^    (build/dev/\S+) (--gtest_filter='\S+')", text, re.M)
    corpora = re.findall(r'\bfuzz/corpus/\w+', text)
    for program, tests in filtered:
        if 'Test' not in run(f'{program} {tests} --gtest_list_tests | grep "^ " && echo Test', folder)[1]:
            yield f'CONTRIBUTING.md: {program} has no test for {tests}'
    for corpus in corpora:
        if not (root / corpus).is_dir():
            yield f'CONTRIBUTING.md: there is no {corpus}'
    if not filtered or not corpora:
        yield 'CONTRIBUTING.md: neither tests nor a corpus found'


def kit(root, _):
    """A command's file looks as the kit's document shows it."""
    if block(root, 'docs/kit.md', 'void addDumpCommand') not in (root / 'src/kpg/dumpcommand.cpp').read_text():
        yield 'docs/kit.md: addDumpCommand is another one in src/kpg/dumpcommand.cpp'


def language(root, folder):
    """The statement that is followed through compiles to the listing that is shown, but for the remarks."""
    (folder / 'loop.bob').write_text(block(root, 'docs/language-internals.md', '{ local i'))
    _, listing, errors = run('build/dev/src/kpg/kpg decode loop.bob', folder)
    shown = block(root, 'docs/language-internals.md', '0000 ').strip().split('\n')
    instructions = [line for line in listing.strip().split('\n') if not line.startswith('; ')]  # lines of the source
    compiled = [line.partition(':')[2] for line in instructions]
    if len(shown) != len(compiled):
        yield f'docs/language-internals.md: {len(shown)} instructions, and there are {len(compiled)} {errors.strip()}'
    for line, instruction in zip(shown, compiled):
        if line != instruction and not line.startswith(instruction + '  '):
            yield f'docs/language-internals.md: "{line}", and it is "{instruction}"'


def main():
    root, build = (pathlib.Path(a).resolve() for a in sys.argv[1:3])
    faults = []
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        (folder / 'build').mkdir()
        (folder / 'build/dev').symlink_to(build)  # the documents name the ordinary build
        for document in (readme, contributing, kit, language):
            faults += document(root, folder)
    print('\n'.join(faults))
    sys.exit(1 if faults else 0)


main()
