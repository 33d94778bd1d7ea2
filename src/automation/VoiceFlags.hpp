#pragma once
#include <cstdint>

#include "base/Object.hpp"

namespace automation {

/// Marks an event of the host as one that is spoken to: adds the bits 8, 64 and 16384 to `misc` and 1 to
/// `misc2`. Throws what the event throws.
inline void AddVoiceFlags(base::Object& event) {
  constexpr std::int32_t kMisc = 8 | 64 | 16384;
  event.put("misc", base::ToInt32(event.get("misc")) | kMisc);
  event.put("misc2", base::ToInt32(event.get("misc2")) | 1);
}

}  // namespace automation
