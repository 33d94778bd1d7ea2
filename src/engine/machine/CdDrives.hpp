#pragma once
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "engine/library/Media.hpp"
#include "player/WMP9.hpp"

namespace engine {

/// The machine's CD drives and the disc images set up as such.
class CdDrives : public player::CdromCollection {
 public:
  /// `devices` are device files or CUE files; with `find`, the machine's own drives come first. `shelf` knows
  /// the pictures of discs.
  CdDrives(const std::vector<std::string>& devices, bool find, const ShelfRef& shelf = nullptr);

  [[nodiscard]] std::int32_t count() const override { return static_cast<std::int32_t>(drives_.size()); }
  std::shared_ptr<player::Cdrom> item(std::int32_t index) override;
  /// How long a track of the disc is that was looked at last in that drive, in sectors of 1/75 second: 0
  /// where that isn't known, nothing where none of them is this device.
  [[nodiscard]] std::optional<std::int32_t> sectorsOf(const std::string& device, int track) const;

 private:
  class Drive;
  std::vector<std::shared_ptr<Drive>> drives_;
};

}  // namespace engine
