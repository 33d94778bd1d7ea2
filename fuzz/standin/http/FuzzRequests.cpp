// What a stranger can put into a request: host names, origins, cookies, paths, spoken text, names in a page.
// Nothing may fail, no path may lead out of the folder, and no name in a page may end its
// element.
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <regex>
#include <string>
#include <string_view>

#include "fuzz/Alphabet.hpp"
#include "standin/house/DeviceStore.hpp"
#include "standin/http/BodyFrame.hpp"
#include "standin/http/RequestHead.hpp"
#include "standin/http/WebFrame.hpp"
#include "standin/http/WebRules.hpp"
#include "standin/text/ByteRange.hpp"

namespace {

/// The page's script takes the data up to the element's end and reads it as it was.
void CheckPageData(const std::string& text) {
  const std::string whole = standin::AsPageData(text);
  const std::string open = R"(<script type="text/plain">)";
  std::string folded = whole.substr(open.size());
  // As browsers read tags: Latin letters alone have a case.
  for (char& c : folded)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  if (folded.find("</script") != folded.size() - 9 || folded.find("<!--") != std::string::npos ||
      folded.find("<script") != std::string::npos)
    std::abort();
  static const std::regex parted(R"re(<(\\*)\\(?=!--|\/?[sS][cC][rR][iI][pP][tT]))re");
  const std::string data = whole.substr(open.size(), folded.size() - 9);
  if (data.size() < 2000 && std::regex_replace(data, parted, "<$1") != text) std::abort();
}

/// A head that is passed on has one meaning, and a body has the same end however its bytes come.
void CheckFraming(const std::string& head, const std::string& body) {
  const auto read = standin::ReadHead(head);
  if (const auto* passed = std::get_if<standin::RequestHead>(&read)) {
    if (passed->chunked && passed->length > 0) std::abort();
    if (!head.ends_with("\r\n\r\n") || head.find('\0') != std::string::npos) std::abort();
    if (head.starts_with("GET ") && (passed->chunked || passed->length > 0)) std::abort();
  }
  for (const bool chunked : {false, true}) {
    const standin::RequestHead plan{.chunked = chunked, .length = chunked ? 0 : head.size() / 3};
    standin::BodyFrame once(plan, 100);
    const std::size_t taken = once.take(body);
    if (taken > body.size() || taken > 100) std::abort();
    standin::BodyFrame slowly(plan, 100);
    std::size_t slow = 0;
    while (slow < body.size() && slowly.take(std::string_view(body).substr(slow, 1)) == 1) ++slow;
    if (slow != taken || once.ended() != slowly.ended()) std::abort();
  }
}

/// A header of a few digits and dashes, as chance seldom makes them of all characters.
std::string RangeFrom(const std::string& text) {
  constexpr std::string_view kCharacters = "0123456789-- ,";
  constexpr std::size_t kLongest = 24;
  std::string header = "bytes=";
  for (const char c : text.substr(0, kLongest)) {
    const auto place = static_cast<unsigned char>(c);
    if (place >= 0xE0) break;  // or all would be long
    header += kCharacters[place % kCharacters.size()];
  }
  return header;
}

/// A range lies in the content that it is of, and is not empty.
void CheckRange(const std::string& header) {
  for (const std::size_t all : {0, 1, 100}) {
    const auto part = standin::RangeOf(header, all);
    if (!part) continue;
    if (!standin::IsOneRange(header)) std::abort();
    if (part->count == 0 || part->first >= all || part->count > all - part->first) std::abort();
  }
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
  for (const bool tls : {false, true})
    if (standin::SameOrigin(half, rest, tls) && half.size() <= rest.size()) std::abort();
  CheckFraming(text, half);
  CheckRange(text);
  CheckRange(RangeFrom(text));
  standin::CookieValue(text, "vantorix");
  if (standin::EscapeHtml(text).find_first_of("<>\"'") != std::string::npos) std::abort();

  CheckPageData(text);
  CheckPageData("<!-" + half + "</sCript" + rest);
  CheckPageData("<\\" + half + "<scRipt\\" + rest + "<");

  if (const auto found = standin::FileBelow(root, text)) {
    if (!found->string().starts_with(root.string() + "/")) std::abort();
  }
  standin::SplitValues(text);
  return 0;
}
