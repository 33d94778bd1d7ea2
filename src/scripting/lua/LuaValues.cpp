#include "scripting/lua/LuaValues.hpp"

#include <limits>

#include "base/Failure.hpp"
#include "scripting/ScriptHouse.hpp"

namespace scripting {
namespace {

constexpr int kDeepest = 16;

void Take(std::size_t& left, std::size_t bytes) {
  if (bytes > left) throw base::Failure(base::number::kOverflow, "The value is too large");
  left -= bytes;
}

base::Value NumberAt(lua_State* lua, int index) {
  if (lua_isinteger(lua, index) != 0) {
    const lua_Integer whole = lua_tointeger(lua, index);
    if (whole >= std::numeric_limits<std::int32_t>::min() &&
        whole <= std::numeric_limits<std::int32_t>::max()) {
      return static_cast<std::int32_t>(whole);
    }
  }
  return static_cast<double>(lua_tonumber(lua, index));
}

std::string TextAt(lua_State* lua, int index, std::size_t& left) {
  std::size_t size = 0;
  const char* text = lua_tolstring(lua, index, &size);  // of a string: no conversion, no new memory
  Take(left, size);
  return {text, size};
}

/// A list when it has a first element or nothing at all, otherwise a record.
base::Value TableAt(lua_State* lua, int index, const void* objects, std::size_t& left, int depth) {
  if (depth >= kDeepest || lua_checkstack(lua, 4) == 0) {
    throw base::Failure(base::number::kTypeMismatch, "The table is nested too deeply");
  }
  const int table = lua_absindex(lua, index);
  base::Array list;
  const lua_Unsigned count = lua_rawlen(lua, table);
  for (lua_Unsigned i = 1; i <= count; ++i) {
    lua_rawgeti(lua, table, static_cast<lua_Integer>(i));
    list.push_back(ReadLua(lua, -1, objects, left, depth + 1));
    lua_pop(lua, 1);
  }
  if (count > 0) return list;
  base::Record record;
  lua_pushnil(lua);
  while (lua_next(lua, table) != 0) {
    if (lua_type(lua, -2) != LUA_TSTRING) {
      throw base::Failure(base::number::kTypeMismatch, "A table's keys are 1, 2, 3 … or texts");
    }
    record.emplace_back(TextAt(lua, -2, left), ReadLua(lua, -1, objects, left, depth + 1));
    lua_pop(lua, 1);
  }
  if (record.empty()) return list;
  return record;
}

}  // namespace

std::int32_t LuaObjectAt(lua_State* lua, int index, const void* objects) {
  if (lua_type(lua, index) != LUA_TUSERDATA || lua_getmetatable(lua, index) == 0) return 0;
  const bool own = lua_topointer(lua, -1) == objects;
  lua_pop(lua, 1);
  return own ? *static_cast<const std::int32_t*>(lua_touserdata(lua, index)) : 0;
}

base::Value ReadLua(lua_State* lua, int index, const void* objects, std::size_t& left, int depth) {
  Take(left, kOneValue);
  switch (lua_type(lua, index)) {
    case LUA_TNONE:
    case LUA_TNIL: return {};
    case LUA_TBOOLEAN: return lua_toboolean(lua, index) != 0;
    case LUA_TNUMBER: return NumberAt(lua, index);
    case LUA_TSTRING: return TextAt(lua, index, left);
    case LUA_TTABLE: return TableAt(lua, index, objects, left, depth);
    default: break;
  }
  const std::int32_t handle = LuaObjectAt(lua, index, objects);
  if (handle == 0)
    throw base::Failure(base::number::kTypeMismatch, "A function can't be handed to the house");
  return std::make_shared<ScriptHandle>(handle);
}

void PushLuaObject(lua_State* lua, std::int32_t handle) {
  *static_cast<std::int32_t*>(lua_newuserdatauv(lua, sizeof handle, 0)) = handle;
  luaL_setmetatable(lua, kLuaObjects);
}

void PushLua(lua_State* lua, const base::Value& value) {
  luaL_checkstack(lua, 4, "the value is nested too deeply");
  const base::Value::Holder& held = value.held();
  if (const auto* truth = std::get_if<bool>(&held)) {
    lua_pushboolean(lua, *truth ? 1 : 0);
  } else if (const auto* small = std::get_if<std::int16_t>(&held)) {
    lua_pushinteger(lua, *small);
  } else if (const auto* whole = std::get_if<std::int32_t>(&held)) {
    lua_pushinteger(lua, *whole);
  } else if (const auto* single = std::get_if<float>(&held)) {
    lua_pushnumber(lua, *single);
  } else if (const auto* number = std::get_if<double>(&held)) {
    lua_pushnumber(lua, *number);
  } else if (const auto* text = std::get_if<std::string>(&held)) {
    lua_pushlstring(lua, text->data(), text->size());
  } else if (const auto* list = std::get_if<std::shared_ptr<const base::Array>>(&held)) {
    const base::Array& all = **list;
    lua_createtable(lua, static_cast<int>(all.size()), 0);
    for (std::size_t i = 0; i < all.size(); ++i) {
      PushLua(lua, all[i]);
      lua_rawseti(lua, -2, static_cast<lua_Integer>(i) + 1);
    }
  } else if (const auto* record = std::get_if<std::shared_ptr<const base::Record>>(&held)) {
    lua_createtable(lua, 0, static_cast<int>((*record)->size()));
    for (std::size_t i = 0; i < (*record)->size(); ++i) {
      lua_pushlstring(lua, (**record)[i].first.data(), (**record)[i].first.size());
      PushLua(lua, (**record)[i].second);
      lua_rawset(lua, -3);
    }
  } else if (const auto* object = std::get_if<base::ObjectRef>(&held); object != nullptr && *object) {
    const auto* handle = dynamic_cast<const ScriptHandle*>(object->get());
    if (handle == nullptr) {
      lua_pushnil(lua);
    } else {
      PushLuaObject(lua, handle->id());
    }
  } else {
    lua_pushnil(lua);
  }
}

}  // namespace scripting
