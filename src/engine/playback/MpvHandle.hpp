#pragma once
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

struct mpv_handle;

namespace engine {

using MpvOptions = std::vector<std::pair<std::string, std::string>>;

/// Throws number 429 when there is too little memory for a decoder. What it has asked for is given back.
void CheckRoomForDecoder();

/// One decoder. Commands and properties are asynchronous: their answers come as events.
class MpvHandle {
 public:
  /// Throws number 429 when it can't be created, as for too little memory, or naming an option that it does
  /// not take.
  explicit MpvHandle(const MpvOptions& options);

  void command(std::uint64_t tag, const std::vector<std::string>& words);
  void set(const char* property, const std::string& value);
  void set(const char* property, double value);
  void set(const char* property, bool value);
  [[nodiscard]] mpv_handle* get() const { return handle_.get(); }

 private:
  struct Destroyer {
    void operator()(mpv_handle* handle) const;
  };
  std::unique_ptr<mpv_handle, Destroyer> handle_;
};

}  // namespace engine
