#pragma once
#include <chrono>
#include <semaphore>

#include "base/Failure.hpp"

namespace standin {

/// Number 57: all places are taken, and for longer than anybody should wait who keeps others waiting himself.
class DecodersBusy : public base::Failure {
 public:
  DecodersBusy() : base::Failure(base::number::kDeviceIo, "Too many pictures are asked for at once") {}
};

/// Holds one of the places for those who decode pictures.
class DecoderTurn {
 public:
  static constexpr std::chrono::milliseconds kPatience = std::chrono::seconds(5);

  /// Throws DecodersBusy when none gets free in time.
  explicit DecoderTurn(std::counting_semaphore<>& places, std::chrono::milliseconds patience = kPatience)
      : places_(places) {
    if (!places_.try_acquire_for(patience)) throw DecodersBusy();
  }
  ~DecoderTurn() { places_.release(); }
  DecoderTurn(const DecoderTurn&) = delete;
  DecoderTurn& operator=(const DecoderTurn&) = delete;
  DecoderTurn(DecoderTurn&&) = delete;
  DecoderTurn& operator=(DecoderTurn&&) = delete;

 private:
  std::counting_semaphore<>& places_;
};

}  // namespace standin
