// What a stranger can put into a request: host names, origins, cookies, paths, spoken text, names in a page.
// Nothing may fail, no path may lead out of the folder, and no tag that acts by itself may get into the
// frame.
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "fuzz/Alphabet.hpp"
#include "standin/house/DeviceStore.hpp"
#include "standin/http/WebFrame.hpp"
#include "standin/http/WebRules.hpp"
#include "standin/voice/VoicePattern.hpp"

namespace {

void checkActingTags(const std::string& text) {
  const std::string shown = standin::WithoutActingTags(text);
  std::string folded = shown;
  // As browsers read tags: Latin letters alone have a case.
  for (char& c : folded)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  for (const char* tag : {"<meta", "<link", "<html", "<body", "<template"})
    if (folded.find(tag) != std::string::npos) std::abort();
  if (shown.size() < text.size() || (shown.size() - text.size()) % 3 != 0) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const std::filesystem::path root = std::filesystem::canonical("/usr/share");
  const std::string text = support::Spelled(data, size);
  const std::string half = text.substr(0, text.size() / 2);
  const std::string rest = text.substr(text.size() / 2);

  const standin::AllowedHosts local(false, {"house.example"});
  if (local.allows(text)) {
    const auto name = standin::HostName(text);
    if (!name || (!standin::IsLoopback(*name) && *name != "house.example")) std::abort();
  }
  if (standin::SameOrigin(half, rest) && half.size() <= rest.size()) std::abort();
  standin::CookieValue(text, "vantorix");
  if (standin::EscapeHtml(text).find_first_of("<>\"'") != std::string::npos) std::abort();

  checkActingTags(text);
  checkActingTags("<Meta" + half + "<lInk " + rest);
  checkActingTags("<Body" + half + "<hTml " + rest + "<tempLate");

  if (const auto found = standin::FileBelow(root, text)) {
    if (!found->string().starts_with(root.string() + "/")) std::abort();
  }
  if (text.size() < 2000) static_cast<void>(standin::VoicePattern(half).fits(rest));
  standin::SplitValues(text);
  return 0;
}
