#pragma once
#include <filesystem>
#include <string>

#include "demo/Sound.hpp"
#include "demo/Tags.hpp"
#include "support/TempFolder.hpp"

namespace support {

/// A music folder of three short tagged pieces of one album.
class SmallMusic {
 public:
  /// `seconds`: the length of each piece.
  explicit SmallMusic(double seconds = 20) {
    const char* titles[] = {"One", "Two", "Three"};
    for (int i = 0; i < 3; ++i) add(titles[i], i + 1, seconds);
  }
  void add(const std::string& title, int track, double seconds) const {
    engine::TrackTags tags;
    tags.title = title;
    tags.artist = "The Testers";
    tags.album = "Counting";
    tags.genre = "Numbers";
    tags.track = track;
    add(title, seconds, tags);
  }
  /// A piece whose file's name tells nothing of its tags.
  void add(const std::string& file, double seconds, const engine::TrackTags& tags,
           const std::string& png = {}) const {
    const std::string path = (folder_.path() / (file + ".flac")).string();
    engine::demo::WriteSound(path, engine::demo::Tone(220.0 * tags.track, seconds, 8000),
                             engine::demo::FileFormat::kFlac);
    engine::demo::WriteTags(path, tags, png);
  }
  [[nodiscard]] std::string path() const { return folder_.path().string(); }

 private:
  TempFolder folder_;
};

}  // namespace support
