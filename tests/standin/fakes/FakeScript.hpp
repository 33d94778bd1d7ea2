#pragma once
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "standin/fakes/FakePlaylists.hpp"

namespace support {

/// A script object with a library of its own.
struct FakeLibrary {
  std::map<std::string, std::vector<std::string>> categories;  ///< the groups of "Album", "Genre" ...
  std::map<std::string, std::vector<std::string>> groups;      ///< the titles of "Album/Blue" ...
  std::shared_ptr<FakePlaylists> playlists{};                  ///< behind the raw player; none without it
};

/// The public script object as far as the tests need it; `note` writes down what it is asked to play.
base::ObjectRef MakeFakeScript(const FakeLibrary& library, std::function<void(const std::string&)> note);

}  // namespace support
