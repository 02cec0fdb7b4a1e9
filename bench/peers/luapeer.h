// A Lua 5.4 program with a function `bench` that returns an integer.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>

extern "C" {
#include <lauxlib.h>
#include <lua.h>
#include <lualib.h>
}

class LuaProgram {
 public:
  explicit LuaProgram(const std::string& source) : state(luaL_newstate()) {
    luaL_openlibs(state);
    if (luaL_dostring(state, source.c_str())) std::fprintf(stderr, "%s\n", lua_tostring(state, -1));
  }
  ~LuaProgram() { lua_close(state); }
  LuaProgram(const LuaProgram&) = delete;
  LuaProgram& operator=(const LuaProgram&) = delete;

  int32_t run() {
    lua_getglobal(state, "bench");
    if (lua_pcall(state, 0, 1, 0)) std::fprintf(stderr, "%s\n", lua_tostring(state, -1));
    const int32_t result = int32_t(lua_tointeger(state, -1));
    lua_settop(state, 0);
    return result;
  }

 private:
  lua_State* state;
};
