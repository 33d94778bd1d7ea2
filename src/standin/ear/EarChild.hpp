#pragma once
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "bus/PollLoop.hpp"
#include "ear/Messages.hpp"
#include "standin/process/ChildProgram.hpp"

namespace standin {

/// One process of the ear's program, with which messages are exchanged. All use is on the loop's thread, and
/// nothing waits for the process.
class EarChild {
 public:
  struct Told {
    /// Answers whether it is the answer that is waited for: a process that tells anything else is ended.
    std::function<bool(const ear::Message& message)> message;
    /// As `ChildProgram::Told` has it.
    std::function<void(const std::string& why)> end;
  };
  /// Never throws: a program that can't be started has ended.
  EarChild(bus::PollLoop& loop, const std::filesystem::path& program,
           const std::vector<std::string>& arguments, Told told);

  void send(ear::MessageKind kind, std::string_view content);
  /// The process is ended when that time has passed, unless this is called again; 0: it may take its time.
  void answerWithin(base::Milliseconds limit);
  [[nodiscard]] pid_t process() const { return child_.process(); }

 private:
  void come(std::string& come);
  void end(std::string why);
  std::optional<ear::Message> nextMessage(std::string& come);

  Told told_;
  std::unique_ptr<base::Timer> limit_;
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
  ChildProgram child_;
};

}  // namespace standin
