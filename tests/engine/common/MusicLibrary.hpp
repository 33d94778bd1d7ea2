#pragma once
#include <string>
#include <vector>

#include "engine/common/Fixtures.hpp"

namespace engine::testing {

/// A player whose library is asked for its groups.
class LibraryOfMusic : public PlayerTest {
 protected:
  void fourTracks() {
    addTrack("x/b2.flac", "Second", "Ann", "Blue", "Jazz", 2);
    addTrack("x/b1.ogg", "First", "Zoe", "Blue", "Jazz", 1);
    addTrack("y/r1.wav", "Älg", "Élan", "Red", "rock", 1);
    addTrack("y/r2.flac", "zebra", "Élan", "Red", "Rock", 2);
  }
  player::MediaCollection& library() { return player->mediaCollection(); }
  std::vector<std::string> values(const std::string& attribute) {
    return Names(*library().getAttributeStringCollection(attribute, "audio"));
  }
  std::vector<std::string> group(const std::string& attribute, const std::string& value) {
    return Names(*library().getByAttribute(attribute, value));
  }
};

}  // namespace engine::testing
