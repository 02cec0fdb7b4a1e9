autocmd BufNewFile,BufRead *.bob setfiletype bob
