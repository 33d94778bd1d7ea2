#pragma once
#include <lua.hpp>

#include "base/Value.hpp"
#include "scripting/Values.hpp"

namespace scripting {

/// The value at a place of the stack. Raises no Lua error. Throws number 13 for what has no counterpart,
/// such as a function, and 6 when it takes more than `left`, which is lowered by what it takes. `objects` is
/// the identity of the metatable that objects have.
base::Value ReadLua(lua_State* lua, int index, const void* objects, std::size_t& left, int depth = 0);

/// Pushes a value; objects must be handles. Throws nothing, may raise a Lua error, and keeps nothing on the
/// stack of C++ that would have to be destroyed. The metatable of objects is in the registry under
/// `kLuaObjects`.
void PushLua(lua_State* lua, const base::Value& value);
void PushLuaObject(lua_State* lua, std::int32_t handle);

inline constexpr const char* kLuaObjects = "house.object";

/// The handle at a place of the stack, 0 when there is no object. Raises no Lua error.
std::int32_t LuaObjectAt(lua_State* lua, int index, const void* objects);

}  // namespace scripting
