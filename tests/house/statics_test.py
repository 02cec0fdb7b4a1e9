#!/usr/bin/env python3
"""Lists the writable static data of the libraries and holds it against the short list of what may be there.

    statics_test.py ALLOWED LIBRARY.a...

What a running page needs belongs to its engine, so that two engines share nothing that is written to. ALLOWED has a
line "NAME  reason" for each exception, NAME as nm -C prints it and two spaces between; an exception that is no longer there
is a fault too.
"""
import pathlib
import re
import subprocess
import sys

WRITABLE = re.compile(r'\.(bss|data|tbss|tdata)(\.|$)|\*COM\*')
CONSTANT = re.compile(r'\.data\.rel\.ro(\.|$)')  # written by the loader alone
# What the compiler makes by itself: references to types and handlers of exceptions, the stream library's start, and the
# guards of local statics, which are listed themselves.
OF_THE_COMPILER = re.compile(r'DW\.ref\.|std::__ioinit$|guard variable for ')


def writable(library):
    text = subprocess.run(['nm', '-C', '--format=sysv', library], check=True, capture_output=True, text=True).stdout
    for line in text.splitlines():
        fields = [field.strip() for field in line.rsplit('|', 6)]
        if len(fields) != 7 or fields[3] not in ('OBJECT', 'TLS', 'COMMON'):
            continue
        name, section = fields[0], fields[6]
        if WRITABLE.search(section) and not CONSTANT.search(section) and not OF_THE_COMPILER.match(name):
            yield name


def main():
    allowed = {}
    for line in pathlib.Path(sys.argv[1]).read_text().splitlines():
        if line and not line.startswith('#'):
            name, _, reason = line.partition('  ')
            if not reason.strip():
                sys.exit(f'{sys.argv[1]}: no reason for {name}')
            allowed[name] = reason.strip()
    found = {}
    for library in sys.argv[2:]:
        for name in writable(library):
            found.setdefault(name, pathlib.Path(library).name)
    faults = [f'{found[name]}: {name} is written to and shared by all engines' for name in found if name not in allowed]
    faults += [f'{sys.argv[1]}: {name} is gone; take it off the list' for name in allowed if name not in found]
    print('\n'.join(sorted(faults)))
    sys.exit(1 if faults or not found and allowed else 0)


main()
