"""Edits many long sources at random places and asks for everything: every reply is valid, and memory stays flat.

    lsp_random_test.py KPG
"""
import pathlib
import random
import re
import sys
import tempfile

from lspclient import Client
from lspmodel import TOOLS, long_page

PARTS = ['\n', ' ', '  ', ': ', '- ', '"', "'", '{', '}', '[', ']', '(', ')', ';', '#', '|', '$(', 'ü', '🎬', 'name: x',
         'type: group', 'widgets.', '/*', 'define f(a) {', '\t', '\\', '!int ', '&a ', '*a', '']

PLAIN = ['documentSymbol', 'foldingRange', 'documentLink', 'documentColor', 'semanticTokens/full', 'formatting']
AT = ['completion', 'hover', 'definition', 'references', 'prepareRename', 'signatureHelp', 'rename']


def memory_of(process):
    return int(re.search(r'VmRSS:\s+(\d+)', pathlib.Path(f'/proc/{process.pid}/status').read_text())[1])


class Editor:
    def __init__(self, client, seed):
        self.client, self.random = client, random.Random(seed)

    def edit(self, name):
        text = self.client.texts[name]
        begin = self.random.randrange(len(text) + 1)
        end = min(len(text), begin + self.random.choice([0, 0, 0, 1, 3, 12]))
        part = self.random.choice(PARTS)
        was = text[begin:end]
        self.client.change(name, (begin, end, part))
        return begin, begin + len(part), was

    def ask(self, name, method):
        client = self.client
        at = self.random.randrange(len(client.texts[name]) + 1)
        more = {}
        if method in AT:
            more['position'] = client.place(name, at)
        if method == 'rename':
            more['newName'] = 'other'
        if method == 'references':
            more['context'] = {'includeDeclaration': True}
        answer = client.answer(client.send(f'textDocument/{method}', textDocument={'uri': client.uri(name)}, **more))
        if 'error' in answer:
            assert method == 'rename' and answer['error']['code'] == -32803, answer
        else:
            self.check(answer['result'], name)

    def check(self, value, name):
        """Every range of the file lies in it, in order."""
        if isinstance(value, list):
            for item in value:
                self.check(item, name)
        elif isinstance(value, dict):
            if set(value) == {'start', 'end'}:
                begin, end = ((p['line'], p['character']) for p in (value['start'], value['end']))
                assert (0, 0) <= begin <= end, value
                assert end[0] <= max(text.count('\n') for text in self.client.texts.values()), value
            for item in value.values():
                self.check(item, name)


def many_files(kpg, folder):
    client = Client(kpg, folder)
    names = [f'page{n}.yaml' for n in range(19)] + ['tools.bob']
    for name in names:
        (folder / name).write_text(TOOLS if name == 'tools.bob' else long_page(12))
        client.open(name)
    editor = Editor(client, 3)
    for round_number in range(400):
        name = editor.random.choice(names)
        editor.edit(name)
        editor.ask(name, editor.random.choice(PLAIN + AT))
        if round_number % 100 == 99:  # as they were at first
            for name in names:
                client.change(name, (0, len(client.texts[name]), (folder / name).read_text()))
    client.end()


def a_long_file(kpg, folder):
    (folder / 'tools.bob').write_text(TOOLS)
    text = long_page(1000)
    assert text.count('\n') > 10_000
    client = Client(kpg, folder)
    client.open('page.yaml', text)
    editor = Editor(client, 4)
    levels = []
    for round_number in range(60):
        begin, end, was = editor.edit('page.yaml')
        for method in editor.random.sample(PLAIN, 1) + editor.random.sample(AT, 2):
            editor.ask('page.yaml', method)
        client.change('page.yaml', (begin, end, was))
        levels.append(memory_of(client.process))
    assert client.texts['page.yaml'] == text
    assert [d for d in client.diagnostics('page.yaml') if d[1] == 1] == []
    # It grows until each request has been made, and no more.
    assert max(levels[30:]) < 1.25 * max(levels[:30]), levels
    client.end()


def main():
    kpg = pathlib.Path(sys.argv[1]).resolve()
    for test in (many_files, a_long_file):
        with tempfile.TemporaryDirectory() as name:
            test(kpg, pathlib.Path(name).resolve())


main()
