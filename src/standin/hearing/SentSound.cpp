#include "standin/hearing/SentSound.hpp"

#include <charconv>
#include <cstddef>
#include <string>

#include "base/Failure.hpp"
#include "base/Text.hpp"
#include "ear/Messages.hpp"
#include "standin/ear/Recogniser.hpp"

namespace standin {
namespace {

[[noreturn]] void Refuse(const std::string& text) {
  throw base::Failure(base::number::kInvalidArgument, text);
}

std::uint32_t NumberAt(std::string_view bytes, std::size_t at, std::size_t size) {
  std::uint32_t value = 0;
  for (std::size_t i = size; i-- > 0;) value = value << 8U | static_cast<unsigned char>(bytes[at + i]);
  return value;
}

void NeedRate(std::uint64_t rate) {
  if (rate == Recogniser::kRate) return;
  Refuse("The sound has " + std::to_string(rate) + " samples a second; 16000 are needed");
}

/// The samples of a file of sound.
std::string_view OfFile(std::string_view file) {
  constexpr std::size_t kHead = 12;
  constexpr std::size_t kChunkHead = 8;
  constexpr std::size_t kFormat = 16;
  if (file.size() < kHead || file.substr(0, 4) != "RIFF" || file.substr(8, 4) != "WAVE")
    Refuse("The sound is no file of that type");
  bool known = false;
  for (std::size_t at = kHead; at + kChunkHead <= file.size();) {
    const std::string_view name = file.substr(at, 4);
    const std::size_t size = NumberAt(file, at + 4, 4);
    const std::string_view content = file.substr(at + kChunkHead, size);
    if (name == "fmt " && content.size() >= kFormat) {
      if (NumberAt(content, 0, 2) != 1 || NumberAt(content, 14, 2) != 16 || NumberAt(content, 2, 2) != 1)
        Refuse("The sound must have one channel of 16 bits");
      NeedRate(NumberAt(content, 4, 4));
      known = true;
    }
    if (name == "data" && known) return content;
    at += kChunkHead + size + size % 2;
  }
  Refuse("The file holds no sound");
}

}  // namespace

std::vector<std::int16_t> SentSound(std::string_view type, std::string_view body) {
  const std::string lower = base::LowerCase(type);
  if (lower.starts_with("audio/wav") || lower.starts_with("audio/x-wav")) return ear::SoundIn(OfFile(body));
  if (!lower.starts_with("audio/l16")) Refuse("Sound is taken as audio/l16;rate=16000 or as audio/wav");
  const std::size_t rate = lower.find("rate=");
  if (rate == std::string::npos) Refuse("The type of the sound doesn’t tell its rate");
  std::uint64_t value = 0;
  std::from_chars(lower.data() + rate + 5, lower.data() + lower.size(), value);
  NeedRate(value);
  return ear::SoundIn(body);
}

}  // namespace standin
