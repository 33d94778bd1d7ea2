#include "standin/http/BodyFrame.hpp"

#include <algorithm>

namespace standin {
namespace {

constexpr std::size_t kMostDigits = 8;
constexpr std::size_t kBase = 16;

/// 16 for what is no digit.
std::size_t DigitOf(char c) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  const char low = c >= 'A' && c <= 'F' ? static_cast<char>(c - 'A' + 'a') : c;
  return std::min(kDigits.find(low), kBase);
}

}  // namespace

BodyFrame::BodyFrame(const RequestHead& head, std::size_t most)
    : chunked_(head.chunked), left_(head.length), most_(most) {
  if (chunked_) {
    state_ = State::kSize;
  } else if (left_ > 0) {
    state_ = State::kData;
  }
}

std::size_t BodyFrame::take(std::string_view bytes) {
  std::size_t taken = 0;
  while (taken < bytes.size() && state_ != State::kEnd && state_ != State::kBroken) {
    if (most_ == 0) {
      state_ = State::kBroken;
    } else if (state_ == State::kData) {
      const std::size_t count = std::min({left_, bytes.size() - taken, most_});
      left_ -= count;
      most_ -= count;
      taken += count;
      if (left_ == 0) state_ = chunked_ ? State::kDataReturn : State::kEnd;
    } else {
      step(bytes[taken]);
      if (state_ == State::kBroken) break;
      --most_;
      ++taken;
    }
  }
  return taken;
}

void BodyFrame::step(char c) {
  const auto follows = [&](char wanted, State next) { state_ = c == wanted ? next : State::kBroken; };
  switch (state_) {
    case State::kSize: return stepSize(c);
    case State::kSizeEnd: return follows('\n', left_ > 0 ? State::kData : State::kLastReturn);
    case State::kDataReturn: return follows('\r', State::kDataEnd);
    case State::kDataEnd: digits_ = 0; return follows('\n', State::kSize);
    case State::kLastReturn: return follows('\r', State::kLastEnd);
    case State::kLastEnd: return follows('\n', State::kEnd);
    default: state_ = State::kBroken;
  }
}

void BodyFrame::stepSize(char c) {
  const std::size_t digit = DigitOf(c);
  if (digit < kBase && digits_ < kMostDigits) {
    left_ = left_ * kBase + digit;
    ++digits_;
  } else {
    state_ = c == '\r' && digits_ > 0 ? State::kSizeEnd : State::kBroken;
  }
}

}  // namespace standin
