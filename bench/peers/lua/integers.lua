function gcd(a, b) while b ~= 0 do a, b = b, a % b end return a end
function bench()
  local s = 0
  for i = 0, 399 do for j = 0, 399 do s = s + (i ~ j) & 0xFFFFF end end
  for i = 1, 7999 do s = s + gcd(i, 5040) end
  for i = 0, 99999 do s = (s << 1 ~ i) & 0x3FFFFFF end
  return s
end
