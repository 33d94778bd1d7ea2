#include "standin/voice/Voice.hpp"

#include <algorithm>

#include "standin/voice/VoicePattern.hpp"

namespace standin {

std::vector<std::int32_t> DevicesOfVoice(const House& house, const std::string& text) {
  std::vector<std::int32_t> refs;
  for (const auto& [id, event] : house.events.all()) {
    if (event.vcmd.empty() || !VoicePattern(event.vcmd).fits(text)) continue;
    for (const EventDevice& entry : event.devices) {
      const bool fresh = std::find(refs.begin(), refs.end(), entry.devid) == refs.end();
      if (entry.func == kFuncVoice && fresh && house.devices.byRef(entry.devid) != nullptr) {
        refs.push_back(entry.devid);
      }
    }
  }
  if (!refs.empty()) return refs;
  const Device* status = house.devices.byFullName("Media Player Status");
  if (status != nullptr) refs.push_back(status->ref);
  return refs;
}

}  // namespace standin
