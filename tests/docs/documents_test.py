#!/usr/bin/env python3
"""Holds what the other documents quote and tell to type against the programs and the code.

    documents_test.py ROOT BUILD
"""
import pathlib
import re
import subprocess
import sys
import tempfile

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / 'kpg'))
from guide_test import blocks  # noqa: E402
from lspclient import Client  # noqa: E402


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
    """The tests that it runs are there, and so are the targets of its campaign."""
    text = (root / 'CONTRIBUTING.md').read_text()
    filtered = re.findall(r"^    (build/dev/\S+) (--gtest_filter='\S+')", text, re.M)
    targets = re.findall(r'^    fuzz/campaign(?: --\w+ \d+)*((?: \w+)+)$', text, re.M)
    for program, tests in filtered:
        if 'Test' not in run(f'{program} {tests} --gtest_list_tests | grep "^ " && echo Test', folder)[1]:
            yield f'CONTRIBUTING.md: {program} has no test for {tests}'
    for target in ' '.join(targets).split():
        if not (root / 'fuzz' / f'{target}.cc').is_file():
            yield f'CONTRIBUTING.md: there is no fuzz/{target}.cc'
    if not filtered or not targets:
        yield 'CONTRIBUTING.md: neither tests nor a target found'


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


def editors(root, folder):
    """The schema is printed as shown, the source beside it builds, and the server answers the requests of the table."""
    kpg = folder / 'build/dev/src/kpg/kpg'
    document = (root / 'docs/editors.md').read_text()
    command = block(root, 'docs/editors.md', 'kpg schema').replace('kpg', str(kpg), 1)
    status, _, errors = run(command, folder)
    if status or 'page.schema.json' not in document or not (folder / 'page.schema.json').is_file():
        yield f'docs/editors.md: {command.strip()} fails: {errors}'
    source = next(text for language, text in blocks(document) if language == 'yaml')
    (folder / 'modeline.yaml').write_text(source)
    status, _, errors = run(f'{kpg} build modeline.yaml -o modeline.kpg', folder)
    if status:
        yield f'docs/editors.md: the source fails: {errors}'
    requests = re.findall(r'`(textDocument/[\w/]+)`', document)
    client = Client(kpg, folder)
    client.open('modeline.yaml')
    for request in requests:
        answer = client.answer(client.send(request))
        if answer.get('error', {}).get('code') != -32602:  # that it needs to know the file
            yield f'docs/editors.md: {request} is answered by {answer}'
    if len(requests) < 14:
        yield 'docs/editors.md: where are the requests?'
    client.end()


def main():
    root, build = (pathlib.Path(a).resolve() for a in sys.argv[1:3])
    faults = []
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        (folder / 'build').mkdir()
        (folder / 'build/dev').symlink_to(build)  # the documents name the ordinary build
        for document in (readme, contributing, kit, language, editors):
            faults += document(root, folder)
    print('\n'.join(faults))
    sys.exit(1 if faults else 0)


main()
