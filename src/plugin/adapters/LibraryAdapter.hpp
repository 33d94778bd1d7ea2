#pragma once
#include <string>

#include "catalogue/MediaCatalogue.hpp"
#include "catalogue/NameXref.hpp"
#include "player/WMPPlay.hpp"
#include "plugin/host/Neighbours.hpp"

namespace plugin {

/// The library's calls as the modules behind them answer.
class LibraryAdapter : public LibraryCalls {
 public:
  LibraryAdapter(player::PlayRequests& requests, catalogue::MediaCatalogue& catalogue,
                 catalogue::NameXref& xref)
      : requests_(requests), catalogue_(catalogue), xref_(xref) {}

  std::int32_t WMPPlay(const std::string& category, const std::string& name,
                       const std::string& title) override {
    return requests_.WMPPlay(category, name, title);
  }
  base::Value AddMediaToPlayList(const std::string& name) override {
    return catalogue_.AddMediaToPlayList(name);
  }
  void LoadNameTable() override { xref_.LoadNameTable(); }

 private:
  player::PlayRequests& requests_;
  catalogue::MediaCatalogue& catalogue_;
  catalogue::NameXref& xref_;
};

}  // namespace plugin
