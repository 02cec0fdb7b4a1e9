"""Saves the sources of a page while kpg watch looks: watch_test.py KPG"""
import pathlib
import signal
import subprocess
import sys
import tempfile
import time

PAGE = 'flags: 16bit\npage: {type: group, width: 720, height: 480, bgColor: "%s", start: a, children: [{type: %s, name: a}]}\n'

# Reads what it writes, a half of what scripts may write each time, so that it opens itself again.
WRITER = r"""flags: 16bit
page:
  width: 720
  height: 480
  onLoad: |
    text = "12345678";
    while (text.size < 16384) text = text + text;
    file = new File("own.txt", "a");
    for (i = 0; i < 2048; i++) file.Display(text);
    file.Close();
    new File("own.txt", "r");
"""


def check_writing(kpg):
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        (folder / 'page.yaml').write_text(WRITER)
        watch = subprocess.Popen([kpg, 'watch', 'page.yaml', '-o', 'page.png'], cwd=folder, stdout=subprocess.PIPE,
                                 text=True)
        try:
            while not watch.stdout.readline().startswith('Scripts may write no more'):
                assert (folder / 'own.txt').stat().st_size <= 64 << 20
        finally:
            watch.send_signal(signal.SIGINT)
        watch.communicate(timeout=60)
        assert (folder / 'own.txt').stat().st_size <= 64 << 20


def main():
    kpg = pathlib.Path(sys.argv[1]).resolve()
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        source, picture = folder / 'page.yaml', folder / 'page.png'

        def save(color, kind='image'):
            beside = folder / 'page.yaml~'
            beside.write_text(PAGE % (color, kind))
            beside.rename(source)

        save('#000000')
        time.sleep(0.2)  # what was saved just before may count as saved again
        watch = subprocess.Popen([kpg, 'watch', 'page.yaml', '-o', 'page.png', '--key', 'Down'], cwd=folder,
                                 stdout=subprocess.PIPE, text=True)
        try:
            assert watch.stdout.readline().startswith('page.png: '), 'no first picture'
            black = picture.read_bytes()
            save('#FFFFFF')
            assert watch.stdout.readline().startswith('page.png: ')
            white = picture.read_bytes()
            assert white != black
            save('#FFFFFF', 'imgae')
            line = watch.stdout.readline()
            assert line.startswith('page.yaml:2: ') and 'imgae' in line, line
            assert picture.read_bytes() == white, 'the picture before stays'
            save('#000000')
            assert watch.stdout.readline().startswith('page.png: ')
            assert picture.read_bytes() == black
        finally:
            watch.send_signal(signal.SIGINT)
        assert watch.wait(60) == 0
        assert sorted(p.name for p in folder.iterdir()) == ['page.png', 'page.yaml'], list(folder.iterdir())
        refused = subprocess.run([kpg, 'watch', 'page.yaml', '-o', 'page.yaml'], cwd=folder, stderr=subprocess.PIPE)
        assert refused.returncode == 1 and source.read_text().startswith('flags')
    check_writing(kpg)


if __name__ == '__main__':
    main()
