" Bob, the language of pages.
if exists('b:current_syntax')
  finish
endif

syntax keyword bobConditional if else switch case default
syntax keyword bobRepeat while do for break continue
syntax keyword bobStatement return
syntax keyword bobException try catch finally throw
syntax keyword bobDefine define function local new
syntax keyword bobConstant nil true false
syntax keyword bobSelf this super _next
syntax keyword bobPlayer widgets textStyles frame parent topFrame KOVA stdin stdout stderr

syntax match bobFunction /\<\h\w*\ze\s*(/ contains=bobConditional,bobRepeat,bobStatement,bobException,bobDefine,bobSelf
syntax match bobNumber /\<0[xX]\x\+\>\|\<\d\+\(\.\d\+\)\?\([eE][-+]\?\d\+\)\?\>/
syntax match bobSymbol /\\\h\w*/
syntax match bobEscape /\\\(\o\{1,3}\|x\x\{1,2}\|.\)/ contained
syntax region bobString start=/"/ skip=/\\\\\|\\"/ end=/"/ contains=bobEscape
syntax match bobCharacter /'\(\\.[^']*\|[^']\)'/
syntax keyword bobTodo TODO FIXME XXX contained
syntax match bobComment +//.*$+ contains=bobTodo,@Spell
syntax region bobComment start=+/\*+ end=+\*/+ contains=bobTodo,@Spell

highlight default link bobConditional Conditional
highlight default link bobRepeat Repeat
highlight default link bobStatement Statement
highlight default link bobException Exception
highlight default link bobDefine Keyword
highlight default link bobConstant Constant
highlight default link bobSelf Identifier
highlight default link bobPlayer Identifier
highlight default link bobFunction Function
highlight default link bobNumber Number
highlight default link bobSymbol Special
highlight default link bobEscape SpecialChar
highlight default link bobString String
highlight default link bobCharacter Character
highlight default link bobComment Comment
highlight default link bobTodo Todo

syntax sync fromstart

let b:current_syntax = 'bob'
