#pragma once
#include <functional>
#include <string>
#include <vector>

#include "bus/Message.hpp"
#include "mpris/session/Table.hpp"

namespace mpris {

/// The object that other programs see, made of its interfaces; the bus's own ones for properties and for
/// introspection come on top.
class Exported {
 public:
  /// `before` runs before each call, so that the call finds the player as it is.
  Exported(std::string path, std::vector<Interface> interfaces, std::function<void()> before);
  Exported(const Exported&) = delete;
  Exported& operator=(const Exported&) = delete;
  Exported(Exported&&) = delete;
  Exported& operator=(Exported&&) = delete;
  ~Exported() = default;

  /// A call that fits one of the methods, or else the reply that says why it is not done.
  struct Call {
    bus::Message message{};
    const Method* method = nullptr;
    Values arguments{};
    bus::Message refusal{};
  };
  /// Looks whether there is such a method and whether the arguments are its own, and short. Does nothing of
  /// what is wanted, and keeps nothing of a call that is refused. Throws only what the bus library fails
  /// with, as does `answer`.
  Call admit(sd_bus_message* message) const;
  /// Does what is wanted and makes the reply, be it an error.
  [[nodiscard]] bus::Message answer(Call call) const;

  /// The look that every call begins with.
  void before() const { before_(); }
  [[nodiscard]] const std::string& path() const { return path_; }
  [[nodiscard]] const std::vector<Interface>& interfaces() const { return interfaces_; }
  /// The values of all properties whose change is told.
  static Dict told(const Interface& interface);

 private:
  [[nodiscard]] Call fitting(sd_bus_message* message) const;
  [[nodiscard]] const Method& find(const char* interface, const std::string& member) const;
  [[nodiscard]] const Interface& named(const std::string& interface) const;
  [[nodiscard]] const Property& property(const std::string& interface, const std::string& name) const;
  Interface propertiesTable();
  Interface introspectionTable();
  [[nodiscard]] std::vector<const Interface*> all() const;

  std::string path_;
  std::vector<Interface> interfaces_;
  std::function<void()> before_;
  std::vector<Interface> standard_;
  Method onTheWay_;
};

}  // namespace mpris
