function isDigit(c) return c >= 48 and c <= 57 end
function tokens(text, emit)
  local i, n = 1, #text
  while i <= n do
    local c = text:byte(i)
    if isDigit(c) then
      local value = 0
      while i <= n and isDigit(text:byte(i)) do
        value = value * 10 + text:byte(i) - 48
        i = i + 1
      end
      emit("number", value)
    else
      if c ~= 32 then emit("symbol", c) end
      i = i + 1
    end
  end
end
function bench()
  local sum, counts, queue = 0, {number = 0, symbol = 0}, {}
  local text = "12 + 345 * (6 - 78) / 9 + 1000 % 7 - 42 * (3 + 4) + 56789 - 1"
  local function emit(kind, value)
    counts[kind] = counts[kind] + 1
    queue[#queue + 1] = value
    if kind == "number" then sum = sum + value & 0xFFFFFF end
  end
  for round = 0, 699 do
    tokens(text, emit)
    while #queue > 20 do queue[#queue] = nil end
  end
  return sum + counts.number + counts.symbol + #queue
end
