"""Debugs the page of a studio from an editor: attach_test.py KPG STUDIO"""
import os
import pathlib
import subprocess
import sys
import tempfile
import time

sys.path.insert(0, str(pathlib.Path(__file__).parent.parent / 'kpg'))
import dap_test


def wait_for(path):
    while not path.exists():
        time.sleep(0.05)


def attach(kpg, folder, file, line):
    client = dap_test.Client(kpg, folder, '--attach', folder / 'dap')
    client.ask('initialize', adapterID='bob', linesStartAt1=True)
    client.event('initialized')
    assert 'attach' in client.fails('launch', program='page.yaml')
    client.ask('attach')
    placed = client.ask('setBreakpoints', source={'path': str(folder / file)}, breakpoints=[{'line': line}])
    client.ask('configurationDone')
    return client, placed['breakpoints'][0]


def press(kpg, folder, key):
    return subprocess.Popen([kpg, 'remote', folder / 'control', 'key', key])


def debug(kpg, folder):
    client, breakpoint = attach(kpg, folder, 'tools.bob', 4)
    assert breakpoint['verified'] and breakpoint['line'] == 5, breakpoint
    pressing = press(kpg, folder, 'Select')
    assert client.event('stopped')['reason'] == 'breakpoint'
    assert client.where()[0][1:] == ('tools.bob', 5), client.where()
    assert client.variables()['b'] == '40'
    client.ask('evaluate', expression='sum = 100', frameId=1)
    client.ask('stepOut', threadId=1)
    client.event('stopped')
    assert client.where()[0][1:] == ('page.yaml', 14), client.where()
    client.ask('continue', threadId=1)
    assert pressing.wait(60) == 0
    client.ask('evaluate', expression='count;', context='repl')
    while '--> 140' not in client.output():
        client.events.append(client.message())

    # A line from the editor's console may stop, too, and what runs on and on can be ended from outside.
    evaluating = client.send('evaluate', expression='count = add(1, 2);', context='repl')
    while not [e for e in client.events if e['event'] == 'stopped']:
        client.events.append(client.message())
    client.event('stopped')
    assert client.where()[0][1:] == ('tools.bob', 5), client.where()
    client.ask('continue', threadId=1)
    assert client.answer(evaluating)['success']
    spinning = subprocess.Popen([kpg, 'remote', folder / 'control', 'eval', 'spin();'], stderr=subprocess.PIPE)
    while subprocess.run([kpg, 'remote', folder / 'control', 'stop']).returncode or spinning.poll() is None:
        time.sleep(0.05)
    assert b'stopped' in spinning.communicate()[1] and spinning.returncode == 1
    client.end()

    # Another editor finds the page as it is; what stands goes on when it leaves.
    client, breakpoint = attach(kpg, folder, 'tools.bob', 5)
    pressing = press(kpg, folder, 'Select')
    client.event('stopped')
    client.process.kill()
    client.process.wait(60)
    assert pressing.wait(60) == 0


def main():
    kpg, program = sys.argv[1:]
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        (folder / 'page.yaml').write_text(dap_test.PAGE)
        (folder / 'tools.bob').write_text(dap_test.TOOLS)
        studio = subprocess.Popen([program, '--control', folder / 'control', '--dap', folder / 'dap', folder / 'page.yaml'],
                                  env={**os.environ, 'QT_QPA_PLATFORM': 'offscreen'}, stderr=subprocess.DEVNULL)
        try:
            wait_for(folder / 'dap')
            while subprocess.run([kpg, 'remote', folder / 'control', 'wait', '1'], stderr=subprocess.DEVNULL).returncode:
                time.sleep(0.05)
            debug(kpg, folder)
            assert studio.poll() is None, 'the studio has ended'
        finally:
            studio.kill()
            studio.wait(60)


if __name__ == '__main__':
    main()
