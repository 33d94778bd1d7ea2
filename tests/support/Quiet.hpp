#pragma once
#include <cstdint>
#include <string>

#include "base/Platform.hpp"
#include "player/WMP9.hpp"

/// What a measurement or a fuzzer puts where nothing is to happen.
namespace support {

class QuietPlatform : public base::Platform {
 public:
  std::int32_t osMajorVersion() override { return 6; }
  void setPriorityClass(std::int32_t /*value*/) override {}
  void end() override {}
  void messageBox(base::BoxKind /*kind*/, const std::string& /*title*/,
                  const std::string& /*text*/) override {}
  void emptyFile(const std::string& /*path*/) override {}
};

class QuietEvents : public player::WMP9Events {
 public:
  void PlayStateChange(std::int32_t /*state*/) override {}
  void ModeChange(const std::string& /*mode*/, bool /*value*/) override {}
  void Error() override {}
  void Warning(std::int32_t /*type*/, std::int32_t /*param*/, const std::string& /*text*/) override {}
  void MediaCollectionChange() override {}
  void PlaylistCollectionChange() override {}
  void DoubleClick() override {}
};

}  // namespace support
