#pragma once
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "standin/player/PlayerLibrary.hpp"
#include "standin/player/SearchTable.hpp"

namespace standin {

/// One search over everything that the player's library has: artists, albums, titles, genres, playlists. What
/// it looks through is folded once and kept. Old words are answered at once and made anew meanwhile; a title
/// that has changed since then is seen when it is shown. All use is on the loop's thread.
class LibrarySearch {
 public:
  LibrarySearch(bus::PollLoop& loop, PlayerLibrary& library) : loop_(loop), library_(library) {}

  /// What was found in a category, a page of it.
  struct Group {
    std::string category;
    std::size_t total = 0;
    std::vector<std::string> names{};
    std::vector<std::size_t> places{};  ///< in the category's list
    std::vector<Title> titles{};        ///< of "Media Library", one for each name
  };
  struct Query {
    std::string sought;
    std::size_t offset = 0;
    std::size_t limit = 0;
    bool fresh = false;  ///< asks the player before it answers
  };
  using Failed = PlayerLibrary::Failed;
  using FoundAll = std::function<void(std::vector<Group> groups, const Failed& failed)>;
  /// In each of the categories.
  void everywhere(const Query& query, FoundAll found);

  using Found = std::function<void(Group group, const Failed& failed)>;
  /// Among all titles of the library; all of them when nothing is sought.
  void titles(const Query& query, Found found);

 private:
  using Ready = std::function<void(const Failed& failed)>;
  struct Gathering;
  void gather(const std::shared_ptr<Gathering>& gathering);
  void prepare(bool fresh, const Ready& ready);
  void readOn(std::shared_ptr<SearchTable> table);
  void prepared(std::shared_ptr<SearchTable> table, const Failed& failed);
  void show(const Query& query, bool again, const Found& found);

  bus::PollLoop& loop_;
  PlayerLibrary& library_;
  std::shared_ptr<const SearchTable> table_;  ///< of all titles, in their order
  base::Milliseconds since_{0};
  bool reading_ = false;
  std::vector<Ready> waiting_;  ///< for the titles that are being read
};

}  // namespace standin
