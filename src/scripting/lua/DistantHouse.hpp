#pragma once
#include <chrono>
#include <string>

#include "scripting/Messages.hpp"
#include "scripting/ScriptHouse.hpp"

namespace scripting {

/// The house as the process of a script reaches it: over two descriptors. Nothing goes on without the
/// server: where that has gone, or memory is too short for what it says, the process ends on the spot, as a
/// script could catch a failure.
class DistantHouse : public ScriptHouse {
 public:
  DistantHouse(int in, int out) : in_(in), out_(out) {}

  /// Waits for the script.
  Order awaitOrder();
  /// Tells the server how the script has ended.
  void end(const ScriptOutcome& outcome);

  base::Value call(std::int32_t object, const std::string& name, base::Args args) override;
  base::Value get(std::int32_t object, const std::string& name) override;
  void put(std::int32_t object, const std::string& name, const base::Value& value) override;
  bool isField(std::int32_t object, const std::string& name) override;
  void sleep(double seconds) override;
  void print(std::string_view text) override;
  /// By the order's limits. The time in which the house is waited for doesn't count as computing.
  const char* endReason() override;

 private:
  using Clock = std::chrono::steady_clock;
  base::Value ask(const Ask& ask);
  void tell(MessageKind kind, std::string_view content);
  /// Good until the next one is awaited.
  Message awaitMessage();

  int in_;
  int out_;
  std::string come_;
  std::size_t taken_ = 0;  ///< of what has come
  Clock::time_point begun_ = Clock::now();
  Clock::duration waited_{0};
  std::chrono::milliseconds computing_{0};
  std::chrono::milliseconds whole_{0};
  std::size_t printable_ = 0;  ///< how much more may be printed
  bool cut_ = false;
};

}  // namespace scripting
