"""Vim and Emacs colour and indent scripts as what they are: editors_test.py vim|emacs PROGRAM EDITORS_FOLDER"""
import pathlib
import subprocess
import sys
import tempfile

SCRIPT = '''// Adds.
define lamp.add(a, b) {
local sum = "a\\n" + \\name;
/* two
if */
if (a) return nil;
x = \\[1, 'c'];
}
'''

PAGE = '''page:
  onLoad: |
    if (a) return nil;

    while (b) c();
  value: if
  children:
  - onClick: |-
      return 1;
    onBlur: |
      break;
    name: continue
'''

# A line, a text in it, and what Vim and Emacs call that.
WORDS = [(1, 'Adds', 'bobComment', 'comment'), (2, 'define', 'bobDefine', 'keyword'), (2, 'add', 'bobFunction', 'function-name'),
         (3, '\\n', 'bobEscape', 'string'), (3, 'name', 'bobSymbol', 'constant'), (5, 'if', 'bobComment', 'comment'),
         (6, 'if', 'bobConditional', 'keyword'), (6, 'nil', 'bobConstant', 'constant')]

IN_PAGE = [(2, 'onLoad', 'bobHook'), (3, 'if', 'bobConditional'), (3, 'nil', 'bobConstant'), (5, 'while', 'bobRepeat'),
           (6, 'if', None), (9, 'return', 'bobStatement'), (11, 'break', 'bobRepeat'), (12, 'continue', None)]


def vim(program, editors, folder):
    def names(words):
        return ', '.join(f"At({line}, '{text}')" for line, text, *_ in words)

    (folder / 'try.vim').write_text(f'''
set nocompatible
set rtp^={editors}/vim
set rtp+={editors}/vim/after
filetype plugin indent on
syntax on
function! At(line, text)
  return synIDattr(synID(a:line, stridx(getline(a:line), a:text) + 1, 1), 'name')
endfunction
edit script.bob
let found = [&filetype, {names(WORDS)}]
normal gg=G
write
edit page.yaml
call writefile(found + [{names(IN_PAGE)}], 'found')
qall!
''')
    subprocess.run([program, '-es', '-u', 'NONE', '-S', 'try.vim'], cwd=folder, check=True)
    filetype, *found = (folder / 'found').read_text().splitlines()
    assert filetype == 'bob', filetype
    for (line, text, *names), name in zip(WORDS + IN_PAGE, found):
        assert name == names[0] or names[0] is None and not name.startswith('bob'), (line, text, name)


def emacs(program, editors, folder):
    (folder / 'bob-mode.el').write_text((editors / 'emacs' / 'bob-mode.el').read_text())
    places = '\n'.join(f'(show {line} {json_text(text)})' for line, text, *_ in WORDS)
    (folder / 'try.el').write_text(f'''
(add-to-list 'load-path default-directory)
(setq byte-compile-error-on-warn t)
(unless (byte-compile-file "bob-mode.el") (kill-emacs 1))
(require 'bob-mode)
(find-file "script.bob")
(font-lock-ensure)
(defun show (line text)
  (goto-char (point-min))
  (forward-line (1- line))
  (search-forward text)
  (princ (format "%s %s\\n" major-mode (get-text-property (match-beginning 0) 'face))))
{places}
(indent-region (point-min) (point-max))
(let ((make-backup-files nil)) (save-buffer))
''')
    done = subprocess.run([program, '--batch', '-Q', '-l', 'try.el'], cwd=folder, check=True, stdout=subprocess.PIPE,
                          stderr=subprocess.DEVNULL, text=True)
    found = done.stdout.splitlines()
    assert len(found) == len(WORDS), found
    for (line, text, _, face), shown in zip(WORDS, found):
        assert shown == f'bob-mode font-lock-{face}-face', (line, text, shown)


def json_text(text):
    return '"' + text.replace('\\', '\\\\').replace('"', '\\"') + '"'


def main():
    name, program, editors = sys.argv[1], sys.argv[2], pathlib.Path(sys.argv[3]).resolve()
    with tempfile.TemporaryDirectory() as temporary:
        folder = pathlib.Path(temporary)
        (folder / 'script.bob').write_text(SCRIPT)
        (folder / 'page.yaml').write_text(PAGE)
        {'vim': vim, 'emacs': emacs}[name](program, editors, folder)
        lines = (folder / 'script.bob').read_text().splitlines()
        depths = [len(line) - len(line.lstrip()) for line in lines]
        assert depths[:3] == [0, 0, 2] and depths[5:] == [2, 2, 0], lines


main()
