// The decoder itself, with a synthesiser's voice.
#include "ear/decoder/Decoder.hpp"

#include <gtest/gtest.h>

#include <random>
#include <stdexcept>

#include "ear/decoder/Pronunciations.hpp"
#include "standin/fakes/Spoken.hpp"
#include "standin/hearing/Network.hpp"

namespace {

constexpr const char* kModels = "/usr/share/pocketsphinx/model/en-us";

class Decoding : public testing::Test {
 protected:
  static ear::SpeechNetwork network() {
    const standin::Pattern controls("(Play|Player) [No] (Stop|Next|Previous|Shuffle|Volume Up)");
    const standin::Pattern albums("Play Album (Night Shift|1984|Long Day|The Vorblix Sessions|Москва)");
    return standin::NetworkOf(standin::Grammar({{1, controls}, {2, albums}}, nullptr));
  }
  ear::Decoder decoder{kModels};
};

TEST_F(Decoding, FindsTheSentenceThatWasSaid) {
  const ear::Learnt learnt = decoder.learn(network());
  EXPECT_GT(learnt.words, 20U);
  EXPECT_TRUE(learnt.unspoken.empty());
  for (const auto& [said, words] : {std::pair("play album night shift", "play album night shift"),
                                    {"play album nineteen eighty four", "play album nineteen eighty four"},
                                    {"player volume up", "player volume up"}}) {
    const std::vector<std::int16_t> sound = support::Spoken(said);
    ASSERT_FALSE(sound.empty());
    const ear::Heard heard = decoder.hear(sound).heard;
    EXPECT_TRUE(heard.speech);
    EXPECT_EQ(heard.words, words);
    EXPECT_GE(heard.thousandths, 300U) << said;
    EXPECT_EQ(decoder.hear(sound).heard.thousandths, heard.thousandths)
        << "each sound is heard as the first one";
  }
  const ear::Heard other =
      decoder.hear(support::Spoken("would you like a cup of coffee this afternoon")).heard;
  EXPECT_LT(other.thousandths, 300U) << other.words;
}

TEST_F(Decoding, HearsNobodyInSilenceNoiseAndNothing) {
  decoder.learn(network());
  EXPECT_FALSE(decoder.hear({}).heard.speech);
  EXPECT_FALSE(decoder.hear(std::vector<std::int16_t>(100, 20000)).heard.speech);
  EXPECT_FALSE(decoder.hear(std::vector<std::int16_t>(32000, 0)).heard.speech);
  std::minstd_rand random(5);
  std::vector<std::int16_t> noise(32000);
  for (std::int16_t& each : noise) each = static_cast<std::int16_t>(random());
  const ear::Heard heard = decoder.hear(noise).heard;
  EXPECT_LT(heard.thousandths, 300U) << heard.words;
}

TEST(Decoder, SaysWhatIsMissing) {
  try {
    const ear::Decoder decoder("/nowhere");
    FAIL();
  } catch (const std::runtime_error& failure) {
    EXPECT_STREQ(failure.what(),
                 "There is no model of speech at /nowhere. Install the package pocketsphinx-en-us");
  }
}

TEST(Pronunciations, KnowWordsThatTheDictionaryDoesNot) {
  const ear::Pronunciations pronunciations(std::string(kModels) + "/cmudict-en-us.dict");
  EXPECT_EQ(pronunciations.of("dont").front(), "D OW N T");  // with its apostrophe it is there
  ASSERT_FALSE(pronunciations.of("vorblix").empty());
  EXPECT_EQ(pronunciations.of("vorblix").front().substr(0, 1), "V");
}

}  // namespace
