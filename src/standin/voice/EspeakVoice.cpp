#include "standin/voice/EspeakVoice.hpp"

#include <espeak-ng/espeak_ng.h>
#include <espeak-ng/speak_lib.h>

#include <array>
#include <atomic>

#include "base/Failure.hpp"

namespace standin {
namespace {

int OnSound(short* /*samples*/, int /*count*/, espeak_EVENT* events) {
  const auto* hushed = static_cast<const std::atomic<bool>*>(events->user_data);
  return hushed != nullptr && *hushed ? 1 : 0;
}

void Check(espeak_ng_STATUS status, const char* what) {
  if (status == ENS_OK) return;
  throw base::Failure(base::number::kDeviceIo, std::string("There is no ") + what);
}

}  // namespace

EspeakVoice::~EspeakVoice() {
  if (prepared_) espeak_Terminate();
}

void EspeakVoice::prepare() {
  if (prepared_) return;
  espeak_ng_InitializePath(nullptr);
  Check(espeak_ng_Initialize(nullptr), "voice data");
  prepared_ = true;
  espeak_SetSynthCallback(OnSound);
  espeak_SetVoiceByName("en");
}

void EspeakVoice::say(const std::string& text) { utter(text, espeakCHARS_UTF8); }

// The voice hums: three high notes of one pitch, louder than it speaks.
void EspeakVoice::tone() {
  struct Change {
    espeak_PARAMETER parameter;
    int value;
    int before = espeak_GetParameter(parameter, 1);
  };
  prepare();
  const std::array<Change, 4> changes{
      {{espeakPITCH, 99}, {espeakRANGE, 0}, {espeakRATE, 80}, {espeakVOLUME, 200}}};
  for (const Change& each : changes) espeak_SetParameter(each.parameter, each.value, 0);
  const auto back = [&] {
    for (const Change& each : changes) espeak_SetParameter(each.parameter, each.before, 0);
  };
  try {
    utter("[[u:_:u:_:u:]]", espeakCHARS_UTF8 | espeakPHONEMES);
  } catch (...) {
    back();
    throw;
  }
  back();
}

void EspeakVoice::utter(const std::string& text, unsigned int flags) {
  prepare();
  const auto mode = static_cast<espeak_ng_OUTPUT_MODE>(ENOUTPUT_MODE_SYNCHRONOUS | ENOUTPUT_MODE_SPEAK_AUDIO);
  Check(espeak_ng_InitializeOutput(mode, 0, nullptr), "sound device");
  hushed_ = false;
  const auto status =
      espeak_ng_Synthesize(text.c_str(), text.size() + 1, 0, POS_CHARACTER, 0, flags, nullptr, &hushed_);
  Check(status, "sound device");
}

}  // namespace standin
