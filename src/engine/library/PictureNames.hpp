#pragma once
#include <cstdint>
#include <string_view>

namespace engine {

/// Whether a file of that name may hold a picture that stands for an album: JPEG, PNG or WebP, in any case.
bool IsPictureName(std::string_view file);

/// Whether a folder that was changed last at that time can be taken as read: what happens within one tick of
/// a file system's clock leaves the same time behind.
bool IsSettled(std::int64_t modified);

/// A folder with more entries than that is not looked through.
inline constexpr int kMostPictureEntries = 10'000;

}  // namespace engine
