#!/usr/bin/env python3
"""Holds the guide's examples against its pictures.

    guide_test.py ROOT BUILD FONTS

Makes the pictures again, which must come out pixel for pixel, and looks for each example that a picture follows in the
source of that picture. What the guide shows of a command's answer is what the command in docs/outputs/NAME answers there.
Whole pages among the examples are built and opened, scripts are compiled, and the commands run in
their order.
"""
import pathlib
import re
import shutil
import struct
import subprocess
import sys
import tempfile
import zlib


def pixels(path):
    """(width, height, rows as bytes) of a PNG with 8 bits a channel, or a palette, that isn't interlaced."""
    data, at, packed, colors = path.read_bytes(), 8, b'', b''
    while at < len(data):
        length, kind = struct.unpack('>I4s', data[at:at + 8])
        body = data[at + 8:at + 8 + length]
        at += length + 12
        if kind == b'IHDR':
            width, height, bits, color = struct.unpack('>IIBB', body[:10])
        elif kind == b'PLTE':
            colors = [body[i:i + 3] for i in range(0, length, 3)]
        elif kind == b'IDAT':
            packed += body
    raw, step = zlib.decompress(packed), {0: 1, 2: 3, 3: 1, 6: 4}[color]
    size = (width * step * bits + 7) // 8
    rows, above = [], bytes(size)
    for y in range(height):
        filtering, row = raw[y * (size + 1)], bytearray(raw[y * (size + 1) + 1:(y + 1) * (size + 1)])
        for x in range(size if filtering else 0):
            left, up = row[x - step] if x >= step else 0, above[x]
            corner = above[x - step] if x >= step else 0
            nearest = min((abs(up - corner), 0, left), (abs(left - corner), 1, up),
                          (abs(left + up - 2 * corner), 2, corner))[2]
            row[x] = (row[x] + (0, left, up, (left + up) // 2, nearest)[filtering]) & 255
        above = row
        if colors:
            numbers = [byte >> shift & (1 << bits) - 1 for byte in row for shift in range(8 - bits, -1, -bits)]
            row = b''.join(colors[n] for n in numbers[:width])
        rows.append(bytes(row))
    return width, height, rows


def examples(guide):
    """(example, name) for each example of a page source that a picture follows."""
    block = r'(?:```yaml\n(?P<fenced>(?:(?!```).)*)```|(?P<indented>(?:    [^\n]*\n|\n)+))'
    for match in re.finditer(block + r'\n*!\[[^\]]*\]\(pictures/(?P<name>\w+)\.png\)', guide, re.S):
        example = match['fenced'] or re.sub('^    ', '', match['indented'], flags=re.M)
        if ':' in example:
            yield example.strip('\n'), match['name']


def contains(source, example):
    """Whether the lines of the example are in the source, one after the other, at some indentation."""
    lines = [line for line in example.split('\n') if line.strip()]
    indents = {len(line) - len(line.lstrip()) for line in source.split('\n')}
    return any('\n'.join(' ' * n + line for line in lines) + '\n' in source for n in indents)


def blocks(guide):
    """(language, text) of each example: yaml, bob, or '' for an indented one."""
    for match in re.finditer(r'^```(\w+)\n(.*?)^```|^((?:    [^\n]*\n|\n)+)', guide, re.S | re.M):
        if match[1]:
            yield match[1], match[2]
        elif match[3].strip():
            yield '', re.sub('^    ', '', match[3], flags=re.M).strip('\n') + '\n'


def failures(guide, root, build, fonts, folder):
    """Tries what the guide says in a folder with the demo's files, its artwork and the fonts."""
    for source in [*(build / 'demo').iterdir(), *(root / 'demo/artwork').glob('*.png'), *fonts.glob('*.ttf')]:
        shutil.copy(source, folder)
    shutil.copy(folder / 'guide.kpg', folder / 'menu.kpg')

    def fails(command):
        done = subprocess.run(f'PATH={build}/src/kpg:$PATH; {command}', shell=True, cwd=folder, capture_output=True)
        if done.returncode:
            yield f'docs/authoring.md: {command}: {(done.stderr or done.stdout).decode(errors="replace").strip()}'

    shutil.copytree(root / 'docs/outputs/pagetest', folder, dirs_exist_ok=True)
    yield from fails('kpg clut --standard -o standard.clut')
    for language, text in blocks(guide):
        if language == 'bob':
            (folder / 'example.bob').write_text(text)
            yield from fails('kpg compile example.bob -o example.bobo')
        elif text.startswith('flags:'):
            (folder / 'first.yaml').write_text(text)
            yield from fails('kpg shot first.yaml --strict -o example.png')
        elif not language:
            for line in text.split('\n'):
                command = line.split('  ')[0]
                if command == 'kpg lsp':  # which goes on until an editor ends it
                    continue
                if command.startswith('kpg ') and not re.search(r'\b[A-Z]{2}|\w\|\w', command):
                    yield from fails(command)


def outputs(guide, root, build, fonts):
    """Tries each folder of docs/outputs, whose answer must be in the guide as a block of its own."""
    shown = [text for language, text in blocks(guide) if not language]
    for example in sorted((root / 'docs/outputs').iterdir()):
        with tempfile.TemporaryDirectory() as folder:
            shutil.copytree(example, folder, dirs_exist_ok=True)
            shutil.copy(fonts / 'DejaVuSans.ttf', folder)
            command = (example / 'command').read_text().strip()
            answer = subprocess.run(f'PATH={build}/src/kpg:$PATH; {command}', shell=True, cwd=folder, text=True,
                                    stdout=subprocess.PIPE, stderr=subprocess.STDOUT).stdout
        for test in example.glob('*.test.yaml'):
            if example.name != 'failedtest' and ('yaml', test.read_text()) not in blocks(guide):
                yield f'{test}: docs/authoring.md does not show it'
        if not answer or answer not in shown:
            yield f'docs/outputs/{example.name}: {command} answers what docs/authoring.md does not show:\n{answer}'


def colors(guide, build):
    """What the table of colours says that a 16-bit screen shows."""
    for written, shown in re.findall(r'^\| `(#[0-9A-F]{6})` \| `(#[0-9A-F]{6})` \|$', guide, re.M):
        answer = subprocess.run([build / 'src/kpg/kpg', 'color', written], capture_output=True, text=True).stdout
        if not re.search('^it shows as .*' + shown, answer, re.M):
            yield f'docs/authoring.md: {written} does not show as {shown}: {answer}'


def main():
    root, build, fonts = (pathlib.Path(a).resolve() for a in sys.argv[1:4])
    kept, faults, count = root / 'docs/pictures', [], 0
    guide = (root / 'docs/authoring.md').read_text()
    for example, name in examples(guide):
        source, count = kept / (name + '.yaml'), count + 1
        if not source.is_file():
            source = root / 'demo' / (name + '.yaml')
        if not source.is_file() or not contains(source.read_text(), example):
            faults.append(f'docs/authoring.md: the example before {name}.png is not in the source of that picture')
    if count < 4:
        faults.append(f'docs/authoring.md: only {count} examples found')
    with tempfile.TemporaryDirectory() as folder:
        faults += failures(guide, root, build, fonts, pathlib.Path(folder))
    faults += outputs(guide, root, build, fonts)
    faults += colors(guide, build)
    with tempfile.TemporaryDirectory() as made:
        subprocess.run([kept / 'make', build, fonts, made], check=True, stderr=subprocess.DEVNULL)
        for picture in sorted(pathlib.Path(made).glob('*.png')):
            if pixels(picture) != pixels(kept / picture.name):
                faults.append(f'docs/pictures/{picture.name}: comes out otherwise')
    print('\n'.join(faults))
    sys.exit(1 if faults else 0)


if __name__ == '__main__':
    main()
