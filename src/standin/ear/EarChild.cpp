#include "standin/ear/EarChild.hpp"

#include <stdexcept>
#include <utility>

namespace standin {
namespace {

constexpr const char* kNonsense = "It talks nonsense";

}  // namespace

EarChild::EarChild(bus::PollLoop& loop, const std::filesystem::path& program,
                   const std::vector<std::string>& arguments, Told told)
    : told_(std::move(told)),
      limit_(loop.makeTimer(std::chrono::seconds(1), [this] { end("It gave no answer in time"); })),
      child_(loop, {.program = program, .arguments = arguments},
             {.come = [this](std::string& all) { come(all); },
              .end = [this](const std::string& why) { told_.end(why); }}) {}

void EarChild::end(std::string why) {
  limit_->enabled(false);
  child_.endSoon(std::move(why));
}

std::optional<ear::Message> EarChild::nextMessage(std::string& come) {
  try {
    return ear::TakeMessage(come, ear::kLongestAnswer);
  } catch (const std::length_error&) {
    end(kNonsense);
    return std::nullopt;
  }
}

void EarChild::come(std::string& come) {
  const auto alive = std::weak_ptr(alive_);
  while (const auto message = nextMessage(come)) {
    if (message->kind == ear::MessageKind::kFailed) return end(message->content);
    const bool awaited = told_.message(*message);
    if (!alive.lock() || child_.ended()) return;
    if (!awaited) return end(kNonsense);
  }
}

void EarChild::send(ear::MessageKind kind, std::string_view content) {
  child_.send(ear::Framed(kind, content));
}

void EarChild::answerWithin(base::Milliseconds limit) {
  if (child_.ended()) return;
  if (limit.count() > 0) limit_->interval(limit);
  limit_->enabled(limit.count() > 0);
}

}  // namespace standin
