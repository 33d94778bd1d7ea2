#pragma once
#include <cstdint>
#include <string>
#include <string_view>

#include "base/Failure.hpp"
#include "base/Object.hpp"

namespace scripting {

/// An object of the house as a script's process holds it: a number. The object itself stays with the server.
class ScriptHandle : public base::Object {
 public:
  explicit ScriptHandle(std::int32_t id) : id_(id) {}
  [[nodiscard]] std::int32_t id() const { return id_; }

  using Object::call;
  base::Value call(std::string_view, base::Args&) override { throw base::Failure(base::number::kInternal); }
  base::Value get(std::string_view) override { throw base::Failure(base::number::kInternal); }
  void put(std::string_view, const base::Value&) override { throw base::Failure(base::number::kInternal); }

 private:
  std::int32_t id_;
};

/// The handles of the objects that a script finds by name.
inline constexpr std::int32_t kScriptClassHandle = 1;
inline constexpr std::int32_t kVxifHandle = 2;
inline constexpr std::int32_t kHostHandle = 3;

/// The house as a script reaches it. Objects in values are handles. What fails
/// is thrown as base::Failure.
class ScriptHouse {
 public:
  ScriptHouse() = default;
  ScriptHouse(const ScriptHouse&) = delete;
  ScriptHouse& operator=(const ScriptHouse&) = delete;
  ScriptHouse(ScriptHouse&&) = delete;
  ScriptHouse& operator=(ScriptHouse&&) = delete;
  virtual ~ScriptHouse() = default;

  virtual base::Value call(std::int32_t object, const std::string& name, base::Args args) = 0;
  virtual base::Value get(std::int32_t object, const std::string& name) = 0;
  virtual void put(std::int32_t object, const std::string& name, const base::Value& value) = 0;
  /// False for an operation and for what the object doesn't know.
  virtual bool isField(std::int32_t object, const std::string& name) = 0;
  virtual void sleep(double seconds) = 0;
  virtual void print(std::string_view text) = 0;
  /// Asked again and again while the script computes: why it must end now, or null.
  virtual const char* endReason() = 0;
};

}  // namespace scripting
