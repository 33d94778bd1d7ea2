#pragma once
#include <atomic>

#include "standin/voice/VoiceOutput.hpp"

namespace standin {

/// A synthetic voice on the machine's sound. There may be one in a process. It is made ready at its first
/// text.
class EspeakVoice : public VoiceOutput {
 public:
  EspeakVoice() = default;
  ~EspeakVoice() override;
  EspeakVoice(const EspeakVoice&) = delete;
  EspeakVoice& operator=(const EspeakVoice&) = delete;
  EspeakVoice(EspeakVoice&&) = delete;
  EspeakVoice& operator=(EspeakVoice&&) = delete;

  void say(const std::string& text) override;
  void tone() override;
  void hush() override { hushed_ = true; }

 private:
  void prepare();
  void utter(const std::string& text, unsigned int flags);
  bool prepared_ = false;
  std::atomic<bool> hushed_ = false;
};

}  // namespace standin
