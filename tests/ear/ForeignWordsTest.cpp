// How words with foreign letters are pronounced.
#include "ear/decoder/ForeignWords.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ear/decoder/Phones.hpp"

namespace ear {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(Phones, AreTheNearestOnesOfEnglish) {
  EXPECT_EQ(PhonesOf("bjˈœɾk"), "B Y ER K");
  EXPECT_EQ(PhonesOf("kafˈeː"), "K AA F EY");
  EXPECT_EQ(PhonesOf("seɲˈoɾ"), "S EY N Y OW R");
  EXPECT_EQ(PhonesOf("bɛjɔ̃sˈe"), "B EH Y AO N S EY");
  EXPECT_EQ(PhonesOf("t͡ʃaʊ"), "CH AW");
  EXPECT_EQ(PhonesOf("(en)bjˈɜːk(fr)"), "B Y ER K") << "the marks of another language are no sounds";
  EXPECT_EQ(PhonesOf("ˈˌː _"), "");
  EXPECT_EQ(PhonesOf("?\xFF\xC3"), "");
}

TEST(ForeignWords, AreOfTheLanguagesThatHaveTheirLetters) {
  EXPECT_THAT(LanguagesOf("Björk"), ElementsAre("de", "sv"));
  EXPECT_THAT(LanguagesOf("Señor"), ElementsAre("es"));
  EXPECT_THAT(LanguagesOf("Mañana"), ElementsAre("es"));
  EXPECT_THAT(LanguagesOf("Beyoncé"), ElementsAre("fr-fr", "es", "it", "sv"));
  EXPECT_THAT(LanguagesOf("Garçon"), ElementsAre("fr-fr"));
  EXPECT_THAT(LanguagesOf("Ångström"), ElementsAre("sv"));
  for (const char* word : {"Dvořák", "Löwenmaña"})
    EXPECT_THAT(LanguagesOf(word), ElementsAre("de", "fr-fr", "es", "it", "sv")) << word;
}

TEST(ForeignWords, AreSaidInEachOfThem) {
  const auto ways = ForeignWays({"Björk", "Señor", "Für", "Straße", "Москва", "", "?"});
  ASSERT_EQ(ways.size(), 7U);
  EXPECT_THAT(ways[0], Contains("B Y ER K"));
  EXPECT_THAT(ways[1], Contains("S EY N Y OW R"));
  EXPECT_THAT(ways[2], Contains("F UW R"));
  EXPECT_THAT(ways[3], Contains(testing::StartsWith("SH T R AA S")));
  for (const auto& each : ways) EXPECT_LE(each.size(), 6U);
  EXPECT_THAT(ways[5], IsEmpty());
  EXPECT_THAT(ForeignWays({}), IsEmpty());
}

}  // namespace
}  // namespace ear
