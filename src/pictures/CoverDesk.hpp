#pragma once
#include <functional>
#include <string>
#include <utility>

#include "cover/CoverFiles.hpp"
#include "pictures/Picture.hpp"

namespace pictures {

/// The cover search's files on this machine, and its look at pictures.
class CoverDesk : public cover::CoverFiles {
 public:
  using Look = std::function<bool(const std::string& bytes)>;
  explicit CoverDesk(Look canBeShown = CanBeShown) : canBeShown_(std::move(canBeShown)) {}

  void remove(const std::string& path) override;
  void makeFolder(const std::string& path) override;
  void copy(const std::string& from, const std::string& to) override;
  void overwrite(const std::string& path, const std::string& bytes) override;
  /// Reads "file:" addresses alone: the player hands out nothing else, and what came from elsewhere is not
  /// to be fetched.
  void download(const std::string& url, const std::string& path) override;
  cover::Picture load(const std::string& path) override;

 private:
  Look canBeShown_;
  std::string good_;  ///< the last picture that could be shown
};

}  // namespace pictures
