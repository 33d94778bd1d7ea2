#include "standin/covers/Covers.hpp"

#include <algorithm>
#include <memory>
#include <utility>

#include "base/Failure.hpp"
#include "files/ReadFile.hpp"
#include "pictures/Picture.hpp"
#include "standin/covers/DecoderTurn.hpp"

namespace standin {
namespace {

/// At once: a picture may take some hundred MiB while it is unpacked.
constexpr int kDecoders = 2;
constexpr int kMostTries = 20;

}  // namespace

Covers::Covers(LoopGate& gate, PlayerCovers& player, const std::filesystem::path& folder)
    : gate_(gate), player_(player), shelf_(folder), marks_(folder / "marks"), decoders_(kDecoders) {}

Covers::Cover Covers::keyOf(const CoverWish& wish) {
  Cover cover = find(wish, std::vector<int>{kLarge, kSmall});
  cover.jpeg.clear();
  return cover;
}

std::string Covers::byKey(const std::string& key, int size) {
  if (!CoverShelf::isKey(key)) return {};
  return shelf_.take(key, size).value_or(std::string());
}

Covers::Cover Covers::find(const CoverWish& wish, const std::vector<int>& sizes) {
  Cover cover;
  FoundCover found;
  for (int tries = 0; tries < kMostTries; ++tries) {
    found = ask(wish, sizes);
    if (!found.key.empty() || found.mark.empty()) break;
    found.key = made(found.bytes, sizes);
    marks_.put(found.mark, found.key);
    if (!found.key.empty()) break;
  }
  if (found.key.empty() && found.elsewhere) {
    constexpr std::int64_t kMost = pictures::kMostBytes;
    try {
      found.key = made(files::ReadFile(player_.lastFound().string(), kMost).text, sizes);
    } catch (const base::Failure&) {  // it has gone meanwhile
    }
  }
  if (!found.key.empty()) cover.jpeg = byKey(found.key, sizes.front());
  // One that somebody has cleared away in between is there again the next time.
  if (!cover.jpeg.empty()) cover.key = found.key;
  cover.album = std::move(found.album);
  cover.artist = std::move(found.artist);
  cover.title = std::move(found.title);
  cover.item = std::move(found.item);
  return cover;
}

FoundCover Covers::ask(const CoverWish& wish, const std::vector<int>& sizes) {
  const auto found = std::make_shared<FoundCover>();
  const auto known = [this, sizes](const std::string& mark) {
    std::optional<std::string> key = marks_.find(mark);
    if (key && !key->empty() && !hasAll(*key, sizes)) key.reset();
    return key;
  };
  const LoopGate::Outcome outcome = gate_.run([&player = player_, wish, known, found](auto done) {
    player.find(wish, known, [found, done](FoundCover answer) {
      *found = std::move(answer);
      done();
    });
  });
  if (outcome != LoopGate::Outcome::kDone) return {.album = wish.album, .artist = wish.artist};
  return std::move(*found);
}

std::string Covers::made(const std::string& bytes, const std::vector<int>& sizes) {
  if (bytes.empty()) return {};
  std::string key = CoverShelf::keyOf(bytes);
  if (hasAll(key, sizes)) return key;
  const DecoderTurn turn(decoders_);
  const std::string* from = &bytes;
  std::string last;
  for (const int size : sizes) {  // the largest first: each is made from the one before
    last = pictures::Thumbnail(*from, size);
    if (last.empty()) return {};
    shelf_.put(key, size, last);
    from = &last;
  }
  return key;
}

bool Covers::hasAll(const std::string& key, const std::vector<int>& sizes) {
  return std::all_of(sizes.begin(), sizes.end(), [&](int size) { return shelf_.has(key, size); });
}

}  // namespace standin
