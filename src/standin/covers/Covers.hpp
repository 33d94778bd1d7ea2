#pragma once
#include <filesystem>
#include <semaphore>
#include <string>
#include <vector>

#include "standin/covers/CoverShelf.hpp"
#include "standin/covers/PictureMarks.hpp"
#include "standin/covers/PlayerCovers.hpp"
#include "standin/house/LoopGate.hpp"

namespace standin {

/// The covers that pages show, in two sizes that are made once from what the player has. For the web's
/// threads, on which pictures are decoded, few at a time.
class Covers {
 public:
  static constexpr int kSmall = 256;  ///< pixels of the longer side
  static constexpr int kLarge = 1024;
  static bool isSize(int size) { return size == kSmall || size == kLarge; }

  Covers(LoopGate& gate, PlayerCovers& player, const std::filesystem::path& folder);

  struct Cover {
    std::string key{};  ///< empty when there is none
    std::string jpeg{};
    std::string album{};
    std::string artist{};
    std::string title{};
    std::string item{};  ///< of what plays, as PlayerNow has it; empty where nobody could tell
  };
  /// The cover in that size; without a key where there is none.
  Cover find(const CoverWish& wish, int size) { return find(wish, std::vector<int>{size}); }
  /// The same without the picture; both sizes can be had by the key from then on.
  Cover keyOf(const CoverWish& wish);
  /// The picture with that key, empty when it isn't known.
  std::string byKey(const std::string& key, int size);

 private:
  Cover find(const CoverWish& wish, const std::vector<int>& sizes);
  FoundCover ask(const CoverWish& wish, const std::vector<int>& sizes);
  /// The key of a picture in all these sizes; empty for one that can't be shown.
  std::string made(const std::string& bytes, const std::vector<int>& sizes);
  [[nodiscard]] bool hasAll(const std::string& key, const std::vector<int>& sizes);

  LoopGate& gate_;
  PlayerCovers& player_;
  CoverShelf shelf_;
  PictureMarks marks_;
  std::counting_semaphore<> decoders_;
};

}  // namespace standin
