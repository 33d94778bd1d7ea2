#include "scripting/lua/LuaScript.hpp"

#include <cstdlib>
#include <lua.hpp>
#include <memory>

#include "base/Failure.hpp"
#include "scripting/Messages.hpp"
#include "scripting/lua/LuaValues.hpp"

// Lua leaves a function by longjmp when something fails in it. So each function here has two halves: the
// first is C++, may throw, holds what it needs and calls nothing that Lua could fail in; the second hands
// over to Lua what the first has left in `Run`, and holds nothing that would have to be destroyed.

namespace scripting {
namespace {

constexpr int kStepsBetweenChecks = 5000;

struct Memory {
  std::size_t used = 0;
  std::size_t limit = 0;
};

struct Run {
  explicit Run(ScriptHouse& itsHouse) : house(itsHouse) {}
  ScriptHouse& house;
  const std::string* name = nullptr;
  const std::string* text = nullptr;
  const void* objects = nullptr;  ///< identity of the metatable of objects
  base::Value result;
  bool operation = false;  ///< what was looked up is one
  std::string error;
};

void* Allocate(void* context, void* block, std::size_t oldSize, std::size_t newSize) {
  auto& memory = *static_cast<Memory*>(context);
  if (block == nullptr) oldSize = 0;  // it tells the kind of object then
  if (newSize == 0) {
    std::free(block);
    memory.used -= oldSize;
    return nullptr;
  }
  if (newSize > oldSize && memory.used + (newSize - oldSize) > memory.limit) return nullptr;
  void* made = std::realloc(block, newSize);
  if (made != nullptr) memory.used = memory.used - oldSize + newSize;
  return made;
}

Run& RunOf(lua_State* lua) { return **static_cast<Run**>(lua_getextraspace(lua)); }

/// The first half: false with a text in `run.error` when it has thrown.
bool Done(lua_State* lua, Run& run, void (*work)(lua_State*, Run&)) {
  try {
    run.result = base::Value();
    work(lua, run);
    return true;
  } catch (...) {
    try {
      const base::Failure failure = base::CurrentFailure();
      run.error = "failure " + std::to_string(failure.number()) + ": " + failure.description();
    } catch (...) {
      run.error.clear();
    }
    return false;
  }
}

int Raise(lua_State* lua, const Run& run) {
  return luaL_error(lua, "%s", run.error.empty() ? "not enough memory" : run.error.c_str());
}

int Answer(lua_State* lua, void (*work)(lua_State*, Run&)) {
  Run& run = RunOf(lua);
  if (!Done(lua, run, work)) return Raise(lua, run);
  PushLua(lua, run.result);
  run.result = base::Value();
  return 1;
}

std::int32_t ObjectAt(lua_State* lua, const Run& run, int index) {
  const std::int32_t handle = LuaObjectAt(lua, index, run.objects);
  if (handle == 0) throw base::Failure(base::number::kObjectMissing, "An object is missing here");
  return handle;
}

std::string NameAt(lua_State* lua, int index) {
  if (lua_type(lua, index) != LUA_TSTRING) {
    throw base::Failure(base::number::kTypeMismatch, "The name of a member is a text");
  }
  std::size_t size = 0;
  const char* name = lua_tolstring(lua, index, &size);
  if (size > kLongestName) throw base::Failure(base::number::kNoSuchMember);
  return name;
}

base::Args ArgumentsFrom(lua_State* lua, const Run& run, int first) {
  base::Args args;
  std::size_t left = kMostAsked;
  for (int i = first; i <= lua_gettop(lua); ++i) args.push_back(ReadLua(lua, i, run.objects, left));
  return args;
}

int HouseCall(lua_State* lua) {
  return Answer(lua, [](lua_State* from, Run& run) {
    const std::int32_t object = ObjectAt(from, run, 1);
    const std::string name = NameAt(from, 2);
    run.result = run.house.call(object, name, ArgumentsFrom(from, run, 3));
  });
}

int HouseGet(lua_State* lua) {
  return Answer(lua, [](lua_State* from, Run& run) {
    run.result = run.house.get(ObjectAt(from, run, 1), NameAt(from, 2));
  });
}

int HousePut(lua_State* lua) {
  return Answer(lua, [](lua_State* from, Run& run) {
    std::size_t left = kMostAsked;
    run.house.put(ObjectAt(from, run, 1), NameAt(from, 2), ReadLua(from, 3, run.objects, left));
  });
}

int HouseSleep(lua_State* lua) {
  return Answer(lua, [](lua_State* from, Run& run) {
    if (lua_type(from, 1) != LUA_TNUMBER) {
      throw base::Failure(base::number::kTypeMismatch, "The time to sleep is a number of seconds");
    }
    run.house.sleep(lua_tonumber(from, 1));
  });
}

/// An operation that was looked up as a member; called with a dot or with a colon.
int Operation(lua_State* lua) {
  return Answer(lua, [](lua_State* from, Run& run) {
    const bool colon = lua_gettop(from) > 0 && lua_rawequal(from, 1, lua_upvalueindex(1)) != 0;
    run.result = run.house.call(ObjectAt(from, run, lua_upvalueindex(1)), NameAt(from, lua_upvalueindex(2)),
                                ArgumentsFrom(from, run, colon ? 2 : 1));
  });
}

int ObjectIndex(lua_State* lua) {
  Run& run = RunOf(lua);
  const bool fine = Done(lua, run, [](lua_State* from, Run& its) {
    const std::int32_t object = ObjectAt(from, its, 1);
    const std::string name = NameAt(from, 2);
    its.operation = !its.house.isField(object, name);
    if (!its.operation) its.result = its.house.get(object, name);
  });
  if (!fine) return Raise(lua, run);
  if (run.operation) {
    lua_settop(lua, 2);
    lua_pushcclosure(lua, Operation, 2);
    return 1;
  }
  PushLua(lua, run.result);
  run.result = base::Value();
  return 1;
}

int ObjectText(lua_State* lua) {
  lua_pushliteral(lua, "object");
  return 1;
}

int Print(lua_State* lua) {
  const int count = lua_gettop(lua);
  luaL_Buffer line;
  luaL_buffinit(lua, &line);
  for (int i = 1; i <= count; ++i) {
    if (i > 1) luaL_addchar(&line, '\t');
    luaL_tolstring(lua, i, nullptr);
    luaL_addvalue(&line);
  }
  luaL_addchar(&line, '\n');
  luaL_pushresult(&line);
  Run& run = RunOf(lua);
  const bool fine = Done(lua, run, [](lua_State* from, Run& its) {
    std::size_t size = 0;
    const char* text = lua_tolstring(from, -1, &size);
    its.house.print({text, size});
  });
  return fine ? 0 : Raise(lua, run);
}

/// A finalizer would run where no limit reaches it.
int SetMetatable(lua_State* lua) {
  luaL_checktype(lua, 1, LUA_TTABLE);
  luaL_argexpected(lua, lua_isnil(lua, 2) || lua_istable(lua, 2), 2, "nil or table");
  if (luaL_getmetafield(lua, 1, "__metatable") != LUA_TNIL) {
    return luaL_error(lua, "cannot change a protected metatable");
  }
  lua_settop(lua, 2);
  if (lua_istable(lua, 2)) {
    lua_pushliteral(lua, "__gc");
    if (lua_rawget(lua, 2) != LUA_TNIL) return luaL_error(lua, "__gc is not available to scripts");
    lua_settop(lua, 2);
  }
  lua_setmetatable(lua, 1);
  return 1;
}

void Watch(lua_State* lua, lua_Debug* activation) {
  const char* reason = RunOf(lua).house.endReason();
  if (reason == nullptr) return;
  lua_sethook(lua, Watch, LUA_MASKCOUNT, 1);  // so that no pcall of the script's goes on
  // Inside a hook the language itself would name the caller's line.
  lua_getinfo(lua, "Sl", activation);
  lua_pushfstring(lua, "%s:%d: %s", activation->short_src, activation->currentline, reason);
  lua_error(lua);
}

void Remove(lua_State* lua, const char* table, std::initializer_list<const char*> names) {
  lua_getglobal(lua, table);
  for (const char* name : names) {
    lua_pushnil(lua);
    lua_setfield(lua, -2, name);
  }
  lua_pop(lua, 1);
}

void OpenLibraries(lua_State* lua) {
  luaL_requiref(lua, LUA_GNAME, luaopen_base, 1);
  luaL_requiref(lua, LUA_STRLIBNAME, luaopen_string, 1);
  luaL_requiref(lua, LUA_TABLIBNAME, luaopen_table, 1);
  luaL_requiref(lua, LUA_MATHLIBNAME, luaopen_math, 1);
  luaL_requiref(lua, LUA_UTF8LIBNAME, luaopen_utf8, 1);
  luaL_requiref(lua, LUA_OSLIBNAME, luaopen_os, 1);
  Remove(lua, LUA_GNAME, {"dofile", "loadfile", "load", "collectgarbage", "warn"});
  Remove(lua, LUA_STRLIBNAME, {"dump"});
  Remove(lua, LUA_OSLIBNAME, {"execute", "exit", "getenv", "remove", "rename", "setlocale", "tmpname"});
  lua_register(lua, "print", Print);
  lua_register(lua, "setmetatable", SetMetatable);
  lua_settop(lua, 0);
}

void OpenHouse(lua_State* lua) {
  luaL_newmetatable(lua, kLuaObjects);
  RunOf(lua).objects = lua_topointer(lua, -1);
  const luaL_Reg members[] = {// NOLINT(modernize-avoid-c-arrays): as Lua takes it
                              {"__index", ObjectIndex},
                              {"__newindex", HousePut},
                              {"__tostring", ObjectText},
                              {nullptr, nullptr}};
  luaL_setfuncs(lua, &members[0], 0);
  lua_pushliteral(lua, "object");
  lua_setfield(lua, -2, "__metatable");
  lua_pop(lua, 1);

  const luaL_Reg house[] = {// NOLINT(modernize-avoid-c-arrays): as Lua takes it
                            {"call", HouseCall},
                            {"get", HouseGet},
                            {"put", HousePut},
                            {"sleep", HouseSleep},
                            {nullptr, nullptr}};
  luaL_newlib(lua, house);
  lua_setglobal(lua, "house");
  PushLuaObject(lua, kScriptClassHandle);
  lua_setglobal(lua, "scriptclass");
  PushLuaObject(lua, kVxifHandle);
  lua_setglobal(lua, "vxif");
  PushLuaObject(lua, kHostHandle);
  lua_setglobal(lua, "host");
}

int WholeScript(lua_State* lua) {
  const Run& run = RunOf(lua);
  OpenLibraries(lua);
  OpenHouse(lua);
  lua_pushfstring(lua, "=%s", run.name->c_str());
  if (luaL_loadbufferx(lua, run.text->data(), run.text->size(), lua_tostring(lua, -1), "t") != LUA_OK) {
    return lua_error(lua);
  }
  lua_sethook(lua, Watch, LUA_MASKCOUNT, kStepsBetweenChecks);
  lua_call(lua, 0, 0);
  return 0;
}

ScriptOutcome OutcomeOf(lua_State* lua, const std::string& name) {
  if (lua_type(lua, -1) != LUA_TSTRING) return {"The script raised an error that is no text", 0};
  std::size_t size = 0;
  const char* text = lua_tolstring(lua, -1, &size);
  ScriptOutcome outcome{std::string(text, size), 0};
  if (outcome.error.starts_with(name + ":"))
    outcome.line = std::atoi(outcome.error.c_str() + name.size() + 1);
  return outcome;
}

}  // namespace

ScriptOutcome RunLua(const std::string& name, const std::string& text, ScriptHouse& house,
                     std::size_t memory) {
  Memory used{0, memory};
  Run run(house);
  run.name = &name;
  run.text = &text;
  const std::unique_ptr<lua_State, void (*)(lua_State*)> lua(lua_newstate(Allocate, &used), lua_close);
  if (!lua) return {"not enough memory", 0};
  *static_cast<Run**>(lua_getextraspace(lua.get())) = &run;
  lua_pushcfunction(lua.get(), WholeScript);  // takes no memory
  if (lua_pcall(lua.get(), 0, 0, 0) == LUA_OK) return {};
  return OutcomeOf(lua.get(), name);
}

}  // namespace scripting
