#pragma once
#include <mpv/client.h>

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "engine/decoder/MpvLibrary.hpp"

namespace engine {

using MpvOptions = std::vector<std::pair<std::string, std::string>>;

/// Throws number 429 when there is too little memory for a decoder. What it has asked for is given back.
void CheckRoomForDecoder();

/// One decoder. Commands and properties are asynchronous: their answers come as events.
class MpvHandle {
 public:
  /// Throws number 429 when it can't be loaded or created, as for too little memory, or naming an option that
  /// it does not take.
  explicit MpvHandle(const MpvOptions& options);
  ~MpvHandle() = default;
  MpvHandle(const MpvHandle&) = delete;
  MpvHandle& operator=(const MpvHandle&) = delete;
  MpvHandle(MpvHandle&&) = delete;
  MpvHandle& operator=(MpvHandle&&) = delete;

  void command(std::uint64_t tag, const std::vector<std::string>& words);
  /// That it is set comes as an event of that tag.
  void set(const char* property, const std::string& value, std::uint64_t tag = 0);
  void set(const char* property, double value);
  void set(const char* property, bool value);
  /// Its value comes as an event of that tag.
  void ask(std::uint64_t tag, const char* property, mpv_format format);
  /// Its changes come as events from now on.
  void observe(const char* property, mpv_format format);
  /// Each file waits before it is opened, told as an event, until `open`.
  void holdBeforeOpening();
  void open(std::uint64_t held);
  /// `wake(context)` is called on any thread when there may be an event.
  void onWakeup(void (*wake)(void*), void* context);
  /// The next event, which holds until the next call; `MPV_EVENT_NONE` without one.
  [[nodiscard]] const mpv_event& nextEvent();
  /// What an error's number means.
  [[nodiscard]] const char* textOf(int error) const { return library_.errorText(error); }
  [[nodiscard]] const MpvLibrary& library() const { return library_; }
  [[nodiscard]] mpv_handle* get() const { return handle_.get(); }

 private:
  struct Destroyer {
    const MpvLibrary* library = nullptr;
    void operator()(mpv_handle* handle) const;
  };
  MpvLibrary library_;
  std::unique_ptr<mpv_handle, Destroyer> handle_;
};

}  // namespace engine
