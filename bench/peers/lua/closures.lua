function counter() local n = 0; return function() n = n + 1; return n end end
function compose(f, g) return function(x) return f(g(x)) end end
function bench()
  local s = 0
  for i = 0, 5999 do
    local c = counter()
    for j = 0, 9 do c() end
    s = s + c()
  end
  local h = compose(function(x) return x + 1 end, function(x) return x * 2 end)
  for i = 0, 39999 do s = h(s) & 0xFFFF end
  return s
end
