#include "scripting/lua/DistantHouse.hpp"

#include <unistd.h>

#include <cstdlib>
#include <new>
#include <stdexcept>
#include <utility>

#include "wire/Frames.hpp"

namespace scripting {
namespace {

constexpr const char* kGone = "the server has gone";

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
  while (true) {
    std::string_view left = come_;
    if (const auto message = TakeMessage(left, kLongestAnswer)) {
      taken_ = come_.size() - left.size();
      return *message;
    }
    if (!wire::ReadMore(in_, come_)) throw std::runtime_error(kGone);
  }
}

void DistantHouse::tell(MessageKind kind, std::string_view content) {
  if (!wire::WriteWhole(out_, Framed(kind, content))) throw std::runtime_error(kGone);
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
