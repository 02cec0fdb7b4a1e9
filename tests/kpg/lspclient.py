"""An editor, as far as a language server can tell: speaks the Language Server Protocol with kpg lsp."""
import json
import pathlib
import subprocess


class Client:
    def __init__(self, kpg, folder, stderr=None, **capabilities):
        self.folder = pathlib.Path(folder)
        self.process = subprocess.Popen([kpg, 'lsp', '--stdio'], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                        stderr=stderr, cwd=folder)
        self.number, self.notified, self.asked, self.texts, self.versions = 0, [], [], {}, {}
        self.server = self.ask('initialize', processId=None, rootUri=self.folder.as_uri(), capabilities=capabilities)
        self.notify('initialized')

    # -- messages

    def message(self):
        length = 0
        while (line := self.process.stdout.readline()) != b'\r\n':
            assert line, 'the server has ended'
            name, value = line.decode('ascii').split(':')
            assert name == 'Content-Length', line
            length = int(value)
        message = json.loads(self.process.stdout.read(length))
        assert message['jsonrpc'] == '2.0', message
        return message

    def write(self, body):
        self.process.stdin.write(b'Content-Length: %d\r\n\r\n' % len(body) + body)
        self.process.stdin.flush()

    def notify(self, method, **params):
        self.write(json.dumps({'jsonrpc': '2.0', 'method': method, 'params': params}).encode())

    def send(self, method, **params):
        self.number += 1
        self.write(json.dumps({'jsonrpc': '2.0', 'id': self.number, 'method': method, 'params': params}).encode())
        return self.number

    def answer(self, number):
        while True:
            message = self.message()
            if 'method' not in message:
                assert message['id'] == number, message
                assert ('result' in message) != ('error' in message), message
                return message
            if 'id' in message:
                self.asked.append(message)
                self.write(json.dumps({'jsonrpc': '2.0', 'id': message['id'], 'result': None}).encode())
            else:
                self.notified.append(message)

    def ask(self, method, **params):
        answer = self.answer(self.send(method, **params))
        assert 'result' in answer, answer
        return answer['result']

    def fails(self, method, **params):
        answer = self.answer(self.send(method, **params))
        assert 'error' in answer, answer
        return answer['error']

    # -- texts

    def uri(self, name):
        return (self.folder / name).as_uri()

    def open(self, name, text=None):
        if text is None:
            text = (self.folder / name).read_text()
        self.texts[name], self.versions[name] = text, 1
        language = 'bob' if name.endswith('.bob') else 'yaml'
        self.notify('textDocument/didOpen', textDocument={'uri': self.uri(name), 'languageId': language, 'version': 1,
                                                          'text': text})

    def change(self, name, *edits):
        """Each edit is (begin, end, text), by characters of the text as it then is."""
        changes = []
        for begin, end, text in edits:
            changes.append({'range': {'start': self.place(name, begin), 'end': self.place(name, end)}, 'text': text})
            self.texts[name] = self.texts[name][:begin] + text + self.texts[name][end:]
        self.versions[name] += 1
        self.notify('textDocument/didChange',
                    textDocument={'uri': self.uri(name), 'version': self.versions[name]}, contentChanges=changes)

    def put(self, name, old, new):
        """Writes `new` where the text has `old`, which it has once."""
        assert self.texts[name].count(old) == 1, old
        begin = self.texts[name].index(old)
        self.change(name, (begin, begin + len(old), new))

    def place(self, name, at):
        """The position of a character."""
        before = self.texts[name][:at]
        line = before.count('\n')
        return {'line': line, 'character': len(before[before.rfind('\n') + 1:].encode('utf-16-le')) // 2}

    def at(self, name, position):
        """The character at a position."""
        lines = self.texts[name].split('\n')
        line = lines[position['line']].encode('utf-16-le')
        before = line[:2 * position['character']].decode('utf-16-le')
        return sum(len(one) + 1 for one in lines[:position['line']]) + len(before)

    def shown(self, name, place):
        return self.texts[name][self.at(name, place['start']):self.at(name, place['end'])]

    def diagnostics(self, name):
        """What is wrong with the text as it is now: [(what the range holds, severity, message)]."""
        while True:
            for n, message in enumerate(self.notified):
                params = message['params']
                if message['method'] != 'textDocument/publishDiagnostics' or params['uri'] != self.uri(name):
                    continue
                del self.notified[n]
                if params.get('version') != self.versions.get(name):
                    break
                return [(self.shown(name, d['range']), d['severity'], d['message']) for d in params['diagnostics']]
            else:
                message = self.message()
                assert 'method' in message and 'id' not in message, message
                self.notified.append(message)

    def where(self, name, text, offset=0):
        """The document and the position of the one place where it has `text`, as requests want them."""
        assert self.texts[name].count(text) == 1, text
        return {'textDocument': {'uri': self.uri(name)},
                'position': self.place(name, self.texts[name].index(text) + offset)}

    def complete(self, name, text):
        """{label: item} of what can follow the one place where the text of the file has `text`."""
        answer = self.ask('textDocument/completion', **self.where(name, text, len(text)))
        assert answer['isIncomplete'] is False
        return {item['label']: item for item in answer['items']}

    def take(self, name, item):
        """Writes what a completion offers."""
        edit = item['textEdit']
        self.change(name, (self.at(name, edit['range']['start']), self.at(name, edit['range']['end']), edit['newText']))

    def rename(self, name, text, to, offset=0):
        """Renames what stands there, in all files, and writes the edits; returns the number of places."""
        count = 0
        for uri, edits in self.ask('textDocument/rename', newName=to, **self.where(name, text, offset))['changes'].items():
            file = next(n for n in self.texts if self.uri(n) == uri)
            places = [(self.at(file, e['range']['start']), self.at(file, e['range']['end']), e['newText']) for e in edits]
            self.change(file, *sorted(places, reverse=True))
            count += len(places)
        return count

    def end(self):
        assert self.ask('shutdown') is None
        self.notify('exit')
        assert self.process.wait() == 0
