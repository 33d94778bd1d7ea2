#pragma once
#include <sys/types.h>

#include <cstddef>
#include <deque>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "bus/PollLoop.hpp"
#include "ear/Messages.hpp"
#include "files/Descriptor.hpp"

namespace standin {

/// One process of the ear's program, between its start and its end, which its owner's end brings about. All
/// use is on the loop's thread, and nothing waits for the process.
class EarChild {
 public:
  struct Told {
    /// Answers whether it is the answer that is waited for: a process that tells anything else is ended.
    std::function<bool(const ear::Message& message)> message;
    /// Called once, last: the process has ended or can't be used; the text says why. Not after the
    /// destructor.
    std::function<void(const std::string& why)> end;
  };
  /// Never throws: a program that can't be started has ended.
  EarChild(bus::PollLoop& loop, const std::filesystem::path& program,
           const std::vector<std::string>& arguments, Told told);
  /// Ends the process at once.
  ~EarChild();
  EarChild(const EarChild&) = delete;
  EarChild& operator=(const EarChild&) = delete;
  EarChild(EarChild&&) = delete;
  EarChild& operator=(EarChild&&) = delete;

  void send(ear::MessageKind kind, std::string_view content);
  /// The process is ended when that time has passed, unless this is called again; 0: it may take its time.
  void answerWithin(base::Milliseconds limit);
  [[nodiscard]] pid_t process() const { return process_; }

 private:
  void start(const std::filesystem::path& program, const std::vector<std::string>& arguments);
  void hear();
  void hearErrors();
  std::optional<ear::Message> nextMessage();
  void write();
  void endSoon(std::string why);
  void kill();

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
  std::unique_ptr<base::Timer> limit_;
  std::unique_ptr<bus::PollLoop::Watch> outWatch_;
  std::unique_ptr<bus::PollLoop::Watch> errorWatch_;
  std::unique_ptr<bus::PollLoop::Watch> inWatch_;
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

}  // namespace standin
