" Bob: comments, and two spaces of indentation, as kpg format writes them.
if exists('b:did_ftplugin')
  finish
endif
let b:did_ftplugin = 1

setlocal comments=s1:/*,mb:*,ex:*/,:// commentstring=//\ %s
setlocal expandtab shiftwidth=2 softtabstop=2 cindent cinoptions=(0,j1,J1
setlocal suffixesadd=.bob
let b:undo_ftplugin = 'setlocal comments< commentstring< expandtab< shiftwidth< softtabstop< cindent< cinoptions< suffixesadd<'
