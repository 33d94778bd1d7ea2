#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "standin/player/SearchTable.hpp"
#include "standin/player/Title.hpp"

namespace standin {

/// The titles of a group in their order, searchable by the words of title, artist and album together.
class TitleList {
 public:
  explicit TitleList(std::vector<Title> titles);
  [[nodiscard]] const std::vector<Title>& all() const { return titles_; }

  /// A line of the group's page: a title, or the head above those of one album artist.
  struct Row {
    static constexpr std::int32_t kHead = -1;
    std::int32_t place = kHead;  ///< in the whole list
    std::string artist{};        ///< of a head
  };
  struct Choice {
    std::string sought{};
    std::string by{};            ///< only what this artist plays, or what is on his albums; empty for all
    bool byAlbumArtist = false;  ///< under heads, if there are several albums
  };
  [[nodiscard]] std::vector<Row> rows(const Choice& choice) const;

 private:
  [[nodiscard]] bool areSeveralAlbums() const;
  [[nodiscard]] std::vector<Row> underHeads(const std::vector<std::uint32_t>& places) const;

  std::vector<Title> titles_;
  SearchTable table_;
};

}  // namespace standin
