#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "base/Failure.hpp"
#include "base/Text.hpp"
#include "engine/playlists/M3u.hpp"
#include "engine/tags/TagFields.hpp"
#include "fuzz/Alphabet.hpp"

namespace {

using engine::M3uItem;
using engine::M3uText;

void Check(bool holds) {
  if (!holds) std::abort();
}

std::vector<M3uItem> Items(const M3uText& text) {
  std::vector<M3uItem> items;
  for (std::size_t i = 0; i < text.count(); ++i) items.push_back(text.item(i, "/music"));
  return items;
}

void CheckPlaces(const std::vector<M3uItem>& left, const std::vector<M3uItem>& right) {
  Check(left.size() == right.size());
  for (std::size_t i = 0; i < left.size(); ++i) Check(left[i].location == right[i].location);
}

void CheckSame(const std::vector<M3uItem>& left, const std::vector<M3uItem>& right) {
  CheckPlaces(left, right);
  for (std::size_t i = 0; i < left.size(); ++i) {
    Check(left[i].title == right[i].title && left[i].seconds == right[i].seconds);
    Check(base::IsPlainUtf8(left[i].title) && left[i].title.size() <= engine::tags::TagFields::kLongest);
  }
}

/// Edits the text as a playlist would, and the items beside it; both must lead to the same places.
void Edit(M3uText& text, std::vector<M3uItem>& items, unsigned char what, const std::string& made) {
  const std::size_t count = items.size();
  const std::size_t at = count == 0 ? 0 : what / 4 % count;
  if (what % 4 == 0 && count > 0) {
    text.remove(at);
    items.erase(items.begin() + static_cast<std::ptrdiff_t>(at));
  } else if (what % 4 == 1 && count > 0) {
    const M3uItem moved = items[at];
    text.move(at, count - 1);
    items.erase(items.begin() + static_cast<std::ptrdiff_t>(at));
    items.push_back(moved);
  } else if (what % 4 == 2) {
    text.insert(at, {"/" + made, "T", 7});
    items.insert(items.begin() + static_cast<std::ptrdiff_t>(at), {"/" + made, "T", 7});
  } else {
    const std::string name = base::RepairUtf8(made);
    if (name.empty() || !base::IsPlainUtf8(name)) return;
    text.name(name);
    Check(M3uText(text.text()).name() == name);
  }
  CheckPlaces(Items(M3uText(text.text())), items);
}

}  // namespace

/// Whatever a playlist file holds: it is read, and what was read survives edits and being written.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string whole = support::Spelled(data, size);
  M3uText text(whole);
  std::vector<M3uItem> items = Items(text);
  const M3uText again(text.text());
  CheckSame(Items(again), items);
  Check(again.name() == text.name());
  Check(again.text() == text.text());
  const std::string made = whole.substr(0, 60);
  for (std::size_t i = 0; i < size && i < 8; ++i) Edit(text, items, data[size - 1 - i], made);
  if (!made.empty()) Check(engine::UnescapeFileName(engine::EscapeFileName(made)) == made);
  return 0;
}
