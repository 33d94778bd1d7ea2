#pragma once
#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "engine/playlists/M3u.hpp"

namespace bench {

inline std::string Content(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

/// The least that a durable change of a whole file takes: written beside, synced, renamed.
inline void WritePlainly(const std::string& path, const std::string& content) {
  const std::string beside = path + ".new";
  const int file = ::open(beside.c_str(), O_CREAT | O_TRUNC | O_WRONLY | O_CLOEXEC, 0644);
  const bool good = ::write(file, content.data(), content.size()) == static_cast<ssize_t>(content.size()) &&
                    ::fsync(file) == 0 && ::rename(beside.c_str(), path.c_str()) == 0;
  ::close(file);
  if (!good) std::abort();
}

/// The playlist "Bench" of so many titles.
inline void MakePlaylist(const std::filesystem::path& path, int count) {
  engine::M3uText text;
  text.name("Bench");
  for (int i = 0; i < count; ++i) {
    const std::string number = std::to_string(i);
    text.insert(text.count(), {"/srv/music/artist " + std::to_string(i / 30) + "/album " +
                                   std::to_string(i / 10) + "/track " + number + ".flac",
                               "Artist " + std::to_string(i / 30) + " - Title " + number, 215});
  }
  std::filesystem::create_directories(path.parent_path());
  std::ofstream(path, std::ios::binary) << text.text();
}

}  // namespace bench
