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

TEST_F(Decoding, WhatIsLoudAndNoSentenceIsNotSilence) {
  decoder.learn(network());
  std::vector<std::int16_t> loud(32000);
  for (std::size_t i = 0; i < loud.size(); ++i) loud[i] = i / 50 % 2 == 0 ? 20000 : -20000;
  const ear::Heard heard = decoder.hear(loud).heard;
  EXPECT_TRUE(heard.speech) << "it was heard, and not understood";
  EXPECT_LT(heard.thousandths, 300U) << heard.words;
  for (std::int16_t& each : loud) each = static_cast<std::int16_t>(each / 100);
  EXPECT_FALSE(decoder.hear(loud).heard.speech);
}

TEST_F(Decoding, HearsTheAnswersToAQuestion) {
  decoder.learn(network());
  for (const char* answer : {"second", "third", "yes", "no"}) {
    const ear::Heard heard = decoder.hear(support::Spoken(answer)).heard;
    EXPECT_EQ(heard.words, answer);
    EXPECT_GE(heard.thousandths, 600U) << answer;
  }
}

struct Foreign {
  const char* key;
  const char* name;
  const char* words;  ///< as they are heard
  const char* voice;
};
constexpr Foreign kForeign[] = {
    {"Bj rk", "Björk", "bjork", "sv"},
    {"Mot rhead", "Motörhead", "motorhead", "de"},
    {"Se or Coconut", "Señor Coconut", "senor coconut", "es"},
    {"Beyonc", "Beyoncé", "beyonce", "fr-fr"},
    {"Caf Tacuba", "Café Tacuba", "cafe tacuba", "es"},
    {"Ang lique Kidjo", "Angélique Kidjo", "angelique kidjo", "fr-fr"},
    {"Fran oise Hardy", "Françoise Hardy", "francoise hardy", "fr-fr"},
    {"D rte Becker", "Dörte Becker", "dorte becker", "de"},
    {"Nicol Conte", "Nicolò Conte", "nicolo conte", "it"},
    {"H kan Hellstr m", "Håkan Hellström", "hakan hellstrom", "sv"},
    {"Jos Gonz lez", "José González", "jose gonzalez", "es"},
    {"Die rzte", "Die Ärzte", "die arzte", "de"},
};

ear::SpeechNetwork ForeignNames() {
  std::string text =
      "Play Artist (Beyond|Bark|Mother Head|Hacking|Nickel|The Cure|Blur|Blondie|Madonna|Dirty Three|"
      "Francis|Joseph|Angel|Senior|Coffee|The Artist|Portishead|Queen|Air|Pulp";
  for (const Foreign& each : kForeign) text += std::string("|") + each.key;
  const standin::Pattern pattern(text + ")");
  return standin::NetworkOf(standin::Grammar({{1, pattern}}, [](const std::string& words) {
    std::vector<std::string> names;
    for (const Foreign& each : kForeign)
      if (words == each.key) names.emplace_back(each.name);
    return names;
  }));
}

TEST_F(Decoding, HearsForeignNamesAsTheyAreSpokenAtHome) {
  ear::SpeechNetwork names = ForeignNames();
  EXPECT_EQ(names.spellings.size(), 14U);
  decoder.learn(names);
  ear::Decoder english(kModels);
  names.spellings.clear();
  english.learn(names);
  const std::vector<std::int16_t> play = support::Spoken("play artist");
  int right = 0;
  int rightInEnglish = 0;
  for (const Foreign& each : kForeign) {
    std::vector<std::int16_t> sound = play;
    const std::vector<std::int16_t> name = support::Spoken(each.name, each.voice);
    ASSERT_FALSE(name.empty());
    sound.insert(sound.end(), name.begin(), name.end());
    const std::string wanted = std::string("play artist ") + each.words;
    const std::string heard = decoder.hear(sound).heard.words;
    if (heard == wanted) ++right;
    if (english.hear(sound).heard.words == wanted) ++rightInEnglish;
  }
  // Nine and five were measured.
  EXPECT_GE(right, 8);
  EXPECT_GT(right, rightInEnglish + 1);
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
