#pragma once
#include <sys/types.h>

#include <cstddef>
#include <deque>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "bus/PollLoop.hpp"
#include "files/Descriptor.hpp"

namespace standin {

/// One process of a program that reads and writes bytes, between its start and its end, which its owner's end
/// brings about. All use is on the loop's thread, and nothing waits for the process.
class ChildProgram {
 public:
  struct Command {
    std::filesystem::path program;
    std::vector<std::string> arguments{};
    /// Names of variables that it is given of this process's own. All others, like the bus's address, are no
    /// business of one that takes in strangers' sounds.
    std::vector<const char*> environment{"PATH", "LANG", "LD_LIBRARY_PATH"};
  };
  struct Told {
    /// With all that has come and wasn't taken off yet, at most 1 MiB more than the last time; also when
    /// nothing has come but its end. It may bring about the end of this object.
    std::function<void(std::string& come)> come;
    /// Called once, last: the process has ended or can't be used; the text says why. Not after the
    /// destructor.
    std::function<void(const std::string& why)> end;
  };
  /// Never throws: a program that can't be started has ended.
  ChildProgram(bus::PollLoop& loop, const Command& command, Told told);
  /// Ends the process at once.
  ~ChildProgram();
  ChildProgram(const ChildProgram&) = delete;
  ChildProgram& operator=(const ChildProgram&) = delete;
  ChildProgram(ChildProgram&&) = delete;
  ChildProgram& operator=(ChildProgram&&) = delete;

  void send(std::string message);
  /// Ends the process; `Told::end` follows soon, with this text.
  void endSoon(std::string why);
  [[nodiscard]] bool ended() const { return ended_; }
  /// Which one has ended it; 0 where it has ended by itself, or where that isn't known.
  [[nodiscard]] int signal() const { return signal_; }
  [[nodiscard]] pid_t process() const { return process_; }

 private:
  void start(const Command& command);
  void hear();
  void hearErrors();
  void write();
  /// How it has ended, where that is known already.
  std::optional<int> kill();

  bus::PollLoop& loop_;
  Told told_;
  pid_t process_ = -1;
  files::Descriptor in_;
  files::Descriptor out_;
  files::Descriptor errors_;
  std::string come_;
  std::string complaint_;  ///< the last that it has written to its standard error
  std::deque<std::string> toSend_;
  std::size_t sent_ = 0;  ///< of the first of them
  bool ended_ = false;
  int signal_ = 0;
  std::unique_ptr<bus::PollLoop::Watch> outWatch_;
  std::unique_ptr<bus::PollLoop::Watch> errorWatch_;
  std::unique_ptr<bus::PollLoop::Watch> inWatch_;
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

}  // namespace standin
