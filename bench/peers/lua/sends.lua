Shape = {name = "shape"}
Shape.__index = Shape
function Shape.new(class, ...) return setmetatable({}, class):initialize(...) end
function Shape:initialize(w, h) self.w = w; self.h = h; return self end
function Shape:area() return self.w * self.h end
function Shape:grow(n) self.w = self.w + n; return self end
Square = setmetatable({name = "square"}, Shape)
Square.__index = Square
function Square:initialize(w) self.w = w; self.h = w; return self end
loud = setmetatable({w = 2, h = 3}, Square)
function loud:area() return Square.area(self) + 1 end
function bench()
  local s, a, b = 0, Shape:new(3, 4), Square:new(5)
  for i = 0, 49999 do
    s = s + a:area() + b:area() + loud:area() & 0xFFFFFF
    if i % 100 == 0 then a:grow(1); b:grow(1) end
  end
  for i = 0, 9999 do
    local c = Square:new(i & 15)
    s = s + c:area()
  end
  return s
end
