function bench()
  local count, sieve, v = 0, {}, {}
  for i = 0, 3999 do sieve[i] = true end
  for i = 2, 3999 do
    if sieve[i] then
      count = count + 1
      for j = i + i, 3999, i do sieve[j] = false end
    end
  end
  for i = 0, 4999 do v[#v + 1] = i * 7919 & 1023 end
  for i = 2, 400 do
    local x = v[i]
    local j = i - 1
    while j >= 1 do
      if v[j] <= x then break end
      v[j + 1] = v[j]
      j = j - 1
    end
    v[j + 1] = x
  end
  for i = 1, #v do count = count + v[i] end
  return count
end
