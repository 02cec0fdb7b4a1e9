"""Debugs a page by the Debug Adapter Protocol, as an editor would: dap_test.py KPG"""
import json
import pathlib
import subprocess
import sys
import tempfile

PAGE = '''page:
  type: group
  start: one
  scripts: [tools.bob]
  onLoad: |
    count = 0;
    count = add(count, 2);
  children:
  - type: image
    name: one
    width: 10
    height: 10
    onClick: |
      count = add(count, 40);
      count.nosuch;
  - type: image
    name: other
'''

TOOLS = '''// Adds.
define add(a, b) {
  local sum = a;

  sum += b;
  return sum;
}
define spin() {
  while (true)
    spinning = true;
}
'''


class Client:
    def __init__(self, kpg, folder, *options):
        self.process = subprocess.Popen([kpg, 'dap', *options], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                        stderr=subprocess.PIPE, cwd=folder)
        self.number, self.events, self.seen = 0, [], 0

    def message(self):
        length = 0
        while (line := self.process.stdout.readline()) != b'\r\n':
            assert line, 'the adapter has ended'
            name, value = line.decode('ascii').split(':')
            assert name == 'Content-Length', line
            length = int(value)
        message = json.loads(self.process.stdout.read(length))
        assert message['seq'] == self.seen + 1, message
        self.seen += 1
        assert message['type'] in ('event', 'response'), message
        return message

    def send(self, command, **arguments):
        self.number += 1
        body = json.dumps({'seq': self.number, 'type': 'request', 'command': command, 'arguments': arguments}).encode()
        self.process.stdin.write(b'Content-Length: %d\r\n\r\n' % len(body) + body)
        self.process.stdin.flush()
        return self.number

    def answer(self, number):
        while True:
            message = self.message()
            if message['type'] == 'event':
                self.events.append(message)
            else:
                assert message['request_seq'] == number, message
                return message

    def ask(self, command, **arguments):
        answer = self.answer(self.send(command, **arguments))
        assert answer['success'], answer
        assert answer['command'] == command
        return answer.get('body')

    def fails(self, command, **arguments):
        answer = self.answer(self.send(command, **arguments))
        assert not answer['success'], answer
        return answer['message']

    def event(self, name):
        """The next event of that name; earlier ones of other names are kept."""
        for n, message in enumerate(self.events):
            if message['event'] == name:
                return self.events.pop(n)['body']
        while True:
            message = self.message()
            assert message['type'] == 'event', message
            if message['event'] == name:
                return message['body']
            self.events.append(message)

    def output(self):
        text = ''.join(m['body']['output'] for m in self.events if m['event'] == 'output')
        self.events = [m for m in self.events if m['event'] != 'output']
        return text

    def where(self):
        frames = self.ask('stackTrace', threadId=1)['stackFrames']
        # A line of the console has no source.
        return [(frame['name'], pathlib.Path(frame.get('source', {}).get('path', '')).name, frame['line'])
                for frame in frames]

    def variables(self, frame=1):
        found = {}
        for scope in self.ask('scopes', frameId=frame)['scopes']:
            if scope['name'].startswith('Globals'):
                continue
            for variable in self.ask('variables', variablesReference=scope['variablesReference'])['variables']:
                found[variable['name']] = variable['value']
        return found

    def end(self):
        """Returns what came on the error stream."""
        self.ask('disconnect')
        rest, aside = self.process.communicate()
        assert rest == b'', rest
        assert self.process.returncode == 0
        return aside.decode()


def begin(kpg, folder, breakpoints=(), errors=False, options=(), **launch):
    """breakpoints: (file, line) or (file, line, more arguments). options: of kpg dap."""
    client = Client(kpg, folder, *options)
    assert client.ask('initialize', adapterID='bob', linesStartAt1=True)['supportsConfigurationDoneRequest']
    client.event('initialized')
    client.ask('launch', program='page.yaml', **launch)
    files = {}
    for name, line, *more in breakpoints:
        files.setdefault(name, []).append({'line': line, **(more[0] if more else {})})
    for name, lines in files.items():
        set_now = client.ask('setBreakpoints', source={'path': str(folder / name)}, breakpoints=lines)
        assert [b['verified'] for b in set_now['breakpoints']] == [False] * len(lines)  # nothing is compiled yet
    client.ask('setExceptionBreakpoints', filters=['errors'] if errors else [])
    client.ask('configurationDone')
    return client


