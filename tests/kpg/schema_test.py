"""Holds page sources against the schema that kpg prints: schema_test.py KPG SOURCE_FOLDER"""
import json
import pathlib
import subprocess
import sys
import tempfile

import jsonschema
import yaml


class Loader(yaml.SafeLoader):
    """Takes values with tags of kpg's own for what the tag says of them alone."""


Loader.add_multi_constructor('!', lambda loader, suffix, node: '$(tagged)')

PAGE = '''flags: 16bit
include: theme.yaml
constants: {wide: 300}
templates:
  entry:
    parameters: {label: , width: $(wide)}
    type: text
    width: $(width)
    value: $(label)
page:
  type: group
  layout: grid
  columns: 2
  gap: [4, 8]
  padding: 8
  links: wrap
  textStyles:
  - {name: body, font: Sans.ttf, size: 20, color: "#F0C040"}
  - {name: bright, style: body, color: white}
  children:
  - {repeat: {over: 3, as: n}, template: entry, with: {label: One}, name: entry$(n), hidden: yes}
  - {type: text, value: 12, align: left}
  - {type: group, layout: row, align: stretch, bgColor: 0, children: []}
  - type: textContainer
    children: [{x: 0, y: 20, style: body, content: Morning}]
'''

# What an editor has to mark.
FAULTS = [('columns: 2', 'colums: 2'), ('layout: grid', 'layout: circle'), ('page:', 'pgae:'), ('16bit', '24bit'),
          ('size: 20', 'size: large'), ('"#F0C040"', '"#F0C0"'), ('type: group\n', 'type: gruop\n'),
          ('align: left', 'align: start'), ('gap: [4, 8]', 'gap: [4]'), ('over: 3', 'ober: 3'), ('padding: 8', 'padding: -8'),
          ('content: Morning', 'value: Morning'), ('style: body, color', 'sytle: body, color'), ('value: 12', 'min: 12')]


def main():
    kpg, root = pathlib.Path(sys.argv[1]).resolve(), pathlib.Path(sys.argv[2])
    schema = json.loads(subprocess.run([kpg, 'schema'], check=True, stdout=subprocess.PIPE).stdout)
    with tempfile.TemporaryDirectory() as folder:
        subprocess.run([kpg, 'schema', '--out', 'page.json'], check=True, cwd=folder)
        assert json.loads((pathlib.Path(folder) / 'page.json').read_text()) == schema
    jsonschema.Draft7Validator.check_schema(schema)
    validator = jsonschema.Draft7Validator(schema)

    def faults(text):
        return [f'{"/".join(map(str, e.absolute_path))}: {e.message}'
                for e in validator.iter_errors(yaml.load(text, Loader))]

    pages = [path for folder in ('demo', 'docs') for path in sorted((root / folder).rglob('*.yaml'))
             if path.parent.name != 'errors' and 'page' in (yaml.load(path.read_text(), Loader) or {}) and not path.name.endswith('.test.yaml')]
    assert len(pages) >= 20, pages
    for page in pages:
        assert not faults(page.read_text()), (page, faults(page.read_text())[:3])

    assert not faults(PAGE), faults(PAGE)
    for old, new in FAULTS:
        assert PAGE.count(old) == 1, old
        assert faults(PAGE.replace(old, new)), new


main()
