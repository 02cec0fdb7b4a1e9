function bench()
  local s, words, count = "", {}, 0
  for i = 0, 19999 do
    s = s .. "ab"
    if #s > 200 then s = "" end
    count = count + #tostring(i)
  end
  for i = 0, 19999 do
    local key = "key" .. tostring(i & 63)
    if words[key] ~= nil then words[key] = words[key] + 1 else words[key] = 1 end
    if key == "key7" then count = count + 1 end
    if key < "key3" then count = count + key:byte(4) end
  end
  return count + words["key5"]
end
