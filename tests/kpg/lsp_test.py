"""Edits page sources and scripts with a language server: lsp_test.py KPG"""
import pathlib
import subprocess
import sys
import tempfile

from lspclient import Client

PAGE = '''page:
  type: group
  start: one
  scripts: [tools.bob]
  onLoad: |
    count = 0;
    count = add(count, 2);
  textStyles:
  - {name: plain, font: Sans.ttf, size: 20, color: "#F0C040"}
  children:
  - type: text
    name: one
    width: 200
    height: 40
    value: Grüße 🎬
    textStyle: plain
    down: two
  - type: image
    name: two
    up: one
    background: dawn.kpx
'''

TOOLS = '''// Adds.
define add(a, b) {
  local sum = a;

  sum += b;
  return sum;
}
'''

ERROR, WARNING = 1, 2


def lives_and_ends(kpg, folder):
    client = Client(kpg, folder)
    assert client.server['serverInfo']['name'] == 'kpg'
    assert client.fails('initialize', capabilities={})['code'] == -32600
    assert client.fails('textDocument/nosuch')['code'] == -32601
    client.write(b'{"jsonrpc": ')
    assert client.answer(None)['error']['code'] == -32700
    client.notify('textDocument/didChange', textDocument={'uri': client.uri('closed.yaml'), 'version': 1},
                  contentChanges=[])
    client.ask('shutdown')
    assert client.notified[0]['method'] == 'window/logMessage'
    assert client.fails('shutdown')['code'] == -32600
    client.notify('exit')
    assert client.process.wait() == 0

    early = subprocess.run([kpg, 'lsp'], stdout=subprocess.PIPE, cwd=folder,
                           input=b'Content-Length: 44\r\n\r\n{"jsonrpc":"2.0","id":1,"method":"shutdown"}')
    assert b'-32002' in early.stdout and early.returncode == 1, early


def says_what_is_wrong(kpg, folder):
    client = Client(kpg, folder)
    client.open('page.yaml')
    assert client.diagnostics('page.yaml') == []

    # Several faults at once, behind letters of two and four bytes, which are one and two units of UTF-16.
    client.put('page.yaml', 'Grüße 🎬\n    textStyle: plain', 'Grüße 🎬🎬\n    textStyle: plaim # 🎬\n    valign: middle')
    found = client.diagnostics('page.yaml')
    assert [(text, severity) for text, severity, _ in found] == [('valign: middle', ERROR)], found
    assert 'one of top, center and bottom' in found[0][2]
    client.put('page.yaml', '    valign: middle\n', '')
    found = client.diagnostics('page.yaml')
    assert [severity for _, severity, _ in found] == [WARNING], found
    assert "did you mean 'plain'" in found[0][2] and found[0][0].startswith('textStyle: plaim'), found
    client.put('page.yaml', 'plaim', 'plain')
    assert client.diagnostics('page.yaml') == []

    client.put('page.yaml', 'count = 0;', 'count = ;')  # the compiler's, in the line of the source
    found = client.diagnostics('page.yaml')
    assert [text for text, _, _ in found] == ['count = ;'], found
    client.put('page.yaml', 'count = ;', 'count = 0;')
    client.put('page.yaml', '  onLoad: |', '  onLoad |')  # the parser's
    assert len(client.diagnostics('page.yaml')) == 1
    client.put('page.yaml', '  onLoad |', '  onLoad: |')
    client.put('page.yaml', 'start: one', 'start: one\n  links: auto')
    assert client.diagnostics('page.yaml') == []
    client.put('page.yaml', '    up: one\n', '    up: one\n    width: 8\n    height: 8\n    x: 800\n')  # a check's
    found = client.diagnostics('page.yaml')
    assert [severity for _, severity, _ in found] == [WARNING] and 'screen' in found[0][2], found
    client.end()


def looks_at_open_files(kpg, folder):
    client = Client(kpg, folder)
    client.open('page.yaml')
    assert client.diagnostics('page.yaml') == []
    client.open('tools.bob')
    assert client.diagnostics('tools.bob') == []
    client.put('tools.bob', 'return sum;', 'return sum +;')
    found = client.diagnostics('tools.bob')
    assert [(text, severity) for text, severity, _ in found] == [('return sum +;', ERROR)], found
    client.put('tools.bob', 'sum +;', 'sum;')
    while client.diagnostics('tools.bob'):  # both as a file and as a part of the page
        pass
    # A file that is open nowhere has messages, too, until the page that brings it in is closed.
    client.notify('textDocument/didClose', textDocument={'uri': client.uri('tools.bob')})
    (folder / 'tools.bob').write_text('define (')
    client.notify('workspace/didChangeWatchedFiles', changes=[{'uri': client.uri('tools.bob'), 'type': 2}])
    client.texts['tools.bob'] = 'define ('
    del client.versions['tools.bob']
    while not (found := client.diagnostics('tools.bob')):
        pass
    assert found[0][0] == 'define (', found
    client.notify('textDocument/didClose', textDocument={'uri': client.uri('page.yaml')})
    while client.diagnostics('tools.bob'):
        pass
    client.end()


def main():
    kpg = pathlib.Path(sys.argv[1]).resolve()
    for test in (lives_and_ends, says_what_is_wrong, looks_at_open_files):
        with tempfile.TemporaryDirectory() as name:
            folder = pathlib.Path(name).resolve()
            (folder / 'page.yaml').write_text(PAGE)
            (folder / 'tools.bob').write_text(TOOLS)
            test(kpg, folder)


main()
