#include "web/UtilityModule.hpp"

#include <algorithm>
#include <bitset>

#include "base/Text.hpp"

namespace web {

namespace {

/// The set that a word names, or the text itself.
std::string_view SetOf(std::string_view characters) {
  constexpr std::size_t kLongestWord = 4;
  if (characters.size() <= kLongestWord) {
    const std::string word = base::LowerCase(characters);
    if (word == "html") return ">&\"<^~";
    if (word == "vx") return "\x01\x02\x03";
    if (word == "vx+") return "\x01\x02\x03\t\r";
  }
  return characters;
}

/// The bytes of the character that a text begins with.
std::size_t LengthOfFirst(std::string_view text) {
  std::size_t length = 1;
  while (length < text.size() && (static_cast<unsigned char>(text[length]) & 0xC0U) == 0x80U) ++length;
  return length;
}

/// False when no byte of the set is in the text, which is how most names are.
bool MayHoldOneOf(std::string_view text, std::string_view set) {
  std::bitset<256> bytes;
  for (const char c : set) bytes.set(static_cast<unsigned char>(c));
  return std::any_of(text.begin(), text.end(), [&](char c) { return bytes[static_cast<unsigned char>(c)]; });
}

bool ReplaceAll(std::string& text, std::string_view wanted, std::string_view replacement) {
  std::size_t at = text.find(wanted);
  if (at == std::string::npos) return false;
  std::string replaced;
  replaced.reserve(text.size());
  std::size_t start = 0;
  for (; at != std::string::npos; at = text.find(wanted, start)) {
    replaced.append(text, start, at - start).append(replacement);
    start = at + wanted.size();
  }
  replaced.append(text, start);
  text = std::move(replaced);
  return true;
}

void CollapseBlanks(std::string& text) {
  if (text.find("  ") == std::string::npos) return;
  const auto end = std::unique(text.begin(), text.end(),
                               [](char left, char right) { return left == ' ' && right == ' '; });
  text.erase(end, text.end());
}

}  // namespace

std::string FilterString(std::string& text, std::string_view characters, std::string_view replacement) {
  std::string found;
  std::string_view set = SetOf(characters);
  if (!MayHoldOneOf(text, set)) set = {};
  while (!set.empty()) {
    const std::string_view character = set.substr(0, LengthOfFirst(set));
    set.remove_prefix(character.size());
    // One after the other: a replacement that holds a later character of the set is itself filtered.
    if (ReplaceAll(text, character, replacement)) found += character;
  }
  CollapseBlanks(text);
  return found;
}

void SortCollection(base::TextListRef& list) {
  if (!list) throw base::Failure(base::number::kObjectMissing);
  struct Entry {
    std::string folded;
    const std::string* text;
  };
  std::vector<Entry> entries;
  entries.reserve(list->size());
  for (const std::string& text : *list) entries.push_back({base::LowerCase(text), &text});
  std::stable_sort(entries.begin(), entries.end(), [](const Entry& left, const Entry& right) {
    const int order = left.folded.compare(right.folded);
    return order != 0 ? order < 0 : *left.text < *right.text;
  });
  auto sorted = std::make_shared<base::TextList>();
  sorted->reserve(entries.size());
  for (const Entry& entry : entries) sorted->add(*entry.text);
  list = std::move(sorted);
}

void ArrayDropFirst(std::vector<std::string>& array) {
  if (array.size() > 1)
    array.erase(array.begin());
  else
    array.assign(1, std::string());
}

void SetTopMost(WindowStack& windows, std::int32_t handle, bool flag, std::int32_t x, std::int32_t y,
                std::int32_t width, std::int32_t height) {
  constexpr std::int32_t kTopmost = -1;
  constexpr std::int32_t kNotTopmost = -2;
  constexpr std::int32_t kStackAndShow = 83;  // no size, no move, no activation, show
  windows.SetWindowPos(handle, flag ? kTopmost : kNotTopmost, x, y, width, height, kStackAndShow);
}

}  // namespace web
