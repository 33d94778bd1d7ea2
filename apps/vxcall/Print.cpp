#include "vxcall/Print.hpp"

#include <algorithm>
#include <map>

#include "bus/Connection.hpp"

namespace vxcall {

using base::Value;

namespace {

std::string ObjectText(const base::ObjectRef& object) {
  if (!object) return "(nothing)";
  return "(" + bus::Connection::peerOf(*object) + " " + bus::Connection::pathOf(*object) + ")";
}

/// A value within a line.
std::string Inline(const Value& value) {
  std::string text;
  if (value.is<base::ObjectRef>()) return ObjectText(base::ToObject(value));
  if (value.is<std::shared_ptr<const base::Array>>()) {
    for (const auto& element : value.array()) text += (text.empty() ? "" : ", ") + Inline(element);
    return "[" + text + "]";
  }
  if (value.is<std::shared_ptr<const base::Record>>()) {
    for (const auto& [key, field] : value.record())
      text += (text.empty() ? "" : ", ") + key + ": " + Inline(field);
    return "{" + text + "}";
  }
  return base::ToText(value);
}

std::string TypeWord(const std::string& type) {
  static const std::map<std::string, std::string> words{
      {"b", "boolean"}, {"n", "int16"},  {"i", "int32"}, {"d", "double"},     {"s", "text"},
      {"v", "any"},     {"as", "texts"}, {"av", "list"}, {"a{sv}", "record"}, {"(so)", "object"},
  };
  const auto word = words.find(type);
  return word == words.end() ? type : word->second;
}

void PrintMethod(std::ostream& out, const bus::MethodInfo& method) {
  const auto shape = bus::ShapeOf(method);
  out << method.name << '(';
  std::size_t index = 0;
  for (const auto& argument : method.arguments) {
    if (argument.out) continue;
    const bool inOut = std::find(shape.inOut.begin(), shape.inOut.end(), index) != shape.inOut.end();
    out << (index++ == 0 ? "" : ", ") << (inOut ? "inout " : "") << argument.name << ": "
        << TypeWord(argument.type);
    if (argument.fallback) out << " = \"" << *argument.fallback << '"';
  }
  out << ')';
  if (shape.result) {
    const auto result = std::find_if(method.arguments.begin(), method.arguments.end(),
                                     [](const auto& argument) { return argument.out; });
    out << ": " << TypeWord(result->type);
  }
  out << '\n';
}

}  // namespace

void PrintValue(std::ostream& out, const Value& value) {
  if (value.empty()) return;
  if (value.is<std::shared_ptr<const base::Array>>()) {
    for (const auto& element : value.array()) out << Inline(element) << '\n';
  } else if (value.is<std::shared_ptr<const base::Record>>()) {
    for (const auto& [key, field] : value.record()) out << key << ": " << Inline(field) << '\n';
  } else {
    out << Inline(value) << '\n';
  }
}

void PrintMembers(std::ostream& out, const bus::NodeInfo& node) {
  for (const auto& interface : node.interfaces) {
    if (!bus::IsOwnInterface(interface.name)) continue;
    for (const auto& method : interface.methods) PrintMethod(out, method);
    for (const auto& property : interface.properties) {
      out << property.name << ": " << TypeWord(property.type)
          << (!property.writable   ? " (read only)"
              : !property.readable ? " (write only)"
                                   : "")
          << '\n';
    }
  }
}

}  // namespace vxcall
