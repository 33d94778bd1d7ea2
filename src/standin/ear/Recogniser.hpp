#pragma once
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "ear/SpeechNetwork.hpp"

namespace standin {

/// Understands speech: 16,000 samples a second of one channel become words of the sentences that it was
/// taught. All use is on the loop's thread; nothing here waits.
class Recogniser {
 public:
  static constexpr int kRate = 16000;
  static constexpr std::size_t kLongestSeconds = 30;

  struct Heard {
    enum class Kind { kWords, kSilence, kDeaf };
    Kind kind = Kind::kDeaf;
    std::string words{};    ///< with one blank between them
    double confidence = 0;  ///< from 0 to 1 that it was one of the sentences
    std::string reason{};   ///< why nothing could be heard, for `kDeaf`
  };
  using Told = std::function<void(const Heard& heard)>;

  enum class State { kOff, kStarting, kReady, kFailed };
  struct Status {
    State state = State::kOff;
    std::string missing{};                ///< what is missing and how to get it, or why it failed
    std::string stale{};                  ///< why it hears only what it knew before, where it is so
    std::size_t words = 0;                ///< that it knows how to hear
    std::vector<std::string> unspoken{};  ///< the first of those that it doesn't
    bool operator==(const Status&) const = default;
  };

  Recogniser() = default;
  Recogniser(const Recogniser&) = delete;
  Recogniser& operator=(const Recogniser&) = delete;
  Recogniser(Recogniser&&) = delete;
  Recogniser& operator=(Recogniser&&) = delete;
  virtual ~Recogniser() = default;

  /// Has it know these sentences and no others. Until it is ready it hears by those that it knew before.
  virtual void learn(ear::SpeechNetwork network) = 0;
  /// `told` is called later, once in every case. At most `kLongestSeconds`; what is longer is cut.
  virtual void hear(std::vector<std::int16_t> sound, Told told) = 0;
  /// A sound that is still being spoken; without an end it is forgotten.
  class Growing {
   public:
    Growing() = default;
    Growing(const Growing&) = delete;
    Growing& operator=(const Growing&) = delete;
    Growing(Growing&&) = delete;
    Growing& operator=(Growing&&) = delete;
    virtual ~Growing() = default;
    /// What is beyond `kLongestSeconds` is cut.
    virtual void more(const std::vector<std::int16_t>& piece) = 0;
    /// Once, last: as `hear` with all of it.
    virtual void end(Told told) = 0;
  };
  /// Only to be destroyed when the recogniser has gone. This one keeps it until its end.
  virtual std::unique_ptr<Growing> begin();
  /// Somebody is about to speak, or has seen to what was missing: what has failed is tried again, unless that
  /// was only just so.
  virtual void retry() = 0;
  [[nodiscard]] virtual Status status() const = 0;

  /// Called when the status has changed.
  std::function<void()> onChange = [] {};
};

}  // namespace standin
