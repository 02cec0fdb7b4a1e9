"""Sources for a language server, as large as one likes."""


def long_page(entries):
    """A page of about eight lines an entry, with scripts in it."""
    text = 'flags: 16bit\nconstants: {accent: "#F4D860"}\npage:\n  type: group\n  start: entry0\n'
    text += '  scripts: [tools.bob]\n  textStyles:\n  - {name: body, font: Sans.ttf, size: 20, color: white}\n  children:\n'
    for n in range(entries):
        text += (f'  - type: text\n    name: entry{n}\n    y: {n % 400}\n    width: 200\n    textStyle: body\n'
                 f'    value: Entry {n} – größer\n    down: entry{(n + 1) % entries}\n'
                 f'    onClick: |\n      shown = {n};\n      show(widgets.entry{n}, shown);\n')
    return text


TOOLS = '''// Shows a widget.
define show(widget, number) {
  local seen = number;
  widget.value = toString(seen);
}
'''
