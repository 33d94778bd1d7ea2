// Bodies of form posts: every one is read, and what browsers encode comes back as it was.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "fuzz/Alphabet.hpp"
#include "web/PageForm.hpp"
#include "web/UtilityModule.hpp"

namespace {

void Require(bool holds) {
  if (!holds) std::abort();
}

std::string Encoded(const std::string& text) {
  static const char* kDigits = "0123456789abcdef";
  std::string encoded;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    encoded += '%';
    encoded += kDigits[byte / 16];
    encoded += kDigits[byte % 16];
  }
  return encoded;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text = support::Spelled(data, size);
  std::size_t failures = 0;
  web::PageForm page("WMP_Setup", [&](const base::Failure& failure, const std::string& procedure) {
    Require(failure.number() == base::number::kTypeMismatch && procedure == "UrlDecode");
    ++failures;
  });

  page.GetFormData(text);
  Require(!page.Args.empty());
  Require(page.Args.back().first.empty() && page.Args.back().second.empty());

  failures = 0;
  const std::string decoded = page.UrlDecode(text);
  Require(failures == 0 ? decoded.size() <= text.size() : decoded == text);
  Require(page.UrlDecode(Encoded(text)) == text);
  page.GetFormData(Encoded(text) + "=" + Encoded(text));
  Require(page.Args.size() == 2 && page.Args[0].first == text && page.Args[0].second == text);

  std::string filtered = text;
  web::FilterString(filtered, "HTML", " ");
  Require(filtered.find_first_of(">&\"<^~") == std::string::npos);
  Require(filtered.find("  ") == std::string::npos);
  return 0;
}
