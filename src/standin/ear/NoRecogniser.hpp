#pragma once
#include <utility>

#include "standin/ear/Recogniser.hpp"

namespace standin {

/// Stands where there is nobody who could listen, and says why.
class NoRecogniser : public Recogniser {
 public:
  explicit NoRecogniser(std::string why) : why_(std::move(why)) {}
  void learn(ear::SpeechNetwork /*network*/) override {}
  void hear(std::vector<std::int16_t> /*sound*/, Told told) override {
    told({.kind = Heard::Kind::kDeaf, .reason = why_});
  }
  void retry() override {}
  [[nodiscard]] Status status() const override { return {.state = State::kFailed, .missing = why_}; }

 private:
  std::string why_;
};

}  // namespace standin
