#pragma once
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "base/Object.hpp"

namespace bus {

/// The local objects that other processes reach, by path. An object that was sent as a value stays until
/// every process that it was sent to has released it or has gone.
class Exports {
 public:
  /// Serves the object at a path until `withdraw`. Throws number 5 for an ill-formed path.
  void add(const std::string& path, base::ObjectRef object);
  void withdraw(const std::string& path);
  void clear();

  /// The object at a path, or nothing.
  [[nodiscard]] base::ObjectRef find(const std::string& path) const;
  /// The path of an object that is being sent to `holder`; one below /objects if it has none yet.
  std::string pathFor(const base::ObjectRef& object, const std::string& holder);
  /// A holder gives back one reference of those sent to it.
  void release(const std::string& path, const std::string& holder);
  /// A holder has gone with all its references.
  void dropHolder(const std::string& holder);
  /// The next path elements below a path that lead to objects.
  [[nodiscard]] std::vector<std::string> childrenOf(const std::string& path) const;
  [[nodiscard]] std::size_t size() const { return entries_.size(); }

 private:
  struct Entry {
    base::ObjectRef object;
    bool lasting = false;
    std::map<std::string, std::uint32_t> holders{};
  };
  using Entries = std::map<std::string, Entry>;

  base::ObjectRef remove(Entries::iterator entry);

  Entries entries_;
  std::map<const base::Object*, std::string> pathOf_;
  std::uint64_t lastNumber_ = 0;
};

}  // namespace bus
