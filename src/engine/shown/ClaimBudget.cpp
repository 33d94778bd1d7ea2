#include "engine/shown/ClaimBudget.hpp"

#include <algorithm>
#include <cstddef>

namespace engine {
namespace {

constexpr std::uint64_t kFewSamples = 2'000'000;  // a file may still grow
constexpr std::uint64_t kMostSamples = 12'000'000;
constexpr std::uint64_t kMostPieces = 40'000'000;  // a thousand million bytes, if all are so short
constexpr std::size_t kMostOthers = 64;
constexpr std::uint64_t kMostInFragments = 2'000'000;
constexpr std::uint64_t kSpareBytes = std::uint64_t{16} << 20U;

/// Whether a product stays within a bound, whatever its factors.
bool Within(std::uint64_t a, std::uint64_t b, std::uint64_t most) { return b == 0 || a <= most / b; }

}  // namespace

// Sound as it is has an entry in the decoder's list for some hundred samples only.
ClaimBudget::ClaimBudget(std::uint64_t fileSize)
    : fileSize_(fileSize),
      mostSamples_(std::clamp(fileSize / 4, kFewSamples, kMostSamples)),
      mostPieces_(std::clamp(fileSize / 4, kFewSamples, kMostPieces)),
      bytesLeft_(fileSize + kSpareBytes) {}

bool ClaimBudget::samples(std::uint64_t count) {
  if (count > mostSamples_ || !Within(samples_ + count, edits_, mostSamples_)) return false;
  samples_ += count;
  return true;
}

bool ClaimBudget::smallSamples(std::uint64_t count, std::uint64_t each) {
  return Within(count, each, fileSize_) && samples_ + count <= mostSamples_ / 2 && samples(count);
}

bool ClaimBudget::edits(std::uint64_t count) {
  if (!Within(samples_, count, mostSamples_)) return false;
  edits_ = std::max(edits_, count);
  return true;
}

bool ClaimBudget::list(std::uint64_t bytes) {
  if (bytes > bytesLeft_) return false;
  bytesLeft_ -= bytes;
  return true;
}

bool ClaimBudget::fit(std::uint64_t told, std::uint64_t chunks) const {
  if (told > mostPieces_) return false;
  std::uint64_t left = mostPieces_ - told;
  for (const Others& others : others_) {
    const std::uint64_t count = chunks - std::min(chunks, others.first - 1);
    if (!Within(count, others.each, left)) return false;
    left -= count * others.each;
  }
  return true;
}

bool ClaimBudget::chunks(std::uint64_t count) {
  const std::uint64_t longest = std::max(chunks_, count);
  if (!fit(told_, longest)) return false;
  chunks_ = longest;
  return true;
}

bool ClaimBudget::spread(std::uint64_t told, std::uint64_t each, std::uint64_t first) {
  if (told > mostPieces_ || each > mostPieces_) return false;
  const std::vector<Others> before = others_;
  if (each > 0 && others_.size() < kMostOthers) {
    others_.push_back({each, std::max<std::uint64_t>(first, 1)});
  } else if (each > 0) {
    others_.back() = {others_.back().each + each, 1};
  }
  if (fit(told_ + told, chunks_)) {
    told_ += told;
    return true;
  }
  others_ = before;
  return false;
}

bool ClaimBudget::track() {
  if (!Within(fragments_, tracks_ + 1, kMostInFragments)) return false;
  ++tracks_;
  return true;
}

bool ClaimBudget::fragments(std::uint64_t count) {
  if (!Within(fragments_ + count, tracks_, kMostInFragments)) return false;
  fragments_ += count;
  return true;
}

}  // namespace engine
