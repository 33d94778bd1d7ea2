// What a stranger can put into a request: host names, origins, cookies, paths, spoken text. Nothing may fail,
// and no path may lead out of the folder.
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "standin/DeviceStore.hpp"
#include "standin/VoicePattern.hpp"
#include "standin/WebRules.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const std::filesystem::path root = std::filesystem::canonical("/usr/share");
  const std::string text(reinterpret_cast<const char*>(data), size);
  const std::string half = text.substr(0, size / 2);
  const std::string rest = text.substr(size / 2);

  const standin::AllowedHosts local(false, {"house.example"});
  if (local.allows(text)) {
    const auto name = standin::HostName(text);
    if (!name || (!standin::IsLoopback(*name) && *name != "house.example")) std::abort();
  }
  if (standin::SameOrigin(half, rest) && half.size() <= rest.size()) std::abort();
  standin::CookieValue(text, "vantorix");
  if (standin::EscapeHtml(text).find_first_of("<>\"'") != std::string::npos) std::abort();

  if (const auto found = standin::FileBelow(root, text)) {
    if (!found->string().starts_with(root.string() + "/")) std::abort();
  }
  if (size < 2000) static_cast<void>(standin::VoicePattern(half).fits(rest));
  standin::SplitValues(text);
  return 0;
}
