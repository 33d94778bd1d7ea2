// Any bytes as a file that the decoder reads: it is as long as it was, it is the same in whatever steps it is
// read, and the same when it is read again. Some bytes stand for the names of boxes, which chance seldom
// makes.

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <string>
#include <string_view>

#include "engine/shown/SampleClaims.hpp"
#include "engine/shown/UnreadTags.hpp"
#include "fuzz/Input.hpp"

namespace {

std::string Whole(engine::SampleClaims& file, std::size_t step) {
  std::string all;
  std::string piece(step, '?');
  while (const std::int64_t count = file.read(piece.data(), piece.size(), all.size())) {
    support::Require(count > 0 && static_cast<std::size_t>(count) <= step);
    all.append(piece, 0, static_cast<std::size_t>(count));
  }
  return all;
}

void Read(const void* data, std::size_t size) {
  static const int file = ::memfd_create("fuzz", MFD_CLOEXEC);
  support::Require(::ftruncate(file, 0) == 0 && ::pwrite(file, data, size, 0) == static_cast<ssize_t>(size));
  engine::UnreadTags tags(file);
  engine::SampleClaims claims(tags, size);
  const std::string all = Whole(claims, 4096);
  support::Require(all.size() == size && Whole(claims, 1009) == all);
  engine::SampleClaims other(tags, size);
  support::Require(Whole(other, 97) == all);
}

std::string Named(const std::uint8_t* data, std::size_t size) {
  constexpr std::string_view kNames =
      "ftypmoovtrakmoofmdatfreestszstz2trunelststscstcoco64stssstpssttscttskeyssbgpsgpddrefsidxtframfracmovse"
      "nc";
  constexpr std::uint8_t kFirst = 0xE0;
  std::string text;
  for (std::size_t i = 0; i < size; ++i) {
    const auto name = static_cast<std::size_t>(data[i] - kFirst) * 4;
    if (data[i] >= kFirst && name < kNames.size())
      text += kNames.substr(name, 4);
    else
      text += static_cast<char>(data[i]);
  }
  return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Read(data, size);
  const std::string named = Named(data, size);
  Read(named.data(), named.size());
  return 0;
}
