#include "standin/ear/Recogniser.hpp"

#include <utility>

namespace standin {
namespace {

class Kept : public Recogniser::Growing {
 public:
  explicit Kept(Recogniser& recogniser) : recogniser_(recogniser) {}
  void more(const std::vector<std::int16_t>& piece) override {
    constexpr std::size_t kMost = Recogniser::kLongestSeconds * Recogniser::kRate;
    const std::size_t some = std::min(piece.size(), kMost - sound_.size());
    sound_.insert(sound_.end(), piece.begin(), piece.begin() + static_cast<std::ptrdiff_t>(some));
  }
  void end(Recogniser::Told told) override { recogniser_.hear(std::move(sound_), std::move(told)); }

 private:
  Recogniser& recogniser_;
  std::vector<std::int16_t> sound_;
};

}  // namespace

std::unique_ptr<Recogniser::Growing> Recogniser::begin() { return std::make_unique<Kept>(*this); }

}  // namespace standin
