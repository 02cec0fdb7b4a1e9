"""Profiles a page of a project: profile_test.py KPG"""
import json
import pathlib
import subprocess
import sys
import tempfile

PAGE = '''page:
  type: group
  start: one
  onLoad: |
    define work(n) { while (n > 0) --n; }
  textStyles: [{name: plain, font: DejaVuSans.ttf, size: 20}]
  children:
  - {type: text, name: one, width: 200, height: 40, textStyle: plain, value: Text,
     onClick: "work(3); work(4);"}
'''


def main():
    kpg = pathlib.Path(sys.argv[1]).resolve()
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        (folder / 'vistrel.yaml').write_text('pages: [page.yaml]\nfonts: [DejaVu Sans]\n')
        (folder / 'page.yaml').write_text(PAGE)
        done = subprocess.run([kpg, 'profile', 'page.yaml', '--speedscope', 'out.json', '--key', 'Select', '--key', 'Select'],
                              cwd=folder, capture_output=True, text=True)
        assert done.returncode == 0, done
        assert 'DejaVu' not in done.stderr, done.stderr  # the project has it
        assert not (folder / 'build').exists()
        rows = {line.split(maxsplit=7)[7]: line.split() for line in done.stdout.splitlines()[1:]}
        assert len(rows) == done.stdout.count('\n') - 1, done.stdout
        # Both statements of the hook are in one row, and a click is one call.
        assert rows['page.yaml:9 one.onClick'][4] == '2', done.stdout
        assert rows['work page.yaml:5'][4] == '4', done.stdout
        frames = [frame['name'] for frame in json.loads((folder / 'out.json').read_text())['shared']['frames']]
        assert len(set(frames)) == len(frames), frames


main()
