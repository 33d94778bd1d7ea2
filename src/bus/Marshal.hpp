#pragma once
#include <string>
#include <vector>

#include "base/Members.hpp"
#include "bus/Message.hpp"

namespace bus {

/// The name and path of an object on the bus.
struct Address {
  std::string name;
  std::string path;
};

/// Turns object references into objects and back while messages are read and written.
class References {
 public:
  References() = default;
  References(const References&) = delete;
  References& operator=(const References&) = delete;
  References(References&&) = delete;
  References& operator=(References&&) = delete;
  virtual ~References() = default;

  /// The object behind an address that `sender` has sent; the local object itself where it is one's own.
  virtual base::ObjectRef resolve(const Address& address, const std::string& sender) = 0;
  /// The address under which `receiver` reaches the object.
  virtual Address addressOf(const base::ObjectRef& object, const std::string& receiver) = 0;
};

/// The D-Bus type that introspection tells for a declared type.
std::string SignatureOf(base::Type type);

/// Appends a value in the narrowest type that holds it exactly. A text that isn't UTF-8 or holds code 0 goes
/// as bytes. Throws number 5 where the bus refuses it.
void AppendPlain(sd_bus_message* message, const base::Value& value, References& references);
/// Appends a value that has already been converted to its declared type, in the type that introspection
/// tells for it.
void Append(sd_bus_message* message, const base::Value& value, base::Type declared, References& references);
/// Appends a value inside a variant.
void AppendVariant(sd_bus_message* message, const base::Value& value, References& references);

/// Reads the next value whatever its type. Throws number 13 for a type that no value has.
base::Value Read(sd_bus_message* message, References& references);
/// Reads all values that are left.
std::vector<base::Value> ReadAll(sd_bus_message* message, References& references);

}  // namespace bus
