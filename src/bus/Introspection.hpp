#pragma once
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/Members.hpp"

namespace bus {

/// What an introspection text says.
struct ArgumentInfo {
  std::string name;
  std::string type;
  bool out = false;
  std::optional<std::string> fallback{};  ///< the value of a missing trailing argument, as text
};
struct MethodInfo {
  std::string name;
  std::vector<ArgumentInfo> arguments;
};
struct PropertyInfo {
  std::string name;
  std::string type;
  bool readable = true;
  bool writable = false;
};
struct InterfaceInfo {
  std::string name;
  std::vector<MethodInfo> methods;
  std::vector<PropertyInfo> properties;
};
struct NodeInfo {
  std::vector<InterfaceInfo> interfaces;
  std::vector<std::string> children;

  /// The operation of that name, without regard to case, among the object's own interfaces.
  [[nodiscard]] const MethodInfo* findMethod(std::string_view name) const;
  [[nodiscard]] const PropertyInfo* findProperty(std::string_view name) const;
  [[nodiscard]] bool hasInterface(std::string_view name) const;
};

/// True for an interface of the object's own: not the bus's, and not one that all objects of the house have.
bool IsOwnInterface(std::string_view name);

/// The name that introspection gives to an operation's result.
inline constexpr const char* kResultName = "result";

/// Where the values of an operation's reply belong.
struct ReplyShape {
  bool result = false;             ///< the first value is the result
  std::vector<std::size_t> inOut;  ///< the arguments that the further values replace
};
ReplyShape ShapeOf(const MethodInfo& method);

/// The introspection text of an object (or of a path that only leads to objects, without a table).
std::string DescribeNode(const base::MemberTable* table, const std::vector<std::string>& children);
/// Reads an introspection text. Throws number 51 when it is no XML.
NodeInfo ParseNode(const std::string& text);

}  // namespace bus
