#!/usr/bin/env python3
"""Reads the #includes of src/ and fails on one that runs upward between floors, or round in a circle.

    includes_test.py SRC
"""
import pathlib
import re
import sys

# What each floor may include, besides itself and whatever its own list may include. From the ground up; a folder with
# no line of its own belongs to the floor of the folder around it.
FLOORS = {
    'gfx/foundation': [],
    'bob/base': [],
    'bob/heap': ['bob/base'],
    'bob/model': ['bob/heap'],
    'bob/compile': ['bob/model'],
    'bob/run': ['bob/compile'],
    'bob/tools': ['bob/run'],
    'bob/debug': ['bob/tools'],
    'bob/lib': ['bob/tools'],
    'bob/embed': ['bob/lib', 'bob/debug'],
    'bob': ['bob/embed'],
    't2k': ['gfx/foundation'],
    'gfx/vector': ['gfx/foundation'],
    'gfx/pixel': ['gfx/vector'],
    'gfx/text': ['gfx/pixel', 't2k'],
    'host/host.h': [],  # what the engine asks of the desktop: no more than declarations
    'engine/base': ['gfx/text', 'bob', 'host/host.h'],
    'engine/format': ['engine/base'],
    'engine/events': ['engine/base'],
    'engine/screen': ['engine/base'],
    'engine/images': ['engine/screen'],
    'engine/text': ['engine/format', 'engine/events', 'engine/screen'],
    'engine/page': ['engine/text', 'engine/images'],
    'engine/page/pageload.cpp': ['engine/page', 'engine/scriptbindings'],  # a new frame's scope
    'engine/widgets': ['engine/page'],
    'engine/scriptbindings': ['engine/page'],
    'engine/engine.h': ['engine/widgets', 'engine/scriptbindings'],
    'engine/inspect': ['engine/engine.h', 'engine/inspect.h'],
    'engine/inspect.h': ['engine/format'],
    'engine': ['engine/engine.h', 'engine/inspect'],
    'host': ['engine'],
    'kit': ['host'],
    'studio': ['kit'],
    'kpg': ['kit'],
}

# The files of a subsystem that others may include; the rest of it is its own.
DOORS = {
    'bob': ['bob/bob.h', 'bob/compile/statementreader.h', 'bob/debug/codelines.h', 'bob/tools/disassemble.h', 'bob/tools/codeuses.h', 'bob/tools/objectformat.h',
            'bob/tools/textcalls.h'],
}


def floor_of(path):
    """The longest line of the table that `path`, relative to src/, is or lies under."""
    while path not in FLOORS:
        if '/' not in path:
            return None
        path = path.rsplit('/', 1)[0]
    return path


def reachable(floor):
    seen, waiting = set(), [floor]
    while waiting:
        f = waiting.pop()
        if f not in seen:
            seen.add(f)
            waiting += FLOORS[f]
    return seen


def read_includes(src):
    """{file: [(line number, file that it includes)]} for the includes that name a file of src/."""
    graph = {}
    for path in sorted(src.rglob('*')):
        if path.suffix not in ('.h', '.cpp'):
            continue
        found = []
        for number, line in enumerate(path.read_text(errors='replace').splitlines(), 1):
            match = re.match(r'\s*#\s*include\s*"([^"]+)"', line)
            if not match:
                continue
            for candidate in (src / match[1], path.parent / match[1]):
                if candidate.is_file():
                    found.append((number, candidate.resolve().relative_to(src).as_posix()))
                    break
        graph[path.relative_to(src).as_posix()] = found
    return graph


def upward(graph):
    for name, includes in graph.items():
        floor = floor_of(name)
        if floor is None:
            yield f'src/{name}: its folder is missing in the table of floors'
            continue
        allowed = reachable(floor)
        for number, target in includes:
            if floor_of(target) not in allowed:
                yield f'src/{name}:{number}: {floor} must not include {target}'


def indoors(graph):
    for name, includes in graph.items():
        for number, target in includes:
            house = target.split('/')[0]
            if house in DOORS and not name.startswith(house + '/') and target not in DOORS[house]:
                yield f'src/{name}:{number}: {target} is for {house} itself'


def circles(graph):
    """Each circle of files once, found by walking down and meeting a file that is still being walked."""
    state, stack = {}, []

    def walk(name):
        state[name] = 'open'
        stack.append(name)
        for _, target in graph.get(name, []):
            if state.get(target) == 'open':
                yield 'circle: ' + ' -> '.join(stack[stack.index(target):] + [target])
            elif target not in state:
                yield from walk(target)
        stack.pop()
        state[name] = 'done'

    for name in graph:
        if name not in state:
            yield from walk(name)


def main():
    src = pathlib.Path(sys.argv[1]).resolve()
    graph = read_includes(src)
    if not graph:
        sys.exit(f'{src}: no sources')
    faults = list(upward(graph))
    faults += list(indoors(graph)) + list(circles(graph))
    print('\n'.join(faults))
    sys.exit(1 if faults else 0)


main()
