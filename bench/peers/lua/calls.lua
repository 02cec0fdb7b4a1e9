function fib(n) if n < 2 then return n else return fib(n - 1) + fib(n - 2) end end
function add3(a, b, c) return a + b + c end
function twice(x) return add3(x, x, 0) end
function bench()
  local s = fib(24)
  for i = 0, 59999 do s = twice(i) - add3(i, 1, s & 1) end
  return s
end
