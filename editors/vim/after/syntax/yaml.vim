" Scripts after a bar in page sources are Bob: from the line after the bar to the next one that is no deeper than its key.
let s:before = get(b:, 'current_syntax', 'yaml')
unlet! b:current_syntax
syntax include @bobInYaml syntax/bob.vim
let b:current_syntax = s:before

syntax region bobScript matchgroup=bobHook keepend contains=@bobInYaml
      \ start=/^\z(\s*\)on\(Up\|Down\|Left\|Right\|Click\|Focus\|Blur\|Change\|Load\|Unload\)\s*:\s*[|>][-+0-9]*\s*\(#.*\)\?$/
      \ end=/^\(\z1\s\|\s*$\)\@!/me=s-1
" Beside the dash of a list the key is two columns deeper than its line.
syntax region bobScript matchgroup=bobHook keepend contains=@bobInYaml
      \ start=/^\z(\s*\)- on\(Up\|Down\|Left\|Right\|Click\|Focus\|Blur\|Change\|Load\|Unload\)\s*:\s*[|>][-+0-9]*\s*\(#.*\)\?$/
      \ end=/^\(\z1\s\s\s\|\s*$\)\@!/me=s-1
highlight default link bobHook Identifier
