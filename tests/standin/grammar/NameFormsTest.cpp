// The ways in which a name is said.
#include "standin/grammar/NameForms.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "standin/grammar/SpokenNumbers.hpp"

namespace standin {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;

std::vector<std::string> Ways(const std::string& name) {
  std::vector<std::string> ways;
  for (const NameForm& form : FormsOf(name)) ways.push_back(form.words);
  return ways;
}

TEST(NameForms, ANameIsSaidAsItIsWrittenFirst) {
  EXPECT_THAT(Ways("Night Shift"), ElementsAre("night shift"));
  EXPECT_THAT(Ways("Björk: Début!"), ElementsAre("bjork debut"));
  EXPECT_EQ(Ways("1984 Remix").front(), "1984 remix");
  EXPECT_EQ(FormsOf("1984 Remix").front().distance, 0);
  EXPECT_GT(FormsOf("1984 Remix").back().distance, 0);
  EXPECT_THAT(Ways("?!"), IsEmpty());
}

TEST(NameForms, DigitsAreSaidAsYearsAsNumbersAndOneByOne) {
  EXPECT_THAT(Ways("1984"),
              IsSupersetOf({"nineteen eighty four", "one thousand nine hundred eighty four",
                            "one thousand nine hundred and eighty four", "one nine eight four"}));
  EXPECT_THAT(Ways("2001"), IsSupersetOf({"two thousand one", "two thousand and one", "twenty oh one",
                                          "two zero zero one", "two oh oh one"}));
  EXPECT_THAT(Ways("1900"), Contains("nineteen hundred"));
  EXPECT_THAT(Ways("99"), IsSupersetOf({"ninety nine", "nine nine"}));
  EXPECT_THAT(Ways("311"), IsSupersetOf({"three eleven", "three hundred eleven", "three one one"}));
  EXPECT_THAT(Ways("101"), Contains("one oh one"));
  EXPECT_THAT(Ways("007"), IsSupersetOf({"oh oh seven", "double oh seven", "zero zero seven", "seven"}));
  EXPECT_THAT(Ways("100000"), Contains("one hundred thousand"));
  EXPECT_THAT(Ways("12345678"), Contains("one two three four five six seven eight"));
  EXPECT_THAT(SpokenNumber("0"), ElementsAre("zero", "oh"));
}

TEST(NameForms, DecadesOrdinalsAndRomanNumbersHaveNamesOfTheirOwn) {
  EXPECT_THAT(Ways("Best of the 80s"), Contains("best of the eighties"));
  EXPECT_THAT(Ways("Best of the 80's"), Contains("best of the eighties"));
  EXPECT_THAT(Ways("80 s Hits"), Contains("eighties hits"));
  EXPECT_THAT(Ways("80 s Hits"), Contains("80s hits"));
  EXPECT_THAT(Ways("1980s"), Contains("nineteen eighties"));
  EXPECT_THAT(Ways("2000s"), Contains("two thousands"));
  EXPECT_THAT(Ways("22nd Street"), Contains("twenty second street"));
  EXPECT_THAT(Ways("Part III"), Contains("part three"));
  EXPECT_THAT(Ways("Led IV"), Contains("led four"));
  EXPECT_EQ(RomanValue("ii"), 0);
  EXPECT_EQ(RomanValue("XXI"), 0);
}

TEST(NameForms, LettersAreSpeltAndReadAsAWord) {
  EXPECT_THAT(Ways("ABBA"), IsSupersetOf({"abba", "a b b a"}));
  EXPECT_THAT(Ways("R.E.M."), IsSupersetOf({"r e m", "rem"}));
  EXPECT_THAT(Ways("AC/DC"), Contains("a c d c"));
  EXPECT_THAT(Ways("AC DC"), Contains("a c d c"));
  EXPECT_THAT(Ways("U2"), Contains("u two"));
  EXPECT_THAT(Ways("10cc"), Contains("ten c c"));
  EXPECT_THAT(Ways("Blue"), ElementsAre("blue"));
  EXPECT_THAT(Ways("UnMute"), ElementsAre("unmute", "un mute"));
  EXPECT_THAT(Ways("PlayList"), ElementsAre("playlist", "play list"));
}

TEST(NameForms, ApostrophesThatHaveBecomeABlankAreUnderstood) {
  EXPECT_THAT(Ways("Don't Stop"), ElementsAre("dont stop"));
  EXPECT_THAT(Ways("Don’t Stop"), ElementsAre("dont stop"));
  EXPECT_THAT(Ways("Don t Stop"), Contains("dont stop"));
  EXPECT_THAT(Ways("We ll Go"), Contains("well go"));
  EXPECT_THAT(Ways("I ve Got It"), Contains("ive got it"));
  EXPECT_THAT(Ways("Youssou N Dour"), Contains("youssou ndour"));
  EXPECT_THAT(Ways("Sinead O Connor"), Contains("sinead oconnor"));
}

TEST(NameForms, ShortWordsAreSaidInFull) {
  EXPECT_THAT(Ways("Hits Vol. 2"), IsSupersetOf({"hits vol 2", "hits volume two", "hits volume 2"}));
  EXPECT_THAT(Ways("Pt 1"), Contains("part one"));
  EXPECT_THAT(Ways("Symphony No 9"), Contains("symphony number nine"));
  EXPECT_THAT(Ways("No Surprises"), ElementsAre("no surprises"));
  EXPECT_THAT(Ways("Mira & the Clocks"), ElementsAre("mira and the clocks"));
  EXPECT_THAT(Ways("Rock 'n' Roll"), Contains("rock and roll"));
}

/// How many of its ways hold no digit.
std::size_t Sayable(const std::string& name) {
  const std::vector<std::string> ways = Ways(name);
  return static_cast<std::size_t>(std::count_if(ways.begin(), ways.end(), [](const std::string& way) {
    return way.find_first_of("0123456789") == std::string::npos;
  }));
}

TEST(NameForms, ANameOfManyNumbersCanBeSaidAndIsSaidAsPeopleDoFirst) {
  const std::vector<std::pair<std::string, std::string>> natural{
      {"Complete Recordings 1950 1962 Vol 13",
       "complete recordings nineteen fifty nineteen sixty two volume thirteen"},
      {"String Quartet No 15 in A minor Op 132",
       "string quartet number fifteen in a minor opus one hundred thirty two"},
      {"Symphony No 104 in D major Op 102 No 3",
       "symphony number one hundred four in d major opus one hundred two number three"},
      {"Best of 1999 2005 Vol 2", "best of nineteen ninety nine twenty oh five volume two"},
      {"1001 1002 1003", "ten oh one ten oh two ten oh three"},
      {"Greatest 80s Hits 1981 1989 Pt 2",
       "greatest eighties hits nineteen eighty one nineteen eighty nine part two"}};
  for (const auto& [name, said] : natural) {
    EXPECT_EQ(Ways(name).size(), kMostForms);
    EXPECT_EQ(Ways(name)[1], said);
    EXPECT_GE(Sayable(name), kMostForms * 2 / 3) << name;
  }
  EXPECT_THAT(Ways("1001 1002 1003"), Contains("one thousand one ten oh two ten oh three"));
  EXPECT_EQ(FormsOf("Blue Vol 13")[1], (NameForm{"blue volume thirteen", 2}));
  EXPECT_EQ(FormsOf("Quartet No 15 in A minor Op 132", 2)[1].words,
            "quartet number fifteen in a minor opus one hundred thirty two");
}

TEST(NameForms, ALongNameHasNoEndOfWays) {
  std::string name;
  for (int i = 0; i < 12; ++i) name += "1984 ";
  EXPECT_EQ(FormsOf(name).size(), kMostForms);
  EXPECT_GE(Sayable(name), kMostForms * 2 / 3);
  for (int i = 0; i < 10000; ++i) name += "1984 ";
  EXPECT_EQ(FormsOf(name).size(), 1U);
}

std::string Repeated(const std::string& text, int times) {
  std::string all;
  for (int i = 0; i < times; ++i) all += text;
  return all;
}

TEST(NameForms, ALongNameIsSaidAsItIsWrittenOnly) {
  for (const std::string& name :
       {Repeated("1a", 1 << 19), Repeated("1a", 2000), Repeated("1a", 17), std::string(33, 'X') + " 1984",
        Repeated("Nineteenthirteens ", 23) + "1984"})
    EXPECT_EQ(FormsOf(name).size(), 1U) << name.substr(0, 100);
  EXPECT_EQ(FormsOf(Repeated("1a", 2000)).front().words, Repeated("1a", 2000));
  EXPECT_GT(FormsOf(Repeated("1a", 16)).size(), 1U);
  EXPECT_GT(FormsOf(Repeated("Nineteenthirteens ", 21) + "1984").size(), 1U);
}

}  // namespace
}  // namespace standin
