// Sound as browsers send it.
#include "standin/hearing/SentSound.hpp"

#include <gtest/gtest.h>

#include <string>

#include "base/Failure.hpp"

namespace standin {
namespace {

using namespace std::string_literals;
using Samples = std::vector<std::int16_t>;

const std::string kSamples = "\x01\x00\xFF\xFF\x00\x80"s;

std::string Number(std::uint32_t value, int bytes) {
  std::string all;
  for (int i = 0; i < bytes; ++i) all += static_cast<char>(value >> (8 * i));
  return all;
}

std::string File(std::uint32_t rate, std::uint32_t channels = 1, std::uint32_t bits = 16) {
  return "RIFF" + Number(0, 4) + "WAVE" + "LIST" + Number(3, 4) + "abc\0"s + "fmt " + Number(16, 4) +
         Number(1, 2) + Number(channels, 2) + Number(rate, 4) + Number(rate * 2, 4) + Number(2, 2) +
         Number(bits, 2) + "data" + Number(6, 4) + kSamples;
}

std::string RefusalOf(const std::string& type, const std::string& body) {
  try {
    SentSound(type, body);
  } catch (const base::Failure& failure) {
    return failure.description();
  }
  return {};
}

TEST(SentSound, IsReadAsItComes) {
  const Samples samples{1, -1, -32768};
  EXPECT_EQ(SentSound("audio/l16;rate=16000", kSamples), samples);
  EXPECT_EQ(SentSound("Audio/L16; Rate=16000", kSamples), samples);
  EXPECT_EQ(SentSound("audio/l16;rate=16000", kSamples + "x"), samples);  // half a sample is none
  EXPECT_EQ(SentSound("audio/l16;rate=16000", ""), Samples());
  EXPECT_EQ(SentSound("audio/wav", File(16000)), samples);
}

TEST(SentSound, OfAnotherKindIsRefusedWithAReason) {
  EXPECT_EQ(RefusalOf("audio/l16;rate=48000", kSamples),
            "The sound has 48000 samples a second; 16000 are needed");
  EXPECT_EQ(RefusalOf("audio/l16", kSamples), "The type of the sound doesn’t tell its rate");
  EXPECT_EQ(RefusalOf("audio/ogg", kSamples), "Sound is taken as audio/l16;rate=16000 or as audio/wav");
  EXPECT_EQ(RefusalOf("audio/wav", File(44100)), "The sound has 44100 samples a second; 16000 are needed");
  EXPECT_EQ(RefusalOf("audio/wav", File(16000, 2)), "The sound must have one channel of 16 bits");
  EXPECT_EQ(RefusalOf("audio/wav", File(16000, 1, 8)), "The sound must have one channel of 16 bits");
  EXPECT_EQ(RefusalOf("audio/wav", kSamples), "The sound is no file of that type");
  for (std::size_t cut = 0; cut < File(16000).size() - kSamples.size(); ++cut)
    EXPECT_NE(RefusalOf("audio/wav", File(16000).substr(0, cut)), "") << cut;
}

}  // namespace
}  // namespace standin
