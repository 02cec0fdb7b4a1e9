#!/usr/bin/env python3
"""Makes the installer for Windows of a folder: make-installer.py VERSION FOLDER INSTALLER.exe

Needs makensis. The files are listed by name, so that the same folder makes the same bytes, and that uninstalling takes
away these and no others.
"""
import pathlib
import subprocess
import sys


def windows_name(path):
    return str(path).replace('/', '\\').replace('$', '$$')


def install_lines(folder, files):
    for parent in sorted({file.parent for file in files}):
        inside = parent.relative_to(folder)
        yield f'SetOutPath "$INSTDIR\\{windows_name(inside)}"' if inside.parts else 'SetOutPath "$INSTDIR"'
        yield from (f'File "{file}"' for file in files if file.parent == parent)


def remove_lines(folder, files):
    yield from (f'Delete "$INSTDIR\\{windows_name(file.relative_to(folder))}"' for file in files)
    folders = {parent for file in files for parent in file.relative_to(folder).parents if parent.parts}
    yield from (f'RMDir "$INSTDIR\\{windows_name(each)}"' for each in sorted(folders, reverse=True))  # empty ones only
    yield 'RMDir "$INSTDIR"'


def macro(name, lines):
    return '\n'.join([f'!macro {name}', *lines, '!macroend', ''])


def main():
    version, folder, installer = sys.argv[1], pathlib.Path(sys.argv[2]).resolve(), pathlib.Path(sys.argv[3]).resolve()
    files = sorted(file for file in folder.rglob('*') if file.is_file())
    made = folder.with_name(folder.name + '.nsh')
    made.write_text(macro('INSTALL_FILES', install_lines(folder, files)) +
                    macro('REMOVE_FILES', remove_lines(folder, files)), encoding='utf-8')
    script = pathlib.Path(__file__).with_name('windows.nsi').resolve()
    subprocess.run(['makensis', '-V2', '-INPUTCHARSET', 'UTF8', f'-DVERSION={version}', f'-DFOLDER={folder}',
                    f'-DLIST={made}', f'-DINSTALLER={installer}', str(script)], check=True)


if __name__ == '__main__':
    main()
