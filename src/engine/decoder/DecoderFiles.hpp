#pragma once
#include <map>
#include <mutex>
#include <string>

#include "engine/decoder/Output.hpp"

struct mpv_stream_cb_info;

namespace engine {

class MpvHandle;

/// The files that the decoder may open, each under an address that we make for one entry; it opens no path
/// itself. So what it reads is what was found to be a file, and passes `UnreadTags` and `SampleClaims`.
class DecoderFiles {
 public:
  /// Once for each decoder, before it opens anything; it must end before this.
  void serve(const MpvHandle& decoder);

  /// The address under which the decoder finds that file. It is opened when the decoder comes to it, on a
  /// thread of the decoder's.
  std::string give(EntryId entry, const std::string& path);
  void forgetBefore(EntryId entry);
  void forgetAll();
  /// Why the entry's file could not be opened, as people read it; empty when nothing is known against it.
  [[nodiscard]] std::string refusal(EntryId entry) const;

 private:
  struct File {
    std::string path;
    std::string refusal;
  };

  static int Open(void* self, char* address, mpv_stream_cb_info* stream);
  int open(const std::string& address, mpv_stream_cb_info& stream);
  void refuse(EntryId entry, const std::string& reason);

  mutable std::mutex mutex_;  ///< guards `files_`
  std::map<EntryId, File> files_;
};

}  // namespace engine