def breaks_steps_and_shows(kpg, folder):
    client = begin(kpg, folder, [('tools.bob', 4)])
    moved = client.event('breakpoint')['breakpoint']
    assert moved['verified'] and moved['line'] == 5, moved
    stopped = client.event('stopped')
    assert stopped['reason'] == 'breakpoint' and stopped['threadId'] == 1, stopped
    assert client.where() == [('add', 'tools.bob', 5), ('page.yaml:7 page.onLoad', 'page.yaml', 7)], client.where()
    assert client.variables() == {'sum': '0', 'this': client.variables()['this'], 'a': '0', 'b': '2'}
    assert client.ask('threads')['threads'] == [{'id': 1, 'name': 'page'}]

    assert client.ask('evaluate', expression='a + b * 10', frameId=1)['result'] == '20'
    assert 'nosuch' in client.fails('evaluate', expression='nosuch', frameId=1)
    vector = client.ask('evaluate', expression='\\[7, \\{ x: 8 }]', frameId=1)
    elements = client.ask('variables', variablesReference=vector['variablesReference'])['variables']
    assert [e['name'] for e in elements] == ['[0]', '[1]'], elements
    inside = client.ask('variables', variablesReference=elements[1]['variablesReference'])['variables']
    assert [(v['name'], v['value']) for v in inside][0] == ('x', '8'), inside
    scope = client.ask('scopes', frameId=1)['scopes'][0]
    assert client.ask('setVariable', variablesReference=scope['variablesReference'], name='sum',
                      value='b * 50')['value'] == '100'

    client.ask('next', threadId=1)
    assert client.event('stopped')['reason'] == 'step'
    assert client.where()[0] == ('add', 'tools.bob', 6)
    client.ask('stepOut', threadId=1)
    assert client.event('stopped')['reason'] == 'step'
    assert client.where() == [('page.yaml:7 page.onLoad', 'page.yaml', 7)]
    client.ask('continue', threadId=1)
    assert 'stopped' in client.fails('stackTrace', threadId=1)
    client.ask('evaluate', expression='count;', context='repl')
    assert '--> 102' in client.output()
    client.end()


def stops_where_it_is_told(kpg, folder):
    client = begin(kpg, folder,
                   [('tools.bob', 5, {'logMessage': 'adds {b} to {a}'}), ('page.yaml', 14, {'condition': 'count == 2'})],
                   errors=True, steps=[{'key': 'Select'}])
    assert client.event('stopped')['reason'] == 'breakpoint'
    assert client.where()[0][1:] == ('page.yaml', 14)
    assert 'adds 2 to 0\n' in client.output()
    client.ask('continue', threadId=1)
    stopped = client.event('stopped')
    assert (stopped['reason'], stopped['text']) == ('exception', 'No property - nosuch'), stopped
    assert client.where()[0][1:] == ('page.yaml', 15)
    assert client.ask('evaluate', expression='count', frameId=1)['result'] == '42'
    client.ask('continue', threadId=1)
    client.ask('evaluate', expression='1;', context='repl')
    assert 'Error: No property - nosuch' in client.output()
    client.end()


def pauses_and_enters(kpg, folder):
    client = begin(kpg, folder, stopOnEntry=True)
    assert client.event('stopped')['reason'] == 'pause'
    client.ask('setBreakpoints', source={'path': str(folder / 'tools.bob')}, breakpoints=[{'line': 5, 'hitCondition': '2'}])
    client.ask('continue', threadId=1)
    spinning = client.send('evaluate', expression='spin();', context='repl')
    client.send('pause', threadId=1)
    # The pause is answered while the line still runs.
    assert client.answer(spinning + 1)['success']
    assert client.event('stopped')['reason'] == 'pause'
    assert client.where()[0][0] == 'spin', client.where()
    # What is evaluated may run on and on, too. The page stands as it did.
    endless = client.send('evaluate', expression='spin()', frameId=1)
    client.send('stackTrace', threadId=1)
    client.send('pause', threadId=1)
    assert client.answer(endless + 2)['success']
    ended = client.answer(endless)
    assert not ended['success'] and ended['message'] == 'the evaluation was ended', ended
    assert client.answer(endless + 1)['body']['stackFrames'][0]['name'] == 'spin'
    assert client.ask('evaluate', expression='spinning', frameId=1)['result'] == 'true'
    client.ask('continue', threadId=1)
    client.ask('pause', threadId=1)
    assert client.event('stopped')['reason'] == 'pause'
    client.send('disconnect')
    client.process.stdin.close()
    assert client.process.wait(60) == 0


