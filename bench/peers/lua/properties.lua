function bench()
  local base = {step = 3, limit = 1000}
  base.__index = base
  local p, big, q = setmetatable({x = 0, y = 1}, base), {}, {x = 1, y = 2, z = 3}
  big.a = 1; big.b = 2; big.c = 3; big.d = 4; big.e = 5; big.f = 6; big.g = 7; big.h = 8
  for i = 0, 79999 do
    p.x = p.x + p.step
    p.y = p.y ~ i
    if p.x > p.limit then p.x = 0 end
    q.z = q.x + q.y; q.x = q.z & 255
    big.h = big.a + big.e; big.c = big.h - big.g
  end
  return p.x + p.y + q.z + big.c
end
