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

/// A bus cuts off whoever sends it a message that is larger than messages may be, and everything with it. So
/// these are refused before they are sent: values of more than that many bytes (a little is left for the
/// message's header), lists of more, and lists that lie deeper within each other.
inline constexpr std::size_t kLongestMessage = std::size_t{127} << 20U;
inline constexpr std::size_t kLongestList = std::size_t{64} << 20U;
inline constexpr int kDeepestContainer = 64;

/// The D-Bus type that introspection tells for a declared type.
std::string SignatureOf(base::Type type);

/// Appends a value in the narrowest type that holds it exactly. A text that isn't UTF-8 or holds code 0 or a
/// noncharacter goes as bytes. All three throw number 6 where the message becomes too large, and number 5
/// where the bus refuses the value otherwise.
void AppendPlain(Draft& message, const base::Value& value, References& references);
/// Appends a value that has already been converted to its declared type, in the type that introspection
/// tells for it.
void Append(Draft& message, const base::Value& value, base::Type declared, References& references);
/// Appends a value inside a variant.
void AppendVariant(Draft& message, const base::Value& value, References& references);

/// Reads the next value whatever its type. Throws number 13 for a type that no value has, and for a text that
/// should have been sent as bytes.
base::Value Read(sd_bus_message* message, References& references);
/// Reads all values that are left.
std::vector<base::Value> ReadAll(sd_bus_message* message, References& references);

}  // namespace bus
