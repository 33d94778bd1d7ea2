#pragma once
#include <systemd/sd-bus.h>

#include <cstdint>
#include <string>
#include <utility>
#include <variant>
#include <vector>

/// The player on the desktop's own panels: what other programs of this user see of it on his session bus, and
/// what his media keys do. It knows the player by name only.
namespace mpris {

/// An object path of the bus.
struct Path {
  std::string text;
  bool operator==(const Path&) const = default;
};

/// A stored playlist as the bus tells it.
struct ListedPlaylist {
  Path id;
  std::string name;
  std::string icon{};  ///< an address; empty for none
  bool operator==(const ListedPlaylist&) const = default;
};
/// The playlist that is played, if it is one.
struct ActivePlaylist {
  bool valid = false;
  ListedPlaylist playlist{{"/"}, ""};
  bool operator==(const ActivePlaylist&) const = default;
};

struct Value;
using Texts = std::vector<std::string>;
/// Names with values, in their order.
using Dict = std::vector<std::pair<std::string, Value>>;

/// A value of exactly one of the bus's types, as the interfaces prescribe each. Texts are such as the bus
/// takes
/// (`BusText`).
struct Value {
  using Held = std::variant<bool, std::int32_t, std::uint32_t, std::int64_t, double, std::string, Path, Texts,
                            Dict, std::vector<ListedPlaylist>, ActivePlaylist>;

  template <class T>
  Value(T value) : held(std::move(value)) {}              // NOLINT(google-explicit-constructor)
  Value(const char* value) : held(std::string(value)) {}  // NOLINT(google-explicit-constructor)

  Held held;
  bool operator==(const Value&) const = default;
};

/// The type's signature on the bus.
std::string SignatureOf(const Value& value);
/// Appends it; `declared` is its signature, or "v" to put it into a variant. Throws as `bus::Check` does.
void Append(sd_bus_message* message, const Value& value, const std::string& declared);
/// Reads all that is left of a message: booleans, numbers, texts, paths, and variants of those, which count
/// as what is in them. Throws 13 for any other type and for a text that the bus library takes for none.
std::vector<Value> ReadAll(sd_bus_message* message);

}  // namespace mpris
