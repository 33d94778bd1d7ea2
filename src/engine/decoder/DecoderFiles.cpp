#include "engine/decoder/DecoderFiles.hpp"

#include <mpv/client.h>
#include <mpv/stream_cb.h>
#include <sys/stat.h>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <exception>
#include <memory>
#include <string_view>

#include "engine/decoder/MediaDoor.hpp"
#include "engine/decoder/MpvHandle.hpp"
#include "engine/shown/SampleClaims.hpp"
#include "engine/shown/UnreadTags.hpp"

namespace engine {
namespace {

constexpr std::string_view kKind = "vantorix";

/// The largest block of memory that the libraries below the decoder may ask for at once, so that no number in
/// a file makes them take more. The list of samples of a book of seventy hours takes as much.
constexpr std::size_t kLargestBlock = std::size_t{256} << 20U;

/// What the decoder reads: an open file, and the place in it.
class Stream {
 public:
  explicit Stream(const std::string& path)
      : file_(OpenMedia(path)),
        tags_(file_.get()),
        claims_(tags_, static_cast<std::uint64_t>(std::max<std::int64_t>(size(), 0))) {}

  std::int64_t read(char* bytes, std::uint64_t most) {
    const std::int64_t count = claims_.read(bytes, most, place_);
    if (count > 0) place_ += static_cast<std::uint64_t>(count);
    return count;
  }

  std::int64_t seek(std::int64_t place) {
    if (place < 0) return MPV_ERROR_GENERIC;
    place_ = static_cast<std::uint64_t>(place);
    return place;
  }

  /// It may grow while it is read.
  [[nodiscard]] std::int64_t size() const {
    struct stat info {};
    return ::fstat(file_.get(), &info) == 0 ? info.st_size : std::int64_t{MPV_ERROR_UNSUPPORTED};
  }

 private:
  files::Descriptor file_;
  UnreadTags tags_;
  SampleClaims claims_;
  std::uint64_t place_ = 0;
};

/// The path's ending, as far as it may tell the decoder what the file is.
std::string EndingOf(const std::string& path) {
  const std::string_view name = std::string_view(path).substr(path.rfind('/') + 1);
  const auto dot = name.rfind('.');
  if (dot == std::string_view::npos || name.size() - dot > 8) return {};
  const std::string_view ending = name.substr(dot);
  const bool plain = std::all_of(ending.begin() + 1, ending.end(),
                                 [](char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0; });
  return plain ? std::string(ending) : std::string();
}

EntryId EntryOf(std::string_view address) {
  EntryId entry = 0;
  address.remove_prefix(std::min(address.size(), kKind.size() + 3));
  std::from_chars(address.data(), address.data() + address.size(), entry);
  return entry;
}

}  // namespace

void DecoderFiles::serve(const MpvHandle& decoder) {
  decoder.library().limitBlocks(kLargestBlock);
  decoder.library().serve(decoder.get(), std::string(kKind).c_str(), this, &DecoderFiles::Open);
}

std::string DecoderFiles::give(EntryId entry, const std::string& path) {
  const std::lock_guard lock(mutex_);
  files_[entry] = File{path, {}};
  return std::string(kKind) + "://" + std::to_string(entry) + EndingOf(path);
}

void DecoderFiles::forgetBefore(EntryId entry) {
  const std::lock_guard lock(mutex_);
  files_.erase(files_.begin(), files_.lower_bound(entry));
}

void DecoderFiles::forgetAll() {
  const std::lock_guard lock(mutex_);
  files_.clear();
}

std::string DecoderFiles::refusal(EntryId entry) const {
  const std::lock_guard lock(mutex_);
  const auto found = files_.find(entry);
  return found != files_.end() ? found->second.refusal : std::string();
}

void DecoderFiles::refuse(EntryId entry, const std::string& reason) {
  const std::lock_guard lock(mutex_);
  const auto found = files_.find(entry);
  if (found != files_.end()) found->second.refusal = reason;
}

int DecoderFiles::Open(void* self, char* address, mpv_stream_cb_info* stream) {
  return static_cast<DecoderFiles*>(self)->open(address, *stream);
}

int DecoderFiles::open(const std::string& address, mpv_stream_cb_info& stream) {
  const EntryId entry = EntryOf(address);
  try {
    std::string path;
    {
      const std::lock_guard lock(mutex_);
      const auto found = files_.find(entry);
      if (found == files_.end()) return MPV_ERROR_LOADING_FAILED;
      path = found->second.path;
    }
    stream.cookie = std::make_unique<Stream>(path).release();
  } catch (const std::exception& failure) {
    refuse(entry, failure.what());
    return MPV_ERROR_LOADING_FAILED;
  }
  stream.read_fn = [](void* opened, char* bytes, std::uint64_t most) {
    return static_cast<Stream*>(opened)->read(bytes, most);
  };
  stream.seek_fn = [](void* opened, std::int64_t place) { return static_cast<Stream*>(opened)->seek(place); };
  stream.size_fn = [](void* opened) { return static_cast<Stream*>(opened)->size(); };
  stream.close_fn = [](void* opened) { const std::unique_ptr<Stream> ended(static_cast<Stream*>(opened)); };
  return 0;
}

}  // namespace engine
