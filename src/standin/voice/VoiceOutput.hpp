#pragma once
#include <string>

namespace standin {

/// What makes a text heard.
class VoiceOutput {
 public:
  VoiceOutput() = default;
  VoiceOutput(const VoiceOutput&) = delete;
  VoiceOutput& operator=(const VoiceOutput&) = delete;
  VoiceOutput(VoiceOutput&&) = delete;
  VoiceOutput& operator=(VoiceOutput&&) = delete;
  virtual ~VoiceOutput() = default;

  /// Says the text and returns when it has been heard. Called on a thread of its own, once at a time. Throws
  /// number 57 when there is nothing to hear it from.
  virtual void say(const std::string& text) = 0;
  /// Makes a sound that wakes, and returns when it has been heard; as `say` otherwise. A voice that has none
  /// says the words alone.
  virtual void tone() {}
  /// Has `say` end soon. From any thread.
  virtual void hush() = 0;
};

}  // namespace standin
