#include "scripting/lua/DistantHouse.hpp"

#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <new>
#include <stdexcept>
#include <utility>

namespace scripting {
namespace {

constexpr const char* kTooLong = "the script was stopped: it took too long";

/// Nothing of the process is of use any longer, so nothing is cleared away.
[[noreturn]] void EndWith(std::string_view complaint) {
  [[maybe_unused]] const ssize_t told = ::write(STDERR_FILENO, complaint.data(), complaint.size());
  std::_Exit(1);
}

/// What is said to and heard from the server; where that can't be, the process ends.
template <class Work>
auto Surely(const Work& work) {
  try {
    return work();
  } catch (const base::Failure&) {
    throw;
  } catch (const std::bad_alloc&) {
    EndWith("out of memory");
  } catch (const std::exception& failure) {
    EndWith(failure.what());
  }
}

}  // namespace

Message DistantHouse::awaitMessage() {
  come_.erase(0, std::exchange(taken_, 0));
  std::array<char, 65536> part;  // NOLINT(cppcoreguidelines-pro-type-member-init): read into
  while (true) {
    std::string_view left = come_;
    if (const auto message = TakeMessage(left, kLongestAnswer)) {
      taken_ = come_.size() - left.size();
      return *message;
    }
    const ssize_t got = ::read(in_, part.data(), part.size());
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) throw std::runtime_error("the server has gone");
    come_.append(part.data(), static_cast<std::size_t>(got));
  }
}

void DistantHouse::tell(MessageKind kind, std::string_view content) {
  const std::string framed = Framed(kind, content);
  for (std::size_t sent = 0; sent < framed.size();) {
    const ssize_t count = ::write(out_, framed.data() + sent, framed.size() - sent);
    if (count < 0 && errno != EINTR) throw std::runtime_error("the server has gone");
    if (count > 0) sent += static_cast<std::size_t>(count);
  }
}

Order DistantHouse::awaitOrder() {
  return Surely([this] {
    const Message message = awaitMessage();
    const auto order = message.kind == MessageKind::kRun ? OrderIn(message.content) : std::nullopt;
    if (!order) throw std::runtime_error("what is to be run was not understood");
    begun_ = Clock::now();
    computing_ = std::chrono::milliseconds(order->computing);
    whole_ = std::chrono::milliseconds(order->whole);
    printable_ = order->output;
    return *order;
  });
}

void DistantHouse::end(const ScriptOutcome& outcome) {
  Surely([&] { tell(MessageKind::kEnded, Encoded(outcome)); });
}

base::Value DistantHouse::ask(const Ask& ask) {
  const std::string question = Encoded(ask);  // which may be too large: nothing has been said then
  return Surely([&] {
    const Clock::time_point from = Clock::now();
    tell(ask.kind, question);
    const Message message = awaitMessage();
    waited_ += Clock::now() - from;
    if (message.kind == MessageKind::kFailure) {
      if (const auto failure = FailureIn(message.content)) throw base::Failure(*failure);
    }
    auto answer = message.kind == MessageKind::kAnswer ? AnswerIn(message.content) : std::nullopt;
    if (!answer) throw std::runtime_error("an answer was not understood");
    return std::move(*answer);
  });
}

base::Value DistantHouse::call(std::int32_t object, const std::string& name, base::Args args) {
  return ask({MessageKind::kCall, object, name, std::move(args)});
}

base::Value DistantHouse::get(std::int32_t object, const std::string& name) {
  return ask({MessageKind::kGet, object, name});
}

void DistantHouse::put(std::int32_t object, const std::string& name, const base::Value& value) {
  ask({MessageKind::kPut, object, name, {value}});
}

bool DistantHouse::isField(std::int32_t object, const std::string& name) {
  return base::ToBoolean(ask({MessageKind::kIsField, object, name}));
}

void DistantHouse::sleep(double seconds) { ask({MessageKind::kSleep, 0, {}, {seconds}}); }

void DistantHouse::print(std::string_view text) {
  static constexpr std::string_view kCut = "… the rest of the output is left out\n";
  if (cut_) return;
  cut_ = text.size() > printable_;
  printable_ -= cut_ ? printable_ : text.size();
  Surely([&] { tell(MessageKind::kPrint, cut_ ? kCut : text); });
}

const char* DistantHouse::endReason() {
  const Clock::duration gone = Clock::now() - begun_;
  return gone > whole_ || gone - waited_ > computing_ ? kTooLong : nullptr;
}

}  // namespace scripting
