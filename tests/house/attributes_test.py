#!/usr/bin/env python3
"""Holds the engine's readers against its table of attributes: no name is read that the table lacks, and none is in the
table that nothing reads.

    attributes_test.py SRC
"""
import pathlib
import re
import sys

ENGINE = pathlib.Path(sys.argv[1]) / 'engine'
TABLE = ENGINE / 'page/attributes.cpp'
# Calls that read an attribute by its name.
READER = re.compile(r'\b(?:widgetAttr\w+|attr(?:Find|Int|Color|Bool|String|Object|Table|Script)|flagFromAttribute'
                    r'|namedStyle)\(\s*[^"();]*"(\w+)"')

table = set(re.findall(r'^\s*\{\w+, "\w*", "(\w+)",', TABLE.read_text(), re.M))
faults, words = [], set()
for path in sorted(ENGINE.rglob('*.cpp')):
    if path == TABLE:
        continue
    text = path.read_text()
    words |= set(re.findall(r'"(\w+)"', text))
    for name in READER.findall(text):
        if name not in table:
            faults.append(f'{path}: reads {name}, which the table of attributes lacks')
if len(table) < 60:
    faults.append(f'{TABLE}: only {len(table)} names could be read')
faults += [f'{TABLE}: nothing reads {name}' for name in sorted(table - words)]
print('\n'.join(faults))
sys.exit(1 if faults else 0)
