"""Looks at a page that kpg watch --serve serves, as a browser does: serve_test.py KPG"""
import http.client
import json
import pathlib
import signal
import socket
import subprocess
import sys
import tempfile
import time
import urllib.parse

PAGE = 'flags: 16bit\npage: {type: %s, width: 720, height: 480, bgColor: "#FFFFFF"}\n'


def get(address, path):
    connection = http.client.HTTPConnection(address.netloc, timeout=60)
    connection.putrequest('GET', path)  # as it is: a client would tidy the dots away
    connection.endheaders()
    answer = connection.getresponse()
    return answer.status, answer.read(), answer


def next_news(events):
    while True:
        line = events.readline().decode()
        assert line, 'the events end'
        if line.startswith('data: '):
            return json.loads(line[6:])


def main():
    kpg = pathlib.Path(sys.argv[1]).resolve()
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name).resolve() / 'project'
        viewer = pathlib.Path(name).resolve() / 'viewer'
        folder.mkdir()
        viewer.mkdir()
        (viewer / 'watch.html').write_text('<title>the viewer</title>')
        (pathlib.Path(name) / 'secret').write_text('secret')
        (folder / 'page.yaml').write_text(PAGE % 'group')
        (folder / 'Data.txt').write_text('data')
        (folder / 'link.txt').symlink_to('../secret')
        (folder / 'linked').symlink_to('..')
        time.sleep(0.2)  # what was saved just before may count as saved again
        watch = subprocess.Popen([kpg, 'watch', 'page.yaml', '--serve', '--viewer', viewer], cwd=folder,
                                 stdout=subprocess.PIPE, text=True)
        try:
            address = urllib.parse.urlparse(watch.stdout.readline().strip())
            token = address.path.strip('/')
            assert address.hostname == '127.0.0.1' and len(token) == 32, address
            assert get(address, address.path)[1] == b'<title>the viewer</title>'
            policy = get(address, address.path)[2].getheader('Content-Security-Policy')
            assert "default-src 'none'" in policy and 'unsafe-eval' not in policy.replace('wasm-unsafe-eval', '')
            for wrong in ('/', '/watch.html', '/%s/watch.html' % ('0' * 32), f'/{token}/files{name}/secret',
                          f'/{token}/files{folder}/../secret', f'/{token}/../secret', f'/{token}/none.js',
                          f'/{token}/files{folder}/link.txt', f'/{token}/files{folder}/linked/secret'):
                assert get(address, wrong)[0] == 404, wrong

            events = http.client.HTTPConnection(address.netloc, timeout=60)
            events.request('GET', address.path + 'events')
            stream = events.getresponse()
            news = next_news(stream)
            assert news == {'page': f'/{token}/files{folder}/page.kpg', 'messages': [], 'scriptsOpenFiles': True}, news
            status, page, _ = get(address, news['page'])
            assert status == 200 and page.startswith(b'KPGF'), page[:8]
            assert get(address, f'/{token}/files{folder}/data.TXT')[1] == b'data', 'in whatever case'
            assert not (folder / 'page.kpg').exists()

            (folder / 'page.yaml').write_text(PAGE % 'gruop')
            news = next_news(stream)
            assert not news['page'] and 'page.yaml:2: ' in news['messages'][0] and 'gruop' in news['messages'][0], news
            (folder / 'page.yaml').write_text(PAGE % 'image')
            news = next_news(stream)
            assert news['messages'] == [], news
            assert get(address, news['page'])[1] not in (b'', page), 'what was saved'

            port = address.port
            second = subprocess.run([kpg, 'watch', 'page.yaml', '--serve', '--viewer', viewer, '--port', str(port)],
                                    cwd=folder, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True)
            assert second.returncode == 1 and str(port) in second.stderr, second
            outside = socket.gethostbyname(socket.gethostname())
            if not outside.startswith('127.'):
                assert socket.socket().connect_ex((outside, port)) != 0, 'others can see it'
        finally:
            watch.send_signal(signal.SIGINT)
        assert watch.wait(60) == 0

        alone = subprocess.Popen([kpg, 'watch', 'page.yaml', '--serve', '--viewer', viewer, '--files', 'none'],
                                 cwd=folder, stdout=subprocess.PIPE, text=True)
        try:
            address = urllib.parse.urlparse(alone.stdout.readline().strip())
            events = http.client.HTTPConnection(address.netloc, timeout=60)
            events.request('GET', address.path + 'events')
            assert next_news(events.getresponse())['scriptsOpenFiles'] is False
        finally:
            alone.send_signal(signal.SIGINT)
        assert alone.wait(60) == 0
        for words in (['page.yaml'], ['page.yaml', '--serve', '--viewer', folder]):
            refused = subprocess.run([kpg, 'watch', *words], cwd=folder, stderr=subprocess.PIPE)
            assert refused.returncode == 1, words


if __name__ == '__main__':
    main()