LINES = '''page:
  type: group
  start: one
  onLoad: count = 0;
  children:
  - {type: image, name: one, width: 10, height: 10,
     onClick: "count += 1; count += 10;"}
  - type: image
    name: other
    onKey: >
      count += 100;
      count += 1000;
'''


def counts_statements_of_a_line_as_one(kpg, folder):
    (folder / 'page.yaml').write_text(LINES)
    client = begin(kpg, folder, [('page.yaml', 7, {'logMessage': 'at {count}'})],
                   steps=[{'key': 'Select'}, {'key': 'Select'}])
    client.ask('evaluate', expression='1;', context='repl')
    output = client.output()
    assert [line for line in output.split('\n') if line.startswith('at ')] == ['at 0', 'at 11'], output
    assert client.ask('setBreakpoints', source={'path': str(folder / 'page.yaml')},
                      breakpoints=[{'line': 11}, {'line': 12}])['breakpoints'][1]['line'] == 12
    client.end()


def runs_what_a_project_makes(kpg, folder):
    (folder / 'vistrel.yaml').write_text('pages: [page.yaml]\nfonts: [DejaVu Sans]\n')
    (folder / 'page.yaml').write_text('''page:
  type: group
  start: one
  scripts: [tools.bob]
  onLoad: count = add(1, 2);
  textStyles: [{name: plain, font: DejaVuSans.ttf, size: 20}]
  children:
  - {type: text, name: one, width: 200, height: 40, textStyle: plain, value: Text}
''')
    client = begin(kpg, folder, [('tools.bob', 5)])
    assert client.event('stopped')['reason'] == 'breakpoint'
    assert client.where() == [('add', 'tools.bob', 5), ('page.yaml:5 page.onLoad', 'page.yaml', 5)], client.where()
    names = [scope['name'] for scope in client.ask('scopes', frameId=1)['scopes']]
    for scope in client.ask('scopes', frameId=1)['scopes']:
        members = client.ask('variables', variablesReference=scope['variablesReference'])['variables']
        assert len({member['name'] for member in members}) == len(members), (names, members)
    client.ask('continue', threadId=1)
    client.ask('evaluate', expression='count;', context='repl')
    output = client.output()
    assert '--> 3' in output and 'DejaVu' not in output, output
    assert sorted(file.name for file in folder.iterdir()) == ['page.yaml', 'tools.bob', 'vistrel.yaml']
    # What the system itself prints, as when it lets go of glyphs, comes on neither side of a message.
    assert 'glyph cache' in client.end()


def holds_the_page_to_its_limits(kpg, folder):
    (folder.parent / 'secret.txt').write_text('secret')
    for options, name in (((), '../secret.txt'), (('--files', 'none'), 'tools.bob')):
        client = begin(kpg, folder, options=options, steps=[{'eval': f'new File("{name}", "r") ? 1 : 0;'}])
        output = ''
        while '-->' not in output:
            output += client.event('output')['output']
        assert f"'{name}' is not opened: " in output and '--> 0' in output, output
        client.end()


def refuses(kpg, folder):
    client = Client(kpg, folder)
    assert 'no request' in client.fails('frobnicate')
    assert 'program' in client.fails('launch')
    assert 'step' in client.fails('launch', program='page.yaml', steps=[{'kye': 'Down'}])
    assert 'path' in client.fails('setBreakpoints', breakpoints=[])
    client.process.stdin.write(b'Content-Length: 3\r\n\r\n{}}Content-Length: 2\r\n\r\n[]')  # no messages
    client.ask('initialize')
    client.ask('launch', program='nosuch.yaml')
    client.ask('configurationDone')
    client.event('terminated')
    assert 'nosuch.yaml' in client.output()
    client.end()
    # A client that goes away ends the adapter.
    client = begin(kpg, folder)
    client.process.stdin.close()
    assert client.process.wait(60) == 0


def main():
    kpg = pathlib.Path(sys.argv[1]).resolve()
    for test in (breaks_steps_and_shows, stops_where_it_is_told, pauses_and_enters, counts_statements_of_a_line_as_one,
                 runs_what_a_project_makes, holds_the_page_to_its_limits, refuses):
        with tempfile.TemporaryDirectory() as name:
            folder = pathlib.Path(name).resolve() / 'page'
            folder.mkdir()
            (folder / 'page.yaml').write_text(PAGE)
            (folder / 'tools.bob').write_text(TOOLS)
            test(kpg, folder)


if __name__ == '__main__':
    main()
